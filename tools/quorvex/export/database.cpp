#include "export/database.h"

#ifdef QUORVEX_SQLITE

#include <sqlite3.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <set>
#include <stdexcept>

#include "inspection/facts.h"
#include "shared/output_places.h"

namespace quorvex::tool {
namespace {

constexpr int32_t kApplication = 0x51567436;  // "QVt6": the database is one of these

struct DatabaseError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::string Quoted(const std::string& name) {
  std::string quoted = "\"";
  for (const char c : name) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

class Statement {
 public:
  Statement(sqlite3* database, const std::string& text) : database_(database) {
    Check(sqlite3_prepare_v2(database, text.c_str(), -1, &statement_, nullptr));
  }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  void Put(int at, int64_t value) { Check(sqlite3_bind_int64(statement_, at, value)); }
  void Put(int at, double value) { Check(sqlite3_bind_double(statement_, at, value)); }
  void Put(int at, const char* text, size_t size) {
    Check(sqlite3_bind_text(statement_, at, text, static_cast<int>(size), SQLITE_TRANSIENT));
  }
  void Put(int at, const std::string& text) { Put(at, text.data(), text.size()); }
  void PutNull(int at) { Check(sqlite3_bind_null(statement_, at)); }
  template <typename T>
  void Put(int at, const std::optional<T>& value) {
    value ? Put(at, *value) : PutNull(at);
  }
  // False where there is no row (any more); it can be run again then.
  bool Step() {
    const int code = sqlite3_step(statement_);
    if (code == SQLITE_ROW) return true;
    sqlite3_reset(statement_);
    if (code != SQLITE_DONE) Check(code);
    return false;
  }
  void Run() {
    while (Step()) {
    }
  }
  int64_t Integer(int column) { return sqlite3_column_int64(statement_, column); }
  std::string Text(int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return text != nullptr ? text : "";
  }

 private:
  void Check(int code) const {
    if (code != SQLITE_OK) throw DatabaseError(sqlite3_errmsg(database_));
  }
  sqlite3* database_;
  sqlite3_stmt* statement_ = nullptr;
};

class Database {
 public:
  explicit Database(const std::string& path) {
    sqlite3* opened = nullptr;
    // Without a lock at each call, for one thread at a time has the database.
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    const int code = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
    database_.reset(opened);
    if (code != SQLITE_OK) throw DatabaseError(sqlite3_errmsg(opened));
    sqlite3_busy_timeout(opened, 10000);
    const int64_t application = Number("PRAGMA application_id");
    const int64_t tables = Number("SELECT count(*) FROM sqlite_master");
    if (application != kApplication && (application != 0 || tables != 0)) {
      throw DatabaseError("is a database of something else; nothing is written into it");
    }
    Run("PRAGMA synchronous = NORMAL");
    if (tables != 0) return;
    Run("BEGIN IMMEDIATE");
    Run("PRAGMA application_id = " + std::to_string(kApplication));
    Run("CREATE TABLE recordings (id INTEGER PRIMARY KEY, serial TEXT NOT NULL, path TEXT NOT "
        "NULL, "
        "tables TEXT, type INTEGER, name TEXT, version INTEGER, size INTEGER, records INTEGER, "
        "setting_file INTEGER, start TEXT, \"end\" TEXT, end_from TEXT, \"interval\" INTEGER, "
        "instrument TEXT, connection TEXT, UNIQUE (serial, path))");
    Run("CREATE TABLE columns (\"table\" TEXT NOT NULL, \"column\" TEXT NOT NULL, name TEXT NOT "
        "NULL, "
        "path TEXT, type TEXT, unit TEXT, meaning TEXT, PRIMARY KEY (\"table\", name))");
    for (const char* name : {"file", "settings"}) {
      Run("CREATE TABLE " + std::string(name) +
          " (recording INTEGER NOT NULL REFERENCES recordings (id), path TEXT NOT NULL, value "
          "TEXT, "
          "unit TEXT)");
      AddIndex(name);
    }
    Run("COMMIT");
  }

  sqlite3* get() { return database_.get(); }
  void Run(const std::string& text) { Statement(get(), text).Run(); }
  void RollBack() { sqlite3_exec(get(), "ROLLBACK", nullptr, nullptr, nullptr); }

  // The table of that name with these columns, and the names that they have there.
  std::vector<std::string> TakeTable(const std::string& name, const Table& table) {
    const bool head = table.from == Table::From::kFile || table.from == Table::From::kSettings;
    std::vector<std::string> columns;
    if (head) {
      for (const Column& column : table.columns) columns.push_back(column.name);
      return columns;
    }
    std::map<std::string, std::string> known;
    std::set<std::string> taken = {"recording"};
    Statement look(get(), "SELECT name, \"column\" FROM columns WHERE \"table\" = ?");
    look.Put(1, name);
    while (look.Step()) {
      known[look.Text(0)] = look.Text(1);
      taken.insert(Folded(look.Text(1)));
    }
    const bool is_new = known.empty();
    std::string definition;
    for (const Column& column : table.columns) {
      std::string& called = known[column.name];
      if (called.empty()) {
        called = column.name;
        for (int n = 2; !taken.insert(Folded(called)).second; ++n) {
          called = column.name + "_" + std::to_string(n);
        }
        const std::string piece = Quoted(called) + " " + TypeOf(column);
        definition += ", " + piece;
        if (!is_new) Run("ALTER TABLE " + Quoted(name) + " ADD COLUMN " + piece);
        Describe(name, called, column);
      }
      columns.push_back(called);
    }
    if (is_new) {
      Run("CREATE TABLE " + Quoted(name) +
          " (recording INTEGER NOT NULL REFERENCES recordings (id)" + definition + ")");
      AddIndex(name);
    }
    return columns;
  }

