// Exports recordings into one PQDIF file, and further ones where it would become too large.
#pragma once

#include <string>
#include <vector>

#include "exchange/pqdif_records.h"
#include "shared/progress.h"
#include "shared/system.h"
#include "tables/cursor.h"

namespace quorvex::tool {

struct PqdifRequest {
  std::string output;
  ReadOptions read;
  bool plain = false;  // not compressed
  bool overwrite = false, quiet = false;
  uint64_t largest = pqdif::kLargestFile;
};

ExitCode ExportPqdif(const PqdifRequest& request, const std::vector<std::string>& recordings,
                     Progress* progress);

}  // namespace quorvex::tool
