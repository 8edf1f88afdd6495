// Rows as comma-separated values (RFC 4180): a header line, CR LF, "." as the decimal point. What
// is missing is an empty field, an empty text "". Floats are the shortest text that reads back as
// the same float.
#pragma once

#include <string>

#include "tables/batch.h"

namespace quorvex {

void AppendCsvHeader(const Batch& batch, std::string* to);
void AppendCsvRows(const Batch& batch, bool utc, std::string* to);
// A field, in quotes where it needs them.
void AppendCsvText(const std::string& text, std::string* to);

}  // namespace quorvex
