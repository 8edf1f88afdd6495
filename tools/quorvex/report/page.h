// A report as a page: one HTML file with everything in it.
#pragma once

#include <string>

#include "report/card.h"

namespace quorvex::tool {

std::string PageOf(const Card& card, const ReportRequest& request);

}  // namespace quorvex::tool
