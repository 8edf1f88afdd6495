// The instrument's own settings check: what is out of range gets its default, what is derived is
// derived. Conversions run it on a zeroed state record before the recording's settings go in.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "settings/settings_record.h"

namespace quorvex {

// Checks in place, in the instrument's order. `mode` is 0 here; the instrument knows others.
void ValidateSettings(InstrumentState* state, int32_t mode);

// Lists of allowed values end with this entry; the other is a hole that matching skips.
constexpr int32_t kListEnd = static_cast<int32_t>(0x80000001);
constexpr int32_t kListHole = static_cast<int32_t>(0x80000002);
constexpr int kListRoom = 20;

struct ValueList {
  int32_t value[kListRoom];
};

// `values` (as many as there is room for) and the end marker.
void BuildValueList(ValueList* list, std::initializer_list<int32_t> values);

// The entry nearest to `value`, the earlier one on a tie. An empty list gives the end marker.
int32_t SnapToList(int32_t value, const ValueList& list);

// Ends the list at its first entry that is not below `bound`.
void TrimListBelow(ValueList* list, int32_t bound);

// `value` in whole tenths (half rounds up), kept between `minimum` and `maximum` tenths.
float QuantiseTenths(float value, int32_t minimum, int32_t maximum);

// Factor between line-to-line and phase voltages of a transformer: 1 gives sqrt(3), 2 its inverse.
double StarFactor(uint32_t selector);

// The mains signalling limit of EN 50160 at a frequency in Hz, as a fraction of the voltage.
float SignallingLimit(float frequency);

}  // namespace quorvex
