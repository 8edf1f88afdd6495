// quorvex count and version: small questions.
#include "commands/commands.h"
#include "quorvex64.h"
#include "record_check.h"
#include "shared/gather.h"
#include "shared/inspection.h"
#include "shared/messages.h"

namespace quorvex::tool {

int Count(const std::string& path) {
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

std::string VersionText() {
  return std::string("quorvex ") + QUORVEX_TOOL_VERSION + " (library " +
         std::to_string(QuorvexGetVersion()) + ")";
}

int Version() {
  Print(VersionText() + "\n");
  return kDone;
}

}  // namespace quorvex::tool
