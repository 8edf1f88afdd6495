#include "records/walk.h"

#include "settings/settings_table.h"
#include "support/loads.h"
#include "support/memory.h"

namespace quorvex {
namespace {

void TellHead(Walk* w) {
  RecordingHead* head = w->recording;
  Tell(w, kFileHeader, &head->header, 0, sizeof(FileHeader));
  const RecordType& type = w->type;
  if (type.settings_at == 0) return;
  Inputs inputs;
  inputs.number[kHarmonicsFlag] = type.harmonics_flag ? 1 : 0;
  Tell(w, kSettingsBlock, &head->settings, type.settings_at, kSettingsSize, inputs);
  if (type.information == nullptr) return;
  const uint64_t at = type.settings_at + kSettingsSize;
  Tell(w, *type.information, head->information, at, head->PresentAt(at, type.information->size));
}

}  // namespace

bool WalkRecording(RecordingHead* recording, const WalkOptions& options, Listener* listener) {
  const RecordType& type = *recording->type;
  WalkOptions reached = options;
  if (!type.progress) reached.progress = nullptr;
  const UifParams& settings = recording->settings;
  Walk w = {type,      settings, LayoutOf(type, settings), CaseOf(settings), reached,
            recording, listener};
  TellHead(&w);
  if (type.walk == nullptr) return true;
  Field list;
  list.kind = Kind::kGroup;
  list.name = type.list != nullptr ? type.list : "";
  if (type.list != nullptr) listener->BeginGroup(list, nullptr);
  w.record = options.from.record - 1;
  const bool there = MoveTo(&w, options.from.at != 0 ? options.from.at : type.records_at);
  if (there) type.walk(&w);
  if (type.list != nullptr) listener->EndGroup();
  return there;
}

bool MoveTo(Walk* w, uint64_t position) {
  w->position = position;
  return SeekTo(w->recording->file.get(), position);
}

bool LeaveOut(Walk* w, uint64_t size) {
  if (w->position != w->record_at) {
    w->listener->EndRecord({w->record, w->record_at, size, false});
  }
  return false;
}

// Not inline, so that the fraction is computed before the settings change hands.
__attribute__((noinline)) bool Report(const WalkOptions& options, float fraction) {
  if (options.host_floats != nullptr) RestoreFloats(*options.host_floats);
  const int32_t answer = options.progress(fraction);
  if (options.host_floats != nullptr) {
    SaveFloats(options.host_floats);
    SetOwnFloats();
  }
  return answer >= 0;
}

uint32_t CountRecords(uint32_t file_size, uint32_t record_size) {
  const uint32_t behind_head = file_size - kHeadSize;
  return behind_head == 0 ? 0 : (behind_head - 1) / record_size + 1;
}

void WalkCountedRecords(Walk* w) {
  if (w->recording->size < w->type.records_at) return;
  const uint32_t record_size = w->layout->size;
  Tracked<uint8_t> record(record_size);
  if (w->type.record_settings_at != 0) {
    Store(record.get() + w->type.record_settings_at, w->settings);
  }
  const uint32_t count = CountRecords(static_cast<uint32_t>(w->recording->size), record_size);
  while (w->record < count) {
    BeginRecord(w);
    Read(w, record.get(), record_size);
    if (!TellRecord(w, record.get())) return;
  }
}

void WalkRecordsToEnd(Walk* w) {
  Tracked<uint8_t> record(w->layout->size);
  while (ReadWhole(w, record.get()) && TellRecord(w, record.get()) && ReportPosition(*w)) {
  }
}

}  // namespace quorvex
