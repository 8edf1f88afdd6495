// Building a display text in a fixed room. No process locale has a say in it.
#pragma once

#include <cstdint>

namespace quorvex {

// Appends to a text in `room` bytes, its terminator included. What does not fit is dropped.
class BoundedText {
 public:
  BoundedText(char* text, uint32_t room) : text_(text), room_(room) { text_[0] = '\0'; }
  BoundedText(const BoundedText&) = delete;
  BoundedText& operator=(const BoundedText&) = delete;

  void Put(char c);
  void Put(const char* text);
  // Decimal, padded in front up to `width` characters.
  void PutInteger(int64_t value, uint32_t width = 1, char pad = '0');
  // "%.*f", with "inf" and "nan" where there are no digits.
  void PutFixed(double value, int decimals);

 private:
  char* text_;
  uint32_t room_;
  uint32_t used_ = 0;
};

}  // namespace quorvex
