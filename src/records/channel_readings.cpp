// Types 3 and 14: lists of readings, each a voltage and a current of one channel.
#include "records/record_types.h"
#include "records/sample_scales.h"
#include "records/walk.h"
#include "settings/codes.h"
#include "support/loads.h"

namespace quorvex {
namespace {

constexpr uint32_t kChannelAt = 16;
constexpr uint32_t kCurrentAt = 24;

constexpr Field kReadingRows[] = {
    DateTime("timeEnd", 0, "end of the interval"),
    U8("type", kChannelAt, "channel: 1 to 3 the phases, 4 the neutral"),
    ScaledF32("U", 20, 0, "voltage", "V"),
    ScaledF32("I", kCurrentAt, 1, "current", "A"),
    Gap(17, 3),
    Gap(28, 4),
};
constexpr Field kReading = Record("RECORD_RESULTS", 32, kReadingRows, "a reading");
static_assert(Tiles<WrongByte(kReading)>);

// Readings of unknown channels stay raw. Scaling takes no notice of missing values, which then no
// longer read as such; only the neutral's current, missing where it has no clamp, stays missing.
void ChooseScales(const uint8_t* reading, const float* pairs, Inputs* inputs) {
  const int channel = reading[kChannelAt] - 1;
  const bool known = channel >= 0 && channel < kMeasuredChannels;
  const bool missing = channel == kNeutral && Load<float>(reading + kCurrentAt) == kNoValue;
  inputs->scale[0] = known ? pairs[2 * channel] : 1.0f;
  inputs->scale[1] = known && !missing ? pairs[2 * channel + 1] : 1.0f;
}

void WalkReadings(Walk* w) {
  float pairs[2 * kMeasuredChannels];
  SampleScales(w->settings, NeutralRange::kOwn, pairs);
  Inputs inputs;
  uint8_t reading[kReading.size];
  while (ReadWhole(w, reading)) {
    ChooseScales(reading, pairs, &inputs);
    if (!TellRecord(w, reading, inputs) || !ReportPosition(*w)) return;
  }
}

// The instrument keeps two lists of readings, in one format. The second comes with an inrush
// recording, whose parameters its information line shows.
constexpr RecordType Readings(uint32_t type, const char* word, const char* name,
                              const InfoLine& line) {
  return {
      .type = type,
      .word = word,
      .name = name,
      .about =
          "Each reading is a voltage and a current of one channel, scaled like the samples of a "
          "waveform; of unknown channels they stay raw. Scaling takes no notice of missing "
          "values, which then no longer read as such; only the current of a neutral without a "
          "clamp stays missing.",
      .list = "RECORDS",
      .record = &kReading,
      .walk = WalkReadings,
      .companion = true,
      .state = true,
      .progress = true,
      .line = line,
  };
}

#define AT(member) offsetof(UifParams, inrush.member)
constexpr InfoField kInrushInfo[] = {
    {"start", InfoForm::kTime, AT(start_time)},
    {"end", InfoForm::kTime, AT(end_time)},
    {"level", InfoForm::kLevel, AT(level), {}, kTriggerLevelI},
    {"slope", InfoForm::kSlope, AT(slope)},
    {"duration", InfoForm::kDuration, AT(duration)},
    {"pretrigger", InfoForm::kDuration, AT(pretrigger)},
    {"mark", InfoForm::kNumber, offsetof(UifParams, rand_mark)},
};
#undef AT

}  // namespace

constinit const RecordType kChannelReadings = Readings(3, "readings", "channel readings", {});
constinit const RecordType kMoreChannelReadings =
    Readings(14, "readings_2", "channel readings (second list)", kInrushInfo);

}  // namespace quorvex
