// The head of a recording, which every use of it begins with. The file stays open for more.
#pragma once

#include "records/recording.h"
#include "support/file.h"

namespace quorvex {

struct RecordingHead {
  // Reads what there is of the head. What a short file lacks is zero.
  explicit RecordingHead(const char* path);

  // Replaces the settings by those of the setting file beside the recording, where its type takes
  // one and there is one.
  void UseSettingFile();

  // Bytes `at` to `at + count` that the file has.
  uint64_t PresentAt(uint64_t at, uint64_t count) const {
    return at >= size ? 0 : count < size - at ? count : size - at;
  }

  const char* path;
  File file;          // not open where it cannot be read
  uint64_t size = 0;  // in bytes; 0 where it is not known
  FileHeader header{};
  const RecordType* type = nullptr;  // null for an unknown one
  UifParams settings{};
  bool setting_file = false;      // the settings are those of a setting file
  uint8_t information[256] = {};  // what the type's information block speaks of
};

}  // namespace quorvex
