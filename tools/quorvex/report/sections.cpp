#include "report/sections.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "report/html.h"
#include "report/summary.h"
#include "shared/messages.h"

namespace quorvex::tool {
namespace {

constexpr size_t kMostSpectra = 4;

std::string CellText(const Cell& cell, const ReportRequest& request) {
  switch (cell.is) {
    case Cell::Is::kNothing:
      break;
    case Cell::Is::kNumber:
      return NumberText(AsWritten(cell.number), 6);
    case Cell::Is::kInteger:
      return std::to_string(cell.integer);
    case Cell::Is::kTime:
      return ShownTime(cell.integer, request);
    case Cell::Is::kText:
      return cell.text;
  }
  return "";
}

std::string TrendFigures(const InstrumentTrends& instrument) {
  std::string html;
  for (const Trend& trend : instrument.trends) {
    html += FigureHtml(trend.figure, trend.unit);
    if (trend.intervals_a_point > 1) {
      html += Paragraph("A point stands for " + std::to_string(trend.intervals_a_point) +
                        " intervals: their mean, and within the band their extremes.");
    }
  }
  HtmlTable table("", {"Quantity", "Line", "#Lowest", "#Mean", "#Highest", "Unit"});
  for (const Trend& trend : instrument.trends) {
    const int digits = trend.unit == "Hz" ? 6 : 5;
    for (const TrendSeries& series : trend.series) {
      table.Row({trend.figure.title, series.label, NumberText(series.lowest, digits),
                 NumberText(series.mean, digits), NumberText(series.highest, digits), trend.unit});
    }
  }
  return html + Details("Extremes and means of all lines", table.Html());
}

// Orders of several channels side by side.
std::string SpectraHtml(const std::vector<SpectrumRow>& spectra, const Limits* limits,
                        const Figure& figure, Charts* charts) {
  std::map<int, std::vector<const SpectrumRow::Entry*>> orders;
  for (size_t c = 0; c < spectra.size(); ++c) {
    for (const SpectrumRow::Entry& entry : spectra[c].entries) {
      auto& entries = orders[entry.order];
      entries.resize(spectra.size());
      entries[c] = &entry;
    }
  }
  std::vector<std::string> titles = {"#Order"};
  if (limits != nullptr) titles.emplace_back("#Limit, %");
  for (const SpectrumRow& spectrum : spectra) {
    titles.push_back("#" + spectrum.channel + ": 95 % value, %");
    titles.push_back("#" + spectrum.channel + ": most, %");
  }
  HtmlTable table("", titles);
  std::string numbers, limit_list, series;
  std::vector<std::vector<float>> usual(spectra.size()), most(spectra.size());
  for (const auto& [order, entries] : orders) {
    AppendPart(std::to_string(order), &numbers);
    double limit = NAN;
    for (size_t i = 0; limits != nullptr && i < limits->rows.size(); ++i) {
      if (limits->rows[i].index == "harmonic-" + std::to_string(order)) {
        limit = limits->rows[i].high;
      }
    }
    AppendPart(JsonNumber(limit, 5), &limit_list);
    std::vector<std::string> cells = {std::to_string(order)};
    if (limits != nullptr) cells.push_back(NumberText(limit));
    for (size_t c = 0; c < spectra.size(); ++c) {
      usual[c].push_back(entries[c] != nullptr ? entries[c]->usual : NAN);
      most[c].push_back(entries[c] != nullptr ? entries[c]->most : NAN);
      cells.push_back(NumberText(AsWritten(static_cast<double>(usual[c].back())), 4));
      cells.push_back(NumberText(AsWritten(static_cast<double>(most[c].back())), 4));
    }
    table.Row(cells);
  }
  for (size_t c = 0; c < spectra.size(); ++c) {
    std::string members = JsonSeries(spectra[c].channel, usual[c], 4);
    members.pop_back();
    AppendPart(members + ",\"most\":" + JsonNumbers(most[c], 4) + "}", &series);
  }
  charts->Add(figure, "\"unit\":\"%\",\"orders\":[" + numbers + "],\"series\":[" + series +
                          "],\"limits\":[" + limit_list + "]");
  return FigureHtml(figure) + Details("The figures of this chart", table.Html());
}

}  // namespace

std::string ShownTime(int64_t microseconds, const ReportRequest& request) {
  std::string time = TimeOf(microseconds, request);
  std::replace(time.begin(), time.end(), 'T', ' ');
  return time;
}

std::string ShownName(const PageData& page, size_t recording) {
  return NameOf(page.card, recording).substr(page.common);
}

std::string RecordName(const PageData& page, const Wave& wave) {
  const std::string time = ShownTime(wave.time, page.request);
  return ShownName(page, wave.recording) + ", record " + std::to_string(wave.record) +
         (time.empty() ? "" : ", " + time);
}

std::string CutNote(uint64_t rows) {
  if (rows <= kMostListed) return "";
  return Paragraph("The first " + std::to_string(kMostListed) + " of " + CountText(rows) +
                   " are shown; the figures for programs have all.");
}

std::string FigureHtml(const Figure& figure, const std::string& unit) {
  return "<figure class=\"chart " + figure.kind + "\" id=\"" + Escaped(figure.id) +
         "\"><figcaption>" + Escaped(figure.title + (unit.empty() ? "" : ", " + unit)) +
         "</figcaption></figure>\n";
}

std::string ListingHtml(const PageData& page, const char* key) {
  std::string html;
  for (const ListedType& type : ListedTypes()) {
    if (std::string(type.key) != key) continue;
    std::vector<std::string> titles;
    for (const ListedColumn& column : type.columns) {
      const bool text = std::string(column.key) == "time" || std::string(column.key) == "to" ||
                        std::string(column.key) == "name" || std::string(column.key) == "summary";
      titles.push_back((text ? "" : "#") + std::string(column.title));
    }
    titles.emplace_back("Recording");
    HtmlTable table("", titles);
    uint64_t rows = 0;
    for (const Listing& listing : page.card.listings) {
      if (listing.type != &type) continue;
      const uint64_t before = rows;
      rows += listing.count;
      for (size_t i = 0; i < listing.rows.size() && before + i < kMostListed; ++i) {
        const std::vector<Cell>& row = listing.rows[i];
        std::vector<std::string> cells;
        cells.reserve(row.size() + 1);
        for (const Cell& cell : row) cells.push_back(CellText(cell, page.request));
        cells.push_back(ShownName(page, listing.recording));
        table.Row(cells);
      }
    }
    if (rows > 0) html += Heading(3, type.title) + table.Html() + CutNote(rows);
  }
  return html;
}

std::string TrendsSection(const PageData& page) {
  std::string html;
  for (const InstrumentTrends& instrument : page.trends) {
    if (instrument.trends.empty()) continue;
    if (page.trends.size() > 1) html += Heading(3, "Instrument " + instrument.serial);
    html += TrendFigures(instrument);
  }
  return html.empty() ? "" : "<div class=\"window\"></div>\n" + html;
}

std::string HarmonicsSection(PageData* page) {
  std::string html;
  size_t drawn = 0, more = 0;
  for (const Chain& chain : page->card.chains) {
    for (const Week& week : chain.assessment.weeks) {
      if (week.voltages.empty() && week.currents.empty()) continue;
      if (++drawn > kMostSpectra) {
        ++more;
        continue;
      }
      const std::string number = std::to_string(drawn);
      const std::string title = ShownName(*page, chain.recordings.front()) + ": " +
                                ShownTime(week.time.from, page->request) + " to " +
                                ShownTime(week.time.to, page->request);
      std::string charts;
      if (!week.voltages.empty()) {
        charts += SpectraHtml(
            week.voltages, &page->request.limits,
            {"harmonics-u-" + number, "bars", "Harmonics of voltages, % of the fundamental"},
            &page->charts);
      }
      if (!week.currents.empty()) {
        charts += SpectraHtml(
            week.currents, nullptr,
            {"harmonics-i-" + number, "bars", "Harmonics of currents, % of the fundamental"},
            &page->charts);
      }
      html += drawn == 1 ? Heading(3, title) + charts : Details(title, charts);
    }
  }
  if (more > 0) html += Paragraph(CountText(more) + " more weeks are not drawn.");
  return html;
}

std::string WaveformsSection(const PageData& page) {
  std::string html;
  for (const Wave& wave : page.waves.waveforms) {
    std::string inside = FigureHtml(wave.figure);
    if (!wave.phasors.empty()) {
      HtmlTable table("", {"Channel", "#Fundamental", "Unit", "#Angle, °"});
      for (const Phasor& phasor : wave.phasors) {
        table.Row({phasor.label, NumberText(AsWritten(phasor.size)), phasor.unit,
                   NumberText(AsWritten(phasor.angle), 4)});
      }
      inside +=
          "<div class=\"phasors\">" + FigureHtml(wave.phasors_figure) + table.Html() + "</div>\n";
    }
    html += Details(RecordName(page, wave), inside, html.empty());
  }
  if (page.waves.more_waveforms > 0) {
    html += Paragraph(CountText(page.waves.more_waveforms) + " more waveforms are not drawn.");
  }
  return html;
}

std::string EnergySection(const PageData& page) {
  std::string html;
  for (const InstrumentTrends& instrument : page.trends) {
    if (instrument.energy.empty()) continue;
    if (page.trends.size() > 1) html += Heading(3, "Instrument " + instrument.serial);
    HtmlTable table("", {"", "#Active consumed, kWh", "#Active generated, kWh",
                         "#Reactive consumed, kvarh", "#Reactive generated, kvarh"});
    const auto kilo = [](double value) { return NumberText(value / 1000, 6); };
    for (const EnergyRow& row : instrument.energy) {
      table.Row({row.label, kilo(row.active_consumed), kilo(row.active_generated),
                 kilo(row.reactive_consumed), kilo(row.reactive_generated)});
    }
    html += table.Html();
  }
  return html + ListingHtml(page, "averages") + ListingHtml(page, "meter_tests");
}

std::string HealthSection(const PageData& page) {
  HtmlTable table("health", {"Recording", "Type", "#Records", "From", "To", "#Size", "Check",
                             "In this report for"});
  std::string findings;
  for (size_t i = 0; i < page.card.recordings.size(); ++i) {
    const CardRecording& r = page.card.recordings[i];
    const auto size = static_cast<double>(r.recording.size);
    std::string check = r.findings.list.empty() ? "sound" : NameOf(r.findings.worst);
    if (r.recording.code != kDone) check = "error";
    table.Row({ShownName(page, i), r.recording.type != nullptr ? r.recording.type->name : "unknown",
               r.recording.records ? CountText(*r.recording.records) : "",
               ShownTime(r.time.from, page.request), ShownTime(r.time.to, page.request),
               r.recording.code != kNoInput ? ShortSize(size) : "", check,
               r.left_out.empty() ? r.used_for : "left out: " + r.left_out});
    std::string lines;
    for (const std::string& line : LinesOf(r.findings, Severity::kNote)) {
      lines += "<li>" + Escaped(line) + "</li>\n";
    }
    if (!lines.empty()) {
      findings += "<h3>" + Escaped(ShownName(page, i)) + "</h3>\n<ul>\n" + lines + "</ul>\n";
    }
  }
  if (table.is_empty()) return "";
  return table.Html() + (findings.empty() ? "" : Details("What the check found", findings));
}

}  // namespace quorvex::tool
