#include "shared/manifest.h"

#include <atomic>
#include <cerrno>

#include "shared/json.h"
#include "shared/output_places.h"
#include "shared/paths.h"

namespace quorvex::tool {
namespace {

// Why a manifest could not be written, as a write can tell nobody else.
std::atomic<int> write_error{0};
std::atomic<bool> may_wait{false}, said_full{false};

bool GoOnWithManifest(int error) {
  if (error == 0 || error == EINTR || error == EAGAIN) return !Interrupted() || error == 0;
  if (error == ENOSPC && may_wait && !Interrupted()) {
    if (!said_full.exchange(true)) {
      Say("the manifest's disk is full; waiting for room (an interrupt cancels)");
    }
    return true;
  }
  write_error = error;
  return false;
}

Json LineOf(const Job& job) {
  const Recording& r = job.recording;
  const bool failed = job.code != kDone;
  const bool seen = r.header.has_value();
  Json line;
  line["recording"] = CalledName(job.input);
  line["document"] = failed ? Json() : Json(Utf8(job.named));
  line["type"] = seen ? Json(r.header->type) : Json();
  line["size"] = seen ? Json(r.size) : Json();
  line["records"] = OrNull(r.records);
  line["findings"] = job.IsWritten() ? FindingsOf(job.findings) : Json();
  line["outcome"] = failed ? "failed" : job.IsWritten() ? "written" : "skipped";
  line["problem"] = job.problem.empty() ? Json() : Json(job.problem);
  line["sha256"] = job.checksum.empty() ? Json() : Json(job.checksum);
  return line;
}

}  // namespace

Manifest::~Manifest() { CloseFile(file_); }

bool Manifest::Begin() {
  if (path_.empty() || path_ == "-") return true;
  const std::string place = Resolved(path_);
  may_wait = !IsSpecial(place);
  if (IsFolder(place)) {
    problem_ = "is a folder";
  } else if (IsRecordingName(place) || (may_wait && IsRecording(place))) {
    problem_ =
        Exists(place) ? "is a recording; it is not overwritten" : "has the name of a recording";
  } else if (may_wait && !scratch_.Create(FolderOf(place))) {
    problem_ = "cannot be written: " + LastError();
  } else {
    file_ = OpenFile((may_wait ? scratch_.path() : place).c_str(), kOpenCreate);
    if (file_ == nullptr) problem_ = "cannot be written: " + LastError();
  }
  if (problem_.empty()) {
    RemoveLeftovers(FolderOf(place));
    return true;
  }
  Complain(path_, problem_);
  return false;
}

void Manifest::Add(const Job& job) {
  if (!problem_.empty()) return;
  lines_ += Shown(LineOf(job).dump(-1, ' ', false, Json::error_handler_t::replace), true) + "\n";
  constexpr size_t kPiece = 1 << 16;
  if (path_ == "-" || lines_.size() >= kPiece) Write();
}

void Manifest::Write() {
  if (path_ == "-") {
    Print(lines_);
  } else {
    const auto size = static_cast<uint32_t>(lines_.size());
    if (WriteAll(file_, lines_.data(), size, GoOnWithManifest) != size) {
      problem_ = "cannot be written" +
                 (write_error != 0 ? ": " + TextOfError(write_error) : std::string());
    }
  }
  lines_.clear();
}

bool Manifest::End(bool sync) {
  if (path_.empty()) return true;
  if (problem_.empty() && !lines_.empty()) Write();
  if (path_ == "-") return true;  // whether it arrived is told at the end of the program
  FileHandle* file = file_;
  file_ = nullptr;
  if (!CloseFile(file) && problem_.empty()) problem_ = "cannot be written: " + LastError();
  if (problem_.empty() && !scratch_.path().empty()) {
    const std::string place = Resolved(path_);
    const bool put = (!sync || scratch_.Sync()) && scratch_.Become(place, true);
    if (!put) problem_ = "cannot be written: " + SystemError();
  }
  if (problem_.empty()) return true;
  Complain(path_, problem_);
  return false;
}

}  // namespace quorvex::tool
