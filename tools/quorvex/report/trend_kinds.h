// Which lines are drawn over time, and of what columns.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quorvex::tool {

// Columns of one line; the first that a recording has.
struct LineColumns {
  std::string label;
  std::vector<std::string> values;
  std::string low = {}, high = {};
};

struct TrendKind {
  std::string id, title, unit;
  std::vector<LineColumns> lines;
  const char* limited_by = "";  // an index
  int digits = 5;
};

// Under a wiring, by its code.
std::vector<TrendKind> KindsFor(uint8_t wiring);

}  // namespace quorvex::tool
