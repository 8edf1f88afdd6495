// A job makes something of a recording: it knows what becomes what, how far that is, and what went
// wrong.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "findings/findings.h"
#include "shared/gather.h"
#include "shared/inspection.h"
#include "shared/progress.h"

namespace quorvex::tool {

struct Range {
  uint32_t first = 1;
  uint32_t last = 0xFFFFFFFF;
};

struct OutputFolder;

struct Job {
  size_t number = 0;  // from 0 on, in order
  std::string input;
  std::string place;  // where outputs mirror folders, with the recording's name
  bool walked = false;
  bool of_folder = false;                // there is no recording, but a folder with a problem
  std::string output;                    // resolved; empty for standard output
  std::string named;                     // what the user calls it
  std::vector<std::string> names;        // of its files, where it has several
  std::shared_ptr<OutputFolder> folder;  // where its output is to be
  Recording recording;
  Range range;
  ExitCode code = kDone;
  std::string culprit;             // the file that a problem is about
  std::string problem;             // empty where there is none
  bool is_new = false;             // nothing stood where the output goes, when it was looked at
  bool exists = false;             // the output is there already, and stays
  bool current = false;            // and is newer than what it is made of
  std::string checksum;            // of the output, where it was asked for
  std::vector<std::string> notes;  // what is to be known of what was made
  Findings findings;
  std::atomic<uint64_t> bytes{0};  // of the recording, for progress
  std::atomic<float> fraction{0};
  std::atomic<bool> waiting{false};  // for room on its disk
  bool finished = false;
  int write_error = 0;

  void Take(const Found& found);
  void Fail(ExitCode why, const std::string& file, const std::string& text) {
    code = why;
    culprit = file;
    problem = text;
  }
  void FailExisting() {
    exists = true;
    Fail(kNoOutput, named, "exists already; --overwrite replaces it");
  }
  // What is there is as good.
  void Leave() {
    exists = true;
    code = kDone;
    problem.clear();
  }
  bool IsWritten() const { return problem.empty() && !exists; }
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

// What becomes of the jobs of a run. `next` makes them, in order, with one thread at a time; a job
// that has a problem then or later is passed over by what follows. Any may be null but `next` and
// `work`.
struct Steps {
  std::function<bool(Job*)> next;        // false where there is none left
  std::function<void(Job*)> look;        // in several threads
  std::function<void(Job*)> place;       // in order
  Work work;                             // in several threads
  std::function<void(Job*)> ended;       // of every job, as they end, one at a time
  std::function<void(const Job&)> told;  // of every job, in order
  std::function<Counting::Totals()> totals;
  std::function<bool()> given_up;  // whether no more jobs are to begin
};

// Runs the jobs on some threads. Meanwhile shows progress, failures and findings; false where it
// was interrupted. Memory holds no more jobs than `kMostBegun`, however many there are.
constexpr size_t kMostBegun = 4096;
bool RunJobs(const Steps& steps, unsigned workers, Progress* progress);

// The `next` that takes what is gathered.
std::function<bool(Job*)> NextOf(Ahead* ahead);

// As many threads as are asked for; 0 asks for as many as there are cores.
unsigned WorkersFor(unsigned asked);

// What became of the jobs of a run.
struct Outcome {
  size_t found = 0, written = 0, failed = 0, existing = 0, current = 0;
  size_t with_errors = 0, with_warnings = 0;
  std::string first_existing;  // a problem of one of them
  std::string first_existing_problem;
  ExitCode code = kDone;  // the first failure's

  void Take(const Job& job);
  // "found 3, written 2, skipped 1 (1 exist already)"
  std::string Text() const;
  // Says what jobs failed for because it is there already; `what` in the plural.
  void TellExisting(const std::string& what) const;
};

}  // namespace quorvex::tool
