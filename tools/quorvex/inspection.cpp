#include "inspection.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "findings/soundness.h"
#include "quorvex64.h"
#include "records/walk.h"
#include "scratch.h"
#include "settings/settings_table.h"
#include "settings/time_texts.h"
#include "settings/value_texts.h"
#include "support/escape_text.h"
#include "support/file.h"

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

std::optional<uint64_t> WholeRecords(const RecordingHead& head) {
  const RecordType& type = *head.type;
  if (type.walk == nullptr) return 0;
  const uint64_t size = RecordSize(type, head.settings);
  if (size == 0) return std::nullopt;
  const uint64_t records = (head.size - type.records_at) / size;
  return type.once ? std::min<uint64_t>(records, 1) : records;
}

std::string InfoLine(const std::string& path) {
  char line[512];
  QuorvexGetRecordInfo(path.c_str(), line);
  return line;
}

}  // namespace

Recording Inspect(RecordingHead* head) {
  Recording recording;
  if (!head->file) {
    Fail(&recording, kNoInput, LastError());
    return recording;
  }
  if (std::ferror(head->file.get()->stream) != 0) {
    Fail(&recording, kNoInput, "cannot be read");
    return recording;
  }
  recording.size = head->size;
  if (head->size >= sizeof head->header) {
    recording.header = head->header;
    recording.type = head->type;
  }
  if (const std::optional<Finding> problem = HeadProblem(*head)) {
    const bool unknown = recording.header && head->type == nullptr;
    Fail(&recording, unknown ? kUnknownType : kCutShort, problem->text);
    return recording;
  }
  head->UseSettingFile();
  recording.setting_file = head->setting_file;
  recording.has_layout =
      head->type->walk == nullptr || LayoutOf(*head->type, head->settings) != nullptr;
  recording.profile = head->settings.profile;
  recording.records = WholeRecords(*head);
  return recording;
}

namespace {

// What stands at `path` where that is no file: empty for one, and for nothing.
std::string NoFile(const std::string& path) {
  if (path.size() > kMaxPath) return "the path is longer than 511 bytes";
  if (IsFolder(path)) return "is a folder";
  return IsSpecial(path) ? "is no regular file" : "";
}

}  // namespace

Recording Inspect(const std::string& path) {
  const std::string problem = NoFile(path);
  if (problem.empty()) {
    RecordingHead head(path.c_str());
    return Inspect(&head);
  }
  Recording recording;
  Fail(&recording, kNoInput, problem);
  return recording;
}

CheckResult CheckRecording(const std::string& path) {
  CheckResult result;
  const std::string problem = NoFile(path);
  if (!problem.empty()) {
    Fail(&result.recording, kNoInput, problem);
    result.findings.Add({Severity::kError, FindingKind::kHead, std::nullopt, 0, "", problem});
    return result;
  }
  RecordingHead head(path.c_str());
  result.recording = Inspect(&head);
  if (result.recording.code != kDone) {
    const std::optional<Finding> in_head = HeadProblem(head);
    result.findings.Add(head.file && in_head
                            ? *in_head
                            : Finding{Severity::kError, FindingKind::kHead, std::nullopt, 0, "",
                                      result.recording.problem});
    return result;
  }
  Soundness soundness(&head, !IsSpooled(path));
  WalkRecording(&head, {}, &soundness);
  result.findings = soundness.Result();
  return result;
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
void ReadEnd(RecordingHead* head, Facts* facts) {
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
  const Field* layout = LayoutOf(*r.type, head->settings);
  if (r.records.value_or(0) == 0 || layout == nullptr) return;
  const int32_t place = DateTimeAt(*layout, "LAST_TIME");
  const uint64_t last = r.type->records_at + (*r.records - 1) * layout->size;
  DateTimeRecord time{};
  if (place < 0 || !SeekTo(head->file.get(), last + static_cast<uint32_t>(place)) ||
      ReadBytes(head->file.get(), &time, sizeof time) != sizeof time || !IsPointInTime(time)) {
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
  const std::string problem = NoFile(path);
  if (!problem.empty()) {
    Fail(&facts.recording, kNoInput, problem);
    return facts;
  }
  RecordingHead head(path.c_str());
  facts.recording = Inspect(&head);
  const UifParams& settings = head.settings;
  if (facts.recording.code != kDone) return facts;
  const RecordType& type = *facts.recording.type;
  facts.values = InfoValues(path, type);
  ReadEnd(&head, &facts);
  if (type.settings_at == 0) return facts;
  char text[kLongestMadeText];
  const auto* place = reinterpret_cast<const uint8_t*>(&settings);
  facts.instrument = ModelName(place, {}).text;
  facts.serial = std::string(
      text, EscapeText(settings.ee_serial_number, text, sizeof settings.ee_serial_number));
  const char* connection = ConnectionText(settings.connection);
  if (connection != nullptr) facts.connection = connection;
  return facts;
}

}  // namespace quorvex::tool
