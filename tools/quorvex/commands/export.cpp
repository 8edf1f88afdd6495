// quorvex export writes recordings as tables.
#include <algorithm>
#include <set>

#include "commands/commands.h"
#include "export/comtrade_files.h"
#include "export/csv_files.h"
#include "export/database.h"
#include "export/output_files.h"
#include "export/pqdif_file.h"
#include "shared/gather.h"
#include "shared/help.h"
#include "shared/messages.h"
#include "shared/output_places.h"
#include "shared/request.h"

namespace quorvex::tool {
namespace {

struct ExportOptions {
  std::vector<std::string> inputs, tables;
  std::string output, format, records, utc_offset;
  ComtradeAsked comtrade;
  unsigned jobs = 0;
  bool list = false, overwrite = false, quiet = false;
  bool plain = false;
  uint64_t largest = pqdif::kLargestFile;  // of PQDIF files
};

// Looks at a recording before anything is written.
bool Look(const ExportRequest& request, Job* job) {
  const Opened opened(job->input);
  job->recording = Inspect(job->input);
  if (opened.code != kDone) {
    job->Fail(opened.code, job->input, opened.problem);
    return false;
  }
  for (const std::string& name : request.tables) {
    if (opened.set.Find(name) != nullptr) continue;
    std::string all;
    for (const Table& table : opened.set.tables) all += (all.empty() ? "" : ", ") + table.name;
    job->Fail(kUsage, job->input, "has no table " + name + "; it has " + all);
    return false;
  }
  return true;
}

ExitCode List(const std::vector<std::string>& recordings, const ExportRequest& request) {
  ExitCode code = kDone;
  std::set<std::string> known;
  UseBytes(stdout);
  Print(kColumnsHeader);
  for (const std::string& recording : recordings) {
    Job job;
    job.input = recording;
    if (!Look(request, &job)) {
      Complain(recording, job.problem);
      if (code == kDone) code = job.code;
      continue;
    }
    const Opened opened(recording);
    std::vector<std::string> lines;
    AddColumnLines(opened, opened.Wanted(request).value_or(std::vector<const Table*>()), &lines);
    for (const std::string& line : lines) {
      if (known.insert(line).second) Print(Shown(line.substr(0, line.size() - 2)) + "\r\n");
    }
  }
  return code;
}

void TellSummary(const std::deque<Job>& jobs, const std::string& where) {
  const auto written =
      std::count_if(jobs.begin(), jobs.end(), [](const Job& job) { return job.problem.empty(); });
  Say("found " + std::to_string(jobs.size()) + ", written " + std::to_string(written) +
      ", skipped " + std::to_string(static_cast<std::ptrdiff_t>(jobs.size()) - written) + "; " +
      where);
}

// `what` the outputs are, in the plural.
ExitCode Run(std::deque<Job>* jobs, const ExportOptions& options, const char* what,
             const Work& work, unsigned workers, Progress* progress) {
  const bool finished = RunJobs(jobs, work, workers, progress);
  TellExisting(*jobs, what);
  if (!finished) Say("cancelled");
  if (jobs->size() > 1 && !options.quiet) {
    TellSummary(*jobs, std::string(what) + " in " + options.output);
  }
  InterruptsAreDone();
  if (!finished) return kCancelled;
  const auto failed =
      std::find_if(jobs->begin(), jobs->end(), [](const Job& job) { return job.code != kDone; });
  return failed != jobs->end() ? failed->code : kDone;
}

ExitCode ToFolder(const ExportOptions& options, const ExportRequest& request, std::deque<Job>* jobs,
                  Progress* progress) {
  const std::string& folder = options.output;
  if (!TakesFiles(folder, "CSV")) return kUsage;
  const std::string columns_path = Inside(folder, "columns.csv");
  if (const std::string problem = ColumnsProblem(folder); !problem.empty()) {
    Complain(columns_path, problem);
    return kNoOutput;
  }
  // Where nothing can be read no folder is made.
  bool any = false;
  for (Job& job : *jobs) any = Look(request, &job) || any;
  if (any && !MakeFolder(folder)) return kNoOutput;
  FilePlaces places("table", options.overwrite);
  for (Job& job : *jobs) {
    if (!job.problem.empty()) continue;
    const auto names_of = [&](const std::string& stem) {
      std::vector<std::string> names;
      const Opened opened(job.input);
      for (const Table* table : opened.Wanted(request).value_or(std::vector<const Table*>())) {
        names.push_back(CsvName(stem, *table));
      }
      return names;
    };
    places.Take(folder, names_of, &job);
  }
  const auto columns = std::make_shared<ColumnLines>();
  ExitCode code = Run(jobs, options, "tables", WritingCsv(request, columns),
                      WorkersFor(options.jobs, jobs->size()), progress);
  if (columns->lines.empty()) return code;
  if (const std::string problem = WriteColumns(folder, columns->lines); !problem.empty()) {
    Complain(columns_path, "cannot be written: " + problem);
    if (code == kDone) code = kNoOutput;
  }
  return code;
}

ExitCode ToOutput(const ExportOptions& options, const ExportRequest& request, std::deque<Job>* jobs,
                  Progress* progress) {
  if (jobs->size() != 1 || request.tables.size() != 1) {
    Complain("-o -", "standard output takes one table of one recording (--table NAME)");
    return kUsage;
  }
  Job& job = jobs->front();
  job.named = "standard output";
  Look(request, &job);
  const auto columns = std::make_shared<ColumnLines>();
  return Run(jobs, options, "tables", WritingCsv(request, columns), 1, progress);
}

ExitCode ToDatabase(const ExportOptions& options, const ExportRequest& request,
                    std::deque<Job>* jobs, Progress* progress) {
  std::string problem;
  if (!HasDatabases(&problem)) {
    Complain(options.output, problem);
    return kUsage;
  }
  bool any = false;
  for (Job& job : *jobs) {
    job.output = job.named = options.output;
    any = Look(request, &job) || any;
  }
  // Where nothing can be read no database is made.
  Work work = [](Job*, unsigned) {};
  if (any) work = WritingDatabase(options.output, request, options.inputs, &problem);
  if (work == nullptr) {
    Complain(options.output, problem);
    return kNoOutput;
  }
  return Run(jobs, options, "tables", work, 1, progress);
}

// A card has recordings without waveforms too. They are told, and are a failure only where that
// leaves nothing to write.
ExitCode ToComtrade(const ExportOptions& options, const ExportRequest& request,
                    std::deque<Job>* jobs, Progress* progress) {
  ComtradeForm form;
  if (const std::string problem = FormOf(options.comtrade, &form); !problem.empty()) {
    Say(problem);
    return kUsage;
  }
  if (options.output == "-") {
    Complain("-o -", "COMTRADE files need a folder");
    return kUsage;
  }
  if (!TakesFiles(options.output, "COMTRADE")) return kUsage;
  std::deque<std::vector<std::string>> endings;
  bool any = false;
  for (Job& job : *jobs) {
    endings.emplace_back();
    if (!Look(request, &job)) continue;
    endings.back() = ComtradeEndings(job.input, request.read, form);
    if (endings.back().empty()) job.Fail(kDone, job.input, "has no waveforms");
    any = any || !endings.back().empty();
  }
  if (any && !MakeFolder(options.output)) return kNoOutput;
  FilePlaces places("file", options.overwrite);
  for (size_t i = 0; i < jobs->size(); ++i) {
    const auto names_of = [&](const std::string& stem) {
      for (std::string& ending : endings[i]) ending.insert(0, stem);
      return endings[i];
    };
    if ((*jobs)[i].problem.empty()) places.Take(options.output, names_of, &(*jobs)[i]);
  }
  const ExitCode code = Run(jobs, options, "files", WritingComtrade(request, form),
                            WorkersFor(options.jobs, jobs->size()), progress);
  return code == kDone && !any ? kUnknownType : code;
}

// A card in one file: there is no part of it to be chosen.
ExitCode ToPqdif(const ExportOptions& options, const ExportRequest& request,
                 const std::vector<std::string>& recordings, Progress* progress) {
  return ExportPqdif({options.output, request.read, options.plain, options.overwrite, options.quiet,
                      options.largest},
                     recordings, progress);
}

// What is to be written is said, or follows from the output's name.
std::string FormatOf(const ExportOptions& options) {
  if (!options.format.empty()) return options.format;
  const auto ends = [&](const std::string& end) {
    return options.output.size() > end.size() &&
           options.output.compare(options.output.size() - end.size(), end.size(), end) == 0;
  };
  if (ends(".pqd")) return "pqdif";
  if (ends(".arrow") || ends(".arrows")) return "arrow";
  return ends(".sqlite") || ends(".db") ? "sqlite" : "csv";
}

// What does not go with a format; null where all does.
const char* FormatProblem(const std::string& format, const ExportOptions& options) {
  const ComtradeAsked& asked = options.comtrade;
  const bool comtrade = format == "comtrade", pqdif = format == "pqdif";
  const bool tables = options.list || !options.tables.empty();
  if (comtrade && tables) {
    return "--format comtrade writes waveforms, not tables: --list and --table do not go with it";
  }
  if (!comtrade && (!asked.revision.empty() || !asked.data.empty() || asked.one_file)) {
    return "--comtrade, --data and --cff go with --format comtrade";
  }
  if (pqdif && tables) return "--list and --table are for tables";
  if (pqdif && !options.records.empty()) {
    return "--records is for tables; PQDIF takes whole recordings";
  }
  if (pqdif && options.output == "-") return "PQDIF files do not go to standard output";
  if (!pqdif && options.plain) return "--plain is for PQDIF";
  return nullptr;
}

ExitCode Export(const ExportOptions& options) {
  ExportRequest request;
  request.tables = options.tables;
  request.overwrite = options.overwrite;
  request.quiet = options.quiet;
  Range range;
  if (!options.records.empty()) {
    if (!ParseRange(options.records, &range)) {
      Complain("--records " + options.records, "is no range of records such as 3-5, 5- or 5");
      return kUsage;
    }
    request.read.first = range.first;
    if (range.last != 0xFFFFFFFF) request.read.last = range.last;
  }
  if (!ParseUtcOffset(options.utc_offset, &request.read)) return kUsage;
  const std::string format = FormatOf(options);
  if (format == "arrow") {
    Say("no Arrow files are written; the library QuorvexTables and the Python package hand out "
        "Arrow "
        "streams, which other programs make files of");
    return kUsage;
  }
  if (const char* problem = FormatProblem(format, options); problem != nullptr) {
    Say(problem);
    return kUsage;
  }
  if (options.output.empty() && !options.list) {
    Say("export needs -o: a folder, a database that ends in .sqlite, a file that ends in .pqd, or "
        "-; "
        "see --help");
    return kUsage;
  }
  Progress progress(!options.quiet && !options.list);
  std::vector<std::string> recordings;
  const bool gathered = GatherRecordings(options.inputs, &recordings);
  if (recordings.empty()) return kNoInput;
  if (options.list) {
    const ExitCode code = List(recordings, request);
    return code == kDone && !gathered ? kNoInput : code;
  }
  CatchInterrupts();
  if (format == "pqdif") {
    const ExitCode code = ToPqdif(options, request, recordings, &progress);
    return code == kDone && !gathered ? kNoInput : code;
  }
  std::deque<Job> jobs;
  for (const std::string& recording : recordings) jobs.emplace_back().input = recording;
  ExitCode code = kDone;
  if (format == "comtrade") {
    code = ToComtrade(options, request, &jobs, &progress);
  } else if (format == "sqlite") {
    code = ToDatabase(options, request, &jobs, &progress);
  } else if (options.output == "-") {
    code = ToOutput(options, request, &jobs, &progress);
  } else {
    code = ToFolder(options, request, &jobs, &progress);
  }
  return code == kDone && !gathered ? kNoInput : code;
}

}  // namespace

Command AddExport(CLI::App& app) {
  const auto options = std::make_shared<ExportOptions>();
  CLI::App* line = app.add_subcommand(
      "export", "Write recordings as tables: CSV, SQLite; as PQDIF; waveforms as COMTRADE");
  TakePaths(line, &options->inputs);
  line->add_option(
          "-o,--output", options->output,
          "A folder for CSV files, one a table; a database, which ends in .sqlite or .db; - "
          "is standard output, for one table of one recording; a PQDIF file, which ends in .pqd")
      ->option_text("PATH");
  line->add_option("--format", options->format,
                   "csv, sqlite or pqdif, whatever the output is called; comtrade: waveforms as "
                   "COMTRADE, into a folder")
      ->check(CLI::IsMember({"csv", "sqlite", "pqdif", "arrow", "comtrade"}))
      ->option_text("FORMAT");
  line->add_option(
          "--table", options->tables,
          "Only this table, such as records or samples; --list says which there are. May be "
          "given several times")
      ->option_text("NAME")
      ->allow_extra_args(false);
  line->add_option("--records", options->records,
                   "Only these records, counted from 1: 3-5, 5- or 5")
      ->option_text("A-B");
  line->add_option("--utc-offset", options->utc_offset,
                   "What the instrument's clock is ahead of UTC: +01:00. Times are shifted to UTC "
                   "then, and end in Z; otherwise they are the clock's, and say nothing of a zone")
      ->option_text("±HH:MM");
  line->add_option("--comtrade", options->comtrade.revision,
                   "Revision of COMTRADE, 1999 by default")
      ->check(CLI::IsMember({"1999", "2013"}))
      ->option_text("YEAR");
  line->add_option("--data", options->comtrade.data,
                   "How COMTRADE has samples: binary (16 bits, the default), ascii; with the "
                   "revision of 2013 also binary32, float32")
      ->check(CLI::IsMember({"ascii", "binary", "binary32", "float32"}))
      ->option_text("TYPE");
  line->add_flag("--cff", options->comtrade.one_file,
                 "COMTRADE as one .cff file, as the revision of 2013 has it");
  line->add_flag("--list", options->list,
                 "Say as CSV which tables and columns there are, with units and meanings");
  line->add_flag("--plain", options->plain, "Do not compress the records of a PQDIF file");
  // So that a test needs no 2 GiB.
  line->add_option("--largest-file", options->largest)->group("");
  line->add_flag(
      "--overwrite", options->overwrite,
      "Replace CSV and PQDIF files that exist already. By default they are left as they are, and "
      "the command fails for their recordings. In a database the rows of a recording are "
      "always replaced");
  line->add_option(
          "-j,--jobs", options->jobs,
          "Recordings side by side; as many as there are cores by default. A database takes "
          "one after the other")
      ->option_text("N");
  line->add_flag("-q,--quiet", options->quiet, "Failures only: no progress, no summary");
  line->footer(
      Footer({"quorvex export card -o tables/", "quorvex export card -o card.sqlite",
              "quorvex export card -o card.pqd --utc-offset +01:00",
              "quorvex export R0001GEN.REC --table records -o - | mlr --icsv --opprint head",
              "quorvex export R0005WAV.REC --format comtrade -o waves/",
              "quorvex export R0001GEN.REC --list"},
             {kDone, kUsage, kNoInput, kUnknownType, kCutShort, kNoOutput, kCancelled}));
  return {line, [options] { return Export(*options); }};
}

}  // namespace quorvex::tool
