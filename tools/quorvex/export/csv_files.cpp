#include "export/csv_files.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "shared/gather.h"
#include "shared/messages.h"
#include "shared/text_file.h"
#include "support/file.h"
#include "tables/csv.h"

namespace quorvex::tool {
namespace {

constexpr size_t kPiece = 1 << 18;

// Gathers text, and hands it on in large pieces.
class Writer {
 public:
  explicit Writer(FileHandle* file) : file_(file) { text_.reserve(2 * kPiece); }

  std::string* text() { return &text_; }
  // False where writing was given up; the job says why.
  bool WriteWhereFull() { return text_.size() < kPiece || Write(); }
  bool Write() {
    bool written = false;
    if (file_ == nullptr) {
      written = Print(text_);
    } else {
      const auto size = static_cast<uint32_t>(text_.size());
      written = WriteAll(file_, text_.data(), size, GoOn) == size;
    }
    text_.clear();
    return written;
  }

 private:
  FileHandle* file_;  // null: standard output
  std::string text_;
};

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

void FailWriting(Job* job) {
  if (!job->problem.empty()) return;
  if (Interrupted()) return job->Fail(kCancelled, job->input, "cancelled");
  job->Fail(
      kNoOutput, job->named,
      "cannot be written" + (job->write_error != 0 ? ": " + TextOfError(job->write_error) : ""));
}

void WriteFile(Opened* opened, const Table& table, const ExportRequest& request, unsigned worker,
               Placed* placed, Job* job) {
  Scratch scratch(worker);
  if (!scratch.Create(FolderOf(job->output))) {
    return job->Fail(kNoOutput, job->named, "cannot be written: " + LastError());
  }
  FileHandle* file = OpenFile(scratch.path().c_str(), kOpenCreate);
  if (file == nullptr) return job->Fail(kNoOutput, job->named, "cannot be written: " + LastError());
  Writer writer(file);
  const bool written = WriteTable(opened, table, request.read, &writer, job);
  if (!CloseFile(file) || !written) return FailWriting(job);
  placed->Put(&scratch, request.overwrite, "table", job);
}

void RunJob(const ExportRequest& request, unsigned worker, Placed* placed, ColumnLines* columns,
            Job* job) {
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
    WriteFile(&opened, *(*wanted)[i], request, worker, placed, job);
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
  const auto placed = std::make_shared<Placed>();
  return [request, columns, placed](Job* job, unsigned worker) {
    RunJob(request, worker, placed.get(), columns.get(), job);
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
