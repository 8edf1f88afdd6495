#include "tables/cursor.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "support/loads.h"

namespace quorvex {
namespace {

// A step from sample to sample that the instrument can have had, else 0. It is a float, which has
// seven digits: what a double shows behind them is not the instrument's.
double SecondsOf(float step) {
  if (!(step >= 1e-6f && step <= 1e-2f)) return 0;
  char digits[32];
  const char* end = std::to_chars(digits, digits + sizeof digits, step).ptr;
  double seconds = 0;
  std::from_chars(digits, end, seconds);
  return seconds;
}

// Likewise a sample's time, to a picosecond: 0.0003 and not 0.00030000000000000003.
double SampleTime(uint64_t sample, double step) {
  constexpr double kPicoseconds = 1e12;
  return std::nearbyint(static_cast<double>(sample) * step * kPicoseconds) / kPicoseconds;
}

}  // namespace

Cursor::Cursor(RecordingHead* head, const TableSet& set, const Table& table,
               const std::vector<uint32_t>& columns, const ReadOptions& options)
    : head_(head),
      set_(set),
      table_(table),
      options_(options),
      wiring_(WiringOf(*head->type, head->settings)) {
  LayOut(columns);
  if (head->type->walk == nullptr) return;
  if (head->type->step_at >= 0) {
    const auto* settings = reinterpret_cast<const uint8_t*>(&head->settings);
    time_step_ = SecondsOf(Load<float>(settings + head->type->step_at));
  }
  record_size_ = RecordSize(*head->type, head->settings);
  const uint64_t elements = set.elements.size();
  end_element_ = static_cast<uint32_t>(std::min(options.last, elements));
  first_element_ = static_cast<uint32_t>(std::min<uint64_t>(options.first - 1, end_element_));
  if (!head->type->once && record_size_ != 0 && options.first > 1) {
    const uint64_t before = std::min(options.first - 2, UINT64_MAX / 4 / record_size_);
    before_ = {before + 1, head->type->records_at + before * record_size_};
    next_ = {before + 2, before_.at + record_size_};
  }
}

// A record that is cut takes what it lacks from the one in front of it, which is read again then.
WalkFrom Cursor::WhereToBegin() const {
  if (next_.record == 1) return next_;
  const Field* layout = LayoutOf(*head_->type, head_->settings);
  const uint64_t size = std::max<uint64_t>(record_size_, layout != nullptr ? layout->size : 0);
  const bool whole = next_.at <= head_->size && size <= head_->size - next_.at;
  return whole ? next_ : before_;
}

bool Cursor::Next(Batch* batch) {
  *batch = {};
  while (!done_) {
    if (NextRows(batch)) return true;
  }
  return false;
}

bool Cursor::NextRows(Batch* batch) {
  Begin();
  if (table_.from == Table::From::kFile || table_.from == Table::From::kSettings) {
    done_ = true;
    const std::vector<HeadRow> rows = table_.from == Table::From::kFile
                                          ? FileRows(head_, options_.utc_offset)
                                          : SettingsRows(*head_, options_.utc_offset);
    rows_ = static_cast<uint32_t>(rows.size());
    for (size_t s = 0; s < slots_.size(); ++s) {
      uint8_t* valid = block_.get() + slots_[s].valid_at;
      for (uint32_t row = 0; row < rows_; ++row) {
        const std::string& column = slots_[s].column->name;
        std::optional<std::string> text = rows[row].path;
        if (column == "value") text = rows[row].value;
        if (column == "unit") text = rows[row].unit;
        if (!text || (column == "unit" && text->empty())) continue;
        texts_[s][row] = *text;
        valid[row / 8] = static_cast<uint8_t>(valid[row / 8] | 1u << (row % 8));
      }
    }
  } else {
    stopped_ = false;
    groups_.clear();
    WalkOptions options;
    options.from = WhereToBegin();
    options.side_by_side = true;
    WalkRecording(head_, options, this);
    done_ = !stopped_;
  }
  if (rows_ == 0) return false;
  Finish(batch);
  return true;
}

void Cursor::BeginGroup(const Field& group, const char* phase) {
  groups_.push_back({&group, phase});
}

const Cursor::Binding& Cursor::BindingOf(const Field& layout) {
  const Group around = groups_.empty() ? Group{} : groups_.back();
  const auto fits = [&](const Binding& b) {
    return b.layout == &layout && b.group == around.field && b.phase == around.phase;
  };
  if (last_ != nullptr && fits(*last_)) return *last_;
  for (const Binding& known : bindings_) {
    if (fits(known)) return *(last_ = &known);
  }
  Binding binding = {&layout, around.field, around.phase, {}, {}};
  // What stands inside the record's element has a path from there.
  const size_t lists = head_->type->list != nullptr ? 1 : 0;
  std::string path;
  for (size_t g = lists + 1; g < groups_.size(); ++g) {
    path += std::string(groups_[g].field->name);
    if (groups_[g].phase != nullptr) path += std::string("[") + groups_[g].phase + "]";
    path += "/";
  }
  if (groups_.size() > lists && layout.name[0] != '\0') path += std::string(layout.name) + "/";
  for (const Value& value : quorvex::ValuesOf(layout, wiring_)) {
    std::string name = path + value.path;
    uint32_t element = 0;
    if (!set_.elements.empty()) {
      const std::string of = name.substr(0, name.find('/'));
      element = static_cast<uint32_t>(std::find(set_.elements.begin(), set_.elements.end(), of) -
                                      set_.elements.begin());
      name.erase(0, of.size() + 1);
    }
    if (value.field->time_step) binding.time_step_at = value.offset;
    const auto found = slots_of_.find(name);
    if (found == slots_of_.end()) continue;
    if (table_.from == Table::From::kLists) CountList(value.list, &binding);
    for (const uint32_t slot : found->second) {
      const Step step = {
          value.field, value.offset, value.step,   slot, slots_[slot].column->part * 4,
          element,     value.list,   value.only_if};
      const bool plain = value.field->kind == Kind::kF32 && set_.elements.empty() &&
                         table_.from == Table::From::kRecords && value.only_if.row == nullptr;
      if (plain) {
        binding.floats.push_back({value.offset, slots_[slot].values_at});
      } else {
        binding.others.push_back(step);
      }
    }
  }
  bindings_.push_back(std::move(binding));
  return *(last_ = &bindings_.back());
}

void Cursor::CountList(const Repeat& list, Binding* binding) const {
  const auto is_fixed = [](const Repeat& l) {
    return l.row == nullptr || l.row->kind == Kind::kSpectrum ||
           l.row->count_from == CountFrom::kTable;
  };
  const auto fixed_count = [](const Repeat& l) -> uint32_t {
    if (l.row == nullptr) return 1;
    return l.row->kind == Kind::kSpectrum ? OrdersOf(*l.row) : l.row->count;
  };
  const auto same = [&](const Repeat& known) {
    if (is_fixed(list)) return is_fixed(known) && fixed_count(known) >= fixed_count(list);
    return !is_fixed(known) && known.at == list.at && known.row->count == list.row->count &&
           known.row->count_from == list.row->count_from &&
           known.row->count_ref == list.row->count_ref;
  };
  if (std::none_of(binding->lists.begin(), binding->lists.end(), same)) {
    binding->lists.push_back(list);
  }
}

void Cursor::Bytes(const Piece& piece) {
  if (piece.record == 0 || !IsWanted(piece.record)) return;
  const Binding& binding = BindingOf(piece.layout);
  const auto* bytes = static_cast<const uint8_t*>(piece.bytes);
  if (binding.time_step_at >= 0) {
    const auto step = Load<float>(bytes + binding.time_step_at);
    time_step_ = SecondsOf(step);
  }
  uint8_t* const to = block_.get() + size_t{rows_} * 4;
  for (const Copy& copy : binding.floats) std::memcpy(to + copy.to, bytes + copy.offset, 4);
  for (const Step& step : binding.others) Run(step, piece);
  for (const Repeat& list : binding.lists) {
    if (piece.first < part_first_) continue;
    const uint32_t end = piece.first - part_first_ + CountOf(list, bytes, piece.inputs);
    part_rows_ = std::max(part_rows_, std::min(end, capacity_ - rows_));
  }
}

void Cursor::Run(const Step& step, const Piece& piece) {
  const auto* bytes = static_cast<const uint8_t*>(piece.bytes);
  const bool elements = !set_.elements.empty();
  if (elements && (step.element < first_element_ || step.element >= end_element_)) return;
  if (table_.from == Table::From::kRecords) {
    const uint32_t row = rows_ + step.element - first_element_;
    if (CountOf(step.only_if, bytes, piece.inputs) == 0) return PutNull(step, row);
    return Put(step, bytes + step.offset, piece.inputs, row);
  }
  const uint32_t count = CountOf(step.list, bytes, piece.inputs);
  if (piece.first < part_first_) return;
  const uint32_t first = piece.first - part_first_;
  const uint32_t room = capacity_ - rows_;
  const uint32_t end = std::min(first + count, room);
  for (uint32_t i = first; i < end; ++i) {
    const uint8_t* at = bytes + step.offset + size_t{i - first} * step.step + step.part_at;
    Put(step, at, piece.inputs, rows_ + i);
  }
}

// The rows of a part are complete but for the keys. False: stop here.
bool Cursor::EndRows(uint64_t record) {
  for (const size_t s : keys_) {
    const Slot& slot = slots_[s];
    const Key key = slot.column->key;
    for (uint32_t i = 0; i < part_rows_; ++i) {
      const uint32_t row = rows_ + i;
      const uint64_t entry = uint64_t{part_first_} + i;
      const bool by_element = table_.from == Table::From::kRecords && !set_.elements.empty();
      if (key == Key::kRecord) {
        const uint64_t number = by_element ? uint64_t{first_element_} + i + 1 : record;
        ValuesOf<int64_t>(slot)[row] = static_cast<int64_t>(number);
      } else if (key == Key::kIndex) {
        ValuesOf<int64_t>(slot)[row] = static_cast<int64_t>(entry + 1);
      } else if (key == Key::kOrder) {
        ValuesOf<int32_t>(slot)[row] =
            static_cast<int32_t>(entry) + static_cast<int32_t>(table_.first_order);
      } else if (key == Key::kTime) {
        if (time_step_ > 0) ValuesOf<double>(slot)[row] = SampleTime(entry, time_step_);
        continue;
      } else {
        texts_[s][row] = set_.elements[first_element_ + i];
      }
      uint8_t& valid = block_.get()[slot.valid_at + row / 8];
      valid = static_cast<uint8_t>(valid | 1u << (row % 8));
    }
  }
  rows_ += part_rows_;
  part_rows_ = 0;
  stopped_ = capacity_ - rows_ < table_.most_rows;
  return !stopped_;
}

bool Cursor::EndPart(const PartEnd& end) {
  if (end.record < next_.record || (end.record == next_.record && end.next <= next_.entry)) {
    return true;
  }
  const bool wanted = !IsWanted(end.record) || EndRows(end.record);
  part_first_ = end.next;
  if (!wanted) next_ = {end.record, end.at, end.next};
  return wanted;
}

bool Cursor::EndRecord(const RecordEnd& end) {
  if (end.record < next_.record) return true;
  bool wanted = true;
  if (!end.written || !IsWanted(end.record)) {
    part_rows_ = 0;
  } else {
    if (table_.from == Table::From::kRecords) {
      part_rows_ = set_.elements.empty() ? 1 : end_element_ - first_element_;
    }
    wanted = EndRows(end.record);
  }
  part_first_ = 0;
  before_ = {end.record, end.at};
  next_ = {end.record + 1, end.at + end.size};
  if (head_->type->once || end.record >= options_.last) {
    stopped_ = false;
    return false;
  }
  return wanted;
}

}  // namespace quorvex
