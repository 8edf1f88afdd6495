// What happened: dips, swells and interruptions with their classes and their plot, and the records
// of what is told one by one.
#include <cmath>
#include <map>

#include "report/html.h"
#include "report/sections.h"
#include "report/summary.h"

namespace quorvex::tool {
namespace {

std::string CountsHtml(const std::string& title, const EventClasses& classes,
                       const std::map<std::string, uint64_t>& counts) {
  std::vector<std::string> titles = {title};
  double from = 0.01;
  for (const double to : classes.seconds) {
    titles.push_back("#" + NumberText(from) + " to " + NumberText(to) + " s");
    from = to;
  }
  HtmlTable table("classes", titles);
  for (const EventClasses::Row& row : classes.rows) {
    const std::string name = row.to >= 1000
                                 ? "from " + NumberText(row.from) + " %"
                                 : NumberText(row.from) + " to " + NumberText(row.to) + " %";
    std::vector<std::string> cells = {name};
    for (size_t c = 0; c < classes.seconds.size(); ++c) {
      const std::string id = row.name + std::to_string(c + 1);
      const auto found = counts.find(id);
      cells.push_back(id + ": " + CountText(found != counts.end() ? found->second : 0));
    }
    table.Row(cells);
  }
  return table.Html();
}

std::string PointsOf(const std::vector<Curve::Point>& points) {
  std::string list;
  for (const Curve::Point& point : points) {
    AppendPart("[" + JsonNumber(point.seconds, 7) + "," + JsonNumber(point.per_unit, 7) + "]",
               &list);
  }
  return "[" + list + "]";
}

std::string ToleranceHtml(const Limits& limits, const std::string& points, Charts* charts) {
  const Figure figure = {"tolerance", "tolerance", "Voltage and duration of events"};
  std::string curves;
  for (const Curve& curve : limits.curves) {
    std::string members = "{\"name\":" + JsonText(curve.name) + ",\"note\":" + JsonText(curve.note);
    if (!curve.upper.empty()) members += ",\"upper\":" + PointsOf(curve.upper);
    if (!curve.lower.empty()) members += ",\"lower\":" + PointsOf(curve.lower);
    AppendPart(members + "}", &curves);
  }
  charts->Add(figure, "\"points\":[" + points + "],\"curves\":[" + curves + "]");
  return FigureHtml(figure);
}

// Dips, swells and interruptions: their table, their classes, their plot.
std::string VoltageEventsHtml(PageData* page) {
  const Card& card = page->card;
  const Limits& limits = page->request.limits;
  HtmlTable table(
      "", {"Begins", "Kind", "Channels", "#Voltage, %", "#Voltage, V", "#Duration, s", "Class"});
  std::map<std::string, uint64_t> counts;
  uint64_t interruptions[2] = {}, unclassed = 0;
  std::string points, thresholds;
  size_t rows = 0;
  for (const CardEvents& events : card.events) {
    const Thresholds& t = events.recorded.thresholds;
    thresholds += Paragraph(
        ShownName(*page, events.recording) + ": " + CountText(events.recorded.transitions) +
        " transitions; dips below " + NumberText(t.dip) + " V, swells above " +
        NumberText(t.swell) + " V, interruptions below " + NumberText(t.interruption) +
        " V, nominal " + NumberText(t.nominal) + " V. The thresholds are stored " +
        (t.from_percent ? "as percentages." : "in volts."));
    for (const VoltageEvent& event : events.recorded.events) {
      const bool ended = event.to != kNoTime;
      std::string channels;
      for (const std::string& channel : event.channels) {
        channels += (channels.empty() ? "" : ", ") + channel;
      }
      const std::string label = std::string(NameOf(event.kind)) + " " + channels + " " +
                                NumberText(event.percent, 3) + " %";
      if (event.kind == EventKind::kInterruption && ended) {
        ++interruptions[event.event_class == "short" ? 0 : 1];
      } else if (event.event_class.empty()) {
        ++unclassed;
      } else {
        ++counts[event.event_class];
      }
      if (++rows > kMostListed) continue;
      table.Row({ShownTime(event.from, page->request), NameOf(event.kind), channels,
                 NumberText(AsWritten(event.percent)), NumberText(AsWritten(event.voltage)),
                 ended ? NumberText(event.seconds(), 7) : "not over", event.event_class});
      page->charts.Mark(event.from / 1000000, (ended ? event.to : event.from) / 1000000, label,
                        NameOf(event.kind));
      if (ended && event.seconds() > 0 && std::isfinite(event.percent)) {
        AppendPart("[" + JsonNumber(event.seconds(), 7) + "," + JsonNumber(event.percent, 5) + "," +
                       JsonText(label) + "," + JsonText(NameOf(event.kind)) + "]",
                   &points);
      }
    }
  }
  if (card.events.empty()) return "";
  std::string html;
  if (rows == 0) {
    html += Paragraph("No dip, swell or interruption was recorded.");
  } else {
    html += table.Html() + CutNote(rows);
    if (!points.empty()) html += ToleranceHtml(limits, points, &page->charts);
    html += CountsHtml("Dips by residual voltage", limits.dips, counts);
    html += CountsHtml("Swells by voltage", limits.swells, counts);
    html += Paragraph("Interruptions: " + CountText(interruptions[0]) + " short (up to " +
                      NumberText(limits.short_interruption) + " s), " +
                      CountText(interruptions[1]) + " long. " +
                      (unclassed > 0 ? CountText(unclassed) + " events are in no class." : ""));
  }
  return html + Details("Thresholds", thresholds);
}

}  // namespace

std::string EventsSection(PageData* page) {
  std::string html = VoltageEventsHtml(page);
  const auto figures = [&](const std::vector<Wave>& waves, uint64_t more) {
    std::string list;
    for (const Wave& wave : waves) {
      list += Details(RecordName(*page, wave), FigureHtml(wave.figure), &wave == &waves.front());
    }
    if (more > 0) list += Paragraph(CountText(more) + " more are not drawn.");
    return list;
  };
  for (const Listing& listing : page->card.listings) {
    if (std::string(listing.type->key) != "changes") continue;
    for (const std::vector<Cell>& row : listing.rows) {
      if (row[0].is == Cell::Is::kTime) {
        page->charts.Mark(row[0].integer / 1000000, row[0].integer / 1000000,
                          "rapid voltage change", "change");
      }
    }
  }
  html += ListingHtml(*page, "changes") + figures(page->waves.changes, page->waves.more_changes);
  html += ListingHtml(*page, "transients") + ListingHtml(*page, "inrush") +
          ListingHtml(*page, "alarms") + ListingHtml(*page, "signalling");
  return html + figures(page->waves.telegrams, page->waves.more_telegrams);
}

}  // namespace quorvex::tool
