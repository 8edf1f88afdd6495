// The one-line description of a record file for a host's file list.
#pragma once

#include <cstdint>

namespace quorvex {

constexpr uint32_t kRecordInfoRoom = 512;  // terminator included

// The type number, then fields in single quotes. Empty for a name that does not end in ".REC" (in
// any case), for a file that cannot be opened and for a type without a description. `text` has
// kRecordInfoRoom bytes.
void DescribeRecording(const char* path, char* text);

}  // namespace quorvex
