#include "xml/text_forms.h"

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

bool IsKept(char c) {
  const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  const bool digit = c >= '0' && c <= '9';
  return letter || digit || std::strchr(" .,!%&=+-*/_", c) != nullptr;
}

}  // namespace

char* EscapeText(const char* source, char* to, uint32_t limit) {
  for (uint32_t i = 0; i < limit && source[i] != '\0'; ++i) {
    const char c = source[i];
    if (c == '\n' || c == '\r') {
      *to++ = '\\';
    } else {
      *to++ = IsKept(c) ? c : '?';
    }
  }
  return to;
}

char* Base64Encode(const uint8_t* source, uint32_t size, char* to) {
  // Six bytes at a time: four pairs of characters.
  const auto pair = [](uint64_t twelve_bits) {
    return uint64_t{kBase64Pairs[twelve_bits & 0xFFF]};
  };
  uint32_t i = 0;
  for (; i + 8 <= size; i += 6, to += 8) {
    uint64_t bytes;
    std::memcpy(&bytes, source + i, 8);
    bytes = __builtin_bswap64(bytes);
    const uint64_t text = pair(bytes >> 52) | pair(bytes >> 40) << 16 | pair(bytes >> 28) << 32 |
                          pair(bytes >> 16) << 48;
    std::memcpy(to, &text, 8);
  }
  for (; i < size; i += 3, to += 4) {
    const uint32_t left = size - i;
    const uint32_t group = static_cast<uint32_t>(source[i]) << 16 |
                           (left > 1 ? static_cast<uint32_t>(source[i + 1]) << 8 : 0) |
                           (left > 2 ? source[i + 2] : 0);
    const auto text = static_cast<uint32_t>(pair(group >> 12) | pair(group) << 16);
    std::memcpy(to, &text, 4);
    if (left < 3) to[3] = '=';
    if (left < 2) to[2] = '=';
  }
  return to;
}

}  // namespace quorvex
