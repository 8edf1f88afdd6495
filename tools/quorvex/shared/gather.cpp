#include "shared/gather.h"

#include <strings.h>

#include <map>
#include <set>

#include "shared/messages.h"
#include "shared/scratch.h"
#include "shared/system.h"

namespace quorvex::tool {
namespace {

struct Walk {
  std::vector<std::string>* recordings;
  bool complete = true;
  std::set<Identity> folders{};
  std::set<std::string> files{};

  void Fail(const std::string& path, const std::string& reason) {
    Complain(path, reason);
    complete = false;
  }

  void TakeFile(const std::string& path) {
    if (files.insert(PathKey(path)).second) recordings->push_back(path);
  }

  void TakeFolder(const std::string& folder) {
    const std::optional<Identity> identity = IdentityOf(folder);
    if (identity && !folders.insert(*identity).second) return;
    std::vector<std::string> names, unsayable;
    if (!NamesIn(folder, &names, &unsayable)) Fail(folder, "cannot be read: " + LastError());
    for (const std::string& name : unsayable) {
      Fail(Inside(folder, name), "has characters outside the code page, and is not read");
    }
    for (const std::string& name : names) {
      const std::string inside = Inside(folder, name);
      if (IsFolder(inside)) {
        TakeFolder(inside);
      } else if (IsRecordingName(name)) {
        TakeFile(inside);
      }
    }
  }

  void Take(const std::string& path) {
    if (path == "-") {
      std::string problem;
      const std::string spooled = Spooled(&problem);
      if (spooled.empty()) return Fail("standard input", "cannot be read: " + problem);
      return TakeFile(spooled);
    }
    if (!IsFolder(path)) return TakeFile(path);
    const size_t before = recordings->size();
    const bool was_complete = complete;
    const bool new_here = folders.count(IdentityOf(path).value_or(Identity())) == 0;
    TakeFolder(path);
    const bool explained = !new_here || (was_complete && !complete);
    if (recordings->size() == before && !explained) Fail(path, "holds no recordings");
  }
};

}  // namespace

std::string Inside(const std::string& folder, const std::string& name) {
  const bool open = folder.empty() || (folder.back() != '/' && folder.back() != '\\');
  return folder + (open ? "/" : "") + name;
}

bool GatherRecordings(const std::vector<std::string>& paths, std::vector<std::string>* recordings) {
  Walk walk{recordings};
  for (const std::string& path : paths) walk.Take(path);
  return walk.complete;
}

bool IsRecordingName(const std::string& name) {
  return name.size() >= 4 && strcasecmp(name.c_str() + name.size() - 4, ".REC") == 0;
}

std::string FolderOf(const std::string& path) {
  const size_t slash = path.find_last_of(kSeparators);
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

std::string NameOnly(const std::string& path) {
  const size_t slash = path.find_last_of(kSeparators);
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string PathKey(const std::string& path) {
  // Of many files of one folder only the first asks the system.
  static std::map<std::string, std::string> known;
  const std::string folder = FolderOf(path);
  std::string& key = known[folder];
  if (key.empty()) {
    const std::optional<Identity> identity = IdentityOf(folder);
    key = identity ? std::to_string(identity->first) + ":" + std::to_string(identity->second)
                   : folder;
  }
  return key + "/" + NameKey(NameOnly(path));
}

}  // namespace quorvex::tool
