// quorvex convert: which recordings, into which documents.
#include <algorithm>
#include <charconv>
#include <map>
#include <set>
#include <thread>

#include "commands/commands.h"
#include "records/record_types.h"
#include "shared/conversion_jobs.h"
#include "shared/gather.h"
#include "shared/messages.h"
#include "shared/scratch.h"
#include "support/loads.h"

namespace quorvex::tool {
namespace {

// "5", "5-" or "3-5".
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

// Whether something that stands at `path` must not be replaced, whatever is asked: recordings are
// not to be had again. The second word of a recording is its type.
bool IsRecording(const std::string& path) {
  if (IsRecordingName(path)) return true;
  File file(path.c_str(), kOpenRead);
  FileHeader header{};
  return file && ReadBytes(file.get(), &header, sizeof header) == sizeof header &&
         FindRecordType(header.type) != nullptr;
}

std::string Counted(uint64_t records) {
  return std::to_string(records) + (records == 1 ? " record" : " records");
}

// Only of general recordings a part can be converted.
bool TakeRange(const Range& range, Job* job) {
  const Recording& r = job->recording;
  job->range = range;
  if (r.type != &kGeneral) {
    job->Fail(kUnknownType, job->input,
              std::string("holds ") + r.type->name +
                  "; only general recordings are converted in part (--records)");
  } else if (range.first > r.records.value_or(0)) {
    job->Fail(kUsage, job->input,
              "has " + Counted(r.records.value_or(0)) + ", none from " +
                  std::to_string(range.first) + " on (--records)");
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

size_t CountOf(const std::deque<Job>& jobs, bool (*is)(const Job& job)) {
  return static_cast<size_t>(std::count_if(jobs.begin(), jobs.end(), is));
}

void TellExisting(const std::deque<Job>& jobs) {
  const size_t count = CountOf(jobs, [](const Job& job) { return job.exists; });
  if (count == 0) return;
  const Job& first =
      *std::find_if(jobs.begin(), jobs.end(), [](const Job& job) { return job.exists; });
  if (count == 1) return Complain(first.culprit, first.problem);
  Say(std::to_string(count) + " documents exist already, the first is " + first.named +
      "; --overwrite replaces them");
}

// One line of what became of them all.
void TellSummary(const std::deque<Job>& jobs) {
  const auto with = [&](bool (*is)(const Job& job)) { return std::to_string(CountOf(jobs, is)); };
  const size_t written = CountOf(jobs, [](const Job& job) { return job.problem.empty(); });
  const size_t existing = CountOf(jobs, [](const Job& job) { return job.exists; });
  Say("found " + std::to_string(jobs.size()) + ", written " + std::to_string(written) +
      ", skipped " + std::to_string(jobs.size() - written) +
      (existing != 0 ? " (" + std::to_string(existing) + " exist already)" : "") + "; " +
      with([](const Job& job) { return job.findings.worst == Severity::kError; }) +
      " with errors, " +
      with([](const Job& job) { return job.findings.worst == Severity::kWarning; }) +
      " with warnings");
}

}  // namespace

int Convert(const ConvertOptions& options) {
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
    Done done;
    done.files = jobs.size();
    if (progress.IsDue()) progress.Tell(done);
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

}  // namespace quorvex::tool
