// quorvex convert: which recordings, into which documents.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <map>
#include <thread>

#include "commands.h"
#include "conversion_jobs.h"

namespace quorvex::tool {
namespace {

bool ParseRange(const std::string& text, Range* range) {
  char end = '\0';
  if (std::sscanf(text.c_str(), "%u-%u%c", &range->first, &range->last, &end) != 2) return false;
  return text.find_first_not_of("0123456789-") == std::string::npos && range->first >= 1 &&
         range->first <= range->last;
}

std::string DocumentName(const std::string& input) {
  const size_t dot = input.rfind('.');
  return input.substr(0, dot) + ".xml";
}

std::string NameOnly(const std::string& path) {
  const size_t slash = path.find_last_of("/\\");
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

void Prepare(Job* job, const std::string& output, std::map<std::string, std::string>* taken) {
  job->recording = Inspect(job->input);
  if (job->recording.code != kDone) {
    return job->Fail(job->recording.code, job->input, job->recording.problem);
  }
  std::string named = output.empty() ? DocumentName(job->input) : output;
  if (!output.empty() && IsFolder(output)) {
    named = output + "/" + DocumentName(NameOnly(job->input));
  }
  if (IsFolder(named)) return job->Fail(kNoOutput, named, "is a folder");
  job->output = Resolved(named);
  if (SameRecording(job->input, job->output)) {
    return job->Fail(kNoOutput, named, "is the recording itself; it is not overwritten");
  }
  const auto [entry, is_new] = taken->emplace(job->output, job->input);
  if (!is_new && !IsSpecial(job->output)) {
    job->Fail(kNoOutput, job->input,
              "its document " + named + " is the one of " + entry->second + " already");
  }
}

}  // namespace

int Convert(const ConvertOptions& options) {
  Range range;
  if (!options.records.empty() && !ParseRange(options.records, &range)) {
    Complain("--records " + options.records, "is no range of records such as 3-5");
    return kUsage;
  }
  std::vector<std::string> recordings;
  if (!GatherRecordings(options.inputs, &recordings)) return kNoInput;
  if (recordings.size() > 1 && !options.output.empty() && !IsFolder(options.output)) {
    Complain(options.output, "is no folder; several documents need one");
    return kUsage;
  }
  std::deque<Job> jobs;
  std::map<std::string, std::string> taken;
  for (const std::string& recording : recordings) {
    jobs.emplace_back().input = recording;
    Prepare(&jobs.back(), options.output, &taken);
  }

  unsigned workers = options.jobs != 0 ? options.jobs : std::thread::hardware_concurrency();
  workers = std::clamp(workers, 1u, kMostWorkers);
  workers = static_cast<unsigned>(std::min<size_t>(workers, jobs.size()));
  const bool finished = RunJobs(&jobs, range, workers, !options.quiet);
  if (!finished) std::fprintf(stderr, "quorvex: cancelled\n");
  if (jobs.size() > 1 && !options.quiet) {
    const auto written =
        std::count_if(jobs.begin(), jobs.end(), [](const Job& job) { return job.code == kDone; });
    std::fprintf(stderr, "quorvex: found %zu, written %td, skipped %td\n", jobs.size(), written,
                 static_cast<std::ptrdiff_t>(jobs.size()) - written);
  }
  if (!finished) return kCancelled;
  for (const Job& job : jobs) {
    if (job.code != kDone) return job.code;
  }
  return kDone;
}

}  // namespace quorvex::tool
