#include "export/export.h"

#include <algorithm>
#include <numeric>

#include "tables/csv.h"

namespace quorvex::tool {

Opened::Opened(const std::string& path) : head(path.c_str()) {
  const Recording recording = Inspect(&head);
  code = recording.code;
  problem = recording.problem;
  if (code != kDone) return;
  set = TablesOf(*head.type, head.settings);
  word = WordOf(*head.type, LayoutOf(*head.type, head.settings));
}

std::optional<std::vector<const Table*>> Opened::Wanted(const ExportRequest& request) const {
  std::vector<const Table*> wanted;
  wanted.reserve(set.tables.size());
  for (const Table& table : set.tables) {
    if (request.tables.empty()) wanted.push_back(&table);
  }
  for (const std::string& name : request.tables) {
    const Table* table = set.Find(name);
    if (table == nullptr) return std::nullopt;
    if (std::find(wanted.begin(), wanted.end(), table) == wanted.end()) wanted.push_back(table);
  }
  return wanted;
}

std::vector<uint32_t> AllColumns(const Table& table) {
  std::vector<uint32_t> columns(table.columns.size());
  std::iota(columns.begin(), columns.end(), 0u);
  return columns;
}

bool ReadTable(Opened* opened, const Table& table, const ReadOptions& options, Job* job,
               const std::function<bool(const Batch&)>& take) {
  Cursor cursor(&opened->head, opened->set, table, AllColumns(table), options);
  Batch batch;
  while (cursor.Next(&batch)) {
    if (Interrupted()) job->Fail(kCancelled, job->input, "cancelled");
    if (!job->problem.empty() || !take(batch)) return false;
  }
  FileHandle* file = opened->head.file.get();
  if (std::ferror(file->stream) != 0) {
    job->Fail(kNoInput, job->input, "cannot be read to its end");
  } else if (SizeOf(file) != opened->head.size) {
    job->Fail(kNoInput, job->input, "has changed meanwhile");
  }
  return job->problem.empty();
}

void AddColumnLines(const Opened& opened, const std::vector<const Table*>& tables,
                    std::vector<std::string>* lines) {
  for (const Table* table : tables) {
    for (const Column& column : table->columns) {
      std::string line = opened.word;
      const std::string type = NameOf(column.type);
      for (const std::string* field :
           {&table->name, &column.name, &column.path, &type, &column.unit, &column.meaning}) {
        line += ',';
        if (!field->empty()) AppendCsvText(*field, &line);
      }
      lines->push_back(line + "\r\n");
    }
  }
}

}  // namespace quorvex::tool
