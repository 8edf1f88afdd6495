#include "network.h"

#include <algorithm>
#include <cmath>

#include "sample.h"

namespace quorvex::samples {

Phasor Polar(double rms, double degrees) { return std::polar(rms, degrees * kTwoPi / 360); }
double Degrees(Phasor phasor) { return std::arg(phasor) * 360 / kTwoPi; }

double Wave::At(double time) const {
  double value = order[0].real();
  for (int k = 1; k < kOrders; ++k) {
    if (order[k] == 0.0) continue;
    const double angle = k * kTwoPi * kFrequency * time + std::arg(order[k]);
    value += std::sqrt(2.0) * std::abs(order[k]) * std::sin(angle);
  }
  return value;
}

double Wave::Rms() const {
  return std::hypot(order[0].real(), std::abs(order[1]), DistortionRms());
}

double Wave::DistortionRms() const {
  double squares = 0;
  for (int k = 2; k < kOrders; ++k) squares += std::norm(order[k]);
  return std::sqrt(squares);
}

double Wave::Peak() const {
  double peak = 0;
  for (int i = 0; i < 400; ++i) peak = std::max(peak, std::abs(At(i * 5e-5)));
  return peak;
}

Wave operator-(const Wave& a, const Wave& b) {
  Wave difference;
  for (int k = 0; k < kOrders; ++k) difference.order[k] = a.order[k] - b.order[k];
  return difference;
}

Network LoadedNetwork(double amperes) {
  constexpr double kVolts[] = {kNominalVoltage, kNominalVoltage - 1.5, kNominalVoltage + 0.8};
  constexpr double kShare[] = {1.0, 0.92, 1.05};
  constexpr double kPhaseDegrees[] = {0, -120, 120};
  constexpr double kLag = 25;
  constexpr double kInverterVolts = 612;
  Network network;
  Wave& neutral = network.channel[3].i;
  for (int phase = 0; phase < 3; ++phase) {
    const double at = kPhaseDegrees[phase];
    const double rms = amperes * kShare[phase];
    Channel& channel = network.channel[phase];
    channel.u.order[1] = Polar(kVolts[phase], at);
    channel.i.order[1] = Polar(rms, at - kLag);
    channel.i.order[3] = Polar(rms * 0.06, 3 * (at - kLag));
    channel.i.order[5] = Polar(rms * 0.11, 5 * (at - kLag) + 180);
    channel.i.order[7] = Polar(rms * 0.05, 7 * (at - kLag));
    neutral = neutral - channel.i;
  }
  network.channel[3].u.order[1] = Polar(0.9, 40);
  double watts = 0;
  for (int phase = 0; phase < 3; ++phase) watts += Powers(network.channel[phase]).p;
  network.inverter.u.order[0] = kInverterVolts;
  network.inverter.u.order[2] = Polar(0.8, 0);
  network.inverter.i.order[0] = watts / kInverterEfficiency / kInverterVolts;
  network.inverter.i.order[2] = Polar(0.3, -60);
  return network;
}

Channel ChannelOfNetwork(const Network& network, const std::string& label) {
  const Channel* c = network.channel;
  if (label == "L12") return {c[0].u - c[1].u, c[0].i};
  if (label == "L23") return {c[1].u - c[2].u, c[1].i};
  if (label == "L31") return {c[2].u - c[0].u, c[2].i};
  if (label == "INV") return network.inverter;
  return label[0] == 'L' ? c[label[1] - '1'] : c[3];
}

Powers::Powers(const Channel& channel) {
  const Phasor fundamental = channel.u.order[1] * std::conj(channel.i.order[1]);
  p1 = fundamental.real();
  q1 = fundamental.imag();
  s1 = std::abs(fundamental);
  p = 0;
  for (int k = 0; k < kOrders; ++k)
    p += (channel.u.order[k] * std::conj(channel.i.order[k])).real();
  s = channel.u.Rms() * channel.i.Rms();
  q = std::sqrt(std::max(0.0, s * s - p * p));
  di = std::abs(channel.u.order[1]) * channel.i.DistortionRms();
  dv = channel.u.DistortionRms() * std::abs(channel.i.order[1]);
  sh = channel.u.DistortionRms() * channel.i.DistortionRms();
}

UifParams WaveformSettings(uint8_t connection) {
  UifParams s = NetworkSettings();
  s.connection = connection;
  for (ClampParams& clamp : s.clamp) clamp.a_na_v = 100;
  constexpr int kVoltageGains = 18;
  std::fill(s.ee_konst, s.ee_konst + kVoltageGains, 200.0f);
  return s;
}

int RawSample(double value, float scale) {
  return static_cast<int>(std::lround(value / static_cast<double>(scale)));
}

}  // namespace quorvex::samples
