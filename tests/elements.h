// Expected documents, written down element by element.
#pragma once

#include <cstdio>
#include <string>

namespace quorvex::test {

inline std::string Value(const std::string& name, const std::string& text) {
  return "<" + name + ">" + text + "</" + name + ">\r\n";
}
inline std::string Value(const std::string& name, int64_t number) {
  return Value(name, std::to_string(number));
}
inline std::string Element(const std::string& name, const std::string& content) {
  return "<" + name + ">\r\n" + content + "</" + name + ">\r\n";
}
// 7 March 2024, 14:05.
inline std::string Time(const std::string& name, const std::string& seconds) {
  return Element(name, Value("year", 2024) + Value("month", 3) + Value("day", 7) +
                           Value("hour", 14) + Value("min", 5) + Value("sec", seconds));
}
// The C library's text of a float.
inline std::string FloatE(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%E", value);
  return text;
}

}  // namespace quorvex::test
