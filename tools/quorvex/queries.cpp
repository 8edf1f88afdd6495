// quorvex info, count and version: questions that change nothing.
#include <cstdio>
#include <iterator>

#include "commands.h"
#include "host.h"
#include "quorvex64.h"

namespace quorvex::tool {
namespace {

// What the fields of the record information line are, in their order; a number may stand last.
constexpr struct {
  uint32_t type;
  const char* labels[12];
} kLineLabels[] = {
    {1, {"start", "end", "interval"}},
    {2, {"start", "end", "trigger", "level", "slope", "duration", "pretrigger"}},
    {5,
     {"start", "end", "trigger", "voltage level", "voltage envelope", "neutral level",
      "neutral envelope", "current level", "current envelope", "neutral I level",
      "neutral I envelope"}},
    {6, {"time"}},
    {14, {"start", "end", "level", "slope", "duration", "pretrigger", "mark"}},
    {16, {"start", "end", "interval"}},
    {17, {"start", "end", "trigger", "level", "duration", "pretrigger"}},
    {18, {"start", "end"}},
};

void PrintLabelled(const std::string& label, const std::string& value) {
  const size_t end = value.find_last_not_of(' ');
  std::printf("%-20s%s\n", (label + ":").c_str(), value.substr(0, end + 1).c_str());
}

void PrintLine(uint32_t type, const std::string& line) {
  const auto* row = std::begin(kLineLabels);
  while (row != std::end(kLineLabels) && row->type != type) ++row;
  if (row == std::end(kLineLabels)) return;
  size_t at = line.find(' ');
  for (const char* const* label = row->labels; *label != nullptr; ++label) {
    if (at == std::string::npos) return;
    const bool quoted = line.compare(at, 2, " '") == 0;
    const size_t from = at + (quoted ? 2 : 1);
    const size_t end = quoted ? line.find('\'', from) : std::string::npos;
    PrintLabelled(*label, line.substr(from, end == std::string::npos ? end : end - from));
    at = end == std::string::npos ? end : line.find(' ', end);
  }
}

}  // namespace

int Info(const std::string& path, bool raw) {
  const Recording recording = Inspect(path);
  if (recording.type == nullptr) {
    Complain(path, recording.problem);
    return recording.code;
  }
  char line[512];
  QuorvexGetRecordInfo(path.c_str(), line);
  if (raw) {
    std::printf("%s\n", line);
    return kDone;
  }
  PrintLabelled("file", path);
  PrintLabelled("type", std::to_string(recording.header.type) + ", " + recording.type->name);
  PrintLabelled("version", std::to_string(QuorvexGetFileVersion(path.c_str())));
  PrintLabelled("size", std::to_string(recording.size) + " bytes");
  PrintLine(recording.header.type, line);
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
