#include "records/recording_head.h"

#include "records/record_types.h"
#include "settings/setting_file.h"

namespace quorvex {

RecordingHead::RecordingHead(const char* of) : path(of), file(of, kOpenRead) {
  if (!file) return;
  // Of the open file: its name may be too long for a search, or a link's.
  size = SizeOf(file.get());
  ReadBytes(file.get(), &header, sizeof header);
  type = FindRecordType(header.type);
  if (type == nullptr || type->settings_at == 0) return;
  if (!SeekTo(file.get(), type->settings_at)) return;
  ReadBytes(file.get(), &settings, kSettingsSize);
  if (type->information == nullptr) return;
  ReadBytes(file.get(), information, type->information->size);
}

void RecordingHead::UseSettingFile() {
  if (type != nullptr && type->companion && !setting_file)
    setting_file = LoadSettingFile(path, &settings) == 0;
}

}  // namespace quorvex
