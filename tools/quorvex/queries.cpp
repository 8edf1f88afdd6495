// quorvex count and version: small questions.
#include <cstdio>

#include "commands.h"
#include "inspection.h"
#include "quorvex64.h"

namespace quorvex::tool {
int Count(const std::string& path) {
  const Recording recording = Inspect(path);
  if (recording.code != kDone) {
    Complain(path, recording.problem);
    return recording.code;
  }
  constexpr uint32_t kGeneral = 1;
  if (recording.type->type != kGeneral) {
    Complain(path, std::string("holds ") + recording.type->name +
                       "; only general recordings are counted");
    return kUnknownType;
  }
  std::printf("%d\n", QuorvexGetNumberOfRecords(path.c_str()));
  return kDone;
}

int Version() {
  std::printf("Quorvex64 %d\n", QuorvexGetVersion());
  return kDone;
}

}  // namespace quorvex::tool
