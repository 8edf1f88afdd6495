#include "network.h"

<<<<<<< HEAD
#include <cmath>

#include "sample.h"

namespace quorvex::samples {
namespace {

double Distortion(double (*order_percent)(int)) {
  double squares = 0;
  for (int order = 2; order <= kHighestOrder; ++order) {
    squares += order_percent(order) * order_percent(order);
  }
  return std::sqrt(squares);
}

// A hill of width `hours` around a time of the day.
double Hill(double hour, double top, double hours) {
  const double apart = (hour - top) / hours;
  return std::exp(-apart * apart);
}

// Odd orders fall off with the order; triplen ones are weaker in three phases, even ones weakest.
double OrderPercent(int order, double odd, double direct) {
  if (order == 0) return direct;
  if (order == 1) return 100;
  if (order % 2 == 0) return odd / 20 / order;
  return (order % 3 == 0 ? odd / 2 : odd) / order;
}

}  // namespace

double VoltageOrder(int order) { return OrderPercent(order, 8, 0.02); }
double CurrentOrder(int order) { return OrderPercent(order, 45, 0.3); }

std::vector<double> Spectrum(double (*order_percent)(int), double scale, int floats, int highest) {
  std::vector<double> values;
  for (int order = 0; order <= highest; ++order) {
    for (int i = 0; i < floats; ++i) {
      values.push_back(order_percent(order) * scale * (1 - 0.04 * i));
    }
  }
  return values;
}

Network NetworkAt(double hour) {
  constexpr double kPeakAmps = 140;
  constexpr double kShare[kPhases] = {1.0, 0.92, 1.07};
  constexpr double kDropPerAmp = 0.05;
  const double load = 0.2 + 0.45 * Hill(hour, 8, 2.5) + 0.6 * Hill(hour, 19, 3);
  Network network{};
  network.frequency = kFrequency + 0.015 * std::sin(hour * 1.9) + 0.008 * std::sin(hour * 7.3);
  network.pst = 0.25 + 0.3 * load;
  for (int i = 0; i < kPhases; ++i) {
    Phase& phase = network.phase[i];
    phase.amps = kPeakAmps * load * kShare[i];
    phase.volts = kNominalVoltage + 5 - kDropPerAmp * phase.amps + 0.3 * i;
    phase.volts_thd = Distortion(VoltageOrder) * (0.8 + 0.4 * load);
    phase.amps_thd = Distortion(CurrentOrder);
    phase.s = phase.volts * phase.amps;
    phase.power_factor = 0.9 + 0.06 * load;
    phase.p = phase.s * phase.power_factor;
    phase.q = std::sqrt(phase.s * phase.s - phase.p * phase.p);
    phase.tangent = phase.q / phase.p;
  }
  return network;
}

=======
#include <algorithm>
#include <cmath>

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

>>>>>>> mainref
}  // namespace quorvex::samples
