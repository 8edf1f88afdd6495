#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>

#include "support/platform.h"

namespace quorvex {

int QueryFileInfo(const char* path, FileInfo* info) {
  if (path == nullptr || info->in_progress != 0) return 1;
  constexpr unsigned int kWanted = STATX_SIZE | STATX_BTIME | STATX_MTIME;
  if (statx(AT_FDCWD, path, 0, kWanted, &info->found) != 0) return 1;
  const char* slash = std::strrchr(path, '/');
  std::strncpy(info->name, slash != nullptr ? slash + 1 : path, sizeof info->name - 1);
  info->name[sizeof info->name - 1] = '\0';
  info->size = static_cast<uint32_t>(info->found.stx_size);
  // Some file systems keep no creation time; the last change is the nearest that they know.
  const bool has_birth = (info->found.stx_mask & STATX_BTIME) != 0;
  const time_t created = has_birth ? info->found.stx_btime.tv_sec : info->found.stx_mtime.tv_sec;
  // Without gmtime_r, which reads the environment, while a host may be changing it.
  const std::chrono::sys_seconds time{std::chrono::seconds{created}};
  const auto midnight = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date{midnight};
  const std::chrono::hh_mm_ss clock{time - midnight};
  info->year = static_cast<uint16_t>(static_cast<int>(date.year()));
  info->month = static_cast<uint8_t>(static_cast<unsigned int>(date.month()));
  info->day = static_cast<uint8_t>(static_cast<unsigned int>(date.day()));
  info->hour = static_cast<uint8_t>(clock.hours().count());
  info->minute = static_cast<uint8_t>(clock.minutes().count());
  info->second = static_cast<uint8_t>(clock.seconds().count());
  return 0;
}

uint64_t WholeSize(const FileInfo& info) { return info.found.stx_size; }

bool SameFile(const char* first, const char* second) {
  struct stat a {};
  struct stat b {};
  return stat(first, &a) == 0 && stat(second, &b) == 0 && a.st_dev == b.st_dev &&
         a.st_ino == b.st_ino;
}

std::FILE* OpenForReading(const char* path) {
  // Without waiting for the other end of a pipe; regular files do not mind.
  const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  struct stat status {};
  std::FILE* stream = nullptr;
  if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
    stream = fdopen(descriptor, "rb");
  }
  if (stream == nullptr) close(descriptor);
  return stream;
}

std::FILE* OpenForAppending(const char* path) { return std::fopen(path, "ab"); }

uint64_t SizeOfStream(std::FILE* stream) {
  struct stat status {};
  return fstat(fileno(stream), &status) == 0 ? static_cast<uint64_t>(status.st_size) : 0;
}

void DropReadAhead(std::FILE* stream) { std::fflush(stream); }

uint32_t WritePiece(std::FILE* stream, const void* bytes, uint32_t count) {
  const ssize_t written = write(fileno(stream), bytes, count);
  return written > 0 ? static_cast<uint32_t>(written) : 0;
}

void PauseMs(uint32_t milliseconds) {
  const struct timespec pause = {milliseconds / 1000, (milliseconds % 1000) * 1000000L};
  nanosleep(&pause, nullptr);
}

void SendDiagnostic(const char*) {}  // a library does not write to its host's streams

}  // namespace quorvex
