#include "sample.h"

namespace quorvex::samples {

void MakeAll(const std::string& folder) {
  MakeGeneral(folder);
  MakeSnapshots(folder);
  MakeChannelReadings(folder);
  MakeSettingsOnly(folder);
  MakeWaveformCapture(folder);
  MakeLiveResults(folder);
  MakeAlarms(folder);
  MakeVoltageEvents(folder);
  MakeSignalling(folder);
  MakeRapidVoltageChanges(folder);
  MakeAverages(folder);
  MakeTransients(folder);
  MakeInrush(folder);
  MakeSessions(folder);
  MakeVoltageQuality(folder);
  MakeWaveformSeries(folder);
  MakeEnergyMeter(folder);
}

}  // namespace quorvex::samples
