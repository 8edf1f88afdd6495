// How a type of recordings is described.
#pragma once

#include <cstdint>

#include "layout/tiles.h"
#include "records/information.h"
#include "settings/cases.h"  // IWYU pragma: export
#include "settings/settings_record.h"

namespace quorvex {

// The eight bytes at the start of every file.
struct FileHeader {
  uint32_t version;
  uint32_t type;
};
static_assert(sizeof(FileHeader) == kFileHeaderSize);
inline constexpr Field kFileHeaderRows[] = {
    I32("FILE_VERSION", offsetof(FileHeader, version), "version of the file format"),
    I32("FILE_TYPE", offsetof(FileHeader, type), "record type"),
};
inline constexpr Field kFileHeader = Record("FILE_HEADER", sizeof(FileHeader), kFileHeaderRows);
static_assert(Tiles<WrongByte(kFileHeader)>);

// What becomes of a last record that is cut short: where at least `from` of its bytes are there, it
// is written, and `rest` says how.
struct CutRecord {
  uint32_t from;
  const char* rest;
};
constexpr CutRecord kLeftOut = {UINT32_MAX, ""};
constexpr CutRecord kFilledFromBefore = {
    1, "what it lacks is left over from the record before (zeros in the first)"};

struct Walk;

// The layouts of a type whose records have several: the settings choose one for the whole file.
struct LayoutChoice {
  const Field* const* layouts;  // every layout that there is
  const char* const* words;     // one for each, for names
  uint32_t count;
  const Field* (*choose)(const UifParams& settings);  // null where these settings name none
};

// One row of the table of record types. The differences between types are its columns.
struct RecordType {
  uint32_t type;
  const char* word;            // for names: "general"
  const char* name;            // in words
  const char* about;           // what one must know about its files, for documentation
  const char* list = nullptr;  // element around the records, null for none
  // A record with all its elements, where every record has the same layout. Where parts of varying
  // length lie behind it, the size covers the fixed part only.
  const Field* record = nullptr;
  void (*walk)(Walk* walk) = nullptr;      // through the records; null where there are none
  uint32_t settings_at = kFileHeaderSize;  // 0: the file carries no settings
  uint32_t records_at = kHeadSize;
  bool companion = false;              // a setting file beside it replaces the settings
  bool state = false;                  // an instrument state record is held meanwhile
  bool harmonics_flag = false;         // variant of the settings block
  bool progress = false;               // the host's callback reaches it: reports, can be stopped
  const Field* information = nullptr;  // block behind the settings, written before the list
  uint32_t record_settings_at = 0;     // where a record carries settings of its own, 0: nowhere
  bool once = false;                   // one record a file, whether it is all there or not
  CutRecord cut = kLeftOut;
  // In the place of `record`, where there are several layouts.
  const LayoutChoice* choice = nullptr;
  // Bytes of a record, where that is more than its layout's size; 0 where records differ.
  uint64_t (*size)(const UifParams& settings) = nullptr;
  InfoLine line{};  // the information line; without fields where there is none
  // The word of the settings that counts the entries of every part of a record; -1 for none.
  int32_t counted_at = -1;
  // The float of the settings that is the time between samples, in seconds where it can be; -1
  // where records have their own, and where there are no samples.
  int32_t step_at = -1;
  // What a phase of the layout is called under these settings, where that is not its label.
  const char* (*phase_label)(const UifParams& settings, const char* label) = nullptr;
};

// The layout of a type's records under these settings; null where there is none.
inline const Field* LayoutOf(const RecordType& type, const UifParams& settings) {
  return type.choice != nullptr ? type.choice->choose(settings) : type.record;
}

// Bytes of every record; 0 where records differ, and where there are none.
inline uint64_t RecordSize(const RecordType& type, const UifParams& settings) {
  if (type.size != nullptr) return type.size(settings);
  const Field* layout = LayoutOf(type, settings);
  return layout != nullptr ? layout->size : 0;
}

// Event and alarm recordings have a longer head: bytes of the instrument's own stand between the
// file header and the settings, and a block of information follows.
constexpr uint32_t kLongSettingsAt = 128;
constexpr uint32_t kLongHeadSize = kLongSettingsAt + kSettingsSize;

}  // namespace quorvex
