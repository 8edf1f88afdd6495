// Energy meter tests: what each wiring writes.
#include <gtest/gtest.h>

#include "elements.h"
#include "support.h"

namespace quorvex::test {
namespace {

TEST(EnergyMeter, ElementsFollowTheWiring) {
  // Every float holds a number of its own, counted from 64.
  Bytes record;
  record.PutTime(0, 2024, 3, 7, 14, 5, 3.5).PutTime(16, 2024, 3, 7, 14, 5, 4.5);
  record.Put<uint32_t>(32, 0xFFFFFFFE).Put(40, double{kNone}).Put(48, -1e37).Put(56, 2.5);
  for (uint32_t at = 64; at < 144; at += 4) record.Put(at, static_cast<float>(at));
  const std::string one = "U1 64 Un 76 I1 80 In 92 P1p 96 P1m 112 PFp 128 PFm 132 ";
  const std::string lines =
      "U12 64 U23 68 U31 72 I1 80 I2 84 I3 88 P1p 96 P1m 112 P2p 100 P2m 116 P3p 104 P3m 120 "
      "PTp 108 PTm 124 PFp 128 PFm 132 ";
  const std::string three =
      "U1 64 U2 68 U3 72 Un 76 I1 80 I2 84 I3 88 In 92 P1p 96 P1m 112 P2p 100 P2m 116 P3p 104 "
      "P3m 120 PTp 108 PTm 124 PFp 128 PFm 132 ";
  const std::string two =
      "U1 64 U2 68 Un 76 I1 80 I2 84 In 92 P1p 96 P1m 112 P2p 100 P2m 116 PTp 108 PTm 124 "
      "PFp 128 PFm 132 ";
  const std::string totals =
      "U12 64 U23 68 U31 72 Un 76 I1 80 I2 84 I3 88 In 92 PTp 108 PTm 124 PFp 128 PFm 132 ";
  const std::pair<uint8_t, std::string> cases[] = {{0, ""},    {1, one}, {2, lines}, {3, three},
                                                   {4, lines}, {5, two}, {6, one},   {7, totals},
                                                   {8, ""},    {255, ""}};
  for (const auto& [connection, elements] : cases) {
    std::istringstream words(elements + "error 136");
    std::string form = R"(RECORDS{ EMETER_RESULT{ START_TIME@3.5 END_TIME@4.5 PACKETS_NUM=-2
      E_METER_ENERGY=- MEAS_Ep=-1.000000E+37 MEAS_Eq=2.500000E+00)";
    std::string name;
    for (int at; words >> name >> at;) form += " " + name + "=" + FloatE(at);
    for (const bool reduced_lists : {false, true}) {
      Bytes file = HeadOf(18).Put(8 + 13, connection).Put(8 + 2560, reduced_lists);
      EXPECT_EQ(Xml(form + " } }"), BodyOf(Converted(file.PutBytes(3072, record))))
          << int{connection};
    }
  }
  ExpectTruncationIsHarmless(HeadOf(18).PutBytes(3072, record));
}

}  // namespace
}  // namespace quorvex::test
