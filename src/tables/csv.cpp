#include "tables/csv.h"

#include <charconv>
#include <cmath>

#include "tables/cursor.h"

namespace quorvex {
namespace {

constexpr size_t kLongestValue = 40;

template <typename T>
char* NumberText(T value, char* to) {
  return std::to_chars(to, to + kLongestValue, value).ptr;
}

void AppendText(const ColumnData& data, uint32_t row, std::string* to) {
  const auto from = data.At<int32_t>(row);
  AppendCsvText(
      std::string(data.text + from, static_cast<size_t>(data.At<int32_t>(row + 1) - from)), to);
}

// Every number of these reads the same everywhere: "inf", "nan".
char* ValueText(const ColumnData& data, uint32_t row, bool utc, char* to) {
  switch (data.column->type) {
    case ValueType::kInt32:
      return NumberText(data.At<int32_t>(row), to);
    case ValueType::kInt64:
      return NumberText(data.At<int64_t>(row), to);
    case ValueType::kFloat:
      return NumberText(data.At<float>(row), to);
    case ValueType::kDouble:
      return NumberText(data.At<double>(row), to);
    case ValueType::kTime:
      return TimeText(data.At<int64_t>(row), utc, to);
    case ValueType::kText:
      break;
  }
  return to;
}

}  // namespace

void AppendCsvText(const std::string& text, std::string* to) {
  const bool plain = !text.empty() && text.find_first_of(",\"\r\n") == std::string::npos;
  if (plain) {
    *to += text;
    return;
  }
  *to += '"';
  for (const char c : text) {
    if (c == '"') *to += '"';
    *to += c;
  }
  *to += '"';
}

void AppendCsvHeader(const Batch& batch, std::string* to) {
  for (const ColumnData& data : batch.columns) {
    if (&data != batch.columns.data()) *to += ',';
    AppendCsvText(data.column->name, to);
  }
  *to += "\r\n";
}

void AppendCsvRows(const Batch& batch, bool utc, std::string* to) {
  const size_t columns = batch.columns.size();
  for (uint32_t row = 0; row < batch.rows; ++row) {
    // Room for a row of numbers; texts make their own.
    const size_t at = to->size();
    to->resize(at + columns * (kLongestValue + 1) + 2);
    char* out = to->data() + at;
    for (size_t c = 0; c < columns; ++c) {
      const ColumnData& data = batch.columns[c];
      if (c > 0) *out++ = ',';
      if (!data.Has(row)) continue;
      if (data.column->type == ValueType::kText) {
        to->resize(static_cast<size_t>(out - to->data()));
        AppendText(data, row, to);
        const size_t end = to->size();
        to->resize(end + (columns - c) * (kLongestValue + 1) + 2);
        out = to->data() + end;
      } else {
        out = ValueText(data, row, utc, out);
      }
    }
    *out++ = '\r';
    *out++ = '\n';
    to->resize(static_cast<size_t>(out - to->data()));
  }
}

}  // namespace quorvex
