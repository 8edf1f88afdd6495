// The figures of a report for programs.
#pragma once

#include <functional>
#include <string>

#include "report/card.h"

namespace quorvex::tool {

// A JSON object with the lists "assessment", "events", those of the listings, "recordings", and the
// limits; docs/report.md describes it. `print` gets it piece by piece: listings have as many
// entries as recordings have records.
void PrintSummary(const Card& card, const ReportRequest& request,
                  const std::function<void(const std::string&)>& print);

// Whether any index is outside its limit.
bool IsAnyOutside(const Card& card);

// A float as people would write it: 204.7, not 204.699997.
double AsWritten(double value);

}  // namespace quorvex::tool
