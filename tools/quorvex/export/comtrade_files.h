// Exports waveforms as COMTRADE: a .cfg and a .dat, or one .cff, for each record that has samples.
#pragma once

#include "exchange/comtrade.h"
#include "export/export.h"

namespace quorvex::tool {

// What was asked for, in words: "1999", "binary32".
struct ComtradeAsked {
  std::string revision, data;
  bool one_file = false;
};

// Empty, or why there is no such form.
std::string FormOf(const ComtradeAsked& asked, ComtradeForm* form);

// What the names of a recording's files have behind its stem: ".cfg"; "-2.cfg" where it has several
// records. Empty where it has no waveforms.
std::vector<std::string> ComtradeEndings(const std::string& path, const ReadOptions& read,
                                         const ComtradeForm& form);

// Jobs whose output is the folder and the stem of the files.
Work WritingComtrade(const ExportRequest& request, const ComtradeForm& form);

}  // namespace quorvex::tool
