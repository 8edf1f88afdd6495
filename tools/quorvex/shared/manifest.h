// A manifest says what became of every recording of a run: a line of JSON for each.
#pragma once

#include <string>

#include "shared/jobs.h"
#include "shared/scratch.h"
#include "support/file.h"

namespace quorvex::tool {

class Manifest {
 public:
  // "-" is standard output; an empty path is no manifest.
  explicit Manifest(const std::string& path) : path_(path) {}
  ~Manifest();
  Manifest(const Manifest&) = delete;
  Manifest& operator=(const Manifest&) = delete;

  bool IsWanted() const { return !path_.empty(); }
  // False where it cannot be written, which is told.
  bool Begin();
  // What cannot be written is told at the end. A full disk is waited for.
  void Add(const Job& job);
  // The file gets its name. False where not all of it is there, which is told.
  bool End(bool sync);

 private:
  std::string path_;
  Scratch scratch_{kManifestSlot};
  FileHandle* file_ = nullptr;
  std::string lines_;
  std::string problem_;

  void Write();
};

}  // namespace quorvex::tool
