// The exports of the second library. Behind them everything is C++ like any other; here exceptions
// become errors.
#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>

#include "findings/soundness.h"
#include "quorvex64.h"
#include "quorvextables.h"
#include "support/float_environment.h"
#include "tables/arrow.h"
#include "tables/cursor.h"

using namespace quorvex;

struct QuorvexTables {
  std::string path;
  FileHeader header;
  uint64_t size;
  std::shared_ptr<const TableSet> set;  // streams need it longer

  const Table* At(int32_t table) const {
    const bool known = table >= 0 && static_cast<size_t>(table) < set->tables.size();
    return known ? &set->tables[static_cast<size_t>(table)] : nullptr;
  }
};

namespace {

// Why a recording gives no tables; empty where it does.
std::string ProblemOf(const char* path, RecordingHead* head) {
  if (std::strlen(path) > kMaxPath) return "the path is longer than 511 bytes";
  if (!head->file) return "cannot be opened";
  if (const std::optional<Finding> problem = HeadProblem(*head)) return problem->text;
  return "";
}

void Tell(const std::string& text, char* error, uint32_t room) {
  if (error == nullptr || room == 0) return;
  const size_t size = text.size() < room ? text.size() : room - 1;
  std::memcpy(error, text.data(), size);
  error[size] = '\0';
}

// Runs what may throw. What it gives where it did.
template <typename T, typename Work>
T Guarded(T failed, char* error, uint32_t room, Work work) {
  const OwnFloats floats;
  Tell("", error, room);
  try {
    return work();
  } catch (const std::exception& e) {
    Tell(dynamic_cast<const std::bad_alloc*>(&e) != nullptr ? "not enough memory" : e.what(), error,
         room);
    return failed;
  }
}

struct Stream {
  Stream(const QuorvexTables& of, const Table& read) : recording(of), table(read) {}

  QuorvexTables recording;  // its own: the caller's may be closed by then
  const Table& table;
  std::vector<uint32_t> columns;
  ReadOptions options;
  std::optional<RecordingHead> head;
  std::optional<Cursor> cursor;
  std::string error;
};

Stream* Of(ArrowArrayStream* stream) { return static_cast<Stream*>(stream->private_data); }

// Calls work(stream), and gives what a consumer understands of its failure.
template <typename Work>
int Ask(ArrowArrayStream* stream, Work work) {
  Stream* of = Of(stream);
  const OwnFloats floats;
  try {
    of->error.clear();
    return work(of);
  } catch (const std::bad_alloc&) {
    of->error = "not enough memory";
    return ENOMEM;
  } catch (const std::exception& e) {
    of->error = e.what();
    return EIO;
  }
}

int GetSchema(ArrowArrayStream* stream, ArrowSchema* to) {
  return Ask(stream, [&](Stream* of) {
    std::vector<const Column*> columns;
    columns.reserve(of->columns.size());
    for (const uint32_t c : of->columns) columns.push_back(&of->table.columns[c]);
    ExportSchema(columns, of->options.utc_offset.has_value(), to);
    return 0;
  });
}

int Open(Stream* of) {
  of->head.emplace(of->recording.path.c_str());
  of->error = ProblemOf(of->recording.path.c_str(), &*of->head);
  if (!of->error.empty()) return EIO;
  const FileHeader& header = of->head->header;
  if (header.type != of->recording.header.type || header.version != of->recording.header.version ||
      of->head->size != of->recording.size) {
    of->error = "the recording has changed since it was opened";
    return EIO;
  }
  of->head->UseSettingFile();
  of->cursor.emplace(&*of->head, *of->recording.set, of->table, of->columns, of->options);
  return 0;
}

int GetNext(ArrowArrayStream* stream, ArrowArray* to) {
  return Ask(stream, [&](Stream* of) {
    *to = {};
    if (!of->cursor) {
      if (const int problem = Open(of)) return problem;
    }
    Batch batch;
    if (of->cursor->Next(&batch)) ExportBatch(std::move(batch), to);
    if (std::ferror(of->head->file.get()->stream) == 0) return 0;
    if (to->release != nullptr) to->release(to);
    of->error = "the recording cannot be read to its end";
    return EIO;
  });
}

const char* GetLastError(ArrowArrayStream* stream) {
  const std::string& error = Of(stream)->error;
  return error.empty() ? nullptr : error.c_str();
}

void ReleaseStream(ArrowArrayStream* stream) {
  delete Of(stream);
  stream->release = nullptr;
}

// Throws where there is none of that name.
void ChooseColumns(const Table& table, const char* const* names, int32_t count,
                   std::vector<uint32_t>* columns) {
  if (names == nullptr) {
    for (uint32_t c = 0; c < table.columns.size(); ++c) columns->push_back(c);
    return;
  }
  for (int32_t i = 0; i < count; ++i) {
    const std::string name = names[i] != nullptr ? names[i] : "";
    uint32_t c = 0;
    while (c < table.columns.size() && table.columns[c].name != name) ++c;
    if (c == table.columns.size()) {
      throw std::runtime_error("the table " + table.name + " has no column " + name);
    }
    columns->push_back(c);
  }
}

}  // namespace

