// The groups of results that general and voltage quality recordings are made of, apart from powers
// (power_groups.h): each structure once, as rows in the order in which they are written. Values
// stand in the document as they are stored; nothing is scaled. Snapshots have groups of the same
// names and another form, so these live in a namespace of their own.
#pragma once

#include <string_view>

#include "layout/tiles.h"
#include "settings/cases.h"

namespace quorvex::intervals {

// A group whose values share a unit.
template <typename Table>
constexpr Field Quantity(const char* name, uint32_t at, const Table& table, const char* meaning,
                         const char* unit = "") {
  return Group(name, at, table, meaning).Unit(unit);
}

// Statistics over an interval. `avgA` and `rmsA` are kept by the instrument beside the plain mean.
inline constexpr auto kMinMaxRmsRows =
    Shared({"extremes and RMS"},
           {F32("min", 0, "smallest"), F32("max", 4, "largest"), F32("rms", 8, "RMS")});
inline constexpr auto kMinMaxAvgRows =
    Shared({"extremes and average"},
           {F32("min", 0, "smallest"), F32("max", 4, "largest"), F32("avg", 8, "mean")});
inline constexpr auto kMaxRmsRows =
    Shared({"maximum and RMS"}, {F32("max", 0, "largest"), F32("rms", 4, "RMS")});
inline constexpr auto kMinMaxRmsARows = Shared(
    {"extremes and two RMS"}, {F32("min", 0, "smallest"), F32("max", 4, "largest"),
                               F32("rms", 8, "RMS"), F32("rmsA", 12, "kept beside the RMS")});
inline constexpr auto kMaxRmsARows =
    Shared({"maximum and two RMS"},
           {F32("max", 0, "largest"), F32("rms", 4, "RMS"), F32("rmsA", 8, "kept beside the RMS")});
constexpr uint32_t kSixValueSize = 24;
inline constexpr auto kSixValueRows =
    Shared({"six-value statistic",
            "Six values are stored, four written: `avgA` is the fifth, not the fourth."},
           {
               F32("min", 0, "smallest"),
               F32("max", 4, "largest"),
               F32("avg", 8, "mean"),
               Gap(12, 4),
               F32("avgA", 16, "kept beside the mean"),
               Gap(20, 4),
           });
inline constexpr auto kFrequencyRows = Shared(
    {"frequency statistic", "Stored like a six-value statistic; its average is not written."},
    {
        F32("min", 0, "smallest"),
        F32("max", 4, "largest"),
        Gap(8, 8),
        F32("avgA", 16, "kept beside the mean"),
        Gap(20, 4),
    });

// Single values, each in an element of its own.
inline constexpr auto kRmsRows = Shared({"single RMS"}, {F32("rms", 0, "the value")});
inline constexpr Field kNoRmsRows[] = {NoValue("rms")};
inline constexpr auto kAvgRows = Shared({"single average"}, {F32("avg", 0, "mean")});
inline constexpr auto kAvgARows = Shared({"single avgA"}, {F32("avgA", 0, "kept beside the mean")});

constexpr Field Six(const char* name, uint32_t at, const char* meaning, const char* unit = "") {
  return Quantity(name, at, kSixValueRows, meaning, unit);
}

// Results of one voltage.
constexpr uint32_t kVoltageSize = 180;
inline constexpr Field kPstRows[] = {Rows(60, kMinMaxRmsRows), I32("flag", 168, "validity flag")};
inline constexpr Field kPltRows[] = {Rows(76, kMinMaxRmsRows), I32("flag", 172, "validity flag")};
inline constexpr Field kPst1mRows[] = {Rows(92, kMinMaxRmsRows), I32("flag", 176, "validity flag")};
inline constexpr Field kVoltageSignalingRows[] = {
    Group("SIGNAL1", 108, kMinMaxAvgRows, "voltage at signalling frequency 1").Unit("V"),
    Group("SIGNAL2", 120, kMinMaxAvgRows, "voltage at signalling frequency 2").Unit("V"),
};
inline constexpr auto kSignalInOutRows =
    Shared({"signalling verdicts"}, {
                                        I32("IN", 0, "3-second values within the limit"),
                                        I32("OUT", 4, "3-second values beyond the limit"),
                                    });
inline constexpr Field kVoltageSignaling3sRows[] = {
    Group("SIGNAL1", 144, kSignalInOutRows, "signalling frequency 1"),
    Group("SIGNAL2", 152, kSignalInOutRows, "signalling frequency 2"),
};
inline constexpr Field kUnderOverRows[] = {
    F32("under", 0, "underdeviation"),
    F32("over", 4, "overdeviation"),
};
inline constexpr auto kVoltageRows = Shared(
    {"voltage results", "Recordings with reduced lists keep flicker and signalling to themselves."},
    {
        Quantity("rms", 0, kMinMaxRmsRows, "RMS voltage", "V"),
        Gap(12, 4),
        Quantity("thd", 16, kMaxRmsRows, "total harmonic distortion", "V"),
        Quantity("thdPr", 24, kMaxRmsRows, "total harmonic distortion", "%"),
        Quantity("tdd", 32, kMaxRmsRows, "total demand distortion", "V"),
        Quantity("tddPr", 40, kMaxRmsRows, "total demand distortion", "%"),
        Group("cf", 48, kMinMaxAvgRows, "crest factor"),
        Group("Pst", kPstRows, "short-term flicker").In(kFullLists),
        Gap(72, 4),
        Group("Plt", kPltRows, "long-term flicker").In(kFullLists),
        Gap(88, 4),
        Group("Pst1m", kPst1mRows, "one-minute flicker").In(kFullLists),
        Gap(104, 4),
        Group("SIGNALING", kVoltageSignalingRows, "mains signalling").In(kFullLists),
        Gap(132, 12),
        Group("SIGNALING_3s", kVoltageSignaling3sRows, "mains signalling against its limits")
            .In(kFullLists),
        Quantity("UNDER_OVER_VOLTAGE", 160, kUnderOverRows, "deviation from the nominal voltage",
                 "%"),
    });
static_assert(Tiles<WrongByte(Record("U", kVoltageSize, kVoltageRows))>);

constexpr Field Voltage(const char* phase, uint32_t at) {
  return Group("U", at, kVoltageRows, "results of a voltage").Phase(phase);
}

// Results of one current.
constexpr uint32_t kCurrentSize = 128;
inline constexpr auto kCurrentRows = Shared(
    {"current results"}, {
                             Quantity("rms", 0, kMinMaxRmsARows, "RMS current", "A"),
                             Gap(16, 4),
                             Quantity("thd", 20, kMaxRmsARows, "total harmonic distortion", "A"),
                             Gap(32, 4),
                             Quantity("thdPr", 36, kMaxRmsARows, "total harmonic distortion", "%"),
                             Gap(48, 4),
                             Quantity("tdd", 52, kMaxRmsARows, "total demand distortion", "A"),
                             Gap(64, 4),
                             Quantity("tddPr", 68, kMaxRmsARows, "total demand distortion", "%"),
                             Gap(80, 4),
                             Six("cf", 84, "crest factor"),
                             Group("k", 108, kMinMaxRmsARows, "K factor of transformer losses"),
                             Gap(124, 4),
                         });
static_assert(Tiles<WrongByte(Record("I", kCurrentSize, kCurrentRows))>);

constexpr Field Current(const char* phase, uint32_t at) {
  return Group("I", at, kCurrentRows, "results of a current").Phase(phase);
}

// The lists of channels and the frequencies, as they stand in full and in standard records.
inline constexpr Field kSevenVoltagesRows[] = {
    Voltage("u1", 0 * kVoltageSize),  Voltage("u2", 1 * kVoltageSize),
    Voltage("u3", 2 * kVoltageSize),  Voltage("un", 3 * kVoltageSize),
    Voltage("u12", 4 * kVoltageSize), Voltage("u23", 5 * kVoltageSize),
    Voltage("u31", 6 * kVoltageSize),
};
inline constexpr Field kFourCurrentsRows[] = {
    Current("i1", 0 * kCurrentSize),
    Current("i2", 1 * kCurrentSize),
    Current("i3", 2 * kCurrentSize),
    Current("in", 3 * kCurrentSize),
};
inline constexpr Field kFrequenciesRows[] = {
    Quantity("f_sampl", 0, kFrequencyRows, "frequency the sampling follows", "Hz"),
    Quantity("f_200ms", 24, kFrequencyRows, "frequency over 200 ms", "Hz"),
    Quantity("f_10s", 48, kFrequencyRows, "frequency over 10 s", "Hz"),
};
inline constexpr Field kZeroCrossingsRows[] = {I32("ZCnum", 0, "zero crossings counted")};

constexpr uint32_t kSymmetrySize = 180;
inline constexpr auto kSymmetryRows =
    Shared({"symmetrical components",
            "The written order is positive, negative, zero; the stored one is not."},
           {
               Quantity("Up", 36, kMinMaxRmsRows, "positive-sequence voltage", "V"),
               Gap(48, 4),
               Quantity("Um", 72, kMinMaxRmsRows, "negative-sequence voltage", "V"),
               Gap(84, 4),
               Quantity("Uo", 0, kMinMaxRmsRows, "zero-sequence voltage", "V"),
               Gap(12, 4),
               Quantity("Ip", 52, kMinMaxRmsARows, "positive-sequence current", "A"),
               Gap(68, 4),
               Quantity("Im", 88, kMinMaxRmsARows, "negative-sequence current", "A"),
               Gap(104, 4),
               Quantity("Io", 16, kMinMaxRmsARows, "zero-sequence current", "A"),
               Gap(32, 4),
               Quantity("um", 108, kMinMaxRmsRows, "negative-sequence voltage ratio", "%"),
               Gap(120, 4),
               Quantity("u0", 124, kMinMaxRmsRows, "zero-sequence voltage ratio", "%"),
               Gap(136, 4),
               Quantity("im", 140, kMinMaxRmsARows, "negative-sequence current ratio", "%"),
               Gap(156, 4),
               Quantity("i0", 160, kMinMaxRmsARows, "zero-sequence current ratio", "%"),
               Gap(176, 4),
           });
static_assert(Tiles<WrongByte(Record("sym", kSymmetrySize, kSymmetryRows))>);

// Voltages of the compact record and of voltage quality are single values.
constexpr Field OneRms(const char* name, uint32_t at, const char* meaning, const char* unit = "") {
  return Quantity(name, at, kRmsRows, meaning, unit);
}

// Spectra hold the orders 0 to 50.
constexpr uint32_t kOrders = 51;

// What is in percent has a name that ends in "Pr".
constexpr const char* UnitOf(std::string_view name, const char* unit) {
  return name.ends_with("Pr") ? "%" : unit;
}

// Voltages keep two floats an order, both written; currents four, of which three are written.
constexpr uint32_t kVoltageSpectrumSize = kOrders * 2 * 4;
constexpr uint32_t kCurrentSpectrumSize = kOrders * 4 * 4;
constexpr Field VoltageHarmonics(const char* phase, uint32_t at) {
  return Spectrum("HARM_U", phase, at, kOrders, 2, 2, "voltage harmonics").Unit(UnitOf(phase, "V"));
}
constexpr Field CurrentHarmonics(const char* phase, uint32_t at) {
  return Spectrum("HARM_I", phase, at, kOrders, 4, 3, "current harmonics").Unit(UnitOf(phase, "A"));
}
constexpr Field VoltageInterharmonics(const char* phase, uint32_t at) {
  return Spectrum("IHARM_U", phase, at, kOrders, 2, 2, "voltage interharmonics")
      .Unit(UnitOf(phase, "V"));
}
constexpr Field CurrentInterharmonics(const char* phase, uint32_t at) {
  return Spectrum("IHARM_I", phase, at, kOrders, 4, 3, "current interharmonics")
      .Unit(UnitOf(phase, "A"));
}
// Of powers only the first float of an order is written.
constexpr Field PowerHarmonics(const char* phase, uint32_t at) {
  return Spectrum("HARM_THD", phase, at, kOrders, 2, 1, "power harmonics").Unit("W");
}
// One float an order.
constexpr uint32_t kPlainSpectrumSize = kOrders * 4;
constexpr Field PlainVoltageHarmonics(const char* phase, uint32_t at, uint32_t orders = kOrders) {
  return Spectrum("HARM_U", phase, at, orders, 1, 1, "voltage harmonics").Unit(UnitOf(phase, "V"));
}
constexpr Field PlainCurrentHarmonics(const char* phase, uint32_t at) {
  return Spectrum("HARM_I", phase, at, kOrders, 1, 1, "current harmonics").Unit(UnitOf(phase, "A"));
}

}  // namespace quorvex::intervals
