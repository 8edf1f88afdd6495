// The pieces of a conversion, each beside what one would write without them.
#include <benchmark/benchmark.h>

#include <bit>
#include <charconv>
#include <cstdio>
#include <random>
#include <vector>

#include "records/record_types.h"
#include "texts/number_text.h"
#include "xml/base64.h"
#include "xml/plan.h"

namespace {

using namespace quorvex;

std::vector<float> RandomFloats() {
  std::mt19937 random(1);
  std::normal_distribution<float> volts(230.0f, 2.0f);
  std::vector<float> values(4096);
  for (float& value : values) value = volts(random);
  return values;
}

template <typename Text>
void OverFloats(benchmark::State& state, Text text) {
  const std::vector<float> values = RandomFloats();
  char to[64];
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(text(values[i++ % values.size()], to));
    benchmark::ClobberMemory();
  }
}

BENCHMARK_CAPTURE(OverFloats, float_text, FloatText);
BENCHMARK_CAPTURE(OverFloats, float_to_chars, [](float value, char* to) {
  return std::to_chars(to, to + 64, value, std::chars_format::scientific, 6).ptr;
});
BENCHMARK_CAPTURE(OverFloats, float_printf, [](float value, char* to) {
  return to + std::snprintf(to, 64, "%E", static_cast<double>(value));
});
BENCHMARK_CAPTURE(OverFloats, double_text,
                  [](float value, char* to) { return DoubleText(value * 1.000000001, to); });
BENCHMARK_CAPTURE(OverFloats, seconds_text,
                  [](float value, char* to) { return SecondsText(value / 8, to); });

void Base64(benchmark::State& state) {
  std::vector<uint8_t> bytes(612);
  std::vector<char> text(816);
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        Base64Encode(bytes.data(), static_cast<uint32_t>(bytes.size()), text.data()));
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(Base64);

constexpr Field kOneDateTime = Record("TIME", kDateTimeSize, kDateTimeRows);

// Rendering into memory that is used again and again: no file, no system call.
void Rendering(benchmark::State& state, const Field& table) {
  std::vector<uint8_t> record(table.size);
  Plan plan(table, CaseOf(3, false));
  XmlWriter* writer = CreateWriter(nullptr);
  int64_t bytes = 0;
  for (auto _ : state) {
    writer->position = 0;
    plan.Render(writer, record.data());
    bytes += writer->position;
  }
  CloseWriter(writer);
  state.SetBytesProcessed(bytes);
}
BENCHMARK_CAPTURE(Rendering, date_time, kOneDateTime);
BENCHMARK_CAPTURE(Rendering, rapid_voltage_change, *kRapidVoltageChanges.record);

void PlanMaking(benchmark::State& state, const Field& table) {
  for (auto _ : state) benchmark::DoNotOptimize(Plan(table, CaseOf(3, false)));
}
BENCHMARK_CAPTURE(PlanMaking, rapid_voltage_change, *kRapidVoltageChanges.record);

}  // namespace

BENCHMARK_MAIN();
