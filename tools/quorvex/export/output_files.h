// Files that exports write into a folder: their places, and how they get there.
#pragma once

#include <functional>
#include <string>

#include "shared/output_places.h"
#include "support/file.h"

namespace quorvex::tool {

// Whether files can go to this path: it is a folder, or nothing yet. Says so where not; `what` they
// are, in words.
bool TakesFiles(const std::string& folder, const char* what);

// Makes the folder where there is none; says why where that fails.
bool MakeFolder(const std::string& folder);

// Takes the places of all of a recording's files, or fails it.
class FilePlaces {
 public:
  // `what` a file is, in words. They go below `folder`, where folders are mirrored.
  FilePlaces(const char* what, const std::string& folder, bool overwrite)
      : what_(what), folder_(folder), places_(what, overwrite, true) {}

  // The job's names are those of the files behind its stem. Its output becomes the folder and the
  // stem.
  void Take(Job* job);

 private:
  std::string what_, folder_;
  OutputPlaces places_;
};

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
void WriteOutput(const char* what, bool overwrite, unsigned worker, Job* job,
                 const std::function<bool(Writer*)>& write);

}  // namespace quorvex::tool
