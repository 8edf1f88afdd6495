// The sections of a page. Each gives its HTML without its heading, and nothing where the card has
// nothing for it.
#pragma once

#include <string>
#include <vector>

#include "report/card.h"
#include "report/charts.h"
#include "report/trends.h"
#include "report/waves.h"

namespace quorvex::tool {

struct PageData {
  const Card& card;
  const ReportRequest& request;
  size_t common;  // of all paths: the folders in front, which are not shown
  Charts charts;
  std::vector<InstrumentTrends> trends;
  Waves waves;
};

// A time, and a recording's path, as people read them.
std::string ShownTime(int64_t microseconds, const ReportRequest& request);
std::string ShownName(const PageData& page, size_t recording);

std::string VerdictSection(const PageData& page);
std::string TrendsSection(const PageData& page);
std::string HarmonicsSection(PageData* page);
std::string EventsSection(PageData* page);
std::string WaveformsSection(const PageData& page);
std::string EnergySection(const PageData& page);
std::string HealthSection(const PageData& page);

// "R0005SNP.REC, record 1, 2024-03-04 10:20:05"
std::string RecordName(const PageData& page, const Wave& wave);
// Says of a longer table that it is cut; nothing of others.
std::string CutNote(uint64_t rows);
// A figure that the page's script draws into.
std::string FigureHtml(const Figure& figure, const std::string& unit = "");
// Listings of a type; nothing where there are none.
std::string ListingHtml(const PageData& page, const char* key);

}  // namespace quorvex::tool