  // The names of the tables that recordings of this kind have rows in.
  std::vector<std::string> TablesOf(const std::string& word) {
    std::vector<std::string> names = {"file", "settings"};
    Statement look(get(), "SELECT DISTINCT \"table\" FROM columns");
    const std::string front = word + "_";
    while (look.Step()) {
      if (look.Text(0).compare(0, front.size(), front) == 0) names.push_back(look.Text(0));
    }
    return names;
  }

 private:
  int64_t Number(const std::string& text) {
    Statement look(get(), text);
    look.Step();
    return look.Integer(0);
  }
  void AddIndex(const std::string& table) {
    Run("CREATE INDEX " + Quoted(table + ".recording") + " ON " + Quoted(table) + " (recording)");
  }
  void Describe(const std::string& table, const std::string& called, const Column& column) {
    Statement insert(get(), "INSERT INTO columns VALUES (?, ?, ?, ?, ?, ?, ?)");
    const std::string* values[] = {&table, &called, &column.name, &column.path};
    for (int i = 0; i < 4; ++i) insert.Put(i + 1, *values[i]);
    insert.Put(5, NameOf(column.type));
    insert.Put(6, column.unit);
    insert.Put(7, column.meaning);
    insert.Run();
  }
  // SQLite takes letters of either case for the same, as far as they are ASCII.
  static std::string Folded(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return name;
  }
  static const char* TypeOf(const Column& column) {
    switch (column.type) {
      case ValueType::kInt32:
      case ValueType::kInt64:
        return "INTEGER";
      case ValueType::kFloat:
      case ValueType::kDouble:
        return "REAL";
      case ValueType::kText:
      case ValueType::kTime:
        break;
    }
    return "TEXT";
  }

  struct Close {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
  };
  std::unique_ptr<sqlite3, Close> database_;
};

void PutValue(const ColumnData& data, uint32_t row, bool utc, int at, Statement* to) {
  if (!data.Has(row)) return to->PutNull(at);
  const auto put_real = [&](double value) {
    std::isnan(value) ? to->PutNull(at) : to->Put(at, value);
  };
  switch (data.column->type) {
    case ValueType::kInt32:
      return to->Put(at, int64_t{data.At<int32_t>(row)});
    case ValueType::kInt64:
      return to->Put(at, data.At<int64_t>(row));
    case ValueType::kFloat:
      return put_real(static_cast<double>(data.At<float>(row)));
    case ValueType::kDouble:
      return put_real(data.At<double>(row));
    case ValueType::kTime: {
      char text[32];
      return to->Put(at, text,
                     static_cast<size_t>(TimeText(data.At<int64_t>(row), utc, text) - text));
    }
    case ValueType::kText: {
      const auto from = data.At<int32_t>(row);
      return to->Put(at, data.text + from, static_cast<size_t>(data.At<int32_t>(row + 1) - from));
    }
  }
}

// A recording on its way into the database.
struct Transfer {
  Database* database;
  const ExportRequest& request;
  Opened* opened;
  Job* job;
  int64_t id = 0;

