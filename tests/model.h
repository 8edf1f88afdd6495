// A second, plain writer of results: documents that tests expect, from lists of names and offsets
// as the record formats give them.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "support.h"

namespace quorvex::test {

// "Pp 0, Pm 24": names with a number each.
std::vector<std::pair<std::string, uint32_t>> Pairs(const std::string& list);

// The statistics that records are made of, with the place of each value.
constexpr char kMinMaxRms[] = "min 0, max 4, rms 8";
constexpr char kMinMaxAvg[] = "min 0, max 4, avg 8";
constexpr char kMaxRms[] = "max 0, rms 4";
constexpr char kMinMaxRmsA[] = "min 0, max 4, rms 8, rmsA 12";
constexpr char kMaxRmsA[] = "max 0, rms 4, rmsA 8";
constexpr char kSix[] = "min 0, max 4, avg 8, avgA 16";

class Model {
 public:
  explicit Model(const Bytes& record) : record_(record) {}

  Model& Open(const std::string& name, const std::string& phase = "");
  Model& Close(const std::string& name);
  Model& Line(const std::string& name, const std::string& value);
  Model& Float(const std::string& name, uint32_t at);
  Model& Whole(const std::string& name, uint32_t at);
  // The time that FillRecord() puts everywhere.
  Model& Time(const std::string& name);
  // A statistic for each pair of the list; offsets count in `unit` bytes from `at`.
  Model& List(const std::string& list, const std::string& values, uint32_t at = 0,
              uint32_t unit = 1);
  // `entries` times `on_disk` floats, the first `written` of each in base64.
  Model& Spectrum(const std::string& name, const std::string& phase, uint32_t at, uint32_t entries,
                  uint32_t on_disk, uint32_t written);

  std::string text;

 private:
  const Bytes& record_;
};

// A record in which every float is another one, with a missing value here and there, and the given
// places hold times.
Bytes FillRecord(uint32_t size, std::initializer_list<uint32_t> times);

// The floats that base64 text stands for.
std::vector<float> Decoded(const std::string& base64);

// The text of the element that a path leads to: each step is the next open tag of that name.
std::string TextAt(const std::string& document, const std::vector<std::string>& path);

}  // namespace quorvex::test
