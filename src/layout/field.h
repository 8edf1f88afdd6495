// Layout tables: a record format written as data. A table is an array of rows in the order in which
// the elements are written; each row says which element, where its bytes lie and how they read.
// Groups nest and are placed at an offset, so a structure is described once and used everywhere.
// rows.h makes the rows, and tiles.h proves at compile time that a table claims every byte of its
// record exactly once.
#pragma once

#include <cstdint>
#include <type_traits>

namespace quorvex {

enum class Kind : uint8_t {
  kGap,    // bytes that are read past
  kGroup,  // an element around rows; without a name only a place (and a repetition) for them
  kU8,     // integers; 32-bit words read as signed, whatever they count
  kU16,
  kI32,
  kI64,
  kF32,        // may hold the no-value marker
  kF64,        // likewise
  kScaledI16,  // a raw sample times a scale of the inputs
  kScaledF32,
  kSeconds,   // seconds of a date-time
  kText,      // fixed-width text in the instrument's characters
  kRawText,   // fixed-width text that is shown as it stands
  kMade,      // a value that a function makes from the record
  kNoValue,   // stands for a value that is not kept; it has no bytes
  kSpectrum,  // an array of floats, in entries of several
};

// A set of up to sixteen cases, one bit each: the recordings in which a row is written. settings/
// says what each bit means.
using Cases = uint16_t;
constexpr Cases kAllCases = 0xFFFF;

// A float that holds this number has no value. A double that holds the same number has none either.
constexpr float kNoValue = -1e37f;
constexpr double kNoValueDouble = static_cast<double>(kNoValue);

// Numbers that a table needs beyond the bytes of the record. Rows refer to them by index.
struct Inputs {
  int32_t number[2] = {};
  float scale[8] = {};
};

// The value of a kMade row. `made_as` of the row says which member holds it.
constexpr uint32_t kLongestMadeText = 128;
struct MadeValue {
  int64_t integer = 0;
  float number = 0;
  char text[kLongestMadeText];  // terminated
  MadeValue() { text[0] = '\0'; }
};
// `place` is where the row's group lies.
using Make = MadeValue (*)(const uint8_t* place, const Inputs& inputs);

enum class CountFrom : uint8_t { kTable, kRecord, kInput };

// A structure that stands in several places, as documentation and schema name it.
struct StructureInfo {
  const char* name;
  const char* note = "";
};

// What the values of an integer mean: words by value, empty for a value without a meaning.
struct Codes {
  const char* const* words;
  uint32_t count;
};
constexpr const char* WordOf(const Codes& codes, uint32_t value) {
  return value < codes.count ? codes.words[value] : "";
}

struct Field {
  const char* name = "";
  const char* phase = nullptr;  // value of the attribute `phase`
  const char* meaning = "";     // for documentation and schema
  const char* unit = "";        // of a group: of the values inside that have none
  // Says where a count of the inputs comes from: the end of an element's path, or words.
  const char* counted_by = "";
  const Codes* codes = nullptr;  // the words of an integer's values, where they are known
  const StructureInfo* structure = nullptr;
  const char* table = "";  // of the lists inside, where that is not named by the path to them
  Make make = nullptr;
  const Field* rows = nullptr;
  uint32_t row_count = 0;
  uint32_t offset = 0;     // from the place of the enclosing group
  uint32_t size = 0;       // bytes of one repetition
  uint32_t count = 1;      // repetitions; the most there can be where the count is not the table's
  uint32_t step = 0;       // bytes from one repetition to the next
  uint32_t every = 0;      // distance between repetitions where it is not the group's
  uint32_t claims = 0;     // bytes of the record that are this row's own
  uint32_t count_ref = 0;  // offset of a 32-bit count beside the row, or index into the inputs
  uint32_t counts_up_to = 0;    // the word counts what there is room for so many of
  int32_t most = INT32_MAX;     // an integer shows this at the most
  uint16_t entry_floats = 0;    // spectrum: floats per entry on disk
  uint16_t written_floats = 0;  // spectrum: how many of them are written
  uint16_t first_order = 0;     // spectrum: harmonic order of the first entry
  Cases cases = kAllCases;
  Kind kind = Kind::kGap;
  CountFrom count_from = CountFrom::kTable;
  Kind made_as = Kind::kText;  // what a kMade row reads as
  uint8_t scale_ref = 0;
  bool repeated = false;
  bool behind = false;     // of no fixed place: it lies behind the row before it that is written
  bool own_line = false;   // its value is written on a line of its own
  bool endless = false;    // it has any length and is told in parts of `count`
  bool by_order = false;   // its repetitions are harmonic orders
  bool time_step = false;  // seconds from one sample of the record to the next

  // The row with another value in a column.
  template <typename T>
  constexpr Field With(T Field::*column, std::type_identity_t<T> value) const {
    Field f = *this;
    f.*column = value;
    return f;
  }
  // Written in these cases only.
  constexpr Field In(Cases in) const { return With(&Field::cases, in); }
  // The value is repeated, each time as an element.
  constexpr Field Times(uint32_t times) const {
    return With(&Field::count, times).With(&Field::repeated, true).RunsOn(size * times);
  }
  // As many repetitions as a signed word of the record says, none below 1.
  constexpr Field CountAt(uint32_t at) const {
    return With(&Field::count_from, CountFrom::kRecord).With(&Field::count_ref, at);
  }
  constexpr Field CountInput(uint32_t index, const char* from) const {
    return With(&Field::count_from, CountFrom::kInput)
        .With(&Field::count_ref, index)
        .With(&Field::counted_by, from);
  }
  // The list has any length. The walk of the record type tells it in parts of `count`.
  constexpr Field InParts() const { return With(&Field::endless, true); }
  // A part of a record of varying length. The walk of the record type places it.
  constexpr Field Behind() const { return With(&Field::behind, true); }
  // A row of a repeated group that repeats at its own distance (arrays side by side).
  constexpr Field Every(uint32_t bytes) const { return With(&Field::every, bytes); }
  constexpr Field OnOwnLine() const { return With(&Field::own_line, true); }
  constexpr Field Unit(const char* name_of_unit) const { return With(&Field::unit, name_of_unit); }
  constexpr Field OneOf(const Codes& known) const { return With(&Field::codes, &known); }
  constexpr Field AtMost(int32_t value) const { return With(&Field::most, value); }
  // The word counts something in the record that there is room for so many of.
  constexpr Field Counts(uint32_t room) const { return With(&Field::counts_up_to, room); }
  // Reads bytes that other rows claim.
  constexpr Field Again() const { return RunsOn(0); }
  // Only the first bytes are its own; it reads on into its neighbour.
  constexpr Field RunsOn(uint32_t own) const { return With(&Field::claims, own); }
  constexpr Field FromOrder(uint16_t order) const { return With(&Field::first_order, order); }
  constexpr Field Phase(const char* label) const { return With(&Field::phase, label); }
  constexpr Field ByOrder() const { return With(&Field::by_order, true); }
  constexpr Field IsTimeStep() const { return With(&Field::time_step, true); }
  // Lists inside stand in the table of this name, side by side with the others of that table.
  constexpr Field InTable(const char* of_name) const { return With(&Field::table, of_name); }
};

// Bytes between a row's repetitions: its own distance or, where it has none, its group's.
constexpr uint32_t StepOf(const Field& row, uint32_t group_step) {
  return row.every != 0 ? row.every : group_step;
}

}  // namespace quorvex
