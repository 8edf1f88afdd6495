// Layout tables: a record format written as data. A table is an array of rows in the order in which
// the elements are written; each row says which element, where its bytes lie and how they read.
// Groups nest and are placed at an offset, so a structure is described once and used everywhere.
// One renderer (plan.h) walks the tables, and Tiles() proves at compile time that a table claims
// every byte of its record exactly once.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quorvex {

enum class Kind : uint8_t {
  kGap,    // bytes that are read past
  kGroup,  // an element around rows; without a name only a place (and a repetition) for them
  kU8,     // integers, "%d"; 32-bit words are signed in the document whatever they count
  kU16,
  kI32,
  kI64,        // "%lld"; no 64-bit integer equals the no-value marker
  kF32,        // "%E", "-" for the no-value marker
  kF64,        // "%lE", likewise
  kScaledI16,  // a raw sample times a scale of the inputs, as kF32
  kScaledF32,
  kSeconds,   // seconds of a date-time
  kText,      // fixed-width text, through EscapeText
  kRawText,   // fixed-width text as it stands
  kMade,      // a text that a function makes from the record
  kNoValue,   // always "-", without bytes of its own
  kFlagWord,  // a 32-bit word as the element's text on a line of its own
  kSpectrum,  // floats as base64, in the place of kFlagWord's word
};

// In which recordings a row is written: a set of up to sixteen cases, one bit each. What the bits
// mean is the settings' matter.
using Cases = uint16_t;
constexpr Cases kAllCases = 0xFFFF;

// What a table may need beyond the record's own bytes; rows refer to them by index.
struct RenderInputs {
  int32_t number[2] = {};
  float scale[8] = {};
};

// Writes the text of a kMade row, at most kLongestMadeText bytes; `place` is where the row's group
// lies. Returns the end of the text.
using MakeText = char* (*)(const uint8_t* place, const RenderInputs& inputs, char* to);
constexpr uint32_t kLongestMadeText = 128;

enum class CountFrom : uint8_t { kTable, kRecord, kInput };

// A structure that stands in several places, as documentation and schema name it.
struct StructureInfo {
  const char* name;
  const char* note = "";
};

struct Field {
  const char* name = "";
  const char* phase = nullptr;  // value of the attribute `phase`
  const char* meaning = "";     // for documentation and schema
  const char* unit = "";
  // Where a count of the inputs comes from: the end of an element's path, or words.
  const char* counted_by = "";
  const StructureInfo* structure = nullptr;
  MakeText make = nullptr;
  const Field* rows = nullptr;
  uint32_t row_count = 0;
  uint32_t offset = 0;     // from the place of the enclosing group
  uint32_t size = 0;       // bytes of one repetition
  uint32_t count = 1;      // repetitions; the most there can be where the count is not the table's
  uint32_t step = 0;       // bytes from one repetition to the next
  uint32_t every = 0;      // in a repeated group: its own distance between repetitions, if not step
  uint32_t claims = 0;     // bytes of the record that are this row's own
  uint32_t count_ref = 0;  // offset of a 32-bit count beside the row, or index into the inputs
  int32_t most = INT32_MAX;     // an integer shows this at the most
  uint16_t entry_floats = 0;    // spectrum: floats per entry on disk
  uint16_t written_floats = 0;  // spectrum: how many of them are written
  Cases cases = kAllCases;
  Kind kind = Kind::kGap;
  CountFrom count_from = CountFrom::kTable;
  Kind made_as = Kind::kText;  // how the text of a kMade row reads
  uint8_t scale_ref = 0;
  bool repeated = false;
  bool behind = false;   // of no fixed place: it lies behind the row before it that is written
  bool endless = false;  // `count` is no bound: rendered that many at a time

  // Written in these cases only.
  constexpr Field In(Cases in) const {
    Field f = *this;
    f.cases = in;
    return f;
  }
  // A value element a repetition.
  constexpr Field Times(uint32_t times) const {
    Field f = *this;
    f.count = times;
    f.repeated = true;
    f.claims = f.size * times;
    return f;
  }
  // As many repetitions as a signed word of the record says, none below 1.
  constexpr Field CountAt(uint32_t at) const {
    Field f = *this;
    f.count_from = CountFrom::kRecord;
    f.count_ref = at;
    return f;
  }
  constexpr Field CountInput(uint32_t index, const char* from) const {
    Field f = *this;
    f.count_from = CountFrom::kInput;
    f.count_ref = index;
    f.counted_by = from;
    return f;
  }
  // Of any length: the writer of the record type renders it in pieces of `count`.
  constexpr Field InPieces() const {
    Field f = *this;
    f.endless = true;
    return f;
  }
  // A part of a record of varying length. What places it is the writer of the record type.
  constexpr Field Behind() const {
    Field f = *this;
    f.behind = true;
    return f;
  }
  // A row of a repeated group that repeats at its own distance (arrays side by side).
  constexpr Field Every(uint32_t bytes) const {
    Field f = *this;
    f.every = bytes;
    return f;
  }
  constexpr Field AtMost(int32_t value) const {
    Field f = *this;
    f.most = value;
    return f;
  }
  // Reads bytes that other rows claim.
  constexpr Field Again() const { return RunsOn(0); }
  // Only the first bytes are its own; it reads on into its neighbour.
  constexpr Field RunsOn(uint32_t own) const {
    Field f = *this;
    f.claims = own;
    return f;
  }
  constexpr Field Phase(const char* label) const {
    Field f = *this;
    f.phase = label;
    return f;
  }
};

