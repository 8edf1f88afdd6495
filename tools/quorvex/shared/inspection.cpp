#include "shared/inspection.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "findings/soundness.h"
#include "records/information.h"
#include "records/walk.h"
#include "settings/codes.h"
#include "settings/settings_table.h"
#include "shared/scratch.h"
#include "support/escape_text.h"
#include "support/file.h"

namespace quorvex::tool {
namespace {

std::optional<uint64_t> WholeRecords(const RecordingHead& head) {
  const RecordType& type = *head.type;
  if (type.walk == nullptr) return 0;
  const uint64_t size = RecordSize(type, head.settings);
  if (size == 0) return std::nullopt;
  const uint64_t records = (head.size - type.records_at) / size;
  return type.once ? std::min<uint64_t>(records, 1) : records;
}

// Why a recording could not be opened, just now.
std::string WhyNotOpen(const std::string& path) {
  const std::string reason = LastError();
  if (path.size() > kMaxPath) return "the path is longer than 511 bytes";
  if (IsFolder(path)) return "is a folder";
  return IsSpecial(path) ? "is no regular file" : reason;
}

}  // namespace

Recording Inspect(RecordingHead* head) {
  Recording recording;
  const auto fail = [&](ExitCode code, const std::string& problem) {
    recording.code = code;
    recording.problem = problem;
    return recording;
  };
  if (!head->file) return fail(kNoInput, WhyNotOpen(head->path));
  if (std::ferror(head->file.get()->stream) != 0) return fail(kNoInput, "cannot be read");
  recording.size = head->size;
  if (head->size >= sizeof head->header) {
    recording.header = head->header;
    recording.type = head->type;
  }
  if (const std::optional<Finding> problem = HeadProblem(*head)) {
    const bool unknown = recording.header && head->type == nullptr;
    return fail(unknown ? kUnknownType : kCutShort, problem->text);
  }
  head->UseSettingFile();
  recording.setting_file = head->setting_file;
  recording.has_layout =
      head->type->walk == nullptr || LayoutOf(*head->type, head->settings) != nullptr;
  recording.profile = head->settings.profile;
  recording.records = WholeRecords(*head);
  return recording;
}

Recording Inspect(const std::string& path) {
  RecordingHead head(path.c_str());
  return Inspect(&head);
}

CheckResult CheckRecording(const std::string& path) {
  RecordingHead head(path.c_str());
  CheckResult result = {Inspect(&head), {}};
  if (result.recording.code == kDone) {
    Soundness soundness(&head, !IsSpooled(path));
    WalkRecording(&head, {}, &soundness);
    result.findings = soundness.Result();
    return result;
  }
  Finding finding = {Severity::kError, FindingKind::kHead, {}, 0, "", result.recording.problem};
  if (result.recording.code != kNoInput) finding = *HeadProblem(head);
  result.findings.Add(finding);
  return result;
}

namespace {

// Before a setting file is taken: of most types the line is of the recording's own settings.
std::vector<Fact> FactsIn(RecordingHead* head) {
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
  const Recording& r = facts->recording;
  const auto end = std::find_if(facts->values.begin(), facts->values.end(), [](const Fact& fact) {
    return std::strcmp(fact.value.field->label, "end") == 0;
  });
  if (end == facts->values.end()) return;
  const InfoFrom from = end->value.field->from;
  facts->end_from = from == InfoFrom::kSettings || r.setting_file ? "settings" : "records";
  if (from != InfoFrom::kPeriods) return;
  if (!r.setting_file) facts->end_from = "estimate";
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
  end->value.time = time;
  InfoText(end->value, head->settings, &to);
  end->text = text;
  facts->end_from = "records";
}

}  // namespace

Facts FactsOf(const std::string& path) {
  Facts facts;
  facts.path = path;
  RecordingHead head(path.c_str());
  if (head.file) facts.values = FactsIn(&head);
  facts.recording = Inspect(&head);
  const UifParams& settings = head.settings;
  if (facts.recording.code != kDone) {
    facts.values.clear();
    return facts;
  }
  const RecordType& type = *facts.recording.type;
  ReadEnd(&head, &facts);
  if (type.settings_at == 0) return facts;
  char text[kLongestMadeText];
  const auto* place = reinterpret_cast<const uint8_t*>(&settings);
  facts.instrument = ModelName(place, {}).text;
  facts.serial = std::string(
      text, EscapeText(settings.ee_serial_number, text, sizeof settings.ee_serial_number));
  const char* connection = WordOf(kWirings, settings.connection);
  if (connection[0] != '\0') facts.connection = connection;
  return facts;
}

}  // namespace quorvex::tool
