// What the record types share: how a recording is described, and the walk that converts it.
#pragma once

#include <cstdint>

#include "layout/tiles.h"
#include "settings/cases.h"
#include "settings/settings_record.h"
#include "support/file.h"
#include "support/float_environment.h"
#include "xml/element_writer.h"

namespace quorvex {

// Takes the fraction done; a negative result stops the conversion after the record just written.
using ProgressCallback = int32_t (*)(float fraction);

// What a host asks for.
struct Request {
  const char* input;
  const char* output = nullptr;  // null: beside the input, with the extension ".xml"
  uint32_t first = 1;            // record numbers from 1, inclusive; general recordings only
  uint32_t last = 0xFFFFFFFF;
  ProgressCallback progress = nullptr;
  GoOn go_on = nullptr;  // see WriteAll; where it says no, the document ends as it stands
  FloatEnvironment* host_floats = nullptr;  // what the callback works under; null: as it is
};

// The eight bytes at the start of every file.
struct FileHeader {
  uint32_t version;
  uint32_t type;
};
static_assert(sizeof(FileHeader) == kFileHeaderSize);
inline constexpr Field kFileHeaderRows[] = {
    I32("FILE_VERSION", offsetof(FileHeader, version), "version of the file format"),
    I32("FILE_TYPE", offsetof(FileHeader, type), "record type, 1 to 18"),
};
inline constexpr Field kFileHeader = Record("FILE_HEADER", sizeof(FileHeader), kFileHeaderRows);
static_assert(Tiles<WrongByte(kFileHeader)>);

struct RecordType;

// What becomes of a last record that is cut short: where at least `from` of its bytes are there, it
// is written, and `rest` says how.
struct CutRecord {
  uint32_t from;
  const char* rest;
};
constexpr CutRecord kLeftOut = {UINT32_MAX, ""};
constexpr CutRecord kFilledFromBefore = {
    1, "what it lacks is left over from the record before (zeros in the first)"};

// A conversion under way, as the writers of the record types see it.
struct Conversion {
  const RecordType& type;
  const Request& request;
  const UifParams& settings;  // zeroed where the file has none
  XmlWriter* document;
  FileHandle* input;  // stands at the first record
  uint32_t size;      // low 32 bits of the file's size, 0 where it is not known
  uint64_t whole_size;
};

// The layouts of a type whose records have several: the settings choose one for the whole file.
struct LayoutChoice {
  const Field* const* layouts;  // every layout that there is
  uint32_t count;
  const Field* (*choose)(const UifParams& settings);  // null where these settings name none
};

// One row of the table of record types. The differences between types are its columns.
struct RecordType {
  uint32_t type;
  const char* name;   // in words
  const char* about;  // what one must know about its files, for documentation
  const char* list;   // element around the records, null for none
  // A record with all its elements, where every record has the same layout. Its size is that of
  // what stands in front of the parts that lie behind.
  const Field* record;
  void (*write)(const Conversion&);        // writes the records
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
  int32_t samples_at = -1;  // the word of a record that counts its samples, if no row names it
};

// The type with this number, or null. The table of all types is behind it.
const RecordType* FindRecordType(uint32_t type);

// Event and alarm recordings have a longer head: bytes of the instrument's own stand between the
// file header and the settings, and a block of information follows.
constexpr uint32_t kLongSettingsAt = 128;
constexpr uint32_t kLongHeadSize = kLongSettingsAt + kSettingsSize;

// Reads the first eight bytes of a file. The type is 0 where there are none, and what a file too
// short for them leaves out keeps its value otherwise.
void ReadFileHeader(const char* path, FileHeader* header);

// Converts one file of a known type. Without a readable input, or with an output that cannot be
// created, there is no document. False then, and where the document is not all there: its writing
// was given up, or the recording vanished or became one of another type meanwhile.
bool ConvertRecording(const RecordType& type, const Request& request);

// Number of records behind the head, a last partial one included, for the size of a file in 32-bit
// arithmetic: a size below the head's wraps round to a huge count.
uint32_t CountRecords(uint32_t file_size, uint32_t record_size);

// Writes the counted records of `type.record`. What a last partial record lacks is left from the
// one before (settings of its own start as the file's). A file that ends before its first record
// has none.
void WriteCountedRecords(const Conversion& c);

// Writes the whole records of `type.record` up to the end of the file, with progress by position.
void WriteRecordsToEnd(const Conversion& c);

// Tells the host's callback, which there is, the fraction done. False: stop here.
bool Report(const Request& request, float fraction);

// Reports the position in the file as progress, where the host wants it. False: stop here.
bool ReportPosition(const Conversion& c);

}  // namespace quorvex
