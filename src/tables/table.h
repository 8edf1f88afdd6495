// What tables a recording gives, and what stands in their columns. That follows from its type and
// its settings; no record is read for it.
#pragma once

#include <string>
#include <vector>

#include "records/recording.h"
#include "tables/values.h"

namespace quorvex {

enum class ValueType : uint8_t {
  kInt32,
  kInt64,
  kFloat,
  kDouble,
  kText,  // UTF-8
  kTime,  // 64-bit microseconds since 1970 began, on the instrument's clock
};

// Columns that are no values of a record.
enum class Key : uint8_t {
  kNone,
  kRecord,   // the record's number in the file, from 1
  kElement,  // the name of its element, where records have several
  kIndex,    // from 1
  kOrder,    // the harmonic order
  kTime,     // seconds from the first sample
};

struct Column {
  std::string name;  // in its table
  std::string path;  // of the element inside the record; of a key empty
  ValueType type;
  std::string unit = {}, meaning = {};
  Key key = Key::kNone;
  uint32_t part = 0;  // which float of a spectrum's entry
};

struct Table {
  enum class From : uint8_t { kFile, kSettings, kRecords, kLists };
  From from;
  std::string name;
  std::string meaning;
  std::vector<Column> columns = {};
  uint32_t most_rows = 1;    // of one record, or of one part of a record's lists
  uint32_t first_order = 0;  // where the rows are orders
};

// `file`, `settings` (which sessions have none of), `records`, then the lists in the order of the
// layout. Settings that name no layout give no records, and then neither these tables.
struct TableSet {
  std::vector<Table> tables;
  std::vector<std::string> elements;  // of the records, where they have several names
  const Table* Find(const std::string& name) const;
};
TableSet TablesOf(const RecordType& type, const UifParams& settings);
// The same where the records have this layout; null for none.
TableSet TablesOf(const RecordType& type, const Field* layout, const UifParams& settings);

// What tables of these recordings are called where those of several stand together: "general_full",
// "snapshots".
std::string WordOf(const RecordType& type, const Field* layout);

// The wiring of a recording, for the values of its layouts.
inline Wiring WiringOf(const RecordType& type, const UifParams& settings) {
  return {CaseOf(settings), settings, type.phase_label};
}

// What a column's values are: int32, int64, float, double, text, time.
const char* NameOf(ValueType type);

}  // namespace quorvex
