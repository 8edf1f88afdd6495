// Expected documents in a short form, so that they can be written down whole.
#pragma once

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace quorvex::test {

// The lines of "name=value", "name{", "}", and "name@seconds" for a time on 7 March 2024 at 14:05.
inline std::string Xml(const std::string& form) {
  std::istringstream words(form);
  std::vector<std::string> open;
  std::string text, word;
  while (words >> word) {
    const size_t mark = word.find_first_of("={}@");
    const std::string name = word.substr(0, mark), rest = word.substr(mark + 1);
    if (word[mark] == '=') text += "<" + name + ">" + rest + "</" + name + ">\r\n";
    if (word[mark] == '@') {
      text += Xml(name + "{ year=2024 month=3 day=7 hour=14 min=5 sec=" + rest + " }");
    }
    if (word[mark] == '{') text += "<" + name + ">\r\n", open.push_back(name);
    if (word[mark] == '}') text += "</" + open.back() + ">\r\n", open.pop_back();
  }
  return text;
}

// The C library's text of a float.
inline std::string FloatE(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%E", value);
  return text;
}

}  // namespace quorvex::test
