// Recordings of transitions: voltage events and alarms.
#include "events.h"
#include "records/record_types.h"

namespace quorvex::samples {
namespace {

constexpr uint32_t kLongHead = 128;
std::string OfPhase(const std::string& group, int phase) {
  return "STATISTIC/" + group + "/N[" + std::to_string(phase - 1) + "]";
}

// In the names of counters and extremes.
const char* const kEventWords[kEventTypes] = {"", "DIP", "SWELL", "INTERRUPT"};

constexpr double kDipAt = 0.9 * kNominalVoltage;
constexpr double kSwellAt = 1.1 * kNominalVoltage;
constexpr double kInterruptAt = 0.05 * kNominalVoltage;

// The voltage when it just left the normal range or came back to it.
double VoltageAtTransition(EventType type, bool starts) {
  if (type == kSwell) return kSwellAt + (starts ? 2.3 : -4.6);
  if (!starts) return kDipAt + 2.3;
  return (type == kDip ? kDipAt : kInterruptAt) - 4.6;
}

}  // namespace

VoltageEvents::VoltageEvents(const UifParams& settings)
    : file_(8, &settings, kLongHead), record_(*kVoltageEvents.record) {
  RecordBytes information(*kVoltageEvents.information);
  information.Set("CONNECTION", settings.connection).Set("NOMINAL_VOLTAGE", kNominalVoltage);
  information.Set("DIP_TRESHOLD", kDipAt).Set("SWELL_TRESHOLD", kSwellAt);
  file_.Append(information.Set("INTTERUPT_TRESHOLD", kInterruptAt));
}

void VoltageEvents::Add(const VoltageEvent& event, bool starts, const DateTimeRecord& time) {
  const std::string word = kEventWords[event.type];
  const std::string way = starts ? "START" : "END";
  auto& counts = counts_[starts];
  ++counts[event.type][event.phase - 1];
  int all = 0, of_type = 0, of_phase = 0;
  for (int type = kDip; type < kEventTypes; ++type) {
    for (int phase = 1; phase <= 3; ++phase) {
      const int count = counts[type][phase - 1];
      all += count;
      if (type == event.type) of_type += count;
      if (phase == event.phase) of_phase += count;
    }
  }
  record_.ClearFloats().SetTime("TIME_STAMP", time).Set("PHASE_NUMBER", event.phase);
  record_.Set("RMS_12_AT_TRANSITION", VoltageAtTransition(event.type, starts));
  record_.Set("TRANSITION_FROM_EVENT_TYPE_ID", starts ? kNormal : event.type);
  record_.Set("TRANSITION_TO_EVENT_TYPE_ID", starts ? event.type : kNormal);
  record_.Set("STATISTIC/TOTAL_TRANSITION_COUNT", ++transitions_);
  record_.Set("STATISTIC/TOTAL_PHASE_" + way + "_COUNT", all);
  record_.Set("STATISTIC/TOTAL_PHASE_" + word + "_" + way + "_COUNT", of_type);
  record_.Set(OfPhase("TOTAL_PHASE_" + way + "_COUNTS", event.phase), of_phase);
  record_.Set(OfPhase("PHASE_" + word + "_" + way + "_COUNTS", event.phase),
              counts[event.type][event.phase - 1]);
  if (!starts) {
    const std::string extreme = event.type == kSwell ? "/MAX_VALUE" : "/MIN_VALUE";
    record_.Set("DATA/" + word + extreme, event.voltage);
    if (event.type == kDip) record_.Set("DATA/DIP/DEPTH", kNominalVoltage - event.voltage);
  }
  file_.Append(record_);
}

void VoltageEvents::Write(const std::string& folder, const std::string& name) const {
  file_.Write(folder, name);
}

// A short circuit nearby pulls phase 1 down for twelve cycles; later a load drops off and phase 2
// swells for half a second.
void MakeVoltageEvents(const std::string& folder) {
  constexpr struct {
    VoltageEvent event;
    double duration;  // s
  } kHappenings[] = {{{kDip, 1, 148.2}, 0.24}, {{kSwell, 2, 261.9}, 0.5}};
  VoltageEvents recording(NetworkSettings());
  Clock clock = ClockAt(4, 10, 0, 7.31);
  for (const auto& happening : kHappenings) {
    recording.Add(happening.event, true, clock.now);
    clock.Advance(happening.duration);
    recording.Add(happening.event, false, clock.now);
    clock.Advance(1800);
  }
  recording.Write(folder, "R0008EVE.REC");
}

// Overvoltage, distortion and flicker in turn, each alarm with its start and its end.
void MakeAlarms(const std::string& folder) {
  enum State { kEnded, kStarted };
  const struct {
    int group;
    const char* word;  // in the name of its serial numbers
    AlarmSetting setting;
    double at_start, at_end;
    double duration;  // s
  } alarms[] = {
      {1, "UIF", {1, 0, 1, 1, 253.0f, 0.2f}, 254.3, 252.6, 12.4},
      {7, "HARMONICS", {40, 0, 2, 1, 8.0f, 10.0f}, 8.4, 7.9, 610},
      {5, "FLICKER", {31, 0, 3, 1, 1.0f, 0.0f}, 1.12, 0.94, 600},
  };

  UifParams settings = NetworkSettings();
  settings.alarms.num = 0;
  for (const auto& alarm : alarms) {
    settings.alarms.settings[settings.alarms.num++] = alarm.setting;
  }
  RecordingFile file(7, &settings, kLongHead);
  file.Append(&settings.alarms, sizeof settings.alarms);

  int serial = 0;
  RecordBytes record(*kAlarms.record);  // the serial numbers of all groups run on
  Clock clock = ClockAt(4, 13, 20, 0.2);
  for (const auto& alarm : alarms) {
    for (const bool starts : {true, false}) {
      const std::string way = starts ? "START" : "END";
      record.Set("STATISTIC/TRANSITION_SERIAL_NUMBER", ++serial);
      record.Set(OfPhase("GROUP_" + std::string(alarm.word) + "_" + way + "_SERIAL_NUMBERS", 1), 1);
      record.Set(OfPhase("GROUP_ALL_START_SERIAL_NUMBERS", 1), (serial + 1) / 2);
      record.Set(OfPhase("GROUP_ALL_END_SERIAL_NUMBERS", 1), serial / 2);
      const AlarmSetting& setting = alarm.setting;
      for (const std::string quantity : {"SETTING/QUANTITY/", "QUANTITY/"}) {
        record.Set(quantity + "ID", setting.id).Set(quantity + "PARAMETER", setting.parameter);
        record.Set(quantity + "PHASE_ID", setting.phase_id);
      }
      record.Set("SETTING/CONDITION_ID", setting.condition_id);
      record.Set("SETTING/QUANTITY_VALUE", setting.quantity_value);
      record.Set("SETTING/TRIGGER_DURATION", setting.trigger_duration);
      record.Set("STATE_ID", starts ? kStarted : kEnded).Set("ALARM_GROUP_ID", alarm.group);
      record.Set("QUANTITY_VALUE", starts ? alarm.at_start : alarm.at_end);
      file.Append(record.SetTime("TIME_STAMP", clock.now));
      clock.Advance(starts ? alarm.duration : 900);
    }
  }
  file.Write(folder, "R0007ALA.REC");
}

}  // namespace quorvex::samples
