// What exports have in common: which tables are wanted of which recording, and how they are read.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "shared/jobs.h"
#include "tables/cursor.h"

namespace quorvex::tool {

struct ExportRequest {
  std::vector<std::string> tables;  // empty: all
  ReadOptions read;
  bool overwrite = false, quiet = false;
};

// A recording that is open for its tables. Where `problem` is not empty it is not.
struct Opened {
  explicit Opened(const std::string& path);

  RecordingHead head;
  ExitCode code = kDone;
  std::string problem;
  TableSet set;
  std::string word;  // of its tables where they stand with others

  // The tables that are wanted; nothing where one of them is none of this recording's.
  std::optional<std::vector<const Table*>> Wanted(const ExportRequest& request) const;
};

// The numbers of all columns of a table.
std::vector<uint32_t> AllColumns(const Table& table);

// Reads a table, and tells its batches until one is refused. False where it was refused, or where
// the recording has failed, which then is the job's problem.
bool ReadTable(Opened* opened, const Table& table, const ReadOptions& options, Job* job,
               const std::function<bool(const Batch&)>& take);

// What tables and columns are: lines of CSV, each once.
constexpr char kColumnsHeader[] = "recordings,table,column,path,type,unit,meaning\r\n";
void AddColumnLines(const Opened& opened, const std::vector<const Table*>& tables,
                    std::vector<std::string>* lines);

}  // namespace quorvex::tool
