// Which recordings there are.
#pragma once

#include <string>
#include <vector>

namespace quorvex::tool {

std::string Inside(const std::string& folder, const std::string& name);

// Paths as they are; of folders, every .REC file below, in the order of names; "-" is standard
// input, as a scratch file. No folder is walked twice and no file is there twice, whatever links
// lead to it. Folders without recordings and such as cannot be read are told on stderr, and give
// false.
bool GatherRecordings(const std::vector<std::string>& paths, std::vector<std::string>* recordings);

// Whether a name ends in ".REC", in any case.
bool IsRecordingName(const std::string& name);

// The part of a path up to its last separator; "." where there is none.
std::string FolderOf(const std::string& path);
std::string NameOnly(const std::string& path);

// What is equal for two paths of the same file in the same folder, whether there is one or not.
std::string PathKey(const std::string& path);

}  // namespace quorvex::tool
