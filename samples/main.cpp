// make_samples FOLDER: writes one small recording (or a few) of every record type.
#include <cstdio>

#include "sample.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_samples FOLDER\n");
    return 2;
  }
  quorvex::samples::MakeAll(argv[1]);
  return 0;
}
