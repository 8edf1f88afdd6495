#include "tables/values.h"

#include "layout/count_of.h"
#include "layout/date_time.h"

namespace quorvex {
namespace {

// A path without its phases.
std::string NamesIn(const std::string& path) {
  std::string names;
  bool phase = false;
  for (const char c : path) {
    if (c == '[') phase = true;
    if (!phase) names += c;
    if (c == ']') phase = false;
  }
  return names;
}

// What is known of a row from the groups around it.
struct Around {
  std::string path;
  uint32_t place = 0;  // of the group, at the first repetition
  uint32_t step = 0;   // of its repetitions
  Repeat list, only_if;
  size_t inside = 0;
  std::string table, unit, meaning;
};

struct Gatherer {
  const Wiring& wiring;
  std::vector<Value>* to;

  std::string NameOf(const Field& f) const {
    std::string name = f.name;
    if (f.phase == nullptr) return name;
    const char* label = wiring.label != nullptr ? wiring.label(wiring.settings, f.phase) : f.phase;
    return name + "[" + label + "]";
  }

  void GatherRows(const Field& group, const Around& around) const {
    for (uint32_t r = 0; r < group.row_count; ++r) {
      const Field& f = group.rows[r];
      if ((f.cases & wiring.which) != 0 && f.kind != Kind::kGap) Gather(f, around);
    }
  }

  void Gather(const Field& f, const Around& around) const {
    Around in = around;
    if (f.name[0] != '\0') in.path += (in.path.empty() ? "" : "/") + NameOf(f);
    if (f.table[0] != '\0') in.table = f.table;
    if (f.unit[0] != '\0') in.unit = f.unit;
    in.place += f.offset;
    in.step = StepOf(f, around.step);
    // A group for one is no list but there or not.
    if (f.repeated && f.count == 1 && !f.endless) {
      in.only_if = {&f, around.place};
      in.step = 0;
    } else if (f.repeated) {
      in.list = {&f, around.place};
      in.step = f.step;
    }
    if (f.repeated || f.kind == Kind::kSpectrum) {
      if (in.table.empty()) in.table = NamesIn(around.path.empty() ? in.path : around.path);
    }
    if (f.kind != Kind::kGroup || IsDateTime(f)) return Add(f, around, in);
    if (in.list.row == &f) in.inside = in.path.size() + (in.path.empty() ? 0 : 1);
    if (f.meaning[0] != '\0') in.meaning = f.meaning;
    GatherRows(f, in);
  }

  void Add(const Field& f, const Around& around, Around& in) const {
    Value value = {in.path, &f, in.place, in.step, in.list, in.only_if, around.inside};
    if (f.kind == Kind::kSpectrum) {
      value.list = {&f, around.place};
      value.step = f.entry_floats * 4u;
    }
    if (value.list.row != nullptr) value.table = IsSample(value) ? kSamples : in.table;
    value.unit = in.unit;
    value.meaning = in.meaning;
    if (f.meaning[0] != '\0') {
      value.meaning += (value.meaning.empty() ? "" : ", ") + std::string(f.meaning);
    }
    for (uint32_t code = 0; f.codes != nullptr && code < f.codes->count; ++code) {
      const char* word = WordOf(*f.codes, code);
      if (word[0] != '\0') value.meaning += "; " + std::to_string(code) + " " + word;
    }
    to->push_back(std::move(value));
  }
};

}  // namespace

std::vector<Value> ValuesOf(const Field& layout, const Wiring& wiring) {
  std::vector<Value> values;
  Gatherer{wiring, &values}.GatherRows(layout, {});
  return values;
}

uint32_t CountOf(const Repeat& repeat, const uint8_t* layout, const Inputs& inputs) {
  if (repeat.row == nullptr) return 1;
  const Field& f = *repeat.row;
  return f.kind == Kind::kSpectrum ? OrdersOf(f) : CountOf(f, layout + repeat.at, inputs);
}

}  // namespace quorvex
