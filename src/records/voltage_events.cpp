// Type 8: voltage events: dips, swells, interruptions.
#include "records/record_types.h"
#include "records/walk.h"
#include "settings/codes.h"

namespace quorvex {
namespace {

// Spellings as hosts know them.
constexpr Field kInformationRows[] = {
    U8("CONNECTION", 0, "wiring code").OneOf(kWirings),
    Gap(1, 3),
    F32("NOMINAL_VOLTAGE", 4, "nominal voltage", "V"),
    F32("DIP_TRESHOLD", 8, "below it is a dip"),
    F32("SWELL_TRESHOLD", 12, "above it is a swell"),
    F32("INTTERUPT_TRESHOLD", 16, "below it is an interruption"),
    Gap(20, 12),
};
constexpr Field kInformation = Record("INFORMATION", 32, kInformationRows, "thresholds in force");
static_assert(Tiles<WrongByte(kInformation)>);

constexpr Field kPhaseRows[] = {I32("N", 0, "count of a phase, 1 to 3").Times(3)};

constexpr Field kCounterRows[] = {
    I32("TOTAL_TRANSITION_COUNT", 0, "transitions"),
    I32("TOTAL_PHASE_START_COUNT", 4, "events begun on a phase"),
    Group("TOTAL_PHASE_START_COUNTS", 8, kPhaseRows, "of these, per phase"),
    I32("TOTAL_PHASE_DIP_START_COUNT", 20, "dips begun"),
    I32("TOTAL_PHASE_SWELL_START_COUNT", 24, "swells begun"),
    I32("TOTAL_PHASE_INTERRUPT_START_COUNT", 28, "interruptions begun"),
    Group("PHASE_DIP_START_COUNTS", 32, kPhaseRows, "dips begun, per phase"),
    Group("PHASE_SWELL_START_COUNTS", 44, kPhaseRows, "swells begun, per phase"),
    Group("PHASE_INTERRUPT_START_COUNTS", 56, kPhaseRows, "interruptions begun, per phase"),
    I32("TOTAL_PHASE_END_COUNT", 68, "events ended on a phase"),
    Group("TOTAL_PHASE_END_COUNTS", 72, kPhaseRows, "of these, per phase"),
    I32("TOTAL_PHASE_DIP_END_COUNT", 84, "dips ended"),
    I32("TOTAL_PHASE_SWELL_END_COUNT", 88, "swells ended"),
    I32("TOTAL_PHASE_INTERRUPT_END_COUNT", 92, "interruptions ended"),
    Group("PHASE_DIP_END_COUNTS", 96, kPhaseRows, "dips ended, per phase"),
    Group("PHASE_SWELL_END_COUNTS", 108, kPhaseRows, "swells ended, per phase"),
    Group("PHASE_INTERRUPT_END_COUNTS", 120, kPhaseRows, "interruptions ended, per phase"),
    I32("TOTAL_UNITED_POLY_PHASE_START_COUNT", 132, "united polyphase events begun"),
    I32("TOTAL_POLY_PHASE_START_COUNT", 136, "polyphase events begun"),
    I32("TOTAL_POLY_PHASE_DIP_START_COUNT", 140, "polyphase dips begun"),
    I32("TOTAL_POLY_PHASE_SWELL_START_COUNT", 144, "polyphase swells begun"),
    I32("TOTAL_POLY_PHASE_INTERRUPT_START_COUNT", 148, "polyphase interruptions begun"),
    I32("TOTAL_UNITED_POLY_PHASE_END_COUNT", 152, "united polyphase events ended"),
    Gap(156, 4),  // polyphase events ended: hosts know no element for them
    I32("TOTAL_POLY_PHASE_DIP_END_COUNT", 160, "polyphase dips ended"),
    I32("TOTAL_POLY_PHASE_SWELL_END_COUNT", 164, "polyphase swells ended"),
    I32("TOTAL_POLY_PHASE_INTERRUPT_END_COUNT", 168, "polyphase interruptions ended"),
};

constexpr Field kDipRows[] = {
    F32("MIN_VALUE", 220, "lowest voltage of the dip", "V"),
    F32("DEPTH", 224, "depth of the dip"),
};
constexpr Field kSwellRows[] = {F32("MAX_VALUE", 228, "highest voltage of the swell", "V")};
constexpr Field kInterruptRows[] = {
    F32("MIN_VALUE", 232, "lowest voltage of the interruption", "V"),
};
constexpr Field kDataRows[] = {
    Group("DIP", kDipRows),
    Group("SWELL", kSwellRows),
    Group("INTERRUPT", kInterruptRows),
};

constexpr Field kTransitionRows[] = {
    I32("PHASE_NUMBER", 0, "phase"),
    F32("RMS_12_AT_TRANSITION", 4, "half-cycle RMS voltage at the transition", "V"),
    Group("STATISTIC", 8, kCounterRows, "running counts, this transition included")
        .InTable("STATISTIC"),
    I32("TRANSITION_FROM_EVENT_TYPE_ID", 180, "kind of event before"),
    I32("TRANSITION_TO_EVENT_TYPE_ID", 184, "kind of event after"),
    I32("IS_TRANSITION_TO_GLOBAL_DIP", 188, "a polyphase dip begins"),
    I32("IS_TRANSITION_TO_GLOBAL_SWELL", 192, "a polyphase swell begins"),
    I32("IS_TRANSITION_TO_GLOBAL_INTERRUPT", 196, "a polyphase interruption begins"),
    I32("IS_TRANSITION_TO_GLOBAL_UNITED_EVENT", 200, "a united event begins"),
    I32("IS_TRANSITION_FROM_GLOBAL_DIP", 204, "a polyphase dip ends"),
    I32("IS_TRANSITION_FROM_GLOBAL_SWELL", 208, "a polyphase swell ends"),
    I32("IS_TRANSITION_FROM_GLOBAL_INTERRUPT", 212, "a polyphase interruption ends"),
    I32("IS_TRANSITION_FROM_GLOBAL_UNITED_EVENT", 216, "a united event ends"),
    Group("DATA", kDataRows, "extreme values of each kind of event"),
    Gap(236, 12),
    DateTime("TIME_STAMP", 248, "time of the transition"),
};
constexpr Field kTransition = Record("TRANSITION", 264, kTransitionRows, "a voltage transition");
static_assert(Tiles<WrongByte(kTransition)>);

}  // namespace

const RecordType kVoltageEvents = {
    .type = 8,
    .word = "voltage_events",
    .name = "voltage events",
    .about =
        "A record is a transition between dips, swells, interruptions and normal voltage, with the "
        "running counts of all of them. The head is longer than that of other types, and the "
        "thresholds in force follow it.",
    .list = "TRANSITIONS",
    .record = &kTransition,
    .walk = WalkRecordsToEnd,
    .settings_at = kLongSettingsAt,
    .records_at = kLongHeadSize + kInformation.size,
    .state = true,
    .progress = true,
    .information = &kInformation,
};
static_assert(kLongHeadSize + kInformation.size == 3224);

}  // namespace quorvex
