// A network to take samples from: voltages and currents by harmonic order, and the powers that
// follow from them.
#pragma once

#include <complex>
#include <string>

#include "settings/settings_record.h"

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

}  // namespace quorvex::samples
