// quorvex info, count and version: questions that change nothing.
#include <cstdio>

#include "commands.h"
#include "host.h"
#include "quorvex64.h"

namespace quorvex::tool {

int Info(const std::string& path) {
  const Recording recording = Inspect(path);
  if (recording.type == nullptr) {
    Complain(path, recording.problem);
    return recording.code;
  }
  std::printf("file:    %s\n", path.c_str());
  std::printf("type:    %u, %s\n", recording.header.type, recording.type->name);
  std::printf("version: %d\n", QuorvexGetFileVersion(path.c_str()));
  std::printf("size:    %llu bytes\n", static_cast<unsigned long long>(recording.size));
  return kDone;
}

int Count(const std::string& path) {
  const Recording recording = Inspect(path);
  if (recording.type == nullptr) {
    Complain(path, recording.problem);
    return recording.code;
  }
  constexpr uint32_t kGeneral = 1;
  if (recording.header.type != kGeneral) {
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
