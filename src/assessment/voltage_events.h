// Dips, swells and interruptions, made of the transitions that an instrument records phase by
// phase.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "assessment/limits.h"
#include "tables/cursor.h"

namespace quorvex {

enum class EventKind : uint8_t { kDip, kSwell, kInterruption };
const char* NameOf(EventKind kind);

// An event of the network: it begins when the first phase leaves the band and ends when the last is
// back, and the worst voltage counts.
struct VoltageEvent {
  EventKind kind;
  int64_t from;
  int64_t to;  // kNoTime where the recording ends before it
  std::vector<std::string> channels;
  double voltage;                // of a dip the lowest, of a swell the highest, in volts
  double percent;                // the same of the nominal voltage
  std::string event_class = {};  // "C2", "short"; empty where there is none
  double seconds() const { return static_cast<double>(to - from) / 1e6; }
};

// In volts.
struct Thresholds {
  double nominal = 0, dip = 0, swell = 0, interruption = 0;
  bool from_percent = false;  // they are stored as percentages
};
// Those of a recording; `nominal` replaces its own nominal voltage where it is above 0.
Thresholds ThresholdsOf(const RecordingHead& head, double nominal);

// Of a recording of voltage events; `nominal` replaces the recording's own where it is above 0.
struct RecordedEvents {
  Thresholds thresholds;
  std::vector<VoltageEvent> events;  // by the time at which they begin
  uint64_t transitions = 0;
};
RecordedEvents EventsOf(const std::string& path, const Limits& limits, double nominal,
                        const ReadOptions& options);

// The class of an event; empty where there is none.
std::string ClassOf(const VoltageEvent& event, const Limits& limits);

}  // namespace quorvex
