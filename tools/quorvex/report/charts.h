// The data of a page's charts. They go into the page as JSON, in arrays, for its script to draw;
// the page has a figure of the same name for each.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quorvex::tool {

// Where a chart stands on the page.
struct Figure {
  std::string id, kind;
  std::string title;
};

class Charts {
 public:
  // Seconds since 1970 of points that charts share; the number by which charts name them.
  size_t Times(const std::vector<int64_t>& seconds);
  void Mark(int64_t from, int64_t to, const std::string& label, const std::string& kind);
  // `members` are those of the chart's object behind "id" and "kind": `"unit":"V",...`.
  void Add(const Figure& figure, const std::string& members);

  std::string Json() const;

 private:
  std::vector<std::string> times_;
  std::string marks_, charts_;
};

// A text of JSON that may stand in a page's script, and an array of numbers to so many digits, in
// which null stands for what is missing.
std::string JsonText(const std::string& text);
std::string JsonNumbers(const std::vector<float>& values, int digits);
std::string JsonNumber(double value, int digits);

// {"label":…,"values":[…]}
std::string JsonSeries(const std::string& label, const std::vector<float>& values, int digits);

// Puts parts of a list together.
void AppendPart(const std::string& part, std::string* list);

}  // namespace quorvex::tool
