// Texts of numbers, written straight into an output buffer. Each function returns the end of the
// text that it wrote; nothing is terminated. No process locale has a say here.
#pragma once

#include <cstdint>

#include "texts/float_text.h"  // IWYU pragma: export

namespace quorvex {

// The longest text any function of this file writes.
constexpr uint32_t kLongestNumber = 32;

// "%lE", rounded and without a value as FloatText has it.
char* DoubleText(double value, char* to);

// "%d" and "%lld".
char* IntegerText(int64_t value, char* to);

// Seconds of a date-time, cut to whole microseconds and without trailing zeros, one decimal at
// least: 5.25, 12.0. "-" for kNoValueDouble. Seconds that no 32-bit integer holds are the nearest
// that one holds; NaN is 0.
char* SecondsText(double seconds, char* to);

}  // namespace quorvex
