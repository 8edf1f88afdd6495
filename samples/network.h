<<<<<<< HEAD
// A low-voltage feeder over a day: what its periodic recordings show.
#pragma once

#include <cstdint>
#include <vector>

namespace quorvex::samples {

constexpr int kPhases = 3;
constexpr int kHighestOrder = 50;

// One phase at one moment. Powers follow from voltage, current and phase angle, so they agree.
struct Phase {
  double volts, amps;
  double p, q, s;  // W, var, VA
  double power_factor, tangent;
  double volts_thd, amps_thd;  // in percent of the fundamental
};

struct Network {
  Phase phase[kPhases];
  double frequency;
  double pst;  // flicker
};

// The feeder at an hour of the day, 0 to 24: mornings and evenings are busy.
Network NetworkAt(double hour);

// Order `order` of the voltage or the current, in percent of the fundamental.
double VoltageOrder(int order);
double CurrentOrder(int order);

// Orders 0 to `highest`, each in `floats` places: the maximum first, then values that lie lower.
std::vector<double> Spectrum(double (*order_percent)(int), double scale, int floats,
                             int highest = kHighestOrder);
=======
// A network to take samples from: voltages and currents by harmonic order, and the powers that
// follow from them.
#pragma once

#include <complex>
#include <string>

#include "sample.h"

namespace quorvex::samples {

using Phasor = std::complex<double>;
Phasor Polar(double rms, double degrees);
double Degrees(Phasor phasor);

constexpr int kOrders = 51;

// A periodic quantity by its RMS phasors of orders 0 (the steady part) to 50.
struct Wave {
  Phasor order[kOrders] = {};

  double At(double time) const;
  double Rms() const;
  double DistortionRms() const;  // of the orders above the fundamental
  double Peak() const;
};
Wave operator-(const Wave& a, const Wave& b);

struct Channel {
  Wave u, i;
};

// Four-wire network of 230 V under a load with some distortion: phases 1 to 3, the neutral; and
// what an inverter takes in to feed that load.
struct Network {
  Channel channel[4];
  Channel inverter;
};
constexpr double kInverterEfficiency = 0.97;
Network LoadedNetwork(double amperes);

// Channel names as documents have them; pairs of phases are the difference of two voltages.
Channel ChannelOfNetwork(const Network& network, const std::string& label);

// Powers of a channel after IEEE 1459.
struct Powers {
  double p, q, s;
  double p1, q1, s1;  // of the fundamental
  double di, dv, sh;  // distortion by current, by voltage, by both
  explicit Powers(const Channel& channel);
};

// Settings under which raw 16-bit samples hold 1000 V and 250 A at the most.
UifParams WaveformSettings(uint8_t connection);
int RawSample(double value, float scale);
>>>>>>> mainref

}  // namespace quorvex::samples
