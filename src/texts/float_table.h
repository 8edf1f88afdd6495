// The factors behind FloatText, computed with exact integers while the library is compiled.
#pragma once

#include <array>
#include <cstdint>

namespace quorvex {

// How the floats of one binary exponent b read in decimal. With the 24-bit mantissa m the value is
// m * 2^(b-23); within one b it crosses at most one power of ten.
struct FloatDecade {
  uint64_t factor[2];  // ceil(2^(b-23) * 10^(6-k) * 2^63) for k = exponent and exponent + 1
  uint32_t limit;      // mantissas from here on belong to the second factor
  int32_t exponent;    // decimal exponent k below the limit
};

constexpr int kLowestBinaryExponent = -149;
constexpr int kHighestBinaryExponent = 127;

namespace float_table_detail {

// An unsigned integer wide enough for 2^167 and for 10^51 shifted.
struct Wide {
  static constexpr int kWords = 8;
  std::array<uint32_t, kWords> word{1};
  bool inexact = false;  // a division or a right shift lost something

  constexpr void MultiplyBy10() {
    uint64_t carry = 0;
    for (uint32_t& w : word) {
      carry += uint64_t{w} * 10;
      w = static_cast<uint32_t>(carry);
      carry >>= 32;
    }
  }
  constexpr void DivideBy10() {
    uint64_t rest = 0;
    for (int i = kWords - 1; i >= 0; --i) {
      rest = rest << 32 | word[i];
      word[i] = static_cast<uint32_t>(rest / 10);
      rest %= 10;
    }
    inexact = inexact || rest != 0;
  }
  constexpr void ShiftLeft(int bits) {
    for (; bits > 0; bits -= bits > 31 ? 31 : bits) {
      const int step = bits > 31 ? 31 : bits;
      uint64_t carry = 0;
      for (uint32_t& w : word) {
        carry |= uint64_t{w} << step;
        w = static_cast<uint32_t>(carry);
        carry >>= 32;
      }
    }
  }
  constexpr void ShiftRight(int bits) {
    for (; bits > 0; bits -= bits > 31 ? 31 : bits) {
      const int step = bits > 31 ? 31 : bits;
      uint32_t carry = 0;
      for (int i = kWords - 1; i >= 0; --i) {
        const uint32_t lost = word[i] << (32 - step);
        word[i] = word[i] >> step | carry;
        carry = lost;
      }
      inexact = inexact || carry != 0;
    }
  }
  constexpr uint64_t RoundedUp() const {
    return (uint64_t{word[1]} << 32 | word[0]) + (inexact ? 1 : 0);
  }
};

// ceil(2^binary * 10^decimal), which must fit 64 bits.
constexpr uint64_t CeilOfPowers(int binary, int decimal) {
  Wide value;
  for (int i = 0; i < decimal; ++i) value.MultiplyBy10();
  if (binary > 0) value.ShiftLeft(binary);
  for (int i = 0; i > decimal; --i) value.DivideBy10();
  if (binary < 0) value.ShiftRight(-binary);
  return value.RoundedUp();
}

constexpr FloatDecade DecadeOf(int b) {
  const int k = b * 78913 >> 18;  // floor(b * log10(2)) for every b used here
  constexpr uint64_t kMantissas = uint64_t{1} << 24;
  // The first mantissa of the next decade: ceil(10^(k+1) / 2^(b-23)).
  const uint64_t first = CeilOfPowers(23 - b, k + 1);
  return {{CeilOfPowers(b + 40, 6 - k), CeilOfPowers(b + 40, 5 - k)},
          static_cast<uint32_t>(first < kMantissas ? first : kMantissas),
          k};
}

}  // namespace float_table_detail

inline constexpr auto kFloatTable = [] {
  std::array<FloatDecade, kHighestBinaryExponent - kLowestBinaryExponent + 1> table{};
  for (int b = kLowestBinaryExponent; b <= kHighestBinaryExponent; ++b) {
    table[b - kLowestBinaryExponent] = float_table_detail::DecadeOf(b);
  }
  return table;
}();

}  // namespace quorvex
