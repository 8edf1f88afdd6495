#include "report/trends.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>

#include "report/trend_kinds.h"
#include "tables/table_rows.h"

namespace quorvex::tool {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int64_t kSecond = 1000000;
// More than a screen can show.
constexpr uint64_t kMostPoints = 4000;

// How much a layout holds: the least number is drawn first.
int RankOf(const CardRecording& recording) {
  const char* const layouts[] = {"general_full", "general_standard", "general_compact"};
  const auto* found = std::find(std::begin(layouts), std::end(layouts), recording.layout);
  return static_cast<int>(found - std::begin(layouts));
}

// A line as it is gathered: several intervals make a point where there are too many.
struct Line {
  const LineColumns* columns;
  std::vector<float> values = {}, low = {}, high = {};
  double sum = 0, least = kNaN, most = kNaN;
  uint64_t got = 0;
  double lowest = kNaN, highest = kNaN, total = 0;
  uint64_t count = 0;
};

void Lower(double value, double* least) {
  if (!(value >= *least)) *least = std::isnan(value) ? *least : value;
}
void Raise(double value, double* most) {
  if (!(value <= *most)) *most = std::isnan(value) ? *most : value;
}

struct Drawing {
  const TrendKind* kind;
  std::vector<const Chain*> chains;
  uint64_t intervals = 0;
  std::vector<Line> lines = {};
  std::vector<int64_t> times = {};
  uint64_t bucket = 1, in_bucket = 0;
  int64_t bucket_from = 0;

  void Close() {
    if (in_bucket == 0) return;
    times.push_back(bucket_from / kSecond);
    for (Line& line : lines) {
      line.values.push_back(static_cast<float>(line.got > 0 ? line.sum / double(line.got) : kNaN));
      line.low.push_back(static_cast<float>(line.least));
      line.high.push_back(static_cast<float>(line.most));
      line.sum = 0;
      line.got = 0;
      line.least = line.most = kNaN;
    }
    in_bucket = 0;
  }
  // Where nothing was recorded the lines have a gap.
  void Gap(int64_t at) {
    Close();
    if (times.empty()) return;
    times.push_back(std::max(at / kSecond, times.back() + 1));
    for (Line& line : lines) {
      for (auto* list : {&line.values, &line.low, &line.high}) {
        list->push_back(std::numeric_limits<float>::quiet_NaN());
      }
    }
  }
};

struct EnergyColumn {
  size_t row;
  double EnergyRow::*sum;
  std::string column;
};

std::vector<EnergyColumn> EnergyColumns(std::vector<EnergyRow>* rows) {
  std::vector<EnergyColumn> columns;
  for (const char* phase : {"p1", "p2", "p3", "total"}) {
    rows->push_back({phase});
    const std::string front = std::string(phase) == "total"
                                  ? "pt/ENERGY/"
                                  : "PHASE_POWERS/P[" + std::string(phase) + "]/ENERGY/";
    const size_t row = rows->size() - 1;
    columns.push_back({row, &EnergyRow::active_consumed, front + "EPp"});
    columns.push_back({row, &EnergyRow::active_generated, front + "EPm"});
    columns.push_back({row, &EnergyRow::reactive_consumed, front + "EQp"});
    columns.push_back({row, &EnergyRow::reactive_generated, front + "EQm"});
  }
  return columns;
}

bool Overlap(const Span& a, const Span& b) { return a.from < b.to && b.from < a.to; }

// Draws the trends of one instrument.
class Drawer {
 public:
  Drawer(const Card& card, const ReportRequest& request, const std::vector<const Chain*>& chains)
      : card_(card), request_(request), kinds_(KindsFor(First(*chains.front()).wiring)) {
    for (const TrendKind& kind : kinds_) {
      drawings_.push_back({&kind, Chosen(chains, ColumnsOf(kind))});
    }
    energy_columns_ = EnergyColumns(&energy_);
    std::set<std::string> names;
    for (const EnergyColumn& column : energy_columns_) names.insert(column.column);
    energy_chains_ = Chosen(chains, names);
    for (Drawing& drawing : drawings_) {
      for (const Chain* chain : drawing.chains) drawing.intervals += IntervalsOf(*chain);
      drawing.bucket = std::max<uint64_t>((drawing.intervals + kMostPoints - 1) / kMostPoints, 1);
      for (const LineColumns& columns : drawing.kind->lines) drawing.lines.push_back({&columns});
    }
    std::vector<const Chain*> in_time = chains;
    std::stable_sort(in_time.begin(), in_time.end(), [&](const Chain* a, const Chain* b) {
      return TimeOfChain(*a).from < TimeOfChain(*b).from;
    });
    for (const Chain* chain : in_time) Read(*chain);
  }

