// Type 17: a series of waveform records, raw samples of every channel of the connection.
#include <iterator>

#include "records/channel_groups.h"
#include "records/channels.h"
#include "records/record_types.h"
#include "records/waveform_element.h"
#include "support/loads.h"
#include "support/memory.h"
#include "xml/plan.h"

namespace quorvex {
namespace {

constexpr uint32_t kWaveformRoom = 1500;

constexpr Field kRecordStart = Record("", kRecordStartSize, kRecordStartRows);
static_assert(Tiles<WrongByte(kRecordStart)>);

constexpr char kUsedSamples[] = "numUsedSamples";
constexpr Field kVoltageSamples[] = {
    ScaledI16("v", 0, 0, "sample", "V").Times(kWaveformRoom).CountInput(0, kUsedSamples),
};
constexpr Field kCurrentSamples[] = {
    ScaledI16("v", 0, 0, "sample", "A").Times(kWaveformRoom).CountInput(0, kUsedSamples),
};
constexpr Field kWaveform = Record("", kWaveformRoom * 2, kVoltageSamples);
static_assert(Tiles<WrongByte(kWaveform)>);

constexpr Field Voltage(const char* label, Cases in) {
  return Group("U", kVoltageSamples, "voltage waveform").Phase(label).In(in).Behind();
}
constexpr Field Current(const char* label, Cases in) {
  return Group("I", kCurrentSamples, "current waveform").Phase(label).In(in).Behind();
}
constexpr Field kVoltageRows[] = {
    Voltage("u1", kPhase1),      Voltage("u2", kPhase2),      Voltage("u3", kPhase3),
    Voltage("u12", kLineToLine), Voltage("u23", kLineToLine), Voltage("u31", kLineToLine),
    Voltage("un", kNeutralWire), Voltage("uinv", kInverter),
};
constexpr Field kCurrentRows[] = {
    Current("i1", kAllCases),    Current("i2", kCurrent2),   Current("i3", kCurrent3),
    Current("in", kNeutralWire), Current("iinv", kInverter),
};
constexpr Field kQuantities[] = {
    Group("VOLTAGES", kVoltageRows, "voltages of the connection"),
    Group("CURRENTS", kCurrentRows, "currents of the connection"),
};
constexpr Field kRecordRows[] = {
    Rows(0, kRecordStartRows),
    Rows(0, kQuantities),
};
constexpr Field kRecord =
    Record("RECORD_RESULTS", kRecordStartSize, kRecordRows, "a waveform record");

// Room for a record in which every waveform has a place of its own: in a file cut short one keeps
// the samples that it had in the record before.
struct SeriesRecord {
  uint8_t start[kRecordStartSize];
  uint8_t waveforms[std::size(kQuantities)][kMeasuredChannels][kWaveform.size];
};

// `scales` are of each channel's pair the one of this quantity.
void WriteQuantity(const Conversion& c, const Plan& plan, const Field& quantity,
                   uint8_t (&places)[kMeasuredChannels][kWaveform.size], const float* scales,
                   int32_t count) {
  OpenElement(c.document, quantity.name);
  for (uint32_t r = 0; r < quantity.row_count; ++r) {
    const Field& row = quantity.rows[r];
    if ((row.cases & CaseOf(c.settings)) == 0) continue;
    const int channel = ChannelOf(row.phase);
    ReadBytes(c.input, places[channel], kWaveform.size);
    Inputs inputs;
    inputs.number[0] = count;
    inputs.scale[0] = scales[2 * channel];
    OpenWaveform(c.document, row.name, row.phase);
    plan.Render(c.document, places[channel], inputs);
    CloseElement(c.document);
  }
  CloseElement(c.document);
}

void WriteSeries(const Conversion& c) {
  const Plan start_plan(kRecordStart, CaseOf(c.settings));
  const Plan waveform_plan(kWaveform, CaseOf(c.settings));
  float pairs[2 * kMeasuredChannels];
  SampleScales(c.settings, NeutralRange::kOwn, pairs);
  Tracked<SeriesRecord> record;
  while (ReadBytes(c.input, record->start, kRecordStartSize) == kRecordStartSize) {
    const auto used = Load<int32_t>(record->start + kUsedSamplesAt);
    OpenElement(c.document, kRecord.name);
    start_plan.Render(c.document, record->start);
    for (size_t q = 0; q < std::size(kQuantities); ++q) {
      WriteQuantity(c, waveform_plan, kQuantities[q], record->waveforms[q], pairs + q, used);
    }
    CloseElement(c.document);
    if (!ReportPosition(c)) return;
  }
}

}  // namespace

const RecordType kWaveformSeries = {
    .type = 17,
    .name = "waveform series",
    .about =
        "A record is its start and a waveform for each channel of the connection, one behind the "
        "other. Each has room for 1500 samples, of which the used ones are written. Samples are "
        "raw steps of the converter, written in volts and amperes: times the step of the range, "
        "its calibration and the ratios of the transformers.",
    .list = "RECORDS",
    .record = &kRecord,
    .write = WriteSeries,
    .companion = true,
    .state = true,
    .progress = true,
    .cut = {kRecordStartSize, kFilledFromBefore.rest},
};

}  // namespace quorvex
