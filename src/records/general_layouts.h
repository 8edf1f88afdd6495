// The three layouts of a general record. The recording profile decides how much of an interval the
// instrument keeps.
#pragma once

#include <array>

#include "records/power_groups.h"
#include "records/result_groups.h"

namespace quorvex::intervals {

inline constexpr Field kIntervalRows[] = {
    Gap(0, 24),
    DateTime("START_TIME", 24, "start of the interval"),
    Gap(40, 16),
    DateTime("LAST_TIME", 56, "end of the interval"),
};

// Full: statistics of every quantity, spectra and interharmonics.

constexpr uint32_t kFrequencyCountAt = 1936;
constexpr uint32_t kMostFrequencies = 750;
inline constexpr Field kFrequencyValueRows[] = {
    F32("freq", 1940, "frequency over 10 s", "Hz"),
    I32("flag", 4940, "validity flag"),
};
inline constexpr Field kFrequencyValuesRows[] = {
    Each("", 0, kMostFrequencies, 4, kFrequencyValueRows).CountAt(kFrequencyCountAt),
};
inline constexpr Field kFrequencyListRows[] = {
    DateTime("timeFirst", 1920, "time of the first value"),
    Group("freqs", kFrequencyValuesRows),
};
// Once or, where nothing was counted, not at all.
inline constexpr Field kTenSecondFrequencyRows[] = {
    Each("", 0, 1, 0, kFrequencyListRows).CountAt(kFrequencyCountAt),
};

inline constexpr Field kThreePhasePowersRows[] = {
    PhasePower("p1", 0 * kPhasePowerSize),
    PhasePower("p2", 1 * kPhasePowerSize),
    PhasePower("p3", 2 * kPhasePowerSize),
};

// A spectrum for each label, side by side.
template <size_t N>
constexpr std::array<Field, N> Spectra(Field (*row)(const char* phase, uint32_t at), uint32_t size,
                                       const char* const (&labels)[N]) {
  std::array<Field, N> rows;
  for (uint32_t i = 0; i < N; ++i) rows[i] = row(labels[i], i * size);
  return rows;
}

// Phase voltages lie before currents, line-to-line voltages behind them; they are written in one
// list. Unlike harmonics, interharmonics come with the line-to-line voltages inside each half.
inline constexpr auto kPhaseHarmonics =
    Spectra(VoltageHarmonics, kVoltageSpectrumSize,
            {"u1h", "u2h", "u3h", "unh", "u1hPr", "u2hPr", "u3hPr", "unhPr"});
inline constexpr auto kLineHarmonics = Spectra(
    VoltageHarmonics, kVoltageSpectrumSize, {"u12h", "u23h", "u31h", "u12hPr", "u23hPr", "u31hPr"});
inline constexpr Field kVoltageHarmonicsRows[] = {
    Rows(12216, kPhaseHarmonics),
    Rows(22008, kLineHarmonics),
};
inline constexpr auto kPhaseInterharmonics =
    Spectra(VoltageInterharmonics, kVoltageSpectrumSize, {"u1ih", "u2ih", "u3ih", "unih"});
inline constexpr auto kPhaseInterharmonicsPr =
    Spectra(VoltageInterharmonics, kVoltageSpectrumSize, {"u1ihPr", "u2ihPr", "u3ihPr", "unihPr"});
inline constexpr auto kLineInterharmonics =
    Spectra(VoltageInterharmonics, kVoltageSpectrumSize, {"u12ih", "u23ih", "u31ih"});
inline constexpr auto kLineInterharmonicsPr =
    Spectra(VoltageInterharmonics, kVoltageSpectrumSize, {"u12ihPr", "u23ihPr", "u31ihPr"});
inline constexpr Field kVoltageInterharmonicsRows[] = {
    Rows(24456, kPhaseInterharmonics),
    Rows(34248, kLineInterharmonics),
    Rows(24456 + 4 * kVoltageSpectrumSize, kPhaseInterharmonicsPr),
    Rows(34248 + 3 * kVoltageSpectrumSize, kLineInterharmonicsPr),
};
inline constexpr auto kCurrentHarmonicsRows =
    Spectra(CurrentHarmonics, kCurrentSpectrumSize,
            {"i1h", "i2h", "i3h", "inh", "i1hPr", "i2hPr", "i3hPr", "inhPr"});
inline constexpr auto kCurrentInterharmonicsRows =
    Spectra(CurrentInterharmonics, kCurrentSpectrumSize,
            {"i1ih", "i2ih", "i3ih", "inih", "i1ihPr", "i2ihPr", "i3ihPr", "inihPr"});
// Per line the positive array, then the negative one.
inline constexpr auto kPowerHarmonicsRows =
    Spectra(PowerHarmonics, 2 * kVoltageSpectrumSize,
            {"powerHarmL1", "powerHarmL2", "powerHarmL3", "powerHarmN"});

constexpr uint32_t kFullPhasePowersAt = 7944;
inline constexpr Field kFullInverterRows[] = {
    Rows(36732, kInverterRows),
    Group("ENERGY", kFullPhasePowersAt + kPhasePowerSize + kPhaseEnergyAt, kInverterEnergyRows),
};

inline constexpr Field kFullRows[] = {
    Rows(0, kIntervalRows),
    Group("VOLTAGES", 72, kSevenVoltagesRows, "voltages"),
    Group("CURRENTS", 1332, kFourCurrentsRows, "currents"),
    Rows(1844, kFrequenciesRows),
    Gap(1916, 4),
    Gap(kFrequencyCountAt, 4),
    Group("freq10s", kTenSecondFrequencyRows, "frequency every 10 s"),
    Gap(7940, 4),
    Group("zero_crossings", 12208, kZeroCrossingsRows, "zero crossings"),
    Gap(12212, 4),
    Group("PHASE_POWERS", kFullPhasePowersAt, kThreePhasePowersRows, "powers of each phase"),
    Group("pt", 10440, kTotalPowerRows, "powers of the whole system"),
    Group("HARMONICS_U", kVoltageHarmonicsRows, "voltage harmonics"),
    Group("HARMONICS_I", 15480, kCurrentHarmonicsRows, "current harmonics"),
    Group("INTER_HARMONICS_U", kVoltageInterharmonicsRows, "voltage interharmonics").In(kFullLists),
    Group("INTER_HARMONICS_I", 27720, kCurrentInterharmonicsRows, "current interharmonics")
        .In(kFullLists),
    Group("POWER_HARMONICS_P", 37032, kPowerHarmonicsRows, "harmonic powers consumed"),
    Group("POWER_HARMONICS_M", 37032 + kVoltageSpectrumSize, kPowerHarmonicsRows,
          "harmonic powers generated"),
    Group("sym", 12016, kSymmetryRows, "symmetrical components"),
    Quantity("temperature", 12196, kMinMaxAvgRows, "temperature of the instrument", "degC"),
    Quantity("tempBattery", 36704, kMinMaxAvgRows, "temperature of the battery", "degC"),
    Quantity("voltBattery", 36716, kMinMaxRmsRows, "voltage of the battery", "V"),
    I32("flag", 36696, "flags of the interval").OnOwnLine(),
    Gap(36700, 4),
    Gap(36728, 4),
    Group("inverter", kFullInverterRows, "results of an inverter").In(Connections({6, 7})),
    Gap(40296, 152),
};
inline constexpr Field kFullRecord =
    Record("RECORD_RESULTS", 40448, kFullRows, "an interval in full (profile 0)");
static_assert(Tiles<WrongByte(kFullRecord)>);

// Compact: one averaged value a quantity.

template <uint32_t kIndex>
inline constexpr Field kCompactVoltageRows[] = {
    OneRms("rms", 72 + 4 * kIndex, "RMS voltage", "V"),
    OneRms("thdPr", 204 + 4 * kIndex, "total harmonic distortion", "%"),
    OneRms("Pst", 112 + 12 * kIndex, "short-term flicker"),
    OneRms("Plt", 116 + 12 * kIndex, "long-term flicker"),
    OneRms("Pst1m", 120 + 12 * kIndex, "one-minute flicker"),
};
inline constexpr Field kCompactVoltagesRows[] = {
    Group("U", kCompactVoltageRows<0>, "results of a voltage").Phase("u1"),
    Group("U", kCompactVoltageRows<1>, "results of a voltage").Phase("u2"),
    Group("U", kCompactVoltageRows<2>, "results of a voltage").Phase("u3"),
    Group("U", kCompactVoltageRows<3>, "results of a voltage").Phase("u12"),
    Group("U", kCompactVoltageRows<4>, "results of a voltage").Phase("u23"),
    Group("U", kCompactVoltageRows<5>, "results of a voltage").Phase("u31"),
};
template <uint32_t kIndex>
inline constexpr Field kCompactCurrentRows[] = {
    OneRms("rms", 96 + 4 * kIndex, "RMS current", "A"),
    OneRms("thdPr", 228 + 4 * kIndex, "total harmonic distortion", "%"),
};
// The distortion of the neutral current is not kept.
inline constexpr Field kCompactNeutralRows[] = {
    OneRms("rms", 108, "RMS current", "A"),
    Group("thdPr", kNoRmsRows, "total harmonic distortion"),
};
inline constexpr Field kCompactCurrentsRows[] = {
    Group("I", kCompactCurrentRows<0>, "results of a current").Phase("i1"),
    Group("I", kCompactCurrentRows<1>, "results of a current").Phase("i2"),
    Group("I", kCompactCurrentRows<2>, "results of a current").Phase("i3"),
    Group("I", kCompactNeutralRows, "results of a current").Phase("in"),
};
// Stored in the order Qip, Qcm, Qim, Qcp.
inline constexpr Field kCompactCombinedRows[] = {
    Quantity("Pp", 240, kAvgRows, "active power", "W"),
    Quantity("Pm", 244, kAvgRows, "active power", "W"),
    Quantity("Qip", 248, kAvgRows, "reactive power", "var"),
    Quantity("Qim", 256, kAvgRows, "reactive power", "var"),
    Quantity("Qcp", 260, kAvgRows, "reactive power", "var"),
    Quantity("Qcm", 252, kAvgRows, "reactive power", "var"),
    Quantity("Se", 264, kAvgRows, "effective apparent power", "VA"),
    Quantity("PFip_e", 284, kAvgARows, "effective power factor"),
    Quantity("PFcp_e", 308, kAvgARows, "effective power factor"),
};
inline constexpr Field kCompactTotalRows[] = {
    Group("COMBINED", kCompactCombinedRows, "powers of all frequencies"),
};
// Of the 51 floats written 25 are an array's own, on purpose: the orders 1 to 25.
constexpr uint32_t kCompactArray = 100;
constexpr Field Compact(const Field& plain) { return plain.RunsOn(kCompactArray).FromOrder(1); }
inline constexpr Field kCompactVoltageHarmonicsRows[] = {
    Compact(PlainVoltageHarmonics("u1h", 0 * kCompactArray)),
    Compact(PlainVoltageHarmonics("u2h", 1 * kCompactArray)),
    Compact(PlainVoltageHarmonics("u3h", 2 * kCompactArray)),
    Compact(PlainVoltageHarmonics("u12h", 3 * kCompactArray)),
    Compact(PlainVoltageHarmonics("u23h", 4 * kCompactArray)),
    Compact(PlainVoltageHarmonics("u31h", 5 * kCompactArray)),
};
inline constexpr Field kCompactCurrentHarmonicsRows[] = {
    Compact(PlainCurrentHarmonics("i1h", 0 * kCompactArray)),
    Compact(PlainCurrentHarmonics("i2h", 1 * kCompactArray)),
    Compact(PlainCurrentHarmonics("i3h", 2 * kCompactArray)),
};

inline constexpr Field kCompactRows[] = {
    Rows(0, kIntervalRows),
    Group("VOLTAGES", kCompactVoltagesRows, "voltages"),
    Group("CURRENTS", kCompactCurrentsRows, "currents"),
    Gap(184, 12),
    Quantity("f_200ms", 196, kAvgARows, "frequency over 200 ms", "Hz"),
    Quantity("f_10s", 200, kAvgARows, "frequency over 10 s", "Hz"),
    Group("pt", kCompactTotalRows, "powers of the whole system"),
    Gap(268, 16),
    Gap(288, 20),
    Gap(312, 4),
    Group("HARMONICS_U", 316, kCompactVoltageHarmonicsRows, "voltage harmonics"),
    Group("HARMONICS_I", 916, kCompactCurrentHarmonicsRows, "current harmonics"),
    Gap(1216, 320),
};
inline constexpr Field kCompactRecord =
    Record("RECORD_RESULTS", 1536, kCompactRows, "an interval in short (profile 1)");
static_assert(Tiles<WrongByte(kCompactRecord)>);

// Standard: statistics of voltages and currents, averages of powers, plain spectra.

constexpr uint32_t kStandardPhasePowersAt = 1916;
inline constexpr Field kThreePhaseAveragesRows[] = {
    PhaseAverages("p1", 0 * kPhaseAveragesSize),
    PhaseAverages("p2", 1 * kPhaseAveragesSize),
    PhaseAverages("p3", 2 * kPhaseAveragesSize),
};
// Three-wire connections have line-to-line voltages only.
constexpr Cases kStandardLines = Connections({2, 4});
constexpr Cases kStandardPhases = NotConnections({2, 4});
inline constexpr Field kStandardVoltageHarmonicsRows[] = {
    PlainVoltageHarmonics("u1h", 0 * kPlainSpectrumSize).In(kStandardPhases),
    PlainVoltageHarmonics("u2h", 1 * kPlainSpectrumSize).In(kStandardPhases),
    PlainVoltageHarmonics("u3h", 2 * kPlainSpectrumSize).In(kStandardPhases),
    PlainVoltageHarmonics("u12h", 0 * kPlainSpectrumSize).In(kStandardLines),
    PlainVoltageHarmonics("u23h", 1 * kPlainSpectrumSize).In(kStandardLines),
    PlainVoltageHarmonics("u31h", 2 * kPlainSpectrumSize).In(kStandardLines),
};
inline constexpr auto kStandardCurrentHarmonicsRows =
    Spectra(PlainCurrentHarmonics, kPlainSpectrumSize, {"i1h", "i2h", "i3h", "inh"});
inline constexpr Field kStandardInverterRows[] = {
    Rows(4540, kInverterAveragesRows),
    Group("ENERGY", kStandardPhasePowersAt + kPhaseAveragesSize + kPhaseAveragesEnergyAt,
          kInverterEnergyRows),
};

inline constexpr Field kStandardRows[] = {
    Rows(0, kIntervalRows),
    Group("VOLTAGES", 72, kSevenVoltagesRows, "voltages"),
    Group("CURRENTS", 1332, kFourCurrentsRows, "currents"),
    Rows(1844, kFrequenciesRows),
    Group("zero_crossings", 3096, kZeroCrossingsRows, "zero crossings"),
    Gap(3100, 4),
    Group("PHASE_POWERS", kStandardPhasePowersAt, kThreePhaseAveragesRows, "powers of each phase"),
    Group("pt", 2516, kTotalAveragesRows, "powers of the whole system"),
    Group("HARMONICS_U", 3104, kStandardVoltageHarmonicsRows, "voltage harmonics"),
    Group("HARMONICS_I", 3716, kStandardCurrentHarmonicsRows, "current harmonics"),
    Group("sym", 2904, kSymmetryRows, "symmetrical components"),
    Quantity("temperature", 3084, kMinMaxAvgRows, "temperature of the instrument", "degC"),
    I32("flag", 4532, "flags of the interval").OnOwnLine(),
    Gap(4536, 4),
    Group("inverter", kStandardInverterRows, "results of an inverter").In(Connections({6, 7})),
    Gap(4596, 12),
};
inline constexpr Field kStandardRecord =
    Record("RECORD_RESULTS", 4608, kStandardRows, "a standard interval (profiles 2 and 5)");
static_assert(Tiles<WrongByte(kStandardRecord)>);

}  // namespace quorvex::intervals
