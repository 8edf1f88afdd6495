// What recordings hold sample by sample: waveforms with their phasors, the half-cycles around a
// change, the levels of a telegram.
#pragma once

#include <string>
#include <vector>

#include "report/card.h"
#include "report/charts.h"

namespace quorvex::tool {

struct Phasor {
  std::string label;
  const char* unit;
  double size, angle;  // of the fundamental; degrees
};

struct Wave {
  size_t recording;
  uint64_t record;
  int64_t time = kNoTime;
  Figure figure;
  Figure phasors_figure = {};  // without an id where there are none
  std::vector<Phasor> phasors = {};
};

struct Waves {
  std::vector<Wave> waveforms, changes, telegrams;
  uint64_t more_waveforms = 0, more_changes = 0, more_telegrams = 0;  // that a page has no room for
};

Waves AddWaves(const Card& card, const ReportRequest& request, Charts* charts);

}  // namespace quorvex::tool