constexpr Field Leaf(Kind kind, const char* name, uint32_t offset, uint32_t size,
                     const char* meaning, const char* unit) {
  Field f;
  f.kind = kind;
  f.name = name;
  f.offset = offset;
  f.size = f.step = f.claims = size;
  f.meaning = meaning;
  f.unit = unit;
  return f;
}

constexpr Field U8(const char* name, uint32_t at, const char* meaning = "") {
  return Leaf(Kind::kU8, name, at, 1, meaning, "");
}
constexpr Field U16(const char* name, uint32_t at, const char* meaning = "") {
  return Leaf(Kind::kU16, name, at, 2, meaning, "");
}
constexpr Field I32(const char* name, uint32_t at, const char* meaning = "",
                    const char* unit = "") {
  return Leaf(Kind::kI32, name, at, 4, meaning, unit);
}
constexpr Field I64(const char* name, uint32_t at, const char* meaning = "") {
  return Leaf(Kind::kI64, name, at, 8, meaning, "");
}
constexpr Field F32(const char* name, uint32_t at, const char* meaning = "",
                    const char* unit = "") {
  return Leaf(Kind::kF32, name, at, 4, meaning, unit);
}
constexpr Field F64(const char* name, uint32_t at, const char* meaning = "",
                    const char* unit = "") {
  return Leaf(Kind::kF64, name, at, 8, meaning, unit);
}
// Raw samples, multiplied by scale `scale_ref` of the inputs in single precision.
constexpr Field ScaledI16(const char* name, uint32_t at, uint8_t scale_ref, const char* meaning,
                          const char* unit) {
  Field f = Leaf(Kind::kScaledI16, name, at, 2, meaning, unit);
  f.scale_ref = scale_ref;
  return f;
}
constexpr Field ScaledF32(const char* name, uint32_t at, uint8_t scale_ref, const char* meaning,
                          const char* unit) {
  Field f = Leaf(Kind::kScaledF32, name, at, 4, meaning, unit);
  f.scale_ref = scale_ref;
  return f;
}
constexpr Field Text(const char* name, uint32_t at, uint32_t width, const char* meaning = "") {
  return Leaf(Kind::kText, name, at, width, meaning, "");
}
constexpr Field RawText(const char* name, uint32_t at, uint32_t width, const char* meaning = "") {
  return Leaf(Kind::kRawText, name, at, width, meaning, "");
}
constexpr Field Made(const char* name, uint32_t at, uint32_t size, Kind as, MakeText make,
                     const char* meaning = "") {
  Field f = Leaf(Kind::kMade, name, at, size, meaning, "");
  f.make = make;
  f.made_as = as;
  return f;
}
constexpr Field NoValue(const char* name) { return Leaf(Kind::kNoValue, name, 0, 0, "", ""); }
constexpr Field FlagWord(const char* name, uint32_t at, const char* meaning = "") {
  return Leaf(Kind::kFlagWord, name, at, 4, meaning, "");
}
// `entries` times `on_disk` floats, of which the first `written` of each are in the base64 text.
constexpr Field Spectrum(const char* name, const char* phase, uint32_t at, uint32_t entries,
                         uint16_t on_disk, uint16_t written, const char* meaning = "") {
  Field f = Leaf(Kind::kSpectrum, name, at, entries * on_disk * 4, meaning, "");
  f.phase = phase;
  f.entry_floats = on_disk;
  f.written_floats = written;
  return f;
}
constexpr Field Gap(uint32_t at, uint32_t size) { return Leaf(Kind::kGap, "", at, size, "", ""); }

// Rows that stand in several places, with the name under which they are known.
template <size_t N>
struct Structure {
  StructureInfo info;
  Field rows[N];
};
template <size_t N>
constexpr Structure<N> Shared(const StructureInfo& info, const Field (&rows)[N]) {
  Structure<N> s{info, {}};
  for (size_t i = 0; i < N; ++i) s.rows[i] = rows[i];
  return s;
}

