// Type 1: general recordings, a record an interval. The only type of which a host converts a part.
#include <algorithm>
#include <iterator>
#include <optional>

#include "records/general_layouts.h"
#include "records/record_types.h"
#include "support/memory.h"
#include "support/numbers.h"
#include "xml/plan.h"

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

constexpr LayoutChoice kChoice = {kLayouts, std::size(kLayouts), ChooseByProfile};

// What progress counts against: the records of the file, or of the range where that is shorter.
uint32_t ExpectedRecords(const Conversion& c, uint32_t record_size) {
  const float behind_head = static_cast<float>(static_cast<int64_t>(c.size) - kHeadSize);
  const float in_file = behind_head / static_cast<float>(record_size) + 0.5f;
  const uint32_t in_range = c.request.last - c.request.first + 1;
  return std::min(static_cast<uint32_t>(TruncateToInt(in_file)), in_range);
}

void WriteIntervals(const Conversion& c) {
  const Request& request = c.request;
  const Field* layout = ChooseByProfile(c.settings);
  // Nothing to convert and nobody to tell: the indices need not be counted through.
  if (layout == nullptr && request.progress == nullptr) return;

  // Profiles without a layout keep the index stepping; the last index then stands for the size.
  const uint32_t record_size = layout != nullptr ? layout->size : request.last;
  // The distance is 32 bits wide, so record 0 lies far behind every end.
  const uint32_t distance = (request.first - 1) * record_size;
  const bool found = SeekTo(c.input, uint64_t{kHeadSize} + distance);
  const uint32_t expected = ExpectedRecords(c, record_size);

  std::optional<Plan> plan;
  if (layout != nullptr) plan.emplace(*layout, CaseOf(c.settings));
  Tracked<uint8_t> record(layout != nullptr ? record_size : 0);
  uint32_t index = request.first;
  do {
    if (plan) {
      if (!found || ReadBytes(c.input, record.get(), record_size) != record_size) return;
      plan->Render(c.document, record.get());
    }
    ++index;
    if (request.progress != nullptr) {
      const auto done = static_cast<float>(index - request.first);
      if (!Report(request, done / static_cast<float>(expected))) return;
    }
  } while (index <= request.last);
}

}  // namespace

const RecordType kGeneral = {
    .type = 1,
    .name = "general records",
    .about =
        "An interval a record. The recording profile chooses one of three layouts for the whole "
        "file; other profiles have none, and documents without records. Values stand as they are "
        "stored. An array of a compact record holds the orders 1 to 25, yet 51 floats are written: "
        "each runs on into what lies behind it, and readers take the first 25.",
    .list = "RECORDS",
    .record = nullptr,
    .write = WriteIntervals,
    .companion = true,
    .state = true,
    .progress = true,
    .choice = &kChoice,
};

}  // namespace quorvex
