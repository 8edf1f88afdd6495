// Every value that a layout writes, with the path by which it is known. Tables make columns of
// them, and find in the bytes that a walk tells what belongs into a column.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "layout/field.h"
#include "settings/settings_record.h"

namespace quorvex {

// A count, and what stands beside it.
struct Repeat {
  const Field* row = nullptr;  // null: it is there once
  uint32_t at = 0;             // the place that a count of the record is counted from
};

struct Value {
  std::string path;        // names from the layout inward, phases in brackets: "U[u1]/rms/max"
  const Field* field;      // a value, or the group of a date-time
  uint32_t offset;         // the first of its list
  uint32_t step = 0;       // bytes to the next
  Repeat list;             // what repeats it; a spectrum is its own list
  Repeat only_if;          // a group around it that is there once or not at all
  size_t inside = 0;       // where its path goes on inside the element that repeats
  std::string table = {};  // of a list
  std::string unit = {}, meaning = {};
};

// The values of a layout in the order in which documents write them. `label` renames phases where
// it is not null, as RecordType::phase_label.
struct Wiring {
  Cases which;
  const UifParams& settings;
  const char* (*label)(const UifParams& settings, const char* label) = nullptr;
};
std::vector<Value> ValuesOf(const Field& layout, const Wiring& wiring);

// How often a value repeats in this record, at the most as often as the layout has room for.
uint32_t CountOf(const Repeat& repeat, const uint8_t* layout, const Inputs& inputs);

// Floats of a spectrum's entry that are written, and entries that are the spectrum's own: a compact
// one is written on into its neighbour.
inline uint32_t OrdersOf(const Field& spectrum) {
  return spectrum.claims / 4 / spectrum.entry_floats;
}

constexpr char kSamples[] = "samples";

// Whether values of this list stand in the table of samples.
inline bool IsSample(const Value& value) {
  const Kind kind = value.field->kind;
  return value.list.row != nullptr && (kind == Kind::kScaledI16 || kind == Kind::kScaledF32);
}

}  // namespace quorvex
