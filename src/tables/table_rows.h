// Goes through a table of a recording row by row.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tables/cursor.h"

namespace quorvex {

struct Cell {
  enum class Is : uint8_t { kNothing, kNumber, kInteger, kTime, kText } is = Is::kNothing;
  double number = 0;
  int64_t integer = 0;  // a time too, as MicrosecondsOf
  std::string text = {};
};

class TableRows {
 public:
  // Columns are asked for by their names. Such as the table does not have, and tables that the
  // recording does not have, are no error: they have no values.
  TableRows(const std::string& path, const std::string& table,
            const std::vector<std::string>& columns, const ReadOptions& options);

  // Whether the table has this column, one of those that were asked for.
  bool Knows(size_t column) const { return slots_[column] >= 0; }
  // The next row; false where there are no more.
  bool Next();
  // What the row has: NaN, or kNoTime, where that is nothing.
  double Number(size_t column) const {
    const ColumnData* data = Data(column);
    const bool plain = data != nullptr && data->column->type == ValueType::kFloat;
    // Missing floats are NaN themselves.
    return plain ? static_cast<double>(data->At<float>(row_)) : OtherNumber(data);
  }
  int64_t Integer(size_t column) const;
  Cell CellAt(size_t column) const;

  const RecordingHead& head() const { return head_; }

 private:
  double OtherNumber(const ColumnData* data) const;
  const ColumnData* Data(size_t column) const {
    return slots_[column] >= 0 ? &batch_.columns[static_cast<size_t>(slots_[column])] : nullptr;
  }

  std::string path_;
  RecordingHead head_;
  TableSet set_;
  std::vector<int> slots_;  // by column: its place in a batch, -1 for none
  std::unique_ptr<Cursor> cursor_;
  Batch batch_;
  uint32_t row_ = 0;
};

}  // namespace quorvex
