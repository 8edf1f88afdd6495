#include "shared/paths.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
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
  const auto end_of = [&](size_t i, size_t count) {
    const std::vector<std::string> parts = PartsOf(folders[i]);
    std::string end;
    for (size_t k = parts.size() - std::min(parts.size(), count); k < parts.size(); ++k) {
      end += (end.empty() ? "" : "/") + parts[k];
    }
    return end;
  };
  // Two that differ by case only are two.
  std::set<std::string> fulls;
  for (const std::string& folder : folders) fulls.insert(InSmallLetters(folder));
  const bool alike = fulls.size() < folders.size();
  const auto key_of = [&](const std::string& end) { return alike ? end : InSmallLetters(end); };
  size_t longest = 0;
  for (const std::string& folder : folders) longest = std::max(longest, PartsOf(folder).size());
  // Those that have the same end as another one take one part more.
  std::set<size_t> open;
  for (size_t i = 0; i < folders.size(); ++i) open.insert(i);
  for (size_t count = 1; count <= longest && !open.empty(); ++count) {
    std::map<std::string, size_t> owners;
    for (size_t i = 0; i < folders.size(); ++i) ++owners[key_of(end_of(i, count))];
    for (auto i = open.begin(); i != open.end();) {
      ends[*i] = end_of(*i, count);
      i = owners[key_of(ends[*i])] == 1 ? open.erase(i) : std::next(i);
    }
  }
  // Where one would lie in another, all are as long as the longest.
  const auto parts_in = [](const std::string& end) {
    return static_cast<size_t>(std::count(end.begin(), end.end(), '/') + 1);
  };
  size_t most = 0;
  bool nested = false;
  for (const std::string& end : ends) {
    most = std::max(most, parts_in(end));
    const std::string front = key_of(end) + "/";
    nested = nested || std::any_of(ends.begin(), ends.end(), [&](const std::string& other) {
               return key_of(other).compare(0, front.size(), front) == 0;
             });
  }
  for (size_t i = 0; nested && i < folders.size(); ++i) ends[i] = end_of(i, most);
  return ends;
}

}  // namespace quorvex::tool
