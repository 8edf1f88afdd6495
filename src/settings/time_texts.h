// Times as a file list shows them.
#pragma once

#include "layout/date_time.h"
#include "support/bounded_text.h"

namespace quorvex {

enum class TimeDetail : uint8_t { kMinutes, kMilliseconds, kSeconds };

// "07.Mar.2024 14:05:09.123". Milliseconds are cut, not rounded; a month that is none is January.
void DateTimeText(const DateTimeRecord& time, TimeDetail detail, BoundedText* to);

// "10 Min ", "1 Min 30 s"; each part only where it is not zero.
void IntervalText(uint32_t seconds, BoundedText* to);

// " 1 days 02 hours 3 Min 4 s" without the parts that are zero; "0 s" where all are.
void DurationText(uint32_t seconds, BoundedText* to);

}  // namespace quorvex
