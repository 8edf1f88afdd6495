// Conversions as jobs: what is converted into what, how far it is, and what went wrong.
#pragma once

#include <atomic>
#include <deque>
#include <string>

#include "record_check.h"

namespace quorvex::tool {

struct Range {
  uint32_t first = 1;
  uint32_t last = 0xFFFFFFFF;
};

struct Job {
  std::string input;
  std::string output;
  Recording recording;
  ExitCode code = kDone;
  std::string culprit;  // the file that a problem is about
  std::string problem;  // empty where there is none
  Findings findings;
  std::atomic<float> fraction{0};
  std::atomic<bool> finished{false};

  void Fail(ExitCode why, const std::string& file, const std::string& text) {
    code = why;
    culprit = file;
    problem = text;
  }
};

// Runs the jobs on some threads, in order; fills in their outcomes. Jobs that failed before they
// began are passed over. Meanwhile shows progress, failures and, with `check`, what is found in the
// recordings; false where it was interrupted.
bool RunJobs(std::deque<Job>* jobs, const Range& range, unsigned workers, bool check);

}  // namespace quorvex::tool
