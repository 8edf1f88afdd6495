#include "export/output_files.h"

#include <algorithm>
#include <cctype>

#include "shared/gather.h"
#include "shared/messages.h"

namespace quorvex::tool {
namespace {

std::string StemOf(const std::string& recording) {
  if (IsSpooled(recording)) return "recording";
  const std::string name = NameOnly(recording);
  const size_t dot = name.rfind('.');
  return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace

bool TakesFiles(const std::string& folder, const char* what) {
  const bool takes = !Exists(folder) || IsFolder(folder);
  if (!takes) Complain(folder, std::string("is no folder; ") + what + " files need one");
  return takes;
}

bool MakeFolder(const std::string& folder) {
  const bool made = IsFolder(folder) || CreateFolder(folder);
  if (!made) Complain(folder, "cannot be created: " + SystemError());
  return made;
}

void FilePlaces::Take(
    const std::string& folder,
    const std::function<std::vector<std::string>(const std::string& stem)>& names_of, Job* job) {
  const std::string stem = Inside(folder, StemOf(job->input));
  // Folders travel: names that differ by case only would be one elsewhere.
  std::string key = NameOnly(stem);
  std::transform(key.begin(), key.end(), key.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  const auto [entry, is_new] = stems_.emplace(key, job->input);
  if (!is_new) {
    return job->Fail(kNoOutput, job->input,
                     "its " + what_ + "s would be those of " + entry->second + " already");
  }
  for (const std::string& name : names_of(stem)) {
    job->output = job->named = name;
    if (job->named.size() > kMaxPath) {
      job->Fail(kNoOutput, job->named, "the path is longer than 511 bytes");
    } else if (IsFolder(job->named)) {
      job->Fail(kNoOutput, job->named, "is a folder");
    } else {
      places_.Take(job);
    }
    if (!job->problem.empty()) return;
  }
  job->output = job->named = stem;
}

bool Writer::Write() {
  bool written = false;
  if (file_ == nullptr) {
    written = Print(text_);
  } else {
    const auto size = static_cast<uint32_t>(text_.size());
    written = WriteAll(file_, text_.data(), size, GoOn) == size;
  }
  text_.clear();
  return written;
}

void FailWriting(Job* job) {
  if (!job->problem.empty()) return;
  if (Interrupted()) return job->Fail(kCancelled, job->input, "cancelled");
  job->Fail(
      kNoOutput, job->named,
      "cannot be written" + (job->write_error != 0 ? ": " + TextOfError(job->write_error) : ""));
}

void WriteOutput(const char* what, bool overwrite, unsigned worker, Placed* placed, Job* job,
                 const std::function<bool(Writer*)>& write) {
  Scratch scratch(worker);
  if (!scratch.Create(FolderOf(job->output))) {
    return job->Fail(kNoOutput, job->named, "cannot be written: " + LastError());
  }
  FileHandle* file = OpenFile(scratch.path().c_str(), kOpenCreate);
  if (file == nullptr) return job->Fail(kNoOutput, job->named, "cannot be written: " + LastError());
  Writer writer(file);
  const bool written = write(&writer) && writer.Write();
  if (!CloseFile(file) || !written) return FailWriting(job);
  placed->Put(&scratch, overwrite, what, job);
}

}  // namespace quorvex::tool
