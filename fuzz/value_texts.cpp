// libFuzzer: texts of trigger levels and of described values, for any numbers and settings.
#include <algorithm>
#include <cstring>

#include "settings/value_texts.h"
#include "support/loads.h"

using namespace quorvex;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
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
  return 0;
}
