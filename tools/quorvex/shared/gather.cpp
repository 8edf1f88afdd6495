#include "shared/gather.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <deque>
#include <set>
#include <unordered_set>
#include <utility>

#include "shared/messages.h"
#include "shared/paths.h"
#include "shared/scratch.h"
#include "shared/system.h"
#include "shared/text_file.h"

namespace quorvex::tool {
namespace {

// The path of `full` below `base`, both from the root; nothing where it lies elsewhere. An empty
// base is around all drives.
std::optional<std::string> Below(const std::string& base, const std::string& full) {
  if (base.empty()) {
    std::string below;
    for (const std::string& part : PartsOf(full)) below += (below.empty() ? "" : "/") + part;
    return below;
  }
  const std::string front = Inside(base, "");
  if (NameKey(full) == NameKey(base)) return "";
  if (full.size() < front.size() || NameKey(full.substr(0, front.size())) != NameKey(front)) {
    return std::nullopt;
  }
  return full.substr(front.size());
}

}  // namespace

// What is given, piece by piece: paths, or the lines of a list.
struct Given {
  std::vector<std::string> paths, fronts;
  std::shared_ptr<const std::string> list;
  std::string base, named_base;  // of the list: from the root, and as given
  char end = '\n';

  size_t at = 0;

  bool Next(std::string* path, std::string* front) {
    front->clear();
    if (list == nullptr) {
      if (at == paths.size()) return false;
      *path = paths[at];
      *front = fronts[at++];
      return true;
    }
    while (at < list->size()) {
      const size_t to = std::min(list->find(end, at), list->size());
      *path = list->substr(at, to - at);
      at = to + 1;
      // Of a list that was made on Windows, unless there is such a name.
      if (end == '\n' && !path->empty() && path->back() == '\r' && !Exists(*path)) path->pop_back();
      if (!path->empty()) return true;
    }
    return false;
  }

  // The longest folder that all have in common.
  void FindBase() {
    std::string path, front;
    bool first = true;
    while (Next(&path, &front)) {
      std::string folder = FullPath(path);
      if (IsRecordingName(path) || !IsFolder(path)) folder = FullPath(FolderOf(folder));
      if (first) base = folder;
      first = false;
      while (!Below(base, folder)) {
        const std::string around = FullPath(Inside(base, ".."));
        base = around == base ? "" : around;
      }
    }
    at = 0;
  }

  void FindFronts() {
    fronts.resize(paths.size());
    std::set<Identity> known;
    std::vector<size_t> which;
    std::vector<std::string> folders;
    for (size_t i = 0; i < paths.size(); ++i) {
      // What is not there may be a card that is not in its place, which leaves the others in
      // theirs.
      const bool missing = !Exists(paths[i]) && !IsRecordingName(paths[i]);
      if (paths[i] == "-" || !(missing || IsFolder(paths[i]))) continue;
      const std::optional<Identity> identity = IdentityOf(paths[i]);
      if (identity && !known.insert(*identity).second) continue;
      which.push_back(i);
      folders.push_back(FullPath(paths[i]));
    }
    const std::vector<std::string> ends = DistinctEnds(folders);
    for (size_t i = 0; i < which.size(); ++i) fronts[which[i]] = ends[i];
  }
};

class Walk {
 public:
  // Another pass over the same does not read standard input.
  Walk(Given given, bool once_more) : given_(std::move(given)), once_more_(once_more) {}
  const Given& given() const { return given_; }

  bool Next(Found* found) {
    while (problems_.empty() && !TakeNext(found)) {
      if (finished_ && problems_.empty() && !TakeLink()) return false;
    }
    if (problems_.empty()) return true;
    *found = problems_.front();
    problems_.pop_front();
    return true;
  }

 private:
  // A folder that is being walked.
  struct Level {
    std::string path, below, key;
    std::vector<Entry> entries;
    size_t at = 0;
  };

  struct Link {
    std::string path, below, front;
  };

  void Fail(const std::string& path, const std::string& problem) {
    problems_.push_back({path, "", "", problem, true});
    explained_ = true;
  }

