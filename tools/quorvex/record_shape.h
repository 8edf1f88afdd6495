// How the records of a recording lie in its file, as the layout tables say it: a front of fixed
// places, and parts that lie behind it. Counts may make records differ in length.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "records/recording.h"

namespace quorvex::tool {

struct RecordShape {
  const Field* layout = nullptr;  // null where the settings name none
  Cases which = kAllCases;
  uint32_t front = 0;     // bytes
  bool endless = false;   // a count says how long the parts are
  int64_t count = 0;      // where the settings say it
  int32_t count_at = -1;  // the word of the front that says it; -1: the settings do
  std::string count_element;
  uint64_t size = 0, size_per_count = 0;
};
RecordShape ShapeOf(const RecordType& type, const UifParams& settings);

// Bytes of a record whose parts are `count` long.
uint64_t RecordSize(const RecordShape& shape, int64_t count);

// Bytes of every record; 0 where records differ, or where there are none.
uint64_t FixedRecordSize(const RecordShape& shape);

// Visits the arrays behind the front that have an entry a count: the repeated row, its element and
// where in the record it starts.
using VisitArray =
    std::function<void(const Field& row, const std::string& element, uint64_t offset)>;
void VisitArrays(const RecordShape& shape, int64_t count, const VisitArray& visit);

// A 32-bit row of a table whose path of elements ends with `name`: its place, or -1.
int32_t FindWord(const Field& table, Cases which, const std::string& name, std::string* element);

}  // namespace quorvex::tool
