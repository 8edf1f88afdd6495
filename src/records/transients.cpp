// Type 12: an index of transient captures.
#include "records/record_types.h"
#include "records/walk.h"
#include "settings/settings_table.h"

namespace quorvex {
namespace {

constexpr uint32_t kNameSize = 100;

constexpr Field kEntryRows[] = {
    Text("name", 0, kNameSize, "name of the capture"),
    Group(kSettingsBlock.name, kNameSize, kSettingsRows, "settings of the capture"),
};
constexpr Field kEntry =
    Record("TRANSIENT_RECORD", kNameSize + kSettingsSize, kEntryRows, "a captured transient");
static_assert(Tiles<WrongByte(kEntry)>);

}  // namespace

const RecordType kTransients = {
    .type = 12,
    .word = "transients",
    .name = "transients",
    .about =
        "Each entry names a capture, whose waveforms are a file of their own, and carries the "
        "settings that were in force for it.",
    .list = "RECORDS",
    .record = &kEntry,
    .walk = WalkCountedRecords,
    .record_settings_at = kNameSize,
    .cut = kFilledFromBefore,
};

}  // namespace quorvex
