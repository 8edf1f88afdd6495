// Judging what stands at the places of a layout.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "findings/places.h"
#include "support/escape_text.h"
#include "support/loads.h"

namespace quorvex {
namespace {

// What keeps a text from standing in a document as it is. Documents are UTF-8.
struct TextFault {
  size_t at = 0;
  std::string what;  // empty where nothing does
};

size_t Utf8Length(unsigned char lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

// Whether a character of several bytes stands at the front, one that XML allows.
bool IsXmlCharacter(const std::string& text, size_t at, size_t length) {
  if (length == 0 || at + length > text.size()) return false;
  uint32_t code = static_cast<unsigned char>(text[at]) & (0x7Fu >> length);
  for (size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(text[at + i]);
    if ((byte & 0xC0) != 0x80) return false;
    code = code << 6 | (byte & 0x3Fu);
  }
  constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  return code >= kLeast[length] && code <= 0x10FFFF && !surrogate && code != 0xFFFE &&
         code != 0xFFFF;
}

TextFault FaultOf(const std::string& text) {
  for (size_t at = 0; at < text.size();) {
    const auto c = static_cast<unsigned char>(text[at]);
    char byte[8];
    std::snprintf(byte, sizeof byte, "0x%02X", c);
    if (c == '&') return {at, "an ampersand"};
    if (c == '<') return {at, "a '<'"};
    if (text.compare(at, 3, "]]>") == 0) return {at, "a ']]>'"};
    if (c < ' ' && c != '\t' && c != '\n' && c != '\r') {
      return {at, std::string("the control character ") + byte};
    }
    const size_t length = c < 0x80 ? 1 : Utf8Length(c);
    if (c >= 0x80 && !IsXmlCharacter(text, at, length)) {
      return {at, std::string("a byte ") + byte + " that is no character"};
    }
    at += length;
  }
  return {};
}

// Characters that every text may have and that documents show as they are.
bool IsPlain(char c) {
  const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  return letter || (c >= '+' && c <= '9') || c == ' ' || c == '%';
}

// What a text, a time and a count need to know of where they stand.
struct Judge {
  const Places& places;
  const Piece& piece;
  const Surroundings& around;
  Findings* findings;

  const uint8_t* At(uint32_t offset) const {
    return static_cast<const uint8_t*>(piece.bytes) + offset;
  }
  // A damaged file has as many faults as bytes: what `text` makes is asked for only where there is
  // room for the finding.
  template <typename Text>
  void Add(Severity severity, FindingKind kind, const Place& place, size_t behind,
           const std::string& element, Text text) const {
    if (!findings->Take(severity, kind)) return;
    findings->list.push_back({severity, kind, piece.at + place.offset + behind, piece.record,
                              around.path + element, text() + around.remark});
  }

  void CheckText(const Place& place) const {
    const Field& f = *place.field;
    const auto* stored = reinterpret_cast<const char*>(At(place.offset));
    MadeValue made;
    const bool is_made = f.kind == Kind::kMade;
    if (is_made) {
      made = f.make(At(place.base), piece.inputs);
      stored = made.text;
    }
    const size_t size = strnlen(stored, is_made ? kLongestMadeText : f.size);
    if (std::all_of(stored, stored + size, IsPlain)) return;
    std::string shown(stored, size);
    if (f.kind == Kind::kText) EscapeText(stored, shown.data(), static_cast<uint32_t>(size));
    const TextFault fault = FaultOf(shown);
    const auto add = [&](Severity severity, size_t at, const std::string& text) {
      Add(severity, FindingKind::kText, place, is_made ? 0 : at, place.element,
          [&text] { return text; });
    };
    if (!fault.what.empty()) {
      return add(Severity::kError, fault.at, "has " + fault.what + "; the document is no XML");
    }
    const char* other = std::mismatch(stored, stored + size, shown.begin()).first;
    if (other != stored + size) {
      add(Severity::kNote, static_cast<size_t>(other - stored),
          "has characters that the document shows as others");
    }
  }

  void CheckTime(const Place& place) const {
    const auto time = Load<DateTimeRecord>(At(place.offset));
    if (!IsSet(time)) return;
    const bool valid = IsPointInTime(time);
    if (valid && place.start < 0) return;
    if (!valid) return AddNoTime(place, 0, place.element, time);
    const Place& start = places.all[static_cast<size_t>(place.start)];
    const auto from = Load<DateTimeRecord>(At(start.offset));
    if (!IsPointInTime(from) || !IsBefore(time, from)) return;
    Add(Severity::kWarning, FindingKind::kTime, place, 0, place.element, [&] {
      return "lies before " + start.element + ", " + TimeText(from) + ": " + TimeText(time);
    });
  }

  void AddNoTime(const Place& place, size_t behind, const std::string& element,
                 const DateTimeRecord& time) const {
    Add(Severity::kWarning, FindingKind::kTime, place, behind, element,
        [&] { return "is no point in time: " + TimeText(time); });
  }

  // A list that comes in several pieces.
  void CheckTimes(const Place& place) const {
    const auto count = static_cast<uint32_t>(piece.inputs.number[place.field->count_ref]);
    const uint32_t step = place.field->step;
    for (uint32_t i = 0; i < count && uint64_t{i} * step + kDateTimeSize <= piece.present; ++i) {
      const auto time = Load<DateTimeRecord>(At(place.offset + i * step));
      if (!IsSet(time) || IsPointInTime(time)) continue;
      AddNoTime(place, size_t{i} * step,
                place.element + "[" + std::to_string(piece.first + i + 1) + "]", time);
    }
  }

  void CheckCount(const Place& place) const {
    const auto count = Load<int32_t>(At(place.offset));
    if (place.room == 0 || (count >= 0 && static_cast<uint32_t>(count) <= place.room)) return;
    Add(count < 0 ? Severity::kWarning : Severity::kError, FindingKind::kCount, place, 0,
        place.element, [&] {
          return "counts " + std::to_string(count) +
                 (count < 0 ? ", which is none"
                            : ", but there is room for " + std::to_string(place.room));
        });
  }
};

// Bytes that a place needs: what is made may be made from anything in its layout.
uint64_t EndOf(const Place& place, const Field& layout) {
  switch (place.what) {
    case Place::What::kText:
      return place.field->kind == Kind::kMade ? layout.size : place.offset + place.field->size;
    case Place::What::kTime:
      return place.offset + kDateTimeSize;
    case Place::What::kCount:
      return place.offset + sizeof(int32_t);
    case Place::What::kTimes:
      break;
  }
  return 0;
}

}  // namespace

std::string TimeText(const DateTimeRecord& time) {
  char text[96];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%06.3f", time.year, time.month,
                time.day, time.hour, time.minute, double{time.seconds});
  return text;
}

void CheckPlaces(const Places& places, const Piece& piece, const Surroundings& around,
                 Findings* findings) {
  const Judge judge{places, piece, around, findings};
  for (const Place& place : places.all) {
    if (EndOf(place, *places.layout) > piece.present) continue;
    if (place.counted >= 0) {
      const Place& count = places.all[static_cast<size_t>(place.counted)];
      if (Load<int32_t>(judge.At(count.offset)) < static_cast<int32_t>(place.repetition)) continue;
    }
    switch (place.what) {
      case Place::What::kText:
        judge.CheckText(place);
        break;
      case Place::What::kTime:
        judge.CheckTime(place);
        break;
      case Place::What::kTimes:
        judge.CheckTimes(place);
        break;
      case Place::What::kCount:
        judge.CheckCount(place);
        break;
    }
  }
}

}  // namespace quorvex
