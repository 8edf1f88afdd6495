// Every record type that converts, one descriptor from each file of this folder.
#pragma once

#include "records/recording.h"

namespace quorvex {

extern const RecordType kRapidVoltageChanges;
extern const RecordType kSessions;

inline constexpr const RecordType* kRecordTypes[] = {
    &kRapidVoltageChanges,  // 10
    &kSessions,             // 15
};

}  // namespace quorvex
