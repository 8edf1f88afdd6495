// Exports into an SQLite database: a table for each table of each kind of recordings, whose rows
// carry the recording's number in `recordings`.
#pragma once

#include "export/export.h"

namespace quorvex::tool {

// Whether a database can be written at all, and why not.
bool HasDatabases(std::string* problem);

// Jobs that put the rows of a recording into the database at `path`, in the place of those that it
// has there. A recording is known by its path below the folder that was given, with
// the name of that where several were. Where the database cannot be used there is no work, and a
// problem.
Work WritingDatabase(const std::string& path, const ExportRequest& request, std::string* problem);

}  // namespace quorvex::tool
