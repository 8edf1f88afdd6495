// A card of one week, from Monday 4 March 2024 00:00 to Monday 11 March 00:00 on the instrument's
// clock: a four-wire feeder of 230 V and 50 Hz that is well within the usual limits, except for
// what follows. Records count from 1, 1008 of 600 s.
//
// R0001GEN.REC, general records of the full layout:
//   - eight records are touched by events: 200, 377 and 709 by a dip each (the mean is normal, the
//     minimum is the dip's), 883 to 887 by the interruption (884 to 886 wholly: 2.3 V, no current,
//     most values missing; 883 and 887 for six and four of their ten minutes). 240 of the 60480
//     frequencies are missing with it. Of the other 1000:
//   - u2 is 204.7 V in 60: 18:00 to 19:40 from Monday to Saturday, records 144 d + 109 to + 118
//     with d from 0 to 5.
//   - order 5 of u1 is 6.6 % in 100: 10:00 to 13:20 from Monday to Friday, records 144 d + 61 to
//     + 80 with d from 0 to 4. Both are elsewhere as FeederAt() and VoltageOrder() have them.
// R0002VQ.REC: voltage quality over the same intervals, with the same distortion and flicker.
// R0003EVE.REC: 14 transitions of four events:
//   - 5 March 09:17:32.120: phase 1 to 161 V (70 %) for 0.120 s
//   - 6 March 14:42:05.400: phase 2 to 115 V (50 %) for 0.350 s, and from .450 phase 3 to 138 V
//     (60 %) for 0.380 s: 0.430 s together
//   - 8 March 22:08:10: phase 3 to 23 V (10 %) for 3 s
//   - 10 March 03:04:00 to 03:44:00: all phases to 2.3 V (1 %)
// R0004RVC.REC: a rapid voltage change of 4.1 % on each phase: on 5 March 11:20:13.1 on phase 1, on
// 7 March 06:45:13.1 on phase 2, on 9 March 16:05:13.1 on phase 3.
// R0005SNP.REC: snapshots on 4 March 10:20:05, 6 March 12:00:05, 8 March 07:30:05 and
// 10 March 15:45:05.
// R0006INR.REC, R0007ALA.REC, R0008EME.REC and R0009SIG.REC: three inrush currents, three alarms, a
// meter test and a telegram, all on 4 March.
#include <algorithm>
#include <cmath>

#include "events.h"
#include "periodic.h"
#include "records/record_types.h"

