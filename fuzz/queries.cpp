// libFuzzer: the record information line and the other queries, which look at heads only.
#include <cstdio>
#include <cstdlib>

#include "checks.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string problem = quorvex::fuzz::QueryProblem({data, data + size});
  if (problem.empty()) return 0;
  std::fprintf(stderr, "%s\n", problem.c_str());
  std::abort();
}
