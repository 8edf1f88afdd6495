// Texts of many floats with ready text behind each: what most of a large document is.
#pragma once

#include <cstdint>
#include <cstring>

namespace quorvex {

// Ready texts are copied in pieces of this size, up to one piece too far: both sides have room for
// that. Most texts are one piece.
constexpr uint32_t kCopySize = 32;

struct ReadyText {
  const char* text;
  uint32_t size;
};

inline char* CopyText(const ReadyText& from, char* to) {
  std::memcpy(to, from.text, kCopySize);
  if (from.size > kCopySize) [[unlikely]]
    std::memcpy(to + kCopySize, from.text + kCopySize, from.size - kCopySize);
  return to + from.size;
}

// Each value as FloatText has it, with the text behind it.
char* FloatTexts(const float* values, uint32_t count, const ReadyText& behind, char* to);

}  // namespace quorvex
