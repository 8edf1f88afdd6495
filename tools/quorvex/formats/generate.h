// Texts made from the layout tables.
#pragma once

#include <string>

#include "records/recording.h"

namespace quorvex::tool {

// docs/tables.md: which tables each record type gives.
std::string TablesReference();

// XML Schema 1.0 of the documents.
std::string SchemaOf(const RecordType& type);
std::string SchemaOfAnyType();

// The format reference, as Markdown.
std::string FormatReference();

// A module of the Python package: how the records of every type lie in their files.
std::string PythonFormats();

}  // namespace quorvex::tool
