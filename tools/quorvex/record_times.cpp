#include "record_times.h"

#include <algorithm>
#include <cstdio>
#include <tuple>

#include "xml/number_text.h"

namespace quorvex::tool {

bool IsSet(const DateTimeRecord& time) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(&time);
  const bool zeroed = std::all_of(bytes, bytes + sizeof time, [](uint8_t b) { return b == 0; });
  return !zeroed && time.seconds != kNoValueDouble;
}

bool IsBefore(const DateTimeRecord& a, const DateTimeRecord& b) {
  const auto key = [](const DateTimeRecord& t) {
    return std::tuple(int{t.year}, int{t.month}, int{t.day}, int{t.hour}, int{t.minute},
                      double{t.seconds});
  };
  return key(a) < key(b);
}

std::string TimeText(const DateTimeRecord& time) {
  char text[96];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%06.3f", time.year, time.month,
                time.day, time.hour, time.minute, double{time.seconds});
  return text;
}

}  // namespace quorvex::tool
