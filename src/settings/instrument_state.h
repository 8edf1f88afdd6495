// The instrument state record of a conversion: built from a recording's settings, current on the
// calling thread while it lives.
#pragma once

#include "settings/settings_record.h"

namespace quorvex {

// Releases a state record and the two tracked blocks that it owns.
void ReleaseWorkArea(InstrumentState* area);

// The state record of the conversion that runs on this thread; null outside of one.
const InstrumentState* CurrentState();

// Zeroed, validated, then given the recording's settings (null leaves the defaults).
class ScopedState {
 public:
  explicit ScopedState(const UifParams* settings);
  ~ScopedState();
  ScopedState(const ScopedState&) = delete;
  ScopedState& operator=(const ScopedState&) = delete;

 private:
  InstrumentState* state_;
  InstrumentState* outer_;  // a progress callback may ask about another recording
};

}  // namespace quorvex
