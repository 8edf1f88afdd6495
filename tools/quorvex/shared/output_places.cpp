#include "shared/output_places.h"

#include <charconv>
#include <optional>

#include "records/record_types.h"
#include "shared/paths.h"
#include "support/file.h"

namespace quorvex::tool {

bool IsRecording(const std::string& path) {
  if (IsRecordingName(path)) return true;
  File file(path.c_str(), kOpenRead);
  FileHeader header{};
  return file && ReadBytes(file.get(), &header, sizeof header) == sizeof header &&
         FindRecordType(header.type) != nullptr;
}

std::shared_ptr<OutputFolder> OutputPlaces::NewFolder(const std::string& path) {
  const std::optional<Identity> identity = IdentityOf(path);
  const auto known = identity ? known_.find(*identity) : known_.end();
  if (known != known_.end()) {
    if (auto folder = known->second.lock()) return folder;
  }
  // Not made together with what counts its owners, which lasts as long as what is known of it.
  std::shared_ptr<OutputFolder> folder(new OutputFolder);
  folder->path = path;
  folder->seen_before = known != known_.end();
  if (identity) {
    known_[*identity] = folder;
    RemoveLeftovers(path);
  }
  return folder;
}

bool OutputPlaces::Enter(const std::string& folder, Job* job) {
  if (const auto kept = kept_.find(folder); kept != kept_.end()) {
    job->folder = kept->second;
    return true;
  }
  // Nor where a link leads to do the recordings come one after the other.
  const bool walked = job->walked && FolderOf(job->named) == folder;
  const auto lies_in = [&](const OutputFolder& other) {
    return folder.compare(0, other.path.size(), other.path) == 0;
  };
  while (walked && !walked_.empty() && !lies_in(*walked_.back())) walked_.pop_back();
  if (walked && !walked_.empty() && walked_.back()->path == folder) {
    job->folder = walked_.back();
    return true;
  }
  if (make_folders_ && !IsFolder(folder) && !CreateFolder(folder)) {
    job->Fail(kNoOutput, folder, "cannot be created: " + SystemError());
    return false;
  }
  job->folder = NewFolder(folder);
  if (!walked) {
    kept_[folder] = job->folder;
  } else if (job->folder->path == folder) {
    walked_.push_back(job->folder);
  }
  return true;
}

void OutputPlaces::Take(Job* job) {
  // What is current is a file, and not the recording, which would be as old.
  const bool there = !job->is_new && !job->current && Exists(job->output);
  if (there && IsSpecial(job->output)) return;
  if (!Enter(FolderOf(job->output), job)) return;
  // Before the output is opened: another job may be about to replace it.
  const auto [entry, is_new] =
      job->folder->taken.emplace(NameKey(NameOnly(job->output)), job->input);
  if (!is_new) {
    return job->Fail(
        kNoOutput, job->input,
        "its " + what_ + " " + job->named + " is the one of " + entry->second + " already");
  }
  if (there && SameRecording(job->input, job->output)) {
    return job->Fail(kNoOutput, job->named, "is the recording itself; it is not overwritten");
  }
  if (IsRecordingName(job->output) || (there && IsRecording(job->output))) {
    return job->Fail(
        kNoOutput, job->named,
        there ? "is a recording; it is not overwritten" : "has the name of a recording");
  }
  if (!there) return;
  if (!overwrite_) return job->FailExisting();
  if (job->folder->seen_before) {
    job->Fail(kNoOutput, job->named,
              "may be of another recording of this run, which came into this folder another way");
  }
}

void Put(Scratch* scratch, const Placing& placing, const char* what, Job* job) {
  // Waiting for the disk is for many at a time.
  if (placing.sync && !scratch->Sync()) {
    return job->Fail(kNoOutput, job->named, "cannot be written: " + SystemError());
  }
  const std::lock_guard<std::mutex> lock(job->folder->mutex);
  std::map<Identity, std::string>& placed = job->folder->placed;
  const std::optional<Identity> there = IdentityOf(job->output);
  const auto other = there ? placed.find(*there) : placed.end();
  // Not where another run has replaced that, and its identity is given again.
  if (other != placed.end() && IdentityOf(other->second) == there) {
    return job->Fail(
        kNoOutput, job->input,
        "its " + std::string(what) + " " + job->named + " is the one of another recording already");
  }
  const std::optional<Identity> fresh = IdentityOf(scratch->path());
  if (scratch->Become(job->output, placing.overwrite)) {
    if (fresh) placed[*fresh] = job->output;
    return;
  }
  const std::string reason = SystemError();
  if (!placing.overwrite && Exists(job->output)) return job->FailExisting();
  job->Fail(kNoOutput, job->named, "cannot be written: " + reason);
}

bool ParseRange(const std::string& text, Range* range) {
  const char* end = text.data() + text.size();
  auto [at, error] = std::from_chars(text.data(), end, range->first);
  if (error != std::errc()) return false;
  if (at == end) {
    range->last = range->first;
  } else if (*at++ != '-') {
    return false;
  } else if (at != end) {
    const auto last = std::from_chars(at, end, range->last);
    if (last.ec != std::errc() || last.ptr != end) return false;
  }
  return range->first >= 1 && range->first <= range->last;
}

}  // namespace quorvex::tool
