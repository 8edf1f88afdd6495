#include "report/page.h"

#include <algorithm>
#include <set>

#include "report/html.h"
#include "report/sections.h"
#include "report/texts.h"

namespace quorvex::tool {
namespace {

// A text in words, each once: "FEEDER, SUBSTATION".
template <typename Of>
std::string Together(const Card& card, Of of) {
  std::set<std::string> known;
  std::string list;
  for (const CardRecording& recording : card.recordings) {
    const std::string text = of(recording);
    if (text.empty() || !known.insert(text).second) continue;
    list += (list.empty() ? "" : ", ") + text;
  }
  return list;
}

std::string Subject(const PageData& page) {
  const Card& card = page.card;
  Span time = {kNoTime, kNoTime};
  for (const InstrumentTrends& instrument : page.trends) {
    if (instrument.time.from == kNoTime) continue;
    if (time.from == kNoTime || instrument.time.from < time.from) time.from = instrument.time.from;
    time.to = std::max(time.to, instrument.time.to);
  }
  std::string text;
  const auto add = [&](const std::string& front, const std::string& value) {
    if (!value.empty()) text += (text.empty() ? "" : " · ") + front + value;
  };
  add("", Together(card, [](const CardRecording& r) { return r.place; }));
  if (time.from != kNoTime) {
    add("", ShownTime(time.from, page.request) + " to " + ShownTime(time.to, page.request) +
                (page.request.read.utc_offset ? "" : " (the instrument's clock)"));
  }
  add("", Together(card, [](const CardRecording& r) { return r.connection; }));
  if (page.request.nominal > 0) {
    add("nominal ", NumberText(page.request.nominal) + " V (as asked for)");
  } else {
    add("nominal ", Together(card, [](const CardRecording& r) {
          return r.nominal > 0 ? NumberText(r.nominal) + " V" : std::string();
        }));
  }
  add("", Together(card, [](const CardRecording& r) {
        return r.frequency > 0 ? NumberText(r.frequency) + " Hz" : std::string();
      }));
  add("", Together(card, [](const CardRecording& r) {
        return r.instrument + (r.serial.empty() ? "" : " no. " + r.serial);
      }));
  return text;
}

// The folders that all paths begin with, of which a page says nothing.
size_t CommonFolder(const Card& card) {
  if (card.recordings.empty()) return 0;
  const std::string first = NameOf(card, 0);
  size_t common = first.size();
  for (size_t i = 0; i < card.recordings.size(); ++i) {
    const std::string name = NameOf(card, i);
    common = std::min(common, name.size());
    common = static_cast<size_t>(std::mismatch(first.begin(),
                                               first.begin() + static_cast<std::ptrdiff_t>(common),
                                               name.begin())
                                     .first -
                                 first.begin());
  }
  const size_t slash = first.substr(0, common).find_last_of(kSeparators);
  return slash == std::string::npos ? 0 : slash + 1;
}

// What a report could show, had the card any of it.
std::string NoneOf(const Card& card) {
  struct {
    const char* what;
    std::set<uint32_t> types;
  } const kinds[] = {
      {"recordings of intervals", {1, 16}},
      {"voltage events", {8}},
      {"rapid voltage changes", {10}},
      {"transients", {12}},
      {"inrush currents", {13}},
      {"alarms", {7}},
      {"signalling telegrams", {9}},
      {"waveforms", {2, 5, 6, 17}},
      {"summaries", {11}},
      {"meter tests", {18}},
  };
  std::string list;
  for (const auto& kind : kinds) {
    const bool any =
        std::any_of(card.recordings.begin(), card.recordings.end(), [&](const CardRecording& r) {
          return !r.used_for.empty() && kind.types.count(r.type()) != 0;
        });
    if (!any) list += (list.empty() ? "" : ", ") + std::string(kind.what);
  }
  return list.empty() ? "" : Paragraph("The card holds none of these: " + list + ".", "none");
}

}  // namespace

std::string PageOf(const Card& card, const ReportRequest& request) {
  PageData page = {card, request, CommonFolder(card), {}, {}, {}};
  page.trends = AddTrends(card, request, &page.charts);
  page.waves = AddWaves(card, request, &page.charts);
  struct Section {
    const char* id;
    const char* title;
    std::string html;
  };
  const Section sections[] = {
      {"verdict", "Verdict", VerdictSection(page)},
      {"trends", "Trends", TrendsSection(page)},
      {"harmonics", "Harmonics", HarmonicsSection(&page)},
      {"events", "Events", EventsSection(&page)},
      {"waveforms", "Waveforms", WaveformsSection(page)},
      {"energy", "Energy", EnergySection(page)},
      {"health", "Health of the card", HealthSection(page)},
  };
  const std::string title = "Power quality report";
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta name=\"color-scheme\" content=\"light dark\">\n<title>" +
      title + "</title>\n<style>\n";
  html += kPageStyle;
  html += "</style>\n</head>\n<body>\n<header>\n<h1>" + title + "</h1>\n" +
          Paragraph(Subject(page), "subject") + "</header>\n<nav aria-label=\"Sections\">\n";
  for (const Section& section : sections) {
    if (section.html.empty()) continue;
    html += "<a href=\"#" + std::string(section.id) + "\">" + section.title + "</a>\n";
  }
  html +=
      "</nav>\n<main>\n<noscript><p>The charts need JavaScript; the tables do not.</p>"
      "</noscript>\n";
  if (card.recordings.empty()) html += Paragraph("No recordings were found.", "overall open");
  for (const Section& section : sections) {
    if (section.html.empty()) continue;
    html += "<section id=\"" + std::string(section.id) + "\">\n" + Heading(2, section.title) +
            section.html + "</section>\n";
  }
  html += NoneOf(card) + "</main>\n<footer>\n";
  html += Paragraph(
      "Made by quorvex from recordings. The figures for programs are those of "
      "quorvex report --json.");
  html += Details("Charts are drawn by dygraphs, which has these terms",
                  "<pre>" + Escaped(kChartTerms) + "</pre>\n");
  html += "</footer>\n<script type=\"application/json\" id=\"data\">" + page.charts.Json() +
          "</script>\n<script>";
  html += std::string(kChartScript) + "</script>\n<script>\n(function () {\n\"use strict\";\n";
  for (const char* part : {kPageBase, kPagePlot, kPageLines, kPagePainted, kPageDrawing}) {
    html += part;
  }
  return html + "})();\n</script>\n</body>\n</html>\n";
}

}  // namespace quorvex::tool
