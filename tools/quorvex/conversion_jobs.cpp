#include "conversion_jobs.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

#include "quorvex64.h"

namespace quorvex::tool {
namespace {

thread_local Job* current_job = nullptr;

int32_t QUORVEX_CALL OnProgress(float fraction) {
  if (fraction >= 0) current_job->fraction = std::min(fraction, 1.0f);
  return Interrupted() ? -1 : 0;
}

// Tries whether a file can be created, so that a failure has a reason.
bool CanCreate(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  std::fclose(file);
  return true;
}

// The document appears under its name only when it is complete.
void RunJob(Job* job, const Range& range, unsigned worker) {
  // Into a device or a pipe the document goes directly: there is no name to keep clean.
  const bool direct = IsSpecial(job->output);
  const std::string scratch =
      direct ? job->output
             : job->output + "." + std::to_string(ProcessId()) + "-" + std::to_string(worker) + "~";
  if (scratch.size() > kMaxPath) {
    return job->Fail(kNoOutput, job->output, "the path is too long");
  }
  if (!direct && !CanCreate(scratch)) {
    return job->Fail(kNoOutput, job->output, "cannot be written: " + LastError());
  }
  if (!direct) SetScratch(worker, scratch);
  current_job = job;
  QuorvexConvertPerPartes(job->input.c_str(), scratch.c_str(), range.first, range.last, OnProgress);
  current_job = nullptr;
  if (Interrupted()) {
    job->Fail(kCancelled, job->input, "cancelled");
    if (!direct) std::remove(scratch.c_str());
  } else if (!direct && !Replace(scratch, job->output)) {
    job->Fail(kNoOutput, job->output, "cannot be written: " + LastError());
    std::remove(scratch.c_str());
  }
  SetScratch(worker, "");
}

class ProgressBar {
 public:
  explicit ProgressBar(const std::deque<Job>& jobs) : jobs_(jobs), shown_(ErrorsGoToTerminal()) {
    for (const Job& job : jobs) total_ += static_cast<double>(job.recording.size);
  }

  void Draw() {
    if (!shown_ || total_ == 0) return;
    double done = 0;
    size_t finished = 0;
    for (const Job& job : jobs_) {
      finished += job.finished ? 1 : 0;
      done += static_cast<double>(job.recording.size) *
              (job.finished ? 1.0 : static_cast<double>(job.fraction));
    }
    constexpr int kWidth = 40;
    const int marks = static_cast<int>(done / total_ * kWidth);
    std::fprintf(stderr, "\r[%.*s%*s] %3d%%  %zu of %zu", marks,
                 "########################################", kWidth - marks, "",
                 static_cast<int>(done / total_ * 100), finished, jobs_.size());
    drawn_ = true;
  }

  void Clear() {
    if (drawn_) std::fprintf(stderr, "\r%70s\r", "");
    drawn_ = false;
  }

 private:
  const std::deque<Job>& jobs_;
  double total_ = 0;
  bool shown_;
  bool drawn_ = false;
};

}  // namespace

bool RunJobs(std::deque<Job>* jobs, const Range& range, unsigned workers, bool check) {
  CatchInterrupts();
  std::atomic<size_t> next{0};
  std::mutex mutex;
  std::condition_variable changed;
  const auto finish = [&](Job* job) {
    const std::lock_guard<std::mutex> lock(mutex);
    job->finished = true;
    changed.notify_one();
  };
  const auto work = [&](unsigned worker) {
    for (size_t i = next++; i < jobs->size(); i = next++) {
      Job& job = (*jobs)[i];
      if (job.problem.empty() && Interrupted()) job.Fail(kCancelled, job.input, "cancelled");
      if (job.problem.empty()) {
        RunJob(&job, range, worker);
        if (check && job.code == kDone) job.findings = CheckRecording(job.input).findings;
      }
      finish(&job);
    }
  };
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < workers; ++i) threads.emplace_back(work, i);

  // Failures are told in the order of the jobs, whichever ends first.
  ProgressBar bar(*jobs);
  constexpr auto kBetweenDrawings = std::chrono::milliseconds(100);
  constexpr int kPatience = 10;  // drawings until an interrupt is not waited for any longer
  int waited = 0;
  bool said_full = false;
  for (size_t told = 0; told < jobs->size();) {
    const Job& job = (*jobs)[told];
    std::unique_lock<std::mutex> lock(mutex);
    if (!changed.wait_for(lock, kBetweenDrawings, [&] { return job.finished.load(); })) {
      if (Interrupted() && ++waited > kPatience) {
        std::fprintf(stderr, "quorvex: cancelled\n");
        EndAtOnce();
      }
      if (!said_full && IsDiskFull(job.output)) {
        bar.Clear();
        Complain(job.output, "the disk is full; waiting for room (an interrupt cancels)");
        said_full = true;
      }
      bar.Draw();
      continue;
    }
    ++told;
    bar.Clear();
    for (const std::string& line : LinesOf(job.findings, Severity::kWarning)) {
      Complain(job.input, line);
    }
    if (job.problem.empty() || (job.code == kCancelled && Interrupted())) continue;
    Complain(job.culprit, job.problem);
  }
  for (std::thread& thread : threads) thread.join();
  bar.Clear();
  return !Interrupted();
}

}  // namespace quorvex::tool
