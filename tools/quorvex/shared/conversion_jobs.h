// Jobs that convert recordings into documents.
#pragma once

#include "shared/jobs.h"

namespace quorvex::tool {

// How documents are put in their places.
struct Placing {
  bool overwrite = false;  // a document that is there already is replaced
  bool check = true;       // recordings are checked, and what is found is told
};

Work Converting(const Placing& placing);

}  // namespace quorvex::tool
