// Type 5: one capture of voltages and currents, as long as the memory of the instrument allows.
#include <algorithm>

#include "records/connection_modes.h"
#include "records/record_types.h"
#include "records/waveform_element.h"
#include "support/memory.h"
#include "xml/plan.h"

namespace quorvex {
namespace {

// A capture is read and written in pieces, so its length does not matter to memory.
constexpr uint32_t kPieceSamples = 4096;
constexpr uint32_t kSampleSize = 4;
constexpr Field kPieceRows[] = {ScaledF32("v", 0, 0).Times(kPieceSamples).CountInput(0)};
constexpr Field kPiece = Record("", kPieceSamples* kSampleSize, kPieceRows);
static_assert(Tiles(kPiece));

struct Capture {
  const Conversion& c;
  const Plan& plan;
  uint64_t waveform_size;  // bytes
  uint8_t* piece;
  uint64_t read_from[2 * kWaveformSlots];  // where the waveforms so far stand in the file
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

void WriteWaveform(Capture* capture, const char* name, const char* label, int slot, float scale) {
  XmlWriter* document = capture->c.document;
  capture->read_from[capture->read_count++] =
      kHeadSize + static_cast<uint64_t>(slot) * capture->waveform_size;
  OpenWaveform(document, name, label);
  for (uint64_t from = 0; from < capture->waveform_size; from += kPiece.size) {
    const auto size =
        static_cast<uint32_t>(std::min<uint64_t>(kPiece.size, capture->waveform_size - from));
    ReadPiece(capture, from, size);
    RenderInputs inputs;
    inputs.number[0] = static_cast<int32_t>(size / kSampleSize);
    inputs.scale[0] = scale;
    capture->plan.Render(document, capture->piece, inputs);
  }
  CloseElement(document);
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
  return delta && by_phase ? kPhases[ChannelOf(label)] : label;
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
  const WaveformMode& mode = WaveformModeOf(c.settings.connection);
  OpenElement(c.document, "RECORD_RESULTS");
  OpenElement(c.document, "VOLTAGES");
  const float voltage_scale = CaptureVoltageScale(c.settings);
  for (int slot = 0; slot < kWaveformSlots; ++slot) {
    if (mode.voltages[slot] == nullptr) continue;
    const char* label = VoltageLabel(c.settings, mode.voltages[slot]);
    WriteWaveform(&capture, "U", label, slot, voltage_scale);
  }
  CloseElement(c.document);
  OpenElement(c.document, "CURRENTS");
  for (int slot = 0; slot < kWaveformSlots; ++slot) {
    const char* label = mode.currents[slot];
    if (label == nullptr) continue;
    WriteWaveform(&capture, "I", label, kWaveformSlots + slot,
                  CaptureCurrentScale(c.settings, ChannelOf(label)));
  }
  CloseElement(c.document);
  CloseElement(c.document);
}

}  // namespace

const RecordType kWaveformCapture = {
    .type = 5,
    .name = "waveform capture",
    .list = "RECORDS",
    .record = nullptr,
    .write = WriteCapture,
    .companion = true,
    .state = true,
};

}  // namespace quorvex
