// make_samples FOLDER: writes one small recording (or a few) of every record type.
#include <cstdio>

#include "sample.h"

int main(int argc, char** argv) {
  using namespace quorvex::samples;
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_samples FOLDER\n");
    return 2;
  }
  MakeRapidVoltageChanges(argv[1]);
  MakeSessions(argv[1]);
  return 0;
}
