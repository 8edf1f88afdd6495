// Which recordings continue each other.
#pragma once

#include <string>
#include <vector>

#include "assessment/indices.h"

namespace quorvex {

// A recording of intervals.
struct Stretch {
  std::string subject;  // equal where instrument, wiring, interval and layout are
  Span time;            // kNoTime where it is not known
  int64_t interval;     // microseconds
};

// From its first record to its last one; both are kNoTime where it has none with a time.
Span TimeOf(const std::string& path, uint64_t records, int64_t interval,
            const ReadOptions& options);

// The numbers of the stretches that make one: of the same subject, one after the other, and with
// less than an interval between them. By the time at which they begin.
std::vector<std::vector<size_t>> Chains(const std::vector<Stretch>& stretches);

}  // namespace quorvex
