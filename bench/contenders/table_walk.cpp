// The tables walked field by field and formatted with printf, the straightforward way.
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "contender.h"
#include "support/escape_text.h"
#include "support/loads.h"
#include "texts/number_text.h"
#include "xml/plan.h"

namespace quorvex {

struct PlanStep {
  Field table;
};

namespace {

constexpr uint32_t kLongestText = 2048;

uint32_t CountOf(const Field& f, const uint8_t* place, const Inputs& inputs) {
  if (f.count_from == CountFrom::kTable) return f.count;
  const int32_t count = f.count_from == CountFrom::kRecord ? Load<int32_t>(place + f.count_ref)
                                                           : inputs.number[f.count_ref];
  if (count < 0) return 0;
  return static_cast<uint32_t>(count) < f.count ? static_cast<uint32_t>(count) : f.count;
}

void PrintFloat(float value, char* to) {
  if (value == kNoValue) {
    std::strcpy(to, "-");
  } else {
    std::sprintf(to, "%E", static_cast<double>(value));
  }
}

void PrintDouble(double value, char* to) {
  if (value == kNoValueDouble) {
    std::strcpy(to, "-");
  } else {
    std::sprintf(to, "%lE", value);
  }
}

void PrintSeconds(double seconds, char* to) {
  if (seconds == kNoValueDouble) {
    std::strcpy(to, "-");
    return;
  }
  const auto microseconds = static_cast<long long>(seconds * 1000000.0);
  std::sprintf(to, "%d.%06d", static_cast<int>(microseconds / 1000000),
               static_cast<int>(microseconds % 1000000));
  for (size_t i = 0, end = std::strlen(to) - 1; i < 5 && to[end - i] == '0'; ++i) to[end - i] = 0;
}

void PlainBase64(const uint8_t* bytes, uint32_t size, char* to) {
  static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (uint32_t i = 0; i < size; i += 3) {
    uint32_t group = static_cast<uint32_t>(bytes[i]) << 16;
    if (i + 1 < size) group |= static_cast<uint32_t>(bytes[i + 1]) << 8;
    if (i + 2 < size) group |= bytes[i + 2];
    *to++ = alphabet[group >> 18];
    *to++ = alphabet[group >> 12 & 63];
    *to++ = i + 1 < size ? alphabet[group >> 6 & 63] : '=';
    *to++ = i + 2 < size ? alphabet[group & 63] : '=';
  }
  *to = '\0';
}

void PrintSpectrum(const Field& f, const uint8_t* at, char* to) {
  float values[256];
  uint32_t count = 0;
  for (uint32_t entry = 0; entry < f.size; entry += f.entry_floats * 4u) {
    for (uint32_t i = 0; i < f.written_floats; ++i) {
      const auto value = Load<float>(at + entry + i * 4);
      values[count++] = value == kNoValue ? INFINITY : value;
    }
  }
  PlainBase64(reinterpret_cast<const uint8_t*>(values), count * 4, to);
}

void PrintMade(Kind as, const MadeValue& value, char* to) {
  if (as == Kind::kText) {
    *EscapeText(value.text, to, kLongestMadeText) = '\0';
  } else if (as == Kind::kF32) {
    PrintFloat(value.number, to);
  } else {
    std::sprintf(to, "%lld", static_cast<long long>(value.integer));
  }
}

void PrintValue(const Field& f, const uint8_t* at, const Inputs& inputs, char* to) {
  switch (f.kind) {
    case Kind::kU8:
      std::sprintf(to, "%d", *at);
      break;
    case Kind::kU16:
      std::sprintf(to, "%d", Load<uint16_t>(at));
      break;
    case Kind::kI32: {
      const auto value = Load<int32_t>(at);
      std::sprintf(to, "%d", value < f.most ? value : f.most);
      break;
    }
    case Kind::kI64:
      std::sprintf(to, "%lld", Load<long long>(at));
      break;
    case Kind::kF32:
      PrintFloat(Load<float>(at), to);
      break;
    case Kind::kF64:
      PrintDouble(Load<double>(at), to);
      break;
    case Kind::kScaledI16:
      PrintFloat(static_cast<float>(Load<int16_t>(at)) * inputs.scale[f.scale_ref], to);
      break;
    case Kind::kScaledF32:
      PrintFloat(Load<float>(at) * inputs.scale[f.scale_ref], to);
      break;
    case Kind::kSeconds:
      PrintSeconds(Load<double>(at), to);
      break;
    case Kind::kText:
      *EscapeText(reinterpret_cast<const char*>(at), to, f.size) = '\0';
      break;
    case Kind::kRawText:
      std::snprintf(to, f.size + 1, "%s", reinterpret_cast<const char*>(at));
      break;
    case Kind::kMade:
      PrintMade(f.made_as, f.make(at - f.offset, inputs), to);
      break;
    case Kind::kSpectrum:
      PrintSpectrum(f, at, to);
      break;
    case Kind::kNoValue:
      std::strcpy(to, "-");
      break;
    case Kind::kGap:
    case Kind::kGroup:
      *to = '\0';
      break;
  }
}

void Walk(XmlWriter* to, const Field& f, Cases which, const uint8_t* place, uint32_t repetition,
          uint32_t step, const Inputs& inputs) {
  if ((f.cases & which) == 0 || f.kind == Kind::kGap) return;
  const uint8_t* base = place + static_cast<size_t>(repetition) * step;
  char attributes[64] = "";
  if (f.phase != nullptr) std::snprintf(attributes, sizeof attributes, "phase=\"%s\"", f.phase);
  const uint32_t count = CountOf(f, base, inputs);
  for (uint32_t i = 0; i < count; ++i) {
    if (f.kind == Kind::kGroup) {
      const bool element = f.name[0] != '\0';
      if (element) OpenElement(to, f.name, attributes);
      for (uint32_t r = 0; r < f.row_count; ++r) {
        const Field& row = f.rows[r];
        Walk(to, row, which, base + f.offset, i, StepOf(row, f.step), inputs);
      }
      if (element) CloseElement(to);
      continue;
    }
    char text[kLongestText];
    PrintValue(f, base + f.offset + i * f.step, inputs, text);
    if (f.own_line) {
      TextElement(to, f.name, attributes, text);
    } else {
      ValueElement(to, f.name, text);
    }
  }
}

}  // namespace

Plan::Plan(const Field& table, Cases which) : which_(which), text_(nullptr) {
  steps_ = static_cast<PlanStep*>(Allocate(sizeof(PlanStep)));
  steps_->table = table;
}

Plan::~Plan() { Release(steps_); }

void Plan::Render(XmlWriter* to, const void* record, const Inputs& inputs) {
  Walk(to, steps_->table, which_, static_cast<const uint8_t*>(record), 0, 0, inputs);
}

void RenderOnce(XmlWriter* to, const Field& table, Cases which, const void* record,
                const Inputs& inputs) {
  Plan(table, which).Render(to, record, inputs);
}

}  // namespace quorvex
