#include "tables/table_rows.h"

#include <algorithm>
#include <limits>

#include "layout/date_time.h"

namespace quorvex {

TableRows::TableRows(const std::string& path, const std::string& table,
                     const std::vector<std::string>& columns, const ReadOptions& options)
    : path_(path), head_(path_.c_str()), slots_(columns.size(), -1) {
  if (!head_.file || head_.type == nullptr) return;
  head_.UseSettingFile();
  set_ = TablesOf(*head_.type, head_.settings);
  const Table* found = set_.Find(table);
  if (found == nullptr) return;
  std::vector<uint32_t> wanted;
  for (size_t c = 0; c < columns.size(); ++c) {
    const auto column = std::find_if(found->columns.begin(), found->columns.end(),
                                     [&](const Column& known) { return known.name == columns[c]; });
    if (column == found->columns.end()) continue;
    slots_[c] = static_cast<int>(wanted.size());
    wanted.push_back(static_cast<uint32_t>(column - found->columns.begin()));
  }
  if (!wanted.empty()) {
    cursor_ = std::make_unique<Cursor>(&head_, set_, *found, wanted, options);
  }
}

bool TableRows::Next() {
  if (cursor_ == nullptr) return false;
  ++row_;
  while (row_ >= batch_.rows) {
    if (!cursor_->Next(&batch_)) {
      cursor_ = nullptr;
      return false;
    }
    row_ = 0;
  }
  return true;
}

double TableRows::OtherNumber(const ColumnData* data) const {
  if (data == nullptr || !data->Has(row_)) return std::numeric_limits<double>::quiet_NaN();
  switch (data->column->type) {
    case ValueType::kInt32:
      return data->At<int32_t>(row_);
    case ValueType::kFloat:
      return static_cast<double>(data->At<float>(row_));
    case ValueType::kDouble:
      return data->At<double>(row_);
    case ValueType::kInt64:
    case ValueType::kTime:
      return static_cast<double>(data->At<int64_t>(row_));
    case ValueType::kText:
      break;
  }
  return std::numeric_limits<double>::quiet_NaN();
}

int64_t TableRows::Integer(size_t column) const {
  const ColumnData* data = Data(column);
  if (data == nullptr || !data->Has(row_)) return kNoTime;
  const ValueType type = data->column->type;
  if (type == ValueType::kInt32) return data->At<int32_t>(row_);
  return type == ValueType::kInt64 || type == ValueType::kTime ? data->At<int64_t>(row_) : kNoTime;
}

Cell TableRows::CellAt(size_t column) const {
  using Is = Cell::Is;
  const ColumnData* data = Data(column);
  if (data == nullptr || !data->Has(row_)) return {};
  switch (data->column->type) {
    case ValueType::kFloat:
    case ValueType::kDouble:
      return {Is::kNumber, Number(column)};
    case ValueType::kInt32:
    case ValueType::kInt64:
      return {Is::kInteger, 0, Integer(column)};
    case ValueType::kTime:
      return {Is::kTime, 0, Integer(column)};
    case ValueType::kText:
      break;
  }
  const auto* begins = static_cast<const int32_t*>(data->values);
  return {Is::kText, 0, 0, {data->text + begins[row_], data->text + begins[row_ + 1]}};
}

}  // namespace quorvex
