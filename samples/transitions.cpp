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

struct Event {
  EventType type;
  const char* word;  // in the names of its counters
  int phase;
  double voltage;   // lowest or highest half-cycle
  double duration;  // s
};

// Makes the record of the transition before into that of an event's start or end, at the threshold
// which the voltage crosses. The counts run on.
void SetTransition(const Event& event, bool starts, double threshold, RecordBytes* record) {
  const std::string way = starts ? "START" : "END";
  const std::string word = event.word;
  record->ClearFloats();
  record->Set("PHASE_NUMBER", event.phase);
  record->Set("RMS_12_AT_TRANSITION", threshold + (starts == (event.type == kDip) ? -4.6 : 2.3));
  record->Set("TRANSITION_FROM_EVENT_TYPE_ID", starts ? kNormal : event.type);
  record->Set("TRANSITION_TO_EVENT_TYPE_ID", starts ? event.type : kNormal);
  // Each kind of event happens once, on a phase of its own.
  record->Set("STATISTIC/TOTAL_PHASE_" + word + "_" + way + "_COUNT", 1);
  record->Set(OfPhase("TOTAL_PHASE_" + way + "_COUNTS", event.phase), 1);
  record->Set(OfPhase("PHASE_" + word + "_" + way + "_COUNTS", event.phase), 1);
  if (starts) return;
  if (event.type == kDip) {
    record->Set("DATA/DIP/MIN_VALUE", event.voltage);
    record->Set("DATA/DIP/DEPTH", kNominalVoltage - event.voltage);
  } else {
    record->Set("DATA/SWELL/MAX_VALUE", event.voltage);
  }
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

  int transitions = 0;
  RecordBytes record(*kVoltageEvents.record);
  Clock clock = ClockAt(4, 10, 0, 7.31);
  for (const Event& event : events) {
    const double threshold = event.type == kDip ? kDipAt : kSwellAt;
    for (const bool starts : {true, false}) {
      SetTransition(event, starts, threshold, &record);
      record.Set("STATISTIC/TOTAL_TRANSITION_COUNT", ++transitions);
      record.Set("STATISTIC/TOTAL_PHASE_START_COUNT", (transitions + 1) / 2);
      record.Set("STATISTIC/TOTAL_PHASE_END_COUNT", transitions / 2);
      file.Append(record.SetTime("TIME_STAMP", clock.now));
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
