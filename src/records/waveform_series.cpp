// Type 17: a series of waveform records, raw samples of every channel of the connection.
#include "records/channel_groups.h"
#include "records/connection_modes.h"
#include "records/record_types.h"
#include "records/waveform_element.h"
#include "support/loads.h"
#include "support/memory.h"
#include "xml/plan.h"

namespace quorvex {
namespace {

constexpr uint32_t kWaveformRoom = 1500;

constexpr Field kRecordStart = Record("", kRecordStartSize, kRecordStartRows, "a waveform record");
static_assert(Tiles(kRecordStart));

constexpr Field kWaveformRows[] = {ScaledI16("v", 0, 0).Times(kWaveformRoom).CountInput(0)};
constexpr Field kWaveform = Record("", kWaveformRoom * 2, kWaveformRows, "a waveform");
static_assert(Tiles(kWaveform));

// Room for a record in which every waveform has a place of its own: in a file cut short one keeps
// the samples that it had in the record before.
struct SeriesRecord {
  uint8_t start[kRecordStartSize];
  uint8_t voltages[kWaveformSlots][kWaveform.size];
  uint8_t currents[kWaveformSlots][kWaveform.size];
};

struct Quantity {
  const char* group;
  const char* element;
  int scale;  // of a pair
};
constexpr Quantity kVoltages = {"VOLTAGES", "U", 0};
constexpr Quantity kCurrents = {"CURRENTS", "I", 1};

void WriteGroup(const Conversion& c, const Plan& plan, const Quantity& quantity,
                const char* const (&labels)[kWaveformSlots],
                uint8_t (&places)[kWaveformSlots][kWaveform.size], const float* pairs,
                int32_t count) {
  OpenElement(c.document, quantity.group);
  for (int slot = 0; slot < kWaveformSlots; ++slot) {
    if (labels[slot] == nullptr) continue;
    ReadBytes(c.input, places[slot], kWaveform.size);
    RenderInputs inputs;
    inputs.number[0] = count;
    inputs.scale[0] = pairs[2 * ChannelOf(labels[slot]) + quantity.scale];
    OpenWaveform(c.document, quantity.element, labels[slot]);
    plan.Render(c.document, places[slot], inputs);
    CloseElement(c.document);
  }
  CloseElement(c.document);
}

void WriteSeries(const Conversion& c) {
  const Plan start_plan(kRecordStart, CaseOf(c.settings));
  const Plan waveform_plan(kWaveform, CaseOf(c.settings));
  const WaveformMode& mode = WaveformModeOf(c.settings.connection);
  float pairs[2 * kMeasuredChannels];
  SampleScales(c.settings, NeutralRange::kOwn, pairs);
  Tracked<SeriesRecord> record;
  while (ReadBytes(c.input, record->start, kRecordStartSize) == kRecordStartSize) {
    const auto used = Load<int32_t>(record->start + kUsedSamplesAt);
    OpenElement(c.document, "RECORD_RESULTS");
    start_plan.Render(c.document, record->start);
    WriteGroup(c, waveform_plan, kVoltages, mode.voltages, record->voltages, pairs, used);
    WriteGroup(c, waveform_plan, kCurrents, mode.currents, record->currents, pairs, used);
    CloseElement(c.document);
    if (!ReportPosition(c)) return;
  }
}

}  // namespace

const RecordType kWaveformSeries = {
    .type = 17,
    .name = "waveform series",
    .list = "RECORDS",
    .record = &kRecordStart,
    .write = WriteSeries,
    .companion = true,
    .state = true,
    .progress = true,
};

}  // namespace quorvex
