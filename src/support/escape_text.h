// Free texts of recordings as they are shown.
#pragma once

#include <cstdint>

namespace quorvex {

// At most `limit` bytes of `source`, up to its NUL, made safe to show: letters, digits and
// " .,!%&=+-*/_" stay (the ampersand too), line ends become a backslash, the rest '?'. Returns the
// end of the text in `to`, which is not terminated and needs `limit` bytes.
char* EscapeText(const char* source, char* to, uint32_t limit);

}  // namespace quorvex
