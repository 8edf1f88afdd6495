// quorvex convert decides which recordings become which documents, and has them converted.
#include <algorithm>
#include <charconv>
#include <map>
#include <set>
#include <thread>

#include "commands/commands.h"
#include "records/record_types.h"
#include "shared/conversion_jobs.h"
#include "shared/gather.h"
#include "shared/help.h"
#include "shared/messages.h"
#include "shared/scratch.h"
#include "support/file.h"

namespace quorvex::tool {
namespace {

struct ConvertOptions {
  std::vector<std::string> inputs;
  std::string output, records;  // empty: beside each recording; all of them
  unsigned jobs = 0;            // as many as there are cores
  bool overwrite = false, no_clobber = false, quiet = false;
};

// A range of records is "5", "5-" or "3-5".
bool ParseRange(const std::string& text, Range* range) {
  const char* end = text.data() + text.size();
  auto [at, error] = std::from_chars(text.data(), end, range->first);
  if (error != std::errc()) return false;
  if (at == end) {
    range->last = range->first;
  } else if (*at++ != '-') {
    return false;
  } else if (at != end) {
    const auto last = std::from_chars(at, end, range->last);
    if (last.ec != std::errc() || last.ptr != end) return false;
  }
  return range->first >= 1 && range->first <= range->last;
}

std::string DocumentName(const std::string& recording) {
  const size_t name = recording.size() - NameOnly(recording).size();
  const size_t dot = recording.rfind('.');
  const bool extension = dot != std::string::npos && dot > name;
  return (extension ? recording.substr(0, dot) : recording) + ".xml";
}

// Whether what stands at `path` is a recording, which is never replaced, as it is not to be had
// again. The second word of a recording is its type.
bool IsRecording(const std::string& path) {
  if (IsRecordingName(path)) return true;
  File file(path.c_str(), kOpenRead);
  FileHeader header{};
  return file && ReadBytes(file.get(), &header, sizeof header) == sizeof header &&
         FindRecordType(header.type) != nullptr;
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
      : options_(options), range_(range), into_folder_(into_folder) {}

  void Prepare(Job* job) {
    job->recording = Inspect(job->input);
    if (job->recording.code != kDone) {
      return job->Fail(job->recording.code, job->input, job->recording.problem);
    }
    if (!options_.records.empty() && !TakeRange(range_, job)) return;
    const bool spooled = IsSpooled(job->input);
    if (options_.output == "-" || (spooled && options_.output.empty())) {
      job->named = "standard output";
      CleanUp(TemporaryFolder());
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
    CheckPlace(job);
  }

 private:
  void CheckPlace(Job* job) {
    if (SameRecording(job->input, job->output)) {
      return job->Fail(kNoOutput, job->named, "is the recording itself; it is not overwritten");
    }
    if (IsSpecial(job->output)) return;
    if (IsRecording(job->output)) {
      return job->Fail(kNoOutput, job->named,
                       Exists(job->output) ? "is a recording; it is not overwritten"
                                           : "has the name of a recording");
    }
    const auto [entry, is_new] = taken_.emplace(PathKey(job->output), job->input);
    if (!is_new) {
      return job->Fail(
          kNoOutput, job->input,
          "its document " + job->named + " is the one of " + entry->second + " already");
    }
    if (!options_.overwrite && Exists(job->output)) return job->FailExisting();
    CleanUp(FolderOf(job->output));
  }

  // Once a folder.
  void CleanUp(const std::string& folder) {
    if (cleaned_.insert(folder).second) RemoveLeftovers(folder);
  }

  const ConvertOptions& options_;
  Range range_;
  bool into_folder_;
  std::map<std::string, std::string> taken_;
  std::set<std::string> cleaned_;
};

void TellExisting(const std::deque<Job>& jobs) {
  const auto exists = [](const Job& job) { return job.exists; };
  const auto count = std::count_if(jobs.begin(), jobs.end(), exists);
  if (count == 0) return;
  const Job& first = *std::find_if(jobs.begin(), jobs.end(), exists);
  if (count == 1) return Complain(first.culprit, first.problem);
  Say(std::to_string(count) + " documents exist already, the first is " + first.named +
      "; --overwrite replaces them");
}

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
  unsigned workers = options.jobs != 0 ? options.jobs : std::thread::hardware_concurrency();
  workers = std::clamp(workers, 1u, kMostWorkers);
  workers = static_cast<unsigned>(std::min<size_t>(workers, jobs.size()));
  const bool finished = RunJobs(&jobs, {options.overwrite, !options.quiet}, workers, &progress);
  if (!options.no_clobber) TellExisting(jobs);
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
