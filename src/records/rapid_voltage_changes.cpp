// Type 10: rapid voltage changes (RVC).
#include "records/record_types.h"
#include "records/walk.h"

namespace quorvex {
namespace {

constexpr uint32_t kHalfCycles = 200;

constexpr Field kHalfCycleRows[] = {
    F32("U", 0, "half-cycle RMS voltage, oldest first", "V").Every(4),
    DateTime("TIME_STAMP", 800, "time of the value").Every(kDateTimeSize),
};

constexpr Field kHalfCyclesRows[] = {
    Each("RMS12", 0, kHalfCycles, 0, kHalfCycleRows),
};

constexpr Field kChangeRows[] = {
    I32("PHASE", 0, "phase number"),
    F32("SS1", 4, "steady-state level before the change", "V"),
    F32("SS2", 8, "steady-state level after the change", "V"),
    Gap(12, 4),
    F32("DU_MAX", 16, "largest deviation during the change"),
    F32("DU_SS", 20, "steady-state deviation"),
    DateTime("RVC_START_TIME", 24, "start of the change"),
    DateTime("RVC_STOP_TIME", 40, "end of the change"),
    F32("DURATION", 4076, "duration of the change", "s"),
    Group("RMS12_VALUES", 56, kHalfCyclesRows),
    Gap(4056, 20),
    Gap(4080, 8),
};

constexpr Field kChange = Record("RVC_RECORD", 4088, kChangeRows, "a rapid voltage change");
static_assert(Tiles<WrongByte(kChange)>);

}  // namespace

const RecordType kRapidVoltageChanges = {
    .type = 10,
    .word = "voltage_changes",
    .name = "rapid voltage changes",
    .about = "Each change comes with the 200 half-cycle voltages around it.",
    .list = "RECORDS",
    .record = &kChange,
    .walk = WalkCountedRecords,
    .cut = kFilledFromBefore,
};

}  // namespace quorvex
