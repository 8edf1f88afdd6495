// A reading list, the capture of a voltage dip, a series of waveform records.
#include <cmath>

#include "network.h"
#include "records/channels.h"
#include "records/record_types.h"
#include "sample.h"

namespace quorvex::samples {
namespace {

// A phase's voltage breaks in for four cycles and brings the current up meanwhile.
constexpr double kDipStart = 0.06;
constexpr double kDipEnd = 0.14;
constexpr double kDipDepth = 0.4;

double DipFactor(int channel, double time) {
  const bool in_dip = channel == 0 && time >= kDipStart && time < kDipEnd;
  return in_dip ? 1 - kDipDepth : 1;
}

}  // namespace

// Readings of the four channels in turn, a second each, the last round without a neutral clamp.
void MakeChannelReadings(const std::string& folder) {
  const UifParams settings = WaveformSettings(3);
  float scales[2 * kMeasuredChannels];
  SampleScales(settings, NeutralRange::kOwn, scales);
  constexpr int kRounds = 6;
  for (const uint32_t type : {3u, 14u}) {
    RecordingFile file(type, &settings);
    Clock clock = ClockAt(4, 13, 0, 1);
    for (int round = 0; round < kRounds; ++round) {
      const Network network = LoadedNetwork(40 + round);
      for (int channel = 0; channel < kMeasuredChannels; ++channel) {
        const Channel& c = network.channel[channel];
        const bool missing = channel == kNeutral && round == kRounds - 1;
        const float* pair = scales + 2 * channel;
        RecordBytes reading(*kChannelReadings.record);
        reading.SetTime("timeEnd", clock.now).Set("type", channel + 1);
        reading.Set("U", c.u.Rms() / static_cast<double>(pair[0]));
        reading.Set("I", missing ? -1e37 : c.i.Rms() / static_cast<double>(pair[1]));
        file.Append(reading);
      }
      clock.Advance(1);
    }
    file.Write(folder, type == 3 ? "R0003RDG.REC" : "R0014RDG.REC");
  }
}

void MakeWaveformCapture(const std::string& folder) {
  constexpr int kSamples = 2000;
  constexpr double kSampleStep = 1e-4;
  // A scale of 1000 in thousandths: samples are volts and amperes.
  UifParams settings = NetworkSettings();
  settings.transients.num = kSamples;
  const Network network = LoadedNetwork(42);
  RecordingFile file(5, &settings);
  for (const bool current : {false, true}) {
    for (int channel = 0; channel < kMeasuredChannels; ++channel) {
      const Channel& c = network.channel[channel];
      for (int i = 0; i < kSamples; ++i) {
        const double time = i * kSampleStep;
        const double factor = DipFactor(channel, time);
        const auto sample =
            static_cast<float>(current ? c.i.At(time) / std::sqrt(factor) : c.u.At(time) * factor);
        file.Append(&sample, sizeof sample);
      }
    }
  }
  file.Write(folder, "R0005WAV.REC");
}

void MakeWaveformSeries(const std::string& folder) {
  constexpr int kRoom = 1500;
  constexpr int kUsed = 1000;
  constexpr double kSampleStep = 2e-4;
  const UifParams settings = WaveformSettings(7);
  float scales[2 * kMeasuredChannels];
  SampleScales(settings, NeutralRange::kOwn, scales);
  constexpr const char* kLabels[] = {"L12", "L23", "L31", "INV"};
  RecordingFile file(17, &settings);
  for (int number = 0; number < 2; ++number) {
    const Network network = LoadedNetwork(25 + 10 * number);
    RecordBytes start(*kWaveformSeries.record);
    start.SetTime("timeStart", ClockAt(4, 14, 10 * number, 0).now).Set("timeStep", kSampleStep);
    start.Set("numUsedSamples", kUsed);
    file.Append(start);
    for (const bool current : {false, true}) {
      for (const char* label : kLabels) {
        const int channel = ChannelOf(label);
        const Channel c = ChannelOfNetwork(network, label);
        for (int i = 0; i < kRoom; ++i) {
          const double value = (current ? c.i : c.u).At(i * kSampleStep);
          const float scale = scales[2 * channel + (current ? 1 : 0)];
          const auto sample = static_cast<int16_t>(i < kUsed ? RawSample(value, scale) : 0);
          file.Append(&sample, sizeof sample);
        }
      }
    }
  }
  file.Write(folder, "R0017WSR.REC");
}

}  // namespace quorvex::samples