template <size_t N>
constexpr Field Around(const Field (&rows)[N]) {
  Field f;
  f.rows = rows;
  f.row_count = N;
  return f;
}
template <size_t N>
constexpr Field Around(const Structure<N>& structure) {
  Field f = Around(structure.rows);
  f.structure = &structure.info;
  return f;
}

// A table is an array of rows or a structure.
template <typename Table>
constexpr Field Group(const char* name, uint32_t at, const Table& table, const char* meaning = "") {
  Field f = Around(table);
  f.kind = Kind::kGroup;
  f.name = name;
  f.offset = at;
  f.meaning = meaning;
  return f;
}
// The same where the rows count their offsets from the enclosing group.
template <typename Table>
constexpr Field Group(const char* name, const Table& table, const char* meaning = "") {
  return Group(name, 0, table, meaning);
}
// Rows without an element of their own.
template <typename Table>
constexpr Field Rows(uint32_t at, const Table& table) {
  return Group("", at, table);
}
// The group `count` times, `step` bytes apart.
template <typename Table>
constexpr Field Each(const char* name, uint32_t at, uint32_t count, uint32_t step,
                     const Table& table, const char* meaning = "") {
  Field f = Group(name, at, table, meaning);
  f.count = count;
  f.step = step;
  f.repeated = true;
  return f;
}
// A whole record of `size` bytes.
template <typename Table>
constexpr Field Record(const char* name, uint32_t size, const Table& table,
                       const char* meaning = "") {
  Field f = Group(name, 0, table, meaning);
  f.size = size;
  return f;
}

// A date-time: 16 bytes, an element with six values.
inline constexpr auto kDateTimeRows =
    Shared({"date-time",
            "Seconds are cut to whole microseconds and written without "
            "trailing zeros, one decimal at least."},
           {
               U16("year", 0, "year"),
               U8("month", 2, "month, 1 to 12"),
               U8("day", 3, "day of the month"),
               U8("hour", 4, "hour"),
               U8("min", 5, "minute"),
               Gap(6, 2),
               Leaf(Kind::kSeconds, "sec", 8, 8, "seconds with fraction", "s"),
           });
constexpr uint32_t kDateTimeSize = 16;
constexpr Field DateTime(const char* name, uint32_t at, const char* meaning = "") {
  return Group(name, at, kDateTimeRows, meaning);
}

// The most bytes that a row's value takes in the document.
constexpr uint32_t LongestText(const Field& f) {
  switch (f.kind) {
    case Kind::kText:
    case Kind::kRawText:
      return f.size;
    case Kind::kMade:
      return kLongestMadeText;
    case Kind::kSpectrum: {
      const uint32_t written = f.size / f.entry_floats * f.written_floats;
      return (written + 2) / 3 * 4;
    }
    case Kind::kGap:
    case Kind::kGroup:
      return 0;
    default:
      return 32;
  }
}

namespace layout_detail {

// Marks what the rows claim: per byte the cases in which a row has it. False where two rows claim a
// byte in one case, and where one reads outside the record.
constexpr bool Claim(const Field* rows, uint32_t row_count, uint32_t place, uint32_t repetition,
                     uint32_t step, Cases cases, Cases* claimed, uint32_t size) {
  for (uint32_t r = 0; r < row_count; ++r) {
    const Field& f = rows[r];
    const uint32_t at = place + f.offset + repetition * (f.every != 0 ? f.every : step);
    const auto in = static_cast<Cases>(cases & f.cases);
    if (f.kind == Kind::kGroup) {
      for (uint32_t i = 0; i < f.count; ++i) {
        if (!Claim(f.rows, f.row_count, at, i, f.step, in, claimed, size)) return false;
      }
      continue;
    }
    if (at + f.size + (f.count - 1) * f.step > size) return false;
    for (uint32_t b = at; b < at + f.claims; ++b) {
      if ((claimed[b] & in) != 0) return false;
      claimed[b] = static_cast<Cases>(claimed[b] | in);
    }
  }
  return true;
}

}  // namespace layout_detail

// Whether a record's table claims every byte exactly once: rows with disjoint cases may share
// bytes, rows marked Again claim none, gaps are rows too.
constexpr bool Tiles(const Field& record) {
  auto* claimed = new Cases[record.size]{};
  bool tiles =
      layout_detail::Claim(record.rows, record.row_count, 0, 0, 0, kAllCases, claimed, record.size);
  for (uint32_t b = 0; b < record.size; ++b) tiles = tiles && claimed[b] != 0;
  delete[] claimed;
  return tiles;
}

}  // namespace quorvex
