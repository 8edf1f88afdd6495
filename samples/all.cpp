#include "sample.h"

namespace quorvex::samples {

void MakeAll(const std::string& folder) {
  MakeRapidVoltageChanges(folder);
  MakeSessions(folder);
  MakeSnapshots(folder);
  MakeLiveResults(folder);
  MakeChannelReadings(folder);
  MakeWaveformCapture(folder);
  MakeWaveformSeries(folder);
}

}  // namespace quorvex::samples
