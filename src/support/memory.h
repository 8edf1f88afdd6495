// The tracked allocator: every block that the library takes carries its size and a guard word in
// front, and is counted, so a host and the tests can see that nothing stays behind.
#pragma once

#include <cstdint>

namespace quorvex {

// A zeroed block of `size` payload bytes, 8-byte aligned. Never null: while the heap refuses, the
// caller waits. Zeroed because a truncated recording is rendered from what arrived; what never
// arrived must not be another file's bytes.
void* Allocate(uint32_t size);

// Gives a block back. Null, or a pointer without the guard word in front, is left alone.
void Release(void* payload);

// Payload bytes currently handed out, over all threads.
uint32_t TrackedBytes();

// Owner of one tracked block that holds `count` values of T.
template <typename T>
class Tracked {
 public:
  explicit Tracked(uint32_t count = 1)
      : block_(static_cast<T*>(Allocate(count * static_cast<uint32_t>(sizeof(T))))) {}
  ~Tracked() { Release(block_); }
  Tracked(const Tracked&) = delete;
  Tracked& operator=(const Tracked&) = delete;

  T* get() { return block_; }
  const T* get() const { return block_; }
  T* operator->() { return block_; }
  T& operator*() { return *block_; }

 private:
  T* block_;
};

}  // namespace quorvex
