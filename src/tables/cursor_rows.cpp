// The rows of the batch that a cursor fills: where its columns lie, putting values into them, and
// what becomes of them when the batch is complete.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "layout/date_time.h"
#include "support/loads.h"
#include "tables/cursor.h"
#include "texts/value_text.h"

namespace quorvex {
namespace {

constexpr size_t kBatchBytes = 1 << 20;
constexpr uint32_t kMostRows = 1 << 16;
constexpr size_t kAlignment = 64;

size_t WidthOf(ValueType type) {
  return type == ValueType::kInt32 || type == ValueType::kFloat || type == ValueType::kText ? 4 : 8;
}

// Aligned by hand: some C libraries do not use again what aligned_alloc() gave and got back, and
// then each of many recordings takes memory of its own.
Block NewBlock(size_t size) {
  auto* whole = static_cast<uint8_t*>(std::malloc(size + kAlignment));
  if (whole == nullptr) throw std::bad_alloc();
  const size_t gap = kAlignment - reinterpret_cast<uintptr_t>(whole) % kAlignment;
  whole[gap - 1] = static_cast<uint8_t>(gap);
  return Block(whole + gap);
}

// Columns that begin an odd number of lines apart do not fall on each other in the cache.
size_t OddLines(size_t bytes) {
  const size_t lines = (bytes + kAlignment - 1) / kAlignment;
  return (lines | 1) * kAlignment;
}

int64_t IntegerOf(const Field& f, const uint8_t* at, const Inputs& inputs) {
  if (f.kind == Kind::kMade) return f.make(at - f.offset, inputs).integer;
  if (f.kind == Kind::kI64) return Load<int64_t>(at);
  if (f.kind == Kind::kU16) return Load<uint16_t>(at);
  return f.kind == Kind::kU8 ? *at : std::min(Load<int32_t>(at), f.most);
}

// The marker where there is no value.
float FloatOf(const Field& f, const uint8_t* at, const Inputs& inputs) {
  if (f.kind == Kind::kNoValue) return kNoValue;
  if (f.kind == Kind::kMade) return f.make(at - f.offset, inputs).number;
  const float scale = inputs.scale[f.scale_ref];
  if (f.kind == Kind::kScaledI16) return static_cast<float>(Load<int16_t>(at)) * scale;
  const auto value = Load<float>(at);
  return f.kind == Kind::kScaledF32 && value != kNoValue ? value * scale : value;
}

// Marks what is there, and gives NaN to what is not. How many are missing.
template <typename T>
uint32_t MarkFloats(T* values, uint32_t rows, T marker, uint8_t* valid) {
  // Most columns lack nothing, and this loop has nothing in it that keeps it from being a fast one.
  uint32_t nulls = 0;
  for (uint32_t i = 0; i < rows; ++i) nulls += values[i] == marker ? 1 : 0;
  if (nulls == 0) return 0;
  for (uint32_t i = 0; i < rows; ++i) {
    const bool there = values[i] != marker;
    valid[i / 8] = static_cast<uint8_t>(valid[i / 8] | (there ? 1u : 0u) << (i % 8));
    if (!there) values[i] = std::numeric_limits<T>::quiet_NaN();
  }
  return nulls;
}

}  // namespace

void Cursor::LayOut(const std::vector<uint32_t>& columns) {
  size_t row_size = 1;
  constexpr size_t kTextSize = 64;  // until a batch is complete
  for (const uint32_t c : columns) {
    const ValueType type = table_.columns[c].type;
    row_size += type == ValueType::kText ? kTextSize : WidthOf(type);
  }
  const size_t most_rows = std::max<size_t>(table_.most_rows, 1);
  capacity_ = static_cast<uint32_t>(
      std::clamp(kBatchBytes / row_size, most_rows, std::max<size_t>(most_rows, kMostRows)));
  for (const uint32_t c : columns) {
    const Column& column = table_.columns[c];
    if (column.key != Key::kNone) {
      keys_.push_back(slots_.size());
    } else {
      slots_of_[column.path].push_back(static_cast<uint32_t>(slots_.size()));
    }
    slots_.push_back({&column, block_size_, 0});
    block_size_ += OddLines((capacity_ + size_t{1}) * WidthOf(column.type));
  }
  for (const Column& column : table_.columns) {
    if (table_.from == Table::From::kLists && column.key == Key::kNone) slots_of_[column.path];
  }
  valid_at_ = block_size_;
  for (Slot& slot : slots_) {
    slot.valid_at = block_size_;
    block_size_ += (capacity_ + 7) / 8;
  }
  texts_.resize(slots_.size());
}

void Cursor::Begin() {
  rows_ = part_rows_ = 0;
  block_ = NewBlock(block_size_);
  std::memset(block_.get() + valid_at_, 0, block_size_ - valid_at_);
  const bool sparse = table_.from == Table::From::kLists || !set_.elements.empty();
  for (size_t s = 0; s < slots_.size(); ++s) {
    const Slot& slot = slots_[s];
    switch (slot.column->type) {
      case ValueType::kFloat:
        if (sparse) std::fill_n(ValuesOf<float>(slot), capacity_, kNoValue);
        break;
      case ValueType::kDouble:
        std::fill_n(ValuesOf<double>(slot), capacity_, kNoValueDouble);
        break;
      case ValueType::kTime:
        std::fill_n(ValuesOf<int64_t>(slot), capacity_, kNoTime);
        break;
      case ValueType::kInt32:
        std::fill_n(ValuesOf<int32_t>(slot), capacity_, 0);
        break;
      case ValueType::kInt64:
        std::fill_n(ValuesOf<int64_t>(slot), capacity_, 0);
        break;
      case ValueType::kText:
        texts_[s].assign(capacity_, {});
        break;
    }
  }
}

void Cursor::PutNull(const Step& step, uint32_t row) {
  const Slot& slot = slots_[step.slot];
  if (slot.column->type == ValueType::kFloat) ValuesOf<float>(slot)[row] = kNoValue;
}

void Cursor::Put(const Step& step, const uint8_t* at, const Inputs& inputs, uint32_t row) {
  const Slot& slot = slots_[step.slot];
  const Field& f = *step.field;
  switch (slot.column->type) {
    case ValueType::kFloat:
      ValuesOf<float>(slot)[row] = FloatOf(f, at, inputs);
      return;
    case ValueType::kDouble:
      ValuesOf<double>(slot)[row] = Load<double>(at);
      return;
    case ValueType::kTime:
      ValuesOf<int64_t>(slot)[row] = MicrosecondsOf(Load<DateTimeRecord>(at));
      return;
    case ValueType::kInt32:
      ValuesOf<int32_t>(slot)[row] = static_cast<int32_t>(IntegerOf(f, at, inputs));
      break;
    case ValueType::kInt64:
      ValuesOf<int64_t>(slot)[row] = IntegerOf(f, at, inputs);
      break;
    case ValueType::kText: {
      std::string text(std::max<size_t>(f.size, kLongestMadeText), '\0');
      text.resize(static_cast<size_t>(ValueText(f, at, inputs, text.data()) - text.data()));
      texts_[step.slot][row] = AsUtf8(text);
      break;
    }
  }
  uint8_t& valid = block_.get()[slot.valid_at + row / 8];
  valid = static_cast<uint8_t>(valid | 1u << (row % 8));
}

void Cursor::Finish(Batch* batch) {
  batch->rows = rows_;
  for (const Slot& slot : slots_) {
    ColumnData data = {slot.column};
    FinishColumn(slot, &data, &batch->memory);
    batch->columns.push_back(data);
  }
  batch->memory.push_back(std::move(block_));
}

void Cursor::FinishColumn(const Slot& slot, ColumnData* data, std::vector<Block>* memory) {
  uint8_t* valid = block_.get() + slot.valid_at;
  data->values = block_.get() + slot.values_at;
  switch (slot.column->type) {
    case ValueType::kFloat:
      data->nulls = MarkFloats(ValuesOf<float>(slot), rows_, kNoValue, valid);
      break;
    case ValueType::kDouble:
      data->nulls = MarkFloats(ValuesOf<double>(slot), rows_, kNoValueDouble, valid);
      break;
    case ValueType::kTime: {
      int64_t* times = ValuesOf<int64_t>(slot);
      const int64_t shift = int64_t{options_.utc_offset.value_or(0)} * 60 * 1000000;
      for (uint32_t row = 0; row < rows_; ++row) {
        const bool there = times[row] != kNoTime;
        times[row] = there ? times[row] - shift : 0;
        data->nulls += there ? 0 : 1;
        if (there) valid[row / 8] = static_cast<uint8_t>(valid[row / 8] | 1u << (row % 8));
      }
      break;
    }
    case ValueType::kInt32:
    case ValueType::kInt64:
    case ValueType::kText:
      for (uint32_t row = 0; row < rows_; ++row)
        data->nulls += (valid[row / 8] >> (row % 8) & 1) ^ 1;
      break;
  }
  if (data->nulls != 0) data->valid = valid;
  if (slot.column->type != ValueType::kText) return;
  const std::vector<std::string>& texts = texts_[static_cast<size_t>(&slot - slots_.data())];
  size_t size = 0;
  for (uint32_t row = 0; row < rows_; ++row) size += texts[row].size();
  Block all = NewBlock(size + 1);
  char* to = reinterpret_cast<char*>(all.get());
  auto* offsets = ValuesOf<int32_t>(slot);
  for (uint32_t row = 0; row < rows_; ++row) {
    offsets[row] = static_cast<int32_t>(to - reinterpret_cast<char*>(all.get()));
    std::memcpy(to, texts[row].data(), texts[row].size());
    to += texts[row].size();
  }
  offsets[rows_] = static_cast<int32_t>(size);
  data->text = reinterpret_cast<char*>(all.get());
  memory->push_back(std::move(all));
}

}  // namespace quorvex
