// libFuzzer: whole conversions of every type. The mutator works on the fields of the type at hand.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "checks.h"
#include "field_mutator.h"
#include "records/record_types.h"
#include "support/loads.h"

using namespace quorvex;

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const bool with_progress = size > 0 && data[0] % 2 != 0;
  const std::string problem = fuzz::ConversionProblem({data, data + size}, with_progress);
  if (problem.empty()) return 0;
  std::fprintf(stderr, "%s\n", problem.c_str());
  std::abort();
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size,
                                          unsigned seed) {
  static const auto* mutators = [] {
    auto* all = new std::vector<fuzz::FieldMutator>;
    for (const RecordType* type : kRecordTypes) all->emplace_back(*type);
    return all;
  }();
  std::mt19937 random(seed);
  const RecordType* type = size >= 8 ? FindRecordType(Load<uint32_t>(data + 4)) : nullptr;
  if (type == nullptr || random() % 8 == 0) return LLVMFuzzerMutate(data, size, max_size);
  const auto row = std::find(std::begin(kRecordTypes), std::end(kRecordTypes), type);
  std::vector<uint8_t> recording(data, data + size);
  (*mutators)[static_cast<size_t>(row - kRecordTypes)].Mutate(&recording, &random);
  const size_t mutated = std::min(recording.size(), max_size);
  std::memcpy(data, recording.data(), mutated);
  return mutated;
}
