#include "support/escape_text.h"

#include <cstring>

namespace quorvex {
namespace {

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

}  // namespace quorvex
