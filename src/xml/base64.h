// The form in which arrays of bytes stand in a document.
#pragma once

#include <cstdint>

namespace quorvex {

// Base64 of `size` bytes with "=" padding and no line breaks. Returns the end of the text in `to`,
// which needs 4 * ceil(size / 3) bytes and is not terminated.
char* Base64Encode(const uint8_t* source, uint32_t size, char* to);

}  // namespace quorvex
