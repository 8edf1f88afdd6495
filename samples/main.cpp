// make_samples FOLDER: writes one small recording (or a few) of every record type.
// make_samples --week FOLDER: writes the card of one week.
#include <cstdio>
#include <string_view>

#include "sample.h"

int main(int argc, char** argv) {
  const bool week = argc == 3 && std::string_view(argv[1]) == "--week";
  if (argc != 2 && !week) {
    std::fprintf(stderr, "usage: make_samples [--week] FOLDER\n");
    return 2;
  }
  if (week) {
    quorvex::samples::MakeWeek(argv[2]);
  } else {
    quorvex::samples::MakeAll(argv[1]);
  }
  return 0;
}
