// Sample scales against values worked out by hand, as mantissa and power of two where they are not
// round.
#include "records/sample_scales.h"

#include <gtest/gtest.h>

#include "support.h"

namespace quorvex::test {
namespace {

// Gains by channel and range: 1, 2 and 4 on phase 1; 8 on phase 2, 16 on phase 3 and 32 on the
// neutral, in the first range.
TEST(SampleScales, OfVoltages) {
  UifParams s{};
  const float gains[] = {1, 2, 4, 8, 0, 0, 16, 0, 0, 99, 99, 99, 32};
  std::copy(std::begin(gains), std::end(gains), s.ee_konst);
  const float step = 0.000152587890625f;  // 10 V over 65536 steps
  const struct {
    const char* what;
    uint32_t prim, sec;
    uint8_t kind, range;
    int channel;
    float expected;
  } cases[] = {
      {"no transformer", 1, 1, 0, 0, 0, step},
      {"third range", 1, 1, 0, 2, 0, 4 * step},
      {"range without calibration", 1, 1, 0, 3, 0, step},
      {"phase 2", 1, 1, 0, 0, 1, 8 * step},
      {"phase 3", 1, 1, 0, 0, 2, 16 * step},
      {"neutral", 1, 1, 0, 0, 3, 32 * step},
      {"ratio 1 has no kind", 20, 20, 1, 0, 0, step},
      {"ratio", 300, 100, 0, 0, 0, 3 * step},
      // The root of 3 is 14529495 * 2^-23 as a float, its inverse 9686330 * 2^-24; twice that, ten
      // times, and rounded to 24 bits (the second is a tie).
      {"star", 2, 1, 1, 0, 0, 9080934 * 0x1p-34f},
      {"delta", 2, 1, 2, 0, 0, 12107912 * 0x1p-36f},
  };
  for (const auto& c : cases) {
    s.voltage_ratio_prim = c.prim, s.voltage_ratio_sec = c.sec;
    s.trikot_star_factor_id = c.kind;
    s.voltage_range = c.range | 0xAB00u;  // only its first byte counts
    EXPECT_EQ(c.expected, VoltageSampleScale(s, c.channel)) << c.what;
  }
}

// Base scales 10, 20, 30, 40; gains 1 and 2 on phase 1, 4 and 8 on the neutral; through 7/3 and
// three wires where these count.
TEST(SampleScales, OfCurrents) {
  UifParams s{};
  for (int c = 0; c < 4; ++c) {
    s.clamp[c].a_na_v = 10.0f * static_cast<float>(c + 1);
    s.clamp[c].trafo_prim_i = 7;
    s.clamp[c].trafo_sec_i = 3;
    s.clamp[c].wires_num = 3;
  }
  const float gains[] = {1, 2, 1, 2, 1, 2, 4, 8};
  std::copy(std::begin(gains), std::end(gains), s.ee_konst + 18);
  const float step = 0.0000762939453125f;  // 5 V over 65536 steps
  // 7 * 10 / 3 is 12233387 * 2^-19 when the product comes first; three times that rounds to 70.
  const float through = 15291734 * 0x1p-33f;
  const struct {
    const char* what;
    uint8_t trafo, feeders, range, own_range, type1, type_n;
    int channel;
    float expected[2];  // with the neutral's range as the phases', and its own
  } cases[] = {
      {"base", 0, 0, 10, 100, 0, 0, 0, {10 * step, 10 * step}},
      {"high range", 0, 0, 100, 10, 0, 0, 0, {20 * step, 20 * step}},
      {"unknown range", 0, 0, 11, 10, 0, 0, 0, {10 * step, 10 * step}},
      {"transformer", 1, 0, 10, 10, 0, 0, 0, {through, through}},
      {"transformer, then wires", 1, 1, 10, 10, 0, 0, 0, {70 * step, 70 * step}},
      {"phase 3", 0, 0, 100, 10, 0, 0, 2, {60 * step, 60 * step}},
      {"neutral", 0, 0, 10, 100, 0, 0, 3, {160 * step, 320 * step}},
      {"neutral, own range unknown", 0, 0, 10, 101, 0, 0, 3, {160 * step, 40 * step}},
      {"neutral as phase 1", 0, 0, 10, 100, 0, 5, 3, {10 * step, 10 * step}},
      {"both of type 5", 0, 0, 10, 100, 5, 5, 3, {160 * step, 320 * step}},
      {"neutral of type 2", 0, 0, 10, 100, 0, 2, 3, {160 * step, 320 * step}},
  };
  for (const auto& c : cases) {
    s.clamp[0].type = c.type1, s.clamp[3].type = c.type_n;
    for (ClampParams& clamp : s.clamp) clamp.trafo = c.trafo, clamp.parallel_feeders = c.feeders;
    s.range_i = c.range | 0x100u;  // only their first bytes count
    s.range_in = c.own_range | 0x100u;
    EXPECT_EQ(c.expected[0], CurrentSampleScale(s, c.channel, NeutralRange::kOfPhases)) << c.what;
    EXPECT_EQ(c.expected[1], CurrentSampleScale(s, c.channel, NeutralRange::kOwn)) << c.what;
  }
}

}  // namespace
}  // namespace quorvex::test
