#include "support/bounded_text.h"

#include <charconv>
#include <cmath>

namespace quorvex {

void BoundedText::Put(char c) {
  if (used_ + 1 >= room_) return;
  text_[used_++] = c;
  text_[used_] = '\0';
}

void BoundedText::Put(const char* text) {
  for (; *text != '\0'; ++text) Put(*text);
}

void BoundedText::PutInteger(int64_t value, uint32_t width, char pad) {
  char digits[24] = "";
  const char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  const char* at = digits;
  // A sign stands before padding zeros, and behind padding blanks.
  if (value < 0 && pad == '0') Put(*at++);
  for (auto used = static_cast<uint32_t>(end - digits); used < width; ++used) Put(pad);
  while (at < end) Put(*at++);
}

void BoundedText::PutFixed(double value, int decimals) {
  if (!std::isfinite(value)) {
    if (std::signbit(value)) Put('-');
    Put(std::isinf(value) ? "inf" : "nan");
    return;
  }
  char digits[330] = "";  // the longest double has 309 digits before the point
  const char* end =
      std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, decimals).ptr;
  for (const char* at = digits; at < end; ++at) Put(*at);
}

}  // namespace quorvex