  // The recording's row, old or new; what it had in tables that are written anew goes.
  void TakeRecording(const std::string& path, const std::vector<const Table*>& wanted) {
    // A head of its own: facts are told before the settings of a setting file are taken.
    RecordingHead head(opened->head.path);
    const Facts facts = FactsOf(&head);
    const std::string serial = facts.serial.value_or("");
    Statement look(database->get(),
                   "SELECT id, tables FROM recordings WHERE serial = ? AND path = ?");
    look.Put(1, serial);
    look.Put(2, path);
    if (look.Step()) {
      id = look.Integer(0);
      for (const std::string& table : database->TablesOf(look.Text(1))) {
        const bool stays = look.Text(1) == opened->word &&
                           std::none_of(wanted.begin(), wanted.end(), [&](const Table* one) {
                             return NameOfTable(*one) == table;
                           });
        if (stays) continue;
        Statement remove(database->get(), "DELETE FROM " + Quoted(table) + " WHERE recording = ?");
        remove.Put(1, id);
        remove.Run();
      }
    }
    Statement insert(database->get(),
                     "INSERT OR REPLACE INTO recordings VALUES "
                     "(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    id != 0 ? insert.Put(1, id) : insert.PutNull(1);
    insert.Put(2, serial);
    insert.Put(3, path);
    insert.Put(4, opened->word);
    insert.Put(5, int64_t{head.type->type});
    insert.Put(6, std::string(head.type->name));
    insert.Put(7, int64_t{static_cast<int32_t>(head.header.version)});
    insert.Put(8, static_cast<int64_t>(head.size));
    const std::optional<uint64_t> records = WholeRecords(head);
    records ? insert.Put(9, static_cast<int64_t>(*records)) : insert.PutNull(9);
    insert.Put(10, int64_t{head.setting_file ? 1 : 0});
    PutFacts(facts, &insert);
    insert.Run();
    id = sqlite3_last_insert_rowid(database->get());
  }

  void PutFacts(const Facts& facts, Statement* insert) const {
    std::map<std::string, std::string> texts;
    const std::vector<HeadRow> rows = FileRows(&opened->head, request.read.utc_offset);
    for (const HeadRow& row : rows) {
      if (row.value) texts[row.path] = *row.value;
    }
    if (texts.count("start") == 0 && texts.count("time") != 0) texts["start"] = texts["time"];
    int at = 11;
    for (const char* key : {"start", "end", "end_from", "interval", "instrument", "connection"}) {
      const auto found = texts.find(key);
      found != texts.end() ? insert->Put(at, found->second) : insert->PutNull(at);
      ++at;
    }
    if (facts.end_from == nullptr || texts.count("end") == 0) insert->PutNull(13);
  }

  std::string NameOfTable(const Table& table) const {
    if (table.from == Table::From::kFile || table.from == Table::From::kSettings) return table.name;
    std::string name = opened->word + "_" + table.name;
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
  }

  bool Write(const Table& table) {
    const std::string name = NameOfTable(table);
    std::string columns = "recording", values = "?";
    for (const std::string& column : database->TakeTable(name, table)) {
      columns += ", " + Quoted(column);
      values += ", ?";
    }
    Statement insert(database->get(),
                     "INSERT INTO " + Quoted(name) + " (" + columns + ") VALUES (" + values + ")");
    insert.Put(1, id);
    const bool utc = request.read.utc_offset.has_value();
    return ReadTable(opened, table, request.read, job, [&](const Batch& batch) {
      for (uint32_t row = 0; row < batch.rows; ++row) {
        int at = 2;
        for (const ColumnData& data : batch.columns) PutValue(data, row, utc, at++, &insert);
        insert.Run();
      }
      return true;
    });
  }
};

void RunJob(Database* database, const ExportRequest& request,
            std::map<std::string, std::string>* taken, Job* job) {
  Opened opened(job->input);
  const auto wanted = opened.Wanted(request);
  if (opened.code != kDone) return job->Fail(opened.code, job->input, opened.problem);
  if (!wanted) return job->Fail(kNoInput, job->input, "has changed meanwhile");
  // On the same card it stays the same.
  const std::string path = IsSpooled(job->input) ? "-" : Utf8(job->place);
  const auto& serial = opened.head.settings.ee_serial_number;
  const auto [entry, is_new] =
      taken->emplace(path + "\n" + std::string(serial, sizeof serial), job->input);
  if (!is_new) {
    return job->Fail(kNoOutput, job->input,
                     "its rows are those of " + entry->second +
                         ", which has the same instrument and path; export them apart");
  }
  try {
    database->Run("BEGIN IMMEDIATE");
    Transfer transfer = {database, request, &opened, job};
    transfer.TakeRecording(path, *wanted);
    for (size_t i = 0; i < wanted->size() && job->problem.empty(); ++i) {
      transfer.Write(*(*wanted)[i]);
      job->fraction = static_cast<float>(i + 1) / static_cast<float>(wanted->size());
    }
    if (job->problem.empty()) return database->Run("COMMIT");
  } catch (const DatabaseError& error) {
    job->Fail(kNoOutput, job->named, std::string("cannot be written: ") + error.what());
  }
  database->RollBack();
}

}  // namespace

bool HasDatabases(std::string*) { return true; }

Work WritingDatabase(const std::string& path, const ExportRequest& request, std::string* problem) {
  if (IsRecording(path)) {
    *problem =
        Exists(path) ? "is a recording; it is not overwritten" : "has the name of a recording";
    return nullptr;
  }
  if (IsFolder(path)) {
    *problem = "is a folder";
    return nullptr;
  }
  try {
    const auto database = std::make_shared<Database>(path);
    const auto taken = std::make_shared<std::map<std::string, std::string>>();
    return [database, taken, request](Job* job, unsigned) {
      RunJob(database.get(), request, taken.get(), job);
    };
  } catch (const DatabaseError& error) {
    *problem = error.what();
    return nullptr;
  }
}

}  // namespace quorvex::tool

#else

namespace quorvex::tool {

bool HasDatabases(std::string* problem) {
  *problem = "SQLite is not built into this program; CSV files (-o FOLDER) work everywhere";
  return false;
}

Work WritingDatabase(const std::string&, const ExportRequest&, std::string* problem) {
  HasDatabases(problem);
  return nullptr;
}

}  // namespace quorvex::tool

#endif
