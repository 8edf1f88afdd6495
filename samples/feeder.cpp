#include "feeder.h"

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

std::vector<double> Spectrum(double (*order_percent)(int), double scale, int floats, int highest,
                             int lowest) {
  std::vector<double> values;
  for (int order = lowest; order <= highest; ++order) {
    for (int i = 0; i < floats; ++i) {
      values.push_back(order_percent(order) * scale * (1 - 0.04 * i));
    }
  }
  return values;
}

Feeder FeederAt(double hour) {
  constexpr double kPeakAmps = 140;
  constexpr double kShare[kPhases] = {1.0, 0.92, 1.07};
  constexpr double kDropPerAmp = 0.05;
  const double load = 0.2 + 0.45 * Hill(hour, 8, 2.5) + 0.6 * Hill(hour, 19, 3);
  Feeder network{};
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

}  // namespace quorvex::samples
