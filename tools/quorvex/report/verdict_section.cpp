// The verdict: each index of each week, the worst first.
#include <algorithm>
#include <set>

#include "report/html.h"
#include "report/sections.h"
#include "report/summary.h"

namespace quorvex::tool {
namespace {

struct Judged {
  const Chain* chain;
  const Week* week;
};

bool IsHarmonic(const IndexRow& row) { return row.limit->index.compare(0, 9, "harmonic-") == 0; }

// "harmonic 5", "THD"
std::string WordsOf(const std::string& index) {
  if (index == "thd" || index == "plt") return index == "thd" ? "THD" : "Plt";
  std::string words = index;
  std::replace(words.begin(), words.end(), '-', ' ');
  return words;
}

bool IsOutside(const IndexRow& row) { return row.verdict == Verdict::kOutside; }

// Weeks in which something is outside stand in front, then those of the fullest recordings.
std::vector<Judged> InOrder(const Card& card) {
  std::vector<Judged> all;
  for (const Chain& chain : card.chains) {
    for (const Week& week : chain.assessment.weeks) all.push_back({&chain, &week});
  }
  const auto measured = [](const Judged& judged) {
    return std::count_if(judged.week->rows.begin(), judged.week->rows.end(),
                         [](const IndexRow& row) { return row.verdict != Verdict::kNotMeasured; });
  };
  const auto outside = [](const Judged& judged) {
    return std::any_of(judged.week->rows.begin(), judged.week->rows.end(), IsOutside);
  };
  std::stable_sort(all.begin(), all.end(), [&](const Judged& a, const Judged& b) {
    if (outside(a) != outside(b)) return outside(a);
    return measured(a) > measured(b);
  });
  return all;
}

std::string ValueText(const IndexRow& row) {
  const std::string unit = row.unit[0] != '\0' ? std::string(" ") + row.unit : "";
  if (row.value) return NumberText(AsWritten(*row.value)) + unit;
  if (!row.lowest || !row.highest) return "";
  return NumberText(AsWritten(*row.lowest)) + " to " + NumberText(AsWritten(*row.highest)) + unit;
}

std::string TableOf(const Week& week, bool every_row) {
  HtmlTable table("indices", {"Index", "Channel", "Verdict", "#Value", "Limit", "#Within",
                              "#Needed", "#Used", "#Flagged"});
  bool harmonic_shown = false;
  for (const IndexRow& row : week.rows) {
    const bool failing = row.within && row.reach > 1;
    if (!every_row) {
      if (row.verdict == Verdict::kNotMeasured) continue;
      // Of the harmonics that are within one is enough: rows stand in order, so it is the worst.
      if (IsHarmonic(row) && !failing && harmonic_shown) continue;
      harmonic_shown = harmonic_shown || IsHarmonic(row);
    }
    std::string verdict = NameOf(row.verdict);
    std::string css_class = verdict;
    std::replace(css_class.begin(), css_class.end(), ' ', '-');
    table.Class(2, "verdict " + css_class);
    table.Row({WordsOf(row.limit->index), row.channel, verdict, ValueText(row), row.limit_text,
               row.within ? SharePercent(*row.within) : "", SharePercent(row.limit->needed),
               CountText(row.used), CountText(row.flagged)},
              " data-index=\"" + Escaped(row.limit->index) + "\" data-channel=\"" +
                  Escaped(row.channel) + "\" data-needed=\"" + NumberText(row.limit->needed, 9) +
                  "\"");
  }
  return table.Html();
}

// Indices of which no channel was measured.
std::string NotMeasured(const Week& week) {
  std::vector<std::string> order;
  std::set<std::string> measured, known;
  for (const IndexRow& row : week.rows) {
    if (row.verdict != Verdict::kNotMeasured) measured.insert(row.limit->index);
  }
  for (const IndexRow& row : week.rows) {
    const std::string& index = row.limit->index;
    if (measured.count(index) == 0 && known.insert(index).second) order.push_back(WordsOf(index));
  }
  std::string list;
  for (const std::string& words : order) list += (list.empty() ? "" : ", ") + words;
  return list.empty() ? "" : Paragraph("Not measured: " + list + ".");
}

std::string WeekHtml(const PageData& page, const Judged& judged) {
  const Week& week = *judged.week;
  std::string html;
  std::string state =
      CountText(week.intervals) + " of " + CountText(week.expected) + " intervals of a week";
  if (week.gap_count > 0) {
    state += "; " + CountText(week.gap_count) + (week.gap_count == 1 ? " gap: " : " gaps: ");
    for (size_t i = 0; i < week.gaps.size(); ++i) {
      state += (i > 0 ? ", " : "") + ShownTime(week.gaps[i].from, page.request) + " to " +
               ShownTime(week.gaps[i].to, page.request);
    }
    if (week.gap_count > week.gaps.size()) state += " and more";
  }
  if (judged.chain->assessment.without_time > 0) {
    state += "; of all weeks together " + CountText(judged.chain->assessment.without_time) +
             " records are left out, as their times cannot be";
  }
  html += Paragraph(state + ".");
  html += TableOf(week, false);
  html += Paragraph(
      "Used and flagged are counts of intervals; the value is the one that the needed "
      "share of them does not go beyond.",
      "note");
  html += NotMeasured(week);
  html += Details("Every index, order and channel", TableOf(week, true));
  return html;
}

std::string TitleOf(const PageData& page, const Judged& judged) {
  std::string title = ShownName(page, judged.chain->recordings.front());
  if (judged.chain->recordings.size() > 1) {
    title += " and " + std::to_string(judged.chain->recordings.size() - 1) + " that continue it";
  }
  return title + ": " + ShownTime(judged.week->time.from, page.request) + " to " +
         ShownTime(judged.week->time.to, page.request);
}

std::string OverallHtml(const std::vector<Judged>& all) {
  std::vector<std::string> outside;
  bool any_within = false;
  for (const Judged& judged : all) {
    for (const IndexRow& row : judged.week->rows) {
      any_within = any_within || row.verdict == Verdict::kWithin;
      if (!IsOutside(row)) continue;
      const std::string what = WordsOf(row.limit->index) + " (" + row.channel + ")";
      if (std::find(outside.begin(), outside.end(), what) == outside.end()) outside.push_back(what);
    }
  }
  if (!outside.empty()) {
    constexpr size_t kMost = 8;
    std::string list;
    for (size_t i = 0; i < std::min(outside.size(), kMost); ++i) {
      list += (i > 0 ? ", " : "") + outside[i];
    }
    if (outside.size() > kMost) list += " and " + std::to_string(outside.size() - kMost) + " more";
    return Paragraph("Outside the limits: " + list + ".", "overall outside");
  }
  if (any_within) {
    return Paragraph("Within the limits, as far as was measured.", "overall within");
  }
  return Paragraph(
      "No full week was recorded, so there is no verdict; shares are of what is there.",
      "overall open");
}

std::string LimitsHtml(const Limits& limits) {
  HtmlTable table("", {"Index", "#Low", "#High", "#Needed", "Over", "Source"});
  for (const Limit& limit : limits.rows) {
    const bool around = limit.low != 0;
    const std::string unit = around ? " % of nominal" : limit.index == "plt" ? "" : " %";
    table.Row({WordsOf(limit.index), around ? NumberText(limit.low) + unit : "",
               limit.high > 0 ? NumberText(limit.high) + unit : "by frequency",
               SharePercent(limit.needed), limit.over, limit.source});
  }
  std::string html = table.Html();
  for (const std::string& note :
       {limits.note, limits.dips.source.empty() ? "" : "Classes of dips: " + limits.dips.source,
        limits.swells.source.empty() ? "" : "Classes of swells: " + limits.swells.source}) {
    if (!note.empty()) html += Paragraph(note);
  }
  html += Paragraph(
      "Intervals that meet a recorded dip, swell or interruption are flagged and left out, but for "
      "frequencies. Of the floats of an order the first is used. Shorter intervals are put "
      "together to ten minutes; of longer ones no verdict is made.");
  return Details("The limits: " + limits.name + " (" + limits.edition + ")", html);
}

}  // namespace

std::string VerdictSection(const PageData& page) {
  const std::vector<Judged> all = InOrder(page.card);
  if (all.empty()) return "";
  std::string html = OverallHtml(all);
  for (size_t i = 0; i < all.size(); ++i) {
    const std::string title = TitleOf(page, all[i]);
    html += i == 0 ? Heading(3, title) + WeekHtml(page, all[i])
                   : Details(title, WeekHtml(page, all[i]));
  }
  return html + LimitsHtml(page.request.limits);
}

}  // namespace quorvex::tool
