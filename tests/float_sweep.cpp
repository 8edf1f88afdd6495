// float_sweep: the text of every float there is against the C library. It takes minutes, so no
// automatic check runs it.
#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <thread>
#include <vector>

#include "xml/number_text.h"

namespace {

using namespace quorvex;

std::atomic<uint64_t> wrong{0};

void Sweep(uint64_t from, uint64_t end) {
  for (uint64_t bits = from; bits < end; ++bits) {
    const auto value = std::bit_cast<float>(static_cast<uint32_t>(bits));
    char got[kLongestNumber], want[64];
    *FloatText(value, got) = '\0';
    if (std::isnan(value)) {
      std::strcpy(want, std::signbit(value) ? "-NAN" : "NAN");
    } else if (value == kNoValue) {
      std::strcpy(want, "-");
    } else {
      std::snprintf(want, sizeof want, "%E", static_cast<double>(value));
    }
    if (std::strcmp(got, want) == 0) continue;
    if (++wrong < 20)
      std::printf("%08llX: %s, not %s\n", static_cast<unsigned long long>(bits), got, want);
  }
}

}  // namespace

int main() {
  constexpr uint64_t kAll = uint64_t{1} << 32;
  const uint64_t count = std::max(1u, std::thread::hardware_concurrency());
  std::vector<std::thread> threads;
  for (uint64_t i = 0; i < count; ++i) {
    threads.emplace_back(Sweep, kAll * i / count, kAll * (i + 1) / count);
  }
  for (std::thread& thread : threads) thread.join();
  std::printf("%llu of 2^32 floats differ\n", static_cast<unsigned long long>(wrong.load()));
  return wrong == 0 ? 0 : 1;
}
