// Waveforms as exchange formats and reports take them: the records of a recording that have
// samples, and their channels.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tables/table_rows.h"

namespace quorvex {

struct WaveChannel {
  std::string name;    // "u1", "u12", "iinv"
  std::string column;  // of the table `samples`
  std::string unit;    // "V", "A"
};

// The channels of the recording's wiring, by the same names whatever its type: snapshots call the
// currents of three wires by pairs, and live results hold channels of other wirings too. Empty
// where the recording has no samples.
std::vector<WaveChannel> WaveChannels(const std::string& path);

struct WaveRecord {
  uint64_t number = 0;
  int64_t start = kNoTime, trigger = kNoTime;
  double step = 0;  // seconds; 0 where no believable one is recorded
};

// The numbers of the records that the recording has, read without their samples.
std::vector<uint64_t> WaveNumbers(const std::string& path);

// Every record of the recording, in order, told one by one until `take` returns false.
void ForEachWaveRecord(const std::string& path, const ReadOptions& options,
                       const std::function<bool(const WaveRecord&)>& take);

// The rows of the samples of a record; the columns are those of the channels, in order.
std::unique_ptr<TableRows> SamplesOf(const std::string& path,
                                     const std::vector<WaveChannel>& channels, uint64_t record,
                                     const ReadOptions& options);

}  // namespace quorvex
