// quorvex convert decides which recordings become which documents, and has them converted.
#include "commands/commands.h"
#include "records/record_types.h"
#include "shared/conversion_jobs.h"
#include "shared/gather.h"
#include "shared/help.h"
#include "shared/messages.h"
#include "shared/output_places.h"

namespace quorvex::tool {
namespace {

struct ConvertOptions {
  std::vector<std::string> inputs;
  std::string output, records;  // empty: beside each recording; all of them
  unsigned jobs = 0;            // as many as there are cores
  bool overwrite = false, no_clobber = false, quiet = false;
};

std::string DocumentName(const std::string& recording) {
  const size_t name = recording.size() - NameOnly(recording).size();
  const size_t dot = recording.rfind('.');
  const bool extension = dot != std::string::npos && dot > name;
  return (extension ? recording.substr(0, dot) : recording) + ".xml";
}

// Gives the job its range. Only of general recordings a part can be converted.
bool TakeRange(const Range& range, Job* job) {
  const Recording& r = job->recording;
  const uint64_t records = r.records.value_or(0);
  job->range = range;
  if (r.type != &kGeneral) {
    job->Fail(kUnknownType, job->input,
              std::string("holds ") + r.type->name +
                  "; only general recordings are converted in part (--records)");
  } else if (range.first > records) {
    job->Fail(kUsage, job->input,
              "has " + std::to_string(records) + (records == 1 ? " record" : " records") +
                  ", none from " + std::to_string(range.first) + " on (--records)");
  }
  return job->problem.empty();
}

class Preparation {
 public:
  Preparation(const ConvertOptions& options, const Range& range, bool into_folder)
      : options_(options),
        range_(range),
        into_folder_(into_folder),
        places_("document", options.overwrite) {}

  void Prepare(Job* job) {
    job->recording = Inspect(job->input);
    if (job->recording.code != kDone) {
      return job->Fail(job->recording.code, job->input, job->recording.problem);
    }
    if (!options_.records.empty() && !TakeRange(range_, job)) return;
    const bool spooled = IsSpooled(job->input);
    if (options_.output == "-" || (spooled && options_.output.empty())) {
      job->named = "standard output";
      places_.CleanUp(TemporaryFolder());
      return;
    }
    job->named = options_.output;
    if (options_.output.empty()) job->named = DocumentName(job->input);
    if (into_folder_) {
      job->named =
          Inside(options_.output, spooled ? "recording.xml" : DocumentName(NameOnly(job->input)));
    }
    if (job->named.size() > kMaxPath) {
      return job->Fail(kNoOutput, job->named, "the path is longer than 511 bytes");
    }
    if (IsFolder(job->named)) return job->Fail(kNoOutput, job->named, "is a folder");
    job->output = Resolved(job->named);
    places_.Take(job);
  }

 private:
  const ConvertOptions& options_;
  Range range_;
  bool into_folder_;
  OutputPlaces places_;
};

// Says in one line what became of them all.
void TellSummary(const std::deque<Job>& jobs) {
  size_t written = 0, existing = 0, errors = 0, warnings = 0;
  for (const Job& job : jobs) {
    written += job.problem.empty() ? 1 : 0;
    existing += job.exists ? 1 : 0;
    errors += job.findings.worst == Severity::kError ? 1 : 0;
    warnings += job.findings.worst == Severity::kWarning ? 1 : 0;
  }
  const auto number = [](size_t count) { return std::to_string(count); };
  Say("found " + number(jobs.size()) + ", written " + number(written) + ", skipped " +
      number(jobs.size() - written) +
      (existing != 0 ? " (" + number(existing) + " exist already)" : "") + "; " + number(errors) +
      " with errors, " + number(warnings) + " with warnings");
}

ExitCode Convert(const ConvertOptions& options) {
  Range range;
  if (!options.records.empty() && !ParseRange(options.records, &range)) {
    Complain("--records " + options.records, "is no range of records such as 3-5, 5- or 5");
    return kUsage;
  }
  Progress progress(!options.quiet);
  std::vector<std::string> recordings;
  const bool gathered = GatherRecordings(options.inputs, &recordings);
  if (recordings.empty()) return kNoInput;
  const std::string& output = options.output;
  const bool slash =
      !output.empty() && std::string(kSeparators).find(output.back()) != std::string::npos;
  const bool several = recordings.size() > 1;
  if (several && (output == "-" || (!output.empty() && Exists(output) && !IsFolder(output)))) {
    Complain(output, "is no folder; several documents need one");
    return kUsage;
  }
  if (!output.empty() && !IsFolder(output) && (slash || several) && !CreateFolder(output)) {
    Complain(output, "cannot be created: " + SystemError());
    return kNoOutput;
  }

  CatchInterrupts();
  std::deque<Job> jobs;
  Preparation preparation(options, range, !output.empty() && IsFolder(output));
  for (const std::string& recording : recordings) {
    jobs.emplace_back().input = recording;
    preparation.Prepare(&jobs.back());
    if (progress.IsDue()) progress.Tell({jobs.size()});
  }
  const bool finished = RunJobs(&jobs, Converting({options.overwrite, !options.quiet}),
                                WorkersFor(options.jobs, jobs.size()), &progress);
  if (!options.no_clobber) TellExisting(jobs, "documents");
  if (!finished) Say("cancelled");
  if (several && !options.quiet) TellSummary(jobs);
  InterruptsAreDone();
  if (!finished) return kCancelled;
  if (!gathered) return kNoInput;
  for (const Job& job : jobs) {
    if (job.code != kDone && !(job.exists && options.no_clobber)) return job.code;
  }
  return kDone;
}

}  // namespace

Command AddConvert(CLI::App& app) {
  const auto options = std::make_shared<ConvertOptions>();
  CLI::App* line = app.add_subcommand("convert", "Write the XML documents of recordings");
  TakePaths(line, &options->inputs);
  line->add_option("-o,--output", options->output,
                   "Document, or a folder for the documents (a new one ends in /); - is standard "
                   "output. By default beside each recording, with the extension .xml")
      ->option_text("PATH");
  auto* overwrite = line->add_flag(
      "--overwrite", options->overwrite,
      "Replace documents that exist already. By default they are left as they are, and the command "
      "fails for them. Recordings are never replaced");
  line->add_flag("-n,--no-clobber", options->no_clobber,
                 "Leave documents that exist already, and do not fail for them")
      ->excludes(overwrite);
  line->add_option("--records", options->records,
                   "Only these records of a general recording, counted from 1: 3-5, 5- or 5")
      ->option_text("A-B");
  line->add_option("-j,--jobs", options->jobs,
                   "Conversions side by side; as many as there are cores by default")
      ->option_text("N");
  line->add_flag("-q,--quiet", options->quiet,
                 "Failures only: no findings in recordings, no progress, no summary");
  line->footer(
      Footer({"quorvex convert R0001GEN.REC", "quorvex convert card -o documents/ --no-clobber",
              "quorvex convert R0001GEN.REC --records 37-72 -o morning.xml"},
             {kDone, kUsage, kNoInput, kUnknownType, kCutShort, kNoOutput, kCancelled}));
  return {line, [options] { return Convert(*options); }};
}

}  // namespace quorvex::tool
