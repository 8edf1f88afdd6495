#include "inspection/facts.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "settings/codes.h"
#include "settings/settings_table.h"
#include "support/escape_text.h"

namespace quorvex {
namespace {

// Before a setting file is taken: of most types the line is of the recording's own settings.
std::vector<Fact> LineOf(RecordingHead* head) {
  InfoValue values[kMostInfoFields];
  bool estimated = false;
  const uint32_t count = InfoValues(head, values, &estimated);
  std::vector<Fact> facts;
  for (uint32_t i = 0; i < count; ++i) {
    char text[128];
    BoundedText to(text, sizeof text);
    InfoText(values[i], head->settings, &to);
    facts.push_back({values[i], text});
    std::string& kept = facts.back().text;
    kept.erase(kept.find_last_not_of(' ') + 1);
  }
  return facts;
}

// Of records that follow each other in time the information line has an estimate; the last whole
// record knows better.
void ReadEnd(RecordingHead* head, Facts* facts) {
  const auto end = std::find_if(facts->values.begin(), facts->values.end(), [](const Fact& fact) {
    return std::strcmp(fact.value.field->label, "end") == 0;
  });
  if (end == facts->values.end()) return;
  const InfoFrom from = end->value.field->from;
  facts->end_from = from == InfoFrom::kSettings || head->setting_file ? "settings" : "records";
  if (from != InfoFrom::kPeriods) return;
  if (!head->setting_file) facts->end_from = "estimate";
  const Field* layout = LayoutOf(*head->type, head->settings);
  const uint64_t records = WholeRecords(*head).value_or(0);
  if (records == 0 || layout == nullptr) return;
  const int32_t place = DateTimeAt(*layout, "LAST_TIME");
  const uint64_t last = head->type->records_at + (records - 1) * layout->size;
  DateTimeRecord time{};
  if (place < 0 || !SeekTo(head->file.get(), last + static_cast<uint32_t>(place)) ||
      ReadBytes(head->file.get(), &time, sizeof time) != sizeof time || !IsPointInTime(time)) {
    return;
  }
  char text[48];
  BoundedText to(text, sizeof text);
  end->value.time = time;
  InfoText(end->value, head->settings, &to);
  end->text = text;
  facts->end_from = "records";
}

// "2024-03-07T14:05:09.123"; nothing for what is no point in time.
std::string IsoTime(const DateTimeRecord& time) {
  if (!IsPointInTime(time)) return "";
  char text[40];
  const int milliseconds = static_cast<int>(time.seconds * 1000);
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03d", time.year, time.month,
                time.day, time.hour, time.minute, milliseconds / 1000, milliseconds % 1000);
  return text;
}

// An amount to the digits that a stored float has; nothing where it is no number.
std::string AmountText(double amount) {
  char text[32] = "";
  if (std::isfinite(amount) && amount != kNoValueDouble) {
    std::snprintf(text, sizeof text, "%.7g", amount);
  }
  return text;
}

}  // namespace

std::string KeyOf(const InfoField& field) {
  std::string key = field.label;
  std::transform(key.begin(), key.end(), key.begin(), [](unsigned char c) {
    return c == ' ' ? '_' : static_cast<char>(std::tolower(c));
  });
  return field.form == InfoForm::kPeriods ? key + "_periods" : key;
}

std::vector<PlainFact> PlainFacts(const Fact& fact) {
  using Is = PlainFact::Is;
  const InfoValue& value = fact.value;
  const std::string key = KeyOf(*value.field);
  if (!value.shown) return {};
  switch (value.field->form) {
    case InfoForm::kTime:
      return {{key, IsoTime(value.time), "", Is::kText, MicrosecondsOf(value.time)}};
    case InfoForm::kInterval:
      return {{key, value.number != 0 ? std::to_string(value.number) : "", "s", Is::kInteger}};
    case InfoForm::kDuration:
      return {{key, std::to_string(value.number), "s", Is::kInteger}};
    case InfoForm::kPeriods:
    case InfoForm::kNumber:
      return {{key, std::to_string(static_cast<int32_t>(value.number)), "", Is::kInteger}};
    case InfoForm::kLevel:
      return {
          {key + "_percent", AmountText(static_cast<double>(value.level)), "%", Is::kReal},
          {key, AmountText(value.amount), value.trigger == kTriggerLevelI ? "A" : "V", Is::kReal}};
    case InfoForm::kVolts:
      return {{key, AmountText(value.amount), "V", Is::kReal}};
    case InfoForm::kAmperes:
      return {{key, AmountText(value.amount), "A", Is::kReal}};
    case InfoForm::kTrigger:
    case InfoForm::kSlope:
      break;
  }
  return {{key, fact.text}};
}

std::optional<uint64_t> WholeRecords(const RecordingHead& head) {
  const RecordType& type = *head.type;
  if (type.walk == nullptr) return 0;
  const uint64_t size = RecordSize(type, head.settings);
  if (size == 0) return std::nullopt;
  const uint64_t records = (head.size - type.records_at) / size;
  return type.once ? std::min<uint64_t>(records, 1) : records;
}

Facts FactsOf(RecordingHead* head) {
  Facts facts;
  facts.values = LineOf(head);
  head->UseSettingFile();
  ReadEnd(head, &facts);
  const UifParams& settings = head->settings;
  if (head->type->settings_at == 0) return facts;
  char text[kLongestMadeText];
  const auto* place = reinterpret_cast<const uint8_t*>(&settings);
  facts.instrument = ModelName(place, {}).text;
  facts.serial = std::string(
      text, EscapeText(settings.ee_serial_number, text, sizeof settings.ee_serial_number));
  const char* connection = WordOf(kWirings, settings.connection);
  if (connection[0] != '\0') facts.connection = connection;
  return facts;
}

}  // namespace quorvex
