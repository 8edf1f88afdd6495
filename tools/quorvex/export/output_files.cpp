#include "export/output_files.h"

#include "shared/messages.h"
#include "shared/paths.h"

namespace quorvex::tool {
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

void FilePlaces::Take(Job* job) {
  const std::string stem = Inside(folder_, WithoutExtension(job->place));
  job->named = stem;
  if (!places_.Enter(FolderOf(stem), job)) return;
  // Folders travel: names that differ by case only would be one elsewhere.
  const auto [entry, is_new] =
      job->folder->stems.emplace(InSmallLetters(NameOnly(stem)), job->input);
  if (!is_new) {
    return job->Fail(kNoOutput, job->input,
                     "its " + what_ + "s would be those of " + entry->second + " already");
  }
  for (const std::string& name : job->names) {
    job->output = job->named = stem + name;
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

void WriteOutput(const char* what, bool overwrite, unsigned worker, Job* job,
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
  Put(&scratch, {overwrite, false}, what, job);
}

}  // namespace quorvex::tool
