// Texts of settings for people: levels with their units, values in the range that suits
// them. All texts are English and UTF-8.
#pragma once

#include <cstdint>

#include "settings/settings_record.h"
#include "support/bounded_text.h"

namespace quorvex {

// "V", "kV" ...; empty for an unknown code.
const char* UnitText(uint32_t code);

// The current in A that a clamp is set up for.
double ClampNominalCurrent(const ClampParams& clamp);

// How many decimals a value gets and which power of ten (a multiple of 3) its unit.
struct EngineeringChoice {
  int decimals;
  int exponent;
};
EngineeringChoice EngineeringFormat(double value);

// What a trigger level given in percent comes to: of the nominal voltage for the triggers 5 and 7,
// of the phase 1 clamp's current for 6. 0 for others.
double LevelAmount(float level, uint32_t trigger, const UifParams& settings);

// The text of a trigger level given in percent, with what it comes to: in voltage (of the nominal
// voltage) for the triggers 5 and 7, in current (of the phase 1 clamp) for 6, alone for others. For
// a current the percentage stands first where `percent_first` is set.
void LevelText(float level, uint32_t trigger, const UifParams& settings, BoundedText* to,
               bool percent_first);

// `value` rounded to so many decimals, half away from zero, and the same without the point.
// Integers beyond 32 bits are the nearest of them.
double RoundToDigits(double value, uint32_t decimals, int32_t* integer);

// How a quantity is shown, depending on its size. `prefix` is the letter before the unit, or 0.
struct ShownUnit {
  uint32_t code;
  char prefix;
};
struct DisplayLimit {
  double value;  // in the quantity's unit times ValueDescriptor::scale
  uint32_t decimals;
  ShownUnit unit;
};
struct DisplayRange {
  double limit;  // shown values stay below
  double scale;  // from the quantity's unit to the shown one
  uint32_t decimals;
  ShownUnit unit;
};
struct ValueDescriptor {
  double scale;
  DisplayLimit minimum, maximum;
  const DisplayRange* ranges;
  uint32_t range_count;
  const char* not_shown;  // for values that are none
  uint32_t not_shown_unit;
};

// The number of a value as its descriptor shows it, "<" or ">" before a limit that it passes; the
// unit is the result.
ShownUnit DescribedValueText(double value, const ValueDescriptor& descriptor, BoundedText* to);

// Trigger levels in V and A with three to four significant digits: up to 99.99 mV and 999.9 mV,
// then 9.999 V, 99.99 V, 999.9 V, and the same in kV up to 999.9 kV; likewise mA, A, kA. Beyond
// that the limit is shown ("<-999.9", ">999.9"), and "-" where there is no value.
extern const ValueDescriptor kVoltageDescriptor;
extern const ValueDescriptor kCurrentDescriptor;

}  // namespace quorvex
