// What a host's file list shows of a record file.
#pragma once

#include <cstdint>

namespace quorvex {

constexpr uint32_t kRecordInfoRoom = 512;  // terminator included

// The type number, then fields in single quotes. Empty for a name that does not end in ".REC" (in
// any case), for a file that cannot be opened and for a type without a description. `text` has
// kRecordInfoRoom bytes, and is written last: hosts have the path in the same buffer.
void DescribeRecording(const char* path, char* text);

// Whole records of a general recording, as if all were of the full profile. 0 for other types,
// INT32_MIN where the file ends inside its head.
int32_t CountGeneralRecords(const char* path);

}  // namespace quorvex
