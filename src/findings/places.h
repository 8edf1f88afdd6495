// Where a layout has what a check looks at: texts, points in time, counts with the room for what
// they count. Worked out once a layout, so that a record costs these places only.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "findings/findings.h"
#include "layout/date_time.h"
#include "records/listener.h"

namespace quorvex {

struct Place {
  enum class What : uint8_t { kText, kTime, kTimes, kCount };
  What what;
  const Field* field;
  uint32_t offset;      // in the layout
  uint32_t base;        // of a text: where its group lies
  std::string element;  // path of the names from the layout inward
  // A place that is written only where a count reaches `repetition`: the place of that count.
  int32_t counted = -1;
  uint32_t repetition = 0;
  int32_t start = -1;  // of a time: the one of the same group that it must not precede
  uint32_t room = 0;   // of a count: what there is room for
};

struct Places {
  const Field* layout;
  std::vector<Place> all;
  int32_t time = -1;  // the one by which records follow each other
};

// `which` is the one case that the recording is.
Places PlacesOf(const Field& layout, Cases which);

// What stands in front of the element of a finding, and behind its text.
struct Surroundings {
  std::string path;
  std::string remark;
};

// Looks at every place of a piece that is written and that the file has.
void CheckPlaces(const Places& places, const Piece& piece, const Surroundings& around,
                 Findings* findings);

// "2024-03-07 14:05:09.250"
std::string TimeText(const DateTimeRecord& time);

}  // namespace quorvex
