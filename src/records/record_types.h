// Every record type that converts, one descriptor from each file of this folder.
#pragma once

#include "records/recording.h"

namespace quorvex {

extern const RecordType kAlarms;
extern const RecordType kEnergyMeter;
extern const RecordType kInrushCurrents;
extern const RecordType kRapidVoltageChanges;
extern const RecordType kSessions;
extern const RecordType kSignalling;
extern const RecordType kTransients;
extern const RecordType kVoltageEvents;

inline constexpr const RecordType* kRecordTypes[] = {
    &kAlarms,               // 7
    &kVoltageEvents,        // 8
    &kSignalling,           // 9
    &kRapidVoltageChanges,  // 10
    &kTransients,           // 12
    &kInrushCurrents,       // 13
    &kSessions,             // 15
    &kEnergyMeter,          // 18
};

}  // namespace quorvex
