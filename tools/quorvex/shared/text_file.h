// Small files of text, as a whole.
#pragma once

#include <string>

namespace quorvex::tool {

// False where it cannot be read: LastError(). `text` is what could be, then.
bool ReadText(const std::string& path, std::string* text);

// All of standard input.
bool ReadInput(std::string* text);

// Gives a text its place, all at once: it is written beside it first, as the first worker's scratch
// file; no jobs may be under way. The reason where that fails; empty where it does not.
std::string PutText(const std::string& text, const std::string& folder, const std::string& path,
                    bool replace);

}  // namespace quorvex::tool
