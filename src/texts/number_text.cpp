#include "texts/number_text.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

#include "support/exact_decimal.h"
#include "texts/float_text.h"

namespace quorvex {
namespace {

// A finite double as seven digits, the first not 0 but for zero, times 10^(exponent - 6).
struct SevenDigits {
  uint32_t digits;
  int exponent;
};

SevenDigits DigitsOf(double value) {
  const ExactDecimal decimal(value);
  const int exponent = decimal.Exponent();
  uint32_t digits = 0;
  for (int place = exponent; place >= exponent - 6; --place) {
    digits = digits * 10 + decimal.DigitAt(place);
  }
  return {digits + (decimal.RoundsUp(exponent - 6) ? 1 : 0), exponent};
}

// The same for magnitudes from 1e-12 to 9e15, below 2^53, where it takes one exact division: the
// value is mantissa / 2^shift, and either it or what it is divided by times a power of ten fits 128
// bits.
SevenDigits DigitsOfCommon(double magnitude) {
  const auto bits = std::bit_cast<uint64_t>(magnitude);
  const uint64_t mantissa = (bits & ((uint64_t{1} << 52) - 1)) | uint64_t{1} << 52;
  const int shift = 1075 - static_cast<int>(bits >> 52);
  static constexpr auto kPowers = [] {
    std::array<uint64_t, 20> powers{1};
    for (size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
    return powers;
  }();
  // log10(2) times the binary exponent is the decimal one, or one more than it.
  int exponent = (52 - shift) * 30103 / 100000 + 1;
  for (;; --exponent) {
    const int scale = 6 - exponent;
    unsigned __int128 whole = mantissa;
    unsigned __int128 rest = 0, divisor = static_cast<unsigned __int128>(1) << shift;
    if (scale >= 0) {
      whole *= kPowers[static_cast<size_t>(scale)];
      rest = whole & (divisor - 1);
      whole >>= shift;
    } else {
      // Of 64 bits, as the larger the value the smaller the shift.
      const uint64_t small = kPowers[static_cast<size_t>(-scale)] << shift;
      divisor = small;
      rest = mantissa % small;
      whole = mantissa / small;
    }
    if (whole < 1000000) continue;
    const bool up = rest * 2 > divisor || (rest * 2 == divisor && (whole & 1) != 0);
    return {static_cast<uint32_t>(whole) + (up ? 1 : 0), exponent};
  }
}

}  // namespace

char* DoubleText(double value, char* to) {
  if (value == kNoValueDouble) {
    *to = '-';
    return to + 1;
  }
  if (!std::isfinite(value)) {
    if (std::signbit(value)) *to++ = '-';
    return NotFiniteText(std::isinf(value), to);
  }
  const double magnitude = std::abs(value);
  const bool common = magnitude >= 1e-12 && magnitude < 9e15;
  auto [digits, exponent] = common           ? DigitsOfCommon(magnitude)
                            : magnitude == 0 ? SevenDigits{0, 0}
                                             : DigitsOf(value);
  if (digits == 10000000) {
    digits = 1000000;
    ++exponent;
  }
  if (std::signbit(value)) *to++ = '-';
  to[0] = static_cast<char>('0' + digits / 1000000);
  to[1] = '.';
  std::memcpy(to + 2, kThreeDigits[digits / 1000 % 1000].data(), 4);
  std::memcpy(to + 5, kThreeDigits[digits % 1000].data(), 4);
  to[8] = 'E';
  to[9] = exponent < 0 ? '-' : '+';
  const auto size = static_cast<size_t>(exponent < 0 ? -exponent : exponent);
  const size_t left_out = size < 100 ? 1 : 0;  // a third digit only where there is one
  std::memcpy(to + 10, kThreeDigits[size].data() + left_out, 3);
  return to + 13 - left_out;
}

char* IntegerText(int64_t value, char* to) {
  // Most integers of a recording are parts of date-times.
  if (value >= 0 && value < 10) {
    *to = static_cast<char>('0' + value);
    return to + 1;
  }
  if (value >= 0 && value < 100) {
    std::memcpy(to, kThreeDigits[static_cast<size_t>(value)].data() + 1, 2);
    return to + 2;
  }
  if (value >= 1000 && value < 10000) {
    *to = static_cast<char>('0' + value / 1000);
    std::memcpy(to + 1, kThreeDigits[static_cast<size_t>(value % 1000)].data(), 4);
    return to + 4;
  }
  return std::to_chars(to, to + kLongestNumber, value).ptr;
}

char* SecondsText(double seconds, char* to) {
  if (seconds == kNoValueDouble) {
    *to = '-';
    return to + 1;
  }
  if (std::isnan(seconds)) seconds = 0;
  if (seconds > INT32_MAX) seconds = INT32_MAX;
  if (seconds < INT32_MIN) seconds = INT32_MIN;
  const auto microseconds = static_cast<int64_t>(seconds * 1000000.0);
  to = IntegerText(microseconds / 1000000, to);
  *to++ = '.';
  auto rest = static_cast<int32_t>(microseconds % 1000000);
  if (rest < 0) {
    // "%06d" of a negative remainder has its sign inside the width.
    *to++ = '-';
    rest = -rest;
    if (rest >= 100000) *to++ = static_cast<char>('0' + rest / 100000);
    rest %= 100000;
    *to++ = static_cast<char>('0' + rest / 10000);
    *to++ = static_cast<char>('0' + rest / 1000 % 10);
  } else {
    std::memcpy(to, kThreeDigits[static_cast<size_t>(rest / 1000)].data(), 4);
    to += 3;
  }
  std::memcpy(to, kThreeDigits[static_cast<size_t>(rest % 1000)].data(), 4);
  to += 3;
  for (int removed = 0; removed < 5 && to[-1] == '0'; ++removed) --to;
  return to;
}

}  // namespace quorvex
