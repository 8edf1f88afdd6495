#include "field_mutator.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "settings/settings_table.h"
#include "support/loads.h"

namespace quorvex::fuzz {
namespace {

uint32_t Below(uint32_t bound, std::mt19937* random) {
  return bound == 0 ? 0 : static_cast<uint32_t>((*random)() % bound);
}

uint32_t WordFor(size_t file_size, std::mt19937* random) {
  const auto size = static_cast<uint32_t>(file_size);
  constexpr auto kNone = std::bit_cast<uint32_t>(kNoValue);
  constexpr auto kManyDigits = std::bit_cast<uint32_t>(9999999.5f);
  const uint32_t words[] = {0,           1,          2,          7,          8,
                            90,          91,         330,        331,        1500,
                            2048,        2049,       size,       size + 1,   kNone,
                            kManyDigits, 0xFFFFFFFF, 0x7FFFFFFF, 0x80000000, 0x7F800000,
                            0xFF800000,  0x7FC00000, 0xFFC00001, 0x007FFFFF, 0x4F000000};
  const uint32_t pick = Below(static_cast<uint32_t>(std::size(words)) + 4, random);
  return pick < std::size(words) ? words[pick] : static_cast<uint32_t>((*random)());
}

double DoubleFor(std::mt19937* random) {
  const double doubles[] = {0.0,    -0.0,         -1.5,           59.9999999, 1e300, -1e300,
                            1e-310, 2147483648.0, kNoValueDouble, HUGE_VAL,   NAN};
  return doubles[Below(static_cast<uint32_t>(std::size(doubles)), random)];
}

uint32_t SizeOf(Kind kind) {
  switch (kind) {
    case Kind::kU8:
      return 1;
    case Kind::kU16:
    case Kind::kScaledI16:
      return 2;
    case Kind::kI64:
    case Kind::kF64:
    case Kind::kSeconds:
      return 8;
    case Kind::kGap:
    case Kind::kGroup:
    case Kind::kI32:
    case Kind::kF32:
    case Kind::kScaledF32:
    case Kind::kText:
    case Kind::kRawText:
    case Kind::kMade:
    case Kind::kNoValue:
    case Kind::kSpectrum:
      break;
  }
  return 4;
}

}  // namespace

FieldMutator::FieldMutator(const RecordType& type) : type_(type) {
  if (type.settings_at != 0) {
    Gather(kSettingsBlock, type.settings_at, &head_);
    // What decides the shape of a document counts more than the hundreds of other settings.
    const uint32_t deciding[] = {offsetof(UifParams, connection),
                                 offsetof(UifParams, reduced_lists), offsetof(UifParams, profile),
                                 offsetof(UifParams, interval),
                                 offsetof(UifParams, transients.num)};
    for (int weight = 0; weight < 10; ++weight) {
      for (const uint32_t at : deciding) head_.push_back({type.settings_at + at, Kind::kU8});
      head_.push_back(
          {type.settings_at + static_cast<uint32_t>(offsetof(UifParams, transients.num)),
           Kind::kI32});
    }
  }
  if (type.information != nullptr) {
    Gather(*type.information, type.settings_at + kSettingsSize, &head_);
  }
  const auto add = [this](const Field& record) {
    Gather(record, 0, &records_);
    record_sizes_.push_back(record.size);
  };
  if (type.record != nullptr) add(*type.record);
  for (uint32_t i = 0; type.choice != nullptr && i < type.choice->count; ++i) {
    add(*type.choice->layouts[i]);
  }
}

void FieldMutator::Gather(const Field& group, uint32_t place, std::vector<Place>* places) {
  for (uint32_t r = 0; r < group.row_count; ++r) {
    const Field& f = group.rows[r];
    if (f.kind == Kind::kGroup) {
      Gather(f, f.behind ? type_.record->size : place + f.offset, places);
      if (f.count_from == CountFrom::kRecord) places->push_back({place + f.count_ref, Kind::kI32});
    } else {
      places->push_back({place + f.offset, f.kind});
    }
  }
}

void FieldMutator::Mutate(std::vector<uint8_t>* recording, std::mt19937* random) const {
  const uint32_t changes = 1 + Below(4, random);
  for (uint32_t change = 0; change < changes; ++change) {
    std::vector<uint8_t>& bytes = *recording;
    const auto size = static_cast<uint32_t>(bytes.size());
    const uint32_t records = size > type_.records_at ? size - type_.records_at : 0;
    const uint32_t what = Below(12, random);
    if (what < 8 || size <= kFileHeaderSize) {
      // A field of the head, of a record, or four bytes anywhere.
      Place place = {Below(size, random), Kind::kI32};
      if (what < 3 && !head_.empty()) {
        place = head_[Below(static_cast<uint32_t>(head_.size()), random)];
      } else if (what < 7 && !records_.empty()) {
        place = records_[Below(static_cast<uint32_t>(records_.size()), random)];
        const uint32_t record_size =
            record_sizes_[Below(static_cast<uint32_t>(record_sizes_.size()), random)];
        place.offset += type_.records_at;
        if (record_size != 0)
          place.offset += Below(records / record_size + 1, random) * record_size;
      } else if (what == 7) {
        place.offset = type_.records_at + Below(records, random) / 4 * 4;
      }
      const uint32_t width = SizeOf(place.kind);
      if (place.offset < kFileHeaderSize || place.offset + width > size) continue;
      uint8_t* at = bytes.data() + place.offset;
      const uint32_t word = WordFor(size, random);
      switch (width) {
        case 1:
          *at = static_cast<uint8_t>(Below(2, random) != 0 ? word % 9 : word);
          break;
        case 2:
          Store(at, static_cast<uint16_t>(word));
          break;
        case 8:
          Store(at, DoubleFor(random));
          break;
        default:
          Store(at, word);
          break;
      }
    } else if (what == 8) {
      bytes.resize(Below(size + 1, random));
    } else if (what == 9) {
      bytes.resize(size + Below(512, random));
    } else {
      // Some bytes again, at the end or over others.
      const uint32_t from = Below(size, random);
      const uint32_t count = std::min(Below(4096, random), size - from);
      const std::vector<uint8_t> piece(bytes.begin() + from, bytes.begin() + from + count);
      if (what == 10) {
        bytes.insert(bytes.end(), piece.begin(), piece.end());
      } else {
        const uint32_t to = Below(size - count + 1, random);
        std::copy(piece.begin(), piece.end(), bytes.begin() + to);
      }
    }
  }
  if (recording->size() >= kFileHeaderSize) Store(recording->data() + 4, type_.type);
}

}  // namespace quorvex::fuzz
