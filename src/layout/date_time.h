// Points in time as every record stores them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "layout/rows.h"

namespace quorvex {

#pragma pack(push, 1)
struct DateTimeRecord {
  uint16_t year;
  uint8_t month, day, hour, minute;
  uint8_t reserved[2];
  double seconds;
};
#pragma pack(pop)
constexpr uint32_t kDateTimeSize = 16;
static_assert(sizeof(DateTimeRecord) == kDateTimeSize && offsetof(DateTimeRecord, seconds) == 8);

// An element with six values.
inline constexpr auto kDateTimeRows =
    Shared({"date-time",
            "Seconds are cut to whole microseconds and written without "
            "trailing zeros, one decimal at least."},
           {
               U16("year", 0, "year"),
               U8("month", 2, "month, 1 to 12"),
               U8("day", 3, "day of the month"),
               U8("hour", 4, "hour"),
               U8("min", 5, "minute"),
               Gap(6, 2),
               Leaf(Kind::kSeconds, "sec", 8, 8, "seconds with fraction", "s"),
           });
constexpr Field DateTime(const char* name, uint32_t at, const char* meaning = "") {
  return Group(name, at, kDateTimeRows, meaning);
}
constexpr bool IsDateTime(const Field& f) {
  return f.kind == Kind::kGroup && f.rows == kDateTimeRows.rows.data();
}

// Where a record's fixed part has a date-time of this name; -1 for none.
int32_t DateTimeAt(const Field& group, const char* name, uint32_t place = 0);

// Whether there is one: a time that was never set is all zeros, or without seconds.
bool IsSet(const DateTimeRecord& time);

// Whether this is a date and a time of day, in the years that an instrument can have seen.
bool IsPointInTime(const DateTimeRecord& time);

// Whole microseconds since 1970 began, on the clock that the time was taken from; the rest is cut,
// as in documents. kNoTime where it is no point in time.
constexpr int64_t kNoTime = INT64_MIN;
int64_t MicrosecondsOf(const DateTimeRecord& time);

bool IsBefore(const DateTimeRecord& a, const DateTimeRecord& b);

// Moves a time forward, through the calendar. A month that is none counts as January.
void AddSeconds(DateTimeRecord* time, float seconds);

}  // namespace quorvex
