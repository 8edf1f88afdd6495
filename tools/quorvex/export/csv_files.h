// Exports into CSV: a file a table, and columns.csv, which says what stands in them.
#pragma once

#include <memory>
#include <set>

#include "export/export.h"

namespace quorvex::tool {

// "R0001GEN.freq10s.csv"
std::string CsvName(const std::string& stem, const Table& table);

// What the files of a run have been made of, for columns.csv.
struct ColumnLines {
  std::mutex mutex;
  std::set<std::string> lines;
};

// Jobs whose output is the folder and the stem of the files; that of a job without one is standard
// output, which takes one table.
Work WritingCsv(const ExportRequest& request, const std::shared_ptr<ColumnLines>& columns);

// Why the folder's columns.csv cannot be written: another one is there. Empty where it can.
std::string ColumnsProblem(const std::string& folder);

// Adds what is new to the folder's columns.csv. Empty, or why that failed.
std::string WriteColumns(const std::string& folder, const std::set<std::string>& lines);

}  // namespace quorvex::tool
