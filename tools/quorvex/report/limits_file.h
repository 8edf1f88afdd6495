// Limits as people keep them: a JSON file.
#pragma once

#include <optional>
#include <string>

#include "assessment/limits.h"

namespace quorvex::tool {

// Reads limits from a JSON text. Nothing where they cannot be used, with the reason: which entry,
// and what is wrong with it. What the text says nothing of (classes of events, curves) is that of
// `otherwise`, where there is one.
std::optional<Limits> LimitsOf(const std::string& text, const Limits* otherwise,
                               std::string* problem);

}  // namespace quorvex::tool
