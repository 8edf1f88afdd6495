// Which channels and waveforms a recording holds under each connection code, by their labels.
#pragma once

#include "records/sample_scales.h"
#include "settings/cases.h"

namespace quorvex {

// The channel that a label means. The second character decides: a pair of phases means its first
// phase, and what is no phase means the neutral.
constexpr int ChannelOf(const char* label) {
  return label[1] >= '1' && label[1] <= '3' ? label[1] - '1' : kNeutral;
}

// Connections 2, 4 and 7 have line-to-line voltages. 6 and 7 have an inverter in the place of the
// neutral, 5 has two phases, 3 has three. Other codes are like 1: a phase and the neutral.
constexpr Cases kLineToLine = Connections({2, 4, 7});
constexpr Cases kPhase1 = NotConnections({2, 4, 7});
constexpr Cases kPhase2 = Connections({3, 5});
constexpr Cases kPhase3 = Connections({3});
constexpr Cases kInverter = Connections({6, 7});
constexpr Cases kNeutralWire = NotConnections({2, 4, 6, 7});
constexpr Cases kCurrent2 = kPhase2 | kLineToLine;
constexpr Cases kCurrent3 = kPhase3 | kLineToLine;

}  // namespace quorvex
