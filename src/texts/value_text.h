// The text of a value, as documents have it.
#pragma once

#include <algorithm>
#include <cstring>

#include "layout/field.h"
#include "support/escape_text.h"
#include "support/loads.h"
#include "texts/number_text.h"

namespace quorvex {

inline char* RawTextOf(const uint8_t* at, uint32_t width, char* to) {
  const void* end = std::memchr(at, '\0', width);
  const size_t size = end != nullptr ? static_cast<const uint8_t*>(end) - at : width;
  std::memcpy(to, at, size);
  return to + size;
}

inline char* MadeText(Kind as, const MadeValue& value, char* to) {
  if (as == Kind::kText) return EscapeText(value.text, to, kLongestMadeText);
  return as == Kind::kF32 ? FloatText(value.number, to) : IntegerText(value.integer, to);
}

// Bytes that any text takes but those of a text's own width and of a made text.
constexpr uint32_t kValueRoom = 32;

// Nothing for groups, gaps and spectra. Returns the end of the text, which is not terminated.
inline char* ValueText(const Field& f, const uint8_t* at, const Inputs& inputs, char* to) {
  switch (f.kind) {
    case Kind::kU8:
      return IntegerText(*at, to);
    case Kind::kU16:
      return IntegerText(Load<uint16_t>(at), to);
    case Kind::kI32:
      return IntegerText(std::min(Load<int32_t>(at), f.most), to);
    case Kind::kI64:
      return IntegerText(Load<int64_t>(at), to);
    case Kind::kF32:
      return FloatText(Load<float>(at), to);
    case Kind::kF64:
      return DoubleText(Load<double>(at), to);
    case Kind::kScaledI16:
      return FloatText(static_cast<float>(Load<int16_t>(at)) * inputs.scale[f.scale_ref], to);
    case Kind::kScaledF32:
      return FloatText(Load<float>(at) * inputs.scale[f.scale_ref], to);
    case Kind::kSeconds:
      return SecondsText(Load<double>(at), to);
    case Kind::kText:
      return EscapeText(reinterpret_cast<const char*>(at), to, f.size);
    case Kind::kRawText:
      return RawTextOf(at, f.size, to);
    case Kind::kMade:
      return MadeText(f.made_as, f.make(at - f.offset, inputs), to);
    case Kind::kNoValue:
      *to = '-';
      return to + 1;
    case Kind::kSpectrum:
    case Kind::kGap:
    case Kind::kGroup:
      break;
  }
  return to;
}

}  // namespace quorvex
