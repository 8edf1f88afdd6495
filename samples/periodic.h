// What periodic recordings of a feeder are made of.
#pragma once

#include <initializer_list>
#include <string>

#include "feeder.h"
#include "sample.h"

namespace quorvex::samples {

constexpr int kInterval = 600;
constexpr int kRecordsPerDay = 24 * 3600 / kInterval;
constexpr double kHoursPerRecord = kInterval / 3600.0;
constexpr int kFrequenciesPerRecord = kInterval / 10;
constexpr double kRoot3 = 1.7320508075688772;
constexpr const char* kLines[] = {"12", "23", "31"};

using Names = std::initializer_list<const char*>;
constexpr const char* kMin = "min";
constexpr const char* kMax = "max";
inline const Names kMinMaxRms = {kMin, kMax, "rms"};
inline const Names kMinMaxRmsA = {kMin, kMax, "rms", "rmsA"};
inline const Names kSix = {kMin, kMax, "avg", "avgA"};

// A statistic of a value that moved by `spread` (a part of it) to both sides.
void Statistic(RecordBytes* record, const std::string& path, double value, Names names,
               double spread = 0.02);

// "u" and 0 give "u1".
std::string Numbered(const char* text, int index);

// Of an interval that starts at `clock`.
void SetTimes(RecordBytes* record, const Clock& clock);

// A general record of the full layout; `hour` of the day is for its list of frequencies.
RecordBytes FullRecord(const Feeder& network, const Clock& clock, double hour);
// The list: where it starts, as many values as an interval has, all missing until they are set.
void StartFrequencies(RecordBytes* record, const Clock& clock);
std::string FrequencyPath(int index);

// A voltage quality record.
RecordBytes QualityRecord(const UifParams& settings, const Feeder& network);

}  // namespace quorvex::samples