namespace quorvex::samples {
namespace {

constexpr int kDays = 7;
constexpr int kFirstDay = 4;
constexpr int kDaySeconds = 24 * 3600;
constexpr int kFifth = 5;
constexpr double kFifthPercent = 6.6;
constexpr double kSaggingVolts = 204.7;
constexpr double kOutageVolts = 2.3;
// Seconds of the week.
constexpr int kOutageStart = 6 * kDaySeconds + 3 * 3600 + 4 * 60;
constexpr int kOutageEnd = kOutageStart + 40 * 60;

struct WeekTransition {
  int day, hour, minute;
  bool starts;
  double seconds;
  VoltageEvent event;
};
constexpr WeekTransition kTransitions[] = {
    {5, 9, 17, true, 32.120, {kDip, 1, 161}},
    {5, 9, 17, false, 32.240, {kDip, 1, 161}},
    {6, 14, 42, true, 5.400, {kDip, 2, 115}},
    {6, 14, 42, true, 5.450, {kDip, 3, 138}},
    {6, 14, 42, false, 5.750, {kDip, 2, 115}},
    {6, 14, 42, false, 5.830, {kDip, 3, 138}},
    {8, 22, 8, true, 10, {kDip, 3, 23}},
    {8, 22, 8, false, 13, {kDip, 3, 23}},
    {10, 3, 4, true, 0, {kInterrupt, 1, kOutageVolts}},
    {10, 3, 4, true, 0.003, {kInterrupt, 3, kOutageVolts}},
    {10, 3, 4, true, 0.006, {kInterrupt, 2, kOutageVolts}},
    {10, 3, 43, false, 59.994, {kInterrupt, 2, kOutageVolts}},
    {10, 3, 43, false, 59.997, {kInterrupt, 1, kOutageVolts}},
    {10, 3, 44, false, 0, {kInterrupt, 3, kOutageVolts}},
};

// Whether interval `i` of the week lies on one of its first `days` days between two hours.
bool IsWithin(int i, int days, double from, double to) {
  const int first = static_cast<int>(std::lround(from / kHoursPerRecord));
  const int end = static_cast<int>(std::lround(to / kHoursPerRecord));
  const int in_day = i % kRecordsPerDay;
  return i / kRecordsPerDay < days && in_day >= first && in_day < end;
}

// While a workshop's drives run on phase 1, their fifth order is above its limit.
bool DrivesRun(int i) { return IsWithin(i, 5, 10, 13 + 1 / 3.0); }
// In the evenings phase 2 has more load than its line carries.
bool Sags(int i) { return IsWithin(i, 6, 18, 19 + 2 / 3.0); }

// The part of a span of time, in seconds of the week, that is outside the interruption.
double PoweredPart(int from, int seconds) {
  const int off = std::min(from + seconds, kOutageEnd) - std::max(from, kOutageStart);
  return 1 - static_cast<double>(std::max(0, off)) / seconds;
}

double HourOf(int i) { return i % kRecordsPerDay * kHoursPerRecord; }

void ScalePowers(Phase* phase, double factor) {
  phase->p *= factor;
  phase->q *= factor;
  phase->s *= factor;
}

Feeder FeederIn(int i, double powered) {
  Feeder network = FeederAt(HourOf(i));
  if (Sags(i)) {
    Phase& second = network.phase[1];
    ScalePowers(&second, kSaggingVolts / second.volts);
    second.volts = kSaggingVolts;
  }
  if (DrivesRun(i)) {
    double& thd = network.phase[0].volts_thd;
    const double usual = VoltageOrder(kFifth);
    thd = std::sqrt(thd * thd - usual * usual + kFifthPercent * kFifthPercent);
  }
  if (powered == 1) return network;
  for (Phase& phase : network.phase) {
    phase.volts =
        std::hypot(std::sqrt(powered) * phase.volts, std::sqrt(1 - powered) * kOutageVolts);
    phase.amps *= std::sqrt(powered);
    ScalePowers(&phase, powered);
  }
  return network;
}

// Without voltage there is nothing to take frequency, distortion or flicker from.
RecordBytes DeadRecord(const Clock& clock) {
  RecordBytes record(*kGeneral.choice->layouts[0]);
  record.ClearFloats();
  for (int i = 0; i < kPhases; ++i) {
    const std::string phase = Numbered("VOLTAGES/U[u", i) + "]/rms";
    const std::string line = std::string("VOLTAGES/U[u") + kLines[i] + "]/rms";
    Statistic(&record, phase, kOutageVolts, kMinMaxRms, 0);
    Statistic(&record, line, kOutageVolts * kRoot3, kMinMaxRms, 0);
    Statistic(&record, Numbered("CURRENTS/I[i", i) + "]/rms", 0, kMinMaxRmsA);
    const std::string powers = Numbered("PHASE_POWERS/P[p", i) + "]/";
    for (const char* power : {"COMBINED/Pp", "COMBINED/Qip", "COMBINED/S"}) {
      Statistic(&record, powers + power, 0, kSix);
    }
    record.Set(powers + "ENERGY/EPp", 0).Set(powers + "ENERGY/EQp", 0);
  }
  for (const char* power : {"Pp", "Qip", "Se"}) {
    Statistic(&record, std::string("pt/COMBINED/") + power, 0, kSix);
  }
  record.Set("pt/ENERGY/EPp", 0).Set("pt/ENERGY/EQp", 0);
  StartFrequencies(&record, clock);
  return record;
}

// What an interruption leaves of an interval that is not wholly its own.
void SetOutage(RecordBytes* record, int start, double powered, double frequency) {
  for (int i = 0; i < kPhases; ++i) {
    record->Set(Numbered("VOLTAGES/U[u", i) + "]/rms/min", kOutageVolts);
    record->Set(std::string("VOLTAGES/U[u") + kLines[i] + "]/rms/min", kOutageVolts * kRoot3);
    record->Set(Numbered("CURRENTS/I[i", i) + "]/rms/min", 0);
  }
  record->Set("zero_crossings/ZCnum", std::round(frequency * kInterval * powered));
  for (int i = 0; i < kFrequenciesPerRecord; ++i) {
    if (PoweredPart(start + i * 10, 10) == 0) record->Set(FrequencyPath(i), kNoValue);
  }
}

// The dips in interval `i` are what its minima show, and those of the lines between phases.
void SetDips(RecordBytes* record, int i, const Feeder& network) {
  double lowest[kPhases];
  for (int p = 0; p < kPhases; ++p) lowest[p] = 0.98 * network.phase[p].volts;
  for (const WeekTransition& t : kTransitions) {
    const int at = (t.day - kFirstDay) * kRecordsPerDay + t.hour * 6 + t.minute / 10;
    if (at != i || t.event.type != kDip) continue;
    lowest[t.event.phase - 1] = t.event.voltage;
    record->Set(Numbered("VOLTAGES/U[u", t.event.phase - 1) + "]/rms/min", t.event.voltage);
    for (int line = 0; line < kPhases; ++line) {
      const double a = lowest[line], b = lowest[(line + 1) % kPhases];
      const double between =
          std::sqrt(a * a + b * b + a * b);  // phases are a third of a turn apart
      record->Set(std::string("VOLTAGES/U[u") + kLines[line] + "]/rms/min", between);
    }
  }
}

// In both floats of the order, as Spectrum() has them: the first is the higher one.
void SetFifthOrder(RecordBytes* record, double volts) {
  const struct {
    const char* path;
    double value;
  } arrays[] = {{"HARMONICS_U/HARM_U[u1hPr]", kFifthPercent},
                {"HARMONICS_U/HARM_U[u1h]", kFifthPercent * volts / 100}};
  for (const auto& array : arrays) {
    record->SetFloat(array.path, 2 * kFifth, array.value);
    record->SetFloat(array.path, 2 * kFifth + 1, array.value * 0.96);
  }
}

RecordBytes GeneralRecord(int i, const Clock& clock, double powered, const Feeder& network) {
  if (powered == 0) return DeadRecord(clock);
  RecordBytes record = FullRecord(network, clock, HourOf(i));
  if (DrivesRun(i)) SetFifthOrder(&record, network.phase[0].volts);
  SetDips(&record, i, network);
  if (powered < 1) SetOutage(&record, i * kInterval, powered, network.frequency);
  return record;
}

void WritePeriodic(const std::string& folder, const UifParams& settings) {
  RecordingFile general(1, &settings);
  RecordingFile quality(16, &settings);
  Clock clock = ClockAt(kFirstDay, 0, 0, 0);
  for (int i = 0; i < kDays * kRecordsPerDay; ++i) {
    const double powered = PoweredPart(i * kInterval, kInterval);
    const Feeder network = FeederIn(i, powered);
    RecordBytes record = GeneralRecord(i, clock, powered, network);
    SetTimes(&record, clock);
    general.Append(record);

    RecordBytes of_quality = QualityRecord(settings, network);
    if (DrivesRun(i)) {
      const double volts = kFifthPercent * network.phase[0].volts / 100;
      of_quality.SetFloat("HARMONICS_U/HARM_U[u1h]", kFifth, volts);
    }
    if (powered == 0) of_quality.ClearFloats();
    clock.Advance(kInterval);
    quality.Append(of_quality.SetTime("LAST_TIME", clock.now));
  }
  general.Write(folder, "R0001GEN.REC");
  quality.Write(folder, "R0002VQ.REC");
}

void WriteEvents(const std::string& folder, const UifParams& settings) {
  VoltageEvents events(settings);
  for (const WeekTransition& t : kTransitions) {
    events.Add(t.event, t.starts, ClockAt(t.day, t.hour, t.minute, t.seconds).now);
  }
  events.Write(folder, "R0003EVE.REC");

  RecordingFile changes(10, &settings);
  changes.Append(RapidVoltageChange(1, ClockAt(5, 11, 20, 12.5)));
  changes.Append(RapidVoltageChange(2, ClockAt(7, 6, 45, 12.5)));
  changes.Append(RapidVoltageChange(3, ClockAt(9, 16, 5, 12.5)));
  changes.Write(folder, "R0004RVC.REC");
}

void WriteSnapshots(const std::string& folder, const DateTimeRecord& end) {
  constexpr struct {
    int day, hour, minute;
    double amperes;
  } kTaken[] = {{4, 10, 20, 46}, {6, 12, 0, 38}, {8, 7, 30, 61}, {10, 15, 45, 34}};
  UifParams settings = WaveformSettings(3);
  settings.time_last_packet = end;
  RecordingFile file(2, &settings);
  for (const auto& taken : kTaken) {
    const double hours = (taken.day - kFirstDay) * 24 + taken.hour + taken.minute / 60.0;
    const Clock clock = ClockAt(taken.day, taken.hour, taken.minute, 5);
    AppendSnapshot(settings, LoadedNetwork(taken.amperes), clock, hours, &file);
  }
  file.Write(folder, "R0005SNP.REC");
}

}  // namespace

void MakeWeek(const std::string& folder) {
  UifParams settings = NetworkSettings();  // they start on 4 March
  settings.time_last_packet = ClockAt(kFirstDay + kDays, 0, 0, 0).now;
  WritePeriodic(folder, settings);
  WriteEvents(folder, settings);
  WriteSnapshots(folder, settings.time_last_packet);
  MakeInrush(folder, "R0006INR.REC");
  MakeAlarms(folder);
  MakeEnergyMeter(folder, "R0008EME.REC");
  MakeSignalling(folder);
}

}  // namespace quorvex::samples
