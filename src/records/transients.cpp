// Type 12: an index of transient captures. Each entry names a capture, whose waveforms are a file
// of their own, and carries the settings that were in force for it.
#include "records/record_types.h"
#include "settings/settings_table.h"

namespace quorvex {
namespace {

constexpr uint32_t kNameSize = 100;

constexpr Field kEntryRows[] = {
    Text("name", 0, kNameSize, "name of the capture"),
    Group("UIF_PARAMS", kNameSize, kSettingsRows, "settings of the capture"),
};
constexpr Field kEntry =
    Record("TRANSIENT_RECORD", kNameSize + kSettingsSize, kEntryRows, "a captured transient");
static_assert(Tiles(kEntry));

}  // namespace

const RecordType kTransients = {
    .type = 12,
    .name = "transients",
    .list = "RECORDS",
    .record = &kEntry,
    .write = WriteCountedRecords,
    .record_settings_at = kNameSize,
};

}  // namespace quorvex
