// Type 5: one capture of voltages and currents, as long as the memory of the instrument allows.
#include <algorithm>

#include "records/channels.h"
#include "records/record_types.h"
#include "records/walk.h"
#include "settings/validation.h"
#include "support/memory.h"

namespace quorvex {
namespace {

// A capture is read in parts, so its length does not matter to memory.
constexpr uint32_t kPartSamples = 4096;
constexpr uint32_t kSampleSize = 4;
constexpr char kLength[] = "TRANSIENTS_RECORD_PARAMS/NUM";
constexpr Field kVoltageSamples[] = {
    ScaledF32("v", 0, 0, "sample", "V").Times(kPartSamples).CountInput(0, kLength).InParts(),
};
constexpr Field kCurrentSamples[] = {
    ScaledF32("v", 0, 0, "sample", "A").Times(kPartSamples).CountInput(0, kLength).InParts(),
};
constexpr Field kPart = Record("", kPartSamples* kSampleSize, kVoltageSamples);
static_assert(Tiles<WrongByte(kPart)>);

constexpr Field Voltage(const char* label, Cases in) {
  return Group("U", kVoltageSamples, "voltage waveform").Phase(label).In(in).Behind();
}
constexpr Field Current(const char* label, Cases in) {
  return Group("I", kCurrentSamples, "current waveform").Phase(label).In(in).Behind();
}
constexpr Field FreeSlot(Cases in) {
  return Gap(0, kSampleSize).Times(kPartSamples).CountInput(0, kLength).InParts().In(in).Behind();
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

// Where the waveforms of a capture stand in the file, as far as they were told.
struct Told {
  uint64_t from[2 * kSlots];
  int count = 0;
};

// Reads bytes `from` to `from + size` of the newest waveform. Where the file ends before, the
// instrument's own buffer would still hold the waveform before, whose bytes are in the file.
// Returns how many bytes were the waveform's own.
uint32_t ReadPart(Walk* w, const Told& told, uint64_t from, uint32_t size, uint8_t* to) {
  uint32_t got = 0, own = 0;
  for (int i = told.count - 1; i >= 0 && got < size; --i) {
    if (MoveTo(w, told.from[i] + from + got)) got += Read(w, to + got, size - got);
    if (i == told.count - 1) own = got;
  }
  std::fill(to + got, to + size, uint8_t{0});
  return own;
}

// Captured samples are floats, calibrated by the instrument: what is left is the transformers. The
// star or delta factor counts here even without a voltage transformer.
float CaptureVoltageScale(const UifParams& settings) {
  return VoltageRatio(settings) * static_cast<float>(StarFactor(settings.trikot_star_factor_id));
}

// Current samples are in thousandths. Clamps of type 2 know no multiplier.
float CaptureCurrentScale(const UifParams& settings, int channel) {
  constexpr uint8_t kNoMultiplier = 2;
  const ClampParams& clamp = settings.clamp[ClampOf(settings, channel)];
  const float scale = ThroughTransformer(clamp, clamp.a_na_v / 1000.0f);
  return clamp.type == kNoMultiplier ? scale : TimesWires(clamp, scale);
}

// The selection of neutral or earth also decides whether a delta's voltages go by their phase.
const char* PhaseLabel(const UifParams& settings, const char* label) {
  static constexpr const char* kPhases[] = {"u1", "u2", "u3"};
  const bool delta = settings.connection == 2 || settings.connection == 4;
  const bool by_phase = static_cast<uint8_t>(settings.transients.select_n_gnd) == 1;
  const int channel = ChannelOf(label);
  return label[0] == 'u' && delta && by_phase && channel < kNeutral ? kPhases[channel] : label;
}

// Tells bytes `from` to `end` of the newest waveform.
void TellWaveform(Walk* w, const Field& row, uint64_t from, uint64_t end, const Told& told,
                  uint8_t* buffer) {
  const bool voltage = row.rows == kVoltageSamples;
  const char* label = PhaseLabel(w->settings, row.phase);
  Inputs inputs;
  inputs.scale[0] = voltage ? CaptureVoltageScale(w->settings)
                            : CaptureCurrentScale(w->settings, ChannelOf(row.phase));
  w->listener->BeginGroup(row, label);
  const uint64_t at = told.from[told.count - 1];
  for (; from < end; from += kPart.size) {
    const auto part = static_cast<uint32_t>(std::min<uint64_t>(kPart.size, end - from));
    const uint32_t own = ReadPart(w, told, from, part, buffer);
    inputs.number[0] = static_cast<int32_t>(part / kSampleSize);
    Tell(w, kPart, buffer, at + from, own, inputs, static_cast<uint32_t>(from / kSampleSize));
  }
  w->listener->EndGroup();
}

uint64_t SizeOfCapture(const UifParams& settings) {
  const auto samples = static_cast<int32_t>(settings.transients.num);
  return samples < 0 ? 0 : static_cast<uint64_t>(samples) * kSampleSize * (2 * kSlots);
}

// Tells bytes `from` to `end` of every waveform of `waveform_size` bytes.
void TellWaveforms(Walk* w, uint64_t waveform_size, uint64_t from, uint64_t end, uint8_t* buffer) {
  Told told{};
  uint64_t slot_at = kHeadSize;
  w->listener->BeginGroup(kRecord, nullptr);
  for (const Field& quantity : kCaptureRows) {
    w->listener->BeginGroup(quantity, nullptr);
    for (uint32_t r = 0; r < quantity.row_count; ++r) {
      const Field& row = quantity.rows[r];
      if ((row.cases & w->which) == 0) continue;
      if (row.kind != Kind::kGap) {
        told.from[told.count++] = slot_at;
        TellWaveform(w, row, from, end, told, buffer);
      }
      slot_at += waveform_size;
    }
    w->listener->EndGroup();
  }
  w->listener->EndGroup();
}

void WalkCapture(Walk* w) {
  BeginRecord(w);
  const uint64_t size = SizeOfCapture(w->settings);
  // More samples than the file has bytes are no length but damage.
  const bool plausible = size / (kSampleSize * 2 * kSlots) <= w->recording->size;
  const uint64_t waveform_size = plausible ? size / (2 * kSlots) : 0;
  const uint64_t strip = w->options.side_by_side ? kPart.size : waveform_size;
  Tracked<uint8_t> buffer(kPart.size);
  uint64_t from = uint64_t{FirstEntry(*w)} * kSampleSize;
  do {
    const uint64_t end = std::min(from + strip, waveform_size);
    TellWaveforms(w, waveform_size, from, end, buffer.get());
    from = end;
    if (from < waveform_size && !EndPart(w, static_cast<uint32_t>(from / kSampleSize))) return;
  } while (from < waveform_size);
  EndRecord(w, size);
}

#define AT(member) offsetof(UifParams, transients.member)
constexpr InfoField kInfo[] = {
    {"start", InfoForm::kTime, AT(start_time)},
    {"end", InfoForm::kTime, AT(end_time)},
    {"trigger", InfoForm::kTrigger, AT(trigger)},
    {"voltage level", InfoForm::kVolts, AT(level_u)},
    {"voltage envelope", InfoForm::kVolts, AT(env_u)},
    {"neutral level", InfoForm::kVolts, AT(level_un)},
    {"neutral envelope", InfoForm::kVolts, AT(env_un)},
    {"current level", InfoForm::kAmperes, AT(level_i)},
    {"current envelope", InfoForm::kAmperes, AT(env_i)},
    {"neutral I level", InfoForm::kAmperes, AT(level_in)},
    {"neutral I envelope", InfoForm::kAmperes, AT(env_in)},
};
#undef AT

}  // namespace

const RecordType kWaveformCapture = {
    .type = 5,
    .word = "capture",
    .name = "waveform capture",
    .about =
        "Eight slots of samples, four of voltages and four of currents, each of as many samples "
        "as `NUM` of `TRANSIENTS_RECORD_PARAMS` says, in use or not. Samples are floats, scaled "
        "by the transformer ratios of the settings. Where `SELECT_N_GND` is 1, the voltages of "
        "connections 2 and 4 are named u1, u2 and u3. With two phases the current of the "
        "neutral moves up into the slot that phase 3 leaves free; its voltage does not.",
    .list = "RECORDS",
    .record = &kRecord,
    .walk = WalkCapture,
    .companion = true,
    .state = true,
    .once = true,
    .cut = {0, "what it lacks is left over from the waveform before (zeros in the first)"},
    .size = SizeOfCapture,
    .line = kInfo,
    .counted_at = offsetof(UifParams, transients.num),
    .step_at = offsetof(UifParams, transients.step),
    .phase_label = PhaseLabel,
};

}  // namespace quorvex
