// Whether a recording is sound: its head, its size, its counts, its times, its texts. The layout
// tables say where these are. Memory does not grow with the file, and time does not grow faster.
#pragma once

#include "findings.h"
#include "shared/inspection.h"

namespace quorvex::tool {

struct CheckResult {
  Recording recording;
  std::optional<uint64_t> records;
  Findings findings;
};
CheckResult CheckRecording(const std::string& path);

// What is to be said of general records of a profile that no layout belongs to.
Finding NoLayout(uint32_t profile);

}  // namespace quorvex::tool
