// The commands of the command line. Each explains itself on stderr and returns its exit code.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quorvex::tool {

struct ConvertOptions {
  std::vector<std::string> inputs;  // recordings, and folders of them
  std::string output;               // empty: beside each recording; a folder for several
  std::string records;              // "A-B", "A-" or "A", empty for all
  unsigned jobs = 0;                // side by side; 0: as many as there are cores
  bool quiet = false;               // failures only: no findings, no summary
  bool overwrite = false;           // documents that exist already are replaced
  bool no_clobber = false;          // ... are left alone, which is no failure then
};
int Convert(const ConvertOptions& options);

struct InfoOptions {
  std::vector<std::string> inputs;
  bool raw = false;  // the record information lines as the library gives them
  bool json = false;
};
int Info(const InfoOptions& options);

struct CheckOptions {
  std::vector<std::string> inputs;
  bool json = false;
};
int Check(const CheckOptions& options);

int Count(const std::string& path);

// "quorvex 3.7.44 (library 3744)"
std::string VersionText();
int Version();

// The schema of one type's documents, of any type's for 0; the format reference. On stdout.
int PrintSchema(uint32_t type);
int PrintFormats(bool python);

}  // namespace quorvex::tool
