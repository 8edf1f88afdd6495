// Here is what both platforms do alike.
#include "shared/system.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "shared/scratch.h"
#include "support/platform.h"

namespace quorvex::tool {
namespace {

constexpr int kMostPatience = 2;
std::atomic<int> interrupts{0};

// What stands at `path`, as the system has it; 0 where nothing does.
unsigned ModeOf(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? status.st_mode : 0;
}

}  // namespace

std::string TextOfError(int error) { return std::strerror(error); }
std::string LastError() { return TextOfError(errno); }

bool Exists(const std::string& path) { return ModeOf(path) != 0; }
bool IsFolder(const std::string& path) { return S_ISDIR(ModeOf(path)); }
bool IsSpecial(const std::string& path) {
  const unsigned mode = ModeOf(path);
  return mode != 0 && !S_ISREG(mode);
}

bool SameRecording(const std::string& first, const std::string& second) {
  return SameFile(first.c_str(), second.c_str());
}

bool EntriesIn(const std::string& folder, std::vector<Entry>* entries,
               std::vector<std::string>* unsayable) {
  DIR* listing = opendir(folder.c_str());
  if (listing == nullptr) return false;
  errno = 0;
  while (const dirent* entry = readdir(listing)) {
    const std::string name = entry->d_name;
    if (name == "." || name == "..") continue;
#ifdef _WIN32
    constexpr Entry::Kind kind = Entry::kUnknown;
    // No name has a question mark there: it stands for a character that this code page lacks.
    if (name.find('?') != std::string::npos) {
      unsayable->push_back(name);
      continue;
    }
#else
    const Entry::Kind kind = entry->d_type == DT_REG   ? Entry::kFile
                             : entry->d_type == DT_DIR ? Entry::kFolder
                             : entry->d_type == DT_LNK ? Entry::kLink
                                                       : Entry::kUnknown;
#endif
    entries->push_back({name, kind});
  }
  const int error = errno;
  closedir(listing);
  std::sort(entries->begin(), entries->end(),
            [](const Entry& a, const Entry& b) { return a.name < b.name; });
  std::sort(unsayable->begin(), unsayable->end());
  errno = error;
  return error == 0;
}

void CountInterrupt() {
  if (++interrupts > kMostPatience) EndAtOnce();
}

int Interrupts() { return interrupts; }

void EndAtOnce() {
  RemoveAllScratch();
  std::_Exit(kCancelled);
}

}  // namespace quorvex::tool
