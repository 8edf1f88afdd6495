// Which channels of a PQDIF file a recording has values for, and which columns those are.
#pragma once

#include <string>
#include <vector>

#include "exchange/pqdif_names.h"
#include "records/recording_head.h"
#include "tables/table.h"

namespace quorvex::pqdif {

struct Channel {
  std::string name;
  PhaseId phase;
  Guid type;  // of the quantity
  Measured measured;
  Unit unit;
  Guid characteristic;
  std::vector<Guid> values = {};  // what its series hold, behind that of times
  bool operator==(const Channel&) const = default;
};

// A channel over time, and the column of each of its series; of a spectrum a value an order.
struct Trend {
  Channel channel;
  std::vector<std::string> columns;
};
struct Spectra {
  std::string table;
  std::vector<Trend> trends;
};

std::vector<Trend> TrendsOf(const TableSet& set, uint8_t wiring);
std::vector<Spectra> SpectraOf(const TableSet& set, uint8_t wiring);

// Of "u12", "i1", "pt".
PhaseId PhaseOf(const std::string& channel);

Channel WaveformOf(const std::string& name, const std::string& unit);
Channel HalfCyclesOf(const std::string& voltage);
// "" is the worst of several phases.
Channel EventOf(const std::string& voltage);
Channel ChangeOf(const std::string& voltage);

// The voltage that an instrument means by a phase's number; "" where it is none.
std::string VoltageOf(int64_t phase, uint8_t wiring);

// Whether a nominal voltage and thresholds are made for this channel.
bool IsJudged(const Channel& channel, uint8_t wiring);

// All of a recording, whose settings are in force. Empty where the format has no place for it.
std::vector<Channel> ChannelsOf(const std::string& path, const RecordingHead& head);

enum RecordTypes : uint32_t {
  kGeneralType = 1,
  kEventsType = 8,
  kChangesType = 10,
  kVoltageQualityType = 16,
};

// The lists of half-cycle values of a snapshot, and of live results.
constexpr const char* kHalfCycleTables[] = {"RESULTS/RMS12", "RMS12"};

}  // namespace quorvex::pqdif
