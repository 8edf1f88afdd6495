// The forms in which free texts and binary arrays stand in a document.
#pragma once

#include <cstdint>

namespace quorvex {

// At most `limit` bytes of `source`, up to its NUL, made safe for the document: letters, digits and
// " .,!%&=+-*/_" stay (the ampersand too), line ends become a backslash, the rest '?'. Returns the
// end of the text in `to`, which is not terminated and needs `limit` bytes.
char* EscapeText(const char* source, char* to, uint32_t limit);

// Base64 of `size` bytes with "=" padding and no line breaks. Returns the end of the text in `to`,
// which needs 4 * ceil(size / 3) bytes and is not terminated.
char* Base64Encode(const uint8_t* source, uint32_t size, char* to);

}  // namespace quorvex
