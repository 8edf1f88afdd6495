// Type 2: snapshots of everything that the instrument measures, each with the blocks of the
// connection's channels behind it.
#include "records/channel_groups.h"
#include "records/connection_modes.h"
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
    Group("SYM", 632, kSymmetryRows),
    Group("RMS12", kResultsSize, kRms12ListRows, "latest half-cycle readings"),
    F32("TEMP", 696, "instrument temperature", "degC"),
    Gap(700, 124),
    I32("FLAG", 824, "flags"),
    Gap(828, 4),
};

// What stands in front of the channels. Without an element of its own: the channels follow inside
// the same one.
constexpr Field kSnapshotRows[] = {
    Rows(0, kRecordStartRows),
    Group("RESULTS", kResultsAt, kResultsRows),
};
constexpr Field kSnapshot =
    Record("", kRms12At + Rms12ListSize(kRms12LongRoom), kSnapshotRows, "a snapshot");
static_assert(Tiles(kSnapshot));

void WriteChannels(const Conversion& c, const Plan& plan, const RenderInputs& scales, int32_t count,
                   uint8_t* block) {
  for (const char* label : ChannelModeOf(c.settings.connection).labels) {
    if (label == nullptr) break;
    ReadBytes(c.input, block, kChannelBlockSize);
    const int pair = 2 * ChannelOf(label);
    RenderInputs inputs;
    inputs.number[kScopeCount] = count;
    inputs.scale[0] = scales.scale[pair];
    inputs.scale[1] = scales.scale[pair + 1];
    OpenElement(c.document, label);
    plan.Render(c.document, block, inputs);
    CloseElement(c.document);
  }
}

// One buffer serves every snapshot and one every channel, so what a file cut short lacks is left
// from what was read before.
void WriteSnapshots(const Conversion& c) {
  const Plan start_plan(kSnapshot, CaseOf(c.settings));
  const Plan channel_plan(kSnapshotChannel, CaseOf(c.settings));
  const uint32_t room = c.settings.reduced_lists != 0 ? kRms12LongRoom : kRms12Room;
  RenderInputs scales;
  SampleScales(c.settings, NeutralRange::kOfPhases, scales.scale);
  Tracked<uint8_t> snapshot(kSnapshot.size);
  Tracked<uint8_t> channel(kChannelBlockSize);
  while (ReadBytes(c.input, snapshot.get(), kRecordStartSize) == kRecordStartSize) {
    ReadBytes(c.input, snapshot.get() + kResultsAt, kResultsSize + Rms12ListSize(room));
    OpenElement(c.document, "RECORD_RESULTS");
    start_plan.Render(c.document, snapshot.get());
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
    .list = "RECORDS",
    .record = &kSnapshot,
    .write = WriteSnapshots,
    .companion = true,
    .state = true,
    .progress = true,
};

}  // namespace quorvex
