// The proof that a table leaves no byte of its record out and claims none twice.
#pragma once

#include "layout/rows.h"

namespace quorvex {

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
