// make_samples FOLDER: writes one small recording (or a few) of every record type.
#include <cstdio>

#include "sample.h"

int main(int argc, char** argv) {
  using namespace quorvex::samples;
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_samples FOLDER\n");
    return 2;
  }
  MakeGeneral(argv[1]);
  MakeVoltageQuality(argv[1]);
  MakeSettingsOnly(argv[1]);
  MakeAverages(argv[1]);
  MakeRapidVoltageChanges(argv[1]);
  MakeSessions(argv[1]);
  return 0;
}
