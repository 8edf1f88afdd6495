#include "shared/inspection.h"

#include <cstdio>
#include <utility>

#include "findings/soundness.h"
#include "records/walk.h"
#include "shared/scratch.h"
#include "support/file.h"

namespace quorvex::tool {
namespace {

// Why a recording could not be opened, just now.
std::string WhyNotOpen(const std::string& path) {
  if (path.size() > kMaxPath) return "the path is longer than 511 bytes";
  if (IsFolder(path)) return "is a folder";
  if (IsSpecial(path)) return "is no regular file";
  // Not all that looked at it leave a reason.
  std::FILE* again = std::fopen(path.c_str(), "rb");
  if (again == nullptr) return LastError();
  std::fclose(again);
  return "could not be opened a moment ago";
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

RecordingFacts FactsOf(const std::string& path) {
  RecordingFacts found;
  found.path = path;
  RecordingHead head(path.c_str());
  // The facts come first: of most types they are of the recording's own settings.
  Facts facts;
  if (head.file && !HeadProblem(head)) facts = quorvex::FactsOf(&head);
  found.recording = Inspect(&head);
  if (found.recording.code == kDone) found.facts = std::move(facts);
  return found;
}

}  // namespace quorvex::tool
