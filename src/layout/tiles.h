// The proof that a table leaves no byte of its record out and claims none twice.
#pragma once

#include <algorithm>

#include "layout/field.h"

namespace quorvex {

constexpr uint32_t kNoByte = UINT32_MAX;

namespace layout_detail {

struct Claims {
  Cases* of_byte;  // the cases in which a row has it
  uint32_t size;
  uint32_t wrong = kNoByte;

  constexpr void Add(const Field* rows, uint32_t row_count, uint32_t place, uint32_t repetition,
                     uint32_t step, Cases cases) {
    for (uint32_t r = 0; r < row_count; ++r) {
      const Field& f = rows[r];
      const uint32_t at = place + f.offset + repetition * StepOf(f, step);
      const auto in = static_cast<Cases>(cases & f.cases);
      if (f.kind == Kind::kGroup) {
        for (uint32_t i = 0; i < f.count; ++i) Add(f.rows, f.row_count, at, i, f.step, in);
        continue;
      }
      if (at + f.size + (f.count - 1) * f.step > size) wrong = std::min(wrong, size);
      for (uint32_t b = at; b < std::min(at + f.claims, size); ++b) {
        if ((of_byte[b] & in) != 0) wrong = std::min(wrong, b);
        of_byte[b] = static_cast<Cases>(of_byte[b] | in);
      }
    }
  }
};

}  // namespace layout_detail

// The first byte that a record's table claims twice, not at all or beyond the record's end; kNoByte
// where it claims every byte exactly once. Rows with disjoint cases may share bytes, rows marked
// Again claim none, gaps are rows too.
constexpr uint32_t WrongByte(const Field& record) {
  layout_detail::Claims claims{new Cases[record.size]{}, record.size};
  claims.Add(record.rows, record.row_count, 0, 0, 0, kAllCases);
  for (uint32_t b = 0; b < record.size && b < claims.wrong; ++b) {
    if (claims.of_byte[b] == 0) claims.wrong = b;
  }
  delete[] claims.of_byte;
  return claims.wrong;
}

// A concept, so that compilers say which byte is wrong.
template <uint32_t kWrongByte>
concept Tiles = kWrongByte == kNoByte;

}  // namespace quorvex
