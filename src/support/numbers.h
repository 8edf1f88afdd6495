// Conversions of numbers that are defined for every value.
#pragma once

#include <cstdint>

namespace quorvex {

// A float converted to an integer toward zero; what no 32-bit integer holds gives INT32_MIN.
inline int32_t TruncateToInt(double value) {
  const bool fits = value > -2147483649.0 && value < 2147483648.0;
  return fits ? static_cast<int32_t>(value) : INT32_MIN;
}

}  // namespace quorvex
