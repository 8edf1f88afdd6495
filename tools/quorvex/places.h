// Where a layout has what a check looks at: texts, points in time, counts with the room for what
// they count. Worked out once a layout, so that a record costs these places only.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "findings.h"
#include "layout/date_time.h"

namespace quorvex::tool {

struct Place {
  enum class What : uint8_t { kText, kTime, kCount };
  What what;
  const Field* field;    // the row; of a count the row that it repeats
  uint32_t offset;       // in the record
  uint32_t base;         // of a text: where its group lies
  std::string element;   // path of the names from the record inward
  int32_t counted = -1;  // the count that must reach `repetition` for this place to be written
  uint32_t repetition = 0;
  int32_t start = -1;  // of a time: the one of the same group that it must not precede
};

struct Places {
  std::vector<Place> all;
  int32_t time = -1;           // the one by which records follow each other
  uint32_t from = 0, end = 0;  // the bytes that they lie in
  // Rows that repeat by the inputs' count: the room of the smallest, 0 where there are none.
  uint32_t input_room = 0;
  std::string input_element;
  const char* counted_by = "";  // where that count comes from
};

// `which` is the one case that the recording is; `name` stands in front of every path.
Places PlacesOf(const Field& table, Cases which, const std::string& name = "");

// A piece of a recording under a layout.
struct Piece {
  const uint8_t* bytes;  // from Places::from on
  uint32_t from;
  uint64_t offset;  // of the layout's start, in the file
  uint64_t record;
  const char* remark = "";  // behind every text

  const uint8_t* At(uint32_t at) const { return bytes + (at - from); }
};

// Looks at every place of a piece that is written.
void CheckPlaces(const Places& places, const Piece& piece, Findings* findings);

// A count that lies at `at` of the piece.
void CheckCount(uint32_t at, uint32_t room, const Piece& piece, const std::string& element,
                Findings* findings);

}  // namespace quorvex::tool