  // False where this step has found none; there may be more.
  bool TakeNext(Found* found) {
    if (levels_.empty()) return TakeGiven(found);
    Level& level = levels_.back();
    if (level.at == level.entries.size()) {
      levels_.pop_back();
      if (levels_.empty() && !any_ && !explained_) Fail(given_path_, "holds no recordings");
      return false;
    }
    const Entry& entry = level.entries[level.at++];
    const std::string path = Inside(level.path, entry.name);
    const std::string below = level.below.empty() ? entry.name : level.below + "/" + entry.name;
    const bool folder =
        entry.kind == Entry::kFolder || (entry.kind != Entry::kFile && IsFolder(path));
    if (folder && entry.kind != Entry::kFolder && IsLink(path)) {
      links_.push_back({path, below, front_});
      explained_ = true;
      return false;
    }
    if (folder) {
      Enter(path, below);
      return false;
    }
    if (!IsRecordingName(entry.name)) return false;
    any_ = true;
    if (!files_.empty() && files_.count(level.key + NameKey(entry.name)) != 0) return false;
    *found = {path, below, front_, "", false, true};
    return true;
  }

  bool TakeGiven(Found* found) {
    if (!given_.Next(&given_path_, &front_)) {
      finished_ = true;
      return false;
    }
    if (given_.list == nullptr && given_path_ == "-") return TakeInput(found);
    const bool folder = IsFolder(given_path_);
    std::string below = folder ? "" : NameOnly(given_path_);
    if (given_.list != nullptr) {
      const std::optional<std::string> inside = Below(given_.base, FullPath(given_path_));
      if (!inside) {
        problems_.push_back(
            {given_path_, below, "", "does not lie below " + given_.named_base, folder});
        return false;
      }
      below = *inside;
    }
    if (folder) {
      explained_ = any_ = false;
      Enter(given_path_, below);
      return false;
    }
    // Not a file twice, nor one of a folder that was walked.
    const std::string name = NameOnly(given_path_);
    const std::string key = KeyOf(FolderOf(given_path_));
    const bool walked = IsRecordingName(name) && folders_.count(key) != 0;
    if (walked || !files_.insert(key + NameKey(name)).second) return false;
    *found = {given_path_, below, "", "", false};
    return true;
  }

  // Folders that a link leads to come last: by then those are known that have a place of their own,
  // which is where their documents stay when the link goes elsewhere.
  bool TakeLink() {
    if (links_.empty()) return false;
    const Link link = links_.front();
    links_.pop_front();
    front_ = link.front;
    explained_ = true;
    finished_ = false;
    Enter(link.path, link.below);
    return true;
  }

  bool TakeInput(Found* found) {
    if (once_more_) return false;
    std::string problem;
    const std::string spooled = Spooled(&problem);
    if (spooled.empty()) {
      Fail("standard input", "cannot be read: " + problem);
      return false;
    }
    if (!files_.insert(spooled).second) return false;
    *found = {spooled, "recording.REC", "", "", false};
    return true;
  }

  void Enter(const std::string& path, const std::string& below) {
    Level level = {path, below, KeyOf(path), {}};
    if (!folders_.insert(level.key).second) {
      explained_ = true;
      return;
    }
    std::vector<std::string> unsayable;
    const bool read = EntriesIn(path, &level.entries, &unsayable);
    const std::string reason = LastError();
    if (!read) {
      Fail(path, "cannot be read: " + reason);
      folders_.erase(level.key);  // what is given by name in it may be read all the same
    }
    for (const std::string& name : unsayable) {
      Fail(Inside(path, name), "has characters outside the code page, and is not read");
    }
    levels_.push_back(std::move(level));
  }

  static std::string KeyOf(const std::string& folder) {
    const std::optional<Identity> identity = IdentityOf(folder);
    return (identity ? std::to_string(identity->first) + ":" + std::to_string(identity->second)
                     : folder) +
           "/";
  }

