// libFuzzer: conversions and questions of every type, names of setting files, texts of values. The
// second byte says which; recordings have a zero there, of their version. The mutator works on the
// fields of the type at hand.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "checks.h"
#include "field_mutator.h"
#include "records/record_types.h"
#include "settings/setting_file.h"
#include "settings/value_texts.h"
#include "support/file.h"
#include "support/loads.h"

using namespace quorvex;

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

namespace {

std::string RecordingProblem(const std::vector<uint8_t>& recording) {
  const bool with_progress = !recording.empty() && recording[0] % 2 != 0;
  std::string problem = fuzz::ConversionProblem(recording, with_progress);
  if (problem.empty()) problem = fuzz::QueryProblem(recording);
  return problem.empty() ? fuzz::TablesProblem(fuzz::InFolder("R0001X.REC")) : problem;
}

std::string NameProblem(const uint8_t* data, size_t size) {
  const std::string path(reinterpret_cast<const char*>(data), size);
  char name[kMaxPath + 1];
  if (!BuildSettingFileName(path.c_str(), name, "PAR", size % 20)) return "";
  if (std::strlen(name) > kMaxPath) return "a name that is too long";
  return std::strstr(name, "PAR") != nullptr ? "" : "a name that is none of a setting file";
}

void MakeTexts(const uint8_t* data, size_t size) {
  struct {
    float value, nominal;
    uint32_t trigger;
    ClampParams clamp;
  } input{};
  std::memcpy(&input, data, std::min(size, sizeof input));
  UifParams settings{};
  settings.nominal_voltage = input.nominal;
  settings.clamp[0] = input.clamp;
  char room[64];
  for (const bool percent_first : {false, true}) {
    BoundedText text(room, sizeof room);
    LevelText(input.value, input.trigger % 9, settings, &text, percent_first);
  }
  for (const ValueDescriptor* descriptor : {&kVoltageDescriptor, &kCurrentDescriptor}) {
    BoundedText text(room, sizeof room);
    DescribedValueText(static_cast<double>(input.value), *descriptor, &text);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const int what = size < 2 ? 0 : data[1];
  std::string problem;
  if (what == 1) {
    problem = NameProblem(data + 2, size - 2);
  } else if (what == 2) {
    MakeTexts(data + 2, size - 2);
  } else {
    problem = RecordingProblem({data, data + size});
  }
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
