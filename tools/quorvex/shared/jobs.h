// A job makes something of a recording: it knows what becomes what, how far that is, and what went
// wrong.
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "findings/findings.h"
#include "shared/inspection.h"
#include "shared/progress.h"
#include "shared/scratch.h"

namespace quorvex::tool {

struct Range {
  uint32_t first = 1;
  uint32_t last = 0xFFFFFFFF;
};

struct Job {
  std::string input;
  std::string output;  // resolved; empty for standard output
  std::string named;   // what the user calls it
  Recording recording;
  Range range;
  ExitCode code = kDone;
  std::string culprit;             // the file that a problem is about
  std::string problem;             // empty where there is none
  bool exists = false;             // the problem is that the document is there already
  std::vector<std::string> notes;  // what is to be known of what was made
  Findings findings;
  std::atomic<float> fraction{0};
  std::atomic<bool> waiting{false};  // for room on its disk
  std::atomic<bool> finished{false};
  int write_error = 0;

  void Fail(ExitCode why, const std::string& file, const std::string& text) {
    code = why;
    culprit = file;
    problem = text;
  }
  void FailExisting() {
    exists = true;
    Fail(kNoOutput, named, "exists already; --overwrite replaces it");
  }
};

// The job that this thread works on; null between jobs. The two callbacks below ask it.
extern thread_local Job* current_job;

// For the walk: the fraction done, and whether to go on.
int32_t OnProgress(float fraction);
// For writes. A full disk is waited for, as an output may be large and room can be made; nothing
// else is.
bool GoOn(int error);

// Does what a job is about and fills in its outcome, in one of several threads.
using Work = std::function<void(Job* job, unsigned worker)>;

// Runs the jobs on some threads, in order. Jobs that failed before they began are passed over.
// Meanwhile shows progress, failures and findings; false where it was interrupted.
bool RunJobs(std::deque<Job>* jobs, const Work& work, unsigned workers, Progress* progress);

// As many threads as are asked for and as there are jobs for; 0 asks for as many as there are
// cores.
unsigned WorkersFor(unsigned asked, size_t jobs);

// The files that this run has put in their places.
class Placed {
 public:
  // Gives a finished scratch file its name, which is the job's output; `what` it is, in words.
  void Put(Scratch* scratch, bool overwrite, const char* what, Job* job);

 private:
  std::mutex mutex_;
  std::set<Identity> placed_;
};

}  // namespace quorvex::tool
