// Pieces of HTML. Every text goes through Escaped: names from a recording can hold anything.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quorvex::tool {

std::string Escaped(const std::string& text);

// A table under construction. Cells of the columns that hold numbers stand to the right.
class HtmlTable {
 public:
  // Titles in front of which stands '#' are of numbers.
  HtmlTable(const std::string& css_class, const std::vector<std::string>& titles);
  // Texts, which are escaped here. `attributes` go into the row as they are: ` data-index="thd"`.
  void Row(const std::vector<std::string>& cells, const std::string& attributes = "");
  // The class of a cell of the rows to come: of column `column`.
  void Class(size_t column, const std::string& css_class) { classes_[column] = css_class; }
  bool is_empty() const { return rows_.empty(); }
  // In a box that scrolls where the screen is narrow.
  std::string Html() const;

 private:
  std::string css_class_;
  std::vector<std::string> titles_, classes_;
  std::string rows_;
};

std::string Paragraph(const std::string& text, const std::string& css_class = "");
std::string Heading(int level, const std::string& text);
// What stands folded behind a line; `html` is as it is.
std::string Details(const std::string& summary, const std::string& html, bool open = false);

// "94.32 %": cut, not rounded, so that what is below a limit never looks as if it were at it.
std::string SharePercent(double share);
// To so many digits; an empty text for what is no number.
std::string NumberText(double value, int digits = 5);
// "1,008"
std::string CountText(uint64_t count);

}  // namespace quorvex::tool
