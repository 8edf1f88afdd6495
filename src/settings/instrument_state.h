// The instrument state record of a conversion or a query, built from a recording's settings.
#pragma once

#include "settings/settings_record.h"

namespace quorvex {

// Releases a state record and the two tracked blocks that it owns.
void ReleaseWorkArea(InstrumentState* area);

// Zeroed, validated, then given the recording's settings (null leaves the defaults). Handed down to
// whoever reads it: a slot of the thread's own would outlive the library in a host that unloads it.
class ScopedState {
 public:
  explicit ScopedState(const UifParams* settings);
  ~ScopedState();
  ScopedState(const ScopedState&) = delete;
  ScopedState& operator=(const ScopedState&) = delete;

  InstrumentState* operator->() const { return state_; }

 private:
  InstrumentState* state_;
};

}  // namespace quorvex
