// Which channels and waveforms a recording holds under each connection code, by their labels.
#pragma once

#include <cstddef>
#include <cstdint>

#include "records/sample_scales.h"

namespace quorvex {

// The channel that a label means, by the character behind its first: of a pair of phases the first
// phase, of everything that is no phase the neutral.
constexpr int ChannelOf(const char* label) {
  return label[1] >= '1' && label[1] <= '3' ? label[1] - '1' : kNeutral;
}

// Channels of a snapshot in stored order, up to the first null. Other codes have none.
struct ChannelMode {
  uint8_t connection;
  const char* labels[kMeasuredChannels];
};
inline constexpr ChannelMode kChannelModes[] = {
    {1, {"L1", "N"}},
    {2, {"L12", "L23", "L31"}},
    {3, {"L1", "L2", "L3", "N"}},
    {4, {"L12", "L23", "L31"}},
    {5, {"L1", "L2", "N"}},
    {6, {"L1", "INV"}},
    {7, {"L12", "L23", "L31", "INV"}},
};
inline constexpr ChannelMode kNoChannels = {0, {}};

// Waveforms by the slot of the channel in a capture, null for slots that are not used. A series
// stores the used ones only, in this order. Other codes are as the first row.
constexpr int kWaveformSlots = 4;
struct WaveformMode {
  uint8_t connection;
  const char* voltages[kWaveformSlots];
  const char* currents[kWaveformSlots];
};
inline constexpr WaveformMode kWaveformModes[] = {
    {1, {"u1", nullptr, nullptr, "un"}, {"i1", nullptr, nullptr, "in"}},
    {2, {"u12", "u23", "u31", nullptr}, {"i1", "i2", "i3", nullptr}},
    {3, {"u1", "u2", "u3", "un"}, {"i1", "i2", "i3", "in"}},
    {4, {"u12", "u23", "u31", nullptr}, {"i1", "i2", "i3", nullptr}},
    // The neutral's current moves up into the slot that phase 3 leaves free; its voltage does not.
    {5, {"u1", "u2", nullptr, "un"}, {"i1", "i2", "in", nullptr}},
    {6, {"u1", nullptr, nullptr, "uinv"}, {"i1", nullptr, nullptr, "iinv"}},
    {7, {"u12", "u23", "u31", "uinv"}, {"i1", "i2", "i3", "iinv"}},
};

template <typename Mode, size_t N>
constexpr const Mode& ModeOf(uint8_t connection, const Mode (&modes)[N], const Mode& other) {
  for (const Mode& mode : modes) {
    if (mode.connection == connection) return mode;
  }
  return other;
}
constexpr const ChannelMode& ChannelModeOf(uint8_t connection) {
  return ModeOf(connection, kChannelModes, kNoChannels);
}
constexpr const WaveformMode& WaveformModeOf(uint8_t connection) {
  return ModeOf(connection, kWaveformModes, kWaveformModes[0]);
}

}  // namespace quorvex
