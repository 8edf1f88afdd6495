// Judging what stands at the places of a layout.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <tuple>

#include "places.h"
#include "record_times.h"
#include "settings/time_texts.h"
#include "support/loads.h"
#include "xml/number_text.h"
#include "xml/text_forms.h"

namespace quorvex::tool {
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

void CheckText(const Place& place, const Piece& piece, Findings* findings) {
  const Field& f = *place.field;
  const auto* stored = reinterpret_cast<const char*>(piece.At(place.offset));
  size_t size = strnlen(stored, f.size);
  MadeValue made;
  if (f.kind == Kind::kMade) {
    made = f.make(piece.At(place.base), {});
    size = std::strlen(made.text);
    stored = made.text;
  }
  if (std::all_of(stored, stored + size, IsPlain)) return;
  std::string shown(stored, size);
  if (f.kind == Kind::kText) EscapeText(stored, shown.data(), static_cast<uint32_t>(size));
  const TextFault fault = FaultOf(shown);
  const auto add = [&](Severity severity, size_t at, const std::string& text) {
    findings->Add({severity, FindingKind::kText,
                   piece.offset + place.offset + (f.kind == Kind::kMade ? 0 : at), piece.record,
                   place.element, text + piece.remark});
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

void CheckTime(const Places& places, const Place& place, const Piece& piece, Findings* findings) {
  const auto time = Load<DateTimeRecord>(piece.At(place.offset));
  if (!IsSet(time)) return;
  const bool valid = IsPointInTime(time);
  if (valid && place.start < 0) return;
  std::string text = "is no point in time: ";
  if (valid) {
    const Place& start = places.all[static_cast<size_t>(place.start)];
    const auto from = Load<DateTimeRecord>(piece.At(start.offset));
    if (!IsPointInTime(from) || !IsBefore(time, from)) return;
    text = "lies before " + start.element + ", " + TimeText(from) + ": ";
  }
  if (!findings->Take(Severity::kWarning, FindingKind::kTime)) return;
  findings->list.push_back({Severity::kWarning, FindingKind::kTime, piece.offset + place.offset,
                            piece.record, place.element, text + TimeText(time) + piece.remark});
}

}  // namespace

void CheckCount(uint32_t at, uint32_t room, const Piece& piece, const std::string& element,
                Findings* findings) {
  const auto count = Load<int32_t>(piece.At(at));
  if (count >= 0 && static_cast<uint32_t>(count) <= room) return;
  const std::string outcome =
      count < 0 ? ", which is none" : ", but there is room for " + std::to_string(room);
  findings->Add({count < 0 ? Severity::kWarning : Severity::kError, FindingKind::kCount,
                 piece.offset + at, piece.record, element,
                 "counts " + std::to_string(count) + outcome + piece.remark});
}

void CheckPlaces(const Places& places, const Piece& piece, Findings* findings) {
  for (const Place& place : places.all) {
    if (place.counted >= 0) {
      const Place& count = places.all[static_cast<size_t>(place.counted)];
      if (Load<int32_t>(piece.At(count.offset)) < static_cast<int32_t>(place.repetition)) continue;
    }
    switch (place.what) {
      case Place::What::kText:
        CheckText(place, piece, findings);
        break;
      case Place::What::kTime:
        CheckTime(places, place, piece, findings);
        break;
      case Place::What::kCount:
        // A row for one is no list but written or not.
        if (place.field->count == 1) break;
        CheckCount(place.offset, place.field->count, piece, place.element, findings);
        break;
    }
  }
}

}  // namespace quorvex::tool
