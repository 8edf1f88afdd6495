// Where outputs may go: nowhere that a recording is, and nowhere that another output of this run
// is.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "shared/jobs.h"
#include "shared/scratch.h"
#include "shared/system.h"

namespace quorvex::tool {

// Whether what stands at `path` is a recording, which is never replaced, as it is not to be had
// again. The second word of a recording is its type.
bool IsRecording(const std::string& path);

// The outputs of a run that go into one folder.
struct OutputFolder {
  std::string path;
  std::map<std::string, std::string> taken;  // by names, from which recordings
  std::map<std::string, std::string> stems;  // the same of outputs of several files
  bool seen_before = false;  // other outputs of this run may be there, which are forgotten

  std::mutex mutex;
  std::map<Identity, std::string> placed;  // the files that have got their names
};

// Takes places, in order. It has the names in mind of those folders that it may come back to: where
// outputs of recordings are that were given by name, and around the folder that is walked. So
// memory does not grow with what is below a folder.
class OutputPlaces {
 public:
  // `what` the outputs are, in words. Folders are made only where folders are mirrored.
  OutputPlaces(const char* what, bool overwrite, bool make_folders = false)
      : what_(what), overwrite_(overwrite), make_folders_(make_folders) {}

  // Sets the job's folder. What earlier runs have left over in it is removed. False: the job has
  // failed.
  bool Enter(const std::string& folder, Job* job);
  // Takes the place of the job's output, or fails the job. One that is current may be there.
  void Take(Job* job);

 private:
  std::shared_ptr<OutputFolder> NewFolder(const std::string& path);

  std::string what_;
  bool overwrite_, make_folders_;
  std::map<std::string, std::shared_ptr<OutputFolder>> kept_;
  std::vector<std::shared_ptr<OutputFolder>> walked_;  // each lies in the one before
  std::map<Identity, std::weak_ptr<OutputFolder>> known_;
};

// How outputs are put in their places.
struct Placing {
  bool overwrite = false;  // one that is there already is replaced
  bool sync = false;       // so that a power cut leaves it whole
};
// Gives a finished scratch file its name, which is the job's output; `what` it is, in words.
void Put(Scratch* scratch, const Placing& placing, const char* what, Job* job);

// "5", "5-" and "3-5" are ranges of records.
bool ParseRange(const std::string& text, Range* range);

}  // namespace quorvex::tool
