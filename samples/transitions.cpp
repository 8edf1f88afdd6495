// Recordings of transitions: voltage events and alarms.
#include "records/record_types.h"
#include "sample.h"

namespace quorvex::samples {
namespace {

constexpr uint32_t kLongHead = 128;
enum EventType { kNormal, kDip, kSwell };

std::string OfPhase(const std::string& group, int phase) {
  return "STATISTIC/" + group + "/N[" + std::to_string(phase - 1) + "]";
}

struct EventCounts {
  int transitions = 0;
  int starts = 0, ends = 0;  // all on one phase here, so each is an event of its phase
};

struct Event {
  EventType type;
  const char* word;  // in the names of its counters
  int phase;
  double voltage;   // lowest or highest half-cycle
  double duration;  // s
};

// One end of an event: its start where `starts`, at the threshold that the voltage crosses.
RecordBytes EventTransition(const Event& event, bool starts, double threshold,
                            const EventCounts& counts) {
  RecordBytes record(*kVoltageEvents.record);
  record.ClearFloats();
  record.Set("PHASE_NUMBER", event.phase);
  record.Set("RMS_12_AT_TRANSITION", threshold + (starts == (event.type == kDip) ? -4.6 : 2.3));
  record.Set("TRANSITION_FROM_EVENT_TYPE_ID", starts ? kNormal : event.type);
  record.Set("TRANSITION_TO_EVENT_TYPE_ID", starts ? event.type : kNormal);
  const std::string word = event.word;
  record.Set("STATISTIC/TOTAL_TRANSITION_COUNT", counts.transitions);
  record.Set("STATISTIC/TOTAL_PHASE_START_COUNT", counts.starts);
  record.Set("STATISTIC/TOTAL_PHASE_END_COUNT", counts.ends);
  record.Set("STATISTIC/TOTAL_PHASE_" + word + "_START_COUNT", 1);
  record.Set("STATISTIC/TOTAL_PHASE_" + word + "_END_COUNT", starts ? 0 : 1);
  record.Set(OfPhase("TOTAL_PHASE_START_COUNTS", event.phase), 1);
  record.Set(OfPhase("PHASE_" + word + "_START_COUNTS", event.phase), 1);
  record.Set(OfPhase("TOTAL_PHASE_END_COUNTS", event.phase), starts ? 0 : 1);
  record.Set(OfPhase("PHASE_" + word + "_END_COUNTS", event.phase), starts ? 0 : 1);
  if (starts) return record;
  if (event.type == kDip) {
    record.Set("DATA/DIP/MIN_VALUE", event.voltage);
    record.Set("DATA/DIP/DEPTH", kNominalVoltage - event.voltage);
  } else {
    record.Set("DATA/SWELL/MAX_VALUE", event.voltage);
  }
  return record;
}

}  // namespace

// A short circuit nearby pulls phase 1 down for twelve cycles; later a load drops off and phase 2
// swells for half a second.
void MakeVoltageEvents(const std::string& folder) {
  const Event events[] = {
      {kDip, "DIP", 1, 148.2, 0.24},
      {kSwell, "SWELL", 2, 261.9, 0.5},
  };
  constexpr double kDipAt = 0.9 * kNominalVoltage;
  constexpr double kSwellAt = 1.1 * kNominalVoltage;

  const UifParams settings = NetworkSettings();
  RecordingFile file(8, &settings, kLongHead);
  RecordBytes information(*kVoltageEvents.information);
  information.Set("CONNECTION", settings.connection).Set("NOMINAL_VOLTAGE", kNominalVoltage);
  information.Set("DIP_TRESHOLD", kDipAt).Set("SWELL_TRESHOLD", kSwellAt);
  information.Set("INTTERUPT_TRESHOLD", 0.05 * kNominalVoltage);
  file.Append(information);

  EventCounts counts;
  Clock clock = ClockAt(4, 10, 0, 7.31);
  for (const Event& event : events) {
    const double threshold = event.type == kDip ? kDipAt : kSwellAt;
    for (const bool starts : {true, false}) {
      ++counts.transitions;
      ++(starts ? counts.starts : counts.ends);
      file.Append(
          EventTransition(event, starts, threshold, counts).SetTime("TIME_STAMP", clock.now));
      clock.Advance(starts ? event.duration : 1800);
    }
  }
  file.Write(folder, "R0008EVE.REC");
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
  Clock clock = ClockAt(4, 13, 20, 0.2);
  for (const auto& alarm : alarms) {
    for (const bool starts : {true, false}) {
      RecordBytes record(*kAlarms.record);
      record.Set("STATISTIC/TRANSITION_SERIAL_NUMBER", ++serial);
      record.Set(OfPhase("GROUP_" + std::string(alarm.word) + "_START_SERIAL_NUMBERS", 1), 1);
      record.Set(OfPhase("GROUP_ALL_START_SERIAL_NUMBERS", 1), (serial + 1) / 2);
      record.Set(OfPhase("GROUP_ALL_END_SERIAL_NUMBERS", 1), serial / 2);
      if (!starts) {
        record.Set(OfPhase("GROUP_" + std::string(alarm.word) + "_END_SERIAL_NUMBERS", 1), 1);
      }
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
