// quorvex convert: the document appears under its name only when it is complete.
#include <cstdio>
#include <cstring>

#include "commands.h"
#include "host.h"
#include "quorvex64.h"

namespace quorvex::tool {
namespace {

bool ParseRange(const std::string& text, uint32_t* first, uint32_t* last) {
  char end = '\0';
  if (std::sscanf(text.c_str(), "%u-%u%c", first, last, &end) != 2) return false;
  return text.find_first_not_of("0123456789-") == std::string::npos && *first >= 1 &&
         *first <= *last;
}

std::string BesideInput(const std::string& input) {
  std::string output = input;
  const size_t dot = output.rfind('.');
  if (dot != std::string::npos) output.resize(dot);
  return output + ".xml";
}

bool show_progress = false;

int32_t QUORVEX_CALL OnProgress(float fraction) {
  if (show_progress && fraction >= 0) {
    constexpr int kWidth = 40;
    const int done = fraction < 1 ? static_cast<int>(fraction * kWidth) : kWidth;
    std::fprintf(stderr, "\r[%.*s%*s] %3d%%", done, "########################################",
                 kWidth - done, "", done * 100 / kWidth);
  }
  return Interrupted() ? -1 : 0;
}

// Tries whether a file can be created, so that a failure has a reason.
bool CanCreate(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  std::fclose(file);
  return true;
}

}  // namespace

int Convert(const ConvertOptions& options) {
  uint32_t first = 1;
  uint32_t last = 0xFFFFFFFF;
  if (!options.records.empty() && !ParseRange(options.records, &first, &last)) {
    Complain("--records " + options.records, "is no range of records such as 3-5");
    return kUsage;
  }
  const Recording recording = Inspect(options.input);
  if (recording.type == nullptr) {
    Complain(options.input, recording.problem);
    return recording.code;
  }
  const std::string named = options.output.empty() ? BesideInput(options.input) : options.output;
  if (IsFolder(named)) {
    Complain(named, "is a folder; the document needs a file name");
    return kNoOutput;
  }
  const std::string output = Resolved(named);
  if (SameRecording(options.input, output)) {
    Complain(output, "is the recording itself; it is not overwritten");
    return kNoOutput;
  }
  // Into a device or a pipe the document goes directly: there is no name to keep clean.
  const bool direct = IsSpecial(output);
  const std::string scratch = direct ? output : output + "." + std::to_string(ProcessId()) + "~";
  if (scratch.size() > kMaxPath) {
    Complain(output, "the path is too long");
    return kNoOutput;
  }
  if (!direct && !CanCreate(scratch)) {
    Complain(output, "cannot be written: " + LastError());
    return kNoOutput;
  }

  CatchInterrupts(direct ? "" : scratch);
  show_progress = recording.type->progress && ErrorsGoToTerminal();
  QuorvexConvertPerPartes(options.input.c_str(), scratch.c_str(), first, last, OnProgress);
  if (show_progress) std::fprintf(stderr, "\r%60s\r", "");
  if (Interrupted()) {
    if (!direct) std::remove(scratch.c_str());
    Complain(options.input, "cancelled");
    return kCancelled;
  }
  if (!direct && !Replace(scratch, output)) {
    Complain(output, "cannot be written: " + LastError());
    std::remove(scratch.c_str());
    return kNoOutput;
  }
  return kDone;
}

}  // namespace quorvex::tool
