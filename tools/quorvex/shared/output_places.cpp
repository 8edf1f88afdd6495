#include "shared/output_places.h"

#include <algorithm>
#include <charconv>

#include "records/record_types.h"
#include "shared/gather.h"
#include "shared/messages.h"
#include "support/file.h"

namespace quorvex::tool {
bool IsRecording(const std::string& path) {
  if (IsRecordingName(path)) return true;
  File file(path.c_str(), kOpenRead);
  FileHeader header{};
  return file && ReadBytes(file.get(), &header, sizeof header) == sizeof header &&
         FindRecordType(header.type) != nullptr;
}

void OutputPlaces::Take(Job* job) {
  if (SameRecording(job->input, job->output)) {
    return job->Fail(kNoOutput, job->named, "is the recording itself; it is not overwritten");
  }
  if (IsSpecial(job->output)) return;
  if (IsRecording(job->output)) {
    return job->Fail(kNoOutput, job->named,
                     Exists(job->output) ? "is a recording; it is not overwritten"
                                         : "has the name of a recording");
  }
  const auto [entry, is_new] = taken_.emplace(PathKey(job->output), job->input);
  if (!is_new) {
    return job->Fail(
        kNoOutput, job->input,
        "its " + what_ + " " + job->named + " is the one of " + entry->second + " already");
  }
  if (!overwrite_ && Exists(job->output)) return job->FailExisting();
  CleanUp(FolderOf(job->output));
}

void OutputPlaces::CleanUp(const std::string& folder) {
  if (cleaned_.insert(folder).second) RemoveLeftovers(folder);
}

void TellExisting(const std::deque<Job>& jobs, const std::string& what) {
  const auto exists = [](const Job& job) { return job.exists; };
  const auto count = std::count_if(jobs.begin(), jobs.end(), exists);
  if (count == 0) return;
  const Job& first = *std::find_if(jobs.begin(), jobs.end(), exists);
  if (count == 1) return Complain(first.culprit, first.problem);
  Say(std::to_string(count) + " " + what + " exist already, the first is " + first.named +
      "; --overwrite replaces them");
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
