#include "host.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "support/file.h"

#ifdef _WIN32
#include <io.h>
#include <process.h>
#else
#include <sys/statvfs.h>
#include <unistd.h>
#endif

namespace quorvex::tool {
namespace {

constexpr uint64_t kLittleRoom = 65536;  // less than the library writes at once

std::atomic<bool> interrupted{false};
char scratch_paths[kMostWorkers][kMaxPath + 1];

void OnInterrupt(int signal_number) {
  if (interrupted.exchange(true)) EndAtOnce();
  std::signal(signal_number, OnInterrupt);
}

std::string FolderOf(const std::string& path) {
  const size_t slash = path.find_last_of("/\\");
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

}  // namespace

void Complain(const std::string& path, const std::string& reason) {
  std::fprintf(stderr, "quorvex: %s: %s\n", path.c_str(), reason.c_str());
}

std::string LastError() { return std::strerror(errno); }

bool IsFolder(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool IsSpecial(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

bool SameRecording(const std::string& first, const std::string& second) {
  return SameFile(first.c_str(), second.c_str());
}

#ifdef _WIN32
std::string Resolved(const std::string& path) { return path; }

std::string Utf8(const std::string& path) {
  wchar_t wide[4 * kMaxPath];
  char text[4 * kMaxPath];
  const int size = MultiByteToWideChar(CP_ACP, 0, path.data(), static_cast<int>(path.size()), wide,
                                       static_cast<int>(std::size(wide)));
  const int used = WideCharToMultiByte(CP_UTF8, 0, wide, size, text,
                                       static_cast<int>(std::size(text)), nullptr, nullptr);
  return used > 0 ? std::string(text, static_cast<size_t>(used)) : path;
}

bool Replace(const std::string& from, const std::string& to) {
  return MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

bool IsDiskFull(const std::string& path) {
  ULARGE_INTEGER room{};
  return GetDiskFreeSpaceExA(FolderOf(path).c_str(), &room, nullptr, nullptr) != 0 &&
         room.QuadPart < kLittleRoom;
}

uint32_t ProcessId() { return static_cast<uint32_t>(_getpid()); }
bool ErrorsGoToTerminal() { return _isatty(_fileno(stderr)) != 0; }
#else
std::string Resolved(const std::string& path) {
  char* real = realpath(path.c_str(), nullptr);
  if (real == nullptr) return path;
  std::string resolved = real;
  std::free(real);
  return resolved;
}

std::string Utf8(const std::string& path) { return path; }

bool Replace(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;
}

bool IsDiskFull(const std::string& path) {
  struct statvfs disk {};
  return statvfs(FolderOf(path).c_str(), &disk) == 0 &&
         static_cast<uint64_t>(disk.f_bavail) * disk.f_frsize < kLittleRoom;
}

uint32_t ProcessId() { return static_cast<uint32_t>(getpid()); }
bool ErrorsGoToTerminal() { return isatty(fileno(stderr)) != 0; }
#endif

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  DIR* listing = opendir(folder.c_str());
  if (listing == nullptr) return names;
  while (const dirent* entry = readdir(listing)) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
  }
  closedir(listing);
  std::sort(names.begin(), names.end());
  return names;
}

void CatchInterrupts() {
  std::signal(SIGINT, OnInterrupt);
  std::signal(SIGTERM, OnInterrupt);
}

void SetScratch(unsigned worker, const std::string& path) {
  std::snprintf(scratch_paths[worker], sizeof scratch_paths[worker], "%s", path.c_str());
}

bool Interrupted() { return interrupted; }

void EndAtOnce() {
  for (const auto& path : scratch_paths) {
    if (path[0] != '\0') std::remove(path);
  }
  std::_Exit(kCancelled);
}

}  // namespace quorvex::tool
