#include "xml/text_forms.h"

#include <array>
#include <cstring>

namespace quorvex {
namespace {

// Twelve bits are two characters.
constexpr auto kBase64Pairs = [] {
  constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::array<std::array<char, 2>, 4096> pairs{};
  for (size_t i = 0; i < pairs.size(); ++i) pairs[i] = {kAlphabet[i >> 6], kAlphabet[i & 63]};
  return pairs;
}();

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
  const auto put = [&to](uint32_t group) {
    std::memcpy(to, kBase64Pairs[group >> 12].data(), 2);
    std::memcpy(to + 2, kBase64Pairs[group & 0xFFF].data(), 2);
    to += 4;
  };
  uint32_t i = 0;
  for (; i + 3 <= size; i += 3) put(source[i] << 16u | source[i + 1] << 8u | source[i + 2]);
  const uint32_t left = size - i;
  if (left == 0) return to;
  put(source[i] << 16u | (left > 1 ? source[i + 1] << 8u : 0));
  to[-1] = '=';
  if (left == 1) to[-2] = '=';
  return to;
}

}  // namespace quorvex
