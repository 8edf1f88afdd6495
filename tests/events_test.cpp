// Voltage events, alarms, rapid voltage changes, sessions and energy meter tests: whole documents.
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "outline.h"

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

TEST(VoltageEvents, WholeDocument) {
  const Bytes information = Filled(32), record = Filled(264);
  Bytes file = LongHeadOf(8).PutBytes(3192, information);
  file.PutBytes(kEvents, record).PutBytes(kEvents + 264, record);
  file.PadTo(kEvents + 3 * 264 - 1);  // the third is cut off
  // The word at 164, the count of polyphase events ended, has no element.
  const std::string transition = Expected(record, R"(TRANSITION{ PHASE_NUMBER#0
    RMS_12_AT_TRANSITION:4 STATISTIC{ TOTAL_TRANSITION_COUNT#8
    TOTAL_PHASE_START_COUNT#12 TOTAL_PHASE_START_COUNTS{ N#16*3 }
    TOTAL_PHASE_DIP_START_COUNT#28 TOTAL_PHASE_SWELL_START_COUNT#32
    TOTAL_PHASE_INTERRUPT_START_COUNT#36 PHASE_DIP_START_COUNTS{ N#40*3 }
    PHASE_SWELL_START_COUNTS{ N#52*3 } PHASE_INTERRUPT_START_COUNTS{ N#64*3 }
    TOTAL_PHASE_END_COUNT#76 TOTAL_PHASE_END_COUNTS{ N#80*3 }
    TOTAL_PHASE_DIP_END_COUNT#92 TOTAL_PHASE_SWELL_END_COUNT#96
    TOTAL_PHASE_INTERRUPT_END_COUNT#100 PHASE_DIP_END_COUNTS{ N#104*3 }
    PHASE_SWELL_END_COUNTS{ N#116*3 } PHASE_INTERRUPT_END_COUNTS{ N#128*3 }
    TOTAL_UNITED_POLY_PHASE_START_COUNT#140 TOTAL_POLY_PHASE_START_COUNT#144
    TOTAL_POLY_PHASE_DIP_START_COUNT#148 TOTAL_POLY_PHASE_SWELL_START_COUNT#152
    TOTAL_POLY_PHASE_INTERRUPT_START_COUNT#156 TOTAL_UNITED_POLY_PHASE_END_COUNT#160
    TOTAL_POLY_PHASE_DIP_END_COUNT#168 TOTAL_POLY_PHASE_SWELL_END_COUNT#172
    TOTAL_POLY_PHASE_INTERRUPT_END_COUNT#176 }
    TRANSITION_FROM_EVENT_TYPE_ID#180 TRANSITION_TO_EVENT_TYPE_ID#184
    IS_TRANSITION_TO_GLOBAL_DIP#188 IS_TRANSITION_TO_GLOBAL_SWELL#192
    IS_TRANSITION_TO_GLOBAL_INTERRUPT#196 IS_TRANSITION_TO_GLOBAL_UNITED_EVENT#200
    IS_TRANSITION_FROM_GLOBAL_DIP#204 IS_TRANSITION_FROM_GLOBAL_SWELL#208
    IS_TRANSITION_FROM_GLOBAL_INTERRUPT#212 IS_TRANSITION_FROM_GLOBAL_UNITED_EVENT#216
    DATA{ DIP{ MIN_VALUE:220 DEPTH:224 } SWELL{ MAX_VALUE:228 } INTERRUPT{ MIN_VALUE:232 } }
    TIME_STAMP!248 } )");
  const std::string document = Converted(file);
  ExpectSame(Expected(information,
                      "INFORMATION{ CONNECTION.0 NOMINAL_VOLTAGE:4 DIP_TRESHOLD:8 "
                      "SWELL_TRESHOLD:12 INTTERUPT_TRESHOLD:16 }") +
                 InElement("TRANSITIONS", transition + transition),
             BodyOf(document));
  EXPECT_EQ(1u, CountOf(document, "<UIF_PARAMS>\r\n<CONNECTION>5<"));
  file.resize(kEvents + 264);
  ExpectTruncationIsHarmless(file);
}

constexpr char kAlarmSetting[] =
    "QUANTITY{ ID#0 PARAMETER#4 PHASE_ID#8 } CONDITION_ID#12 QUANTITY_VALUE:16 "
    "TRIGGER_DURATION:20 } ";

TEST(Alarms, WholeDocumentsWithCountsOfSettings) {
  const Bytes record = Filled(864);
  std::string transition = "TRANSITION{ STATISTIC{ TRANSITION_SERIAL_NUMBER#0 ";
  int at = 4;
  for (const std::string end : {"_START", "_END"}) {
    for (const std::string group :
         {"UIF", "COMBINED_POWER", "FUNDAMENTAL_POWER", "NONFUNDAMENTAL_POWER", "FLICKER", "SYM",
          "HARMONICS", "INTERHARMONICS", "SIGNALING", "TEMPERATURE", "ALL"}) {
      transition += "GROUP_" + group + end + "_SERIAL_NUMBERS{ N#" + std::to_string(at) + "*9 } ";
      at += 36;
    }
  }
  transition += "} SETTING{ +796 ";
  transition += kAlarmSetting;
  transition +=
      "STATE_ID#820 ALARM_GROUP_ID#824 QUANTITY{ ID#828 PARAMETER#832 PHASE_ID#836 } "
      "QUANTITY_VALUE:840 TIME_STAMP!848 }";
  constexpr std::tuple<int32_t, int32_t, int> kCases[] = {
      {1, 1, 1}, {0, 0, 0}, {8, 7, 7}, {INT32_MAX, 7, 7}, {-1, -1, 0}, {INT32_MIN, INT32_MIN, 0}};
  for (const auto& [stored, shown, settings] : kCases) {
    const Bytes information = Filled(172).Put(0, stored);
    std::string outline = "INFORMATION{ NUM=" + std::to_string(shown) + " ";
    for (int i = 0; i < settings; ++i) {
      outline += "SETTINGS{ +" + std::to_string(4 + 24 * i) + " " + kAlarmSetting;
    }
    Bytes file = LongHeadOf(7).PutBytes(3192, information).PutBytes(kAlarms, record);
    ExpectSame(Expected(information, outline + "}") +
                   InElement("TRANSITIONS", Expected(record, transition)),
               BodyOf(Converted(file.PadTo(kAlarms + 2 * 864 - 1))));
  }
  ExpectTruncationIsHarmless(LongHeadOf(7).PadTo(kAlarms + 864));
}

TEST(RapidVoltageChanges, WholeDocumentAndAPartialRecord) {
  const Bytes two = Filled(2 * 4088);
  Bytes file = HeadOf(10).PutBytes(3072, two).Put<int32_t>(3072 + 2 * 4088, 3);
  // Four bytes of a third: its phase. The rest is left from the second.
  const Bytes first(two.begin(), two.begin() + 4088), second(two.begin() + 4088, two.end());
  const Bytes third = Bytes(second).Put<int32_t>(0, 3);
  std::string outline =
      "RVC_RECORD{ PHASE#0 SS1:4 SS2:8 DU_MAX:16 DU_SS:20 RVC_START_TIME!24 RVC_STOP_TIME!40 "
      "DURATION:4076 RMS12_VALUES{ ";
  for (int i = 0; i < 200; ++i) {
    outline += "RMS12{ U:" + std::to_string(56 + 4 * i) + " TIME_STAMP!" +
               std::to_string(856 + 16 * i) + " } ";
  }
  outline += "} }";
  ExpectSame(
      InRecords(Expected(first, outline) + Expected(second, outline) + Expected(third, outline)),
      BodyOf(Converted(file)));
  file.resize(3072 + 4088);
  ExpectTruncationIsHarmless(file);
}

// Three sessions: of one element, of none, and of two that are announced as three.
TEST(Sessions, WholeDocument) {
  const Bytes log =
      Filled(168).Put<int32_t>(36, 1).Put<int32_t>(56 + 36, INT32_MIN).Put<int32_t>(96 + 36, 3);
  Bytes file;
  file.Put<uint32_t>(0, 7).Put<uint32_t>(4, 15).PutBytes(8, log);
  const std::string header =
      "SESSION_HEADER{ startTime!0 endTime!16 sessionId#32 elementsNum#36 } ";
  const std::string element = " elementType#0 fromScreen#4 toScreen#8 num#12 } ";
  ExpectSame(
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n"
      "<Project xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
      "xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\">\r\n" +
          Expected(log, "FILE_HEADER{ FILE_VERSION=7 FILE_TYPE=15 } SESSION{ " + header +
                            "ELEMENT{ +40" + element + "} SESSION{ +56 " + header +
                            "} SESSION{ +96 " + header + "ELEMENT{ +40" + element + "ELEMENT{ +56" +
                            element + "}") +
          "</Project>\r\n",
      Converted(file));
  ExpectTruncationIsHarmless(file);
}

TEST(EnergyMeter, ElementsFollowTheWiring) {
  const Bytes record = Filled(144).Put(40, double{kNone}).Put(48, -1e37);
  const std::string powers = "P1p:96 P1m:112 P2p:100 P2m:116 ", third = "P3p:104 P3m:120 ";
  const std::string total = "PTp:108 PTm:124 ", factors = "PFp:128 PFm:132 ";
  const std::string lines = "U12:64 U23:68 U31:72 ", currents = "I1:80 I2:84 I3:88 ";
  const std::string one = "U1:64 Un:76 I1:80 In:92 P1p:96 P1m:112 " + factors;
  const std::string delta = lines + currents + powers + third + total + factors;
  const std::string elements[] = {
      "",    one,
      delta, "U1:64 U2:68 U3:72 Un:76 " + currents + "In:92 " + powers + third + total + factors,
      delta, "U1:64 U2:68 Un:76 I1:80 I2:84 In:92 " + powers + total + factors,
      one,   lines + "Un:76 " + currents + "In:92 " + total + factors,
      "",
  };
  for (uint8_t connection = 0; connection < std::size(elements); ++connection) {
    Bytes file = HeadOf(18).Put(8 + 13, connection).PutBytes(3072, record);
    ExpectSame(InRecords(Expected(record,
                                  "EMETER_RESULT{ START_TIME!0 END_TIME!16 PACKETS_NUM#32 "
                                  "E_METER_ENERGY=- MEAS_Ep=-1.000000E+37 MEAS_Eq%56 " +
                                      elements[connection] + "error:136 }")),
               BodyOf(Converted(file)));
  }
  ExpectTruncationIsHarmless(HeadOf(18).PutBytes(3072, record));
}

}  // namespace
}  // namespace quorvex::test
