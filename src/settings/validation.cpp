#include "settings/validation.h"

#include <cmath>
#include <numbers>

namespace quorvex {
namespace {

// Allowed once non-zero on one of the instrument's variants only; recordings are read by any.
constexpr int32_t kInstrumentVariant = 0;
constexpr int32_t kTransientsVariant = 2;

constexpr std::initializer_list<int32_t> kIntervals = {1,   3,   5,   10,   60,   120,
                                                       300, 600, 900, 1800, 3600, 7200};

// One unsigned comparison: a negative or zero value lies outside too.
bool IsWithin(uint32_t value, uint32_t lowest, uint32_t highest) {
  return value - lowest <= highest - lowest;
}

void KeepWithin(uint32_t* value, uint32_t lowest, uint32_t highest, uint32_t otherwise) {
  if (!IsWithin(*value, lowest, highest)) *value = otherwise;
}

template <typename T>
void Snap(T* value, std::initializer_list<int32_t> allowed) {
  ValueList list;
  BuildValueList(&list, allowed);
  *value = static_cast<T>(SnapToList(static_cast<int32_t>(*value), list));
}

template <typename T>
void MakeFlag(T* value) {
  if (*value != 0) *value = 1;
}

void DropNonFinite(float* value) {
  if (!std::isfinite(*value)) *value = 0;
}

void Clamp(uint32_t* value, int32_t lowest, int32_t highest) {
  const auto signed_value = static_cast<int32_t>(*value);
  if (signed_value < lowest) *value = static_cast<uint32_t>(lowest);
  if (signed_value > highest) *value = static_cast<uint32_t>(highest);
}

bool IsLineToLine(uint8_t connection) {
  return connection == 2 || connection == 4 || connection == 7;
}

void CheckNominalVoltage(UifParams* s) {
  DropNonFinite(&s->nominal_voltage);
  const auto primary = static_cast<float>(static_cast<int32_t>(s->voltage_ratio_prim));
  const auto secondary = static_cast<float>(static_cast<int32_t>(s->voltage_ratio_sec));
  const bool transformed = primary != secondary;
  const auto star = static_cast<float>(StarFactor(s->trikot_star_factor_id));
  float lowest = 50.0f;
  float highest = IsLineToLine(s->connection) ? std::numbers::sqrt3_v<float> * 1000.0f : 1000.0f;
  if (transformed) {
    lowest = star * (lowest * primary / secondary);
    highest = star * (highest * primary / secondary);
  }
  if (lowest > s->nominal_voltage) s->nominal_voltage = lowest;
  if (s->nominal_voltage > highest) s->nominal_voltage = highest;

  if (s->connection == 6 || s->connection == 7) {
    s->voltage_range = 2;
    return;
  }
  const float input =
      transformed ? s->nominal_voltage * secondary / primary / star : s->nominal_voltage;
  const bool delta = s->connection == 2 || s->connection == 4;
  const float low_range = delta ? 235.0f : 136.0f;
  const float middle_range = delta ? 650.0f : 375.0f;
  s->voltage_range = input <= low_range ? 0 : input > middle_range ? 2 : 1;
}

void FixStateFields(InstrumentState* state) {
  state->fixed122965 = 1;
  const uint8_t connection = state->settings.connection;
  const bool single = connection == 1 || connection == 3 || connection == 5 || connection == 6;
  state->fixed122904 = single ? 2 : 7;
  state->fixed122909 = 1;
  state->fixed122911 = 0;
  state->fixed122924 = 0.2f;
  state->fixed122932 = 1;
  state->fixed122936 = 300.0f;
  state->fixed122940 = 10.0f;
  state->fixed122944 = 1;
  state->fixed122948 = 0;
  state->fixed122952 = -1;
  state->fixed122956 = 4;
  state->fixed122960 = 0;
  state->fixed122964 = 1;
}

// Snaps the display's voltage scale to a 1-2-5 series around the nominal voltage.
void SnapVoltageScale(InstrumentState* state) {
  constexpr int kMostScales = 19;
  constexpr double kSteps[] = {1, 2, 5};
  const double nominal = state->settings.nominal_voltage;
  const double present = state->voltage_scale;
  double nearest = present;
  double distance = INFINITY;
  int kept = 0;
  double decade = 1;
  for (int i = 0; kept < kMostScales; ++i) {
    if (i > 0 && i % 3 == 0) decade *= 10;
    const double value = kSteps[i % 3] * decade;
    if (value <= nominal / 100) continue;
    ++kept;
    if (std::fabs(value - present) < distance) {
      distance = std::fabs(value - present);
      nearest = value;
    }
    if (value > nominal * 10) break;
  }
  state->voltage_scale = static_cast<float>(nearest);
}

void CheckHysteresis(uint32_t* code) {
  if (*code > 5) *code = 2;
}

void CheckInterval(UifParams* s) {
  Snap(&s->interval, kIntervals);
  // A recording lasts one interval at least; the allowed durations start there.
  if (s->duration != 0 && s->interval > s->duration) s->duration = s->interval;
}

void CheckCaptureTimes(uint32_t* duration, uint32_t* pretrigger, bool reduced_lists) {
  ValueList durations;
  BuildValueList(&durations, {1, 2, 5, 10, 20, 30, 60});
  if (reduced_lists) BuildValueList(&durations, {1, 2, 5});
  *duration = static_cast<uint32_t>(SnapToList(static_cast<int32_t>(*duration), durations));
  ValueList pretriggers;
  BuildValueList(&pretriggers, {0, 1, 2, 5, 10, 20, 30, 60});
  TrimListBelow(&pretriggers, static_cast<int32_t>(*duration));
  *pretrigger = static_cast<uint32_t>(SnapToList(static_cast<int32_t>(*pretrigger), pretriggers));
}

}  // namespace

void BuildValueList(ValueList* list, std::initializer_list<int32_t> values) {
  int used = 0;
  for (const int32_t value : values) {
    if (used < kListRoom - 1) list->value[used++] = value;
  }
  list->value[used] = kListEnd;
}

int32_t SnapToList(int32_t value, const ValueList& list) {
  int32_t nearest = list.value[0];
  int64_t distance = INT64_MAX;
  for (const int32_t* entry = list.value; *entry != kListEnd; ++entry) {
    if (*entry == kListHole) continue;
    const int64_t apart = std::abs(static_cast<int64_t>(value) - *entry);
    if (apart < distance) {
      distance = apart;
      nearest = *entry;
    }
  }
  return nearest;
}

void TrimListBelow(ValueList* list, int32_t bound) {
  for (int32_t* entry = list->value; *entry != kListEnd; ++entry) {
    if (*entry >= bound) {
      *entry = kListEnd;
      return;
    }
  }
}

float QuantiseTenths(float value, int32_t minimum, int32_t maximum) {
  const double tenths = static_cast<double>(value) * 10 + 0.5;
  int32_t whole = maximum;
  if (!(tenths >= minimum)) {
    whole = minimum;  // not-a-number too
  } else if (tenths < maximum) {
    whole = static_cast<int32_t>(tenths);
  }
  return static_cast<float>(whole) / 10;
}

double StarFactor(uint32_t selector) {
  switch (selector) {
    case 1:
      return std::numbers::sqrt3;
    case 2:
      return std::numbers::inv_sqrt3;
    default:
      return 1.0;
  }
}

float SignallingLimit(float frequency) {
  // Straight lines in log-log coordinates between the corner points, in percent.
  const auto line = [](double f, double f1, double limit1, double f2, double limit2) {
    const double slope =
        (std::log10(limit1) - std::log10(limit2)) / (std::log10(f1) - std::log10(f2));
    const double exponent = std::log10(limit1) + slope * (std::log10(f) - std::log10(f1));
    return static_cast<float>(std::pow(10.0, exponent) / 100);
  };
  if (frequency < 500) return 0.09f;
  if (frequency < 1000) return line(frequency, 500, 9, 1000, 5);
  if (frequency < 10000) return 0.05f;
  return line(frequency, 10000, 5, 100000, 1);
}

void ValidateSettings(InstrumentState* state, int32_t /*mode*/) {
  UifParams* s = &state->settings;
  const bool reduced = s->reduced_lists != 0;

  KeepWithin(&s->voltage_ratio_prim, 1, 400000, 1);
  KeepWithin(&s->voltage_ratio_sec, 1, 1000, 1);
  if (s->pv_probe_ratio < 1.0f) s->pv_probe_ratio = 1.0f;
  if (s->pv_probe_ratio > 3.0f) s->pv_probe_ratio = 3.0f;
  Snap(&s->trikot_star_factor_id, {1, 2, 0});
  CheckNominalVoltage(s);  // with the connection as it stands before its own check
  if (s->un_range != 0) s->un_range = 3;
  Snap(&s->connection, {1, 5, 2, 3, 4, 6, 7});
  Snap(&s->synchronization, {1, 2});
  Snap(&s->system_frequency, {50, 60, 55, 400});
  if (s->rvc_hyst > 0.5f || s->rvc_hyst < 0) s->rvc_hyst = 0.25f;
  if (s->rvc_threshold > 0.06f || s->rvc_threshold < 0) s->rvc_threshold = 0.03f;
  FixStateFields(state);
  SnapVoltageScale(state);  // the current scales have no effect on a recording and stay
  DropNonFinite(&s->swell);
  DropNonFinite(&s->dip);
  DropNonFinite(&s->interrupt);
  CheckHysteresis(&s->swell_hysteresis);
  CheckHysteresis(&s->dip_hysteresis);
  CheckHysteresis(&s->interrupt_hysteresis);
  state->fixed122908 = 0;
  if (s->meas_method > 2) s->meas_method = 0;
  s->memory_struct = 1;
  if (s->record_start_type > 1) s->record_start_type = 0;
  s->record_type = 1;
  CheckInterval(s);
  if (s->mode_selector != 2) s->mode_selector = 1;
  if (s->inc_active_events != 0) s->inc_active_events = 2;
  if (s->inc_active_alarms != 0) s->inc_active_alarms = 2;
  MakeFlag(&s->inc_active_signalling);
  MakeFlag(&s->inc_active_transients);
  if (kInstrumentVariant != kTransientsVariant) s->inc_active_transients = 0;
  MakeFlag(&s->inc_active_inrush);
  MakeFlag(&s->inc_active_rvc);
  if (s->inc_active_interval != 1) s->inc_active_interval = 0;
  MakeFlag(&s->manual_start);
  if (s->profile > 5) s->profile = 0;
  CheckCaptureTimes(&s->inrush.duration, &s->inrush.pretrigger, reduced);
  Snap(&s->inrush.slope, {1, 2, 3});
  s->inrush.level = QuantiseTenths(s->inrush.level, 1, 1500);
  Snap(&s->inrush.store_mode, {1, 2});
  CheckCaptureTimes(&s->events_wf_duration, &s->events_wf_pretrigger, reduced);
  Snap(&s->wave.trigger, {2, 3, 4, 5, 6, 8});
  CheckCaptureTimes(&s->wave.duration, &s->wave.pretrigger, reduced);
  Snap(&s->wave.slope, {1, 2, 3});
  s->wave.level = QuantiseTenths(s->wave.level, 1, s->wave.trigger == 5 ? 1100 : 1500);
  Snap(&s->wave.store_mode, {1, 2});
  Snap(&s->wave.interval, {10, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200});
  KeepWithin(&s->wave.record_limit, 200, 1500, 200);
  if (IsLineToLine(s->connection)) {
    Snap(&s->transients.trigger_type, {1, 3});
  } else {
    Snap(&s->transients.trigger_type, {1, 2, 3, 4});
  }
  Snap(&s->transients.trigger, {7, 5});
  // The transients' levels and times stay: the recording's own replace them.
  if (s->transients.select_n_gnd > 1) s->transients.select_n_gnd = 1;
  Snap(&s->transients.store_mode, {2, 3});
  Clamp(&s->transients.max_num, 200, 1500);
  for (SignallingChannel& signal : s->signal) {
    signal.f = QuantiseTenths(signal.f, s->system_frequency == 50 ? 700 : 800, 30000);
    signal.limit = SignallingLimit(signal.f);
  }
  Clamp(&s->signalling_duration, 1, 120);
  s->signalling_threshold = QuantiseTenths(s->signalling_threshold, 3, 100);
  if (s->checked_flag >= 2) s->checked_flag = 0;
  if (s->reduced_lists >= 2) s->reduced_lists = 0;
  KeepWithin(&s->emeter.constant, 100, 40000, 10000);
  if (s->emeter.mode > 1) s->emeter.mode = 0;
  KeepWithin(&s->emeter.meas_num, 1, 50, 5);
  KeepWithin(&s->emeter.pulses_num, 1, 100000, 1000);
  if (s->emeter.selected_q > 1) s->emeter.selected_q = 0;
  KeepWithin(&s->emeter.ct_prim, 1, 10000, 1);
  KeepWithin(&s->emeter.ct_sec, 1, 100, 1);
  KeepWithin(&s->emeter.vt_prim, 1, 10000, 1);
  KeepWithin(&s->emeter.vt_sec, 1, 100, 1);
}

}  // namespace quorvex
