// quorvex count prints how many records a recording has.
#include "commands/commands.h"
#include "findings/soundness.h"
#include "shared/gather.h"
#include "shared/help.h"
#include "shared/inspection.h"
#include "shared/messages.h"

namespace quorvex::tool {
namespace {

ExitCode Count(const std::string& path) {
  std::vector<std::string> paths = {path};
  if (path == "-" && !GatherRecordings({path}, &paths)) return kNoInput;
  const Recording recording = Inspect(paths.back());
  if (recording.code != kDone) {
    Complain(path, recording.problem);
    return recording.code;
  }
  if (!recording.has_layout) {
    Complain(path, NoLayout(recording.profile).text);
    return kDamaged;
  }
  if (!recording.records) {
    Complain(path, std::string("holds ") + recording.type->name +
                       ", records of different lengths; a conversion tells how many");
    return kUnknownType;
  }
  Print(std::to_string(*recording.records) + "\n");
  return kDone;
}

}  // namespace

Command AddCount(CLI::App& app) {
  const auto path = std::make_shared<std::string>();
  CLI::App* line = app.add_subcommand("count", "Print how many whole records a recording has");
  line->add_option("FILE", *path, "Recording; - is standard input")->required();
  line->footer(Footer({"quorvex count R0001GEN.REC"},
                      {kDone, kUsage, kNoInput, kUnknownType, kCutShort, kNoOutput, kDamaged}));
  return {line, [path] { return Count(*path); }};
}

}  // namespace quorvex::tool
