// A file that an export writes: beside its place first, in large pieces.
#pragma once

#include <functional>
#include <string>

#include "shared/jobs.h"
#include "support/file.h"

namespace quorvex::tool {

// Gathers text, and hands it on in large pieces.
class Writer {
 public:
  explicit Writer(FileHandle* file) : file_(file) { text_.reserve(2 * kPiece); }

  std::string* text() { return &text_; }
  // False where writing was given up; the job says why.
  bool WriteWhereFull() { return text_.size() < kPiece || Write(); }
  bool Write();

 private:
  static constexpr size_t kPiece = 1 << 18;

  FileHandle* file_;  // null: standard output
  std::string text_;
};

// The job's problem where writing was given up, unless it has one already.
void FailWriting(Job* job);

// Writes the job's output through `write`, which returns false where it gave up. It gets its name
// when it is complete. `what` it is, in words.
void WriteOutput(const char* what, bool overwrite, unsigned worker, Placed* placed, Job* job,
                 const std::function<bool(Writer*)>& write);

}  // namespace quorvex::tool
