// The text of a float, inline: it is most of what a conversion does.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "layout/field.h"
#include "texts/float_table.h"

namespace quorvex {

// "000" to "999", a fourth byte for copying four at a time.
inline constexpr auto kThreeDigits = [] {
  std::array<std::array<char, 4>, 1000> texts{};
  for (int i = 0; i < 1000; ++i) {
    texts[i] = {static_cast<char>('0' + i / 100), static_cast<char>('0' + i / 10 % 10),
                static_cast<char>('0' + i % 10), '\0'};
  }
  return texts;
}();

constexpr int kLowestDecimalExponent = -45;
constexpr int kHighestDecimalExponent = 38;

// "E-45" to "E+38".
inline constexpr auto kExponentTexts = [] {
  std::array<std::array<char, 4>, kHighestDecimalExponent - kLowestDecimalExponent + 1> texts{};
  for (int e = kLowestDecimalExponent; e <= kHighestDecimalExponent; ++e) {
    const int size = e < 0 ? -e : e;
    texts[e - kLowestDecimalExponent] = {'E', e < 0 ? '-' : '+', static_cast<char>('0' + size / 10),
                                         static_cast<char>('0' + size % 10)};
  }
  return texts;
}();

inline char* NotFiniteText(bool infinite, char* to) {
  std::memcpy(to, infinite ? "INF" : "NAN", 3);
  return to + 3;
}

// "%E": seven significant digits, correctly rounded with ties to even. "-" for kNoValue; INF, -INF,
// NAN, -NAN. Returns the end of the text, which is not terminated, and may write up to 16 bytes.
//
// There are only 277 binary exponents, so the decimal digits are one multiplication away: the
// mantissa times a factor per exponent, prepared with 64 bits, gives the seven digits in the upper
// half of the product and what is left over in the lower.
inline char* FloatText(float value, char* to) {
  const auto bits = std::bit_cast<uint32_t>(value);
  if (bits == std::bit_cast<uint32_t>(kNoValue)) {
    *to = '-';
    return to + 1;
  }
  *to = '-';
  to += bits >> 31;
  uint32_t mantissa = bits & 0x7FFFFF;
  int exponent = static_cast<int>(bits >> 23 & 0xFF);
  if (exponent == 0xFF) return NotFiniteText(mantissa == 0, to);
  if (exponent != 0) {
    mantissa |= 0x800000;
    exponent -= 127;
  } else if (mantissa != 0) {
    const int shift = std::countl_zero(mantissa) - 8;
    mantissa <<= shift;
    exponent = -126 - shift;
  } else {
    std::memcpy(to, "0.000000E+00", 12);
    return to + 12;
  }

  const FloatDecade& decade = kFloatTable[exponent - kLowestBinaryExponent];
  const bool upper = mantissa >= decade.limit;
  const auto product = static_cast<unsigned __int128>(mantissa << 1) * decade.factor[upper ? 1 : 0];
  auto digits = static_cast<uint32_t>(product >> 64);
  const auto rest = static_cast<uint64_t>(product);
  // The factor is rounded up by less than one part in 2^64, the mantissa has 25 bits: what is
  // exactly one half shows less than 2^25 above it, and no other float comes that near.
  constexpr uint64_t kHalf = uint64_t{1} << 63;
  const bool tie = rest - kHalf < (uint64_t{1} << 25);
  digits += tie ? digits & 1 : static_cast<uint32_t>(rest >> 63);
  int decimal = decade.exponent + (upper ? 1 : 0);
  if (digits == 10000000) {
    digits = 1000000;
    ++decimal;
  }

  const uint32_t first = digits / 1000000;
  const uint32_t rest6 = digits - first * 1000000;
  to[0] = static_cast<char>('0' + first);
  to[1] = '.';
  std::memcpy(to + 2, kThreeDigits[rest6 / 1000].data(), 4);
  std::memcpy(to + 5, kThreeDigits[rest6 % 1000].data(), 4);
  std::memcpy(to + 8, kExponentTexts[decimal - kLowestDecimalExponent].data(), 4);
  return to + 12;
}

}  // namespace quorvex
