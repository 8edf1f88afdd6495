#include "report/charts.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

namespace quorvex::tool {
namespace {

void AppendNumber(double value, int digits, std::string* to) {
  if (!std::isfinite(value)) {
    *to += "null";
    return;
  }
  char text[40];
  const auto end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits);
  to->append(text, end.ptr);
}

}  // namespace

size_t Charts::Times(const std::vector<int64_t>& seconds) {
  std::string list = "[";
  int64_t before = 0;
  for (const int64_t time : seconds) {
    if (list.size() > 1) list += ',';
    list += std::to_string(time - before);
    before = time;
  }
  list += ']';
  const auto known = std::find(times_.begin(), times_.end(), list);
  if (known != times_.end()) return static_cast<size_t>(known - times_.begin());
  times_.push_back(list);
  return times_.size() - 1;
}

void Charts::Mark(int64_t from, int64_t to, const std::string& label, const std::string& kind) {
  AppendPart("[" + std::to_string(from) + "," + std::to_string(to) + "," + JsonText(label) + "," +
                 JsonText(kind) + "]",
             &marks_);
}

void Charts::Add(const Figure& figure, const std::string& members) {
  AppendPart("\n{\"id\":" + JsonText(figure.id) + ",\"kind\":" + JsonText(figure.kind) + "," +
                 members + "}",
             &charts_);
}

std::string Charts::Json() const {
  std::string times;
  for (const std::string& list : times_) AppendPart("\n" + list, &times);
  return "{\"times\":[" + times + "],\"marks\":[" + marks_ + "],\"charts\":[" + charts_ + "]}";
}

std::string JsonText(const std::string& text) {
  const nlohmann::json value = text;
  const std::string dumped = value.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
  std::string safe;
  for (const char c : dumped) {
    // Nothing in a script may look like its end.
    if (c == '<') {
      safe += "\\u003c";
    } else {
      safe += c;
    }
  }
  return safe;
}

std::string JsonNumbers(const std::vector<float>& values, int digits) {
  std::string list = "[";
  for (const float value : values) {
    if (list.size() > 1) list += ',';
    AppendNumber(static_cast<double>(value), digits, &list);
  }
  return list + "]";
}

std::string JsonNumber(double value, int digits) {
  std::string text;
  AppendNumber(value, digits, &text);
  return text;
}

std::string JsonSeries(const std::string& label, const std::vector<float>& values, int digits) {
  return "{\"label\":" + JsonText(label) + ",\"values\":" + JsonNumbers(values, digits) + "}";
}

void AppendPart(const std::string& part, std::string* list) {
  if (!list->empty()) *list += ',';
  *list += part;
}

}  // namespace quorvex::tool
