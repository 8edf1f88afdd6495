// Shows people how far a batch is: on a terminal in a line that is drawn over, elsewhere in a line
// a minute.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace quorvex::tool {

struct Done {
  uint64_t files = 0, of_files = 0;  // of 0: how many is not known yet
  double bytes = 0, of_bytes = 0;
  std::string current;  // the file that is worked on
};

class Progress {
 public:
  explicit Progress(bool shown);
  // Whether it is time to say something; then Tell does.
  bool IsDue() const { return shown_ && Clock::now() >= next_; }
  void Tell(const Done& done);
  // Takes the line away, for something else to be written.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;
  bool shown_, on_terminal_;
  Clock::time_point start_, next_;
  size_t drawn_ = 0;  // columns
};

}  // namespace quorvex::tool
