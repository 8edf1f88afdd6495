#include "settings/instrument_state.h"

#include "settings/validation.h"
#include "support/memory.h"

namespace quorvex {

void ReleaseWorkArea(InstrumentState* area) {
  if (area == nullptr) return;
  for (void* block : area->owned) Release(block);
  Release(area);
}

ScopedState::ScopedState(const UifParams* settings)
    : state_(static_cast<InstrumentState*>(Allocate(sizeof(InstrumentState)))) {
  ValidateSettings(state_, 0);
  if (settings != nullptr) state_->settings = *settings;
}

ScopedState::~ScopedState() { ReleaseWorkArea(state_); }

}  // namespace quorvex
