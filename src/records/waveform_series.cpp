// Type 17: a series of waveform records, raw samples of every channel of the connection.
#include <iterator>

#include "records/channel_groups.h"
#include "records/channels.h"
#include "records/record_types.h"
#include "records/walk.h"
#include "settings/codes.h"
#include "support/loads.h"
#include "support/memory.h"

namespace quorvex {
namespace {

constexpr uint32_t kWaveformRoom = 1500;

constexpr Field kRecordStart =
    Record("", kRecordStartSize, kRecordStartRows<kUsedSamplesAt, kWaveformRoom>);
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
    kRecordStart,
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
void TellQuantity(Walk* w, const Field& quantity,
                  uint8_t (&places)[kMeasuredChannels][kWaveform.size], const float* scales,
                  int32_t count) {
  w->listener->BeginGroup(quantity, nullptr);
  for (uint32_t r = 0; r < quantity.row_count; ++r) {
    const Field& row = quantity.rows[r];
    if ((row.cases & w->which) == 0) continue;
    const int channel = ChannelOf(row.phase);
    const uint64_t at = w->position;
    const uint32_t got = Read(w, places[channel], kWaveform.size);
    Inputs inputs;
    inputs.number[0] = count;
    inputs.scale[0] = scales[2 * channel];
    w->listener->BeginGroup(row, row.phase);
    Tell(w, kWaveform, places[channel], at, got, inputs);
    w->listener->EndGroup();
  }
  w->listener->EndGroup();
}

uint64_t SizeOfRecord(const UifParams& settings) {
  const Cases which = CaseOf(settings);
  return kRecordStartSize +
         uint64_t{RowsIn(kVoltageRows, which) + RowsIn(kCurrentRows, which)} * kWaveform.size;
}

void WalkSeries(Walk* w) {
  float pairs[2 * kMeasuredChannels];
  SampleScales(w->settings, NeutralRange::kOwn, pairs);
  const uint64_t size = SizeOfRecord(w->settings);
  Tracked<SeriesRecord> record;
  for (;;) {
    BeginRecord(w);
    const uint32_t got = Read(w, record->start, kRecordStartSize);
    if (got != kRecordStartSize) {
      LeaveOut(w, size);
      return;
    }
    const auto used = Load<int32_t>(record->start + kUsedSamplesAt);
    w->listener->BeginGroup(kRecord, nullptr);
    Tell(w, kRecordStart, record->start, w->record_at, got);
    for (size_t q = 0; q < std::size(kQuantities); ++q) {
      TellQuantity(w, kQuantities[q], record->waveforms[q], pairs + q, used);
    }
    w->listener->EndGroup();
    if (!EndRecord(w, size) || !ReportPosition(*w)) return;
  }
}

#define AT(member) offsetof(UifParams, transients.member)
constexpr InfoField kInfo[] = {
    {"start", InfoForm::kTime, AT(start_time)},
    {"end", InfoForm::kTime, AT(end_time)},
    {"trigger", InfoForm::kTrigger, AT(trigger)},
    {"level", InfoForm::kVolts, AT(level), {}, 0, AT(trigger), TriggerSet({kTriggerEnvelope})},
    {"duration", InfoForm::kPeriods, AT(duration)},
    {"pretrigger", InfoForm::kPeriods, AT(pretrigger)},
};
#undef AT

}  // namespace

const RecordType kWaveformSeries = {
    .type = 17,
    .word = "series",
    .name = "waveform series",
    .about =
        "A record is its start and a waveform for each channel of the connection, one behind the "
        "other. Each has room for 1500 samples, of which the used ones are written. Samples are "
        "raw steps of the converter, written in volts and amperes: times the step of the range, "
        "its calibration and the ratios of the transformers.",
    .list = "RECORDS",
    .record = &kRecord,
    .walk = WalkSeries,
    .companion = true,
    .state = true,
    .progress = true,
    .cut = {kRecordStartSize, kFilledFromBefore.rest},
    .size = SizeOfRecord,
    .line = kInfo,
};

}  // namespace quorvex
