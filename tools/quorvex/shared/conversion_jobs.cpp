#include "shared/conversion_jobs.h"

#include <cerrno>
#include <cstdio>
#include <optional>

#include "findings/soundness.h"
#include "settings/setting_file.h"
#include "shared/checksum.h"
#include "shared/messages.h"
#include "shared/paths.h"
#include "xml/conversion.h"

namespace quorvex::tool {
namespace {

// The library's conversion, and where `check` is set what a check finds on the same way. Its
// outcome is the job's where it is a failure.
bool ConvertInto(const std::string& document, bool check, Job* job) {
  errno = 0;
  RecordingHead head(job->input.c_str());
  // What is there now may be another recording than the one that was looked at.
  const bool same = head.type == job->recording.type && !HeadProblem(head);
  bool converted = false;
  if (same) {
    head.UseSettingFile();
    std::optional<Soundness> soundness;
    if (check) soundness.emplace(&head, !IsSpooled(job->input));
    // Of a profile without a layout there is nothing to convert; the library would only count, for
    // ever where the range has no end.
    const auto progress = job->recording.has_layout ? OnProgress : nullptr;
    converted = ConvertRecording(&head, {document.c_str(),
                                         {job->range.first, job->range.last, progress},
                                         GoOn,
                                         soundness ? &*soundness : nullptr});
    if (soundness) job->findings = soundness->Result();
    if (!check && !job->recording.has_layout) {
      job->findings.Add(NoLayout(job->recording.profile));
    }
  }
  const int error = errno;
  if (Interrupted()) {
    job->Fail(kCancelled, job->input, "cancelled");
  } else if (job->write_error != 0) {
    job->Fail(kNoOutput, job->named, "cannot be written: " + TextOfError(job->write_error));
  } else if (!converted) {
    // What the tool saw is no longer so, or the system saw an error only when the file was closed.
    const Recording now = Inspect(job->input);
    if (now.code != kDone) {
      job->Fail(now.code, job->input, now.problem);
    } else {
      job->Fail(kNoOutput, job->named,
                "cannot be written" + (error != 0 ? ": " + TextOfError(error) : ""));
    }
  }
  return job->code == kDone;
}

// Whether all of it arrives shows at the end of the program.
void CopyToOutput(const std::string& path, Job* job) {
  std::FILE* from = std::fopen(path.c_str(), "rb");
  if (from == nullptr) return job->Fail(kNoOutput, path, LastError());
  UseBytes(stdout);
  constexpr size_t kPiece = 1 << 16;
  std::string piece;
  for (bool more = true; more && !Interrupted();) {
    piece.resize(kPiece);
    piece.resize(std::fread(piece.data(), 1, kPiece, from));
    more = Print(piece) && std::feof(from) == 0 && std::ferror(from) == 0;
  }
  std::fclose(from);
  if (Interrupted()) job->Fail(kCancelled, job->input, "cancelled");
}

// The document appears under its name only when it is complete.
void RunJob(Job* job, const ConversionAsked& asked, unsigned worker) {
  if (job->exists) {
    if (asked.checksum) Sha256Of(job->output, &job->checksum);
    return;
  }
  const bool to_stdout = job->output.empty();
  // Into a device or a pipe the document goes directly: there is no name to keep clean.
  if (!to_stdout && !job->is_new && IsSpecial(job->output)) {
    ConvertInto(job->output, asked.check, job);
    return;
  }
  Scratch scratch(to_stdout ? kOutputSlot : worker);
  const std::string folder = to_stdout ? TemporaryFolder() : FolderOf(job->output);
  if (!scratch.Create(folder)) {
    return job->Fail(kNoOutput, job->named, "cannot be written: " + LastError());
  }
  if (scratch.path().size() > kMaxPath) {
    return job->Fail(kNoOutput, job->named, "the path is too long");
  }
  const auto before = asked.unchanged ? StateOf(job->input) : std::nullopt;
  if (!ConvertInto(scratch.path(), asked.check, job)) return;
  if (before) {
    const std::optional<FileState> now = StateOf(job->input);
    if (!now || now->written != before->written || now->size != before->size) {
      return job->Fail(kNoInput, job->input, "has changed meanwhile");
    }
  }
  if (asked.checksum && !Sha256Of(scratch.path(), &job->checksum)) {
    return job->Fail(kNoOutput, job->named, "cannot be read again: " + LastError());
  }
  if (to_stdout) {
    CopyToOutput(scratch.path(), job);
  } else {
    Put(&scratch, asked.placing, "document", job);
    if (job->exists && asked.leave) {
      job->Leave();
      if (asked.checksum) Sha256Of(job->output, &job->checksum);
    }
  }
}

}  // namespace

Work Converting(const ConversionAsked& asked) {
  return [asked](Job* job, unsigned worker) { RunJob(job, asked, worker); };
}

bool IsCurrent(Job* job) {
  const std::optional<FileState> document = StateOf(job->output), recording = StateOf(job->input);
  if (!document || !recording) return false;
  job->bytes = recording->size;
  constexpr int64_t kUnsure = 2'000'000'000;
  const auto is_older = [&](const FileState& than) {
    return document->written <= than.written + kUnsure;
  };
  if (is_older(*recording)) return false;
  char name[kMaxPath + 1];
  if (job->input.size() > kMaxPath || !BuildSettingFileName(job->input.c_str(), name, "PAR", 0)) {
    return true;
  }
  const std::optional<FileState> settings = StateOf(name);
  if (!settings || !is_older(*settings)) return true;
  // Some types do not take their settings from there.
  const RecordingHead head(job->input.c_str());
  return head.type != nullptr && !head.type->companion;
}

}  // namespace quorvex::tool
