// Type 11: a recording summed up three times, as averages, as maxima and as last values, per line.
#include <cstring>

#include "records/record_types.h"
#include "records/walk.h"
#include "support/memory.h"

namespace quorvex {
namespace {

constexpr uint32_t kOrderCount = 51;

constexpr auto kPeakRows = Shared({"power peak"}, {
                                                      F32("P", 0, "power", "W"),
                                                      Gap(4, 4),
                                                      DateTime("DATE_TIME", 8, "time of the peak"),
                                                  });
constexpr auto kPowerRows = Shared(
    {"summed powers", "Capacitive power is written before inductive power, but stored behind it."},
    {
        F64("Ep", 0, "active energy", "Wh"),
        F64("Eq", 8, "reactive energy", "varh"),
        F32("P", 16, "active power", "W"),
        F32("Qc", 24, "capacitive reactive power", "var"),
        F32("Qi", 20, "inductive reactive power", "var"),
        F32("Sn", 28, "non-fundamental apparent power", "VA"),
        F32("SfundU", 32, "unbalanced fundamental apparent power", "VA"),
        Gap(36, 4),
        Group("MAX_POWER_1", 40, kPeakRows, "largest peak"),
        Group("MAX_POWER_2", 64, kPeakRows, "second largest peak"),
        Group("MAX_POWER_3", 88, kPeakRows, "third largest peak"),
    });

constexpr auto kHarmonicRows =
    Shared({"average harmonics"},
           {
               F32("thd", 0, "total harmonic distortion"),
               F32("avg", 4, "average of an order, 0 to 50").Times(kOrderCount).ByOrder(),
           });
constexpr auto kInterharmonicRows = Shared(
    {"average interharmonics", "Stored like harmonics, but their distortion is not written."},
    {
        Gap(0, 4),
        F32("avg", 4, "average of an order, 0 to 50").Times(kOrderCount).ByOrder(),
    });
constexpr Field kSpectraRows[] = {
    Group("uh", 256, kHarmonicRows, "voltage harmonics").Unit("V").InTable("HARMONICS/uh"),
    Group("uhPr", 464, kHarmonicRows, "voltage harmonics").Unit("%").InTable("HARMONICS/uhPr"),
    Group("uih", 1088, kInterharmonicRows, "voltage interharmonics")
        .Unit("V")
        .InTable("HARMONICS/uih"),
    Group("uihPr", 1296, kInterharmonicRows, "voltage interharmonics")
        .Unit("%")
        .InTable("HARMONICS/uihPr"),
    Group("ih", 672, kHarmonicRows, "current harmonics").Unit("A").InTable("HARMONICS/ih"),
    Group("ihPr", 880, kHarmonicRows, "current harmonics").Unit("%").InTable("HARMONICS/ihPr"),
    Group("iih", 1504, kInterharmonicRows, "current interharmonics")
        .Unit("A")
        .InTable("HARMONICS/iih"),
    Group("iihPr", 1712, kInterharmonicRows, "current interharmonics")
        .Unit("%")
        .InTable("HARMONICS/iihPr"),
};

constexpr uint32_t kLineSize = 1920;
constexpr uint32_t kSpectraAt = 256;
constexpr auto kLineRows =
    Shared({"line of averages",
            "The four spectra of harmonics lie before the four of interharmonics, but are written "
            "in turn."},
           {
               Gap(0, 32),
               Group("MOTOR", 32, kPowerRows, "energy taken from the network"),
               Group("GENERATOR", 144, kPowerRows, "energy given to the network"),
               Group("HARMONICS", kSpectraRows),
           });
constexpr auto kLineWithoutSpectraRows =
    Shared({"line of extremes", "There is room for spectra, but nothing in it."},
           {
               Gap(0, 32),
               Group("MOTOR", 32, kPowerRows, "energy taken from the network"),
               Group("GENERATOR", 144, kPowerRows, "energy given to the network"),
               Gap(kSpectraAt, kLineSize - kSpectraAt),
           });

constexpr uint32_t kSummarySize = 7688;
template <const auto& kLine>
constexpr Field kSummaryRows[] = {
    I32("NUM", 0, "values summed up"),
    Gap(4, 4),
    Group("L1", 8 + 0 * kLineSize, kLine, "phase 1"),
    Group("L2", 8 + 1 * kLineSize, kLine, "phase 2"),
    Group("L3", 8 + 2 * kLineSize, kLine, "phase 3"),
    Group("TN", 8 + 3 * kLineSize, kLine, "total and neutral"),
};

// The three summaries as one record: there is one of each in a file.
constexpr uint32_t kSummaries = 3;
constexpr Field kSummariesRows[] = {
    Group("REC_AVG", 0 * kSummarySize, kSummaryRows<kLineRows>, "averages of the recording"),
    Group("REC_AVG_MAX", 1 * kSummarySize, kSummaryRows<kLineWithoutSpectraRows>,
          "maxima of the recording"),
    Group("REC_AVG_LAST", 2 * kSummarySize, kSummaryRows<kLineWithoutSpectraRows>,
          "last values of the recording"),
};
constexpr Field kSummariesRecord = Record("", kSummaries* kSummarySize, kSummariesRows);
static_assert(Tiles<WrongByte(kSummariesRecord)>);

// What a summary of a file cut short lacks is taken from the one before.
void WalkSummaries(Walk* w) {
  BeginRecord(w);
  Tracked<uint8_t> summaries(kSummariesRecord.size);
  for (uint32_t i = 0; i < kSummaries; ++i) {
    uint8_t* summary = summaries.get() + i * kSummarySize;
    if (i > 0) std::memcpy(summary, summary - kSummarySize, kSummarySize);
    Read(w, summary, kSummarySize);
  }
  TellRecord(w, summaries.get());
}

}  // namespace

const RecordType kAverages = {
    .type = 11,
    .word = "averages",
    .name = "averages",
    .about =
        "A recording summed up three times, for each phase and in total. Energies are doubles.",
    .record = &kSummariesRecord,
    .walk = WalkSummaries,
    .once = true,
    .cut = {1, "what it lacks is left over from the summary before (zeros in the first)"},
};

}  // namespace quorvex
