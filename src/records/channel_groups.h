// Results of one moment, as snapshots and live results share them: the block of a channel, powers
// and energies of a phase and in total, symmetry, half-cycle readings.
#pragma once

#include "layout/tiles.h"
#include "settings/cases.h"

namespace quorvex {

// A value with the code of its kind (inductive or capacitive, import or export).
inline constexpr auto kTypedRows = Shared({"typed value"}, {
                                                               F32("value", 0, "value"),
                                                               I32("type", 4, "kind of the value"),
                                                           });
constexpr Field Typed(const char* name, uint32_t at, const char* meaning = "") {
  return Group(name, at, kTypedRows, meaning);
}

inline constexpr auto kPhasorRows =
    Shared({"phasor"}, {
                           F32("A", 0, "amplitude, in the unit of the phasor"),
                           F32("phase", 4, "angle", "deg"),
                       });
constexpr Field Phasor(const char* name, uint32_t at, const char* meaning) {
  return Group(name, at, kPhasorRows, meaning);
}

inline constexpr auto kMomentaryEnergyRows =
    Shared({"momentary energies"}, {
                                       F64("Ep_p", 0, "active energy, consumed", "Wh"),
                                       F64("Ep_m", 8, "active energy, generated", "Wh"),
                                       F64("Eq_p", 16, "reactive energy, consumed", "varh"),
                                       F64("Eq_m", 24, "reactive energy, generated", "varh"),
                                       F64("Es_p", 32, "apparent energy, consumed", "VAh"),
                                       F64("Es_m", 40, "apparent energy, generated", "VAh"),
                                   });

constexpr uint32_t kMomentaryPhasePowerSize = 144;
inline constexpr auto kMomentaryPhasePowerRows =
    Shared({"momentary phase powers"}, {
                                           F32("P", 0, "active power", "W"),
                                           F32("S", 4, "apparent power", "VA"),
                                           F32("Q", 8, "nonactive power", "var"),
                                           Typed("PF", 12, "power factor"),
                                           F32("Pfund", 20, "fundamental active power", "W"),
                                           F32("Sfund", 28, "fundamental apparent power", "VA"),
                                           F32("Qfund", 24, "fundamental reactive power", "var"),
                                           Typed("DPF", 32, "displacement power factor"),
                                           F32("Ph", 40, "harmonic active power", "W"),
                                           F32("Sh", 44, "harmonic apparent power", "VA"),
                                           F32("Sn", 48, "nonfundamental apparent power", "VA"),
                                           F32("Di", 52, "current distortion power", "var"),
                                           F32("Dv", 56, "voltage distortion power", "var"),
                                           F32("Dh", 60, "harmonic distortion power", "var"),
                                           F32("HP", 64, "harmonic pollution"),
                                           Typed("tgF", 68, "tangent of the phase angle"),
                                           Rows(80, kMomentaryEnergyRows),
                                           Gap(76, 4),
                                           Gap(128, 16),
                                       });

constexpr uint32_t kMomentaryTotalPowerSize = 208;
inline constexpr auto kMomentaryTotalPowerRows =
    Shared({"momentary total powers"},
           {
               F32("P", 0, "active power", "W"),
               F32("Se", 12, "effective apparent power", "VA"),
               F32("Sv", 8, "vector apparent power", "VA"),
               F32("Sa", 20, "arithmetic apparent power", "VA"),
               F32("Q", 4, "nonactive power", "var"),
               F32("Qa", 16, "arithmetic nonactive power", "var"),
               Typed("PFe", 24, "effective power factor"),
               Typed("PFv", 32, "vector power factor"),
               Typed("PFa", 40, "arithmetic power factor"),
               F32("PpFund", 48, "positive-sequence active power", "W"),
               F32("SpFund", 60, "positive-sequence apparent power", "VA"),
               F32("SeFund", 56, "fundamental effective apparent power", "VA"),
               F32("SfundU", 64, "unbalanced fundamental apparent power", "VA"),
               F32("QpFund", 52, "positive-sequence reactive power", "var"),
               F32("LUfund", 100, "load unbalance"),
               F32("Pfund", 112, "fundamental active power", "W"),
               F32("QvFund", 104, "fundamental vector reactive power", "var"),
               F32("SvFund", 68, "fundamental vector apparent power", "VA"),
               Typed("PFvFund", 84, "fundamental vector power factor"),
               F32("QaFund", 108, "fundamental arithmetic reactive power", "var"),
               F32("SaFund", 72, "fundamental arithmetic apparent power", "VA"),
               Typed("PFaFund", 92, "fundamental arithmetic power factor"),
               Typed("tgF", 144, "tangent of the phase angle"),
               Typed("PFpFund", 76, "positive-sequence power factor"),
               F32("Ph", 116, "harmonic active power", "W"),
               F32("SeN", 132, "nonfundamental effective apparent power", "VA"),
               F32("DeI", 120, "current distortion power", "var"),
               F32("DeV", 124, "voltage distortion power", "var"),
               F32("DeH", 128, "harmonic distortion power", "var"),
               F32("SeH", 136, "harmonic effective apparent power", "VA"),
               F32("HP", 140, "harmonic pollution"),
               Rows(152, kMomentaryEnergyRows),
               Gap(200, 8),
           });

// The accumulation periods: since the start, the one that runs, the one before.
inline constexpr Field kTotalsRows[] = {
    Group("POWER_ENERGY_TOTAL", 0, kMomentaryTotalPowerRows, "powers and energies in total"),
    Group("POWER_ENERGY_TOTAL_CURRENT", kMomentaryTotalPowerSize, kMomentaryTotalPowerRows,
          "powers and energies of the running period"),
    Group("POWER_ENERGY_TOTAL_LAST", 2 * kMomentaryTotalPowerSize, kMomentaryTotalPowerRows,
          "powers and energies of the last period"),
};

inline constexpr auto kMomentarySymmetryRows = Shared(
    {"momentary symmetry"}, {
                                Phasor("Uo", 0, "zero-sequence voltage").Unit("V"),
                                Phasor("Io", 8, "zero-sequence current").Unit("A"),
                                Phasor("Up", 16, "positive-sequence voltage").Unit("V"),
                                Phasor("Ip", 24, "positive-sequence current").Unit("A"),
                                Phasor("Um", 32, "negative-sequence voltage").Unit("V"),
                                Phasor("Im", 40, "negative-sequence current").Unit("A"),
                                F32("SYM_Um", 48, "negative-sequence voltage unbalance", "%"),
                                F32("SYM_Uo", 52, "zero-sequence voltage unbalance", "%"),
                                F32("SYM_Im", 56, "negative-sequence current unbalance", "%"),
                                F32("SYM_Io", 60, "zero-sequence current unbalance", "%"),
                            });

inline constexpr auto kRms12Rows =
    Shared({"half-cycle reading"}, {
                                       F32("VALUE", 0, "half-cycle RMS value", "V"),
                                       Gap(4, 4),
                                       I32("PHASE_NUMBER", 8, "phase number"),
                                       Gap(12, 4),
                                       DateTime("TIME_STAMP", 16, "time of the value"),
                                   });
constexpr uint32_t kRms12Size = 32;

// A list of half-cycle readings: their number, then room for so many.
constexpr uint32_t kRms12Room = 90;
constexpr uint32_t kRms12LongRoom = 330;
constexpr Field Rms12List(uint32_t room) {
  return Each("Vrms12", 4, room, kRms12Size, kRms12Rows, "a reading").CountAt(0);
}
constexpr uint32_t Rms12ListSize(uint32_t room) { return 4 + room * kRms12Size; }

// The block of a channel, row group by row group. The scopes take their scales from the inputs: of
// scale pair `channel` the first for the voltage, the second for the current.
constexpr uint32_t kChannelBlockSize = 9600;
constexpr uint32_t kScopeRoom = 2048;
constexpr uint32_t kSpectrumOrders = 51;  // 0 to 50
constexpr uint32_t kScopeCount = 0;       // index into Inputs::number

inline constexpr Field kChannelValueRows[] = {
    F32("UL", 4, "RMS voltage", "V"),
    F32("THD_U", 8, "voltage distortion", "V"),
    F32("THD_U_PR", 12, "voltage distortion", "%"),
    F32("CF_U", 16, "voltage crest factor"),
    F32("PEAK_U", 20, "voltage peak", "V"),
    F32("MAX12_U", 24, "highest half-cycle voltage", "V"),
    F32("MIN12_U", 28, "lowest half-cycle voltage", "V"),
    F32("PHASE_U", 32, "voltage angle", "deg"),
    F32("IL", 36, "RMS current", "A"),
    F32("THD_I", 40, "current distortion", "A"),
    F32("THD_I_PR", 44, "current distortion", "%"),
    F32("CF_I", 48, "current crest factor"),
    F32("PEAK_I", 52, "current peak", "A"),
    F32("MAX12_I", 56, "highest half-cycle current", "A"),
    F32("MIN12_I", 60, "lowest half-cycle current", "A"),
    F32("PHASE_I", 64, "current angle", "deg"),
};

inline constexpr Field kChannelFrequencyRows[] = {
    F32("f_sampl", 68, "sampling frequency", "Hz"),
    F32("f_200ms", 72, "network frequency over 200 ms", "Hz"),
    F32("f_10s", 76, "network frequency over 10 s", "Hz"),
};

template <uint8_t scale>
inline constexpr Field kScopeRows[] = {
    ScaledI16("v", 0, scale, "sample", scale % 2 == 0 ? "V" : "A")
        .Times(kScopeRoom)
        .CountInput(kScopeCount, "the samples of the record"),
};
template <uint8_t channel>
inline constexpr Field kScopesRows[] = {
    Group("SCOPE_U", 80, kScopeRows<2 * channel>, "voltage waveform"),
    Group("SCOPE_I", 4176, kScopeRows<2 * channel + 1>, "current waveform"),
};

constexpr uint32_t kChannelPowerAt = 8272;
inline constexpr Field kChannelPowersRows[] = {
    Group("POWER_ENERGY", kChannelPowerAt, kMomentaryPhasePowerRows,
          "powers and energies in total"),
    Group("POWER_ENERGY_CURRENT", kChannelPowerAt + kMomentaryPhasePowerSize,
          kMomentaryPhasePowerRows, "powers and energies of the running period"),
    Group("POWER_ENERGY_LAST", kChannelPowerAt + 2 * kMomentaryPhasePowerSize,
          kMomentaryPhasePowerRows, "powers and energies of the last period"),
};

inline constexpr auto kSpectrumRows = Shared(
    {"spectrum of 51 orders"}, {F32("v", 0, "an order, 0 to 50").Times(kSpectrumOrders).ByOrder()});
inline constexpr Field kChannelSpectraRows[] = {
    Group("HARM_U", 8704, kSpectrumRows, "voltage harmonics").Unit("V").InTable("HARM_U"),
    Group("HARM_I", 8908, kSpectrumRows, "current harmonics").Unit("A").InTable("HARM_I"),
    Group("INTER_HARM_U", 9112, kSpectrumRows, "voltage interharmonics")
        .Unit("V")
        .InTable("INTER_HARM_U"),
    Group("INTER_HARM_I", 9316, kSpectrumRows, "current interharmonics")
        .Unit("A")
        .InTable("INTER_HARM_I"),
};

inline constexpr Field kFlickerRows[] = {
    F32("P_INST", 9520, "instantaneous flicker"),
    F32("P_ST", 9524, "short-term flicker"),
    F32("P_LT", 9528, "long-term flicker"),
    F32("P_ST_1MIN", 9532, "flicker over one minute"),
};

// A channel of a snapshot.
inline constexpr auto kSnapshotChannelRows =
    Shared({"snapshot channel"}, {
                                     Gap(0, 4),
                                     Rows(0, kChannelValueRows),
                                     Rows(0, kChannelFrequencyRows),
                                     Rows(0, kScopesRows<0>),
                                     Rows(0, kChannelPowersRows),
                                     Rows(0, kChannelSpectraRows),
                                     Group("FLICKER", kFlickerRows, "flicker"),
                                     Gap(9536, 64),
                                 });
inline constexpr Field kSnapshotChannel = Record("", kChannelBlockSize, kSnapshotChannelRows);
static_assert(Tiles<WrongByte(kSnapshotChannel)>);

// A channel of live results: with the K factor among the values, and without flicker where the
// lists are reduced. The tail's other values belong to inverters.
template <uint8_t channel>
inline constexpr auto kLiveChannelRows =
    Shared({"live channel",
            "With the K factor among the values, and without flicker where the lists are reduced."},
           {
               Gap(0, 4),
               Rows(0, kChannelValueRows),
               F32("K", 9576, "K factor"),
               Rows(0, kChannelFrequencyRows),
               Rows(0, kScopesRows<channel>),
               Rows(0, kChannelPowersRows),
               Rows(0, kChannelSpectraRows),
               Group("FLICKER", kFlickerRows, "flicker").In(kFullLists),
               Gap(9536, 40),
               Gap(9580, 20),
           });

// The start of a record with waveforms. The record type knows which word counts their samples.
constexpr uint32_t kScopeCountAt = 20;
constexpr uint32_t kUsedSamplesAt = 24;
constexpr uint32_t kRecordStartSize = 32;
template <uint32_t count_at, uint32_t room>
inline constexpr Field kRecordStartRows[] = {
    DateTime("timeStart", 0, "time of the first sample"),
    F32("timeStep", 16, "time between samples", "s").IsTimeStep(),
    count_at == kScopeCountAt
        ? Gap(kScopeCountAt, 4, "number of samples of each waveform").Counts(room)
        : Gap(kScopeCountAt, 4),
    count_at == kUsedSamplesAt
        ? I32("numUsedSamples", kUsedSamplesAt, "number of used samples").Counts(room)
        : I32("numUsedSamples", kUsedSamplesAt, "number of used samples"),
    Gap(28, 4),
};

}  // namespace quorvex
