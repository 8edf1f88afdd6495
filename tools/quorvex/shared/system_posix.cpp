#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "shared/system.h"

namespace quorvex::tool {

std::vector<std::string> Arguments(int argc, char** argv) { return {argv + 1, argv + argc}; }

bool OwnsItsWindow() { return false; }
void WaitForEnter() {}
void PrepareStreams() {}
void UseBytes(std::FILE*) {}
bool ErrorsGoToTerminal() { return isatty(fileno(stderr)) != 0; }

size_t TerminalColumns() {
  struct winsize size {};
  const bool told = ioctl(fileno(stderr), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return told ? size.ws_col : 80;
}

std::string Utf8(const std::string& path) { return path; }
std::string SystemError() { return LastError(); }

std::optional<Identity> IdentityOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return Identity(status.st_dev, status.st_ino);
}

std::string Resolved(const std::string& path, bool* there) {
  struct stat status {};
  const bool any = lstat(path.c_str(), &status) == 0;
  if (there != nullptr) *there = any;
  if (!any || !S_ISLNK(status.st_mode)) return path;
  char* real = realpath(path.c_str(), nullptr);
  if (real == nullptr) return path;
  std::string resolved = real;
  std::free(real);
  return resolved;
}

std::string NameKey(const std::string& name) { return name; }

bool PutInPlace(const std::string& from, const std::string& to, bool replace) {
  if (!replace) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    // Some file systems cannot promise that; a look comes close.
    if (errno != EINVAL && errno != ENOSYS) return false;
    if (Exists(to)) {
      errno = EEXIST;
      return false;
    }
  }
  return std::rename(from.c_str(), to.c_str()) == 0;
}

bool CreateFolder(const std::string& path) {
  for (size_t at = path.find('/', 1);; at = path.find('/', at + 1)) {
    const std::string front = path.substr(0, at);
    if (mkdir(front.c_str(), 0777) != 0) {
      const int error = errno;
      if (!IsFolder(front)) {
        errno = error;
        return false;
      }
    }
    if (at == std::string::npos) return true;
  }
}

std::string FullPath(const std::string& path) {
  std::string from = path, full;
  if (path.empty() || path[0] != '/') {
    char here[PATH_MAX] = "";
    from = (getcwd(here, sizeof here) != nullptr ? std::string(here) : "") + "/" + path;
  }
  for (size_t at = 0; at < from.size();) {
    const size_t end = std::min(from.find('/', at + 1), from.size());
    const std::string part = from.substr(at, end - at);
    if (part == "/..") {
      full.resize(full.empty() ? 0 : full.rfind('/'));
    } else if (part != "/" && part != "/.") {
      full += part;
    }
    at = end;
  }
  return full.empty() ? "/" : full;
}

std::optional<FileState> StateOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  constexpr int64_t kSecond = 1'000'000'000;
  return FileState{status.st_mtim.tv_sec * kSecond + status.st_mtim.tv_nsec,
                   static_cast<uint64_t>(status.st_size)};
}

bool SyncFile(const std::string& path, int taken) {
  const int file = taken >= 0 ? taken : open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return false;
  // Not every file system can; where it cannot there is nothing to wait for.
  int error = fdatasync(file) == 0 ? 0 : errno;
  if (error == EINVAL || error == ENOSYS) error = 0;
  if (file != taken) close(file);
  errno = error;
  return error == 0;
}

std::string MachineName() {
  char name[256] = "";
  gethostname(name, sizeof name - 1);
  return name;
}

uint32_t ProcessId() { return static_cast<uint32_t>(getpid()); }

std::string TemporaryFolder() {
  const char* named = std::getenv("TMPDIR");
  return named != nullptr && named[0] != '\0' ? named : "/tmp";
}

namespace {

enum class Taken : uint8_t { kOurs, kNotOurs, kNoLocks };

// Takes an open file. Not ours is what another process has, or has removed.
Taken Take(int file, const std::string& path) {
  if (flock(file, LOCK_EX | LOCK_NB) != 0) {
    return errno == EWOULDBLOCK ? Taken::kNotOurs : Taken::kNoLocks;
  }
  struct stat here {};
  struct stat named {};
  return fstat(file, &here) == 0 && lstat(path.c_str(), &named) == 0 && here.st_ino == named.st_ino
             ? Taken::kOurs
             : Taken::kNotOurs;
}

}  // namespace

bool IsLink(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool CreateNew(const std::string& path, bool only_ours, int* taken) {
  *taken = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, only_ours ? 0600 : 0666);
  if (*taken < 0) return false;
  // Whoever removes leftovers may have it in this moment. File systems without locks have nobody
  // who does.
  if (Take(*taken, path) != Taken::kNotOurs) return true;
  GiveBack(*taken);
  *taken = -1;
  errno = EEXIST;
  return false;
}

void GiveBack(int taken) {
  if (taken >= 0) close(taken);
}

void RemoveLeftover(const std::string& path, uint32_t) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (file >= 0 && Take(file, path) == Taken::kOurs) std::remove(path.c_str());
  GiveBack(file);
}

void CatchInterrupts() {
  struct sigaction action {};
  action.sa_handler = [](int) { CountInterrupt(); };
  for (const int signal_number : {SIGINT, SIGTERM, SIGHUP}) {
    // What whoever started us ignores (nohup), we ignore too.
    struct sigaction before {};
    sigaction(signal_number, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(signal_number, &action, nullptr);
  }
  // A write that fails says why: a limit on file sizes, a reader that has gone.
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
}

void InterruptsAreDone() {}

}  // namespace quorvex::tool
