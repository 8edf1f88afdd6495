// Where outputs may go: nowhere that a recording is, and nowhere that another output of this run
// is.
#pragma once

#include <map>
#include <set>
#include <string>

#include "shared/jobs.h"

namespace quorvex::tool {

// Whether what stands at `path` is a recording, which is never replaced, as it is not to be had
// again. The second word of a recording is its type.
bool IsRecording(const std::string& path);

class OutputPlaces {
 public:
  // `what` the outputs are, in words.
  OutputPlaces(const char* what, bool overwrite) : what_(what), overwrite_(overwrite) {}
  // Takes the place of the job's output, or fails the job. What earlier runs have left over in its
  // folder is removed.
  void Take(Job* job);
  // Once a folder.
  void CleanUp(const std::string& folder);

 private:
  std::string what_;
  bool overwrite_;
  std::map<std::string, std::string> taken_;
  std::set<std::string> cleaned_;
};

// Says what jobs failed for because it is there already; `what` in the plural.
void TellExisting(const std::deque<Job>& jobs, const std::string& what);

// "5", "5-" and "3-5" are ranges of records.
bool ParseRange(const std::string& text, Range* range);

}  // namespace quorvex::tool
