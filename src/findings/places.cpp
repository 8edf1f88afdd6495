#include "findings/places.h"

#include <algorithm>
#include <cstring>

namespace quorvex {
namespace {

// Elements of one group that are the start and the end of something.
constexpr const char* kSpans[][2] = {
    {"START_TIME", "END_TIME"},
    {"START_TIME", "LAST_TIME"},
    {"RVC_START_TIME", "RVC_STOP_TIME"},
    {"startTime", "endTime"},
    {"TIME_FIRST_PACKET", "TIME_LAST_PACKET"},
};

// The element of the word that counts: the row that shows it, or what it counts.
std::string CountElement(const Field& group, const Field& f, const std::string& path) {
  for (uint32_t r = 0; r < group.row_count; ++r) {
    const Field& row = group.rows[r];
    if (row.offset == f.count_ref && row.kind == Kind::kI32) return path + row.name;
  }
  if (f.name[0] != '\0') return path + f.name;
  return path.substr(0, path.empty() ? 0 : path.size() - 1);
}

struct Gatherer {
  Cases which;
  Places* to;
  int32_t counted = -1;
  uint32_t repetition = 0;

  Place& Add(Place::What what, const Field& f, uint32_t offset, uint32_t base,
             const std::string& element) const {
    if (what == Place::What::kTime && to->time < 0 && counted < 0) {
      to->time = static_cast<int32_t>(to->all.size());
    }
    to->all.push_back({what, &f, offset, base, element, counted, repetition});
    return to->all.back();
  }

  // As the plan of a document walks: `place` is the group's, its repetitions `step` apart.
  void Gather(const Field& group, uint32_t place, uint32_t step, uint32_t index,
              const std::string& path) const {
    const size_t first = to->all.size();
    for (uint32_t r = 0; r < group.row_count; ++r) {
      const Field& f = group.rows[r];
      if ((f.cases & which) == 0 || f.behind) continue;
      const uint32_t base = place + index * StepOf(f, step);
      const uint32_t offset = base + f.offset;
      const std::string name = path + f.name;
      Gatherer inner = *this;
      if (f.counts_up_to != 0) {
        Add(Place::What::kCount, f, offset, base, f.name[0] != '\0' ? name : path + f.meaning)
            .room = f.counts_up_to;
      }
      if (f.count_from == CountFrom::kRecord) {
        inner.counted = static_cast<int32_t>(to->all.size());
        // A row for one is no list but written or not: every count will do.
        Add(Place::What::kCount, f, place + f.count_ref, place, CountElement(group, f, path)).room =
            f.count == 1 ? 0 : f.count;
      }
      if (IsDateTime(f)) {
        Add(f.endless ? Place::What::kTimes : Place::What::kTime, f, offset, base, name);
      } else if (f.kind == Kind::kText || f.kind == Kind::kRawText ||
                 (f.kind == Kind::kMade && f.made_as == Kind::kText)) {
        Add(Place::What::kText, f, offset, base, name);
      } else if (f.kind == Kind::kGroup) {
        inner.GatherGroup(f, offset, name, path);
      }
    }
    LinkSpans(first, path);
  }

  void GatherGroup(const Field& f, uint32_t offset, const std::string& name,
                   const std::string& path) const {
    const bool element = f.name[0] != '\0';
    if (!f.repeated) return Gather(f, offset, 0, 0, element ? name + "/" : path);
    Gatherer inner = *this;
    for (uint32_t i = 0; i < f.count; ++i) {
      if (f.count_from == CountFrom::kRecord) inner.repetition = i + 1;
      inner.Gather(f, offset, f.step, i,
                   element ? name + "[" + std::to_string(i + 1) + "]/" : path);
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

Places PlacesOf(const Field& layout, Cases which) {
  Places places{&layout, {}};
  Gatherer{which, &places}.Gather(layout, 0, 0, 0, "");
  return places;
}

}  // namespace quorvex
