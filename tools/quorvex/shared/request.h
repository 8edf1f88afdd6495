// What several commands are asked in the same words.
#pragma once

#include <string>

#include "tables/cursor.h"

namespace quorvex::tool {

// "+01:00", "-03:30" and "Z" are offsets to UTC; an empty text asks for none. False where it is
// none of these, which is told.
bool ParseUtcOffset(const std::string& text, ReadOptions* read);

}  // namespace quorvex::tool
