// Type 6: one copy of the live results, every channel position of the instrument whatever the
// connection. The instrument can keep these results bare, without head, settings and totals; a file
// of them would have no type to be known by, so that form is not built.
#include "records/channel_groups.h"
#include "records/channels.h"
#include "records/record_types.h"
#include "records/sample_scales.h"
#include "records/walk.h"
#include "support/loads.h"
#include "support/memory.h"

namespace quorvex {
namespace {

constexpr uint32_t kChannelsAt = 8;
constexpr uint32_t PositionAt(uint32_t position) {
  return kChannelsAt + position * kChannelBlockSize;
}
constexpr uint32_t kNeutralAt = PositionAt(3);
constexpr uint32_t kTotalsAt = PositionAt(7);
constexpr uint32_t kStartAt = 78528;
constexpr uint32_t kFurtherAt = 79392;
constexpr uint32_t kCheckAt = kFurtherAt + 64;
constexpr uint32_t kLiveResultsSize = kCheckAt + 60;

constexpr Cases kNoInverter = NotConnections({6, 7});

constexpr Field kRms12ListRows[] = {
    Gap(0, 4),
    Rms12List(kRms12LongRoom),
};

// The sequence check came later than its neighbours in the document, not in the record.
constexpr Field kConnectionCheckRows[] = {
    I32("Ua", 0),    I32("Ub", 4),    I32("Uc", 8),    I32("Ia", 12),
    I32("Ib", 16),   I32("Ic", 20),   I32("PhA", 28),  I32("Phb", 32),
    I32("PhC", 36),  I32("Useq", 24), I32("freq", 40), I32("results", 44, "verdict"),
    I32("Uinv", 48), I32("Iinv", 52), I32("Pinv", 56),
};

// In the block of the channel that measures the inverter's input.
constexpr Field kInverterRows[] = {
    F32("Urms", 4, "RMS voltage", "V").Again(),
    F32("Udc", 9584, "DC voltage", "V").Again(),
    F32("Uac", 9580, "AC voltage", "V").Again(),
    F32("Irms", 36, "RMS current", "A").Again(),
    F32("Idc", 9592, "DC current", "A").Again(),
    F32("Iac", 9588, "AC current", "A").Again(),
    F32("P", 8400, "power", "W").Again(),
    F32("Pdc", 8408, "DC power", "W").Again(),
    F32("Sac", 8404, "AC apparent power", "VA").Again(),
    F32("eff", 8412, "efficiency").Again(),
    F32("rf", 9596, "ripple factor").Again(),
};

constexpr Field kLiveResultsRows[] = {
    Group("L1", PositionAt(0), kLiveChannelRows<0>, "phase 1"),
    Group("L2", PositionAt(1), kLiveChannelRows<1>, "phase 2"),
    Group("L3", PositionAt(2), kLiveChannelRows<2>, "phase 3"),
    Group("N", kNeutralAt, kLiveChannelRows<3>, "the neutral").In(kNoInverter),
    Group("INV", kNeutralAt, kLiveChannelRows<3>, "the input of an inverter").In(kInverter),
    Group("L12", PositionAt(4), kLiveChannelRows<0>, "lines 1 and 2"),
    Group("L23", PositionAt(5), kLiveChannelRows<1>, "lines 2 and 3"),
    Group("L31", PositionAt(6), kLiveChannelRows<2>, "lines 3 and 1"),
    Rows(kTotalsAt, kTotalsRows),
    Group("SYM", 67832, kMomentarySymmetryRows, "symmetrical components"),
    Group("RMS12", 67900, kRms12ListRows, "latest half-cycle readings"),
    DateTime("TIME_START", kStartAt, "time of the first sample"),
    F32("TIME_STEP", 78548, "time between samples", "s").IsTimeStep(),
    I32("numUsedSamples", 0, "number of used samples").Counts(kScopeRoom),
    F32("TEMP", 67896, "instrument temperature", "degC"),
    I32("FLAG", 78584, "flags"),
    Group("CONNECTION_CHECK", kCheckAt, kConnectionCheckRows, "check of the connection"),
    Group("INVERTER", kNeutralAt, kInverterRows, "values of an inverter").In(kInverter),
    Gap(4, 4),
    Gap(78464, 64),
    Gap(78544, 4),
    Gap(78552, 32),
    Gap(78588, kFurtherAt - 78588),
    Gap(kFurtherAt, kCheckAt - kFurtherAt),
};
constexpr Field kLiveResultsRecord = Record("UIF_RESULTS", kLiveResultsSize, kLiveResultsRows);
static_assert(Tiles<WrongByte(kLiveResultsRecord)>);

void WalkLiveResults(Walk* w) {
  BeginRecord(w);
  Tracked<uint8_t> record(kLiveResultsSize);
  Read(w, record.get(), kLiveResultsSize);
  Inputs inputs;
  inputs.number[kScopeCount] = Load<int32_t>(record.get());
  SampleScales(w->settings, NeutralRange::kOwn, inputs.scale);
  TellRecord(w, record.get(), inputs);
}

constexpr InfoField kInfo[] = {{"time", InfoForm::kTime, kStartAt, InfoFrom::kFirstRecord}};

}  // namespace

const RecordType kLiveResults = {
    .type = 6,
    .word = "live",
    .name = "live results",
    .about =
        "One copy of what the instrument shows: every channel position, whatever the connection. "
        "Pairs of phases are scaled as their first phase. Values of an inverter stand in the block "
        "of the channel that measures its input: in its tail and behind its first energies. "
        "Samples are raw steps of the converter, written in volts and amperes: times the step of "
        "the range, its calibration and the ratios of the transformers.",
    .record = &kLiveResultsRecord,
    .walk = WalkLiveResults,
    .state = true,
    .once = true,
    .cut = {0, "what it lacks is zero"},
    .line = kInfo,
};

}  // namespace quorvex
