// The indices of a network, week by week: how many intervals are within the limits.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "assessment/limits.h"
#include "tables/cursor.h"

namespace quorvex {

enum class Verdict : uint8_t { kOutside, kNotAFullWeek, kWithin, kNotMeasured };
const char* NameOf(Verdict verdict);

// Microseconds, as MicrosecondsOf.
struct Span {
  int64_t from, to;
};

// An index of a channel against one of its limits.
struct IndexRow {
  const Limit* limit;
  std::string channel;  // "u1", "u12"; "all" for what all phases have together
  std::string limit_text = {};
  const char* unit = "";
  uint64_t used = 0, flagged = 0;  // intervals of the index: 10 minutes, 10 or 3 seconds
  std::optional<double> within = {};
  // The value that the needed share does not go beyond, and the extremes, of what was used.
  std::optional<double> value = {}, lowest = {}, highest = {};
  Verdict verdict = Verdict::kNotMeasured;
  double reach = 0;  // of `value` towards the limit, which is at 1: for the order of rows
};

// What a spectrum had in a week, in percent of its fundamental.
struct SpectrumRow {
  std::string channel;
  struct Entry {
    int order;
    float usual, most;  // the value of 95 % of the intervals, and the highest
  };
  std::vector<Entry> entries;
};

struct Week {
  Span time;  // seven days, or as far as there are intervals
  uint64_t intervals = 0, expected = 0;
  std::vector<Span> gaps;  // the first ones
  uint64_t gap_count = 0;
  std::vector<IndexRow> rows;
  std::vector<SpectrumRow> voltages, currents;
};

struct Assessment {
  std::vector<Week> weeks;
  // Records that have none, or one that cannot be, is not behind the one before, or is of one week
  // too many.
  uint64_t without_time = 0;
};

// Of recordings of which each continues the one before. Intervals that meet a flag are left out but
// for frequencies; the flags are in order and apart. `nominal` replaces the nominal voltage of the
// settings where it is above 0. The limits must outlive the result.
Assessment Assess(const std::vector<std::string>& paths, const Limits& limits, double nominal,
                  const std::vector<Span>& flags, const ReadOptions& options);

// Worst first.
void Sort(std::vector<IndexRow>* rows);

// The same times in order, those that meet made one.
std::vector<Span> Apart(std::vector<Span> spans);

}  // namespace quorvex
