// Energy meter tests: what each wiring writes, and records that are cut short.
#include <gtest/gtest.h>

#include <sstream>

#include "elements.h"
#include "support.h"

namespace quorvex::test {
namespace {

// Every float holds its own offset.
Bytes MeterRecord() {
  Bytes record;
  record.PutTime(0, 2024, 3, 7, 14, 5, 3.5).PutTime(16, 2024, 3, 7, 14, 5, 4.5);
  record.Put<uint32_t>(32, 0xFFFFFFFE).Put(40, double{kNone}).Put(48, -1e37).Put(56, 2.5);
  for (uint32_t at = 64; at < 144; at += 4) record.Put(at, static_cast<float>(at));
  return record;
}

std::string MeterText(const std::string& elements) {
  std::string text = Time("START_TIME", "3.5") + Time("END_TIME", "4.5") +
                     Value("PACKETS_NUM", -2) + Value("E_METER_ENERGY", "-") +
                     Value("MEAS_Ep", "-1.000000E+37") + Value("MEAS_Eq", "2.500000E+00");
  std::istringstream names(elements);
  std::string name;
  for (int at; names >> name >> at;) text += Value(name, FloatE(at));
  return Element("EMETER_RESULT", text);
}

TEST(EnergyMeter, ElementsFollowTheWiring) {
  const std::string one = "U1 64 Un 76 I1 80 In 92 P1p 96 P1m 112 PFp 128 PFm 132 error 136";
  const std::string lines =
      "U12 64 U23 68 U31 72 I1 80 I2 84 I3 88 P1p 96 P1m 112 P2p 100 P2m 116 P3p 104 P3m 120 "
      "PTp 108 PTm 124 PFp 128 PFm 132 error 136";
  const struct {
    uint8_t connection;
    std::string elements;
  } cases[] = {
      {0, "error 136"},
      {1, one},
      {2, lines},
      {3,
       "U1 64 U2 68 U3 72 Un 76 I1 80 I2 84 I3 88 In 92 P1p 96 P1m 112 P2p 100 P2m 116 P3p 104 "
       "P3m 120 PTp 108 PTm 124 PFp 128 PFm 132 error 136"},
      {4, lines},
      {5,
       "U1 64 U2 68 Un 76 I1 80 I2 84 In 92 P1p 96 P1m 112 P2p 100 P2m 116 PTp 108 PTm 124 "
       "PFp 128 PFm 132 error 136"},
      {6, one},
      {7,
       "U12 64 U23 68 U31 72 Un 76 I1 80 I2 84 I3 88 In 92 PTp 108 PTm 124 PFp 128 PFm 132 "
       "error 136"},
      {8, "error 136"},
      {255, "error 136"},
  };
  for (const auto& c : cases) {
    for (const bool reduced_lists : {false, true}) {
      Bytes file = HeadOf(18).Put(8 + 13, c.connection).Put(8 + 2560, reduced_lists);
      file.PutBytes(3072, MeterRecord());
      EXPECT_EQ(Element("RECORDS", MeterText(c.elements)), BodyOf(Converted(file)))
          << int{c.connection};
    }
  }
}

TEST(EnergyMeter, PartialLastRecordKeepsThePreviousBytes) {
  Bytes file = HeadOf(18).PutBytes(3072, MeterRecord()).Put<uint8_t>(3072 + 144, 0xE7);
  std::string second = MeterText("error 136");
  second.replace(second.find("2024"), 4, "2023");
  EXPECT_EQ(Element("RECORDS", MeterText("error 136") + second), BodyOf(Converted(file)));
  file.resize(3072 + 144);
  ExpectTruncationIsHarmless(file);
}

}  // namespace
}  // namespace quorvex::test
