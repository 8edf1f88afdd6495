// Tells what a recording is, as far as its head does.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "findings/findings.h"
#include "inspection/facts.h"
#include "records/recording_head.h"
#include "shared/system.h"

namespace quorvex::tool {

// The head of a recording, or why it has none.
struct Recording {
  ExitCode code = kDone;
  std::string problem;  // empty where there is none
  std::optional<FileHeader> header;
  const RecordType* type = nullptr;  // null for unknown types
  uint64_t size = 0;
  bool setting_file = false;  // its settings are those of a setting file
  bool has_layout = true;     // for its records; the settings may name none
  uint32_t profile = 0;
  std::optional<uint64_t> records;  // whole ones; nothing where they differ in size
};
Recording Inspect(const std::string& path);
// The same of a head that is read already, with the settings in force.
Recording Inspect(RecordingHead* head);

// What a check says of a recording.
struct CheckResult {
  Recording recording;
  Findings findings;
};
CheckResult CheckRecording(const std::string& path);

// Everything that a file list shows of a recording.
struct RecordingFacts {
  std::string path;
  Recording recording;
  Facts facts;
};
RecordingFacts FactsOf(const std::string& path);

}  // namespace quorvex::tool
