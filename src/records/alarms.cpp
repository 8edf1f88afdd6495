// Type 7: alarms.
#include "records/record_types.h"
#include "records/walk.h"
#include "settings/settings_table.h"

namespace quorvex {
namespace {

constexpr Field kInformation = Record("INFORMATION", sizeof(AlarmSettings), kAlarmSettingsRows,
                                      "alarm settings of the recording");
static_assert(Tiles<WrongByte(kInformation)>);

constexpr Field kSerialRows[] = {I32("N", 0, "serial number").Times(9)};
constexpr uint32_t kGroupSize = 9 * 4;

constexpr Field kStatisticRows[] = {
    I32("TRANSITION_SERIAL_NUMBER", 0, "of all transitions"),
    Group("GROUP_UIF_START_SERIAL_NUMBERS", 4, kSerialRows),
    Group("GROUP_COMBINED_POWER_START_SERIAL_NUMBERS", 4 + kGroupSize, kSerialRows),
    Group("GROUP_FUNDAMENTAL_POWER_START_SERIAL_NUMBERS", 4 + 2 * kGroupSize, kSerialRows),
    Group("GROUP_NONFUNDAMENTAL_POWER_START_SERIAL_NUMBERS", 4 + 3 * kGroupSize, kSerialRows),
    Group("GROUP_FLICKER_START_SERIAL_NUMBERS", 4 + 4 * kGroupSize, kSerialRows),
    Group("GROUP_SYM_START_SERIAL_NUMBERS", 4 + 5 * kGroupSize, kSerialRows),
    Group("GROUP_HARMONICS_START_SERIAL_NUMBERS", 4 + 6 * kGroupSize, kSerialRows),
    Group("GROUP_INTERHARMONICS_START_SERIAL_NUMBERS", 4 + 7 * kGroupSize, kSerialRows),
    Group("GROUP_SIGNALING_START_SERIAL_NUMBERS", 4 + 8 * kGroupSize, kSerialRows),
    Group("GROUP_TEMPERATURE_START_SERIAL_NUMBERS", 4 + 9 * kGroupSize, kSerialRows),
    Group("GROUP_ALL_START_SERIAL_NUMBERS", 4 + 10 * kGroupSize, kSerialRows),
    Group("GROUP_UIF_END_SERIAL_NUMBERS", 4 + 11 * kGroupSize, kSerialRows),
    Group("GROUP_COMBINED_POWER_END_SERIAL_NUMBERS", 4 + 12 * kGroupSize, kSerialRows),
    Group("GROUP_FUNDAMENTAL_POWER_END_SERIAL_NUMBERS", 4 + 13 * kGroupSize, kSerialRows),
    Group("GROUP_NONFUNDAMENTAL_POWER_END_SERIAL_NUMBERS", 4 + 14 * kGroupSize, kSerialRows),
    Group("GROUP_FLICKER_END_SERIAL_NUMBERS", 4 + 15 * kGroupSize, kSerialRows),
    Group("GROUP_SYM_END_SERIAL_NUMBERS", 4 + 16 * kGroupSize, kSerialRows),
    Group("GROUP_HARMONICS_END_SERIAL_NUMBERS", 4 + 17 * kGroupSize, kSerialRows),
    Group("GROUP_INTERHARMONICS_END_SERIAL_NUMBERS", 4 + 18 * kGroupSize, kSerialRows),
    Group("GROUP_SIGNALING_END_SERIAL_NUMBERS", 4 + 19 * kGroupSize, kSerialRows),
    Group("GROUP_TEMPERATURE_END_SERIAL_NUMBERS", 4 + 20 * kGroupSize, kSerialRows),
    Group("GROUP_ALL_END_SERIAL_NUMBERS", 4 + 21 * kGroupSize, kSerialRows),
};

constexpr Field kTransitionRows[] = {
    Group("STATISTIC", 0, kStatisticRows, "running serial numbers, this transition included")
        .InTable("STATISTIC"),
    Group("SETTING", 796, kAlarmSettingRows, "the alarm setting that fired"),
    I32("STATE_ID", 820, "state of the alarm"),
    I32("ALARM_GROUP_ID", 824, "group of the alarm"),
    Group("QUANTITY", 828, kQuantityRows, "the measured quantity"),
    F32("QUANTITY_VALUE", 840, "the measured value"),
    Gap(844, 4),
    DateTime("TIME_STAMP", 848, "time of the transition"),
};
constexpr Field kTransition = Record("TRANSITION", 864, kTransitionRows, "an alarm transition");
static_assert(Tiles<WrongByte(kTransition)>);

}  // namespace

const RecordType kAlarms = {
    .type = 7,
    .word = "alarms",
    .name = "alarms",
    .about =
        "A record is the start or the end of an alarm, with the running serial numbers of all "
        "groups of alarms. The head is longer than that of other types, and the alarm settings of "
        "the recording follow it.",
    .list = "TRANSITIONS",
    .record = &kTransition,
    .walk = WalkRecordsToEnd,
    .settings_at = kLongSettingsAt,
    .records_at = kLongHeadSize + kInformation.size,
    .state = true,
    .progress = true,
    .information = &kInformation,
};
static_assert(kLongHeadSize + kInformation.size == 3364);

}  // namespace quorvex
