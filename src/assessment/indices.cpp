#include "assessment/indices.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <tuple>

#include "assessment/interval_reader.h"

namespace quorvex {
namespace {

constexpr size_t kMostGaps = 20;
// More than instruments record; damaged times could make a week of each record.
constexpr size_t kMostWeeks = 600;

std::string Shown(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

// The verdict where `there` of `expected` parts of the week are; no parts make no week.
void Judge(bool is_within, uint64_t there, uint64_t expected, IndexRow* row) {
  const bool full = expected > 0 && there * 100 >= expected * 95;
  row->verdict = !full ? Verdict::kNotAFullWeek : is_within ? Verdict::kWithin : Verdict::kOutside;
}

bool IsEnough(uint64_t within, uint64_t used, double needed) {
  const double least = needed * static_cast<double>(used);
  return static_cast<double>(within) >= least - 1e-9 * least;
}

// Makes the rows of a week.
class Rower {
 public:
  Rower(const Subject& subject, const Limits& limits, Week* week)
      : subject_(subject), limits_(limits), week_(week) {}

  void Make(Gathered* g) {
    const bool ten_minutes = subject_.parts > 0;
    for (const Limit& limit : limits_.rows) {
      if (limit.index == "frequency") {
        AddFrequency(limit, g);
      } else if (limit.index == "unbalance") {
        Add(limit, "all", "%", Above(limit), ten_minutes && g->has_unbalance, &g->unbalance);
      } else if (limit.index == "signalling") {
        for (const ChannelGauges& channel : g->channels) AddSignalling(limit, channel);
      } else if (limit.index.compare(0, 9, "harmonic-") == 0) {
        const auto order = static_cast<size_t>(std::stoul(limit.index.substr(9)));
        for (SpectrumGauges& spectrum : g->voltages) {
          const bool there = order < spectrum.orders.size();
          Gauge none, *gauge = there ? &spectrum.orders[order] : &none;
          Add(limit, spectrum.channel, "%", Above(limit), ten_minutes && spectrum.is_there && there,
              gauge);
        }
      } else {
        for (ChannelGauges& channel : g->channels) AddChannel(limit, &channel);
      }
    }
    if (ten_minutes) {
      AddSpectra(&g->voltages, &week_->voltages);
      AddSpectra(&g->currents, &week_->currents);
    }
  }

 private:
  static Band Above(const Limit& limit) { return {-HUGE_VALF, static_cast<float>(limit.high), 0}; }
  static Band Around(const Limit& limit, double nominal) {
    return {static_cast<float>(nominal * (1 + limit.low / 100)),
            static_cast<float>(nominal * (1 + limit.high / 100)), static_cast<float>(nominal)};
  }

  void AddFrequency(const Limit& limit, Gathered* g) {
    const bool known = subject_.frequency > 0;
    Add(limit, "all", "Hz", Around(limit, subject_.frequency), known && g->has_frequency,
        &g->frequency, {}, kWeek / kTenSeconds);
    IndexRow& row = week_->rows.back();
    // Without the list of values there are their extremes, of which no share can be made.
    const Extremes& extremes = g->frequency_extremes;
    if (row.used == 0 && extremes.lowest == extremes.lowest) {
      row.lowest = extremes.lowest;
      row.highest = extremes.highest;
    }
  }

  void AddChannel(const Limit& limit, ChannelGauges* channel) {
    if (limit.index == "voltage") {
      Add(limit, channel->channel, "V", Around(limit, subject_.nominal),
          subject_.parts > 0 && subject_.nominal > 0 && channel->has_rms, &channel->rms);
    } else if (limit.index == "thd") {
      Add(limit, channel->channel, "%", Above(limit), subject_.parts > 0 && channel->has_thd,
          &channel->thd);
    } else if (limit.index == "plt") {
      Add(limit, channel->channel, "", Above(limit), channel->has_plt, &channel->plt,
          channel->plt_windows.size(), kWeek / kTwoHours);
    }
  }

  // `there` of `expected` windows are; where it is nothing, as many as the gauge has seen.
  void Add(const Limit& limit, const std::string& channel, const char* unit, const Band& band,
           bool measured, Gauge* gauge, std::optional<uint64_t> there = {},
           int64_t expected = kWeek / kTenMinutes) {
    IndexRow row = {&limit, channel};
    row.unit = unit;
    const std::string behind = unit[0] != '\0' ? std::string(" ") + unit : "";
    const bool two_sided = std::isfinite(band.low);
    row.limit_text = two_sided ? Shown(static_cast<double>(band.low)) + " to " +
                                     Shown(static_cast<double>(band.high)) + behind
                               : Shown(limit.high) + behind;
    // The nominal value is not known.
    if (two_sided && band.middle == 0) {
      row.limit_text = Shown(limit.low) + " to +" + Shown(limit.high) + " %";
    }
    const std::vector<float>& values = gauge->Values();
    if (measured) {
      row.flagged = gauge->flagged();
      row.used = values.size();
    }
    if (row.used > 0) {
      const uint64_t within = gauge->Within(band);
      row.within = static_cast<double>(within) / static_cast<double>(row.used);
      const float value = gauge->ValueAt(limit.needed, band);
      row.value = static_cast<double>(value);
      row.reach = band.Reach(value);
      const auto [least, most] = std::minmax_element(values.begin(), values.end());
      row.lowest = static_cast<double>(*least);
      row.highest = static_cast<double>(*most);
      Judge(IsEnough(within, row.used, limit.needed), there.value_or(gauge->present()),
            static_cast<uint64_t>(expected), &row);
    }
    week_->rows.push_back(row);
  }

  // Of each day there must be enough; the worst is told.
  void AddSignalling(const Limit& limit, const ChannelGauges& channel) {
    for (int s = 0; s < 2; ++s) {
      const SignallingChannel& signal = subject_.signals[s];
      const SignalCounts& counts = channel.signals[s];
      IndexRow row = {&limit, channel.channel};
      row.unit = "%";
      row.limit_text = Shown(100 * static_cast<double>(signal.limit)) + " % at " +
                       Shown(static_cast<double>(signal.f)) + " Hz";
      bool is_enough = true;
      for (const auto& [number, day] : counts.days) {
        const uint64_t used = day.in + day.out;
        const double within = static_cast<double>(day.in) / static_cast<double>(used);
        row.used += used;
        row.within = std::min(row.within.value_or(1), within);
        is_enough = is_enough && IsEnough(day.in, used, limit.needed);
      }
      row.flagged = counts.flagged;
      if (row.used > 0) {
        row.reach = (1 - *row.within) / (1 - limit.needed + 1e-12);
        Judge(is_enough, counts.intervals, week_->expected, &row);
      }
      week_->rows.push_back(row);
    }
  }

  static void AddSpectra(std::vector<SpectrumGauges>* spectra, std::vector<SpectrumRow>* rows) {
    for (SpectrumGauges& spectrum : *spectra) {
      SpectrumRow row = {spectrum.channel, {}};
      for (int order = 2; order <= kHighestOrder; ++order) {
        const std::vector<float>& values = spectrum.orders[static_cast<size_t>(order)].Values();
        if (values.empty()) continue;
        row.entries.push_back({order, Quantile(values, 0.95), Quantile(values, 1)});
      }
      if (!row.entries.empty()) rows->push_back(row);
    }
  }

  const Subject& subject_;
  const Limits& limits_;
  Week* week_;
};

bool MeetsAny(const std::vector<Span>& flags, const Span& time) {
  const auto next = std::upper_bound(flags.begin(), flags.end(), time.from,
                                     [](int64_t t, const Span& flag) { return t <= flag.to; });
  return next != flags.end() && next->from < time.to;
}

}  // namespace

const char* NameOf(Verdict verdict) {
  constexpr const char* kNames[] = {"outside", "not a full week", "within", "not measured"};
  return kNames[static_cast<size_t>(verdict)];
}

std::vector<Span> Apart(std::vector<Span> spans) {
  std::sort(spans.begin(), spans.end(),
            [](const Span& a, const Span& b) { return a.from < b.from; });
  std::vector<Span> apart;
  for (const Span& span : spans) {
    if (!apart.empty() && span.from <= apart.back().to) {
      apart.back().to = std::max(apart.back().to, span.to);
    } else {
      apart.push_back(span);
    }
  }
  return apart;
}

void Sort(std::vector<IndexRow>* rows) {
  const auto key = [](const IndexRow& row) {
    const bool fails = row.within && row.reach > 1;
    return std::tuple(row.verdict == Verdict::kNotMeasured, row.verdict != Verdict::kOutside,
                      !fails, -row.reach);
  };
  std::stable_sort(rows->begin(), rows->end(),
                   [&](const IndexRow& a, const IndexRow& b) { return key(a) < key(b); });
}

Assessment Assess(const std::vector<std::string>& paths, const Limits& limits, double nominal,
                  const std::vector<Span>& flags, const ReadOptions& options) {
  Assessment result;
  Subject subject;
  Gathered gathered;
  int64_t begin = kNoTime, last = kNoTime, number = -1;
  const auto end_week = [&] {
    if (result.weeks.empty()) return;
    Week& week = result.weeks.back();
    Rower(subject, limits, &week).Make(&gathered);
    Sort(&week.rows);
  };
  const auto begin_week = [&](int64_t from) {
    end_week();
    number = (from - begin) / kWeek;
    Week week = {};
    week.time = {begin + number * kWeek, begin + (number + 1) * kWeek};
    week.expected = subject.interval > 0 ? static_cast<uint64_t>(kWeek / subject.interval) : 0;
    result.weeks.push_back(week);
    gathered = Begin(subject);
  };
  for (const std::string& path : paths) {
    {
      RecordingHead head(path.c_str());
      head.UseSettingFile();
      subject = SubjectOf(head.settings, nominal);
    }
    IntervalReader reader(path, subject, options);
    while (reader.Next()) {
      Interval interval = {reader.Time(), 0, false};
      const Span& time = interval.time;
      // One that is longer than two has a damaged time.
      const bool sound = time.from != kNoTime && time.to > time.from &&
                         (subject.interval == 0 || time.to - time.from <= 2 * subject.interval);
      if (!sound || (last != kNoTime && time.from <= last)) {
        ++result.without_time;
        continue;
      }
      if (begin == kNoTime) begin = time.from;
      if (result.weeks.empty() || (time.from - begin) / kWeek != number) {
        if (result.weeks.size() == kMostWeeks) {
          ++result.without_time;
          continue;
        }
        begin_week(time.from);
      }
      Week& week = result.weeks.back();
      ++week.intervals;
      // Clocks are corrected by a little now and then.
      const int64_t half = std::min(subject.interval, kTenMinutes) / 2;
      interval.window = (time.from - week.time.from + half) / kTenMinutes;
      interval.flagged = MeetsAny(flags, time);
      if (last != kNoTime && time.from - last > subject.interval + half) {
        ++week.gap_count;
        if (week.gaps.size() < kMostGaps) {
          week.gaps.push_back({last + subject.interval, time.from});
        }
      }
      last = time.from;
      reader.TakeRecord(interval, &gathered);
    }
  }
  end_week();
  if (!result.weeks.empty()) {
    Week& week = result.weeks.back();
    week.time.to = std::min(week.time.to, last + subject.interval);
  }
  return result;
}

}  // namespace quorvex
