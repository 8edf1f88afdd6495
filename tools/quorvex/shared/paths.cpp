#include "shared/paths.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <optional>
#include <set>

#include "shared/system.h"

namespace quorvex::tool {

std::string Inside(const std::string& folder, const std::string& name) {
  const bool open = folder.empty() || (folder.back() != '/' && folder.back() != '\\');
  return folder + (open ? "/" : "") + name;
}

std::string FolderOf(const std::string& path) {
  const size_t slash = path.find_last_of(kSeparators);
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

std::string NameOnly(const std::string& path) {
  const size_t slash = path.find_last_of(kSeparators);
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string WithoutExtension(const std::string& path) {
  const size_t name = path.size() - NameOnly(path).size();
  const size_t dot = path.rfind('.');
  return dot != std::string::npos && dot > name ? path.substr(0, dot) : path;
}

bool IsRecordingName(const std::string& name) {
  return name.size() >= 4 && strcasecmp(name.c_str() + name.size() - 4, ".REC") == 0;
}

std::string InSmallLetters(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::vector<std::string> PartsOf(const std::string& full) {
  std::vector<std::string> parts;
  for (size_t at = 0; at < full.size();) {
    const size_t end = std::min(full.find_first_of(kSeparators, at), full.size());
    if (end > at) parts.push_back(full.substr(at, end - at));
    at = end + 1;
  }
  return parts;
}

std::vector<std::string> DistinctEnds(const std::vector<std::string>& folders) {
  std::vector<std::string> ends(folders.size());
  if (folders.size() < 2) return ends;
  std::vector<std::vector<std::string>> parts;
  size_t longest = 0;
  for (const std::string& folder : folders) {
    parts.push_back(PartsOf(folder));
    longest = std::max(longest, parts.back().size());
  }
  for (size_t count = 1; count <= longest; ++count) {
    std::set<std::string> known;
    for (size_t i = 0; i < folders.size(); ++i) {
      const size_t size = parts[i].size();
      ends[i].clear();
      for (size_t k = size - std::min(size, count); k < size; ++k) {
        ends[i] += (ends[i].empty() ? "" : "/") + parts[i][k];
      }
      known.insert(InSmallLetters(ends[i]));
    }
    if (known.size() == folders.size()) break;
  }
  return ends;
}

std::string PathKeys::Of(const std::string& path) {
  const std::string folder = FolderOf(path);
  std::string& key = folders_[folder];
  if (key.empty()) {
    const std::optional<Identity> identity = IdentityOf(folder);
    key = identity ? std::to_string(identity->first) + ":" + std::to_string(identity->second)
                   : folder;
  }
  return key + "/" + NameKey(NameOnly(path));
}

}  // namespace quorvex::tool
