// Voltage events and alarms: whole documents, counts of alarm settings, and progress.
#include <gtest/gtest.h>

#include <algorithm>

#include "elements.h"
#include "support.h"

namespace quorvex::test {
namespace {

constexpr size_t kEvents = 3224;
constexpr size_t kAlarms = 3364;

// Bytes of nobody's in front of the settings, which tell a wiring of their own.
Bytes LongHeadOf(uint32_t type) {
  Bytes head = HeadOf(type).PadTo(3192);
  std::fill(head.begin() + 8, head.begin() + 128, uint8_t{0xEE});
  return head.Put<uint8_t>(128 + 13, 5);
}

// Every word of a record holds its own offset, until something else is put there.
Bytes OffsetsAsWords(uint32_t size) {
  Bytes record;
  for (uint32_t at = 0; at < size; at += 4) record.Put(at, at);
  return record.PutTime(size - 16, 2024, 3, 7, 14, 5, 9.25);
}

TEST(VoltageEvents, WholeDocument) {
  Bytes file = LongHeadOf(8).Put<uint8_t>(3192, 3).Put(3196, 230.0f).Put(3200, 207.0f);
  file.Put(3204, kNone).Put(3208, 11.5f).PadTo(kEvents);
  const std::string information =
      "INFORMATION{ CONNECTION=3 NOMINAL_VOLTAGE=2.300000E+02 DIP_TRESHOLD=2.070000E+02 "
      "SWELL_TRESHOLD=- INTTERUPT_TRESHOLD=1.150000E+01 } TRANSITIONS{ ";
  EXPECT_EQ(Xml(information + "}"), BodyOf(Converted(file)));

  Bytes record = OffsetsAsWords(264).Put<int32_t>(0, -1).Put(4, 201.5f).Put(220, 150.0f);
  record.Put(224, kNone).Put(228, 250.25f).Put(232, 4.5f);
  file.PutBytes(kEvents, record).PutBytes(kEvents + 264, record);
  file.PadTo(kEvents + 3 * 264 - 1);  // the third is cut off
  // The word at 164, the count of polyphase events ended, has no element.
  const std::string transition = R"(TRANSITION{ PHASE_NUMBER=-1 RMS_12_AT_TRANSITION=2.015000E+02
    STATISTIC{ TOTAL_TRANSITION_COUNT=8
    TOTAL_PHASE_START_COUNT=12 TOTAL_PHASE_START_COUNTS{ N=16 N=20 N=24 }
    TOTAL_PHASE_DIP_START_COUNT=28 TOTAL_PHASE_SWELL_START_COUNT=32
    TOTAL_PHASE_INTERRUPT_START_COUNT=36 PHASE_DIP_START_COUNTS{ N=40 N=44 N=48 }
    PHASE_SWELL_START_COUNTS{ N=52 N=56 N=60 } PHASE_INTERRUPT_START_COUNTS{ N=64 N=68 N=72 }
    TOTAL_PHASE_END_COUNT=76 TOTAL_PHASE_END_COUNTS{ N=80 N=84 N=88 }
    TOTAL_PHASE_DIP_END_COUNT=92 TOTAL_PHASE_SWELL_END_COUNT=96
    TOTAL_PHASE_INTERRUPT_END_COUNT=100 PHASE_DIP_END_COUNTS{ N=104 N=108 N=112 }
    PHASE_SWELL_END_COUNTS{ N=116 N=120 N=124 } PHASE_INTERRUPT_END_COUNTS{ N=128 N=132 N=136 }
    TOTAL_UNITED_POLY_PHASE_START_COUNT=140 TOTAL_POLY_PHASE_START_COUNT=144
    TOTAL_POLY_PHASE_DIP_START_COUNT=148 TOTAL_POLY_PHASE_SWELL_START_COUNT=152
    TOTAL_POLY_PHASE_INTERRUPT_START_COUNT=156 TOTAL_UNITED_POLY_PHASE_END_COUNT=160
    TOTAL_POLY_PHASE_DIP_END_COUNT=168 TOTAL_POLY_PHASE_SWELL_END_COUNT=172
    TOTAL_POLY_PHASE_INTERRUPT_END_COUNT=176 }
    TRANSITION_FROM_EVENT_TYPE_ID=180 TRANSITION_TO_EVENT_TYPE_ID=184
    IS_TRANSITION_TO_GLOBAL_DIP=188 IS_TRANSITION_TO_GLOBAL_SWELL=192
    IS_TRANSITION_TO_GLOBAL_INTERRUPT=196 IS_TRANSITION_TO_GLOBAL_UNITED_EVENT=200
    IS_TRANSITION_FROM_GLOBAL_DIP=204 IS_TRANSITION_FROM_GLOBAL_SWELL=208
    IS_TRANSITION_FROM_GLOBAL_INTERRUPT=212 IS_TRANSITION_FROM_GLOBAL_UNITED_EVENT=216
    DATA{ DIP{ MIN_VALUE=1.500000E+02 DEPTH=- } SWELL{ MAX_VALUE=2.502500E+02 }
    INTERRUPT{ MIN_VALUE=4.500000E+00 } } TIME_STAMP@9.25 } )";
  const std::string document = Converted(file);
  EXPECT_EQ(Xml(information + transition + transition + "}"), BodyOf(document));
  EXPECT_NE(std::string::npos, document.find("<UIF_PARAMS>\r\n<CONNECTION>5<"));
  file.resize(kEvents + 264);
  ExpectTruncationIsHarmless(file);
}

