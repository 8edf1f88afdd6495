// Waveforms as COMTRADE has them (IEEE C37.111, IEC 60255-24): a text that describes the channels,
// and the samples, as numbers of some type. Both are made from passes over the samples, of which
// none is kept: the first one finds ranges, the last one writes.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "exchange/waveforms.h"

namespace quorvex {

enum class ComtradeData : uint8_t { kAscii, kBinary, kBinary32, kFloat32 };

struct ComtradeForm {
  ComtradeData data = ComtradeData::kBinary;
  bool revision_2013 = false;
  bool one_file = false;  // of which configuration and samples are sections
};

struct ComtradeChannel {
  std::string name, phase, unit;
  int64_t primary = 1, secondary = 1;  // of its transformer
  // Of the samples that have a value.
  uint64_t values = 0;
  double low = 0, high = 0, sum_of_sizes = 0;
  double step = 1, offset = 0;  // a sample is `number * step + offset`
};

struct ComtradeRecord {
  std::string station, device;
  uint32_t frequency = 0;
  std::vector<ComtradeChannel> channels;
  int64_t start = kNoTime, trigger = kNoTime;
  std::optional<int32_t> utc_offset;  // minutes; the times are UTC then
  double step = 0;                    // seconds
  uint64_t samples = 0;
};

ComtradeRecord DescribeComtrade(const UifParams& settings, const std::vector<WaveChannel>& channels,
                                const WaveRecord& record, const ReadOptions& options);

// A step of the first pass: counts the sample and widens the ranges.
void TakeRange(const TableRows& sample, ComtradeRecord* record);

// Finds the time between samples of a record that has none: its zero crossings are periods of the
// network. A pass of its own, behind the first.
class StepFinder {
 public:
  explicit StepFinder(const ComtradeRecord& record);
  void Take(const TableRows& sample);
  // From the first channel whose periods are alike. 0 where there is none.
  double Step() const;

 private:
  struct Crossings {
    double margin = 0;  // what lies closer to zero is no new half-wave
    double before = 0;  // the sample before
    bool below = false;
    double at = -1, last = -1;    // where it crossed upwards, in samples
    std::vector<double> periods;  // in samples
  };
  uint32_t frequency_;
  uint64_t number_ = 0;
  std::vector<Crossings> channels_;
};

// With the ranges of the first pass.
void FindScales(const ComtradeForm& form, ComtradeRecord* record);

// What stands in front of the samples: the configuration; of one file its first sections.
std::string ComtradeConfiguration(const ComtradeRecord& record, const ComtradeForm& form);

// A step of the last pass; samples are numbered from 1.
void AppendComtradeSample(const ComtradeRecord& record, const ComtradeForm& form, uint64_t number,
                          const TableRows& sample, std::string* to);

}  // namespace quorvex
