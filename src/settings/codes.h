// Codes of the settings whose words are known.
#pragma once

#include <iterator>

#include "layout/field.h"

namespace quorvex {

inline constexpr const char* kWiringWords[] = {
    "",
    "single-phase",
    "three-phase three-wire",
    "three-phase four-wire",
    "three-phase three-wire (second code)",
    "two-phase three-wire",
    "single-phase with inverter",
    "three-phase three-wire with inverter",
};
inline constexpr Codes kWirings = {kWiringWords, std::size(kWiringWords)};

inline constexpr const char* kTriggerWords[] = {
    "",        "Manual",  "Events",   "Alarms",   "Events & Alarms",
    "Level U", "Level I", "Envelope", "Interval",
};
inline constexpr Codes kTriggers = {kTriggerWords, std::size(kTriggerWords)};

// Triggers that have a level.
constexpr uint32_t kTriggerLevelU = 5;
constexpr uint32_t kTriggerLevelI = 6;
constexpr uint32_t kTriggerEnvelope = 7;

inline constexpr const char* kSlopeWords[] = {"", "Rise", "Fall", "Any"};
inline constexpr Codes kSlopes = {kSlopeWords, std::size(kSlopeWords)};

}  // namespace quorvex
