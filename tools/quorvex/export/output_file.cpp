#include "export/output_file.h"

#include "shared/gather.h"
#include "shared/messages.h"

namespace quorvex::tool {

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
