#include "assessment/gauge.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorvex {
namespace {

// The place of the value that a share of `count` values ends with. A share of 0.95 is a little less
// or more than that in binary, so what is a whole number but for that is one.
size_t PlaceOf(double share, size_t count) {
  const double exact = share * static_cast<double>(count);
  const auto place = static_cast<size_t>(std::max(1.0, std::ceil(exact - 1e-9 * exact)));
  return std::min(place, count) - 1;
}

}  // namespace

double Band::Reach(float value) const {
  const double away = static_cast<double>(value) - static_cast<double>(middle);
  const double room = static_cast<double>(away < 0 ? low : high) - static_cast<double>(middle);
  const double reach = away == 0 ? 0 : room == 0 ? HUGE_VAL : away / room;
  return Contains(value) ? std::min(reach, 1.0) : std::max(reach, std::nextafter(1.0, 2.0));
}

float Gauge::ValueAt(double needed, const Band& band) {
  std::vector<std::pair<double, float>> reaches;
  reaches.reserve(Values().size());
  for (const float value : Values()) reaches.emplace_back(band.Reach(value), value);
  const auto place = static_cast<std::ptrdiff_t>(PlaceOf(needed, reaches.size()));
  std::nth_element(reaches.begin(), reaches.begin() + place, reaches.end());
  return reaches[static_cast<size_t>(place)].second;
}

uint64_t Gauge::Within(const Band& band) {
  const std::vector<float>& values = Values();
  return static_cast<uint64_t>(
      std::count_if(values.begin(), values.end(), [&](float v) { return band.Contains(v); }));
}

float Quantile(std::vector<float> values, double share) {
  const auto place = static_cast<std::ptrdiff_t>(PlaceOf(share, values.size()));
  std::nth_element(values.begin(), values.begin() + place, values.end());
  return values[static_cast<size_t>(place)];
}

}  // namespace quorvex
