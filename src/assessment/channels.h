// Which voltages a network is judged by.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "records/channels.h"

namespace quorvex {

// Phases, or pairs of lines where the wiring has no neutral.
inline std::vector<std::string> VoltageChannels(uint8_t connection) {
  const Cases which = CaseOf(connection, false);
  if ((which & kLineToLine) != 0) return {"u12", "u23", "u31"};
  std::vector<std::string> phases = {"u1"};
  if ((which & kPhase2) != 0) phases.emplace_back("u2");
  if ((which & kPhase3) != 0) phases.emplace_back("u3");
  return phases;
}
inline std::vector<std::string> CurrentChannels(uint8_t connection) {
  const Cases which = CaseOf(connection, false);
  std::vector<std::string> phases = {"i1"};
  if ((which & kCurrent2) != 0) phases.emplace_back("i2");
  if ((which & kCurrent3) != 0) phases.emplace_back("i3");
  if ((which & kNeutralWire) != 0) phases.emplace_back("in");
  return phases;
}

// Some documents name phases under wirings of pairs: "u1" stands in the place of "u12".
inline std::string PhaseInPlaceOf(const std::string& channel) {
  return channel.size() == 3 ? channel.substr(0, 2) : channel;
}

}  // namespace quorvex
