// Finds out which recordings there are.
#pragma once

#include <string>
#include <vector>

namespace quorvex::tool {

std::string Inside(const std::string& folder, const std::string& name);

// Takes paths as they are; of folders, every .REC file below, in the order of names; for "-" what
// standard input brings, as a scratch file. No folder is walked twice and no file is there twice,
// whatever links lead to it. Folders without recordings and such as cannot be read are told on
// stderr, and give false.
bool GatherRecordings(const std::vector<std::string>& paths, std::vector<std::string>* recordings);

// Whether a name ends in ".REC", in any case.
bool IsRecordingName(const std::string& name);

// Split a path at its last separator. Where there is none, the folder is ".".
std::string FolderOf(const std::string& path);
std::string NameOnly(const std::string& path);

// Gives what is equal for two paths of the same file in the same folder, be there one or not.
std::string PathKey(const std::string& path);

}  // namespace quorvex::tool
