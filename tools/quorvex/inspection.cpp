#include "inspection.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "quorvex64.h"
#include "record_shape.h"
#include "settings/setting_file.h"
#include "settings/settings_table.h"
#include "settings/value_texts.h"
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
  FileInfo info{};
  if (QueryFileInfo(path.c_str(), &info) == 0) recording->size = WholeSize(info);
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
  if (settings == nullptr || recording->type == nullptr || recording->type->settings_at == 0)
    return;
  if (SeekTo(file.get(), recording->type->settings_at)) {
    ReadBytes(file.get(), settings, kSettingsSize);
  }
  if (recording->type->companion) LoadSettingFile(path.c_str(), settings);
}

std::string InfoLine(const std::string& path) {
  char line[512];
  QuorvexGetRecordInfo(path.c_str(), line);
  return line;
}

bool IsRecordingName(const std::string& name) {
  if (name.size() < 4) return false;
  std::string end = name.substr(name.size() - 4);
  std::transform(end.begin(), end.end(), end.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return end == ".REC";
}

void Gather(const std::string& path, std::vector<std::string>* recordings) {
  if (!IsFolder(path)) {
    recordings->push_back(path);
    return;
  }
  for (const std::string& name : NamesIn(path)) {
    const std::string inside = Inside(path, name);
    if (IsRecordingName(name) || IsFolder(inside)) Gather(inside, recordings);
  }
}

}  // namespace

Recording Inspect(const std::string& path, UifParams* settings) {
  Recording recording;
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

Facts FactsOf(const std::string& path) {
  Facts facts;
  facts.path = path;
  UifParams settings{};
  facts.recording = Inspect(path, &settings);
  if (facts.recording.code != kDone) return facts;
  const RecordType& type = *facts.recording.type;
  facts.records = RecordCount(facts.recording, settings);
  facts.values = InfoValues(path, type);
  if (type.settings_at == 0) return facts;
  char text[kLongestMadeText];
  const auto* place = reinterpret_cast<const uint8_t*>(&settings);
  facts.instrument = std::string(text, ModelNameText(place, {}, text));
  facts.serial = std::string(
      text, EscapeText(settings.ee_serial_number, text, sizeof settings.ee_serial_number));
  const char* connection = ConnectionText(settings.connection);
  if (connection != nullptr) facts.connection = connection;
  return facts;
}

std::string Inside(const std::string& folder, const std::string& name) {
  const bool open = folder.empty() || (folder.back() != '/' && folder.back() != '\\');
  return folder + (open ? "/" : "") + name;
}

bool GatherRecordings(const std::vector<std::string>& paths, std::vector<std::string>* recordings) {
  bool all = true;
  for (const std::string& path : paths) {
    const size_t before = recordings->size();
    Gather(path, recordings);
    if (recordings->size() != before) continue;
    Complain(path, "holds no recordings");
    all = false;
  }
  return all;
}

}  // namespace quorvex::tool
