// Points in time as records store them, compared and shown.
#pragma once

#include <string>

#include "settings/settings_record.h"

namespace quorvex::tool {

// "2024-03-07 14:05:9.25"
std::string TimeText(const DateTimeRecord& time);

}  // namespace quorvex::tool
