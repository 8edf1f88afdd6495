// Type 2: snapshots of everything that the instrument measures, each with the blocks of the
// connection's channels behind it.
#include "records/channel_groups.h"
#include "records/channels.h"
#include "records/record_types.h"
#include "support/loads.h"
#include "support/memory.h"
#include "xml/plan.h"

namespace quorvex {
namespace {

constexpr uint32_t kResultsAt = kRecordStartSize;
constexpr uint32_t kResultsSize = 832;
constexpr uint32_t kRms12At = kResultsAt + kResultsSize;

// The longer list of half-cycle readings goes with reduced lists elsewhere.
constexpr Field kRms12ListRows[] = {
    Rms12List(kRms12Room).In(kFullLists),
    Rms12List(kRms12LongRoom).In(static_cast<Cases>(~kFullLists)),
    Gap(0, 4),
};

constexpr Field kResultsRows[] = {
    Gap(0, 8),
    Rows(8, kTotalsRows),
    Group("SYM", 632, kMomentarySymmetryRows, "symmetrical components"),
    Group("RMS12", kResultsSize, kRms12ListRows, "latest half-cycle readings"),
    F32("TEMP", 696, "instrument temperature", "degC"),
    Gap(700, 124),
    I32("FLAG", 824, "flags"),
    Gap(828, 4),
};

// What stands in front of the channels. Without an element of its own: the channels follow inside
// the same one.
constexpr Field kFrontRows[] = {
    Rows(0, kRecordStartRows),
    Group("RESULTS", kResultsAt, kResultsRows, "results of the whole system"),
};
constexpr Field kFront = Record("", kRms12At + Rms12ListSize(kRms12LongRoom), kFrontRows);
static_assert(Tiles<WrongByte(kFront)>);

constexpr Field Channel(const char* label, Cases in, const char* meaning) {
  Field f = Group(label, kSnapshotChannelRows, meaning).In(in).Behind();
  f.size = kChannelBlockSize;
  return f;
}
// Connections of an unknown code have no channels.
constexpr Field kChannelRows[] = {
    Channel("L1", Connections({1, 3, 5, 6}), "phase 1"),
    Channel("L2", kPhase2, "phase 2"),
    Channel("L3", kPhase3, "phase 3"),
    Channel("N", Connections({1, 3, 5}), "the neutral"),
    Channel("L12", kLineToLine, "lines 1 and 2"),
    Channel("L23", kLineToLine, "lines 2 and 3"),
    Channel("L31", kLineToLine, "lines 3 and 1"),
    Channel("INV", kInverter, "the input of an inverter"),
};
constexpr Field kSnapshotRows[] = {
    kFront,
    Rows(0, kChannelRows),
};
constexpr Field kSnapshot = Record("RECORD_RESULTS", kFront.size, kSnapshotRows, "a snapshot");

void WriteChannels(const Conversion& c, const Plan& plan, const Inputs& scales, int32_t count,
                   uint8_t* block) {
  for (const Field& row : kChannelRows) {
    if ((row.cases & CaseOf(c.settings)) == 0) continue;
    ReadBytes(c.input, block, kChannelBlockSize);
    const int pair = 2 * ChannelOf(row.name);
    Inputs inputs;
    inputs.number[kScopeCount] = count;
    inputs.scale[0] = scales.scale[pair];
    inputs.scale[1] = scales.scale[pair + 1];
    OpenElement(c.document, row.name);
    plan.Render(c.document, block, inputs);
    CloseElement(c.document);
  }
}

// One buffer serves every snapshot and one every channel, so what a file cut short lacks is left
// from what was read before.
void WriteSnapshots(const Conversion& c) {
  const Plan front_plan(kFront, CaseOf(c.settings));
  const Plan channel_plan(kSnapshotChannel, CaseOf(c.settings));
  const uint32_t room = c.settings.reduced_lists != 0 ? kRms12LongRoom : kRms12Room;
  Inputs scales;
  SampleScales(c.settings, NeutralRange::kOfPhases, scales.scale);
  Tracked<uint8_t> snapshot(kSnapshot.size);
  Tracked<uint8_t> channel(kChannelBlockSize);
  while (ReadBytes(c.input, snapshot.get(), kRecordStartSize) == kRecordStartSize) {
    ReadBytes(c.input, snapshot.get() + kResultsAt, kResultsSize + Rms12ListSize(room));
    OpenElement(c.document, kSnapshot.name);
    front_plan.Render(c.document, snapshot.get());
    WriteChannels(c, channel_plan, scales, Load<int32_t>(snapshot.get() + kScopeCountAt),
                  channel.get());
    CloseElement(c.document);
    if (!ReportPosition(c)) return;
  }
}

}  // namespace

const RecordType kSnapshots = {
    .type = 2,
    .name = "snapshots",
    .about =
        "A snapshot is its start, the totals of the three accumulation periods, the latest "
        "half-cycle readings and a block for each channel of the connection, one behind the "
        "other. The list of readings has room for 90, or for 330 where lists are reduced; it is "
        "stored whole whatever its count. Connections of an unknown code have no channels. The "
        "word at 20 is the number of samples of each waveform. Samples are raw steps of the "
        "converter, written in volts and amperes: times the step of the range, its calibration "
        "and the ratios of the transformers.",
    .list = "RECORDS",
    .record = &kSnapshot,
    .write = WriteSnapshots,
    .companion = true,
    .state = true,
    .progress = true,
    .cut = {kRecordStartSize, kFilledFromBefore.rest},
    .samples_at = kScopeCountAt,
};

}  // namespace quorvex
