// Jobs that convert recordings into documents.
#pragma once

#include "shared/jobs.h"
#include "shared/output_places.h"

namespace quorvex::tool {

struct ConversionAsked {
  Placing placing;
  bool check = true;       // recordings are checked, and what is found is told
  bool checksum = false;   // of the documents, of those too that stay as they are
  bool leave = false;      // that a document is there by now is no failure
  bool unchanged = false;  // a recording that changes meanwhile has no document
};

Work Converting(const ConversionAsked& asked);

// Whether the document of a job is there, and more than two seconds younger than the recording and
// its setting file: some cards keep times no better. Sets the job's size.
bool IsCurrent(Job* job);

}  // namespace quorvex::tool
