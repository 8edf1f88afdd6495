// The commands of the command line. Each explains itself on stderr and returns its exit code.
#pragma once

#include <string>

namespace quorvex::tool {

struct ConvertOptions {
  std::string input;
  std::string output;   // empty: beside the input
  std::string records;  // "A-B", empty for all
};
int Convert(const ConvertOptions& options);

// `raw` prints the record information line as the library gives it.
int Info(const std::string& path, bool raw);
int Count(const std::string& path);
int Version();

}  // namespace quorvex::tool
