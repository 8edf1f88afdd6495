// Reads the intervals of a recording, and gathers what they say about each index.
#pragma once

#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "assessment/gauge.h"
#include "assessment/indices.h"
#include "tables/table_rows.h"

namespace quorvex {

constexpr int64_t kSecond = 1000000;
constexpr int64_t kDay = 86400 * kSecond;
constexpr int64_t kWeek = 7 * kDay;
constexpr int64_t kTenMinutes = 600 * kSecond;
constexpr int64_t kTenSeconds = 10 * kSecond;
constexpr int64_t kTwoHours = 7200 * kSecond;
constexpr int kHighestOrder = 50;
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// A spectrum of a channel, which a table holds in percent or in units.
struct SpectrumGauges {
  std::string channel;
  bool is_there = false;
  std::vector<Gauge> orders;  // from 0
  double fundamental = kNone;
};

// Counts of 3-second values, which the instrument has compared with the limit of the frequency.
struct SignalCounts {
  struct Day {
    uint64_t in = 0, out = 0;
  };
  std::map<int64_t, Day> days;
  uint64_t flagged = 0, intervals = 0;
};

struct ChannelGauges {
  std::string channel;
  bool has_rms = false, has_thd = false, has_plt = false, has_signals = false;
  Gauge rms = {}, thd = {}, plt = {};
  std::set<int64_t> plt_windows = {};
  SignalCounts signals[2] = {};
};

struct Extremes {
  double lowest = kNone, highest = kNone;
  void Take(double value) {
    if (!std::isfinite(value)) return;
    if (!(value >= lowest)) lowest = value;
    if (!(value <= highest)) highest = value;
  }
};

// What a week gathers.
struct Gathered {
  std::vector<ChannelGauges> channels;
  std::vector<SpectrumGauges> voltages, currents;
  bool has_unbalance = false, has_frequency = false;
  Gauge unbalance, frequency;
  Extremes frequency_extremes;
  int64_t frequencies = 0;  // so far, with those that have no value
};

struct Interval {
  Span time;
  int64_t window;  // of ten minutes, in its week
  bool flagged;
};

// What is the same for all weeks of these recordings.
struct Subject {
  double nominal = 0, frequency = 0;
  int64_t interval = 0;
  uint32_t parts = 0;  // intervals that make ten minutes; 0 where they do not
  std::vector<std::string> voltages, currents;
  int highest_order = kHighestOrder;
  SignallingChannel signals[2] = {};
};

Subject SubjectOf(const UifParams& settings, double nominal);
Gathered Begin(const Subject& subject);

// Columns of a table by what they are wanted for: the first of some names that it has.
class Columns {
 public:
  size_t Want(std::vector<std::string> names) {
    wanted_.push_back({all_.size(), names.size()});
    all_.insert(all_.end(), std::make_move_iterator(names.begin()),
                std::make_move_iterator(names.end()));
    return wanted_.size() - 1;
  }
  const std::vector<std::string>& all() const { return all_; }
  // The column of a want, or -1.
  int In(const TableRows& rows, size_t want) const {
    const auto [first, count] = wanted_[want];
    for (size_t c = first; c < first + count; ++c) {
      if (rows.Knows(c)) return static_cast<int>(c);
    }
    return -1;
  }

 private:
  std::vector<std::string> all_;
  std::vector<std::pair<size_t, size_t>> wanted_;
};

// The tables of one recording, read side by side record by record.
class IntervalReader {
 public:
  IntervalReader(const std::string& path, const Subject& subject, const ReadOptions& options);

  bool Next() { return records_.Next(); }
  // Of the record; kNoTime where it has none.
  Span Time() const;
  void TakeRecord(const Interval& interval, Gathered* week);

 private:
  enum { kRecord, kStart, kLast };
  struct ChannelColumns {
    int rms, thd, plt, in[2], out[2];
  };
  // Of a spectrum: the column, and whether it is in percent.
  struct SpectrumColumn {
    int column;
    bool percent;
  };

  std::vector<std::string> WantRecords();
  void FindColumns();
  void TakeChannels(const Interval& interval, Gathered* week);
  void TakeSpectra(TableRows* rows, bool* more, const std::vector<SpectrumColumn>& columns,
                   int64_t record, const Interval& interval, std::vector<SpectrumGauges>* spectra);

  const Subject& subject_;
  Columns columns_, voltage_columns_, current_columns_;
  TableRows records_, voltages_, currents_, frequencies_;
  bool more_voltages_ = false, more_currents_ = false, more_frequencies_ = false;
  int unbalance_ = -1, f_least_ = -1, f_most_ = -1;
  std::vector<ChannelColumns> channel_at_;
  std::vector<SpectrumColumn> voltage_at_, current_at_;
};

}  // namespace quorvex
