#include "settings/instrument_state.h"

#include "settings/validation.h"
#include "support/memory.h"

namespace quorvex {
namespace {

thread_local InstrumentState* current_state = nullptr;

}  // namespace

void ReleaseWorkArea(InstrumentState* area) {
  if (area == nullptr) return;
  for (void* block : area->owned) Release(block);
  Release(area);
}

const InstrumentState* CurrentState() { return current_state; }

ScopedState::ScopedState(const UifParams* settings)
    : state_(static_cast<InstrumentState*>(Allocate(sizeof(InstrumentState)))),
      outer_(current_state) {
  ValidateSettings(state_, 0);
  if (settings != nullptr) state_->settings = *settings;
  current_state = state_;
}

ScopedState::~ScopedState() {
  current_state = outer_;
  ReleaseWorkArea(state_);
}

}  // namespace quorvex
