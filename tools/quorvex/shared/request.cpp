#include "shared/request.h"

#include <cctype>

#include "shared/messages.h"

namespace quorvex::tool {
namespace {

bool ParseOffset(const std::string& text, int32_t* minutes) {
  const auto digit = [&](size_t at) {
    return at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])) != 0;
  };
  *minutes = 0;
  if (text == "Z") return true;
  if (text.size() != 6 || (text[0] != '+' && text[0] != '-') || text[3] != ':') return false;
  if (!digit(1) || !digit(2) || !digit(4) || !digit(5)) return false;
  const int hours = std::stoi(text.substr(1, 2)), rest = std::stoi(text.substr(4));
  *minutes = (hours * 60 + rest) * (text[0] == '-' ? -1 : 1);
  return hours < 24 && rest < 60;
}

}  // namespace

bool ParseUtcOffset(const std::string& text, ReadOptions* read) {
  if (text.empty()) return true;
  int32_t minutes = 0;
  if (!ParseOffset(text, &minutes)) {
    Complain("--utc-offset " + text, "is no offset such as +01:00, -03:30 or Z");
    return false;
  }
  read->utc_offset = minutes;
  return true;
}

}  // namespace quorvex::tool
