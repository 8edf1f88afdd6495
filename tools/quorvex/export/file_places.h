// The folder that files of recordings are exported into, and their names there.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "shared/output_places.h"

namespace quorvex::tool {

// Whether files can go to this path: it is a folder, or nothing yet. Says so where not; `what` they
// are, in words.
bool TakesFiles(const std::string& folder, const char* what);

// Makes the folder where there is none; says why where that fails.
bool MakeFolder(const std::string& folder);

// Takes the places of all of a recording's files, or fails it.
class FilePlaces {
 public:
  // `what` a file is, in words.
  FilePlaces(const char* what, bool overwrite) : what_(what), places_(what, overwrite) {}

  // The job's output becomes the folder and the stem of its files, whose names `names_of` says for
  // that stem.
  void Take(const std::string& folder,
            const std::function<std::vector<std::string>(const std::string& stem)>& names_of,
            Job* job);

 private:
  std::string what_;
  OutputPlaces places_;
  std::map<std::string, std::string> stems_;
};

}  // namespace quorvex::tool