  InstrumentTrends Result(const std::string& suffix, Charts* charts) {
    InstrumentTrends result;
    for (Drawing& drawing : drawings_) {
      drawing.Close();
      if (const std::string series = SeriesOf(&drawing, &result); !series.empty()) {
        Trend& trend = result.trends.back();
        trend.figure = {"trend-" + drawing.kind->id + suffix, "trend", drawing.kind->title};
        trend.unit = drawing.kind->unit;
        trend.intervals_a_point = drawing.bucket;
        charts->Add(trend.figure, "\"unit\":" + JsonText(drawing.kind->unit) +
                                      ",\"time\":" + std::to_string(charts->Times(drawing.times)) +
                                      ",\"series\":[" + series + "],\"lines\":[" +
                                      LimitLines(*drawing.kind) + "]");
      }
    }
    for (const EnergyRow& row : energy_) {
      const double all = row.active_consumed + row.active_generated + row.reactive_consumed +
                         row.reactive_generated;
      if (all != 0 && std::isfinite(all)) result.energy.push_back(row);
    }
    return result;
  }

 private:
  const CardRecording& First(const Chain& chain) const {
    return card_.recordings[chain.recordings.front()];
  }
  Span TimeOfChain(const Chain& chain) const {
    return {First(chain).time.from, card_.recordings[chain.recordings.back()].time.to};
  }
  uint64_t IntervalsOf(const Chain& chain) const {
    uint64_t intervals = 0;
    for (const size_t i : chain.recordings) {
      intervals += card_.recordings[i].recording.records.value_or(0);
    }
    return intervals;
  }

  static std::set<std::string> ColumnsOf(const TrendKind& kind) {
    std::set<std::string> names;
    for (const LineColumns& line : kind.lines) names.insert(line.values.begin(), line.values.end());
    return names;
  }

  // Chains that have any of these columns, the fullest first, and none of the time of another.
  std::vector<const Chain*> Chosen(const std::vector<const Chain*>& chains,
                                   const std::set<std::string>& names) {
    std::vector<const Chain*> chosen;
    for (const Chain* chain : chains) {
      const Span time = TimeOfChain(*chain);
      const bool taken = std::any_of(chosen.begin(), chosen.end(), [&](const Chain* other) {
        return Overlap(time, TimeOfChain(*other));
      });
      if (taken || time.from == kNoTime) continue;
      RecordingHead head(First(*chain).path.c_str());
      head.UseSettingFile();
      const TableSet set = TablesOf(*head.type, head.settings);
      const Table* records = set.Find("records");
      const auto known = [&](const Column& column) { return names.count(column.name) != 0; };
      if (records != nullptr &&
          std::any_of(records->columns.begin(), records->columns.end(), known)) {
        chosen.push_back(chain);
      }
    }
    return chosen;
  }

  void Read(const Chain& chain) {
    const auto draws = [&](const Drawing& drawing) {
      return std::find(drawing.chains.begin(), drawing.chains.end(), &chain) !=
             drawing.chains.end();
    };
    std::vector<Drawing*> drawn;
    for (Drawing& drawing : drawings_) {
      if (!draws(drawing)) continue;
      drawn.push_back(&drawing);
      if (!drawing.times.empty() || drawing.in_bucket > 0) drawing.Gap(TimeOfChain(chain).from - 1);
    }
    const bool sums =
        std::find(energy_chains_.begin(), energy_chains_.end(), &chain) != energy_chains_.end();
    if (drawn.empty() && !sums) return;
    int64_t last = kNoTime;
    for (const size_t i : chain.recordings) {
      ReadRecording(card_.recordings[i], drawn, sums, &last);
    }
  }

  void ReadRecording(const CardRecording& recording, const std::vector<Drawing*>& drawn, bool sums,
                     int64_t* last) {
    std::vector<std::string> names = {"START_TIME", "LAST_TIME"};
    for (const Drawing* drawing : drawn) {
      for (const Line& line : drawing->lines) {
        names.insert(names.end(), line.columns->values.begin(), line.columns->values.end());
        names.push_back(line.columns->low);
        names.push_back(line.columns->high);
      }
    }
    const size_t energy_at = names.size();
    for (const EnergyColumn& column : energy_columns_) names.push_back(column.column);
    TableRows rows(recording.path, "records", names, request_.read);
    const int64_t interval = int64_t{recording.interval} * kSecond;
    while (rows.Next()) {
      int64_t from = rows.Integer(0);
      if (from == kNoTime && rows.Integer(1) != kNoTime) from = rows.Integer(1) - interval;
      if (from == kNoTime || (*last != kNoTime && from <= *last)) continue;
      const bool gap = *last != kNoTime && from - *last > interval + interval / 2;
      size_t at = 2;
      for (Drawing* drawing : drawn) {
        if (gap) drawing->Gap(*last + interval);
        Take(rows, &at, from, drawing);
      }
      *last = from;
      for (size_t c = 0; sums && c < energy_columns_.size(); ++c) {
        const double energy = rows.Number(energy_at + c);
        const EnergyColumn& column = energy_columns_[c];
        if (std::isfinite(energy)) energy_[column.row].*column.sum += energy;
      }
    }
  }

