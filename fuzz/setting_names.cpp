// libFuzzer: names of setting files, in both forms.
#include <cstdlib>
#include <cstring>
#include <string>

#include "settings/setting_file.h"
#include "support/file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string path(reinterpret_cast<const char*>(data) + 1, size - 1);
  char name[quorvex::kMaxPath + 1];
  if (quorvex::BuildSettingFileName(path.c_str(), name, "PAR", data[0] % 20)) {
    if (std::strlen(name) > quorvex::kMaxPath) std::abort();
    if (std::strstr(name, "PAR") == nullptr) std::abort();
  }
  return 0;
}
