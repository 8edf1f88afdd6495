// Records of what happens at a time of its own.
#pragma once

#include <string>

#include "network.h"
#include "sample.h"

namespace quorvex::samples {

enum EventType { kNormal, kDip, kSwell, kInterrupt };
constexpr int kEventTypes = kInterrupt + 1;

struct VoltageEvent {
  EventType type;
  int phase;
  double voltage;  // lowest or highest half-cycle
};

// A recording of voltage events, on each phase for itself.
class VoltageEvents {
 public:
  explicit VoltageEvents(const UifParams& settings);
  // Ascending in time.
  void Add(const VoltageEvent& event, bool starts, const DateTimeRecord& time);
  void Write(const std::string& folder, const std::string& name) const;

 private:
  RecordingFile file_;
  RecordBytes record_;  // the counts run on from one to the next
  int transitions_ = 0;
  int counts_[2][kEventTypes][3] = {};  // ends and starts, by type and phase
};

// A large motor starts: the voltage sags by a few volts and settles a little lower. `clock` is at
// the first half-cycle.
RecordBytes RapidVoltageChange(int phase, Clock clock);

// With the energies of `hours` under the load of now.
void AppendSnapshot(const UifParams& settings, const Network& network, const Clock& clock,
                    double hours, RecordingFile* file);

}  // namespace quorvex::samples
