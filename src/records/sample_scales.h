// What one step of a raw sample is worth, in volts and amperes.
#pragma once

#include <cstdint>

#include "settings/settings_record.h"

namespace quorvex {

// Phases 1 to 3, then the neutral, which on inverter connections is the inverter's input.
constexpr int kMeasuredChannels = 4;
constexpr int kNeutral = 3;

// The range byte that chooses the calibration of the neutral's own current. Snapshots take the
// range of the phases, everything else takes the neutral's.
enum class NeutralRange : uint8_t { kOfPhases, kOwn };

float VoltageSampleScale(const UifParams& settings, int channel);
float CurrentSampleScale(const UifParams& settings, int channel, NeutralRange neutral_range);

// Both of every channel, as scale pairs: 2c the voltage's, 2c + 1 the current's.
void SampleScales(const UifParams& settings, NeutralRange neutral_range,
                  float (&pairs)[2 * kMeasuredChannels]);

// Primary to secondary voltage of the transformer.
float VoltageRatio(const UifParams& settings);

// The clamp whose settings count for a channel: a neutral clamp of type 5 stands for phase 1's,
// unless that is one itself.
int ClampOf(const UifParams& settings, int channel);

// A current scale behind the clamp's transformer, and for its parallel wires.
float ThroughTransformer(const ClampParams& clamp, float scale);
float TimesWires(const ClampParams& clamp, float scale);

}  // namespace quorvex
