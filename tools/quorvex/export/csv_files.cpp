#include "export/csv_files.h"

#include <algorithm>
#include <cstdio>

#include "export/output_files.h"
#include "shared/paths.h"
#include "shared/text_file.h"
#include "tables/csv.h"

namespace quorvex::tool {
namespace {

bool WriteTable(Opened* opened, const Table& table, const ReadOptions& options, Writer* to,
                Job* job) {
  const bool utc = options.utc_offset.has_value();
  // A table without rows has its header all the same.
  Batch empty;
  for (const Column& column : table.columns) empty.columns.push_back({&column});
  AppendCsvHeader(empty, to->text());
  const bool read = ReadTable(opened, table, options, job, [&](const Batch& batch) {
    AppendCsvRows(batch, utc, to->text());
    return to->WriteWhereFull();
  });
  return read && to->Write();
}

void RunJob(const ExportRequest& request, unsigned worker, ColumnLines* columns, Job* job) {
  Opened opened(job->input);
  if (opened.code != kDone) return job->Fail(opened.code, job->input, opened.problem);
  const auto wanted = opened.Wanted(request);
  if (opened.head.type != job->recording.type || !wanted) {
    return job->Fail(kNoInput, job->input, "has changed meanwhile");
  }
  if (job->output.empty()) {
    Writer writer(nullptr);
    UseBytes(stdout);
    if (!WriteTable(&opened, *wanted->front(), request.read, &writer, job)) FailWriting(job);
    return;
  }
  const std::string stem = job->output, named = job->named;
  for (size_t i = 0; i < wanted->size() && job->problem.empty(); ++i) {
    job->output = CsvName(stem, *(*wanted)[i]);
    job->named = CsvName(named, *(*wanted)[i]);
    WriteOutput("table", request.overwrite, worker, job, [&](Writer* writer) {
      return WriteTable(&opened, *(*wanted)[i], request.read, writer, job);
    });
    job->fraction = static_cast<float>(i + 1) / static_cast<float>(wanted->size());
  }
  job->output = stem;
  if (!job->problem.empty()) return;
  std::vector<std::string> lines;
  AddColumnLines(opened, *wanted, &lines);
  const std::lock_guard<std::mutex> lock(columns->mutex);
  columns->lines.insert(lines.begin(), lines.end());
}

std::string ColumnsPath(const std::string& folder) { return Inside(folder, "columns.csv"); }

}  // namespace

std::string CsvName(const std::string& stem, const Table& table) {
  std::string name = table.name;
  std::replace(name.begin(), name.end(), '/', '.');
  return stem + "." + name + ".csv";
}

Work WritingCsv(const ExportRequest& request, const std::shared_ptr<ColumnLines>& columns) {
  return [request, columns](Job* job, unsigned worker) {
    RunJob(request, worker, columns.get(), job);
  };
}

std::string ColumnsProblem(const std::string& folder) {
  const std::string path = ColumnsPath(folder);
  if (!Exists(path)) return "";
  if (IsFolder(path)) return "is a folder";
  std::string text;
  ReadText(path, &text);
  return text.compare(0, sizeof kColumnsHeader - 1, kColumnsHeader) == 0
             ? ""
             : "is not of this program; it is not overwritten";
}

std::string WriteColumns(const std::string& folder, const std::set<std::string>& lines) {
  std::string text;
  ReadText(ColumnsPath(folder), &text);
  if (text.empty()) text = kColumnsHeader;
  std::set<std::string> known;
  for (size_t at = 0; at < text.size();) {
    const size_t end = text.find("\r\n", at);
    if (end == std::string::npos) break;
    known.insert(text.substr(at, end + 2 - at));
    at = end + 2;
  }
  for (const std::string& line : lines) {
    if (known.insert(line).second) text += line;
  }
  return PutText(text, folder, ColumnsPath(folder), true);
}

}  // namespace quorvex::tool
