#include "api/record_info.h"

#include <cstring>

#include "records/information.h"
#include "records/recording_head.h"
#include "settings/instrument_state.h"
#include "support/memory.h"

namespace quorvex {
namespace {

bool EndsInRec(const char* path) {
  const char* extension = std::strrchr(path, '.');
  if (extension == nullptr) return false;
  const char* wanted = ".REC";
  for (; *wanted != '\0'; ++wanted, ++extension) {
    const bool lower = *extension >= 'a' && *extension <= 'z';
    if ((lower ? *extension - 'a' + 'A' : *extension) != *wanted) return false;
  }
  return *extension == '\0';
}

void PutLine(RecordingHead* recording, BoundedText* to) {
  InfoValue values[kMostInfoFields];
  bool estimated = false;
  const uint32_t count = InfoValues(recording, values, &estimated);
  if (count == 0) return;
  const ScopedState state(estimated ? nullptr : &recording->settings);
  to->PutInteger(static_cast<int32_t>(recording->header.type));
  for (uint32_t i = 0; i < count; ++i) {
    const char* quote = values[i].field->form == InfoForm::kNumber ? "" : "'";
    to->Put(' ');
    to->Put(quote);
    InfoText(values[i], state->settings, to);
    to->Put(quote);
  }
}

}  // namespace

void DescribeRecording(const char* path, char* text) {
  Tracked<char> line(kRecordInfoRoom);
  BoundedText to(line.get(), kRecordInfoRoom);
  if (EndsInRec(path)) {
    RecordingHead recording(path);
    PutLine(&recording, &to);
  }
  std::strcpy(text, line.get());
}

int32_t CountGeneralRecords(const char* path) {
  constexpr uint32_t kGeneralType = 1;
  constexpr float kFullRecordSize = 40448.0f;
  const RecordingHead recording(path);
  if (recording.header.type != kGeneralType) return 0;
  // A size below the head's wraps round, and its quotient then fits no 32-bit integer.
  const uint64_t behind_head = uint64_t{static_cast<uint32_t>(recording.size)} - kHeadSize;
  const float count = static_cast<float>(behind_head) / kFullRecordSize + 0.5f;
  return count < 2147483648.0f ? static_cast<int32_t>(count) : INT32_MIN;
}

}  // namespace quorvex
