#include "places.h"

#include <algorithm>

namespace quorvex::tool {
namespace {

// Elements of one group that are the start and the end of something.
constexpr const char* kSpans[][2] = {
    {"START_TIME", "END_TIME"},
    {"START_TIME", "LAST_TIME"},
    {"RVC_START_TIME", "RVC_STOP_TIME"},
    {"startTime", "endTime"},
    {"TIME_FIRST_PACKET", "TIME_LAST_PACKET"},
};

struct Walk {
  Cases which;
  Places* to;
  int32_t counted = -1;
  uint32_t repetition = 0;

  void Add(Place::What what, const Field& f, uint32_t offset, uint32_t size, uint32_t base,
           const std::string& element) const {
    Places& p = *to;
    if (what == Place::What::kTime && p.time < 0 && counted < 0) {
      p.time = static_cast<int32_t>(p.all.size());
    }
    p.from = p.all.empty() ? offset : std::min(p.from, offset);
    p.end = std::max(p.end, offset + size);
    p.all.push_back({what, &f, offset, base, element, counted, repetition});
  }

  // The element of the word that counts: the row that shows it, or what it counts.
  static std::string CountElement(const Field& group, const Field& f, const std::string& path) {
    for (uint32_t r = 0; r < group.row_count; ++r) {
      const Field& row = group.rows[r];
      if (row.offset == f.count_ref && row.kind == Kind::kI32) return path + row.name;
    }
    if (f.name[0] != '\0') return path + f.name;
    return path.substr(0, path.empty() ? 0 : path.size() - 1);
  }

  // As the plan of a conversion walks: `place` is the group's, its repetitions `step` apart.
  void Gather(const Field& group, uint32_t place, uint32_t step, uint32_t index,
              const std::string& path) const {
    const size_t first = to->all.size();
    for (uint32_t r = 0; r < group.row_count; ++r) {
      const Field& f = group.rows[r];
      if ((f.cases & which) == 0 || f.kind == Kind::kGap) continue;
      const uint32_t base = place + index * StepOf(f, step);
      const uint32_t offset = base + f.offset;
      const std::string name = path + f.name;
      if (f.behind) {
        GatherBehind(f, name + "/");
        continue;
      }
      if (f.count_from == CountFrom::kInput) NoteRoom(f, path);
      Walk inner = *this;
      if (f.count_from == CountFrom::kRecord) {
        inner.counted = static_cast<int32_t>(to->all.size());
        Add(Place::What::kCount, f, place + f.count_ref, sizeof(int32_t), place,
            CountElement(group, f, path));
      }
      if (IsDateTime(f)) {
        Add(Place::What::kTime, f, offset, kDateTimeSize, place, name);
      } else if (f.kind == Kind::kText || f.kind == Kind::kRawText || f.kind == Kind::kMade) {
        Add(Place::What::kText, f, offset, f.size, base, name);
      } else if (f.kind != Kind::kGroup) {
        continue;
      } else if (!f.repeated) {
        inner.Gather(f, offset, 0, 0, f.name[0] != '\0' ? name + "/" : path);
      } else {
        for (uint32_t i = 0; i < f.count; ++i) {
          if (f.count_from != CountFrom::kTable) inner.repetition = i + 1;
          inner.Gather(f, offset, f.step, i,
                       f.name[0] != '\0' ? name + "[" + std::to_string(i + 1) + "]/" : path);
        }
      }
    }
    LinkSpans(first, path);
  }

  void NoteRoom(const Field& f, const std::string& path) const {
    if (f.endless || (to->input_room != 0 && to->input_room <= f.count)) return;
    to->input_room = f.count;
    to->input_element = path.substr(0, path.empty() ? 0 : path.size() - 1);
    to->counted_by = f.counted_by;
  }

  // Parts behind a record have no fixed places, but room for so many samples.
  void GatherBehind(const Field& f, const std::string& path) const {
    for (uint32_t r = 0; r < f.row_count; ++r) {
      const Field& row = f.rows[r];
      if ((row.cases & which) == 0) continue;
      if (row.count_from == CountFrom::kInput) NoteRoom(row, path);
      GatherBehind(row, row.name[0] != '\0' ? path + row.name + "/" : path);
    }
  }

  void LinkSpans(size_t first, const std::string& path) const {
    std::vector<Place>& all = to->all;
    for (const auto& span : kSpans) {
      const auto find = [&](const char* name) {
        return std::find_if(all.begin() + static_cast<std::ptrdiff_t>(first), all.end(),
                            [&](const Place& p) {
                              return p.what == Place::What::kTime && p.element == path + name;
                            });
      };
      const auto start = find(span[0]);
      const auto end = find(span[1]);
      if (start == all.end() || end == all.end()) continue;
      end->start = static_cast<int32_t>(start - all.begin());
    }
  }
};

}  // namespace

Places PlacesOf(const Field& table, Cases which, const std::string& name) {
  Places places;
  Walk{which, &places}.Gather(table, 0, 0, 0, name.empty() ? "" : name + "/");
  // Texts that are made may be made from anything in the record.
  for (const Place& place : places.all) {
    if (place.field->kind != Kind::kMade) continue;
    places.from = 0;
    places.end = table.size;
  }
  return places;
}

}  // namespace quorvex::tool
