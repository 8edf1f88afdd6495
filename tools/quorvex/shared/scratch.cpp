#include "shared/scratch.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

#include "shared/paths.h"
#include "support/file.h"

namespace quorvex::tool {
namespace {

constexpr char kMark[] = ".quorvex-";
constexpr char kRecordingEnd[] = ".REC";  // the record information line wants it

// A process that cannot wait removes these at its end, without allocating.
char paths[kScratchSlots][kMaxPath + 1];

// The names of this machine's scratch files begin so.
std::string OfThisMachine() {
  std::string machine = MachineName().substr(0, 40);
  std::replace_if(
      machine.begin(), machine.end(),
      [](unsigned char c) { return c >= 0x80 || (!std::isalnum(c) && c != '.' && c != '_'); }, '_');
  return kMark + machine + "-";
}

// Reads the process out of ".quorvex-MACHINE-PROCESS-SLOT~" with this prefix; other names give
// nothing.
std::optional<uint32_t> OwnerOf(const std::string& name, const std::string& prefix) {
  if (name.compare(0, prefix.size(), prefix) != 0) return std::nullopt;
  unsigned owner = 0, slot = 0;
  int used = 0;
  const char* rest = name.c_str() + prefix.size();
  if (std::sscanf(rest, "%9u-%9u~%n", &owner, &slot, &used) != 2 || used == 0) return std::nullopt;
  const std::string end = rest + used;
  if (!end.empty() && end != kRecordingEnd) return std::nullopt;
  return owner;
}

std::unique_ptr<Scratch> spool;

}  // namespace

bool Scratch::Create(const std::string& folder, const char* extension) {
  Remove();
  const std::string front = Inside(folder, OfThisMachine() + std::to_string(ProcessId()) + "-");
  // In the folder for temporary files others may put what they like under such a name, or look.
  const bool among_others = slot_ > kManifestSlot;
  constexpr unsigned kTries = 100;
  for (unsigned i = 0; i < kTries; ++i) {
    const std::string path = front + std::to_string(slot_ + i * kScratchSlots) + "~" + extension;
    if (CreateNew(path, among_others, &taken_)) {
      path_ = path;
      break;
    }
    if (errno != EEXIST) return false;
  }
  if (path_.empty()) return false;
  std::snprintf(paths[slot_], sizeof paths[slot_], "%s", path_.c_str());
  return true;
}

bool Scratch::Become(const std::string& name, bool replace) {
  if (!PutInPlace(path_, name, replace)) return false;
  path_.clear();
  Remove();
  return true;
}

void Scratch::Remove() {
  if (!path_.empty()) std::remove(path_.c_str());
  paths[slot_][0] = '\0';
  path_.clear();
  GiveBack(taken_);
  taken_ = -1;
}

void RemoveLeftovers(const std::string& folder) {
  std::vector<Entry> entries;
  std::vector<std::string> unsayable;
  EntriesIn(folder, &entries, &unsayable);
  const std::string prefix = OfThisMachine();
  for (const auto& [name, kind] : entries) {
    const std::string path = folder + "/" + name;
    const std::optional<uint32_t> owner = OwnerOf(name, prefix);
    if (owner && *owner != ProcessId() && !IsSpecial(path)) RemoveLeftover(path, *owner);
  }
}

void RemoveAllScratch() {
  for (const auto& path : paths) {
    if (path[0] != '\0') std::remove(path);
  }
}

std::string Spooled(std::string* problem) {
  if (spool != nullptr) return spool->path();
  spool = std::make_unique<Scratch>(kSpoolSlot);
  const std::string folder = TemporaryFolder();
  RemoveLeftovers(folder);
  std::FILE* to =
      spool->Create(folder, kRecordingEnd) ? std::fopen(spool->path().c_str(), "wb") : nullptr;
  UseBytes(stdin);
  CatchInterrupts();
  bool written = to != nullptr;
  std::vector<char> piece(1 << 16);
  while (written) {
    const size_t got = std::fread(piece.data(), 1, piece.size(), stdin);
    if (got == 0) break;
    written = std::fwrite(piece.data(), 1, got, to) == got && !Interrupted();
  }
  written = written && std::ferror(stdin) == 0;
  if (!written) *problem = Interrupted() ? "cancelled" : LastError();
  if (to != nullptr && std::fclose(to) != 0 && written) {
    *problem = LastError();
    written = false;
  }
  if (!written) spool->Remove();
  return spool->path();
}

bool IsSpooled(const std::string& path) {
  return spool != nullptr && !path.empty() && path == spool->path();
}

}  // namespace quorvex::tool
