// Type 2: snapshots of everything that the instrument measures, each with the blocks of the
// connection's channels behind it.
#include "records/channel_groups.h"
#include "records/channels.h"
#include "records/record_types.h"
#include "records/walk.h"
#include "settings/codes.h"
#include "support/loads.h"
#include "support/memory.h"

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
    Rows(0, kRecordStartRows<kScopeCountAt, kScopeRoom>),
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

void TellChannels(Walk* w, const Inputs& scales, int32_t count, uint8_t* block) {
  for (const Field& row : kChannelRows) {
    if ((row.cases & w->which) == 0) continue;
    const uint64_t at = w->position;
    const uint32_t got = Read(w, block, kChannelBlockSize);
    const int pair = 2 * ChannelOf(row.name);
    Inputs inputs;
    inputs.number[kScopeCount] = count;
    inputs.scale[0] = scales.scale[pair];
    inputs.scale[1] = scales.scale[pair + 1];
    w->listener->BeginGroup(row, nullptr);
    Tell(w, kSnapshotChannel, block, at, got, inputs);
    w->listener->EndGroup();
  }
}

uint32_t ResultsSize(const UifParams& settings) {
  const uint32_t room = settings.reduced_lists != 0 ? kRms12LongRoom : kRms12Room;
  return kResultsSize + Rms12ListSize(room);
}

uint64_t SizeOfSnapshot(const UifParams& settings) {
  return uint64_t{kRecordStartSize} + ResultsSize(settings) +
         uint64_t{RowsIn(kChannelRows, CaseOf(settings))} * kChannelBlockSize;
}

// One buffer serves every snapshot and one every channel, so what a file cut short lacks is left
// from what was read before.
void WalkSnapshots(Walk* w) {
  const uint64_t size = SizeOfSnapshot(w->settings);
  Inputs scales;
  SampleScales(w->settings, NeutralRange::kOfPhases, scales.scale);
  Tracked<uint8_t> snapshot(kSnapshot.size);
  Tracked<uint8_t> channel(kChannelBlockSize);
  for (;;) {
    BeginRecord(w);
    if (Read(w, snapshot.get(), kRecordStartSize) != kRecordStartSize) {
      LeaveOut(w, size);
      return;
    }
    Read(w, snapshot.get() + kResultsAt, ResultsSize(w->settings));
    w->listener->BeginGroup(kSnapshot, nullptr);
    Tell(w, kFront, snapshot.get(), w->record_at, w->position - w->record_at);
    TellChannels(w, scales, Load<int32_t>(snapshot.get() + kScopeCountAt), channel.get());
    w->listener->EndGroup();
    if (!EndRecord(w, size) || !ReportPosition(*w)) return;
  }
}

#define AT(member) offsetof(UifParams, wave.member)
constexpr uint32_t kLevels = TriggerSet({kTriggerLevelU, kTriggerLevelI});
constexpr InfoField kInfo[] = {
    {"start", InfoForm::kTime, AT(start_time)},
    {"end", InfoForm::kTime, AT(end_time)},
    {"trigger", InfoForm::kTrigger, AT(trigger)},
    {"level", InfoForm::kLevel, AT(level), {}, 0, AT(trigger), kLevels},
    {"slope", InfoForm::kSlope, AT(slope), {}, 0, AT(trigger), kLevels},
    {"duration", InfoForm::kDuration, AT(duration)},
    {"pretrigger", InfoForm::kDuration, AT(pretrigger)},
};
#undef AT

}  // namespace

const RecordType kSnapshots = {
    .type = 2,
    .word = "snapshots",
    .name = "snapshots",
    .about =
        "A snapshot is its start, the totals of the three accumulation periods, the latest "
        "half-cycle readings and a block for each channel of the connection, one behind the "
        "other. The list of readings has room for 90, or for 330 where lists are reduced; it is "
        "stored whole whatever its count. Connections of an unknown code have no channels. "
        "Samples are raw steps of the converter, written in volts and amperes: times the step of "
        "the range, its calibration "
        "and the ratios of the transformers.",
    .list = "RECORDS",
    .record = &kSnapshot,
    .walk = WalkSnapshots,
    .companion = true,
    .state = true,
    .progress = true,
    .cut = {kRecordStartSize, kFilledFromBefore.rest},
    .size = SizeOfSnapshot,
    .line = kInfo,
};

}  // namespace quorvex
