#include "shared/conversion_jobs.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <optional>
#include <set>
#include <thread>
#include <vector>

#include "findings/soundness.h"
#include "shared/gather.h"
#include "shared/messages.h"
#include "shared/scratch.h"
#include "xml/conversion.h"

namespace quorvex::tool {
namespace {

thread_local Job* current_job = nullptr;

int32_t OnProgress(float fraction) {
  if (fraction >= 0) current_job->fraction = std::min(fraction, 1.0f);
  return Interrupted() || current_job->write_error != 0 ? -1 : 0;
}

bool IsFull(int error) {
#ifdef EDQUOT
  if (error == EDQUOT) return true;
#endif
  return error == ENOSPC;
}

// Asked by the library around its writes. A full disk is waited for, as a document may be large and
// room can be made; nothing else is.
bool GoOn(int error) {
  Job& job = *current_job;
  if (Interrupted()) return false;
  // Standard output is such a document too, until it is copied.
  job.waiting = IsFull(error) && !IsSpecial(job.output);
  if (error == 0 || error == EINTR || error == EAGAIN || job.waiting) return true;
  job.write_error = error;
  return false;
}

// The library's conversion, and where `check` is set what a check finds on the same way. Its
// outcome is the job's where it is a failure.
bool ConvertInto(const std::string& document, bool check, Job* job) {
  current_job = job;
  errno = 0;
  RecordingHead head(job->input.c_str());
  // What is there now may be another recording than the one that was looked at.
  const bool same = head.type == job->recording.type && !HeadProblem(head);
  bool converted = false;
  if (same) {
    head.UseSettingFile();
    std::optional<Soundness> soundness;
    if (check) soundness.emplace(&head, !IsSpooled(job->input));
    // Of a profile without a layout there is nothing to convert; the library would only count, for
    // ever where the range has no end.
    const auto progress = job->recording.has_layout ? OnProgress : nullptr;
    converted = ConvertRecording(&head, {document.c_str(),
                                         {job->range.first, job->range.last, progress},
                                         GoOn,
                                         soundness ? &*soundness : nullptr});
    if (soundness) job->findings = soundness->Result();
    if (!check && !job->recording.has_layout) {
      job->findings.Add(NoLayout(job->recording.profile));
    }
  }
  const int error = errno;
  current_job = nullptr;
  job->waiting = false;
  if (Interrupted()) {
    job->Fail(kCancelled, job->input, "cancelled");
  } else if (job->write_error != 0) {
    job->Fail(kNoOutput, job->named, "cannot be written: " + TextOfError(job->write_error));
  } else if (!converted) {
    // What the tool saw is no longer so, or the system saw an error only when the file was closed.
    const Recording now = Inspect(job->input);
    if (now.code != kDone) {
      job->Fail(now.code, job->input, now.problem);
    } else {
      job->Fail(kNoOutput, job->named,
                "cannot be written" + (error != 0 ? ": " + TextOfError(error) : ""));
    }
  }
  return job->code == kDone;
}

// Whether all of it arrives shows at the end of the program.
void CopyToOutput(const std::string& path, Job* job) {
  std::FILE* from = std::fopen(path.c_str(), "rb");
  if (from == nullptr) return job->Fail(kNoOutput, path, LastError());
  UseBytes(stdout);
  constexpr size_t kPiece = 1 << 16;
  std::string piece;
  for (bool more = true; more && !Interrupted();) {
    piece.resize(kPiece);
    piece.resize(std::fread(piece.data(), 1, kPiece, from));
    more = Print(piece) && std::feof(from) == 0 && std::ferror(from) == 0;
  }
  std::fclose(from);
  if (Interrupted()) job->Fail(kCancelled, job->input, "cancelled");
}

// The documents that this run has put in their places.
class Documents {
 public:
  void Put(Scratch* scratch, bool overwrite, Job* job) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const std::optional<Identity> there = IdentityOf(job->output);
    if (there && placed_.count(*there) != 0) {
      return job->Fail(kNoOutput, job->input,
                       "its document " + job->named + " is the one of another recording already");
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

 private:
  std::mutex mutex_;
  std::set<Identity> placed_;
};

// The document appears under its name only when it is complete.
void RunJob(Job* job, const Placing& placing, unsigned worker, Documents* documents) {
  const bool to_stdout = job->output.empty();
  // Into a device or a pipe the document goes directly: there is no name to keep clean.
  if (!to_stdout && IsSpecial(job->output)) {
    ConvertInto(job->output, placing.check, job);
    return;
  }
  Scratch scratch(to_stdout ? kOutputSlot : worker);
  const std::string folder = to_stdout ? TemporaryFolder() : FolderOf(job->output);
  if (!scratch.Create(folder)) {
    return job->Fail(kNoOutput, job->named, "cannot be written: " + LastError());
  }
  if (scratch.path().size() > kMaxPath) {
    return job->Fail(kNoOutput, job->named, "the path is too long");
  }
  if (!ConvertInto(scratch.path(), placing.check, job)) return;
  if (to_stdout) {
    CopyToOutput(scratch.path(), job);
  } else {
    documents->Put(&scratch, placing.overwrite, job);
  }
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
  if (problem || !lines.empty()) progress->Clear();
  for (const std::string& line : lines) Complain(job.input, line);
  if (problem) Complain(job.culprit, job.problem);
}

}  // namespace

bool RunJobs(std::deque<Job>* jobs, const Placing& placing, unsigned workers, Progress* progress) {
  std::atomic<size_t> next{0};
  std::mutex mutex;
  std::condition_variable changed;
  Documents documents;
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
        RunJob(&job, placing, worker, &documents);
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
