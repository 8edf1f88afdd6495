// The observations of a PQDIF file, made of recordings.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "exchange/pqdif_channels.h"
#include "exchange/pqdif_records.h"
#include "tables/cursor.h"

namespace quorvex::pqdif {

// Intervals that one observation holds; samples of each channel of a waveform.
constexpr size_t kMostIntervals = 1008;
constexpr uint64_t kMostSamples = 1 << 18;

struct Observation {
  std::string name;
  int64_t start = 0;  // whole milliseconds, as readers round it
  uint32_t trigger = 0;
  std::optional<Guid> disturbance = {};
  std::vector<Element> channels = {};
};
using Take = std::function<bool(const Observation& observation)>;

// What the observations of a recording are made with.
struct Recorded {
  std::string path;
  std::string name;  // what observations call it
  const std::vector<Channel>* channels;
  ReadOptions read;
  uint64_t left_out = 0;  // records without a time, waveforms without a step
};

// False where an observation was refused.
bool ForEachObservation(Recorded* recorded, const Take& take);

// In elements.
std::vector<Element> ElementsOf(const Observation& observation);

}  // namespace quorvex::pqdif
