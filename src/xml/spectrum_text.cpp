// From the record to the text in one pass, six floats at a time, in registers of 256 bits, for
// processors with AVX2 (nearly all). Others put the floats side by side first.
#include "xml/spectrum_text.h"

#include <immintrin.h>

#include <algorithm>
#include <bit>
#include <cassert>

#include "support/loads.h"
#include "xml/base64.h"

namespace quorvex {
namespace {

constexpr auto kMarker = std::bit_cast<uint32_t>(kNoValue);
constexpr uint32_t kInfinity = 0x7F800000;

template <uint32_t kFloats>
uint32_t Gather(const Field& f, const uint8_t* at, uint32_t* to) {
  uint32_t* const start = to;
  const uint32_t step = f.entry_floats * 4u;
  for (const uint8_t* const end = at + f.size; at < end; at += step, to += kFloats) {
    for (uint32_t i = 0; i < kFloats; ++i) {
      const auto bits = Load<uint32_t>(at + i * 4);
      to[i] = bits == kMarker ? kInfinity : bits;
    }
  }
  return static_cast<uint32_t>(to - start);
}

// In functions of their own for these processors alone: nothing else may be compiled for them.
[[gnu::target("avx2"), gnu::always_inline]] inline __m256i TwoHalves(const uint8_t* low,
                                                                     const uint8_t* high) {
  return _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(high),
                             reinterpret_cast<const __m128i*>(low));
}

// The bytes in which three written floats lie.
template <uint32_t kEntryFloats, uint32_t kWrittenFloats>
constexpr uint32_t kThreeFloats = kEntryFloats * 12 / kWrittenFloats;

// Three written floats from byte 0 on and three from byte 20 on: so nothing behind them is read.
template <uint32_t kEntryFloats, uint32_t kWrittenFloats>
[[gnu::target("avx2"), gnu::always_inline]] inline __m256i SixFloats(const uint8_t* at) {
  if constexpr (kEntryFloats == 2) {  // the first of each two
    return _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(TwoHalves(at, at + 16)),
                                                 _mm256_castsi256_ps(TwoHalves(at + 16, at + 32)),
                                                 0b10'00'10'00));
  } else {
    return TwoHalves(at, at + kThreeFloats<kEntryFloats, kWrittenFloats> - 4);
  }
}

// The same steps as in base64.cpp; 32 characters.
[[gnu::target("avx2"), gnu::always_inline]] inline __m256i Characters(__m256i floats) {
  const __m256i spread = _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10,  //
                                          5, 4, 6, 5, 8, 7, 9, 8, 11, 10, 12, 11, 14, 13, 15, 14);
  const __m256i down = _mm256_set1_epi32(0x0FC0FC00);
  const __m256i down_by = _mm256_set1_epi32(0x04000040);
  const __m256i up = _mm256_set1_epi32(0x003F03F0);
  const __m256i up_by = _mm256_set1_epi32(0x01000010);
  constexpr char kDigit = '0' - 52;
  const __m256i distance = _mm256_broadcastsi128_si256(
      _mm_setr_epi8('A', 'a' - 26, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit,
                    kDigit, kDigit, '+' - 62, '/' - 63, 0, 0));

  const __m256i marked = _mm256_cmpeq_epi32(floats, _mm256_set1_epi32(static_cast<int>(kMarker)));
  const __m256i written = _mm256_blendv_epi8(floats, _mm256_set1_epi32(kInfinity), marked);
  const __m256i bytes = _mm256_shuffle_epi8(written, spread);
  const __m256i six_bits =
      _mm256_or_si256(_mm256_mulhi_epu16(_mm256_and_si256(bytes, down), down_by),
                      _mm256_mullo_epi16(_mm256_and_si256(bytes, up), up_by));
  const __m256i no_capital = _mm256_cmpgt_epi8(six_bits, _mm256_set1_epi8(25));
  const __m256i range =
      _mm256_sub_epi8(_mm256_subs_epu8(six_bits, _mm256_set1_epi8(51)), no_capital);
  return _mm256_add_epi8(six_bits, _mm256_shuffle_epi8(distance, range));
}

// Of six entries or more.
template <uint32_t kEntryFloats, uint32_t kWrittenFloats>
[[gnu::target("avx2")]] char* WideText(const uint8_t* at, uint32_t size, char* to) {
  constexpr uint32_t kStep = kThreeFloats<kEntryFloats, kWrittenFloats>;
  const uint32_t count = size / (kEntryFloats * 4) * kWrittenFloats;
  // Three floats are 16 characters. The last six go together, of an odd number three of them again.
  const uint32_t threes = count / 3;
  for (uint32_t i = 0;; i = std::min(i + 2, threes - 2)) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + i * 16),
                        Characters(SixFloats<kEntryFloats, kWrittenFloats>(at + i * kStep)));
    if (i == threes - 2) break;
  }
  at += threes * kStep;
  to += threes * 16;
  const uint32_t left = count % 3;
  if (left == 0) return to;
  const int second = left == 2 ? Load<int>(at + kEntryFloats * 4) : 0;
  const __m256i last = Characters(_mm256_setr_epi32(Load<int>(at), second, 0, 0, 0, 0, 0, 0));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(last));
  to[left == 2 ? 11 : 6] = '=';
  to[left == 2 ? 11 : 7] = '=';
  return to + (left + 1) * 4;
}

}  // namespace

char* SpectrumText(const Field& f, const uint8_t* at, char* to) {
  const uint32_t entry = f.entry_floats;
  const uint32_t written = f.written_floats;
  const auto wide = entry == written             ? WideText<1, 1>
                    : entry == 2                 ? WideText<2, 1>
                    : entry == 4 && written == 3 ? WideText<4, 3>
                                                 : nullptr;
  if (wide != nullptr && f.size >= 6 * 4 * entry && __builtin_cpu_supports("avx2") != 0) {
    return wide(at, f.size, to);
  }
  constexpr uint32_t kMostFloats = 256;
  assert(f.size <= kMostFloats * 4 && written <= 3);
  uint32_t floats[kMostFloats];
  const auto gather = written == 1 ? Gather<1> : written == 2 ? Gather<2> : Gather<3>;
  const uint32_t count = gather(f, at, floats);
  return Base64Encode(reinterpret_cast<const uint8_t*>(floats), count * 4, to);
}

}  // namespace quorvex
