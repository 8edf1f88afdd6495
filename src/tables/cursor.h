// Reads a table of a recording, batch by batch. A batch is a walk through some records, which ends
// where the batch is full and begins there again; so memory grows neither with the recording nor
// with its longest list.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "records/walk.h"
#include "tables/batch.h"

namespace quorvex {

struct ReadOptions {
  uint64_t first = 1, last = UINT64_MAX;   // record numbers
  std::optional<int32_t> utc_offset = {};  // minutes that the instrument's clock is ahead of UTC
};

class Cursor final : private Listener {
 public:
  // Of the table's columns those with these numbers. Everything given must outlive the cursor; the
  // settings in force are those of the head now.
  Cursor(RecordingHead* head, const TableSet& set, const Table& table,
         const std::vector<uint32_t>& columns, const ReadOptions& options);

  // Fills the next rows in. False where there are no more.
  bool Next(Batch* batch);

 private:
  // Where the values of a column lie in a layout, and where they go.
  struct Step {
    const Field* field;
    uint32_t offset, step;
    uint32_t slot;  // of the column
    uint32_t part_at;
    uint32_t element;
    Repeat list, only_if;
  };
  struct Copy {
    uint32_t offset;
    size_t to;  // of row 0, in the block
  };
  struct Binding {
    const Field* layout;
    const Field* group;  // innermost around it
    const char* phase;
    std::vector<Copy> floats;  // of records, the most of all
    std::vector<Step> others;
    std::vector<Repeat> lists = {};  // of the table, each count once: rows are there whoever asks
    int64_t time_step_at = -1;
  };
  struct Slot {
    const Column* column;
    size_t values_at, valid_at;  // in the block
  };
  struct Group {
    const Field* field;
    const char* phase;
  };

  void BeginGroup(const Field& group, const char* phase) override;
  void EndGroup() override { groups_.pop_back(); }
  void Bytes(const Piece& piece) override;
  bool EndPart(const PartEnd& end) override;
  bool EndRecord(const RecordEnd& end) override;

  const Binding& BindingOf(const Field& layout);
  void CountList(const Repeat& list, Binding* binding) const;
  void Run(const Step& step, const Piece& piece);
  bool EndRows(uint64_t record);
  bool NextRows(Batch* batch);

  // Of the rows, in cursor_rows.cpp.
  void LayOut(const std::vector<uint32_t>& columns);
  void Begin();
  void PutNull(const Step& step, uint32_t row);
  void Put(const Step& step, const uint8_t* at, const Inputs& inputs, uint32_t row);
  void Finish(Batch* batch);
  void FinishColumn(const Slot& slot, ColumnData* data, std::vector<Block>* memory);

  WalkFrom WhereToBegin() const;
  bool IsWanted(uint64_t record) const {
    return record >= next_.record && (!set_.elements.empty() || record >= options_.first);
  }
  template <typename T>
  T* ValuesOf(const Slot& slot) {
    return reinterpret_cast<T*>(block_.get() + slot.values_at);
  }

  RecordingHead* head_;
  const TableSet& set_;
  const Table& table_;
  ReadOptions options_;
  Wiring wiring_;
  uint64_t record_size_ = 0;                      // 0 where records differ
  uint32_t first_element_ = 0, end_element_ = 0;  // where records have elements: rows from and to
  std::vector<Slot> slots_;
  std::vector<size_t> keys_;  // slots that no record has values for
  std::unordered_map<std::string, std::vector<uint32_t>>
      slots_of_;  // by path; empty: not asked for
  std::vector<Binding> bindings_;
  const Binding* last_ = nullptr;
  std::vector<Group> groups_;
  uint32_t capacity_ = 0;
  size_t block_size_ = 0, valid_at_ = 0;

  Block block_;
  std::vector<std::vector<std::string>> texts_;  // by slot
  uint32_t rows_ = 0;                            // finished
  uint32_t part_rows_ = 0;  // behind them, of the part of the record that is told
  uint32_t part_first_ = 0;
  double time_step_ = 0;
  WalkFrom next_, before_;  // where the next batch begins, and the record in front of that
  bool stopped_ = false, done_ = false;
};

// The rows of `file` and `settings`.
struct HeadRow {
  std::string path;
  std::optional<std::string> value;
  std::string unit;
};
std::vector<HeadRow> FileRows(RecordingHead* head, std::optional<int32_t> utc_offset);
std::vector<HeadRow> SettingsRows(const RecordingHead& head, std::optional<int32_t> utc_offset);

// A text in which U+FFFD stands for bytes that are no UTF-8: some texts are kept as they stand.
std::string AsUtf8(const std::string& text);

// "2024-03-07T14:05:09.250000", with a Z behind it where times are UTC. Needs 28 bytes; returns the
// end.
char* TimeText(int64_t microseconds, bool utc, char* to);

}  // namespace quorvex
