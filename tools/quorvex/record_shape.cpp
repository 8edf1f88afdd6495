#include "record_shape.h"

#include <algorithm>

#include "settings/cases.h"
#include "settings/settings_table.h"
#include "support/loads.h"

namespace quorvex::tool {
namespace {

bool Written(const Field& f, Cases which) { return (f.cases & which) != 0; }

// Where the rows in front end.
uint32_t FrontEnd(const Field& group, Cases which, uint32_t place) {
  uint32_t end = place;
  for (uint32_t r = 0; r < group.row_count; ++r) {
    const Field& f = group.rows[r];
    if (!Written(f, which) || f.behind) continue;
    const uint32_t last = place + f.offset + (f.count - 1) * f.step;
    end = std::max(end, f.kind == Kind::kGroup ? FrontEnd(f, which, last) : last + f.size);
  }
  return end;
}

// Walks the parts behind the front in their order; `position` moves on.
struct PartWalk {
  Cases which;
  uint64_t count;
  const VisitArray* visit;  // or null
  uint64_t position;
  bool any = false;                  // whether there can be parts
  const char* counted_by = nullptr;  // of the first endless row

  void Take(const Field& f, const std::string& element) {
    if (f.repeated) {
      if (f.endless && counted_by == nullptr) counted_by = f.counted_by;
      if (f.endless && visit != nullptr) (*visit)(f, element, position);
      position += (f.endless ? count : f.count) * f.step;
    } else if (f.size != 0) {
      position += f.size;
    } else {
      for (uint32_t r = 0; r < f.row_count; ++r) {
        if (Written(f.rows[r], which)) Take(f.rows[r], element + "/" + f.rows[r].name);
      }
    }
  }
  void Find(const Field& group) {
    for (uint32_t r = 0; r < group.row_count; ++r) {
      const Field& f = group.rows[r];
      any = any || f.behind;
      if (!Written(f, which)) continue;
      if (f.behind) {
        Take(f, f.name);
      } else if (f.kind == Kind::kGroup) {
        Find(f);
      }
    }
  }
};

bool EndsWith(const std::string& path, const std::string& name) {
  if (path.size() < name.size()) return false;
  const size_t at = path.size() - name.size();
  return path.compare(at, name.size(), name) == 0 && (at == 0 || path[at - 1] == '/');
}

int32_t FindIn(const Field& group, Cases which, uint32_t place, const std::string& path,
               const std::string& name, std::string* element) {
  for (uint32_t r = 0; r < group.row_count; ++r) {
    const Field& f = group.rows[r];
    if (!Written(f, which) || f.repeated || f.behind) continue;
    const std::string here = path + f.name;
    if (f.kind == Kind::kI32 && EndsWith(here, name)) {
      *element = here;
      return static_cast<int32_t>(place + f.offset);
    }
    if (f.kind != Kind::kGroup) continue;
    const int32_t found =
        FindIn(f, which, place + f.offset, f.name[0] != '\0' ? here + "/" : path, name, element);
    if (found >= 0) return found;
  }
  return -1;
}

}  // namespace

int32_t FindWord(const Field& table, Cases which, const std::string& name, std::string* element) {
  return FindIn(table, which, 0, "", name, element);
}

RecordShape ShapeOf(const RecordType& type, const UifParams& settings) {
  RecordShape shape;
  shape.layout = type.choice != nullptr ? type.choice->choose(settings) : type.record;
  shape.which = CaseOf(settings);
  if (shape.layout == nullptr) return shape;
  PartWalk parts{shape.which, 0, nullptr, 0};
  parts.Find(*shape.layout);
  PartWalk counted{shape.which, 1, nullptr, 0};
  counted.Find(*shape.layout);
  // Of a record with parts the front may be shorter than there is room for.
  shape.front = parts.any ? FrontEnd(*shape.layout, shape.which, 0) : shape.layout->size;
  shape.size = shape.front + parts.position;
  shape.size_per_count = counted.position - parts.position;
  shape.endless = parts.counted_by != nullptr;
  if (!shape.endless) return shape;
  shape.count_at = FindWord(*shape.layout, shape.which, parts.counted_by, &shape.count_element);
  if (shape.count_at >= 0) return shape;
  const int32_t at = FindWord(kSettingsBlock, kAllCases, parts.counted_by, &shape.count_element);
  shape.count_element = std::string(kSettingsBlock.name) + "/" + shape.count_element;
  shape.count = Load<int32_t>(reinterpret_cast<const uint8_t*>(&settings) + at);
  return shape;
}

uint64_t RecordSize(const RecordShape& shape, int64_t count) {
  return shape.size + static_cast<uint64_t>(std::max<int64_t>(count, 0)) * shape.size_per_count;
}

uint64_t FixedRecordSize(const RecordShape& shape) {
  if (shape.layout == nullptr || shape.count_at >= 0) return 0;
  return RecordSize(shape, shape.count);
}

void VisitArrays(const RecordShape& shape, int64_t count, const VisitArray& visit) {
  PartWalk{shape.which, static_cast<uint64_t>(std::max<int64_t>(count, 0)), &visit, shape.front}
      .Find(*shape.layout);
}

}  // namespace quorvex::tool
