// Type 18: tests of an energy meter, a record a metering interval.
#include "records/record_types.h"
#include "records/walk.h"

namespace quorvex {
namespace {

// By connection code: 1 and 6 have one phase, 5 two, 3 three with neutral; 2 and 4 know only
// line-to-line voltages, and 7 adds the neutral to those but has no powers of single phases.
constexpr Cases kVoltage1 = Connections({1, 3, 5, 6});
constexpr Cases kVoltage2 = Connections({3, 5});
constexpr Cases kVoltage3 = Connections({3});
constexpr Cases kLineToLine = Connections({2, 4, 7});
constexpr Cases kWithNeutral = Connections({1, 3, 5, 6, 7});
constexpr Cases kLine1 = kVoltage1 | kLineToLine;
constexpr Cases kLine2 = kVoltage2 | kLineToLine;
constexpr Cases kLine3 = kVoltage3 | kLineToLine;
constexpr Cases kPower1 = kVoltage1 | Connections({2, 4});
constexpr Cases kPower2 = kVoltage2 | Connections({2, 4});
constexpr Cases kPower3 = kVoltage3 | Connections({2, 4});
constexpr Cases kTotal = kVoltage2 | kLineToLine;  // a single phase is its own total

constexpr uint32_t kStartAt = 0;
constexpr uint32_t kEndAt = 16;
constexpr Field kResultRows[] = {
    DateTime("START_TIME", kStartAt, "start of the interval"),
    DateTime("END_TIME", kEndAt, "end of the interval"),
    I32("PACKETS_NUM", 32, "measurements in the interval"),
    Gap(36, 4),
    F64("E_METER_ENERGY", 40, "energy that the meter counted"),
    F64("MEAS_Ep", 48, "active energy measured"),
    F64("MEAS_Eq", 56, "reactive energy measured"),
    F32("U1", 64, "voltage of phase 1", "V").In(kVoltage1),
    F32("U2", 68, "voltage of phase 2", "V").In(kVoltage2),
    F32("U3", 72, "voltage of phase 3", "V").In(kVoltage3),
    F32("U12", 64, "voltage between lines 1 and 2", "V").In(kLineToLine),
    F32("U23", 68, "voltage between lines 2 and 3", "V").In(kLineToLine),
    F32("U31", 72, "voltage between lines 3 and 1", "V").In(kLineToLine),
    F32("Un", 76, "voltage of the neutral", "V").In(kWithNeutral),
    F32("I1", 80, "current of phase 1", "A").In(kLine1),
    F32("I2", 84, "current of phase 2", "A").In(kLine2),
    F32("I3", 88, "current of phase 3", "A").In(kLine3),
    F32("In", 92, "current of the neutral", "A").In(kWithNeutral),
    F32("P1p", 96, "active power of phase 1, consumed").In(kPower1),
    F32("P1m", 112, "active power of phase 1, generated").In(kPower1),
    F32("P2p", 100, "active power of phase 2, consumed").In(kPower2),
    F32("P2m", 116, "active power of phase 2, generated").In(kPower2),
    F32("P3p", 104, "active power of phase 3, consumed").In(kPower3),
    F32("P3m", 120, "active power of phase 3, generated").In(kPower3),
    F32("PTp", 108, "total active power, consumed").In(kTotal),
    F32("PTm", 124, "total active power, generated").In(kTotal),
    F32("PFp", 128, "power factor, consumed").In(kLine1),
    F32("PFm", 132, "power factor, generated").In(kLine1),
    F32("error", 136, "error of the meter"),
    Gap(140, 4),
};
constexpr Field kResult = Record("EMETER_RESULT", 144, kResultRows, "a metering interval");
static_assert(Tiles<WrongByte(kResult)>);

constexpr InfoField kInfo[] = {
    {"start", InfoForm::kTime, kStartAt, InfoFrom::kFirstRecord},
    {"end", InfoForm::kTime, kEndAt, InfoFrom::kLastRecord},
};

}  // namespace

const RecordType kEnergyMeter = {
    .type = 18,
    .word = "energy_meter",
    .name = "energy meter tests",
    .about =
        "What is written follows the connection; of an unknown one there are the interval, the "
        "energies and the error of the meter, but no quantities of the network.",
    .list = "RECORDS",
    .record = &kResult,
    .walk = WalkCountedRecords,
    .cut = kFilledFromBefore,
    .line = kInfo,
};

}  // namespace quorvex