TEST(Alarms, WholeDocument) {
  Bytes file = LongHeadOf(7).PutBytes(3192, OffsetsAsWords(172)).Put<int32_t>(3192, 1);
  file.Put(3192 + 20, 0.5f).Put(3192 + 24, 3.0f).PadTo(kAlarms);
  file.PutBytes(kAlarms, OffsetsAsWords(864).Put(812, 253.0f).Put(816, 0.25f).Put(840, kNone));
  file.PadTo(kAlarms + 2 * 864 - 1);
  std::string form = R"(INFORMATION{ NUM=1 SETTINGS{ QUANTITY{ ID=4 PARAMETER=8 PHASE_ID=12 }
    CONDITION_ID=16 QUANTITY_VALUE=5.000000E-01 TRIGGER_DURATION=3.000000E+00 } }
    TRANSITIONS{ TRANSITION{ STATISTIC{ TRANSITION_SERIAL_NUMBER=0 )";
  int at = 4;
  for (const std::string end : {"_START", "_END"}) {
    for (const std::string group :
         {"UIF", "COMBINED_POWER", "FUNDAMENTAL_POWER", "NONFUNDAMENTAL_POWER", "FLICKER", "SYM",
          "HARMONICS", "INTERHARMONICS", "SIGNALING", "TEMPERATURE", "ALL"}) {
      form += "GROUP_" + group + end + "_SERIAL_NUMBERS{ ";
      for (int n = 0; n < 9; ++n, at += 4) form += "N=" + std::to_string(at) + " ";
      form += "} ";
    }
  }
  form += R"(} SETTING{ QUANTITY{ ID=796 PARAMETER=800 PHASE_ID=804 } CONDITION_ID=808
    QUANTITY_VALUE=2.530000E+02 TRIGGER_DURATION=2.500000E-01 } STATE_ID=820 ALARM_GROUP_ID=824
    QUANTITY{ ID=828 PARAMETER=832 PHASE_ID=836 } QUANTITY_VALUE=- TIME_STAMP@9.25 } })";
  EXPECT_EQ(Xml(form), BodyOf(Converted(file)));
  file.resize(kAlarms + 864);
  ExpectTruncationIsHarmless(file);
}

TEST(Alarms, CountsOfSettingsStayInTheirRoom) {
  constexpr std::tuple<int32_t, int32_t, int> kCases[] = {
      {0, 0, 0}, {8, 7, 7}, {INT32_MAX, 7, 7}, {-1, -1, 0}, {INT32_MIN, INT32_MIN, 0}};
  for (const auto& [stored, shown, settings] : kCases) {
    std::string form = "INFORMATION{ NUM=" + std::to_string(shown);
    for (int i = 0; i < settings; ++i) {
      form +=
          " SETTINGS{ QUANTITY{ ID=0 PARAMETER=0 PHASE_ID=0 } CONDITION_ID=0 "
          "QUANTITY_VALUE=0.000000E+00 TRIGGER_DURATION=0.000000E+00 }";
    }
    EXPECT_EQ(Xml(form + " } TRANSITIONS{ }"),
              BodyOf(Converted(LongHeadOf(7).Put(3192, stored).PadTo(kAlarms))));
  }
}

std::vector<float> fractions;
int32_t answer;

TEST(Transitions, ProgressIsThePositionAndStops) {
  const QuorvexProgress progress = [](float fraction) {
    fractions.push_back(fraction);
    return answer;
  };
  for (const auto& [type, first, size] : {std::tuple{8u, kEvents, 264u}, {7u, kAlarms, 864u}}) {
    const Bytes file = LongHeadOf(type).PadTo(first + 2 * size + 100);
    const auto whole = static_cast<float>(file.size());
    const float expected[] = {static_cast<float>(first + size) / whole,
                              static_cast<float>(first + 2 * size) / whole};
    for (const size_t records : {2, 1}) {
      answer = records == 2 ? 0 : -1;
      fractions.clear();
      const std::string body = BodyOf(Converted(file, progress));
      EXPECT_EQ(std::vector<float>(expected, expected + records), fractions);
      EXPECT_EQ(records == 1, body.find("<TRANSITION>") == body.rfind("<TRANSITION>")) << type;
    }
  }
}

}  // namespace
}  // namespace quorvex::test
