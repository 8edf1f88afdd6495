// The rows that tables are made of: a function for each kind of value, and for groups.
#pragma once

#include <array>
#include <iterator>

#include "layout/field.h"

namespace quorvex {

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
  return Leaf(Kind::kScaledI16, name, at, 2, meaning, unit).With(&Field::scale_ref, scale_ref);
}
constexpr Field ScaledF32(const char* name, uint32_t at, uint8_t scale_ref, const char* meaning,
                          const char* unit) {
  return Leaf(Kind::kScaledF32, name, at, 4, meaning, unit).With(&Field::scale_ref, scale_ref);
}
constexpr Field Text(const char* name, uint32_t at, uint32_t width, const char* meaning = "") {
  return Leaf(Kind::kText, name, at, width, meaning, "");
}
constexpr Field RawText(const char* name, uint32_t at, uint32_t width, const char* meaning = "") {
  return Leaf(Kind::kRawText, name, at, width, meaning, "");
}
constexpr Field Made(const char* name, uint32_t at, uint32_t size, Kind as, Make make,
                     const char* meaning = "") {
  Field f = Leaf(Kind::kMade, name, at, size, meaning, "");
  f.make = make;
  f.made_as = as;
  return f;
}
constexpr Field NoValue(const char* name) { return Leaf(Kind::kNoValue, name, 0, 0, "", ""); }
// `entries` times `on_disk` floats, of which the first `written` of each are written.
constexpr Field Spectrum(const char* name, const char* phase, uint32_t at, uint32_t entries,
                         uint16_t on_disk, uint16_t written, const char* meaning = "") {
  Field f = Leaf(Kind::kSpectrum, name, at, entries * on_disk * 4, meaning, "");
  f.phase = phase;
  f.own_line = true;
  f.entry_floats = on_disk;
  f.written_floats = written;
  return f;
}
// Bytes that documents do not show.
constexpr Field Gap(uint32_t at, uint32_t size, const char* meaning = "") {
  return Leaf(Kind::kGap, "", at, size, meaning, "");
}

// Rows that stand in several places, with the name under which they are known.
template <size_t N>
struct Structure {
  StructureInfo info;
  std::array<Field, N> rows;
};
template <size_t N>
constexpr Structure<N> Shared(const StructureInfo& info, const std::array<Field, N>& rows) {
  return {info, rows};
}
template <size_t N>
constexpr Structure<N> Shared(const StructureInfo& info, const Field (&rows)[N]) {
  return {info, std::to_array(rows)};
}

template <typename Table>
constexpr Field Around(const Table& rows) {
  Field f;
  f.rows = std::data(rows);
  f.row_count = static_cast<uint32_t>(std::size(rows));
  return f;
}
template <size_t N>
constexpr Field Around(const Structure<N>& structure) {
  return Around(structure.rows).With(&Field::structure, &structure.info);
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
  return Group(name, 0, table, meaning).With(&Field::size, size);
}

}  // namespace quorvex
