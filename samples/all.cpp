#include "sample.h"

namespace quorvex::samples {

void MakeAll(const std::string& folder) {
  MakeGeneral(folder);
  MakeVoltageQuality(folder);
  MakeSettingsOnly(folder);
  MakeAverages(folder);
  MakeRapidVoltageChanges(folder);
  MakeSessions(folder);
  MakeVoltageEvents(folder);
  MakeAlarms(folder);
  MakeEnergyMeter(folder);
  MakeSignalling(folder);
  MakeTransients(folder);
  MakeInrush(folder);
  MakeSnapshots(folder);
  MakeLiveResults(folder);
  MakeChannelReadings(folder);
  MakeWaveformCapture(folder);
  MakeWaveformSeries(folder);
}

}  // namespace quorvex::samples
