// Damages recordings where it matters: the layout tables say where the fields of a type lie, and a
// field gets the values that formats stumble over. The head stays valid often enough to get deep.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "records/recording.h"

namespace quorvex::fuzz {

class FieldMutator {
 public:
  explicit FieldMutator(const RecordType& type);

  // One to a few changes: a field, the length, a piece moved or repeated. Keeps the file type.
  void Mutate(std::vector<uint8_t>* recording, std::mt19937* random) const;

 private:
  struct Place {
    uint32_t offset;  // in the head, or in a record
    Kind kind;
  };
  void Gather(const Field& group, uint32_t place, std::vector<Place>* places);

  const RecordType& type_;
  std::vector<Place> head_;     // from the start of the file
  std::vector<Place> records_;  // from the start of any record
  std::vector<uint32_t> record_sizes_;
};

}  // namespace quorvex::fuzz
