#include "support/bounded_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "support/exact_decimal.h"

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
  const ExactDecimal decimal(value);
  const int last = -decimals;
  // Rounding up ends at the first digit from behind that is no 9; what it passes becomes 0.
  int raised = last - 1;
  if (decimal.RoundsUp(last)) {
    raised = last;
    while (decimal.DigitAt(raised) == 9) ++raised;
  }
  if (std::signbit(value)) Put('-');
  for (int place = std::max({decimal.Exponent(), raised, 0}); place >= last; --place) {
    const uint32_t digit = place < raised ? 0 : decimal.DigitAt(place) + (place == raised ? 1 : 0);
    if (place == -1) Put('.');
    Put(static_cast<char>('0' + digit));
  }
}

}  // namespace quorvex
