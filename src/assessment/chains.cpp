#include "assessment/chains.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "tables/table_rows.h"

namespace quorvex {

Span TimeOf(const std::string& path, uint64_t records, int64_t interval,
            const ReadOptions& options) {
  const auto time_of = [&](uint64_t record) {
    ReadOptions one = options;
    one.first = one.last = record;
    TableRows rows(path, "records", {"START_TIME", "LAST_TIME"}, one);
    if (!rows.Next()) return Span{kNoTime, kNoTime};
    Span time = {rows.Integer(0), rows.Integer(1)};
    if (time.from == kNoTime && time.to != kNoTime) time.from = time.to - interval;
    if (time.to == kNoTime && time.from != kNoTime) time.to = time.from + interval;
    return time;
  };
  if (records == 0) return {kNoTime, kNoTime};
  return {time_of(1).from, time_of(records).to};
}

std::vector<std::vector<size_t>> Chains(const std::vector<Stretch>& stretches) {
  std::vector<size_t> order(stretches.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
    return std::tie(stretches[a].subject, stretches[a].time.from) <
           std::tie(stretches[b].subject, stretches[b].time.from);
  });
  std::vector<std::vector<size_t>> chains;
  for (const size_t number : order) {
    const Stretch& next = stretches[number];
    const auto continues = [&](const std::vector<size_t>& chain) {
      const Stretch& before = stretches[chain.back()];
      const bool timed = next.time.from != kNoTime && before.time.to != kNoTime;
      return timed && next.subject == before.subject && next.time.from >= before.time.to &&
             next.time.from - before.time.to < next.interval;
    };
    const auto chain = std::find_if(chains.begin(), chains.end(), continues);
    if (chain != chains.end()) {
      chain->push_back(number);
    } else {
      chains.push_back({number});
    }
  }
  std::stable_sort(chains.begin(), chains.end(), [&](const auto& a, const auto& b) {
    return stretches[a.front()].time.from < stretches[b.front()].time.from;
  });
  return chains;
}

}  // namespace quorvex
