// Powers of one phase, of the whole system and of an inverter: as statistics (full records) and as
// averages (standard records).
#pragma once

#include "records/result_groups.h"

namespace quorvex::intervals {

inline constexpr auto kEnergyRows =
    Shared({"interval energies"}, {
                                      F32("EPp", 0, "active energy consumed", "Wh"),
                                      F32("EPm", 4, "active energy generated", "Wh"),
                                      F32("EQp", 8, "reactive energy consumed", "varh"),
                                      F32("EQm", 12, "reactive energy generated", "varh"),
                                  });

// Statistics of one phase.
constexpr uint32_t kPhasePowerSize = 832;
constexpr uint32_t kPhaseEnergyAt = 816;
inline constexpr Field kPhaseCombinedRows[] = {
    Six("Pp", 0, "active power", "W"),       Six("Pm", 24, "active power", "W"),
    Six("Qip", 48, "reactive power", "var"), Six("Qim", 72, "reactive power", "var"),
    Six("Qcp", 96, "reactive power", "var"), Six("Qcm", 120, "reactive power", "var"),
    Six("S", 240, "apparent power", "VA"),   Six("PFip", 528, "power factor"),
    Six("PFim", 552, "power factor"),        Six("PFcp", 576, "power factor"),
    Six("PFcm", 600, "power factor"),
};
inline constexpr Field kPhaseFundamentalRows[] = {
    Six("Pp", 336, "fundamental active power", "W"),
    Six("Pm", 360, "fundamental active power", "W"),
    Six("Qip", 144, "fundamental reactive power", "var"),
    Six("Qim", 168, "fundamental reactive power", "var"),
    Six("Qcp", 192, "fundamental reactive power", "var"),
    Six("Qcm", 216, "fundamental reactive power", "var"),
    Six("S", 264, "fundamental apparent power", "VA"),
    Six("DPFip", 624, "displacement power factor"),
    Six("DPFim", 648, "displacement power factor"),
    Six("DPFcp", 672, "displacement power factor"),
    Six("DPFcm", 696, "displacement power factor"),
    Six("tgFip", 720, "tangent of the phase angle"),
    Six("tgFim", 744, "tangent of the phase angle"),
    Six("tgFcp", 768, "tangent of the phase angle"),
    Six("tgFcm", 792, "tangent of the phase angle"),
};
inline constexpr Field kPhaseHarmonicRows[] = {
    Six("Pp", 384, "harmonic active power", "W"),
    Six("Pm", 408, "harmonic active power", "W"),
    Six("Sn", 288, "non-fundamental apparent power", "VA"),
    Six("Sh", 312, "harmonic apparent power", "VA"),
    Six("Di", 432, "current distortion power", "var"),
    Six("Dv", 456, "voltage distortion power", "var"),
    Six("Dh", 480, "harmonic distortion power", "var"),
    Six("HP", 504, "harmonic pollution"),
};
inline constexpr auto kPhasePowerRows = Shared(
    {"phase powers", "Signs: p is consumed, m is generated; Qi is inductive, Qc capacitive."},
    {
        Group("COMBINED", kPhaseCombinedRows, "powers of all frequencies"),
        Group("FUNDAMENTAL", kPhaseFundamentalRows, "powers of the fundamental"),
        Group("HARMONIC", kPhaseHarmonicRows, "powers beyond the fundamental"),
        Group("ENERGY", kPhaseEnergyAt, kEnergyRows, "energies of the interval"),
    });
static_assert(Tiles(Record("P", kPhasePowerSize, kPhasePowerRows)));

constexpr Field PhasePower(const char* phase, uint32_t at) {
  return Group("P", at, kPhasePowerRows, "powers of a phase").Phase(phase);
}

// Statistics of the whole system.
constexpr uint32_t kTotalPowerSize = 1576;
inline constexpr Field kTotalCombinedRows[] = {
    Six("Pp", 0, "active power", "W"),
    Six("Pm", 24, "active power", "W"),
    Six("Qip", 48, "reactive power", "var"),
    Six("Qim", 72, "reactive power", "var"),
    Six("Qcp", 96, "reactive power", "var"),
    Six("Qcm", 120, "reactive power", "var"),
    Six("Qa", 1416, "arithmetic reactive power", "var"),
    Six("Sv", 144, "vector apparent power", "VA"),
    Six("Sa", 1392, "arithmetic apparent power", "VA"),
    Six("Se", 168, "effective apparent power", "VA"),
    Six("PFip_e", 624, "effective power factor"),
    Six("PFim_e", 648, "effective power factor"),
    Six("PFcp_e", 672, "effective power factor"),
    Six("PFcm_e", 696, "effective power factor"),
    Six("PFip_v", 720, "vector power factor"),
    Six("PFim_v", 744, "vector power factor"),
    Six("PFcp_v", 768, "vector power factor"),
    Six("PFcm_v", 792, "vector power factor"),
    Six("PFip_a", 912, "arithmetic power factor"),
    Six("PFim_a", 936, "arithmetic power factor"),
    Six("PFcp_a", 960, "arithmetic power factor"),
    Six("PFcm_a", 984, "arithmetic power factor"),
};
inline constexpr Field kTotalFundamentalRows[] = {
    Six("Pp_p", 432, "positive-sequence active power", "W"),
    Six("Pm_p", 456, "positive-sequence active power", "W"),
    Six("Pp_fund", 1512, "fundamental active power", "W"),
    Six("Pm_fund", 1536, "fundamental active power", "W"),
    Six("Qip_p", 312, "positive-sequence reactive power", "var"),
    Six("Qim_p", 336, "positive-sequence reactive power", "var"),
    Six("Qcp_p", 360, "positive-sequence reactive power", "var"),
    Six("Qcm_p", 384, "positive-sequence reactive power", "var"),
    Six("Qip_v", 1296, "vector reactive power", "var"),
    Six("Qim_v", 1320, "vector reactive power", "var"),
    Six("Qcp_v", 1344, "vector reactive power", "var"),
    Six("Qcm_v", 1368, "vector reactive power", "var"),
    Six("QaFund", 1488, "arithmetic reactive power", "var"),
    Six("Se", 192, "effective apparent power", "VA"),
    Six("SvFund", 1440, "vector apparent power", "VA"),
    Six("SaFund", 1464, "arithmetic apparent power", "VA"),
    Six("Sp", 216, "positive-sequence apparent power", "VA"),
    Six("Su", 240, "unbalanced apparent power", "VA"),
    Six("LU", 408, "load unbalance"),
    Six("PFip_p", 816, "positive-sequence power factor"),
    Six("PFim_p", 840, "positive-sequence power factor"),
    Six("PFcp_p", 864, "positive-sequence power factor"),
    Six("PFcm_p", 888, "positive-sequence power factor"),
    Six("PFip_vFund", 1008, "vector power factor"),
    Six("PFim_vFund", 1032, "vector power factor"),
    Six("PFcp_vFund", 1056, "vector power factor"),
    Six("PFcm_vFund", 1080, "vector power factor"),
    Six("PFip_aFund", 1104, "arithmetic power factor"),
    Six("PFim_aFund", 1128, "arithmetic power factor"),
    Six("PFcp_aFund", 1152, "arithmetic power factor"),
    Six("PFcm_aFund", 1176, "arithmetic power factor"),
    Six("tgFip", 1200, "tangent of the phase angle"),
    Six("tgFim", 1224, "tangent of the phase angle"),
    Six("tgFcp", 1248, "tangent of the phase angle"),
    Six("tgFcm", 1272, "tangent of the phase angle"),
};
inline constexpr Field kTotalHarmonicRows[] = {
    Six("Pp", 480, "harmonic active power", "W"),
    Six("Pm", 504, "harmonic active power", "W"),
    Six("DeI", 528, "effective current distortion power", "var"),
    Six("DeV", 552, "effective voltage distortion power", "var"),
    Six("DeH", 576, "effective harmonic distortion power", "var"),
    Six("HP", 600, "harmonic pollution"),
    Six("SeN", 264, "effective non-fundamental apparent power", "VA"),
    Six("SeH", 288, "effective harmonic apparent power", "VA"),
};
inline constexpr auto kTotalPowerRows =
    Shared({"total powers",
            "Suffixes: _e effective, _v vector, _a arithmetic, _p positive-sequence; signs as in "
            "phase powers."},
           {
               Group("COMBINED", kTotalCombinedRows, "powers of all frequencies"),
               Group("FUNDAMENTAL", kTotalFundamentalRows, "powers of the fundamental"),
               Group("HARMONIC", kTotalHarmonicRows, "powers beyond the fundamental"),
               Group("ENERGY", 1560, kEnergyRows, "energies of the interval"),
           });
static_assert(Tiles(Record("pt", kTotalPowerSize, kTotalPowerRows)));

// Averages count in floats. Factors keep a second value that is not written.
inline constexpr auto kAvgAPairRows =
    Shared({"single avgA of a pair", "The second value is not written."},
           {F32("avgA", 0, "mean"), Gap(4, 4)});
constexpr Field Avg(const char* name, uint32_t index, const char* meaning, const char* unit = "") {
  return Quantity(name, index * 4, kAvgRows, meaning, unit);
}
constexpr Field AvgA(const char* name, uint32_t index, const char* meaning) {
  return Group(name, index * 4, kAvgAPairRows, meaning);
}

// Averages of one phase.
constexpr uint32_t kPhaseAveragesSize = 200;
constexpr uint32_t kPhaseAveragesEnergyAt = 46 * 4;
inline constexpr Field kPhaseCombinedAvgRows[] = {
    Avg("Pp", 0, "active power", "W"),      Avg("Pm", 1, "active power", "W"),
    Avg("Qip", 2, "reactive power", "var"), Avg("Qim", 3, "reactive power", "var"),
    Avg("Qcp", 4, "reactive power", "var"), Avg("Qcm", 5, "reactive power", "var"),
    Avg("S", 10, "apparent power", "VA"),   AvgA("PFip", 22, "power factor"),
    AvgA("PFim", 24, "power factor"),       AvgA("PFcp", 26, "power factor"),
    AvgA("PFcm", 28, "power factor"),
};
inline constexpr Field kPhaseFundamentalAvgRows[] = {
    Avg("Pp", 14, "fundamental active power", "W"),
    Avg("Pm", 15, "fundamental active power", "W"),
    Avg("Qip", 6, "fundamental reactive power", "var"),
    Avg("Qim", 7, "fundamental reactive power", "var"),
    Avg("Qcp", 8, "fundamental reactive power", "var"),
    Avg("Qcm", 9, "fundamental reactive power", "var"),
    Avg("S", 11, "fundamental apparent power", "VA"),
    AvgA("DPFip", 30, "displacement power factor"),
    AvgA("DPFim", 32, "displacement power factor"),
    AvgA("DPFcp", 34, "displacement power factor"),
    AvgA("DPFcm", 36, "displacement power factor"),
    AvgA("tgFip", 38, "tangent of the phase angle"),
    AvgA("tgFim", 40, "tangent of the phase angle"),
    AvgA("tgFcp", 42, "tangent of the phase angle"),
    AvgA("tgFcm", 44, "tangent of the phase angle"),
};
inline constexpr Field kPhaseHarmonicAvgRows[] = {
    Avg("Pp", 16, "harmonic active power", "W"),
    Avg("Pm", 17, "harmonic active power", "W"),
    Avg("Sn", 12, "non-fundamental apparent power", "VA"),
    Avg("Sh", 13, "harmonic apparent power", "VA"),
    Avg("Di", 18, "current distortion power", "var"),
    Avg("Dv", 19, "voltage distortion power", "var"),
    Avg("Dh", 20, "harmonic distortion power", "var"),
    Avg("HP", 21, "harmonic pollution"),
};
inline constexpr auto kPhaseAveragesRows =
    Shared({"phase power averages"},
           {
               Group("COMBINED", kPhaseCombinedAvgRows, "powers of all frequencies"),
               Group("FUNDAMENTAL", kPhaseFundamentalAvgRows, "powers of the fundamental"),
               Group("HARMONIC", kPhaseHarmonicAvgRows, "powers beyond the fundamental"),
               Group("ENERGY", kPhaseAveragesEnergyAt, kEnergyRows, "energies of the interval"),
           });
static_assert(Tiles(Record("P", kPhaseAveragesSize, kPhaseAveragesRows)));

constexpr Field PhaseAverages(const char* phase, uint32_t at) {
  return Group("P", at, kPhaseAveragesRows, "average powers of a phase").Phase(phase);
}

// Averages of the whole system.
constexpr uint32_t kTotalAveragesSize = 388;
inline constexpr Field kTotalCombinedAvgRows[] = {
    Avg("Pp", 0, "active power", "W"),
    Avg("Pm", 1, "active power", "W"),
    Avg("Qip", 2, "reactive power", "var"),
    Avg("Qim", 3, "reactive power", "var"),
    Avg("Qcp", 4, "reactive power", "var"),
    Avg("Qcm", 5, "reactive power", "var"),
    Avg("Qa", 87, "arithmetic reactive power", "var"),
    Avg("Sv", 6, "vector apparent power", "VA"),
    Avg("Sa", 86, "arithmetic apparent power", "VA"),
    Avg("Se", 7, "effective apparent power", "VA"),
    AvgA("PFip_e", 26, "effective power factor"),
    AvgA("PFim_e", 28, "effective power factor"),
    AvgA("PFcp_e", 30, "effective power factor"),
    AvgA("PFcm_e", 32, "effective power factor"),
    AvgA("PFip_v", 34, "vector power factor"),
    AvgA("PFim_v", 36, "vector power factor"),
    AvgA("PFcp_v", 38, "vector power factor"),
    AvgA("PFcm_v", 40, "vector power factor"),
    AvgA("PFip_a", 50, "arithmetic power factor"),
    AvgA("PFim_a", 52, "arithmetic power factor"),
    AvgA("PFcp_a", 54, "arithmetic power factor"),
    AvgA("PFcm_a", 56, "arithmetic power factor"),
};
inline constexpr Field kTotalFundamentalAvgRows[] = {
    Avg("Pp_p", 18, "positive-sequence active power", "W"),
    Avg("Pm_p", 19, "positive-sequence active power", "W"),
    Avg("Pp_fund", 91, "fundamental active power", "W"),
    Avg("Pm_fund", 92, "fundamental active power", "W"),
    Avg("Qip_p", 13, "positive-sequence reactive power", "var"),
    Avg("Qim_p", 14, "positive-sequence reactive power", "var"),
    Avg("Qcp_p", 15, "positive-sequence reactive power", "var"),
    Avg("Qcm_p", 16, "positive-sequence reactive power", "var"),
    Avg("Qip_v", 82, "vector reactive power", "var"),
    Avg("Qim_v", 83, "vector reactive power", "var"),
    Avg("Qcp_v", 84, "vector reactive power", "var"),
    Avg("Qcm_v", 85, "vector reactive power", "var"),
    Avg("QaFund", 90, "arithmetic reactive power", "var"),
    Avg("SvFund", 88, "vector apparent power", "VA"),
    Avg("SaFund", 89, "arithmetic apparent power", "VA"),
    Avg("Se", 8, "effective apparent power", "VA"),
    Avg("Sp", 9, "positive-sequence apparent power", "VA"),
    Avg("Su", 10, "unbalanced apparent power", "VA"),
    Avg("LU", 17, "load unbalance"),
    AvgA("PFip_p", 42, "positive-sequence power factor"),
    AvgA("PFim_p", 44, "positive-sequence power factor"),
    AvgA("PFcp_p", 46, "positive-sequence power factor"),
    AvgA("PFcm_p", 48, "positive-sequence power factor"),
    AvgA("PFip_vFund", 58, "vector power factor"),
    AvgA("PFim_vFund", 60, "vector power factor"),
    AvgA("PFcp_vFund", 62, "vector power factor"),
    AvgA("PFcm_vFund", 64, "vector power factor"),
    AvgA("PFip_aFund", 66, "arithmetic power factor"),
    AvgA("PFim_aFund", 68, "arithmetic power factor"),
    AvgA("PFcp_aFund", 70, "arithmetic power factor"),
    AvgA("PFcm_aFund", 72, "arithmetic power factor"),
    AvgA("tgFip", 74, "tangent of the phase angle"),
    AvgA("tgFim", 76, "tangent of the phase angle"),
    AvgA("tgFcp", 78, "tangent of the phase angle"),
    AvgA("tgFcm", 80, "tangent of the phase angle"),
};
inline constexpr Field kTotalHarmonicAvgRows[] = {
    Avg("Pp", 20, "harmonic active power", "W"),
    Avg("Pm", 21, "harmonic active power", "W"),
    Avg("DeI", 22, "effective current distortion power", "var"),
    Avg("DeV", 23, "effective voltage distortion power", "var"),
    Avg("DeH", 24, "effective harmonic distortion power", "var"),
    Avg("HP", 25, "harmonic pollution"),
    Avg("SeN", 11, "effective non-fundamental apparent power", "VA"),
    Avg("SeH", 12, "effective harmonic apparent power", "VA"),
};
inline constexpr auto kTotalAveragesRows =
    Shared({"total power averages"},
           {
               Group("COMBINED", kTotalCombinedAvgRows, "powers of all frequencies"),
               Group("FUNDAMENTAL", kTotalFundamentalAvgRows, "powers of the fundamental"),
               Group("HARMONIC", kTotalHarmonicAvgRows, "powers beyond the fundamental"),
               Group("ENERGY", 93 * 4, kEnergyRows, "energies of the interval"),
           });
static_assert(Tiles(Record("pt", kTotalAveragesSize, kTotalAveragesRows)));

// An inverter: its DC side, its AC side and what is lost between them.
constexpr uint32_t kInverterSize = 300;
inline constexpr auto kInverterRows =
    Shared({"inverter results"},
           {
               Quantity("Urms", 0, kMinMaxAvgRows, "RMS voltage of the DC side", "V"),
               Quantity("Udc", 12, kMinMaxAvgRows, "direct voltage", "V"),
               Quantity("Uac", 24, kMinMaxAvgRows, "alternating part of the voltage", "V"),
               Six("Irms", 36, "RMS current of the DC side", "A"),
               Six("Idc", 60, "direct current", "A"),
               Six("Iac", 84, "alternating part of the current", "A"),
               Six("Pp", 108, "active power", "W"),
               Six("Pm", 132, "active power", "W"),
               Six("Pdcp", 156, "power of the direct parts", "W"),
               Six("Pdcm", 180, "power of the direct parts", "W"),
               Six("Sacp", 204, "apparent power of the alternating parts", "VA"),
               Six("Sacm", 228, "apparent power of the alternating parts", "VA"),
               Six("efficiency", 252, "efficiency of the conversion", "%"),
               Six("rf", 276, "ripple factor", "%"),
           });
static_assert(Tiles(Record("inverter", kInverterSize, kInverterRows)));

constexpr uint32_t kInverterAveragesSize = 56;
inline constexpr auto kInverterAveragesRows = Shared(
    {"inverter averages"}, {
                               Avg("Urms", 0, "RMS voltage of the DC side", "V"),
                               Avg("Udc", 1, "direct voltage", "V"),
                               Avg("Uac", 2, "alternating part of the voltage", "V"),
                               Avg("Irms", 3, "RMS current of the DC side", "A"),
                               Avg("Idc", 4, "direct current", "A"),
                               Avg("Iac", 5, "alternating part of the current", "A"),
                               Avg("Pp", 6, "active power", "W"),
                               Avg("Pm", 7, "active power", "W"),
                               Avg("Pdcp", 8, "power of the direct parts", "W"),
                               Avg("Pdcm", 9, "power of the direct parts", "W"),
                               Avg("Sacp", 10, "apparent power of the alternating parts", "VA"),
                               Avg("Sacm", 11, "apparent power of the alternating parts", "VA"),
                               Avg("efficiency", 12, "efficiency of the conversion", "%"),
                               Avg("rf", 13, "ripple factor", "%"),
                           });
static_assert(Tiles(Record("inverter", kInverterAveragesSize, kInverterAveragesRows)));

inline constexpr auto kInverterEnergyRows =
    Shared({"inverter energies",
            "The DC side is measured on the inputs of phase 2, so its energies are that phase's, "
            "read a second time."},
           {
               F32("EPp", 0, "active energy consumed", "Wh").Again(),
               F32("EPm", 4, "active energy generated", "Wh").Again(),
           });

}  // namespace quorvex::intervals
