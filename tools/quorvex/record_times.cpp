#include "record_times.h"

#include <cstdio>

namespace quorvex::tool {

std::string TimeText(const DateTimeRecord& time) {
  char text[96];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%06.3f", time.year, time.month,
                time.day, time.hour, time.minute, double{time.seconds});
  return text;
}

}  // namespace quorvex::tool
