// The tables `file` and `settings`: what stands in front of the records, a value a row.
#include "inspection/facts.h"
#include "layout/date_time.h"
#include "settings/settings_table.h"
#include "support/loads.h"
#include "tables/cursor.h"
#include "texts/value_text.h"

namespace quorvex {
namespace {

std::optional<std::string> Shifted(int64_t microseconds, std::optional<int32_t> utc_offset) {
  if (microseconds == kNoTime) return std::nullopt;
  char text[32];
  const int64_t shift = int64_t{utc_offset.value_or(0)} * 60 * 1000000;
  return std::string(text, TimeText(microseconds - shift, utc_offset.has_value(), text));
}

std::optional<std::string> TextAt(const Field& f, const uint8_t* at, const Inputs& inputs,
                                  std::optional<int32_t> utc_offset) {
  if (f.kind == Kind::kGroup) return Shifted(MicrosecondsOf(Load<DateTimeRecord>(at)), utc_offset);
  char text[kLongestMadeText + kValueRoom];
  const std::string shown(text, ValueText(f, at, inputs, text));
  const Kind kind = f.kind == Kind::kMade ? f.made_as : f.kind;
  const bool number = kind != Kind::kText && kind != Kind::kRawText;
  if (number && shown == "-") return std::nullopt;
  return AsUtf8(shown);
}

void AddBlock(const Field& block, const uint8_t* bytes, const Inputs& inputs, const Wiring& wiring,
              std::optional<int32_t> utc_offset, std::vector<HeadRow>* rows) {
  for (const Value& value : ValuesOf(block, wiring)) {
    const uint32_t count = CountOf(value.list, bytes, inputs);
    for (uint32_t i = 0; i < count; ++i) {
      std::string path = value.path;
      if (value.list.row != nullptr) {
        // Behind the element that repeats, which is the group around the value or the value.
        const size_t at = value.inside != 0 ? value.inside - 1 : path.size();
        path.insert(at, "[" + std::to_string(i + 1) + "]");
      }
      const uint8_t* at = bytes + value.offset + size_t{i} * value.step;
      rows->push_back({std::string(block.name) + "/" + path,
                       TextAt(*value.field, at, inputs, utc_offset), value.unit});
    }
  }
}

}  // namespace

std::vector<HeadRow> FileRows(RecordingHead* head, std::optional<int32_t> utc_offset) {
  std::vector<HeadRow> rows;
  const Wiring wiring = WiringOf(*head->type, head->settings);
  AddBlock(kFileHeader, reinterpret_cast<const uint8_t*>(&head->header), {}, wiring, utc_offset,
           &rows);
  // Of a head of its own: facts are of the recording's settings before it takes a setting file's.
  RecordingHead fresh(head->path);
  if (!fresh.file || fresh.type != head->type) return rows;
  const Facts facts = FactsOf(&fresh);
  const std::optional<uint64_t> records = WholeRecords(fresh);
  rows.push_back({"name", head->type->name, ""});
  rows.push_back({"size", std::to_string(fresh.size), "B"});
  rows.push_back({"records", std::nullopt, ""});
  if (records) rows.back().value = std::to_string(*records);
  rows.push_back({"setting_file", fresh.setting_file ? "1" : "0", ""});
  for (const Fact& fact : facts.values) {
    for (const PlainFact& plain : PlainFacts(fact)) {
      rows.push_back({plain.key, std::nullopt, plain.unit});
      if (plain.time != kNoTime) {
        rows.back().value = Shifted(plain.time, utc_offset);
      } else if (!plain.text.empty()) {
        rows.back().value = plain.text;
      }
    }
  }
  if (facts.end_from != nullptr) rows.push_back({"end_from", facts.end_from, ""});
  if (facts.instrument) rows.push_back({"instrument", facts.instrument, ""});
  if (facts.serial) rows.push_back({"serial", facts.serial, ""});
  if (facts.connection) rows.push_back({"connection", facts.connection, ""});
  return rows;
}

std::vector<HeadRow> SettingsRows(const RecordingHead& head, std::optional<int32_t> utc_offset) {
  std::vector<HeadRow> rows;
  const RecordType& type = *head.type;
  if (type.settings_at == 0) return rows;
  const Wiring wiring = WiringOf(type, head.settings);
  Inputs inputs;
  inputs.number[kHarmonicsFlag] = type.harmonics_flag ? 1 : 0;
  AddBlock(kSettingsBlock, reinterpret_cast<const uint8_t*>(&head.settings), inputs, wiring,
           utc_offset, &rows);
  if (type.information != nullptr) {
    AddBlock(*type.information, head.information, {}, wiring, utc_offset, &rows);
  }
  return rows;
}

std::string AsUtf8(const std::string& text) {
  std::string clean;
  for (size_t i = 0; i < text.size();) {
    const auto byte = [&](size_t at) {
      return at < text.size() ? static_cast<unsigned char>(text[at]) : 0u;
    };
    const unsigned lead = byte(i);
    const size_t size = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    bool whole = size != 0 && lead < 0xF5;
    for (size_t n = 1; n < size; ++n) whole = whole && (byte(i + n) & 0xC0) == 0x80;
    // Longer than need be, a half of a pair, beyond the last character.
    if (lead == 0xE0 && byte(i + 1) < 0xA0) whole = false;
    if (lead == 0xED && byte(i + 1) >= 0xA0) whole = false;
    if (lead == 0xF0 && byte(i + 1) < 0x90) whole = false;
    if (lead == 0xF4 && byte(i + 1) >= 0x90) whole = false;
    clean += whole ? text.substr(i, size) : "\xEF\xBF\xBD";
    i += whole ? size : 1;
  }
  return clean;
}

char* TimeText(int64_t microseconds, bool utc, char* to) {
  constexpr int64_t kDay = 86400 * int64_t{1000000};
  int64_t days = microseconds / kDay;
  int64_t left = microseconds % kDay;
  if (left < 0) {
    left += kDay;
    --days;
  }
  // The day's year begins in March, so that its odd day is the last.
  const int64_t shifted = days + 719468;
  const int64_t era = shifted / 146097;
  const auto of_era = static_cast<int>(shifted % 146097);
  const int year_of_era = (of_era - of_era / 1460 + of_era / 36524 - of_era / 146096) / 365;
  const int day_of_year = of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const int month = (5 * day_of_year + 2) / 153;
  const int day = day_of_year - (153 * month + 2) / 5 + 1;
  const int64_t year = era * 400 + year_of_era + (month >= 10 ? 1 : 0);
  const auto put = [&to](int64_t value, int digits, char behind) {
    for (int i = digits - 1; i >= 0; --i, value /= 10) to[i] = static_cast<char>('0' + value % 10);
    to += digits;
    if (behind != '\0') *to++ = behind;
  };
  put(year, 4, '-');
  put(month < 10 ? month + 3 : month - 9, 2, '-');
  put(day, 2, 'T');
  put(left / 3600000000, 2, ':');
  put(left / 60000000 % 60, 2, ':');
  put(left / 1000000 % 60, 2, '.');
  put(left % 1000000, 6, utc ? 'Z' : '\0');
  return to;
}

}  // namespace quorvex
