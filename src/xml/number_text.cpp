#include "xml/number_text.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

#include "xml/float_table.h"

namespace quorvex {
namespace {

// "000" to "999", a fourth byte for copying four at a time.
constexpr auto kThreeDigits = [] {
  std::array<std::array<char, 4>, 1000> texts{};
  for (int i = 0; i < 1000; ++i) {
    texts[i] = {static_cast<char>('0' + i / 100), static_cast<char>('0' + i / 10 % 10),
                static_cast<char>('0' + i % 10), '\0'};
  }
  return texts;
}();

constexpr int kLowestExponent = -45;
constexpr int kHighestExponent = 38;

// "E-45" to "E+38".
constexpr auto kExponentTexts = [] {
  std::array<std::array<char, 4>, kHighestExponent - kLowestExponent + 1> texts{};
  for (int e = kLowestExponent; e <= kHighestExponent; ++e) {
    const int size = e < 0 ? -e : e;
    texts[e - kLowestExponent] = {'E', e < 0 ? '-' : '+', static_cast<char>('0' + size / 10),
                                  static_cast<char>('0' + size % 10)};
  }
  return texts;
}();

char* Put(const char* text, char* to) {
  const size_t size = std::strlen(text);
  std::memcpy(to, text, size);
  return to + size;
}

char* NotFiniteText(bool infinite, bool negative, char* to) {
  if (negative) *to++ = '-';
  return Put(infinite ? "INF" : "NAN", to);
}

}  // namespace

// There are only 277 binary exponents, so the decimal digits are one multiplication away: the
// mantissa times a factor per exponent, prepared with 64 bits, gives the seven digits in the upper
// half of the product and what is left over in the lower.
char* FloatText(float value, char* to) {
  const auto bits = std::bit_cast<uint32_t>(value);
  if (bits == std::bit_cast<uint32_t>(kNoValue)) {
    *to = '-';
    return to + 1;
  }
  *to = '-';
  to += bits >> 31;
  uint32_t mantissa = bits & 0x7FFFFF;
  int exponent = static_cast<int>(bits >> 23 & 0xFF);
  if (exponent == 0xFF) return NotFiniteText(mantissa == 0, false, to);
  if (exponent != 0) {
    mantissa |= 0x800000;
    exponent -= 127;
  } else if (mantissa != 0) {
    const int shift = std::countl_zero(mantissa) - 8;
    mantissa <<= shift;
    exponent = -126 - shift;
  } else {
    return Put("0.000000E+00", to);
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
  std::memcpy(to + 8, kExponentTexts[decimal - kLowestExponent].data(), 4);
  return to + 12;
}

char* DoubleText(double value, char* to) {
  if (value == kNoValueDouble) {
    *to = '-';
    return to + 1;
  }
  if (!std::isfinite(value)) return NotFiniteText(std::isinf(value), std::signbit(value), to);
  char* end = std::to_chars(to, to + kLongestNumber, value, std::chars_format::scientific, 6).ptr;
  for (char* at = end - 1; at > to; --at) {
    if (*at == 'e') {
      *at = 'E';
      break;
    }
  }
  return end;
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

int32_t TruncateToInt(double value) {
  const bool fits = value > -2147483649.0 && value < 2147483648.0;
  return fits ? static_cast<int32_t>(value) : INT32_MIN;
}

}  // namespace quorvex
