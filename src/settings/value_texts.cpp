#include "settings/value_texts.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iterator>

#include "settings/codes.h"

namespace quorvex {
namespace {

enum Unit : uint32_t {
  kNoUnit = 0,
  kMilliampere = 4,
  kAmpere = 5,
  kVolt = 6,
  kKiloampere = 12,
  kMillivolt = 21,
  kKilovolt = 22,
};

// By unit code.
constexpr const char* kUnits[] = {
    "",     "Ω",    "kΩ", "MΩ", "mA",  "A",    "V",     "ms",    "s",     "lux", "klux",
    "mΩ",   "kA",   "Hz", "Ωm", "kΩm", "m",    "ft",    "Ωft",   "kΩft",  "GΩ",  "mV",
    "kV",   "W",    "kW", "MW", "Wh",  "kWh",  "MWh",   "VA",    "kVA",   "MVA", "var",
    "kvar", "Mvar", "°C", "%",  "°F",  "W/m2", "kW/m2", "GW",    "Gvar",  "GVA", "B",
    "kB",   "MB",   "GB", "b",  "uΩ",  "varh", "kvarh", "Mvarh", "Gvarh",
};
static_assert(std::size(kUnits) == 53);

constexpr int kKilo = 3;
constexpr int kMilli = -3;

// From thousandths up to thousands of a unit.
constexpr DisplayRange kVoltageRanges[] = {
    {100, 1e3, 2, {kMillivolt, 'm'}}, {1000, 1e3, 1, {kMillivolt, 'm'}},
    {10, 1, 3, {kVolt, 0}},           {100, 1, 2, {kVolt, 0}},
    {1000, 1, 1, {kVolt, 0}},         {10, 1e-3, 3, {kKilovolt, 'k'}},
    {100, 1e-3, 2, {kKilovolt, 'k'}}, {1000, 1e-3, 1, {kKilovolt, 'k'}},
};
constexpr DisplayRange kCurrentRanges[] = {
    {100, 1e3, 2, {kMilliampere, 'm'}}, {1000, 1e3, 1, {kMilliampere, 'm'}},
    {10, 1, 3, {kAmpere, 0}},           {100, 1, 2, {kAmpere, 0}},
    {1000, 1, 1, {kAmpere, 0}},         {10, 1e-3, 3, {kKiloampere, 'k'}},
    {100, 1e-3, 2, {kKiloampere, 'k'}}, {1000, 1e-3, 1, {kKiloampere, 'k'}},
};
constexpr double kLargestShown = 999.9;  // thousands of a unit

// "%d" with a point that many digits from the right.
void PutPointed(int32_t integer, uint32_t decimals, BoundedText* to) {
  char digits[12] = "";
  const int64_t size = std::abs(static_cast<int64_t>(integer));
  const char* end = std::to_chars(digits, digits + sizeof digits, size).ptr;
  auto left = static_cast<uint32_t>(end - digits);
  if (integer < 0) to->Put('-');
  for (uint32_t place = left > decimals ? left : decimals + 1; place > 0; --place) {
    if (place == decimals) to->Put('.');
    to->Put(place > left ? '0' : *(end - place));
  }
}

}  // namespace

const ValueDescriptor kVoltageDescriptor = {
    .scale = 1e-3,
    .minimum = {-kLargestShown, 1, {kKilovolt, 'k'}},
    .maximum = {kLargestShown, 1, {kKilovolt, 'k'}},
    .ranges = kVoltageRanges,
    .range_count = std::size(kVoltageRanges),
    .not_shown = "-",
    .not_shown_unit = kNoUnit,
};
const ValueDescriptor kCurrentDescriptor = {
    .scale = 1e-3,
    .minimum = {-kLargestShown, 1, {kKiloampere, 'k'}},
    .maximum = {kLargestShown, 1, {kKiloampere, 'k'}},
    .ranges = kCurrentRanges,
    .range_count = std::size(kCurrentRanges),
    .not_shown = "-",
    .not_shown_unit = kNoUnit,
};

const char* UnitText(uint32_t code) { return code < std::size(kUnits) ? kUnits[code] : ""; }

double ClampNominalCurrent(const ClampParams& clamp) {
  constexpr uint8_t kRangedClamp = 2;
  const double percent = clamp.current_range;
  double current = percent * static_cast<double>(clamp.a_na_v) / 100;
  if (clamp.type == kRangedClamp) {
    current = percent * static_cast<double>(clamp.range) / 100;
  } else if (clamp.parallel_feeders != 0) {
    current *= clamp.wires_num;
  }
  if (clamp.trafo != 0) {
    current *= static_cast<double>(clamp.trafo_prim_i) / static_cast<double>(clamp.trafo_sec_i);
  }
  return current;
}

EngineeringChoice EngineeringFormat(double value) {
  constexpr int kLargest = 6;
  EngineeringChoice choice = {2, 0};
  double v = value * 0.001;
  for (; v >= 1.0 && choice.exponent <= kLargest; v /= 1000) choice.exponent += 3;
  for (; v <= 0.001 && choice.exponent >= -kLargest; v *= 1000) choice.exponent -= 3;
  if (v < 0.01) choice.decimals = 3;
  if (v >= 0.1) choice.decimals = 1;
  return choice;
}

double LevelAmount(float level, uint32_t trigger, const UifParams& settings) {
  const auto percent = static_cast<double>(level);
  switch (trigger) {
    case kTriggerLevelU:
    case kTriggerEnvelope:
      return percent * static_cast<double>(settings.nominal_voltage) / 100;
    case kTriggerLevelI:
      return ClampNominalCurrent(settings.clamp[0]) * percent / 100;
    default:
      return 0;
  }
}

void LevelText(float level, uint32_t trigger, const UifParams& settings, BoundedText* to,
               bool percent_first) {
  const auto percent = static_cast<double>(level);
  double amount = LevelAmount(level, trigger, settings);
  uint32_t unit = kNoUnit;
  EngineeringChoice choice{};
  if (trigger == kTriggerLevelU || trigger == kTriggerEnvelope) {
    // The nominal voltage decides how, so that all levels of a network look alike.
    choice = EngineeringFormat(static_cast<double>(settings.nominal_voltage));
    unit = choice.exponent == kKilo ? kKilovolt : kVolt;
    if (choice.exponent == kKilo) amount /= 1000;
    percent_first = true;
  } else if (trigger == kTriggerLevelI) {
    choice = EngineeringFormat(amount);
    unit = kAmpere;
    if (choice.exponent == kKilo) unit = kKiloampere;
    if (choice.exponent == kMilli) unit = kMilliampere;
    if (unit == kKiloampere) amount /= 1000;
    if (unit == kMilliampere) amount *= 1000;
  }
  const auto put_percent = [&] {
    to->PutFixed(percent, 1);
    to->Put('%');
  };
  const auto put_amount = [&] {
    to->PutFixed(amount, choice.decimals);
    to->Put(UnitText(unit));
  };
  if (unit == kNoUnit) {
    put_percent();
    return;
  }
  percent_first ? put_percent() : put_amount();
  to->Put(" (");
  percent_first ? put_amount() : put_percent();
  to->Put(')');
}

double RoundToDigits(double value, uint32_t decimals, int32_t* integer) {
  constexpr uint32_t kMostDecimals = 100;
  const double scale = std::pow(10.0, decimals < kMostDecimals ? decimals : kMostDecimals);
  const double rounded = std::round(value * scale);
  *integer = std::isnan(rounded)        ? 0
             : rounded >= 2147483647.0  ? INT32_MAX
             : rounded <= -2147483648.0 ? INT32_MIN
                                        : static_cast<int32_t>(rounded);
  return *integer / scale;
}

ShownUnit DescribedValueText(double value, const ValueDescriptor& d, BoundedText* to) {
  if (!std::isfinite(value) || value == kNoValueDouble) {
    to->Put(d.not_shown);
    return {d.not_shown_unit, 0};
  }
  int32_t integer = 0;
  const struct {
    const DisplayLimit& limit;
    double sign;
    char mark;
  } limits[] = {{d.minimum, -1, '<'}, {d.maximum, 1, '>'}};
  for (const auto& l : limits) {
    const double rounded = RoundToDigits(value * d.scale, l.limit.decimals, &integer);
    if (rounded * l.sign <= l.limit.value * l.sign) continue;
    RoundToDigits(l.limit.value, l.limit.decimals, &integer);
    to->Put(l.mark);
    PutPointed(integer, l.limit.decimals, to);
    return l.limit.unit;
  }
  for (uint32_t r = 0; r < d.range_count; ++r) {
    const DisplayRange& range = d.ranges[r];
    int32_t limit = 0;
    RoundToDigits(range.limit, range.decimals, &limit);
    RoundToDigits(value * range.scale, range.decimals, &integer);
    if (limit <= std::abs(static_cast<int64_t>(integer))) continue;
    PutPointed(integer, range.decimals, to);
    return range.unit;
  }
  PutPointed(0, 0, to);
  return {kNoUnit, 0};
}

}  // namespace quorvex
