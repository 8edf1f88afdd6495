#include "support/memory.h"

#include <atomic>
#include <cstdlib>

#include "support/bounded_text.h"
#include "support/loads.h"
#include "support/platform.h"

namespace quorvex {
namespace {

constexpr uint32_t kGuardWord = 0x11223344;
constexpr uint32_t kPrefixSize = 8;  // payload size, guard word
constexpr uint32_t kRetryPauseMs = 10;
constexpr uint32_t kAttemptsPerMessage = 100;

std::atomic<uint32_t> tracked_bytes{0};

}  // namespace

void* Allocate(uint32_t size) {
  uint32_t attempts = 0;
  for (;;) {
    // The sum is taken in size_t: in 32 bits a huge request would come round to a tiny block.
    void* block = std::calloc(1, static_cast<size_t>(size) + kPrefixSize);
    tracked_bytes += size;  // counted per attempt, refused ones too
    if (block != nullptr) {
      auto* bytes = static_cast<uint8_t*>(block);
      Store<uint32_t>(bytes, size);
      Store<uint32_t>(bytes + 4, kGuardWord);
      return bytes + kPrefixSize;
    }
    if (++attempts == kAttemptsPerMessage) {
      char message[48];
      BoundedText text(message, sizeof message);
      text.Put("Out of heap. (");
      text.PutInteger(static_cast<int32_t>(size));
      text.Put(" bytes)\n\r");
      SendDiagnostic(message);
      attempts = 0;
    }
    PauseMs(kRetryPauseMs);
  }
}

void Release(void* payload) {
  if (payload == nullptr) return;
  uint8_t* block = static_cast<uint8_t*>(payload) - kPrefixSize;
  if (Load<uint32_t>(block + 4) != kGuardWord) return;
  tracked_bytes -= Load<uint32_t>(block);
  Store<uint32_t>(block + 4, 0);  // a second release of the same pointer finds no guard
  std::free(block);
}

uint32_t TrackedBytes() { return tracked_bytes; }

}  // namespace quorvex
