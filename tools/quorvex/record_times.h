// Points in time as records store them, compared and shown.
#pragma once

#include <string>

#include "settings/settings_record.h"

namespace quorvex::tool {

// Whether there is one: a time that was never set is all zeros, or without seconds.
bool IsSet(const DateTimeRecord& time);
bool IsBefore(const DateTimeRecord& a, const DateTimeRecord& b);
// "2024-03-07 14:05:9.25"
std::string TimeText(const DateTimeRecord& time);

}  // namespace quorvex::tool
