// quorvex export writes recordings as tables.
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
#include "shared/paths.h"
#include "shared/request.h"

namespace quorvex::tool {
namespace {

struct ExportOptions {
  SourcesAsked inputs;
  std::vector<std::string> tables;
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

ExitCode List(Gathering* gathering, const ExportRequest& request) {
  ExitCode code = kDone;
  std::set<std::string> known;
  UseBytes(stdout);
  Print(kColumnsHeader);
  for (Found found; gathering->Next(&found);) {
    Job job;
    job.Take(found);
    if (!job.problem.empty() || !Look(request, &job)) {
      Complain(job.culprit, job.problem);
      if (code == kDone) code = job.code;
      continue;
    }
    const Opened opened(job.input);
    std::vector<std::string> lines;
    AddColumnLines(opened, opened.Wanted(request).value_or(std::vector<const Table*>()), &lines);
    for (const std::string& line : lines) {
      if (known.insert(line).second) Print(Shown(line.substr(0, line.size() - 2)) + "\r\n");
    }
  }
  return code;
}

// What exports of a gathering have in common.
struct Exporting {
  const ExportOptions& options;
  const ExportRequest& request;
  Gathering* gathering;
  Ahead* ahead;
  Progress* progress;
};

// `what` the outputs are, in the plural.
ExitCode Run(const Exporting& run, const char* what, Steps steps, bool side_by_side) {
  Outcome outcome;
  Counting counting(*run.gathering);
  steps.next = NextOf(run.ahead);
  steps.told = [&](const Job& job) { outcome.Take(job); };
  steps.totals = [&] { return counting.Get(); };
  const bool several = run.ahead->Several() && side_by_side;
  const bool finished = RunJobs(steps, several ? WorkersFor(run.options.jobs) : 1, run.progress);
  outcome.TellExisting(what);
  if (!finished) Say("cancelled");
  const bool given_up = steps.given_up && steps.given_up();
  if (run.ahead->Several() && !run.options.quiet && !given_up) {
    Say("found " + std::to_string(outcome.found) + ", written " + std::to_string(outcome.written) +
        ", skipped " + std::to_string(outcome.found - outcome.written) + "; " + what + " in " +
        run.options.output);
  }
  InterruptsAreDone();
  return finished ? outcome.code : kCancelled;
}

ExitCode ToFolder(const Exporting& run) {
  const ExportRequest& request = run.request;
  const std::string& folder = run.options.output;
  if (!TakesFiles(folder, "CSV")) return kUsage;
  const std::string columns_path = Inside(folder, "columns.csv");
  if (const std::string problem = ColumnsProblem(folder); !problem.empty()) {
    Complain(columns_path, problem);
    return kNoOutput;
  }
  FilePlaces places("table", folder, run.options.overwrite);
  const auto columns = std::make_shared<ColumnLines>();
  Steps steps;
  steps.look = [&](Job* job) {
    if (!Look(request, job)) return;
    const Opened opened(job->input);
    for (const Table* table : opened.Wanted(request).value_or(std::vector<const Table*>())) {
      job->names.push_back(CsvName("", *table));
    }
  };
  steps.place = [&](Job* job) { places.Take(job); };
  steps.work = WritingCsv(request, columns);
  ExitCode code = Run(run, "tables", steps, true);
  if (columns->lines.empty()) return code;
  if (const std::string problem = WriteColumns(folder, columns->lines); !problem.empty()) {
    Complain(columns_path, "cannot be written: " + problem);
    if (code == kDone) code = kNoOutput;
  }
  return code;
}

ExitCode ToOutput(const Exporting& run) {
  if (run.ahead->Several() || run.request.tables.size() != 1) {
    Complain("-o -", "standard output takes one table of one recording (--table NAME)");
    return kUsage;
  }
  Steps steps;
  steps.look = [&](Job* job) {
    job->named = "standard output";
    Look(run.request, job);
  };
  steps.work = WritingCsv(run.request, std::make_shared<ColumnLines>());
  return Run(run, "tables", steps, false);
}

ExitCode ToDatabase(const Exporting& run) {
  const std::string& output = run.options.output;
  std::string problem;
  if (!HasDatabases(&problem)) {
    Complain(output, problem);
    return kUsage;
  }
  // Where nothing can be read no database is made.
  Work write;
  Steps steps;
  steps.look = [&](Job* job) {
    job->output = job->named = output;
    if (!Look(run.request, job) || write != nullptr) return;
    if (problem.empty()) write = WritingDatabase(output, run.request, &problem);
    if (write == nullptr) job->Fail(kNoOutput, output, problem);
  };
  steps.work = [&](Job* job, unsigned worker) { write(job, worker); };
  // A database that cannot be used is so for all.
  steps.given_up = [&] { return write == nullptr && !problem.empty(); };
  return Run(run, "tables", steps, false);
}

// A card has recordings without waveforms too. They are told, and are a failure only where that
// leaves nothing to write.
ExitCode ToComtrade(const Exporting& run) {
  ComtradeForm form;
  if (const std::string problem = FormOf(run.options.comtrade, &form); !problem.empty()) {
    Say(problem);
    return kUsage;
  }
  if (run.options.output == "-") {
    Complain("-o -", "COMTRADE files need a folder");
    return kUsage;
  }
  if (!TakesFiles(run.options.output, "COMTRADE")) return kUsage;
  FilePlaces places("file", run.options.output, run.options.overwrite);
  bool any = false;
  Steps steps;
  steps.look = [&](Job* job) {
    if (!Look(run.request, job)) return;
    job->names = ComtradeEndings(job->input, run.request.read, form);
    if (job->names.empty()) job->Fail(kDone, job->input, "has no waveforms");
  };
  steps.place = [&](Job* job) {
    any = true;
    places.Take(job);
  };
  steps.work = WritingComtrade(run.request, form);
  const ExitCode code = Run(run, "files", steps, true);
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

ExitCode Export(ExportOptions options) {
  if (const std::string problem = ProblemOf(&options.inputs); !problem.empty()) {
    Say(problem);
    return kUsage;
  }
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
  const Sources& sources = options.inputs.sources;
  std::unique_ptr<Gathering> gathering;
  if (const std::string reason = Gathering::Prepare(sources, &gathering); !reason.empty()) {
    Complain(sources.list, reason);
    return kNoInput;
  }
  if (options.list) return List(gathering.get(), request);
  if (format == "pqdif") {
    std::vector<std::string> recordings;
    const bool complete = GatherRecordings(gathering.get(), &recordings);
    if (recordings.empty()) return complete ? kDone : kNoInput;
    CatchInterrupts();
    const ExitCode code = ToPqdif(options, request, recordings, &progress);
    return code == kDone && !complete ? kNoInput : code;
  }
  CatchInterrupts();
  Ahead ahead(gathering.get());
  const Exporting run = {options, request, gathering.get(), &ahead, &progress};
  if (format == "comtrade") return ToComtrade(run);
  if (format == "sqlite") return ToDatabase(run);
  return options.output == "-" ? ToOutput(run) : ToFolder(run);
}

}  // namespace

Command AddExport(CLI::App& app) {
  const auto options = std::make_shared<ExportOptions>();
  CLI::App* line = app.add_subcommand(
      "export", "Write recordings as tables: CSV, SQLite; as PQDIF; waveforms as COMTRADE");
  TakeSources(line, &options->inputs);
  line->add_option(
          "-o,--output", options->output,
          "A folder for CSV files, one a table, in which the folders below PATH are mirrored; a "
          "database, which ends in .sqlite or .db; - is standard output, for one table of one "
          "recording; a PQDIF file, which ends in .pqd")
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
