// Recordings that something starts: a meter test, a ripple-control telegram, transients and inrush.
#include <cmath>

#include "records/record_types.h"
#include "sample.h"

namespace quorvex::samples {

// Five runs of 1000 pulses at 10000 pulses a kilowatt-hour, under a steady three-phase load.
void MakeEnergyMeter(const std::string& folder, const std::string& name) {
  constexpr int kRuns = 5;
  constexpr double kPacketSeconds = 0.2;
  constexpr double kWattSeconds = 3600;
  constexpr double kCurrent = 9.8;
  constexpr double kPowerFactor = 0.94;

  const UifParams settings = NetworkSettings();
  const double counted = 1000.0 * settings.emeter.pulses_num / settings.emeter.constant;  // Wh
  RecordingFile file(18, &settings);
  Clock clock = ClockAt(4, 12, 0, 30);
  for (int run = 0; run < kRuns; ++run) {
    RecordBytes record(*kEnergyMeter.record);
    double total = 0;
    for (int phase = 1; phase <= 3; ++phase) {
      const std::string n = std::to_string(phase);
      const double volts = kNominalVoltage + 0.8 * phase - 0.1 * run;
      const double watts = volts * kCurrent * kPowerFactor;
      record.Set("U" + n, volts).Set("I" + n, kCurrent).Set("P" + n + "p", watts);
      total += watts;
    }
    record.Set("Un", 0.4).Set("In", 0.2).Set("PTp", total);
    record.Set("PFp", kPowerFactor).Set("PFm", kNoValue);
    const double error = 0.35 - 0.06 * run;  // percent that the meter counts too much
    const double active = counted / (1 + error / 100);
    const double seconds = active * kWattSeconds / total;
    record.Set("E_METER_ENERGY", counted).Set("MEAS_Ep", active).Set("error", error);
    record.Set("MEAS_Eq", active * std::tan(std::acos(kPowerFactor)));
    record.Set("PACKETS_NUM", std::floor(seconds / kPacketSeconds));
    record.SetTime("START_TIME", clock.now);
    clock.Advance(seconds);
    file.Append(record.SetTime("END_TIME", clock.now));
  }
  file.Write(folder, name);
}

// A telegram of ten half-second bits at 316.7 Hz and, weaker, its echo of a neighbouring network at
// 1060 Hz, seen on all voltages.
void MakeSignalling(const std::string& folder) {
  constexpr int kPackets = 50;
  constexpr int kPacketsABit = 5;
  constexpr double kStep = 0.2;
  constexpr bool kTelegram[] = {true, false, true, true, false, false, true, false, true, false};
  constexpr double kLevels[2] = {3.9, 0.7};

  const UifParams settings = NetworkSettings();
  RecordingFile file(9, &settings);
  struct {
    DateTimeRecord first_packet;
    float step;
    int32_t trigger;
    float threshold;
    int32_t duration, packets, reserved1, flag, reserved2;
  } head{};
  static_assert(sizeof head == 48);
  Clock clock = ClockAt(4, 22, 0, 0.4);
  head.first_packet = clock.now;
  head.step = static_cast<float>(kStep);
  head.trigger = 1;
  head.threshold = settings.signalling_threshold;
  head.duration = static_cast<int32_t>(settings.signalling_duration);
  head.packets = kPackets;
  file.Append(&head, sizeof head);
  for (int i = 0; i < kPackets; ++i) {
    clock.Advance(kStep);
    file.Append(&clock.now, sizeof clock.now);
  }
  for (int voltage = 0; voltage < 6; ++voltage) {
    const double factor = voltage < 3 ? 1 : std::sqrt(3.0);  // phases, then line to line
    for (const double level : kLevels) {
      for (int i = 0; i < kPackets; ++i) {
        const double noise = 0.04 + 0.01 * std::sin(i + voltage);
        const double volts = kTelegram[i / kPacketsABit] ? level + noise : noise;
        const auto value = static_cast<float>(factor * volts);
        file.Append(&value, sizeof value);
      }
    }
  }
  for (int32_t i = 0; i < kPackets; ++i) {
    const int32_t flag = 0;
    file.Append(&flag, sizeof flag);
  }
  file.Write(folder, "R0009SIG.REC");
}

// Three captures of switching transients, each with the time at which it triggered.
void MakeTransients(const std::string& folder) {
  UifParams settings = NetworkSettings();
  RecordingFile file(12, &settings);
  Clock clock = ClockAt(4, 11, 0, 0);
  for (int i = 1; i <= 3; ++i) {
    settings.transients.num = static_cast<uint32_t>(i);
    settings.transients.start_time = clock.now;
    clock.Advance(0.04);
    settings.transients.trig_time = clock.now;
    clock.Advance(0.16);
    settings.transients.end_time = clock.now;
    settings.transients.max_val = 512.0f + 60.0f * static_cast<float>(i);
    clock.Advance(2400);
    RecordBytes entry(*kTransients.record);
    entry.SetText("name", "R0012TRA_00" + std::to_string(i) + ".REC");
    file.Append(entry.bytes().data(), entry.bytes().size() - kSettingsSize);
    file.Append(&settings, sizeof settings);
  }
  file.Write(folder, "R0012TRA.REC");
}

// A pump motor of 22 A starts three times, with six to seven times its rated current.
void MakeInrush(const std::string& folder, const std::string& name) {
  constexpr double kRated = 22.0;
  const UifParams settings = NetworkSettings();
  RecordingFile file(13, &settings);
  Clock clock = ClockAt(4, 9, 30, 2.14);
  for (int start = 0; start < 3; ++start) {
    RecordBytes record(*kInrushCurrents.record);
    record.SetTime("START_TIME", clock.now).Set("CHANNEL", 1 + start);
    file.Append(record.Set("MAX_I", kRated * (6.2 + 0.3 * start)));
    clock.Advance(1260.5);
  }
  file.Write(folder, name);
}

}  // namespace quorvex::samples