int32_t QuorvexTablesGetVersion(void) { return QUORVEX_VERSION; }

QuorvexTables* QuorvexTablesOpen(const char* path, char* error, uint32_t error_room) {
  return Guarded<QuorvexTables*>(nullptr, error, error_room, [&]() -> QuorvexTables* {
    if (path == nullptr) throw std::runtime_error("no path");
    RecordingHead head(path);
    const std::string problem = ProblemOf(path, &head);
    if (!problem.empty()) throw std::runtime_error(problem);
    head.UseSettingFile();
    return new QuorvexTables{path, head.header, head.size,
                             std::make_shared<TableSet>(TablesOf(*head.type, head.settings))};
  });
}

void QuorvexTablesClose(QuorvexTables* tables) { delete tables; }

int32_t QuorvexTablesCount(const QuorvexTables* tables) {
  return tables != nullptr ? static_cast<int32_t>(tables->set->tables.size()) : 0;
}

const char* QuorvexTablesName(const QuorvexTables* tables, int32_t table) {
  const Table* found = tables != nullptr ? tables->At(table) : nullptr;
  return found != nullptr ? found->name.c_str() : nullptr;
}

const char* QuorvexTablesMeaning(const QuorvexTables* tables, int32_t table) {
  const Table* found = tables != nullptr ? tables->At(table) : nullptr;
  return found != nullptr ? found->meaning.c_str() : nullptr;
}

int32_t QuorvexTablesColumnCount(const QuorvexTables* tables, int32_t table) {
  const Table* found = tables != nullptr ? tables->At(table) : nullptr;
  return found != nullptr ? static_cast<int32_t>(found->columns.size()) : 0;
}

int32_t QuorvexTablesGetColumn(const QuorvexTables* tables, int32_t table, int32_t number,
                               QuorvexTablesColumn* column) {
  const Table* found = tables != nullptr ? tables->At(table) : nullptr;
  if (found == nullptr || column == nullptr || number < 0 ||
      static_cast<size_t>(number) >= found->columns.size()) {
    return 0;
  }
  const Column& c = found->columns[static_cast<size_t>(number)];
  *column = {c.name.c_str(), c.path.c_str(),   NameOf(c.type), ArrowFormat(c.type, false),
             c.unit.c_str(), c.meaning.c_str()};
  return 1;
}

int32_t QuorvexTablesRead(const QuorvexTables* tables, const char* table,
                          const char* const* columns, int32_t column_count,
                          const QuorvexTablesRange* range, ArrowArrayStream* stream, char* error,
                          uint32_t error_room) {
  return Guarded<int32_t>(1, error, error_room, [&] {
    if (tables == nullptr || table == nullptr || stream == nullptr) {
      throw std::runtime_error("null is no recording, table or stream");
    }
    const Table* found = tables->set->Find(table);
    if (found == nullptr) throw std::runtime_error("there is no table " + std::string(table));
    auto of = std::make_unique<Stream>(*tables, *found);
    ChooseColumns(*found, columns, column_count, &of->columns);
    if (range != nullptr) {
      if (range->first > 0) of->options.first = range->first;
      if (range->last > 0) of->options.last = range->last;
      if (range->to_utc != 0) of->options.utc_offset = range->utc_offset_minutes;
    }
    *stream = {GetSchema, GetNext, GetLastError, ReleaseStream, of.release()};
    return 0;
  });
}
