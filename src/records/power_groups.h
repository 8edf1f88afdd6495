// Powers of one phase, of the whole system and of an inverter: as statistics (full records) and as
// averages (standard records).
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "records/result_groups.h"

namespace quorvex::intervals {

constexpr uint32_t kEnergySize = 16;
inline constexpr auto kEnergyRows =
    Shared({"interval energies"}, {
                                      F32("EPp", 0, "active energy consumed", "Wh"),
                                      F32("EPm", 4, "active energy generated", "Wh"),
                                      F32("EQp", 8, "reactive energy consumed", "varh"),
                                      F32("EQm", 12, "reactive energy generated", "varh"),
                                  });

// Powers, or factors of powers, that mean the same in up to four ways, and the number of the first
// in the order in which they are stored.
struct Powers {
  const char* names[4];
  uint32_t first;
  const char* meaning;
  const char* unit = "";
};
template <size_t N>
constexpr size_t NamesIn(const Powers (&list)[N]) {
  size_t count = 0;
  for (const Powers& p : list) count += 4 - std::count(p.names, p.names + 4, nullptr);
  return count;
}

// `make` makes the row of a name and its number.
template <const auto& kList, typename Make>
constexpr auto PowerRows(Make make) {
  std::array<Field, NamesIn(kList)> rows;
  Field* row = rows.data();
  for (const Powers& p : kList) {
    for (uint32_t i = 0; i < 4 && p.names[i] != nullptr; ++i) {
      *row = make(p.names[i], p.first + i);
      row->meaning = p.meaning;
      row++->unit = p.unit;
    }
  }
  return rows;
}

// Full records keep statistics of each.
constexpr Field StatisticOf(const char* name, uint32_t number) {
  return Group(name, number * kSixValueSize, kSixValueRows);
}
template <const auto& kList>
inline constexpr auto kStatistics = PowerRows<kList>(StatisticOf);

// Standard records keep averages. Factors, from one number up to another, have a second value each
// that is not written.
struct Factors {
  uint32_t from, end;
};
inline constexpr auto kAvgAPairRows =
    Shared({"single avgA of a pair", "The second value is not written."},
           {F32("avgA", 0, "mean"), Gap(4, 4)});
constexpr uint32_t AverageAt(uint32_t number, const Factors& factors) {
  return 4 * (number + std::clamp(number, factors.from, factors.end) - factors.from);
}
constexpr Field AverageOf(const char* name, uint32_t number, const Factors& factors) {
  const uint32_t at = AverageAt(number, factors);
  const bool factor = number >= factors.from && number < factors.end;
  return factor ? Group(name, at, kAvgAPairRows) : Group(name, at, kAvgRows);
}
template <const auto& kList, const Factors& kFactors>
inline constexpr auto kAverages = PowerRows<kList>([](const char* name, uint32_t number) {
  return AverageOf(name, number, kFactors);
});

// `energy_at` is where the energies stand.
template <typename Combined, typename Fundamental, typename Harmonic>
constexpr Structure<4> PowerGroups(const StructureInfo& info, const Combined& combined,
                                   const Fundamental& fundamental, const Harmonic& harmonic,
                                   uint32_t energy_at) {
  return Shared(info, {
                          Group("COMBINED", combined, "powers of all frequencies"),
                          Group("FUNDAMENTAL", fundamental, "powers of the fundamental"),
                          Group("HARMONIC", harmonic, "powers beyond the fundamental"),
                          Group("ENERGY", energy_at, kEnergyRows, "energies of the interval"),
                      });
}

// One phase.
inline constexpr Powers kPhaseCombined[] = {
    {{"Pp", "Pm"}, 0, "active power", "W"},
    {{"Qip", "Qim", "Qcp", "Qcm"}, 2, "reactive power", "var"},
    {{"S"}, 10, "apparent power", "VA"},
    {{"PFip", "PFim", "PFcp", "PFcm"}, 22, "power factor"},
};
inline constexpr Powers kPhaseFundamental[] = {
    {{"Pp", "Pm"}, 14, "fundamental active power", "W"},
    {{"Qip", "Qim", "Qcp", "Qcm"}, 6, "fundamental reactive power", "var"},
    {{"S"}, 11, "fundamental apparent power", "VA"},
    {{"DPFip", "DPFim", "DPFcp", "DPFcm"}, 26, "displacement power factor"},
    {{"tgFip", "tgFim", "tgFcp", "tgFcm"}, 30, "tangent of the phase angle"},
};
inline constexpr Powers kPhaseHarmonic[] = {
    {{"Pp", "Pm"}, 16, "harmonic active power", "W"},
    {{"Sn"}, 12, "non-fundamental apparent power", "VA"},
    {{"Sh"}, 13, "harmonic apparent power", "VA"},
    {{"Di"}, 18, "current distortion power", "var"},
    {{"Dv"}, 19, "voltage distortion power", "var"},
    {{"Dh"}, 20, "harmonic distortion power", "var"},
    {{"HP"}, 21, "harmonic pollution"},
};
inline constexpr uint32_t kPhasePowers = 34;
inline constexpr Factors kPhaseFactors = {22, kPhasePowers};

constexpr uint32_t kPhaseEnergyAt = kPhasePowers * kSixValueSize;
constexpr uint32_t kPhasePowerSize = kPhaseEnergyAt + kEnergySize;
inline constexpr auto kPhasePowerRows = PowerGroups(
    {"phase powers", "Signs: p is consumed, m is generated; Qi is inductive, Qc capacitive."},
    kStatistics<kPhaseCombined>, kStatistics<kPhaseFundamental>, kStatistics<kPhaseHarmonic>,
    kPhaseEnergyAt);
static_assert(Tiles<WrongByte(Record("P", kPhasePowerSize, kPhasePowerRows))>);

constexpr uint32_t kPhaseAveragesEnergyAt = AverageAt(kPhasePowers, kPhaseFactors);
constexpr uint32_t kPhaseAveragesSize = kPhaseAveragesEnergyAt + kEnergySize;
inline constexpr auto kPhaseAveragesRows =
    PowerGroups({"phase power averages"}, kAverages<kPhaseCombined, kPhaseFactors>,
                kAverages<kPhaseFundamental, kPhaseFactors>,
                kAverages<kPhaseHarmonic, kPhaseFactors>, kPhaseAveragesEnergyAt);
static_assert(Tiles<WrongByte(Record("P", kPhaseAveragesSize, kPhaseAveragesRows))>);

constexpr Field PhasePower(const char* phase, uint32_t at) {
  return Group("P", at, kPhasePowerRows, "powers of a phase").Phase(phase);
}
constexpr Field PhaseAverages(const char* phase, uint32_t at) {
  return Group("P", at, kPhaseAveragesRows, "average powers of a phase").Phase(phase);
}

// The whole system.
inline constexpr Powers kTotalCombined[] = {
    {{"Pp", "Pm"}, 0, "active power", "W"},
    {{"Qip", "Qim", "Qcp", "Qcm"}, 2, "reactive power", "var"},
    {{"Qa"}, 59, "arithmetic reactive power", "var"},
    {{"Sv"}, 6, "vector apparent power", "VA"},
    {{"Sa"}, 58, "arithmetic apparent power", "VA"},
    {{"Se"}, 7, "effective apparent power", "VA"},
    {{"PFip_e", "PFim_e", "PFcp_e", "PFcm_e"}, 26, "effective power factor"},
    {{"PFip_v", "PFim_v", "PFcp_v", "PFcm_v"}, 30, "vector power factor"},
    {{"PFip_a", "PFim_a", "PFcp_a", "PFcm_a"}, 38, "arithmetic power factor"},
};
inline constexpr Powers kTotalFundamental[] = {
    {{"Pp_p", "Pm_p"}, 18, "positive-sequence active power", "W"},
    {{"Pp_fund", "Pm_fund"}, 63, "fundamental active power", "W"},
    {{"Qip_p", "Qim_p", "Qcp_p", "Qcm_p"}, 13, "positive-sequence reactive power", "var"},
    {{"Qip_v", "Qim_v", "Qcp_v", "Qcm_v"}, 54, "vector reactive power", "var"},
    {{"QaFund"}, 62, "arithmetic reactive power", "var"},
    {{"Se"}, 8, "effective apparent power", "VA"},
    {{"SvFund"}, 60, "vector apparent power", "VA"},
    {{"SaFund"}, 61, "arithmetic apparent power", "VA"},
    {{"Sp"}, 9, "positive-sequence apparent power", "VA"},
    {{"Su"}, 10, "unbalanced apparent power", "VA"},
    {{"LU"}, 17, "load unbalance"},
    {{"PFip_p", "PFim_p", "PFcp_p", "PFcm_p"}, 34, "positive-sequence power factor"},
    {{"PFip_vFund", "PFim_vFund", "PFcp_vFund", "PFcm_vFund"}, 42, "vector power factor"},
    {{"PFip_aFund", "PFim_aFund", "PFcp_aFund", "PFcm_aFund"}, 46, "arithmetic power factor"},
    {{"tgFip", "tgFim", "tgFcp", "tgFcm"}, 50, "tangent of the phase angle"},
};
inline constexpr Powers kTotalHarmonic[] = {
    {{"Pp", "Pm"}, 20, "harmonic active power", "W"},
    {{"DeI"}, 22, "effective current distortion power", "var"},
    {{"DeV"}, 23, "effective voltage distortion power", "var"},
    {{"DeH"}, 24, "effective harmonic distortion power", "var"},
    {{"HP"}, 25, "harmonic pollution"},
    {{"SeN"}, 11, "effective non-fundamental apparent power", "VA"},
    {{"SeH"}, 12, "effective harmonic apparent power", "VA"},
};
inline constexpr uint32_t kTotalPowers = 65;
inline constexpr Factors kTotalFactors = {26, 54};

constexpr uint32_t kTotalEnergyAt = kTotalPowers * kSixValueSize;
constexpr uint32_t kTotalPowerSize = kTotalEnergyAt + kEnergySize;
inline constexpr auto kTotalPowerRows = PowerGroups(
    {"total powers",
     "Suffixes: _e effective, _v vector, _a arithmetic, _p positive-sequence; signs as in "
     "phase powers."},
    kStatistics<kTotalCombined>, kStatistics<kTotalFundamental>, kStatistics<kTotalHarmonic>,
    kTotalEnergyAt);
static_assert(Tiles<WrongByte(Record("pt", kTotalPowerSize, kTotalPowerRows))>);

// Written in the order of the statistics, with one exception: Se follows SvFund and SaFund.
constexpr auto TotalFundamentalAverages() {
  auto rows = kAverages<kTotalFundamental, kTotalFactors>;
  auto* const se = std::find_if(rows.begin(), rows.end(), [](const Field& row) {
    return std::string_view(row.name) == "Se";
  });
  std::rotate(se, se + 1, se + 3);
  return rows;
}
inline constexpr auto kTotalFundamentalAverages = TotalFundamentalAverages();

constexpr uint32_t kTotalAveragesEnergyAt = AverageAt(kTotalPowers, kTotalFactors);
constexpr uint32_t kTotalAveragesSize = kTotalAveragesEnergyAt + kEnergySize;
inline constexpr auto kTotalAveragesRows = PowerGroups(
    {"total power averages"}, kAverages<kTotalCombined, kTotalFactors>, kTotalFundamentalAverages,
    kAverages<kTotalHarmonic, kTotalFactors>, kTotalAveragesEnergyAt);
static_assert(Tiles<WrongByte(Record("pt", kTotalAveragesSize, kTotalAveragesRows))>);

// An inverter: its DC side, its AC side and what is lost between them.
inline constexpr Powers kInverterPowers[] = {
    {{"Urms"}, 0, "RMS voltage of the DC side", "V"},
    {{"Udc"}, 1, "direct voltage", "V"},
    {{"Uac"}, 2, "alternating part of the voltage", "V"},
    {{"Irms"}, 3, "RMS current of the DC side", "A"},
    {{"Idc"}, 4, "direct current", "A"},
    {{"Iac"}, 5, "alternating part of the current", "A"},
    {{"Pp", "Pm"}, 6, "active power", "W"},
    {{"Pdcp", "Pdcm"}, 8, "power of the direct parts", "W"},
    {{"Sacp", "Sacm"}, 10, "apparent power of the alternating parts", "VA"},
    {{"efficiency"}, 12, "efficiency of the conversion", "%"},
    {{"rf"}, 13, "ripple factor", "%"},
};
// The statistics of the voltages, which come first, have three values only.
constexpr Field InverterStatisticOf(const char* name, uint32_t number) {
  constexpr uint32_t kVoltages = 3, kThreeValueSize = 12;
  if (number < kVoltages) return Group(name, number * kThreeValueSize, kMinMaxAvgRows);
  const uint32_t at = kVoltages * kThreeValueSize + (number - kVoltages) * kSixValueSize;
  return Group(name, at, kSixValueRows);
}
constexpr uint32_t kInverterSize = 300;
inline constexpr auto kInverterRows =
    Shared({"inverter results"}, PowerRows<kInverterPowers>(InverterStatisticOf));
static_assert(Tiles<WrongByte(Record("inverter", kInverterSize, kInverterRows))>);

inline constexpr Factors kNoFactors = {0, 0};
constexpr uint32_t kInverterAveragesSize = 56;
inline constexpr auto kInverterAveragesRows =
    Shared({"inverter averages"}, kAverages<kInverterPowers, kNoFactors>);
static_assert(Tiles<WrongByte(Record("inverter", kInverterAveragesSize, kInverterAveragesRows))>);

inline constexpr auto kInverterEnergyRows =
    Shared({"inverter energies",
            "The DC side is measured on the inputs of phase 2, so its energies are that phase's, "
            "read a second time."},
           {
               F32("EPp", 0, "active energy consumed", "Wh").Again(),
               F32("EPm", 4, "active energy generated", "Wh").Again(),
           });

}  // namespace quorvex::intervals