  Given given_;
  bool once_more_;
  std::string given_path_, front_;
  bool any_ = false, explained_ = false;  // of the folder that was given
  bool finished_ = false;
  std::vector<Level> levels_;
  std::deque<Link> links_;
  std::deque<Found> problems_;
  std::unordered_set<std::string> folders_, files_;  // walked; given by name
};

bool ParseShare(const std::string& text, Share* share) {
  const char* end = text.data() + text.size();
  const auto number = std::from_chars(text.data(), end, share->number);
  if (number.ec != std::errc() || number.ptr == end || *number.ptr != '/') return false;
  const auto of = std::from_chars(number.ptr + 1, end, share->of);
  return of.ec == std::errc() && of.ptr == end && share->number >= 1 && share->number <= share->of;
}

bool IsIn(const Share& share, const std::string& place) {
  if (share.of == 1) return true;
  std::string key = Utf8(place);
#ifdef _WIN32
  std::replace(key.begin(), key.end(), '\\', '/');
#endif
  // FNV-1a, and a last mixing, as its low bits alone are poor ones.
  uint64_t hash = 0xCBF29CE484222325;
  for (const char c : InSmallLetters(WithoutExtension(key))) {
    hash = (hash ^ static_cast<uint8_t>(c)) * 0x100000001B3;
  }
  hash = (hash ^ hash >> 32) * 0xD6E8FEB86659FD93;
  hash ^= hash >> 32;
  return hash % share.of == share.number - 1;
}

Gathering::Gathering(std::unique_ptr<Walk> walk, bool has_list, const Share& share)
    : walk_(std::move(walk)), has_list_(has_list), share_(share) {}
Gathering::~Gathering() = default;

std::string Gathering::Prepare(const Sources& sources, std::unique_ptr<Gathering>* gathering) {
  Given given;
  given.paths = sources.paths;
  const bool has_list = !sources.list.empty();
  if (has_list) {
    std::string text;
    const bool read = sources.list == "-" ? ReadInput(&text) : ReadText(sources.list, &text);
    if (!read) return "cannot be read: " + LastError();
    if (!sources.nulls && text.find('\0') != std::string::npos) {
      return "has NUL characters; --null takes paths that end in these";
    }
    given.list = std::make_shared<const std::string>(std::move(text));
    given.end = sources.nulls ? '\0' : '\n';
    given.named_base = sources.base;
    given.base = FullPath(sources.base);
    if (sources.base.empty()) given.FindBase();
  } else {
    given.FindFronts();
  }
  gathering->reset(
      new Gathering(std::make_unique<Walk>(std::move(given), false), has_list, sources.share));
  return "";
}

std::string Found::Place() const { return front.empty() ? below : Inside(front, below); }

bool Gathering::Next(Found* found) {
  while (walk_->Next(found)) {
    if (!found->problem.empty() || IsIn(share_, found->Place())) return true;
  }
  return false;
}

std::unique_ptr<Gathering> Gathering::Again() const {
  Given given = walk_->given();
  given.at = 0;
  return std::unique_ptr<Gathering>(
      new Gathering(std::make_unique<Walk>(std::move(given), true), has_list_, share_));
}

Ahead::Ahead(Gathering* gathering) : gathering_(gathering) {
  for (Found found; recordings_ < 2 && gathering->Next(&found);) {
    if (found.problem.empty() && ++recordings_ == 1) first_ = found;
    found_.push_back(found);
  }
}

bool Ahead::Next(Found* found) {
  if (found_.empty()) return gathering_->Next(found);
  *found = found_.front();
  found_.pop_front();
  return true;
}

bool GatherRecordings(Gathering* gathering, std::vector<std::string>* recordings) {
  bool complete = true;
  for (Found found; gathering->Next(&found);) {
    if (found.problem.empty()) {
      recordings->push_back(found.path);
    } else {
      Complain(found.path, found.problem);
      complete = false;
    }
  }
  return complete;
}

bool GatherRecordings(const std::vector<std::string>& paths, std::vector<std::string>* recordings) {
  Sources sources;
  sources.paths = paths;
  std::unique_ptr<Gathering> gathering;
  Gathering::Prepare(sources, &gathering);
  return GatherRecordings(gathering.get(), recordings);
}

Counting::~Counting() {
  stop_ = true;
  if (thread_.joinable()) thread_.join();
}

Counting::Totals Counting::Get() {
  if (!thread_.joinable()) {
    thread_ = std::thread([this] {
      for (Found found; !stop_ && gathering_->Next(&found);) {
        if (!found.problem.empty()) continue;
        ++files_;
        bytes_ += StateOf(found.path).value_or(FileState()).size;
      }
      complete_ = !stop_;
    });
    // A card is counted in no time.
    for (int i = 0; i < 20 && !complete_; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  return {files_, bytes_, complete_};
}

}  // namespace quorvex::tool
