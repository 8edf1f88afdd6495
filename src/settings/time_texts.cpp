#include "settings/time_texts.h"

#include <cmath>

namespace quorvex {
namespace {

constexpr int kNamedMonths = 12;
constexpr const char* kMonthNames[kNamedMonths] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// Seconds that no 32-bit integer holds are the nearest that one holds; not-a-number is 0.
double WithinInt(double seconds) {
  if (std::isnan(seconds)) return 0;
  if (seconds > INT32_MAX) return INT32_MAX;
  return seconds < INT32_MIN ? INT32_MIN : seconds;
}

}  // namespace

void DateTimeText(const DateTimeRecord& time, TimeDetail detail, BoundedText* to) {
  to->PutInteger(time.day, 2);
  to->Put('.');
  to->Put(kMonthNames[time.month >= 1 && time.month <= kNamedMonths ? time.month - 1 : 0]);
  to->Put('.');
  to->PutInteger(time.year, 4);
  to->Put(' ');
  to->PutInteger(time.hour, 2);
  to->Put(':');
  to->PutInteger(time.minute, 2);
  if (detail == TimeDetail::kMinutes) return;
  to->Put(':');
  const double seconds = WithinInt(time.seconds);
  if (detail == TimeDetail::kSeconds) {
    to->PutInteger(static_cast<int64_t>(std::nearbyint(seconds)), 2);
    return;
  }
  auto milliseconds = static_cast<int64_t>(seconds * 1000);
  const bool negative = milliseconds < 0;
  if (negative) {
    to->Put('-');
    milliseconds = -milliseconds;
  }
  to->PutInteger(milliseconds / 1000, negative ? 1 : 2);
  to->Put('.');
  to->PutInteger(milliseconds % 1000, 3);
}

void IntervalText(uint32_t seconds, BoundedText* to) {
  if (seconds >= 60) {
    to->PutInteger(seconds / 60);
    to->Put(" Min ");
  }
  if (seconds % 60 != 0) {
    to->PutInteger(seconds % 60);
    to->Put(" s");
  }
}

void DurationText(uint32_t seconds, BoundedText* to) {
  const uint32_t days = seconds / 86400;
  const uint32_t hours = seconds % 86400 / 3600;
  if (days != 0) {
    to->PutInteger(days, 2, ' ');
    to->Put(" days ");
  }
  if (hours != 0) {
    to->PutInteger(hours, 2);
    to->Put(" hours ");
  }
  if (seconds == 0) {
    to->Put("0 s");
  } else {
    IntervalText(seconds % 3600, to);
  }
}

}  // namespace quorvex
