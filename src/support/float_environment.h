// The floating-point settings of a thread belong to the host: which exceptions interrupt it, how it
// rounds, what becomes of denormals. A conversion divides by zero where a recording has zeros, and
// its document must not depend on a host's rounding. So it works under settings of its own.
#pragma once

#include <cstdint>

namespace quorvex {

// Settings, and the flags of what happened under them.
struct FloatEnvironment {
  uint32_t x87[7];
  uint32_t sse;
};

// What is set on this thread. Leaves exceptions of the x87 switched off, as reading does that.
void SaveFloats(FloatEnvironment* to);
// Exactly as it was saved: what happened since leaves no flag, and interrupts nobody later.
void RestoreFloats(const FloatEnvironment& from);
// Round to nearest, no interruption, denormals as they are.
void SetOwnFloats();

// The library's settings while it lives.
class OwnFloats {
 public:
  OwnFloats() {
    SaveFloats(&host_);
    SetOwnFloats();
  }
  ~OwnFloats() { RestoreFloats(host_); }
  OwnFloats(const OwnFloats&) = delete;
  OwnFloats& operator=(const OwnFloats&) = delete;

  // The host's settings, which a callback works under, and may change.
  FloatEnvironment* host() { return &host_; }

 private:
  FloatEnvironment host_;
};

}  // namespace quorvex
