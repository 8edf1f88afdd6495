// float_sweep: the text of every float there is against the C library. It takes half an hour, so no
// automatic check runs it.
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "xml/number_text.h"

int main() {
  using namespace quorvex;
  uint64_t wrong = 0;
  uint32_t bits = 0;
  do {
    const auto value = std::bit_cast<float>(bits);
    char got[kLongestNumber], want[64];
    *FloatText(value, got) = '\0';
    std::snprintf(want, sizeof want, "%E", static_cast<double>(value));
    if (std::isnan(value)) std::strcpy(want, std::signbit(value) ? "-NAN" : "NAN");
    if (value == kNoValue) std::strcpy(want, "-");
    if (std::strcmp(got, want) == 0) continue;
    if (++wrong < 20) std::printf("%08X: %s, not %s\n", bits, got, want);
  } while (++bits != 0);
  std::printf("%llu of 2^32 floats differ\n", static_cast<unsigned long long>(wrong));
  return wrong == 0 ? 0 : 1;
}
