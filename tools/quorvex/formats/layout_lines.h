// The bytes of a layout table, line by line in the order in which they are stored.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "layout/field.h"

namespace quorvex::tool {

constexpr uint32_t kNext = UINT32_MAX;  // an offset: behind the row before

// An element or a structure, or several that differ by their phase only.
struct LayoutLine {
  const Field* row = nullptr;
  uint32_t offset = 0, size = 0, count = 1;
  bool again = false;                    // reads what another has
  std::string path, phases, inner_path;  // path, phases of its last element, what is inside that
  std::string bytes, type, meaning, unit, when;
};

std::vector<LayoutLine> LinesOf(const Field& group);

// Whether a record has parts of no fixed place.
bool HasPartsBehind(const Field& group);

// Marked as code, for Markdown.
inline std::string Code(const std::string& text) { return "`" + text + "`"; }

}  // namespace quorvex::tool
