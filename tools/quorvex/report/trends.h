// How the network was over the whole period: what recordings of intervals hold, as lines over time.
#pragma once

#include <string>
#include <vector>

#include "report/card.h"
#include "report/charts.h"

namespace quorvex::tool {

struct TrendSeries {
  std::string label;
  double lowest, mean, highest;
};

struct Trend {
  Figure figure;
  std::string unit;
  uint64_t intervals_a_point = 1;
  std::vector<TrendSeries> series;
};

struct EnergyRow {
  std::string label;  // "p1", "total"
  double active_consumed = 0, active_generated = 0, reactive_consumed = 0, reactive_generated = 0;
};

// What one instrument of the card has measured.
struct InstrumentTrends {
  std::string serial;
  std::vector<Trend> trends;
  std::vector<EnergyRow> energy;
  Span time = {kNoTime, kNoTime};
};

// Adds the charts. Of recordings of the same time the fullest is drawn.
std::vector<InstrumentTrends> AddTrends(const Card& card, const ReportRequest& request,
                                        Charts* charts);

}  // namespace quorvex::tool
