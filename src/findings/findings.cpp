#include "findings/findings.h"

#include <algorithm>

namespace quorvex {

const char* NameOf(Severity severity) {
  constexpr const char* kNames[] = {"note", "warning", "error"};
  return kNames[static_cast<size_t>(severity)];
}

const char* NameOf(FindingKind kind) {
  constexpr const char* kNames[kFindingKinds] = {"head",  "setting file", "size",
                                                 "count", "time",         "text"};
  return kNames[static_cast<size_t>(kind)];
}

std::string TextOf(const Finding& f) {
  std::string place;
  const auto add = [&](const std::string& text) { place += (place.empty() ? "" : ", ") + text; };
  if (f.offset) add("offset " + std::to_string(*f.offset));
  if (f.record != 0) add("record " + std::to_string(f.record));
  if (!f.element.empty()) add(f.element);
  return std::string(NameOf(f.severity)) + ": " + (place.empty() ? "" : place + ": ") + f.text;
}

bool Findings::Take(Severity severity, FindingKind kind) {
  worst = std::max(worst, severity);
  Severity& worst_of_kind = worst_of[static_cast<size_t>(kind)];
  worst_of_kind = std::max(worst_of_kind, severity);
  return found[static_cast<size_t>(kind)]++ < kMostFindings;
}

uint64_t Findings::Unlisted(FindingKind kind) const {
  const uint64_t all = found[static_cast<size_t>(kind)];
  return all - std::min(all, kMostFindings);
}

std::vector<std::string> LinesOf(const Findings& findings, Severity least) {
  std::vector<std::string> lines;
  for (const Finding& finding : findings.list) {
    if (finding.severity >= least) lines.push_back(TextOf(finding));
  }
  for (size_t k = 0; k < kFindingKinds; ++k) {
    const auto kind = static_cast<FindingKind>(k);
    const uint64_t more = findings.Unlisted(kind);
    const Severity worst = findings.worst_of[k];
    if (more == 0 || worst < least) continue;
    lines.push_back(std::string(NameOf(worst)) + ": " + std::to_string(more) +
                    " more of the kind '" + NameOf(kind) + "'");
  }
  return lines;
}

}  // namespace quorvex
