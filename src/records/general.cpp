// Type 1: general recordings, a record an interval. The only type of which a host converts a part.
#include <algorithm>
#include <iterator>

#include "records/general_layouts.h"
#include "records/record_types.h"
#include "records/walk.h"
#include "support/memory.h"
#include "support/numbers.h"

namespace quorvex {
namespace {

using namespace intervals;

constexpr const Field* kLayouts[] = {&kFullRecord, &kCompactRecord, &kStandardRecord};

const Field* ChooseByProfile(const UifParams& settings) {
  switch (settings.profile) {
    case 0:
      return &kFullRecord;
    case 1:
      return &kCompactRecord;
    case 2:
    case 5:
      return &kStandardRecord;
    default:
      return nullptr;
  }
}

constexpr const char* kWords[] = {"full", "compact", "standard"};
constexpr LayoutChoice kChoice = {kLayouts, kWords, std::size(kLayouts), ChooseByProfile};

// What progress counts against: the records of the file, or of the range where that is shorter.
uint32_t ExpectedRecords(const Walk& w, uint32_t record_size) {
  const auto size = static_cast<uint32_t>(w.recording->size);
  const float behind_head = static_cast<float>(static_cast<int64_t>(size) - kHeadSize);
  const float in_file = behind_head / static_cast<float>(record_size) + 0.5f;
  const uint32_t in_range = w.options.last - w.options.first + 1;
  return std::min(static_cast<uint32_t>(TruncateToInt(in_file)), in_range);
}

void WalkIntervals(Walk* w) {
  const WalkOptions& options = w->options;
  // Nothing to tell and nobody to report to: the indices need not be counted through.
  if (w->layout == nullptr && options.progress == nullptr) return;

  // Profiles without a layout keep the index stepping; the last index then stands for the size.
  const uint32_t record_size = w->layout != nullptr ? w->layout->size : options.last;
  // The distance is 32 bits wide, so record 0 lies far behind every end.
  const uint32_t distance = (options.first - 1) * record_size;
  const bool found = options.from.at != 0 || MoveTo(w, uint64_t{kHeadSize} + distance);
  const uint32_t expected = ExpectedRecords(*w, record_size);

  Tracked<uint8_t> record(w->layout != nullptr ? record_size : 0);
  uint32_t index = options.first;
  if (options.from.at == 0) w->record = options.first - 1;
  do {
    if (w->layout != nullptr) {
      if (!found || !ReadWhole(w, record.get()) || !TellRecord(w, record.get())) return;
    }
    ++index;
    if (options.progress != nullptr) {
      const auto done = static_cast<float>(index - options.first);
      if (!Report(options, done / static_cast<float>(expected))) return;
    }
  } while (index <= options.last);
}

constexpr InfoField kInfo[] = {
    {"start", InfoForm::kTime, offsetof(UifParams, start_time)},
    {"end", InfoForm::kTime, offsetof(UifParams, time_last_packet), InfoFrom::kPeriods},
    {"interval", InfoForm::kInterval, offsetof(UifParams, interval)},
};

}  // namespace

const RecordType kGeneral = {
    .type = 1,
    .word = "general",
    .name = "general records",
    .about =
        "An interval a record. The recording profile chooses one of three layouts for the whole "
        "file; other profiles have none, and documents without records. Values stand as they are "
        "stored. An array of a compact record holds the orders 1 to 25, yet 51 floats are written: "
        "each runs on into what lies behind it, and readers take the first 25.",
    .list = "RECORDS",
    .walk = WalkIntervals,
    .companion = true,
    .state = true,
    .progress = true,
    .choice = &kChoice,
    .line = kInfo,
};

}  // namespace quorvex
