// Type 5: one capture of voltages and currents, as long as the memory of the instrument allows.
#include <algorithm>

#include "records/channels.h"
#include "records/record_types.h"
#include "records/waveform_element.h"
#include "support/memory.h"
#include "xml/plan.h"

namespace quorvex {
namespace {

// A capture is read and written in pieces, so its length does not matter to memory.
constexpr uint32_t kPieceSamples = 4096;
constexpr uint32_t kSampleSize = 4;
constexpr char kLength[] = "TRANSIENTS_RECORD_PARAMS/NUM";
constexpr Field kVoltageSamples[] = {
    ScaledF32("v", 0, 0, "sample", "V").Times(kPieceSamples).CountInput(0, kLength).InPieces(),
};
constexpr Field kCurrentSamples[] = {
    ScaledF32("v", 0, 0, "sample", "A").Times(kPieceSamples).CountInput(0, kLength).InPieces(),
};
constexpr Field kPiece = Record("", kPieceSamples* kSampleSize, kVoltageSamples);
static_assert(Tiles<WrongByte(kPiece)>);

constexpr Field Voltage(const char* label, Cases in) {
  return Group("U", kVoltageSamples, "voltage waveform").Phase(label).In(in).Behind();
}
constexpr Field Current(const char* label, Cases in) {
  return Group("I", kCurrentSamples, "current waveform").Phase(label).In(in).Behind();
}
constexpr Field FreeSlot(Cases in) {
  return Gap(0, kSampleSize).Times(kPieceSamples).CountInput(0, kLength).InPieces().In(in).Behind();
}
constexpr Field kVoltageSlots[] = {
    Voltage("u1", kPhase1),
    Voltage("u12", kLineToLine),
    Voltage("u2", kPhase2),
    Voltage("u23", kLineToLine),
    FreeSlot(NotConnections({2, 3, 4, 5, 7})),
    Voltage("u3", kPhase3),
    Voltage("u31", kLineToLine),
    FreeSlot(NotConnections({2, 3, 4, 7})),
    Voltage("un", kNeutralWire),
    Voltage("uinv", kInverter),
    FreeSlot(Connections({2, 4})),
};
constexpr Cases kTwoPhases = Connections({5});
constexpr Field kCurrentSlots[] = {
    Current("i1", kAllCases),
    Current("i2", kCurrent2),
    FreeSlot(NotConnections({2, 3, 4, 5, 7})),
    Current("i3", kCurrent3),
    Current("in", kTwoPhases),
    FreeSlot(NotConnections({2, 3, 4, 5, 7})),
    Current("in", static_cast<Cases>(kNeutralWire & ~kTwoPhases)),
    Current("iinv", kInverter),
    FreeSlot(Connections({2, 4, 5})),
};
constexpr int kSlots = 4;
template <size_t N>
constexpr bool FillEverySlot(const Field (&rows)[N]) {
  for (unsigned which = 0; which < 16; ++which) {
    int slots = 0;
    for (const Field& row : rows) slots += row.cases >> which & 1;
    if (slots != kSlots) return false;
  }
  return true;
}
static_assert(FillEverySlot(kVoltageSlots) && FillEverySlot(kCurrentSlots));

constexpr Field kCaptureRows[] = {
    Group("VOLTAGES", kVoltageSlots, "voltages of the connection"),
    Group("CURRENTS", kCurrentSlots, "currents of the connection"),
};
constexpr Field kRecord = Record("RECORD_RESULTS", 0, kCaptureRows, "the capture");

struct Capture {
  const Conversion& c;
  const Plan& plan;
  uint64_t waveform_size;  // bytes
  uint8_t* piece;
  uint64_t read_from[2 * kSlots];  // where the waveforms so far stand in the file
  int read_count;
};

// Reads bytes `from` to `from + size` of the newest waveform. Where the file ends before, the
// instrument's own buffer would still hold the waveform before, whose bytes are in the file.
void ReadPiece(Capture* capture, uint64_t from, uint32_t size) {
  uint32_t got = 0;
  for (int i = capture->read_count - 1; i >= 0 && got < size; --i) {
    if (!SeekTo(capture->c.input, capture->read_from[i] + from + got)) continue;
    got += ReadBytes(capture->c.input, capture->piece + got, size - got);
  }
  std::fill(capture->piece + got, capture->piece + size, uint8_t{0});
}

// Captured samples are floats, calibrated by the instrument: what is left is the transformers. The
// star or delta factor counts here even without a voltage transformer.
float CaptureVoltageScale(const UifParams& settings) {
  return VoltageRatio(settings) * RatioKindFactor(settings);
}

// Current samples are in thousandths. Clamps of type 2 know no multiplier.
float CaptureCurrentScale(const UifParams& settings, int channel) {
  constexpr uint8_t kNoMultiplier = 2;
  const ClampParams& clamp = settings.clamp[ClampOf(settings, channel)];
  const float scale = ThroughTransformer(clamp, clamp.a_na_v / 1000.0f);
  return clamp.type == kNoMultiplier ? scale : TimesWires(clamp, scale);
}

// The selection of neutral or earth also decides whether a delta's voltages go by their phase.
const char* VoltageLabel(const UifParams& settings, const char* label) {
  static constexpr const char* kPhases[] = {"u1", "u2", "u3"};
  const bool delta = settings.connection == 2 || settings.connection == 4;
  const bool by_phase = static_cast<uint8_t>(settings.transients.select_n_gnd) == 1;
  const int channel = ChannelOf(label);
  return delta && by_phase && channel < kNeutral ? kPhases[channel] : label;
}

void WriteWaveform(Capture* capture, const Field& row, int slot) {
  XmlWriter* document = capture->c.document;
  const UifParams& settings = capture->c.settings;
  const bool voltage = row.rows == kVoltageSamples;
  const char* label = voltage ? VoltageLabel(settings, row.phase) : row.phase;
  const float scale =
      voltage ? CaptureVoltageScale(settings) : CaptureCurrentScale(settings, ChannelOf(row.phase));
  capture->read_from[capture->read_count++] =
      kHeadSize + static_cast<uint64_t>(slot) * capture->waveform_size;
  OpenWaveform(document, row.name, label);
  for (uint64_t from = 0; from < capture->waveform_size; from += kPiece.size) {
    const auto size =
        static_cast<uint32_t>(std::min<uint64_t>(kPiece.size, capture->waveform_size - from));
    ReadPiece(capture, from, size);
    Inputs inputs;
    inputs.number[0] = static_cast<int32_t>(size / kSampleSize);
    inputs.scale[0] = scale;
    capture->plan.Render(document, capture->piece, inputs);
  }
  CloseElement(document);
}

// More samples than the file has bytes are no length but damage.
uint64_t SamplesOf(const Conversion& c) {
  const auto samples = static_cast<int32_t>(c.settings.transients.num);
  if (samples < 0 || static_cast<uint64_t>(samples) > c.whole_size) return 0;
  return static_cast<uint64_t>(samples);
}

void WriteCapture(const Conversion& c) {
  const Plan plan(kPiece, CaseOf(c.settings));
  Tracked<uint8_t> piece(kPiece.size);
  Capture capture = {c, plan, SamplesOf(c) * kSampleSize, piece.get(), {}, 0};
  OpenElement(c.document, kRecord.name);
  int slot = 0;
  for (const Field& quantity : kCaptureRows) {
    OpenElement(c.document, quantity.name);
    for (uint32_t r = 0; r < quantity.row_count; ++r) {
      const Field& row = quantity.rows[r];
      if ((row.cases & CaseOf(c.settings)) == 0) continue;
      if (row.kind != Kind::kGap) WriteWaveform(&capture, row, slot);
      ++slot;
    }
    CloseElement(c.document);
  }
  CloseElement(c.document);
}

}  // namespace

const RecordType kWaveformCapture = {
    .type = 5,
    .name = "waveform capture",
    .about =
        "Eight slots of samples, four of voltages and four of currents, each of as many samples "
        "as `NUM` of `TRANSIENTS_RECORD_PARAMS` says, in use or not. Samples are floats, scaled "
        "by the transformer ratios of the settings. Where `SELECT_N_GND` is 1, the voltages of "
        "connections 2 and 4 are named u1, u2 and u3. With two phases the current of the "
        "neutral moves up into the slot that phase 3 leaves free; its voltage does not.",
    .list = "RECORDS",
    .record = &kRecord,
    .write = WriteCapture,
    .companion = true,
    .state = true,
    .once = true,
    .cut = {0, "what it lacks is left over from the waveform before (zeros in the first)"},
};

}  // namespace quorvex
