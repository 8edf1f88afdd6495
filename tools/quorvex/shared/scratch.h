// A document is written into a scratch file beside its place, and gets its name when it is
// complete. The names of scratch files carry machine and process, and whoever writes one has taken
// it, so that the next run can tell what a run that was killed has left over.
#pragma once

#include <string>

#include "shared/system.h"

namespace quorvex::tool {

constexpr unsigned kMostWorkers = 64;
constexpr unsigned kManifestSlot = kMostWorkers;
constexpr unsigned kSpoolSlot = kMostWorkers + 1;  // standard input
constexpr unsigned kOutputSlot = kMostWorkers + 2;
constexpr unsigned kScratchSlots = kMostWorkers + 3;

// A scratch file is removed when its scope ends, unless it has got its name. A slot has one at a
// time.
class Scratch {
 public:
  explicit Scratch(unsigned slot) : slot_(slot) {}
  ~Scratch() { Remove(); }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  // False where it cannot be created: LastError().
  bool Create(const std::string& folder, const char* extension = "");
  const std::string& path() const { return path_; }
  // Both: false: SystemError().
  bool Sync() const { return SyncFile(path_, taken_); }
  bool Become(const std::string& name, bool replace);
  void Remove();

 private:
  unsigned slot_;
  std::string path_;
  int taken_ = -1;
};

// Removes what runs on this machine have left over in a folder.
void RemoveLeftovers(const std::string& folder);

// Removes every scratch file that there is; only for a process that ends.
void RemoveAllScratch();

// Reads standard input into a scratch file, once; later calls give the same. Empty where that
// fails, with the reason.
std::string Spooled(std::string* problem);
bool IsSpooled(const std::string& path);

}  // namespace quorvex::tool
