// Eight floats at a time, in registers of 256 bits, for processors with AVX2 (nearly all).
//
// The digits come from one multiplication, as in FloatText, but of 32 bits with 64 in two halves,
// and with one factor per binary exponent, that of its larger decimal exponent: ten times the
// product belongs to the smaller one, which is right where it does not round to eight digits. What
// is cut off behind the 38 bits after the point is less than kLost, and no float comes that near to
// half a digit but those that are one: ties. Quotients by 10000, by 100 and by 10 then take the
// digits of four floats apart, and one shuffle of bytes puts them beside the text of the exponent,
// which lies in the table beside the factor. Signs and texts behind go in one by one, as values are
// written. What has no digits, and what has fewer bits, goes through FloatText, with its
// neighbours.
#include "texts/float_texts.h"

#include <immintrin.h>

#include <array>
#include <bit>

#include "support/loads.h"
#include "texts/float_text.h"

namespace quorvex {
namespace {

constexpr int kBehindPoint = 38;
constexpr uint64_t kOne = uint64_t{1} << kBehindPoint;
constexpr uint64_t kLost = 12;  // in units of the last bit kept; ten times what one product loses
constexpr uint64_t kNear = 32;  // a power of two above what a tie shows then

// What the exponent bits of a float say.
struct alignas(16) Exponent {
  uint64_t factor;               // 0 for zero: its digits
  std::array<char, 4> texts[2];  // of the smaller decimal exponent and of the larger
};

constexpr auto kExponents = [] {
  std::array<Exponent, 256> table{};
  table[0].texts[0] = kExponentTexts[-kLowestDecimalExponent];
  for (int b = -126; b <= kHighestBinaryExponent; ++b) {
    const int k = kFloatTable[b - kLowestBinaryExponent].exponent;
    Exponent& e = table[b + 127];
    // Of a mantissa of 32 bits, of which the lowest eight are 0, and of a product without its
    // lowest 32.
    e.factor = float_table_detail::CeilOfPowers(b - 31 + kBehindPoint + 32, 5 - k);
    e.texts[0] = kExponentTexts[k - kLowestDecimalExponent];
    if (k < kHighestDecimalExponent) e.texts[1] = kExponentTexts[k + 1 - kLowestDecimalExponent];
  }
  return table;
}();

using Numbers = std::array<uint64_t, 4>;
constexpr Numbers All(uint64_t of_64_bits) {
  return {of_64_bits, of_64_bits, of_64_bits, of_64_bits};
}
constexpr Numbers All32(uint32_t of_32_bits) { return All(of_32_bits * 0x1'0000'0001u); }
constexpr Numbers All16(uint16_t of_16_bits) { return All(of_16_bits * 0x1'0001'0001'0001u); }

// More constants than there are registers.
struct alignas(32) Constants {
  Numbers magnitude = All32(0x7FFFFFFF);
  Numbers least_normal = All32(0x00800000);
  Numbers largest = All32(0x7F7FFFFF);
  Numbers no_value = All32(std::bit_cast<uint32_t>(kNoValue));
  Numbers top_bit = All32(0x80000000);
  Numbers eight_digits = All(9999999 * kOne + kOne / 2 - kLost);
  Numbers half = All(kOne / 2 + kLost);
  Numbers behind_point = All(kOne - kNear);
  Numbers per_10000 = All(109951163);  // of 2^40
  Numbers beside_10000 = All((uint64_t{1} << 32) - 10000);
  Numbers per_100 = All16(5243);  // of 2^19
  Numbers minus_100 = All16(static_cast<uint16_t>(-100));
  Numbers per_10 = All16(6554);  // of 2^16
  Numbers beside_10 = All16((1 << 8) - 10);
  Numbers characters = All(0x2E30303030303030);  // digits from the last on, and the point
  Numbers half_text = All(32);
  // Of the digits and the point, then of the exponent.
  Numbers order = {0x0001020304050706, 0x0B0A0908, 0x0001020304050706, 0x0B0A0908};
};
constexpr Constants kConstants;

// In functions of their own for these processors alone: nothing else may be compiled for them.
[[gnu::target("avx2"), gnu::always_inline]] inline __m256i Get(const Numbers& numbers) {
  return _mm256_load_si256(reinterpret_cast<const __m256i*>(numbers.data()));
}

[[gnu::target("avx2"), gnu::always_inline]] inline __m128i ExponentOf(const float* value) {
  const uint32_t bytes = Load<uint32_t>(value) >> (23 - 4) & 0xFF0;  // to an entry of 16
  return _mm_load_si128(
      reinterpret_cast<const __m128i*>(reinterpret_cast<const char*>(kExponents.data()) + bytes));
}

// Texts of values 0 and 4, and of 2 and 6, from every other one of eight mantissas.
struct FourTexts {
  __m256i of_0_and_4, of_2_and_6;
};
[[gnu::target("avx2"), gnu::always_inline]] inline FourTexts TextsOf(const Constants& c,
                                                                     const float* values,
                                                                     __m256i mantissas) {
  const __m256i of_0_and_4 = _mm256_set_m128i(ExponentOf(values + 4), ExponentOf(values));
  const __m256i of_2_and_6 = _mm256_set_m128i(ExponentOf(values + 6), ExponentOf(values + 2));
  const __m256i factors = _mm256_unpacklo_epi64(of_0_and_4, of_2_and_6);
  const __m256i exponents = _mm256_unpackhi_epi64(of_0_and_4, of_2_and_6);

  const __m256i low = _mm256_mul_epu32(mantissas, factors);
  const __m256i high = _mm256_mul_epu32(mantissas, _mm256_srli_epi64(factors, 32));
  const __m256i once = _mm256_add_epi64(high, _mm256_srli_epi64(low, 32));
  const __m256i ten_times =
      _mm256_add_epi64(_mm256_slli_epi64(once, 3), _mm256_add_epi64(once, once));
  const __m256i larger = _mm256_cmpgt_epi64(ten_times, Get(c.eight_digits));
  const __m256i product =
      _mm256_add_epi64(_mm256_blendv_epi8(ten_times, once, larger), Get(c.half));
  const __m256i tie =
      _mm256_cmpeq_epi64(_mm256_and_si256(product, Get(c.behind_point)), _mm256_setzero_si256());
  // Rounded up; a tie is even.
  const __m256i seven =
      _mm256_andnot_si256(_mm256_srli_epi64(tie, 63), _mm256_srli_epi64(product, kBehindPoint));

  // Quotients beside remainders, the quotient above: what goes up less what that takes away.
  const __m256i q4 = _mm256_srli_epi64(_mm256_mul_epu32(seven, Get(c.per_10000)), 40);
  const __m256i fours = _mm256_add_epi64(seven, _mm256_mul_epu32(q4, Get(c.beside_10000)));
  const __m256i q2 = _mm256_srli_epi16(_mm256_mulhi_epu16(fours, Get(c.per_100)), 3);
  const __m256i twos = _mm256_or_si256(
      _mm256_add_epi16(fours, _mm256_mullo_epi16(q2, Get(c.minus_100))), _mm256_slli_epi32(q2, 16));
  const __m256i q1 = _mm256_mulhi_epu16(twos, Get(c.per_10));
  const __m256i ones = _mm256_add_epi16(twos, _mm256_mullo_epi16(q1, Get(c.beside_10)));

  const __m256i digits = _mm256_add_epi8(ones, Get(c.characters));
  const __m256i exponent = _mm256_srlv_epi64(exponents, _mm256_and_si256(larger, Get(c.half_text)));
  return {_mm256_shuffle_epi8(_mm256_unpacklo_epi64(digits, exponent), Get(c.order)),
          _mm256_shuffle_epi8(_mm256_unpackhi_epi64(digits, exponent), Get(c.order))};
}

[[gnu::target("avx2"), gnu::always_inline]] inline bool AllHaveDigits(const Constants& c,
                                                                      __m256i bits) {
  const __m256i magnitudes = _mm256_and_si256(bits, Get(c.magnitude));
  const __m256i zero = _mm256_cmpeq_epi32(magnitudes, _mm256_setzero_si256());
  const __m256i small = _mm256_cmpgt_epi32(Get(c.least_normal), magnitudes);
  const __m256i none = _mm256_or_si256(_mm256_cmpgt_epi32(magnitudes, Get(c.largest)),
                                       _mm256_cmpeq_epi32(bits, Get(c.no_value)));
  const __m256i other = _mm256_or_si256(_mm256_andnot_si256(zero, small), none);
  return _mm256_testz_si256(other, other) != 0;
}

[[gnu::target("avx2")]] char* WideFloatTexts(const float* values, uint32_t eights,
                                             const ReadyText& behind, char* to) {
  const Constants* constants = &kConstants;
  // Where compilers know the numbers, they make each of them anew in the loop.
  asm("" : "+r"(constants));
  const Constants& c = *constants;
  const __m256i text_behind = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(behind.text));
  const uint32_t size_behind = behind.size;
  for (; eights > 0; --eights, values += 8) {
    const __m256i bits = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(values));
    if (!AllHaveDigits(c, bits)) [[unlikely]] {
      for (uint32_t n = 0; n < 8; ++n) to = CopyText(behind, FloatText(values[n], to));
      continue;
    }
    const __m256i mantissas = _mm256_or_si256(_mm256_slli_epi32(bits, 8), Get(c.top_bit));
    const FourTexts even = TextsOf(c, values, mantissas);
    const FourTexts odd = TextsOf(c, values + 1, _mm256_srli_epi64(mantissas, 32));
    const __m128i texts[] = {
        _mm256_castsi256_si128(even.of_0_and_4),      _mm256_castsi256_si128(odd.of_0_and_4),
        _mm256_castsi256_si128(even.of_2_and_6),      _mm256_castsi256_si128(odd.of_2_and_6),
        _mm256_extracti128_si256(even.of_0_and_4, 1), _mm256_extracti128_si256(odd.of_0_and_4, 1),
        _mm256_extracti128_si256(even.of_2_and_6, 1), _mm256_extracti128_si256(odd.of_2_and_6, 1)};
#pragma GCC unroll 8
    for (uint32_t n = 0; n < 8; ++n) {
      *to = '-';
      to += Load<uint32_t>(values + n) >> 31;
      _mm_storeu_si128(reinterpret_cast<__m128i*>(to), texts[n]);
      to += 12;
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), text_behind);
      to += size_behind;
    }
  }
  return to;
}

}  // namespace

char* FloatTexts(const float* values, uint32_t count, const ReadyText& behind, char* to) {
  uint32_t n = 0;
  if (behind.size <= kCopySize && __builtin_cpu_supports("avx2") != 0) {
    to = WideFloatTexts(values, count / 8, behind, to);
    n = count / 8 * 8;
  }
  for (; n < count; ++n) to = CopyText(behind, FloatText(values[n], to));
  return to;
}

}  // namespace quorvex
