#include "xml/base64.h"

#include <tmmintrin.h>

#include <array>
#include <cstring>

namespace quorvex {
namespace {

// Twelve bits are two characters.
constexpr std::array<uint16_t, 4096> Base64Pairs() {
  constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::array<uint16_t, 4096> pairs{};
  uint32_t twelve_bits = 0;
  for (uint16_t& pair : pairs) {
    pair = static_cast<uint16_t>(kAlphabet[twelve_bits / 64] | kAlphabet[twelve_bits % 64] << 8);
    ++twelve_bits;
  }
  return pairs;
}
constexpr std::array<uint16_t, 4096> kBase64Pairs = Base64Pairs();

// Twelve bytes are sixteen characters, for processors that move bytes within a register (nearly
// all). Reads 16 bytes at a time; returns how many of the source are done.
__attribute__((target("ssse3"))) uint32_t EncodeWide(const uint8_t* source, uint32_t size,
                                                     char* to) {
  // Three bytes aaaaaabb bbbbcccc ccdddddd go twice into each 32 bits, so that one multiplication a
  // half moves aaaaaa and cccccc down into bytes of their own, another bbbbbb and dddddd up.
  const __m128i spread = _mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
  const __m128i down = _mm_set1_epi32(0x0FC0FC00);
  const __m128i down_by = _mm_set1_epi32(0x04000040);
  const __m128i up = _mm_set1_epi32(0x003F03F0);
  const __m128i up_by = _mm_set1_epi32(0x01000010);
  // From six bits to their character: by ranges, 0 to 25, 26 to 51, ten digits one by one, + and /.
  constexpr char kDigit = '0' - 52;
  const __m128i distance =
      _mm_setr_epi8('a' - 26, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit,
                    kDigit, kDigit, '+' - 62, '/' - 63, 'A', 0, 0);
  uint32_t done = 0;
  for (; done + 16 <= size; done += 12, to += 16) {
    const __m128i bytes =
        _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(source + done)), spread);
    const __m128i six_bits = _mm_or_si128(_mm_mulhi_epu16(_mm_and_si128(bytes, down), down_by),
                                          _mm_mullo_epi16(_mm_and_si128(bytes, up), up_by));
    const __m128i capital = _mm_cmpgt_epi8(_mm_set1_epi8(26), six_bits);
    const __m128i range = _mm_or_si128(_mm_subs_epu8(six_bits, _mm_set1_epi8(51)),
                                       _mm_and_si128(capital, _mm_set1_epi8(13)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                     _mm_add_epi8(six_bits, _mm_shuffle_epi8(distance, range)));
  }
  return done;
}

}  // namespace

char* Base64Encode(const uint8_t* source, uint32_t size, char* to) {
  uint32_t i = __builtin_cpu_supports("ssse3") ? EncodeWide(source, size, to) : 0;
  to += i / 3 * 4;
  for (; i < size; i += 3, to += 4) {
    const uint32_t left = size - i;
    const uint32_t group = static_cast<uint32_t>(source[i]) << 16 |
                           (left > 1 ? static_cast<uint32_t>(source[i + 1]) << 8 : 0) |
                           (left > 2 ? source[i + 2] : 0);
    std::memcpy(to, &kBase64Pairs[group >> 12], 2);
    std::memcpy(to + 2, &kBase64Pairs[group & 0xFFF], 2);
    if (left < 3) to[3] = '=';
    if (left < 2) to[2] = '=';
  }
  return to;
}

}  // namespace quorvex
