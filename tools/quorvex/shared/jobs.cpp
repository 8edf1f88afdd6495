#include "shared/jobs.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <thread>

#include "shared/messages.h"

namespace quorvex::tool {
namespace {

bool IsFull(int error) {
#ifdef EDQUOT
  if (error == EDQUOT) return true;
#endif
  return error == ENOSPC;
}

Done SumOf(const std::deque<Job>& jobs) {
  Done sum;
  sum.of_files = jobs.size();
  for (const Job& job : jobs) {
    const auto size = static_cast<double>(job.recording.size);
    sum.of_bytes += size;
    sum.files += job.finished ? 1 : 0;
    sum.bytes += size * (job.finished ? 1.0 : static_cast<double>(job.fraction));
  }
  return sum;
}

void Tell(const Job& job, Progress* progress) {
  const std::vector<std::string> lines = LinesOf(job.findings, Severity::kWarning);
  const bool interrupted = job.code == kCancelled && Interrupted();
  const bool problem = !job.problem.empty() && !interrupted && !job.exists;
  if (problem || !lines.empty() || !job.notes.empty()) progress->Clear();
  for (const std::string& note : job.notes) Complain(job.input, note);
  for (const std::string& line : lines) Complain(job.input, line);
  if (problem) Complain(job.culprit, job.problem);
}

}  // namespace

thread_local Job* current_job = nullptr;

int32_t OnProgress(float fraction) {
  if (fraction >= 0) current_job->fraction = std::min(fraction, 1.0f);
  return Interrupted() || current_job->write_error != 0 ? -1 : 0;
}

bool GoOn(int error) {
  Job& job = *current_job;
  if (Interrupted()) return false;
  // Standard output is such a document too, until it is copied.
  job.waiting = IsFull(error) && !IsSpecial(job.output);
  if (error == 0 || error == EINTR || error == EAGAIN || job.waiting) return true;
  job.write_error = error;
  return false;
}

void Placed::Put(Scratch* scratch, bool overwrite, const char* what, Job* job) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const std::optional<Identity> there = IdentityOf(job->output);
  if (there && placed_.count(*there) != 0) {
    return job->Fail(
        kNoOutput, job->input,
        "its " + std::string(what) + " " + job->named + " is the one of another recording already");
  }
  const std::optional<Identity> fresh = IdentityOf(scratch->path());
  if (scratch->Become(job->output, overwrite)) {
    if (fresh) placed_.insert(*fresh);
    return;
  }
  const std::string reason = SystemError();
  if (!overwrite && Exists(job->output)) return job->FailExisting();
  job->Fail(kNoOutput, job->named, "cannot be written: " + reason);
}

unsigned WorkersFor(unsigned asked, size_t jobs) {
  const unsigned workers = asked != 0 ? asked : std::thread::hardware_concurrency();
  return static_cast<unsigned>(std::min<size_t>(std::clamp(workers, 1u, kMostWorkers), jobs));
}

bool RunJobs(std::deque<Job>* jobs, const Work& work_on, unsigned workers, Progress* progress) {
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
        current_job = &job;
        work_on(&job, worker);
        current_job = nullptr;
        job.waiting = false;
        if (job.code != kDone) job.findings = {};
      }
      finish(&job);
    }
  };
  std::vector<std::thread> threads;
  threads.reserve(workers);
  for (unsigned i = 0; i < workers; ++i) threads.emplace_back(work, i);

  // What happened is told in the order of the jobs, whichever ends first.
  constexpr auto kTick = std::chrono::milliseconds(100);
  constexpr int kPatience = 50, kLittlePatience = 10;  // ticks, after one interrupt and after more
  int waited = 0;
  bool said_full = false;
  for (size_t told = 0; told < jobs->size();) {
    const Job& job = (*jobs)[told];
    std::unique_lock<std::mutex> lock(mutex);
    const bool finished = changed.wait_for(lock, kTick, [&] { return job.finished.load(); });
    lock.unlock();
    if (finished) {
      ++told;
      Tell(job, progress);
    } else if (Interrupted() && ++waited > (Interrupts() > 1 ? kLittlePatience : kPatience)) {
      std::fprintf(stderr, "quorvex: cancelled\n");
      EndAtOnce();
    } else if (!said_full && job.waiting) {
      progress->Clear();
      Complain(job.named, "the disk is full; waiting for room (an interrupt cancels)");
      said_full = true;
    }
    if (progress->IsDue()) progress->Tell(SumOf(*jobs));
  }
  for (std::thread& thread : threads) thread.join();
  progress->Clear();
  return !Interrupted();
}

}  // namespace quorvex::tool
