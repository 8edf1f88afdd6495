// Some rows of a table, column by column, as readers of columns want them in memory.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "tables/table.h"

namespace quorvex {

// The byte in front of a block says how far before it the memory begins that it lies in.
struct Memory {
  void operator()(uint8_t* block) const { std::free(block - block[-1]); }
};
using Block = std::unique_ptr<uint8_t, Memory>;

struct ColumnData {
  const Column* column;
  // A bit a row, the lowest first, set where there is a value. Null where all rows have one.
  const uint8_t* valid = nullptr;
  uint32_t nulls = 0;
  // int32_t, int64_t, float, double; of a text rows + 1 int32_t, where in `text` each begins. What
  // is missing is NaN, and 0 where there is no such number.
  const void* values = nullptr;
  const char* text = nullptr;

  bool Has(uint32_t row) const {
    return valid == nullptr || (valid[row / 8] >> (row % 8) & 1) != 0;
  }
  template <typename T>
  T At(uint32_t row) const {
    return static_cast<const T*>(values)[row];
  }
};

struct Batch {
  uint32_t rows = 0;
  std::vector<ColumnData> columns;  // in the order in which they were asked for
  std::vector<Block> memory;        // which they lie in
};

}  // namespace quorvex
