#include "sample.h"

namespace quorvex::samples {

void MakeAll(const std::string& folder) {
  MakeRapidVoltageChanges(folder);
  MakeSessions(folder);
}

}  // namespace quorvex::samples
