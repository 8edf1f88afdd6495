// Texts of numbers, written straight into an output buffer. Each function returns the end of the
// text that it wrote; nothing is terminated. No process locale has a say here.
#pragma once

#include <cstdint>

namespace quorvex {

// The longest text any function of this file writes.
constexpr uint32_t kLongestNumber = 32;

// A float that holds this has no value; its text is "-". Doubles hold it widened.
constexpr float kNoValue = -1e37f;
constexpr double kNoValueDouble = static_cast<double>(kNoValue);

// "%E": seven significant digits, correctly rounded with ties to even. "-" for kNoValue; INF, -INF,
// NAN, -NAN.
char* FloatText(float value, char* to);

// "%lE", likewise.
char* DoubleText(double value, char* to);

// "%d" and "%lld".
char* IntegerText(int64_t value, char* to);

// Seconds of a date-time, cut to whole microseconds and without trailing zeros, one decimal at
// least: 5.25, 12.0. "-" for kNoValueDouble. Seconds that no 32-bit integer holds are the nearest
// that one holds; NaN is 0.
char* SecondsText(double seconds, char* to);

// A float converted to an integer toward zero; what no 32-bit integer holds gives INT32_MIN.
int32_t TruncateToInt(double value);

}  // namespace quorvex
