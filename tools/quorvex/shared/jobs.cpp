#include "shared/jobs.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <mutex>
#include <thread>

#include "shared/messages.h"
#include "shared/scratch.h"

namespace quorvex::tool {
namespace {

bool IsFull(int error) {
#ifdef EDQUOT
  if (error == EDQUOT) return true;
#endif
  return error == ENOSPC;
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

constexpr auto kTick = std::chrono::milliseconds(100);

// A run: the jobs that have begun and are not told yet, and who waits for what.
class JobRun {
 public:
  JobRun(const Steps& steps, Progress* progress) : steps_(steps), progress_(progress) {}

  void WorkOn(unsigned worker) {
    while (Job* job = Begin()) {
      current_job = job;
      if (job->problem.empty() && Interrupted()) job->Fail(kCancelled, job->input, "cancelled");
      if (job->problem.empty() && steps_.look) steps_.look(job);
      if (job->bytes == 0) job->bytes = job->recording.size;
      Place(job);
      if (job->problem.empty()) steps_.work(job, worker);
      current_job = nullptr;
      End(job);
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    --workers_;
    changed_.notify_one();
  }

  // What happened is told in the order of the jobs, whichever ends first.
  bool Tell(unsigned workers) {
    workers_ = workers;
    std::vector<std::thread> threads;
    threads.reserve(workers);
    for (unsigned i = 0; i < workers; ++i) threads.emplace_back([this, i] { WorkOn(i); });

    constexpr int kPatience = 50,
                  kLittlePatience = 10;  // ticks, after one interrupt and after more
    int waited = 0;
    bool said_full = false;
    std::vector<std::unique_ptr<Job>> ended;
    for (bool more = true; more;) {
      bool full = false;
      std::string full_name;
      {
        std::unique_lock<std::mutex> lock(mutex_);
        const bool any = changed_.wait_for(lock, kTick, [this] {
          return begun_.empty() ? workers_ == 0 : begun_.front()->finished;
        });
        more = !begun_.empty() || workers_ != 0;
        for (; !begun_.empty() && begun_.front()->finished; begun_.pop_front()) {
          ended.push_back(std::move(begun_.front()));
        }
        room_.notify_all();
        full = !any && !begun_.empty() && begun_.front()->waiting;
        if (full) full_name = begun_.front()->named;
        if (any) waited = 0;
        if (!any && Interrupted() && ++waited > (Interrupts() > 1 ? kLittlePatience : kPatience)) {
          std::fprintf(stderr, "quorvex: cancelled\n");
          EndAtOnce();
        }
      }
      for (const auto& job : ended) {
        tool::Tell(*job, progress_);
        if (steps_.told) steps_.told(*job);
      }
      ended.clear();
      if (full && !said_full) {
        progress_->Clear();
        Complain(full_name, "the disk is full; waiting for room (an interrupt cancels)");
        said_full = true;
      }
      if (progress_->IsDue()) progress_->Tell(DoneSoFar());
    }
    for (std::thread& thread : threads) thread.join();
    progress_->Clear();
    return !Interrupted();
  }

 private:
  // The next job; null where none is to begin any more.
  Job* Begin() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (begun_.size() >= kMostBegun && !Interrupted()) room_.wait_for(lock, kTick);
    const bool given_up = steps_.given_up && steps_.given_up();
    if (exhausted_ || given_up || Interrupted()) return nullptr;
    auto job = std::make_unique<Job>();
    job->number = count_;
    exhausted_ = !steps_.next(job.get());
    if (exhausted_) return nullptr;
    ++count_;
    begun_.push_back(std::move(job));
    return begun_.back().get();
  }

  // Places are taken in order, so that which job has one does not depend on the threads.
  void Place(Job* job) {
    std::unique_lock<std::mutex> lock(turns_);
    turn_changed_.wait(lock, [&] { return turn_ == job->number; });
    if (job->problem.empty() && steps_.place) steps_.place(job);
    ++turn_;
    turn_changed_.notify_all();
  }

  void End(Job* job) {
    job->waiting = false;
    job->folder.reset();
    if (job->code != kDone) job->findings = {};
    if (steps_.ended) {
      const std::lock_guard<std::mutex> lock(endings_);
      steps_.ended(job);
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    done_.files += job->of_folder ? 0 : 1;
    done_.bytes += static_cast<double>(job->bytes);
    job->finished = true;
    // What has nothing to tell can wait for the next tick.
    const bool tells = !job->problem.empty() || !job->findings.list.empty() || !job->notes.empty();
    if (tells || begun_.size() > kMostBegun / 2) changed_.notify_one();
  }

  Done DoneSoFar() {
    Done done;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      done = done_;
      for (const auto& job : begun_) {
        if (job->finished) continue;
        done.bytes += static_cast<double>(job->bytes) * static_cast<double>(job->fraction);
        if (done.current.empty()) done.current = job->input;
      }
    }
    if (!steps_.totals) return done;
    const Counting::Totals totals = steps_.totals();
    done.of_files = totals.complete ? totals.files : 0;
    done.of_bytes = totals.complete ? static_cast<double>(totals.bytes) : 0;
    return done;
  }

  const Steps& steps_;
  Progress* progress_;

  std::mutex mutex_;  // for what follows
  std::condition_variable changed_, room_;
  std::deque<std::unique_ptr<Job>> begun_;
  size_t count_ = 0;
  unsigned workers_ = 0;
  bool exhausted_ = false;
  Done done_;

  std::mutex turns_;
  std::condition_variable turn_changed_;
  size_t turn_ = 0;

  std::mutex endings_;
};

}  // namespace

thread_local Job* current_job = nullptr;

void Job::Take(const Found& found) {
  input = found.path;
  place = found.Place();
  walked = found.walked;
  of_folder = found.folder;
  if (!found.problem.empty()) Fail(kNoInput, input, found.problem);
}

std::function<bool(Job*)> NextOf(Ahead* ahead) {
  return [ahead](Job* job) {
    Found found;
    if (!ahead->Next(&found)) return false;
    job->Take(found);
    return true;
  };
}

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

unsigned WorkersFor(unsigned asked) {
  const unsigned workers = asked != 0 ? asked : std::thread::hardware_concurrency();
  return std::clamp(workers, 1u, kMostWorkers);
}

bool RunJobs(const Steps& steps, unsigned workers, Progress* progress) {
  return JobRun(steps, progress).Tell(workers);
}

void Outcome::Take(const Job& job) {
  if (!job.of_folder) ++found;
  written += job.IsWritten() ? 1 : 0;
  failed += job.code != kDone ? 1 : 0;
  existing += job.exists && !job.current ? 1 : 0;
  current += job.current ? 1 : 0;
  with_errors += job.findings.worst == Severity::kError ? 1 : 0;
  with_warnings += job.findings.worst == Severity::kWarning ? 1 : 0;
  if (code == kDone) code = job.code;
  if (job.exists && job.code != kDone && first_existing.empty()) {
    first_existing = job.culprit;
    first_existing_problem = job.problem;
  }
}

std::string Outcome::Text() const {
  const auto number = [](size_t count) { return std::to_string(count); };
  std::string reasons;
  if (existing != 0) reasons = number(existing) + " exist already";
  if (current != 0) reasons += (reasons.empty() ? "" : ", ") + number(current) + " up to date";
  return "found " + number(found) + ", written " + number(written) + ", skipped " +
         number(found - written) + (reasons.empty() ? "" : " (" + reasons + ")");
}

void Outcome::TellExisting(const std::string& what) const {
  if (first_existing.empty()) return;
  if (existing == 1) return Complain(first_existing, first_existing_problem);
  Say(std::to_string(existing) + " " + what + " exist already, the first is " + first_existing +
      "; --overwrite replaces them");
}

}  // namespace quorvex::tool
