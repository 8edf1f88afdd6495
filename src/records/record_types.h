// Every record type. Each has a file of its own in this folder, and one line here.
#pragma once

#include <iterator>

#include "records/recording.h"

namespace quorvex {

// In the order of their numbers.
#define QUORVEX_RECORD_TYPES(TYPE) \
  TYPE(kGeneral)                   \
  TYPE(kSnapshots)                 \
  TYPE(kChannelReadings)           \
  TYPE(kSettingsOnly)              \
  TYPE(kWaveformCapture)           \
  TYPE(kLiveResults)               \
  TYPE(kAlarms)                    \
  TYPE(kVoltageEvents)             \
  TYPE(kSignalling)                \
  TYPE(kRapidVoltageChanges)       \
  TYPE(kAverages)                  \
  TYPE(kTransients)                \
  TYPE(kInrushCurrents)            \
  TYPE(kMoreChannelReadings)       \
  TYPE(kSessions)                  \
  TYPE(kVoltageQuality)            \
  TYPE(kWaveformSeries)            \
  TYPE(kEnergyMeter)

#define QUORVEX_DECLARED(name) extern const RecordType name;
QUORVEX_RECORD_TYPES(QUORVEX_DECLARED)
#undef QUORVEX_DECLARED

#define QUORVEX_ROW(name) &(name),
inline constexpr const RecordType* kRecordTypes[] = {QUORVEX_RECORD_TYPES(QUORVEX_ROW)};
#undef QUORVEX_ROW
constexpr uint32_t kRecordTypeCount = std::size(kRecordTypes);

// The type with this number, or null.
inline const RecordType* FindRecordType(uint32_t number) {
  for (const RecordType* type : kRecordTypes) {
    if (type->type == number) return type;
  }
  return nullptr;
}

}  // namespace quorvex
