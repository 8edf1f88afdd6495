#include "inspection.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "places.h"
#include "quorvex64.h"
#include "record_shape.h"
#include "scratch.h"
#include "settings/codes.h"
#include "settings/setting_file.h"
#include "settings/settings_table.h"
#include "settings/time_texts.h"
#include "support/file.h"
#include "xml/text_forms.h"

namespace quorvex::tool {
namespace {

constexpr InfoField kStart = {"start", InfoForm::kTime};
constexpr InfoField kEnd = {"end", InfoForm::kTime};
constexpr InfoField kInterval = {"interval", InfoForm::kSeconds};
constexpr InfoField kTrigger = {"trigger", InfoForm::kText};
constexpr InfoField kLevel = {"level", InfoForm::kLevel};
constexpr InfoField kSlope = {"slope", InfoForm::kText};
constexpr InfoField kDuration = {"duration", InfoForm::kSeconds};
constexpr InfoField kPretrigger = {"pretrigger", InfoForm::kSeconds};

// What the fields of the record information line are, in their order; a number may stand last.
constexpr struct {
  uint32_t type;
  InfoField fields[12];
} kLines[] = {
    {1, {kStart, kEnd, kInterval}},
    {2, {kStart, kEnd, kTrigger, kLevel, kSlope, kDuration, kPretrigger}},
    {5,
     {kStart,
      kEnd,
      kTrigger,
      {"voltage level", InfoForm::kAmount},
      {"voltage envelope", InfoForm::kAmount},
      {"neutral level", InfoForm::kAmount},
      {"neutral envelope", InfoForm::kAmount},
      {"current level", InfoForm::kAmount},
      {"current envelope", InfoForm::kAmount},
      {"neutral I level", InfoForm::kAmount},
      {"neutral I envelope", InfoForm::kAmount}}},
    {6, {{"time", InfoForm::kTime}}},
    {14, {kStart, kEnd, kLevel, kSlope, kDuration, kPretrigger, {"mark", InfoForm::kNumber}}},
    {16, {kStart, kEnd, kInterval}},
    {17,
     {kStart,
      kEnd,
      kTrigger,
      kLevel,
      {"duration", InfoForm::kPeriods},
      {"pretrigger", InfoForm::kPeriods}}},
    {18, {kStart, kEnd}},
};

void Fail(Recording* recording, ExitCode code, const std::string& problem) {
  recording->code = code;
  recording->problem = problem;
}

void ReadHead(const std::string& path, Recording* recording, UifParams* settings) {
  File file(path.c_str(), kOpenRead);
  if (!file) return Fail(recording, kNoInput, LastError());
  FileHeader header{};
  const uint32_t got = ReadBytes(file.get(), &header, sizeof header);
  if (std::ferror(file.get()->stream) != 0) return Fail(recording, kNoInput, "cannot be read");
  recording->size = SizeOf(file.get());
  uint64_t head = sizeof header;
  if (got == head) {
    recording->header = header;
    recording->type = FindRecordType(header.type);
    if (recording->type == nullptr) {
      return Fail(recording, kUnknownType,
                  "is of the unknown record type " + std::to_string(header.type));
    }
    head = recording->type->records_at;
  }
  if (got < sizeof header || recording->size < head) {
    return Fail(recording, kCutShort,
                "ends inside its head (" + std::to_string(recording->size) + " of " +
                    std::to_string(head) + " bytes)");
  }
  const RecordType& type = *recording->type;
  if (type.settings_at != 0 && SeekTo(file.get(), type.settings_at)) {
    ReadBytes(file.get(), settings, kSettingsSize);
  }
  if (type.companion) recording->setting_file = LoadSettingFile(path.c_str(), settings) == 0;
  recording->has_layout = type.choice == nullptr || type.choice->choose(*settings) != nullptr;
  recording->profile = settings->profile;
  recording->records = RecordCount(*recording, *settings);
}

std::string InfoLine(const std::string& path) {
  char line[512];
  QuorvexGetRecordInfo(path.c_str(), line);
  return line;
}

}  // namespace

Recording Inspect(const std::string& path, UifParams* settings) {
  Recording recording;
  UifParams own{};
  if (settings == nullptr) settings = &own;
  if (path.size() > kMaxPath) {
    Fail(&recording, kNoInput, "the path is longer than 511 bytes");
  } else if (IsFolder(path)) {
    Fail(&recording, kNoInput, "is a folder");
  } else if (IsSpecial(path)) {
    Fail(&recording, kNoInput, "is no regular file");
  } else {
    ReadHead(path, &recording, settings);
  }
  return recording;
}

std::optional<uint64_t> RecordCount(const Recording& recording, const UifParams& settings) {
  const RecordType& type = *recording.type;
  if (type.write == nullptr) return 0;
  const uint64_t size = FixedRecordSize(ShapeOf(type, settings));
  if (size == 0) return std::nullopt;
  const uint64_t records = (recording.size - type.records_at) / size;
  return type.once ? std::min<uint64_t>(records, 1) : records;
}

std::vector<InfoValue> InfoValues(const std::string& path, const RecordType& type) {
  std::vector<InfoValue> values;
  const auto* row = std::find_if(std::begin(kLines), std::end(kLines),
                                 [&](const auto& line) { return line.type == type.type; });
  if (row == std::end(kLines)) return values;
  const std::string line = InfoLine(path);
  size_t at = line.find(' ');
  for (const InfoField* field = row->fields; field->label != nullptr; ++field) {
    if (at == std::string::npos) break;
    const bool quoted = line.compare(at, 2, " '") == 0;
    const size_t from = at + (quoted ? 2 : 1);
    const size_t end = quoted ? line.find('\'', from) : std::string::npos;
    std::string text = line.substr(from, end == std::string::npos ? end : end - from);
    text.erase(text.find_last_not_of(' ') + 1);
    values.push_back({*field, text});
    at = end == std::string::npos ? end : line.find(' ', end);
  }
  return values;
}

std::vector<InfoField> AllInfoFields() {
  std::vector<InfoField> all;
  for (const auto& line : kLines) {
    for (const InfoField* field = line.fields; field->label != nullptr; ++field) {
      all.push_back(*field);
    }
  }
  return all;
}

namespace {

// Of records that follow each other in time the information line has an estimate; the last whole
// record knows better.
void ReadEnd(const UifParams& settings, Facts* facts) {
  const Recording& r = facts->recording;
  const auto end = std::find_if(facts->values.begin(), facts->values.end(), [](const InfoValue& v) {
    return std::strcmp(v.field.label, kEnd.label) == 0;
  });
  if (end == facts->values.end()) return;
  constexpr uint32_t kGeneral = 1, kVoltageQuality = 16, kEnergyMeter = 18;
  if (r.type->type != kGeneral && r.type->type != kVoltageQuality) {
    facts->end_from = r.type->type == kEnergyMeter ? "records" : "settings";
    return;
  }
  facts->end_from = r.setting_file ? "settings" : "estimate";
  if (r.records.value_or(0) == 0) return;
  const RecordShape shape = ShapeOf(*r.type, settings);
  const Places places = PlacesOf(*shape.layout, shape.which);
  const auto place = std::find_if(places.all.begin(), places.all.end(),
                                  [](const Place& p) { return p.element == "LAST_TIME"; });
  if (place == places.all.end()) return;
  File file(facts->path.c_str(), kOpenRead);
  const uint64_t last = r.type->records_at + (*r.records - 1) * FixedRecordSize(shape);
  DateTimeRecord time{};
  if (!file || !SeekTo(file.get(), last + place->offset) ||
      ReadBytes(file.get(), &time, sizeof time) != sizeof time || !IsPointInTime(time)) {
    return;
  }
  char text[48];
  BoundedText to(text, sizeof text);
  DateTimeText(time, TimeDetail::kMilliseconds, &to);
  end->text = text;
  facts->end_from = "records";
}

}  // namespace

Facts FactsOf(const std::string& path) {
  Facts facts;
  facts.path = path;
  UifParams settings{};
  facts.recording = Inspect(path, &settings);
  if (facts.recording.code != kDone) return facts;
  const RecordType& type = *facts.recording.type;
  facts.values = InfoValues(path, type);
  ReadEnd(settings, &facts);
  if (type.settings_at == 0) return facts;
  char text[kLongestMadeText];
  const auto* place = reinterpret_cast<const uint8_t*>(&settings);
  facts.instrument = ModelName(place, {}).text;
  facts.serial = std::string(
      text, EscapeText(settings.ee_serial_number, text, sizeof settings.ee_serial_number));
  const std::string wiring = WordOf(kWirings, settings.connection);
  if (!wiring.empty()) facts.connection = wiring;
  return facts;
}

}  // namespace quorvex::tool
