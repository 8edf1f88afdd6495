#include "records/sample_scales.h"

#include <cfloat>

#include "settings/validation.h"

namespace quorvex {

// Documents show seven digits of these products: an intermediate result in a wider format would
// show in the last one.
static_assert(FLT_EVAL_METHOD == 0);

namespace {

constexpr double kVoltsPerStep = 10.0 / 65536;
constexpr double kAmperesPerStep = 5.0 / 65536;
constexpr float kUncalibrated = 1.0f;

// Where a channel's gains stand among the calibration constants: three voltage ranges each with
// earth before the neutral, then two current ranges each.
constexpr int kVoltageRanges = 3;
constexpr int kVoltageGainAt[kMeasuredChannels] = {0, 3, 6, 12};
constexpr int kCurrentGainAt[kMeasuredChannels] = {18, 20, 22, 24};

float VoltageGain(const UifParams& settings, int channel) {
  const auto range = static_cast<uint8_t>(settings.voltage_range);
  return range < kVoltageRanges ? settings.ee_konst[kVoltageGainAt[channel] + range]
                                : kUncalibrated;
}

float CurrentGain(const UifParams& settings, int clamp, uint8_t range) {
  if (range == 10) return settings.ee_konst[kCurrentGainAt[clamp]];
  if (range == 100) return settings.ee_konst[kCurrentGainAt[clamp] + 1];
  return kUncalibrated;
}

}  // namespace

float VoltageRatio(const UifParams& settings) {
  return static_cast<float>(static_cast<int32_t>(settings.voltage_ratio_prim)) /
         static_cast<float>(static_cast<int32_t>(settings.voltage_ratio_sec));
}

int ClampOf(const UifParams& settings, int channel) {
  constexpr uint8_t kLikePhase1 = 5;
  const bool like_phase1 = channel == kNeutral && settings.clamp[kNeutral].type == kLikePhase1 &&
                           settings.clamp[0].type != kLikePhase1;
  return like_phase1 ? 0 : channel;
}

float ThroughTransformer(const ClampParams& clamp, float scale) {
  if (clamp.trafo == 0) return scale;
  const float primary = static_cast<float>(static_cast<int32_t>(clamp.trafo_prim_i)) * scale;
  return primary / static_cast<float>(static_cast<int32_t>(clamp.trafo_sec_i));
}

float TimesWires(const ClampParams& clamp, float scale) {
  if (clamp.parallel_feeders == 0) return scale;
  return scale * static_cast<float>(static_cast<int32_t>(clamp.wires_num));
}

float VoltageSampleScale(const UifParams& settings, int channel) {
  float ratio = VoltageRatio(settings);
  // Without a transformer there is nothing that star or delta could change.
  if (ratio != 1.0f) ratio *= static_cast<float>(StarFactor(settings.trikot_star_factor_id));
  return static_cast<float>(static_cast<double>(ratio) * kVoltsPerStep *
                            static_cast<double>(VoltageGain(settings, channel)));
}

float CurrentSampleScale(const UifParams& settings, int channel, NeutralRange neutral_range) {
  const int used = ClampOf(settings, channel);
  const ClampParams& clamp = settings.clamp[used];
  const bool own = used == kNeutral && neutral_range == NeutralRange::kOwn;
  const uint32_t range = own ? settings.range_in : settings.range_i;
  const float scale = TimesWires(clamp, ThroughTransformer(clamp, clamp.a_na_v));
  return static_cast<float>(
      static_cast<double>(scale) * kAmperesPerStep *
      static_cast<double>(CurrentGain(settings, used, static_cast<uint8_t>(range))));
}

void SampleScales(const UifParams& settings, NeutralRange neutral_range,
                  float (&pairs)[2 * kMeasuredChannels]) {
  for (int channel = 0; channel < kMeasuredChannels; ++channel) {
    pairs[2 * channel] = VoltageSampleScale(settings, channel);
    pairs[2 * channel + 1] = CurrentSampleScale(settings, channel, neutral_range);
  }
}

}  // namespace quorvex
