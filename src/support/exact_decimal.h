// The decimal digits of a double, all of them. On integers alone: neither a rounding mode nor a
// C library, of which each has its own idea of the last digit, has a say in it.
#pragma once

#include <cstdint>

namespace quorvex {

class ExactDecimal {
 public:
  // The digits of the magnitude of a finite value.
  explicit ExactDecimal(double value);

  // Decimal exponent of the first digit that is not 0; 0 for zero.
  int Exponent() const;
  // The digit that stands for 10^place, 0 to 9.
  uint32_t DigitAt(int place) const;
  // Whether cutting behind the digit at `place` rounds it up: to nearest, a tie to the even digit.
  bool RoundsUp(int place) const;

 private:
  // Nine digits each, the highest first: 309 digits before the point, 1074 behind it.
  static constexpr int kWhole = 35;
  static constexpr int kLimbs = kWhole + 120;

  uint32_t LimbAt(int index) const;

  uint32_t limbs_[kLimbs];
  int first_, end_;  // the limbs in use; all others are 0
};

}  // namespace quorvex
