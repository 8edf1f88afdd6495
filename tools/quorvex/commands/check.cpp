// quorvex check says whether recordings are sound, to people and to programs.
#include "commands/commands.h"
#include "shared/gather.h"
#include "shared/help.h"
#include "shared/inspection.h"
#include "shared/json.h"

namespace quorvex::tool {
namespace {

struct CheckOptions {
  std::vector<std::string> inputs;
  bool json = false;
};

ExitCode CodeOf(const CheckResult& result) {
  if (result.recording.code != kDone) return result.recording.code;
  if (result.findings.worst == Severity::kError) return kDamaged;
  return result.findings.worst == Severity::kWarning ? kDoubtful : kDone;
}

Json ToJson(const std::string& path, const CheckResult& result) {
  Json entry = JsonOf(path, result.recording, result.recording.records);
  entry["worst"] = result.findings.list.empty() ? Json() : Json(NameOf(result.findings.worst));
  entry["findings"] = FindingsOf(result.findings);
  entry["unlisted"] = Json::object();
  for (size_t k = 0; k < kFindingKinds; ++k) {
    const auto kind = static_cast<FindingKind>(k);
    const uint64_t more = result.findings.Unlisted(kind);
    if (more != 0) entry["unlisted"][NameOf(kind)] = more;
  }
  return entry;
}

void PrintResult(const std::string& path, const CheckResult& result) {
  for (const std::string& line : LinesOf(result.findings, Severity::kNote)) {
    Print(Shown(CalledName(path) + ": " + line) + "\n");
  }
  if (CodeOf(result) == kDone) Print(Shown(CalledName(path)) + ": sound\n");
}

ExitCode Check(const CheckOptions& options) {
  std::vector<std::string> paths;
  ExitCode code = GatherRecordings(options.inputs, &paths) ? kDone : kNoInput;
  size_t sound = 0, doubtful = 0;
  JsonArray array;
  for (const std::string& path : paths) {
    const CheckResult result = CheckRecording(path);
    const ExitCode outcome = CodeOf(result);
    // The code is the one of the first error, else of the warnings.
    if (code == kDone || code == kDoubtful) code = outcome != kDone ? outcome : code;
    sound += outcome == kDone ? 1 : 0;
    doubtful += outcome == kDoubtful ? 1 : 0;
    if (options.json) {
      array.Add(ToJson(path, result));
    } else {
      PrintResult(path, result);
    }
  }
  if (options.json) {
    array.Close();
  } else if (paths.size() > 1) {
    const auto number = [](size_t count) { return std::to_string(count); };
    Print(number(paths.size()) + " checked: " + number(sound) + " sound, " + number(doubtful) +
          " with warnings, " + number(paths.size() - sound - doubtful) + " with errors\n");
  }
  return code;
}

}  // namespace

Command AddCheck(CLI::App& app) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App* line =
      app.add_subcommand("check", "Say whether recordings are sound, before they are converted");
  TakePaths(line, &options->inputs);
  line->add_flag("--json", options->json, "For programs: an array, an object a line");
  line->footer(
      Footer({"quorvex check card", "quorvex check --json card | jq '.[] | select(.worst)'"},
             {kDone, kDoubtful, kUsage, kNoInput, kUnknownType, kCutShort, kNoOutput, kDamaged}));
  return {line, [options] { return Check(*options); }};
}

}  // namespace quorvex::tool
