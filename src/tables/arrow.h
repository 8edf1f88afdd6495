// Batches as the Arrow C data interface has them.
#pragma once

#include "quorvextables.h"
#include "tables/batch.h"

namespace quorvex {

// "i", "l", "f", "g", "u", "tsu:"; with `utc` "tsu:UTC".
const char* ArrowFormat(ValueType type, bool utc);

// A struct with a child a column. Both own what they point to, until their release.
void ExportSchema(const std::vector<const Column*>& columns, bool utc, ArrowSchema* to);
void ExportBatch(Batch batch, ArrowArray* to);

}  // namespace quorvex
