// A job is a conversion: it knows what becomes what, how far that is, and what went wrong.
#pragma once

#include <atomic>
#include <deque>
#include <string>

#include "findings/findings.h"
#include "shared/inspection.h"
#include "shared/progress.h"

namespace quorvex::tool {

struct Range {
  uint32_t first = 1;
  uint32_t last = 0xFFFFFFFF;
};

// How documents are put in their places.
struct Placing {
  bool overwrite = false;  // a document that is there already is replaced
  bool check = true;       // recordings are checked, and what is found is told
};

struct Job {
  std::string input;
  std::string output;  // resolved; empty for standard output
  std::string named;   // what the user calls it
  Recording recording;
  Range range;
  ExitCode code = kDone;
  std::string culprit;  // the file that a problem is about
  std::string problem;  // empty where there is none
  bool exists = false;  // the problem is that the document is there already
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

// Runs the jobs on some threads, in order; fills in their outcomes. Jobs that failed before they
// began are passed over. Meanwhile shows progress, failures and findings; false where it was
// interrupted.
bool RunJobs(std::deque<Job>* jobs, const Placing& placing, unsigned workers, Progress* progress);

}  // namespace quorvex::tool
