// Recordings of what happens now and then: rapid voltage changes and operating sessions.
#include "events.h"

#include <cmath>

#include "records/record_types.h"

namespace quorvex::samples {

RecordBytes RapidVoltageChange(int phase, Clock clock) {
  constexpr int kHalfCycles = 200;
  constexpr int kStart = 60;
  constexpr int kSettled = 160;
  constexpr double kBefore = 231.4;
  constexpr double kAfter = 229.2;
  constexpr double kSag = 9.5;

  RecordBytes record(*kRapidVoltageChanges.record);
  record.Set("PHASE", phase).Set("SS1", kBefore).Set("SS2", kAfter);
  record.Set("DU_MAX", 100 * kSag / kNominalVoltage);
  record.Set("DU_SS", 100 * (kBefore - kAfter) / kNominalVoltage);
  record.Set("DURATION", (kSettled - kStart) * 0.01);
  for (int i = 0; i < kHalfCycles; ++i) {
    double volts = i < kStart ? kBefore : kAfter;
    if (i >= kStart && i < kSettled) volts = kBefore - kSag * std::exp((kStart - i) / 30.0);
    const std::string at = "RMS12_VALUES/RMS12[" + std::to_string(i) + "]/";
    record.Set(at + "U", volts + 0.05 * std::sin(i * 0.7)).SetTime(at + "TIME_STAMP", clock.now);
    if (i == kStart) record.SetTime("RVC_START_TIME", clock.now);
    if (i == kSettled) record.SetTime("RVC_STOP_TIME", clock.now);
    clock.Advance(0.01);
  }
  return record;
}

void MakeRapidVoltageChanges(const std::string& folder) {
  const UifParams settings = NetworkSettings();
  RecordingFile file(10, &settings);
  for (int change = 0; change < 2; ++change) {
    file.Append(RapidVoltageChange(1 + change, ClockAt(4, 9, 30 + 15 * change, 12.5)));
  }
  file.Write(folder, "R0010RVC.REC");
}

void MakeSessions(const std::string& folder) {
  struct {
    DateTimeRecord start, end;
    int32_t id, elements;
  } header{};
  RecordingFile file(15, nullptr);
  for (int32_t id = 1; id <= 2; ++id) {
    header.start = ClockAt(4, 7 + id, 55, 3.25).now;
    header.end = ClockAt(4, 7 + id, 59, 40).now;
    header.id = id;
    header.elements = 2 + id;
    file.Append(&header, sizeof header);
    for (int32_t i = 0; i < header.elements; ++i) {
      const int32_t element[4] = {1, i, i + 1, i};
      file.Append(element, sizeof element);
    }
  }
  file.Write(folder, "R0015SES.REC");
}

}  // namespace quorvex::samples
