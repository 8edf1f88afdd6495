// Every record type that converts, one descriptor from each file of this folder.
#pragma once

#include "records/recording.h"

namespace quorvex {

extern const RecordType kGeneral;
extern const RecordType kSettingsOnly;
extern const RecordType kRapidVoltageChanges;
extern const RecordType kAverages;
extern const RecordType kSessions;
extern const RecordType kVoltageQuality;

inline constexpr const RecordType* kRecordTypes[] = {
    &kGeneral,              // 1
    &kSettingsOnly,         // 4
    &kRapidVoltageChanges,  // 10
    &kAverages,             // 11
    &kSessions,             // 15
    &kVoltageQuality,       // 16
};

}  // namespace quorvex
