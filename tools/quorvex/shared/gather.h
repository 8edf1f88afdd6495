// Finds out which recordings there are, one after the other: an archive may have a million.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace quorvex::tool {

// One of the parts of equal size, more or less, that several machines do of one archive.
struct Share {
  uint32_t number = 1, of = 1;
};
// "3/16". False for what is none, "0/0" and "3/2" too.
bool ParseShare(const std::string& text, Share* share);
// Whether a recording is in a share. Its path below the folder given decides, with that one's name
// where several are, but for its extension and the case of its letters: so whichever recordings
// could have one document are in one share, on every machine and in every version of this program.
bool IsIn(const Share& share, const std::string& place);

// What to gather.
struct Sources {
  // Recordings; folders, of which every .REC file below counts, in the order of names; "-", which
  // is what standard input brings, as a scratch file.
  std::vector<std::string> paths;
  std::string list;    // or the file that has the paths, a line each; "-" is standard input
  bool nulls = false;  // NUL ends them, no line
  std::string base;    // what the list's paths are to lie below
  Share share;
};

struct Found {
  std::string path;     // as given, or found in a folder that was
  std::string below;    // the path below that folder, or below the base of a list
  std::string front;    // as much of its path as tells it from the others, where several are given
  std::string problem;  // why it cannot be used; empty where it can
  bool folder = false;  // it is a folder that has a problem, or something in one
  bool walked = false;  // it was found in a folder, whose recordings come one after the other

  // Where it stands among all that is gathered, and its outputs where folders are mirrored.
  std::string Place() const;
};

class Walk;

// No folder is walked twice and no file is there twice, whatever links lead to it; links to folders
// are followed last.
class Gathering {
 public:
  // Reads the list, where there is one. Empty, or why that failed.
  static std::string Prepare(const Sources& sources, std::unique_ptr<Gathering>* gathering);
  ~Gathering();

  // The next recording of the share, or the next problem. False where there is none.
  bool Next(Found* found);

  // The same, as seen once more from the beginning. What standard input brought is left out.
  std::unique_ptr<Gathering> Again() const;

  bool has_list() const { return has_list_; }

 private:
  explicit Gathering(std::unique_ptr<Walk> walk, bool has_list, const Share& share);

  std::unique_ptr<Walk> walk_;
  bool has_list_;
  Share share_;
};

// A gathering of which it is known whether it has several recordings.
class Ahead {
 public:
  explicit Ahead(Gathering* gathering);
  bool Any() const { return recordings_ > 0; }
  bool Several() const { return recordings_ > 1; }
  const Found& first() const { return first_; }
  bool Next(Found* found);

 private:
  Gathering* gathering_;
  std::deque<Found> found_;
  Found first_;
  int recordings_ = 0;
};

// All recordings together, for what needs them so. Problems are told on stderr, and give false.
bool GatherRecordings(Gathering* gathering, std::vector<std::string>* recordings);
bool GatherRecordings(const std::vector<std::string>& paths, std::vector<std::string>* recordings);

// Counts what a gathering brings, in a thread of its own, for those who want to know how long it
// takes. It begins when it is first asked.
class Counting {
 public:
  struct Totals {
    uint64_t files = 0, bytes = 0;
    bool complete = false;
  };

  explicit Counting(const Gathering& gathering) : gathering_(gathering.Again()) {}
  ~Counting();
  Counting(const Counting&) = delete;
  Counting& operator=(const Counting&) = delete;
  Totals Get();

 private:
  std::unique_ptr<Gathering> gathering_;
  std::atomic<uint64_t> files_{0}, bytes_{0};
  std::atomic<bool> complete_{false}, stop_{false};
  std::thread thread_;
};

}  // namespace quorvex::tool
