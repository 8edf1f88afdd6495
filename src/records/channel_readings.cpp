// Types 3 and 14: lists of readings, each a voltage and a current of one channel.
#include "records/record_types.h"
#include "records/sample_scales.h"
#include "support/loads.h"
#include "xml/plan.h"

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

void WriteReadings(const Conversion& c) {
  const Plan plan(kReading, CaseOf(c.settings));
  float pairs[2 * kMeasuredChannels];
  SampleScales(c.settings, NeutralRange::kOwn, pairs);
  Inputs inputs;
  uint8_t reading[kReading.size];
  while (ReadBytes(c.input, reading, sizeof reading) == sizeof reading) {
    ChooseScales(reading, pairs, &inputs);
    plan.Render(c.document, reading, inputs);
    if (!ReportPosition(c)) return;
  }
}

constexpr char kAbout[] =
    "Each reading is a voltage and a current of one channel, scaled like the samples of a "
    "waveform; of unknown channels they stay raw. Scaling takes no notice of missing values, "
    "which then no longer read as such; only the current of a neutral without a clamp stays "
    "missing.";

}  // namespace

const RecordType kChannelReadings = {
    .type = 3,
    .name = "channel readings",
    .about = kAbout,
    .list = "RECORDS",
    .record = &kReading,
    .write = WriteReadings,
    .companion = true,
    .state = true,
    .progress = true,
};

const RecordType kMoreChannelReadings = {
    .type = 14,
    .name = "channel readings (second list)",
    .about = kAbout,
    .list = "RECORDS",
    .record = &kReading,
    .write = WriteReadings,
    .companion = true,
    .state = true,
    .progress = true,
};

}  // namespace quorvex
