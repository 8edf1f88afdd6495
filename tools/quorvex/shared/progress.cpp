#include "shared/progress.h"

#include <algorithm>
#include <cstdint>
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

// As much of a text as there are columns for: its beginning, or ", ..." and its end; no part of a
// character.
std::string Cut(const std::string& text, size_t columns, bool keep_end) {
  if (WidthOf(text) <= columns) return text;
  constexpr char kDots[] = ", ...";
  const size_t dots = keep_end ? sizeof kDots - 1 : 0;
  if (columns <= dots) return "";
  size_t from = 0, size = text.size();
  const auto inside = [&](size_t at) { return (static_cast<uint8_t>(text[at]) & 0xC0) == 0x80; };
  while (size > 0 && WidthOf(text.substr(from, size)) + dots > columns) {
    from += keep_end ? 1 : 0;
    --size;
    while (size > 0 && inside(keep_end ? from : from + size)) {
      from += keep_end ? 1 : 0;
      --size;
    }
  }
  return (keep_end ? kDots : "") + text.substr(from, size);
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
  line += (done.of_files != 0 ? done.of_files : done.files) == 1 ? " file" : " files";
  line += ", " + ShortSize(done.bytes);
  if (done.of_bytes > 0) line += " of " + ShortSize(done.of_bytes);
  line += ", " + ShortSize(done.bytes / seconds) + "/s";
  if (part > 0) line += ", " + Left(seconds / part - seconds);
  const std::string current = done.current.empty() ? "" : ", " + Shown(CalledName(done.current));
  if (!on_terminal_) return Say(line + current);
  constexpr int kWidth = 20;
  const int marks = static_cast<int>(part * kWidth);
  char bar[64];
  std::snprintf(bar, sizeof bar, "[%.*s%*s] %3d%%  ", marks, "####################", kWidth - marks,
                "", static_cast<int>(part * 100));
  line = (done.of_bytes > 0 ? bar : "") + line;
  // A line that wraps cannot be drawn over. Of a long path the end tells more.
  const size_t columns = TerminalColumns() - 1;
  line = Cut(line, columns, false);
  line += Cut(current, columns - WidthOf(line), true);
  const size_t drawn = WidthOf(line);
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
