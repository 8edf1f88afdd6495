// Sample scales against values worked out by hand, as mantissa and power of two where they are not
// round; then what documents make of them.
#include "records/sample_scales.h"

#include <gtest/gtest.h>

#include <sstream>

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

// What one step of a sample comes to, by channel; `none` is a value only where it is not scaled.
TEST(Scales, OfChannelReadings) {
  const struct {
    uint8_t channel;
    float volts, amperes;
    const char *u, *i;
  } cases[] = {
      {0, 2, 3, "2.000000E+00", "3.000000E+00"},
      {0, kNone, kNone, "-", "-"},
      {1, 2, 4, "2.500000E+00", "5.000000E+00"},
      {1, kNone, kNone, "-1.250000E+37", "-1.250000E+37"},
      {2, 2, 4, "5.000000E+00", "1.000000E+01"},
      {3, 2, 4, "1.000000E+01", "2.000000E+01"},
      {4, 2, 4, "1.250000E+00", "8.000000E+01"},
      {4, kNone, kNone, "-6.250000E+36", "-"},
      {5, 2, 4, "2.000000E+00", "4.000000E+00"},
      {255, 2, kNone, "2.000000E+00", "-"},
  };
  for (const auto& c : cases) {
    const Bytes reading = Bytes(32).Put(16, c.channel).Put(20, c.volts).Put(24, c.amperes);
    const std::string document = Converted(ScaledHead(3, 3).PutBytes(3072, reading));
    EXPECT_EQ(c.u, ValuesOf(document, "U"));
    EXPECT_EQ(c.i, ValuesOf(document, "I"));
  }
}

// Samples of one step on each channel and, of the neutral's current, in which range is asked.
TEST(Scales, OfSnapshotsLiveResultsAndSeries) {
  const struct {
    uint32_t type;
    size_t samples, step, current;  // of a voltage, to the next channel's, to the current's
    const char* values;
  } cases[] = {
      {2, 3072 + 3748 + 80, 9600, 4096, "1.25 1.25 2.5 2.5 5 5 0.625 10"},
      {6, 3072 + 8 + 80, 9600, 4096, "1.25 1.25 2.5 2.5 5 5 0.625 20 1.25 1.25 2.5 2.5 5 5"},
      {17, 3072 + 32, 3000, 4 * 3000, "1.25 2.5 5 0.625 1.25 2.5 5 20"},
  };
  for (const auto& c : cases) {
    Bytes file = ScaledHead(c.type, 3).PadTo(3072 + 32 + 8 * 3000);
    file.PutSettings(3072, c.type == 2 ? "20#1" : c.type == 6 ? "0#1" : "24#1");
    for (size_t i = 0; i < (c.type == 6 ? 7 : 4); ++i) {
      file.Put<int16_t>(c.samples + i * c.step, 1)
          .Put<int16_t>(c.samples + i * c.step + c.current, 1);
    }
    std::istringstream samples(ValuesOf(Converted(file.PadTo(3072 + 79516 * (c.type == 6))), "v"));
    std::string values;
    for (double value; samples >> value;) {  // harmonics are zeros
      char text[16];
      std::snprintf(text, sizeof text, "%g ", value);
      if (value != 0) values += text;
    }
    EXPECT_EQ(c.values + std::string(" "), values) << c.type;
  }
}

// What samples of 1, 4, 5 and 8 on u1, un, i1 and in come to.
TEST(Scales, OfCaptures) {
  constexpr double kRoot = 1.7320508;
  const struct {
    uint8_t kind;
    int32_t prim;
    uint8_t type1, type_n, trafo, feeders;
    double expected[4];
  } cases[] = {
      {0, 1, 0, 0, 0, 0, {1, 4, 5, 16}},
      {1, 1, 0, 0, 0, 0, {kRoot, 4 * kRoot, 5, 16}},
      {2, 3, 0, 0, 0, 0, {kRoot, 4 * kRoot, 5, 16}},
      {3, -2, 0, 0, 0, 0, {-2, -8, 5, 16}},
      {0, 1, 0, 0, 1, 0, {1, 4, 20, 64}},
      {0, 1, 0, 0, 1, 1, {1, 4, 60, 192}},
      {0, 1, 2, 0, 1, 1, {1, 4, 20, 192}},
      {0, 1, 0, 2, 0, 1, {1, 4, 15, 16}},
      {0, 1, 0, 5, 0, 0, {1, 4, 5, 8}},
      {0, 1, 2, 5, 0, 1, {1, 4, 5, 8}},
      {0, 1, 5, 5, 0, 1, {1, 4, 15, 48}},
  };
  for (const auto& c : cases) {
    Bytes file = HeadOf(5).Put<uint8_t>(21, 1).Put<int32_t>(1448, 1).Put<int32_t>(2576, 1);
    file.Put<uint8_t>(20, c.kind).Put<int32_t>(16, c.prim).Put(136, 1000.0f);
    file.Put<uint8_t>(129, c.type1).Put<uint8_t>(561, c.type_n).Put(568, 2000.0f);
    for (const size_t clamp : {136, 568}) {
      file.Put<uint8_t>(clamp + 8, c.feeders).Put<int32_t>(clamp + 12, 3);
      file.Put<uint8_t>(clamp + 16, c.trafo);
      file.Put<int32_t>(clamp + 20, 8).Put<int32_t>(clamp + 24, 2);
    }
    file.Put(3072, 1.0f).Put(3072 + 12, 4.0f).Put(3072 + 16, 5.0f).Put(3072 + 28, 8.0f);
    std::string expected;
    for (const double value : c.expected) {
      char text[32];
      std::snprintf(text, sizeof text, "%s%E", expected.empty() ? "" : " ", value);
      expected += text;
    }
    EXPECT_EQ(expected, ValuesOf(Converted(file), "v")) << &c - cases;
  }
}

}  // namespace
}  // namespace quorvex::test
