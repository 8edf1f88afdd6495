// Every record type that converts, one descriptor from each file of this folder.
#pragma once

#include "records/recording.h"

namespace quorvex {

extern const RecordType kGeneral;
extern const RecordType kSnapshots;
extern const RecordType kChannelReadings;
extern const RecordType kSettingsOnly;
extern const RecordType kWaveformCapture;
extern const RecordType kLiveResults;
extern const RecordType kAlarms;
extern const RecordType kVoltageEvents;
extern const RecordType kSignalling;
extern const RecordType kRapidVoltageChanges;
extern const RecordType kAverages;
extern const RecordType kTransients;
extern const RecordType kInrushCurrents;
extern const RecordType kMoreChannelReadings;
extern const RecordType kSessions;
extern const RecordType kVoltageQuality;
extern const RecordType kWaveformSeries;
extern const RecordType kEnergyMeter;

inline constexpr const RecordType* kRecordTypes[] = {
    &kGeneral,              // 1
    &kSnapshots,            // 2
    &kChannelReadings,      // 3
    &kSettingsOnly,         // 4
    &kWaveformCapture,      // 5
    &kLiveResults,          // 6
    &kAlarms,               // 7
    &kVoltageEvents,        // 8
    &kSignalling,           // 9
    &kRapidVoltageChanges,  // 10
    &kAverages,             // 11
    &kTransients,           // 12
    &kInrushCurrents,       // 13
    &kMoreChannelReadings,  // 14
    &kSessions,             // 15
    &kVoltageQuality,       // 16
    &kWaveformSeries,       // 17
    &kEnergyMeter,          // 18
};

}  // namespace quorvex
