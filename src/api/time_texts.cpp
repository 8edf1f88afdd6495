#include "api/time_texts.h"

#include <cmath>

namespace quorvex {
namespace {

constexpr int kMonths = 12;
constexpr const char* kMonthNames[kMonths] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// Seconds that no 32-bit integer holds are the nearest that one holds; not-a-number is 0.
double WithinInt(double seconds) {
  if (std::isnan(seconds)) return 0;
  if (seconds > INT32_MAX) return INT32_MAX;
  return seconds < INT32_MIN ? INT32_MIN : seconds;
}

bool IsMonth(int month) { return month >= 1 && month <= kMonths; }

int DaysIn(int month, int year) {
  constexpr int kDays[kMonths] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = year % 400 == 0 || (year % 4 == 0 && year % 100 != 0);
  return month == 2 && leap ? 29 : kDays[month - 1];
}

}  // namespace

void DateTimeText(const DateTimeRecord& time, TimeDetail detail, BoundedText* to) {
  to->PutInteger(time.day, 2);
  to->Put('.');
  to->Put(kMonthNames[IsMonth(time.month) ? time.month - 1 : 0]);
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

bool IsPointInTime(const DateTimeRecord& time) {
  constexpr double kLeapSecond = 60;
  return time.year >= 1970 && time.year < 2200 && IsMonth(time.month) && time.day >= 1 &&
         time.day <= DaysIn(time.month, time.year) && time.hour < 24 && time.minute < 60 &&
         time.seconds >= 0 && time.seconds < kLeapSecond + 1;
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

void AddSeconds(DateTimeRecord* time, float seconds) {
  // Room for any 32-bit number of seconds, and then some; a damaged time stays within it too.
  constexpr double kMost = 1e10;
  const double sum = time->seconds + static_cast<double>(seconds);
  time->seconds = sum > kMost ? kMost : sum;
  if (!(time->seconds >= 60)) return;
  const auto minutes = static_cast<int64_t>(time->seconds / 60);
  time->seconds -= static_cast<double>(minutes * 60);
  const int64_t minute = time->minute + minutes;
  const int64_t hour = time->hour + minute / 60;
  int64_t day = time->day + hour / 24;
  int month = IsMonth(time->month) ? time->month : 1;
  int year = time->year;
  while (day > DaysIn(month, year)) {
    day -= DaysIn(month, year);
    if (++month > kMonths) {
      month = 1;
      ++year;
    }
  }
  time->year = static_cast<uint16_t>(year);
  time->month = static_cast<uint8_t>(month);
  time->day = static_cast<uint8_t>(day);
  time->hour = static_cast<uint8_t>(hour % 24);
  time->minute = static_cast<uint8_t>(minute % 60);
}

}  // namespace quorvex
