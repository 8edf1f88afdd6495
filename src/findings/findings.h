// What a check finds in a recording.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quorvex {

enum class Severity : uint8_t {
  kNote,     // worth knowing
  kWarning,  // cannot be right, but converts as it stands
  kError,    // something is lost or made up, or the document is not well-formed
};
enum class FindingKind : uint8_t { kHead, kSettingFile, kSize, kCount, kTime, kText };
constexpr size_t kFindingKinds = 6;
const char* NameOf(Severity severity);
const char* NameOf(FindingKind kind);

struct Finding {
  Severity severity;
  FindingKind kind;
  std::optional<uint64_t> offset;  // in the recording
  uint64_t record;                 // counted from 1; 0: in none
  std::string element;             // its path; empty where it is about none
  std::string text;
};
// "warning: offset 3072, record 1, START_TIME: is no point in time"
std::string TextOf(const Finding& finding);

// A damaged file has as many faults as bytes, so of each kind only the first are kept.
constexpr uint64_t kMostFindings = 20;
struct Findings {
  std::vector<Finding> list;
  std::array<uint64_t, kFindingKinds> found{};  // of each kind, listed or not
  std::array<Severity, kFindingKinds> worst_of{};
  Severity worst = Severity::kNote;

  // Counts one; whether there is room for what it is about.
  bool Take(Severity severity, FindingKind kind);
  void Add(const Finding& finding) {
    if (Take(finding.severity, finding.kind)) list.push_back(finding);
  }
  uint64_t Unlisted(FindingKind kind) const;
};
// A line for each finding, and one for each kind that has more; below `least` they are left out.
std::vector<std::string> LinesOf(const Findings& findings, Severity least);

}  // namespace quorvex
