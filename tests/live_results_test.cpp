// Live results: whole documents of a wye and, with reduced lists, of inverter connections.
#include <gtest/gtest.h>

#include "record_sketch.h"

namespace quorvex::test {
namespace {

constexpr size_t kSize = 79392 + 64 + 60;

// Two samples a scope and one half-cycle reading.
Sketch LiveResults(const std::string& fourth, bool flicker) {
  const std::string cases[][2] = {{"1.250000E+02", "-1.000000E+01"},
                                  {"2.500000E+02", "-2.000000E+01"},
                                  {"5.000000E+02", "-4.000000E+01"}};
  const auto scopes = [&](int phase) -> Scopes {
    const std::string* text = cases[phase];
    return {{text[0], text[1]}, {text[0], text[1]}};
  };
  const std::string k = "K:9576";
  Sketch s;
  s.Open("UIF_RESULTS");
  AddChannel(&s, "L1", 8, scopes(0), k, flicker);
  AddChannel(&s, "L2", 9608, scopes(1), k, flicker);
  AddChannel(&s, "L3", 19208, scopes(2), "K!9576", flicker);
  AddChannel(&s, fourth, 28808,
             {{"6.250000E+01", "-5.000000E+00"}, {"2.000000E+03", "-1.600000E+02"}}, k, flicker);
  AddChannel(&s, "L12", 38408, scopes(0), k, flicker);
  AddChannel(&s, "L23", 48008, scopes(1), k, flicker);
  AddChannel(&s, "L31", 57608, scopes(2), k, flicker);
  AddTotals(&s, 67208);
  s.AddGroup("SYM", 67832, kSymmetry).record.Put<int32_t>(67900, 1);
  s.Open("RMS12").AddGroup("Vrms12", 67904, "VALUE:0 PHASE_NUMBER#8 TIME_STAMP@16").Close("RMS12");
  s.Add(0, "TIME_START@78528 TIME_STEP:78548").Value("numUsedSamples", "2");
  s.record.Put<int32_t>(0, 2);
  s.Add(0, "TEMP!67896 FLAG#78584");
  s.AddGroup("CONNECTION_CHECK", 79456,
             "Ua#0 Ub#4 Uc#8 Ia#12 Ib#16 Ic#20 PhA#28 Phb#32 PhC#36 Useq#24 freq#40 "
             "results#44 Uinv#48 Iinv#52 Pinv#56");
  return s;
}

TEST(LiveResults, WholeDocumentsOfAWyeAndOfInverters) {
  for (const uint8_t connection : {uint8_t{3}, uint8_t{6}, uint8_t{7}}) {
    const bool inverter = connection != 3;
    Sketch s = LiveResults(inverter ? "INV" : "N", !inverter);
    if (inverter) {
      s.AddGroup("INVERTER", 28808,
                 "Urms:4 Udc:9584 Uac:9580 Irms:36 Idc:9592 Iac:9588 P:8400 Pdc:8408 Sac:8404 "
                 "eff!8412 rf:9596");
    }
    Bytes file = ScaledHead(6, connection);
    file.Put<uint8_t>(2568, inverter ? 2 : 0).PutBytes(3072, s.Close("UIF_RESULTS").record);
    EXPECT_EQ(Lines(s.text), BodyOf(Converted(file))) << int{connection};
    EXPECT_EQ(3072 + kSize, file.size());
  }
}

TEST(LiveResults, CountsBeyondTheirArraysAndFilesCutShort) {
  Bytes file = ScaledHead(6, 1);
  file.Put<int32_t>(3072, 1 << 30).Put<int32_t>(3072 + 67900, 1 << 30).PadTo(3072 + kSize);
  const std::string body = BodyOf(Converted(file));
  size_t samples = 0, readings = 0;
  for (size_t at = 0; (at = body.find("<v>", at)) != std::string::npos; ++at) ++samples;
  for (size_t at = 0; (at = body.find("<Vrms12>", at)) != std::string::npos; ++at) ++readings;
  EXPECT_EQ(7u * (2 * 2048 + 4 * 51), samples);
  EXPECT_EQ(330u, readings);
  EXPECT_NE(std::string::npos, body.find("<numUsedSamples>1073741824<"));
  Bytes sound = ScaledHead(6, 7);
  ExpectTruncationIsHarmless(sound.PadTo(3072 + kSize));
}

}  // namespace
}  // namespace quorvex::test
