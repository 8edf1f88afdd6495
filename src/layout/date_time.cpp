#include "layout/date_time.h"

#include <array>
#include <bit>
#include <cstring>
#include <tuple>

namespace quorvex {
namespace {

constexpr int kMonths = 12;

bool IsMonth(int month) { return month >= 1 && month <= kMonths; }

int DaysIn(int month, int year) {
  constexpr int kDays[kMonths] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = year % 400 == 0 || (year % 4 == 0 && year % 100 != 0);
  return month == 2 && leap ? 29 : kDays[month - 1];
}

}  // namespace

int32_t DateTimeAt(const Field& group, const char* name, uint32_t place) {
  for (uint32_t r = 0; r < group.row_count; ++r) {
    const Field& f = group.rows[r];
    if (f.kind != Kind::kGroup || f.repeated || f.behind) continue;
    const uint32_t at = place + f.offset;
    if (IsDateTime(f) && std::strcmp(f.name, name) == 0) return static_cast<int32_t>(at);
    const int32_t inside = f.name[0] == '\0' ? DateTimeAt(f, name, at) : -1;
    if (inside >= 0) return inside;
  }
  return -1;
}

bool IsSet(const DateTimeRecord& time) {
  using Bytes = std::array<uint8_t, sizeof time>;
  return std::bit_cast<Bytes>(time) != Bytes{} && time.seconds != kNoValueDouble;
}

bool IsPointInTime(const DateTimeRecord& time) {
  constexpr double kLeapSecond = 60;
  return time.year >= 1970 && time.year < 2200 && IsMonth(time.month) && time.day >= 1 &&
         time.day <= DaysIn(time.month, time.year) && time.hour < 24 && time.minute < 60 &&
         time.seconds >= 0 && time.seconds < kLeapSecond + 1;
}

int64_t MicrosecondsOf(const DateTimeRecord& time) {
  if (!IsPointInTime(time)) return kNoTime;
  // Years that begin in March have their odd day at their end.
  const int year = time.month > 2 ? time.year : time.year - 1;
  const int month = (time.month + 9) % 12;
  const int day_of_year = (153 * month + 2) / 5 + time.day - 1;
  constexpr int kDaysTo1970 = 719468;  // from March of the year 0
  const int64_t day = int64_t{year} * 365 + year / 4 - year / 100 + year / 400 + day_of_year;
  const int64_t minutes = ((day - kDaysTo1970) * 24 + time.hour) * 60 + time.minute;
  constexpr int64_t kSecond = 1000000;
  return minutes * 60 * kSecond + static_cast<int64_t>(time.seconds * static_cast<double>(kSecond));
}

bool IsBefore(const DateTimeRecord& a, const DateTimeRecord& b) {
  const auto key = [](const DateTimeRecord& t) {
    return std::tuple(int{t.year}, int{t.month}, int{t.day}, int{t.hour}, int{t.minute},
                      double{t.seconds});
  };
  return key(a) < key(b);
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
