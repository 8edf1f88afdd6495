// Which channels and waveforms a recording holds under each connection code, by their labels.
#pragma once

#include "records/sample_scales.h"
#include "settings/cases.h"

namespace quorvex {

// The channel that a label means, by the character behind its first: of a pair of phases the first
// phase, of everything that is no phase the neutral.
constexpr int ChannelOf(const char* label) {
  return label[1] >= '1' && label[1] <= '3' ? label[1] - '1' : kNeutral;
}

// By connection code: 2, 4 and 7 have line-to-line voltages, 6 and 7 an inverter in the place of
// the neutral, 5 two phases, 3 three; other codes are as 1, a phase and the neutral.
constexpr Cases kLineToLine = Connections({2, 4, 7});
constexpr Cases kPhase1 = NotConnections({2, 4, 7});
constexpr Cases kPhase2 = Connections({3, 5});
constexpr Cases kPhase3 = Connections({3});
constexpr Cases kInverter = Connections({6, 7});
constexpr Cases kNeutralWire = NotConnections({2, 4, 6, 7});
constexpr Cases kCurrent2 = kPhase2 | kLineToLine;
constexpr Cases kCurrent3 = kPhase3 | kLineToLine;

}  // namespace quorvex
