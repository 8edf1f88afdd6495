// The walk through a recording: its head, then its records, told to a listener.
#pragma once

#include <cstdint>

#include "records/listener.h"
#include "records/recording.h"
#include "records/recording_head.h"
#include "support/float_environment.h"

namespace quorvex {

// Takes the fraction done; a negative result ends the walk after the record just told.
using ProgressCallback = int32_t (*)(float fraction);

// Where a walk begins: at a record, and of its lists that come in parts at an entry.
struct WalkFrom {
  uint64_t record = 1;
  uint64_t at = 0;  // its place in the file; 0 for the first record's
  uint32_t entry = 0;
};

struct WalkOptions {
  uint32_t first = 1;  // record numbers from 1, inclusive; general recordings only
  uint32_t last = 0xFFFFFFFF;
  ProgressCallback progress = nullptr;      // for the types that report
  FloatEnvironment* host_floats = nullptr;  // what the callback works under; null: as it is
  WalkFrom from{};
  // The lists of a record that come in parts are told in turn, a part of each, and not one whole
  // after the other. Then a walk can end, and begin, behind any part.
  bool side_by_side = false;
};

// Tells a recording of a known type. False where its records cannot be read.
bool WalkRecording(RecordingHead* recording, const WalkOptions& options, Listener* listener);

// The rest is for the record types.

// A walk under way. A record type reads forward from its first record, tells each record in pieces
// and ends it.
struct Walk {
  const RecordType& type;
  const UifParams& settings;
  const Field* layout;  // of the records; null where the settings name none
  Cases which;          // the case that the recording is
  const WalkOptions& options;
  RecordingHead* recording;
  Listener* listener;
  uint64_t position = 0;  // of the next byte that Read gives
  uint64_t record = 0;    // the current one, counted from 1
  uint64_t record_at = 0;
};

// Goes to a place in the file. False where that fails.
bool MoveTo(Walk* w, uint64_t position);

// Reads on. Returns how many bytes there were; the rest of the buffer stays as it was.
inline uint32_t Read(Walk* w, void* to, uint32_t size) {
  const uint32_t got = ReadBytes(w->recording->file.get(), to, size);
  w->position += got;
  return got;
}

// The next record begins where the walk stands.
inline void BeginRecord(Walk* w) {
  ++w->record;
  w->record_at = w->position;
}

// Tells bytes of the current record that stand at `at`, `present` of them in the file.
inline void Tell(Walk* w, const Field& layout, const void* bytes, uint64_t at, uint64_t present,
                 const Inputs& inputs = {}, uint32_t first = 0) {
  w->listener->Bytes({layout, bytes, at, present, w->record, inputs, first});
}

// The current record is told; by its counts it has `size` bytes. False: nothing more is wanted.
inline bool EndRecord(Walk* w, uint64_t size) {
  return w->listener->EndRecord({w->record, w->record_at, size, true});
}

// A part of every list of the current record is told. False: nothing more is wanted.
inline bool EndPart(Walk* w, uint32_t next) {
  return w->listener->EndPart({w->record, w->record_at, next});
}

// The entry that the lists of the current record begin with.
inline uint32_t FirstEntry(const Walk& w) {
  return w.record == w.options.from.record ? w.options.from.entry : 0;
}

// The current record is short, and documents leave it out. Gives false, because the walk ends here.
bool LeaveOut(Walk* w, uint64_t size);

// Begins a record of the walk's layout and reads it, whole or not at all.
inline bool ReadWhole(Walk* w, uint8_t* record) {
  const uint32_t size = w->layout->size;
  BeginRecord(w);
  return Read(w, record, size) == size || LeaveOut(w, size);
}

// Tells and ends a record of the walk's layout.
inline bool TellRecord(Walk* w, const uint8_t* record, const Inputs& inputs = {}) {
  Tell(w, *w->layout, record, w->record_at, w->position - w->record_at, inputs);
  return EndRecord(w, w->layout->size);
}

// Tells the host's callback, which there is, the fraction done. False: stop here.
bool Report(const WalkOptions& options, float fraction);

// Reports the position in the file as progress, where the host wants it. False: stop here.
inline bool ReportPosition(const Walk& w) {
  if (w.options.progress == nullptr) return true;
  const auto size = static_cast<uint32_t>(w.recording->size);
  return Report(w.options, static_cast<float>(w.position) / static_cast<float>(size));
}

// Number of records behind the head, a last partial one included, for the size of a file in 32-bit
// arithmetic: a size below the head's wraps round to a huge count.
uint32_t CountRecords(uint32_t file_size, uint32_t record_size);

// Walks for types without anything special. The first tells the counted records. What a last
// partial record lacks is left from the one before (settings of its own start as the file's). A
// file that ends before its first record has none.
void WalkCountedRecords(Walk* w);

// Tells the whole records up to the end of the file, with progress by position.
void WalkRecordsToEnd(Walk* w);

}  // namespace quorvex
