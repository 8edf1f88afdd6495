// make_samples FOLDER: writes one small recording (or a few) of every record type.
#include <cstdio>

#include "sample.h"

int main(int argc, char** argv) {
  using namespace quorvex::samples;
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_samples FOLDER\n");
    return 2;
  }
  MakeAlarms(argv[1]);
  MakeVoltageEvents(argv[1]);
  MakeSignalling(argv[1]);
  MakeRapidVoltageChanges(argv[1]);
  MakeTransients(argv[1]);
  MakeInrush(argv[1]);
  MakeSessions(argv[1]);
  MakeEnergyMeter(argv[1]);
  return 0;
}
