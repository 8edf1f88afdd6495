// Type 13: inrush currents, an entry an event.
#include "records/record_types.h"
#include "records/walk.h"

namespace quorvex {
namespace {

constexpr Field kInrushRows[] = {
    DateTime("START_TIME", 0, "start of the inrush"),
    I32("CHANNEL", 16, "channel on which it was seen"),
    F32("MAX_I", 20, "largest current", "A"),
};
constexpr Field kInrush = Record("INRUSH_RECORD", 24, kInrushRows, "an inrush current");
static_assert(Tiles<WrongByte(kInrush)>);

}  // namespace

const RecordType kInrushCurrents = {
    .type = 13,
    .word = "inrush",
    .name = "inrush currents",
    .about = "An entry an event.",
    .list = "RECORDS",
    .record = &kInrush,
    .walk = WalkCountedRecords,
    .cut = kFilledFromBefore,
};

}  // namespace quorvex
