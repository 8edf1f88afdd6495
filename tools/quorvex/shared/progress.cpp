#include "shared/progress.h"

#include <algorithm>
#include <cstdio>

#include "shared/messages.h"
#include "shared/system.h"

namespace quorvex::tool {
namespace {

using std::chrono::milliseconds;
constexpr milliseconds kFirst{300}, kBetween{100}, kPlain{60'000};

std::string Left(double seconds) {
  char text[32];
  const auto whole = static_cast<long long>(std::min(seconds, 1e9));
  if (whole < 3600) {
    std::snprintf(text, sizeof text, "%lld:%02lld left", whole / 60, whole % 60);
  } else {
    std::snprintf(text, sizeof text, "%lld h %02lld min left", whole / 3600, whole % 3600 / 60);
  }
  return text;
}

}  // namespace

Progress::Progress(bool shown)
    : shown_(shown),
      on_terminal_(ErrorsGoToTerminal()),
      start_(Clock::now()),
      next_(start_ + (on_terminal_ ? kFirst : kPlain)) {}

void Progress::Tell(const Done& done) {
  const Clock::time_point now = Clock::now();
  next_ = now + (on_terminal_ ? kBetween : kPlain);
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const double part = done.of_bytes > 0 ? std::clamp(done.bytes / done.of_bytes, 0.0, 1.0) : 0.0;
  std::string line = std::to_string(done.files);
  if (done.of_files != 0) line += " of " + std::to_string(done.of_files);
  line += done.of_files == 1 ? " file" : " files";
  if (done.of_bytes > 0) {
    line += ", " + ShortSize(done.bytes) + " of " + ShortSize(done.of_bytes) + ", " +
            ShortSize(done.bytes / seconds) + "/s";
    if (part > 0) line += ", " + Left(seconds / part - seconds);
  }
  if (!on_terminal_) return Say(line);
  constexpr int kWidth = 20;
  const int marks = static_cast<int>(part * kWidth);
  char bar[64];
  std::snprintf(bar, sizeof bar, "[%.*s%*s] %3d%%  ", marks, "####################", kWidth - marks,
                "", static_cast<int>(part * 100));
  line = (done.of_bytes > 0 ? bar : "") + line;
  const size_t drawn = line.size();
  if (drawn < drawn_) line.append(drawn_ - drawn, ' ');
  std::fprintf(stderr, "\r%s", line.c_str());
  std::fflush(stderr);
  drawn_ = drawn;
}

void Progress::Clear() {
  if (drawn_ != 0) std::fprintf(stderr, "\r%*s\r", static_cast<int>(drawn_), "");
  drawn_ = 0;
}

}  // namespace quorvex::tool
