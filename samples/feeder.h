// A low-voltage feeder over a day: what its periodic recordings show.
#pragma once

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

struct Feeder {
  Phase phase[kPhases];
  double frequency;
  double pst;  // flicker
};

// The feeder at an hour of the day, 0 to 24: mornings and evenings are busy.
Feeder FeederAt(double hour);

// Order `order` of the voltage or the current, in percent of the fundamental.
double VoltageOrder(int order);
double CurrentOrder(int order);

// Orders `lowest` to `highest`, each in `floats` places: the maximum first, then values that lie
// lower.
std::vector<double> Spectrum(double (*order_percent)(int), double scale, int floats,
                             int highest = kHighestOrder, int lowest = 0);

}  // namespace quorvex::samples