  static void Take(const TableRows& rows, size_t* at, int64_t from, Drawing* drawing) {
    if (drawing->in_bucket++ == 0) drawing->bucket_from = from;
    for (Line& line : drawing->lines) {
      double value = kNaN;
      for (size_t v = 0; v < line.columns->values.size(); ++v, ++*at) {
        if (std::isnan(value)) value = rows.Number(*at);
      }
      double low = rows.Number((*at)++), high = rows.Number((*at)++);
      if (drawing->bucket > 1 && std::isnan(low)) low = value;
      if (drawing->bucket > 1 && std::isnan(high)) high = value;
      Lower(low, &line.least);
      Raise(high, &line.most);
      Lower(std::isnan(low) ? value : low, &line.lowest);
      Raise(std::isnan(high) ? value : high, &line.highest);
      if (!std::isfinite(value)) continue;
      line.sum += value;
      ++line.got;
      line.total += value;
      ++line.count;
    }
    if (drawing->in_bucket >= drawing->bucket) drawing->Close();
  }

  // The lines of a chart that have values and, of quantities in two directions, are not zero.
  static std::string SeriesOf(Drawing* drawing, InstrumentTrends* result) {
    std::string series;
    Trend trend;
    const auto& lines = drawing->lines;
    const bool banded = std::any_of(lines.begin(), lines.end(), [](const Line& l) {
      return std::any_of(l.low.begin(), l.low.end(), [](float v) { return v == v; });
    });
    for (const Line& line : lines) {
      const bool directed = line.columns->label.find_first_of("+-") != std::string::npos;
      if (line.count == 0 || (directed && line.lowest == 0 && line.highest == 0)) continue;
      const int digits = drawing->kind->digits;
      std::string members = JsonSeries(line.columns->label, line.values, digits);
      if (banded) {
        members.pop_back();
        members += ",\"low\":" + JsonNumbers(line.low, digits) +
                   ",\"high\":" + JsonNumbers(line.high, digits) + "}";
      }
      AppendPart(members, &series);
      trend.series.push_back({line.columns->label, line.lowest,
                              line.total / static_cast<double>(line.count), line.highest});
    }
    if (!series.empty()) result->trends.push_back(trend);
    return series;
  }

  std::string LimitLines(const TrendKind& kind) const {
    const CardRecording& recording = FirstDrawn();
    const double nominal = std::string(kind.limited_by) == "frequency" ? recording.frequency
                           : request_.nominal > 0                      ? request_.nominal
                                                                       : recording.nominal;
    std::string lines;
    for (const Limit& limit : request_.limits.rows) {
      if (limit.index != kind.limited_by) continue;
      const bool around = limit.low != 0;
      for (const double percent : {limit.high, limit.low}) {
        if (percent == 0) continue;
        const double at = around ? nominal * (1 + percent / 100) : percent;
        std::string label =
            around ? (percent > 0 ? "+" : "") + JsonNumber(percent, 5) + " %" : "limit";
        const std::string line =
            "{\"label\":" + JsonText(label) + ",\"at\":" + JsonNumber(at, 7) + "}";
        if (at > 0 && lines.find(line) == std::string::npos) AppendPart(line, &lines);
      }
    }
    return lines;
  }
  const CardRecording& FirstDrawn() const {
    for (const Drawing& drawing : drawings_) {
      if (!drawing.chains.empty()) return First(*drawing.chains.front());
    }
    return card_.recordings.front();
  }

  const Card& card_;
  const ReportRequest& request_;
  std::vector<TrendKind> kinds_;
  std::vector<Drawing> drawings_;
  std::vector<EnergyColumn> energy_columns_;
  std::vector<EnergyRow> energy_;
  std::vector<const Chain*> energy_chains_;
};

}  // namespace

std::vector<InstrumentTrends> AddTrends(const Card& card, const ReportRequest& request,
                                        Charts* charts) {
  std::map<std::string, std::vector<const Chain*>> chains_of;  // by instrument
  for (const Chain& chain : card.chains) {
    chains_of[card.recordings[chain.recordings.front()].serial].push_back(&chain);
  }
  std::vector<InstrumentTrends> all;
  for (auto& [serial, chains] : chains_of) {
    std::stable_sort(chains.begin(), chains.end(), [&](const Chain* a, const Chain* b) {
      return RankOf(card.recordings[a->recordings.front()]) <
             RankOf(card.recordings[b->recordings.front()]);
    });
    const std::string suffix = all.empty() ? "" : "-" + std::to_string(all.size() + 1);
    InstrumentTrends trends = Drawer(card, request, chains).Result(suffix, charts);
    trends.serial = serial;
    for (const Chain* chain : chains) {
      const Span time = {card.recordings[chain->recordings.front()].time.from,
                         card.recordings[chain->recordings.back()].time.to};
      if (time.from == kNoTime) continue;
      if (trends.time.from == kNoTime || time.from < trends.time.from) trends.time.from = time.from;
      trends.time.to = std::max(trends.time.to, time.to);
    }
    all.push_back(trends);
  }
  return all;
}

}  // namespace quorvex::tool
