// Takes paths apart, and puts them together.
#pragma once

#include <string>
#include <vector>

namespace quorvex::tool {

std::string Inside(const std::string& folder, const std::string& name);

// Split a path at its last separator. Where there is none, the folder is ".".
std::string FolderOf(const std::string& path);
std::string NameOnly(const std::string& path);

// Takes the extension off a name or path; a name that begins with its only dot has none.
std::string WithoutExtension(const std::string& path);

// Whether a name ends in ".REC", in any case.
bool IsRecordingName(const std::string& name);

// Small letters where they are ASCII's, as file systems without a difference by case compare names.
std::string InSmallLetters(std::string text);

// The folders of a full path, and its last name: what stands between the separators. A drive's
// colon is not part of its name.
std::vector<std::string> PartsOf(const std::string& full);

// Says for each full path of a folder the least of its end that tells it from all others, by case
// too: "card1", "card2"; or "north/card", "south/card". Where there is one, nothing does.
std::vector<std::string> DistinctEnds(const std::vector<std::string>& folders);

}  // namespace quorvex::tool
