// Every record type that converts, one descriptor from each file of this folder.
#pragma once

#include "records/recording.h"

namespace quorvex {

extern const RecordType kSnapshots;
extern const RecordType kChannelReadings;
extern const RecordType kWaveformCapture;
extern const RecordType kLiveResults;
extern const RecordType kRapidVoltageChanges;
extern const RecordType kMoreChannelReadings;
extern const RecordType kSessions;
extern const RecordType kWaveformSeries;

inline constexpr const RecordType* kRecordTypes[] = {
    &kSnapshots,            // 2
    &kChannelReadings,      // 3
    &kWaveformCapture,      // 5
    &kLiveResults,          // 6
    &kRapidVoltageChanges,  // 10
    &kMoreChannelReadings,  // 14
    &kSessions,             // 15
    &kWaveformSeries,       // 17
};

}  // namespace quorvex
