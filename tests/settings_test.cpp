// The settings block, the settings check and the companion setting file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sstream>

#include "outline.h"
#include "settings/instrument_state.h"
#include "settings/setting_file.h"
#include "settings/settings_table.h"
#include "settings/validation.h"
#include "support/file.h"
#include "support/memory.h"
#include "xml/plan.h"

namespace quorvex::test {
namespace {

const std::string kAlarm =
    "QUANTITY{ ID#0 PARAMETER#4 PHASE_ID#8 } CONDITION_ID#12 QUANTITY_VALUE:16 "
    "TRIGGER_DURATION:20 } ";

// The last has a name without an end.
std::string Clamps() {
  std::string clamps;
  int at = 20;
  for (const std::string clamp : {"PH1", "PH2", "PH3", "N"}) {
    clamps += "CLAMP_" + clamp + "{ +" + std::to_string(at) +
              " TYPE_IND.0 NAME=" + (clamp == "N" ? std::string(100, 'n') : "<clamp>") +
              " TYPE.101 RANGE:104 A_NA_V:108 CURRENT_RANGE=-7.000000E+00 PARALLEL_FEEDERS.116 "
              "WIRES_NUM#120 TRAFO.124 TRAFO_PRIM_I#128 TRAFO_SEC_I#132 AUTORANGE#136 "
              "DIRECTION#140 } ";
    at += 144;
  }
  return clamps;
}

std::string Calibration(const std::string& prefix, int at) {
  std::istringstream names(
      "U1_150V U1_300V U1_1000V U2_150V U2_300V U2_1000V U3_150V U3_300V U3_1000V Ue_150V Ue_300V "
      "Ue_1000V Un_150V Un_300V Un_1000V Us_150V Us_300V Us_1000V I1_10P I1_100P I2_10P I2_100P "
      "I3_10P I3_100P In_10P In_100P Is_10P Is_100P");
  std::string outline;
  for (std::string name; names >> name; at += 4) {
    outline += prefix + name + ":" + std::to_string(at) + " ";
  }
  return outline;
}

std::string WholeBlock() {
  return R"(UIF_PARAMS{ CONNECTION.13 SYNCHRONIZATION.14 SYSTEM_FREQUENCY#16 NOMINAL_VOLTAGE:596
VOLTAGE_RATIO_PRIM#8 VOLTAGE_RATIO_SEC#2568 PV_PROBE_RATIO=2 TRIKOT_STAR_FACTOR_ID.12
UN_RANGE.600 SWELL:604 SWELL_HYSTERESIS#616 DIP:608 DIP_HYSTERESIS#620 INTERRUPT:612
INTERRUPT_HYSTERESIS#624 RVC_THRESHOLD:2436 RVC_HYST:2440 CAPTURE_EVENTS.628
CAPTURE_ALARMS.629 )" +
         Clamps() + R"(ALARMS{ NUM#632 SETTINGS{ +636 )" + kAlarm + "SETTINGS{ +660 " + kAlarm +
         R"(}
RANGE_I#804 RANGE_IN#808 RANGE_IS#812 RANGE_US#816
SIGNALING{ SIGNAL1{ f:820 limit:824 } SIGNAL2{ f:828 limit:832 } } CLOCK_TYPE.836
RECORD_PARAMS{ TYPE.842 INTERVAL#844 DURATION#852 INC_ACTIVE_EVENTS#856
INC_ACTIVE_ALARMS#860 INC_ACTIVE_SIGNALLING.864 INC_ACTIVE_TRANSIENTS.1000
INC_ACTIVE_INRUSH.1001 INC_ACTIVE_RVC#1224 INC_ACTIVE_INTERVAL.1229
SIGNALLING_DURATION#956 SIGNALLING_THRESHOLD:952 MANUAL_START.920 STOP_CAUSE.921
START_TIME!872 TIME_FIRST_PACKET!888 TIME_LAST_PACKET!904 PROFILE#976
HARM_CONTENT=72 HARM_COMPONENTS=67108862 START_PRESSED_TIME!984 EVENTS_WF_DURATION#1232
EVENTS_WF_PRETRIGGER#1236
INRUSH_PARAMS{ LEVEL:1012 SLOPE#1016 DURATION#1020 PRETRIGGER#1024 STORE_MODE#1088
STORE_NUM#1084 TRIG_CHANNEL#1080 START_TIME!1032 TRIG_TIME!1048 END_TIME!1064
MAX_I:1096 } RECORD_START_TYPE#980 START_CAUSE.1228 }
WAVE_RECORD_PARAMS{ TRIGGER#1244 REAL_TRIGGER#1248 LEVEL:1252 SLOPE#1256 DURATION#1260
PRETRIGGER#1264 STORE_MODE#1268 TRIG_CHANNEL#1328 START_TIME!1280 TRIG_TIME!1296
INTERVAL#1332 END_TIME!1312 }
TRANSIENTS_RECORD_PARAMS{ TRIGGER#1364 REAL_TRIGGER#1368 TRIGGER_TYPE#1392
SELECT_N_GND#1400 LEVEL:1372 DURATION#1376 PRETRIGGER#1380 LEVEL_U:1404 ENV_U:1420
LEVEL_UN:1408 LEVEL_I:1412 ENV_I:1428 LEVEL_IN:1416 ENV_IN:1432 STORE_MODE#1384
TRIG_CHANNEL#1388 START_TIME!1472 TRIG_TIME!1456 END_TIME!1488 NUM#1440 STEP:1436
MAX_VAL:1444 ALL_TRANSIENTS#1448 MAX_NUM#1504 }
EMETER_PARAMS{ START_PRESSED_TIME!2672 MODE#2604 CONSTANT#2608 PULSES_NUM#2612
MEAS_NUM#2616 ACCUMULATED_ENERGY:2620 SELECTED_Q#2688 CT_PRIM#2700 CT_SEC#2704
VT_PRIM#2692 VT_SEC#2696 EMETER_INFO{ MEASUREMENT_PLACE=eighteen.characte?
NOMINAL_DATA=3x230 SERIAL_NUMBER=-2 } }
INSTRUMENT_DATA{ ee_FirmData=a?b\c&d ee_SerialNumber=12345678 ee_CalDate!2128 ee_Dealer,2144
ee_HardwareVersion,2146 ee_FirmwareVersion=3.0 ee_DocumentationVersion,2148
instrument_GS=GS~7300 instrument_name=Grid~Sentry }
INSTRUMENT_CAL{ )" +
         Calibration("ee_konst_", 2208) + Calibration("ee_ofs_", 2320) +
         R"(ee_konst_Vbat:2432 }
rand_mark#2444 cname=FEEDER1 meas_method#2456 memory_struct#2564
gps_position=N~45.1235,~E~-0.5000 })";
}

std::string BlockOf(const UifParams& settings, bool harmonics = false) {
  XmlWriter* writer = CreateWriter(nullptr);
  RenderOnce(writer, kSettingsBlock, kAllCases, &settings, {.number = {harmonics ? 1 : 0}});
  EXPECT_EQ(0, writer->depth);
  const std::string text(writer->buffer, writer->position);
  CloseWriter(writer);
  return text;
}

TEST(SettingsBlock, EveryFieldInWrittenOrder) {
  Bytes s = Filled(kSettingsSize);
  for (size_t clamp = 20; clamp <= 452; clamp += 144) {
    s.PutText(clamp + 1, std::string("<clamp>") + '\0').Put<int32_t>(clamp + 112, -7);
  }
  s.PutText(452 + 1, std::string(100, 'n'));
  s.Put<int32_t>(632, 2).Put(2732, 2.9f).Put<int64_t>(2664, -2).Put<uint32_t>(2168, 1);
  s.PutText(2624, "eighteen.characte>x").PutText(2642, std::string("3x230") + '\0');
  s.PutText(2016, std::string("a<b\nc&d") + '\0').PutText(2116, "12345678");
  s.PutText(2150, std::string("3.0") + '\0').PutText(2449, "FEEDER1");
  s.Put(2576, -0.5).Put(2584, 45.12346).PutText(2592, "EN").Put<uint32_t>(2596, 0);
  ExpectSame(Expected(s, WholeBlock()), BlockOf(Load<UifParams>(s.data())));
}

// Elements that depend on several settings, by the recording's interval (844) and profile (976),
// frequency (16), model family (2168), dealer (2144), position (2576 on) and probe ratio (2732).
TEST(SettingsBlock, TextsMadeFromSettings) {
  const struct {
    bool quality;
    const char *settings, *elements;
  } cases[] = {
      {false, "844#600 16#50", "HARM_CONTENT=156 HARM_COMPONENTS=2251799813685247"},
      {false, "844#600 16#55", "HARM_CONTENT=156 HARM_COMPONENTS=2097151"},
      {false, "844#600 16#400", "HARM_CONTENT=156 HARM_COMPONENTS=16383"},
      {false, "976#2 844#600 16#400", "HARM_CONTENT=72 HARM_COMPONENTS=16383"},
      {false, "976#5 844#600 16#60", "HARM_CONTENT=72 HARM_COMPONENTS=2251799813685247"},
      {false, "976#1 844#600 16#400", "HARM_CONTENT=72 HARM_COMPONENTS=67108862"},
      {false, "976#6 844#900 16#50", "HARM_CONTENT=72 HARM_COMPONENTS=67108862"},
      {true, "844#600 16#400", "HARM_CONTENT=64 HARM_COMPONENTS=2199023255551"},
      {true, "976#2 844#900 16#50", "HARM_CONTENT=64 HARM_COMPONENTS=65535"},
      {false, "2144#8", "instrument_GS=GS~7100 instrument_name=Gridlog~4 cname=short"},
      {false, "2168#1 2144#8", "instrument_GS=GW~7200 instrument_name=Grid~Sentry"},
      {false, "2168#1 2144#16", "instrument_GS=GS~7300 instrument_name=Voltra~EX cname=short"},
      {false, "2168#1 2144#18", "instrument_GS=GS~7300 instrument_name=Grid~Sentry cname=longer"},
      {false, "2168#2 2144#16", "instrument_GS=GS~7400 instrument_name=Grid~Sentry~Pro"},
      {false, "2168#-1 2144#18", "instrument_GS=GS~7400 instrument_name=Grid~Sentry~Pro"},
      // A zero letter ends the text, and so does its width.
      {false, "2593.0", "gps_position="},
      {false, "2593.83 2584%nan", "gps_position=S~nan,~"},
      {false, "2593.83 2584%1e300",
       "gps_position=S~100000000000000005250476025520442024870446858110815915491585"
       "41155118024579889081957863713750804478"},
      {false, "2593.83 2596#1", "gps_position=Not~available"},
      {false, "2732:-1e37", "PV_PROBE_RATIO=-2147483648"},
      {false, "2732:3e9", "PV_PROBE_RATIO=-2147483648"},
      {false, "2732:nan", "PV_PROBE_RATIO=-2147483648"},
      {false, "2732:-2.9", "PV_PROBE_RATIO=-2"},
  };
  for (const auto& c : cases) {
    auto s = Load<UifParams>(Bytes(kSettingsSize).PutSettings(0, c.settings).data());
    std::memcpy(s.cname_short, "short", 6);
    std::memcpy(s.cname_long, "longer", 7);
    std::istringstream elements(c.elements);
    const std::string block = BlockOf(s, c.quality);
    for (std::string element; elements >> element;) {
      EXPECT_EQ(1u, CountOf(block, Expected({}, element))) << c.settings << ": " << element;
    }
  }
}

// What is not zero any more, by state offset (the settings start at 119840); the rest of the record
// is untouched.
TEST(Validation, ZeroedStateGetsTheDefaults) {
  Bytes expected;
  const auto settings = [&](auto value, std::initializer_list<size_t> places) {
    for (const size_t at : places) expected.Put(119840 + at, value);
  };
  settings(uint8_t{1}, {13, 14, 842});
  settings(1, {8, 844, 848, 956, 1016, 1020, 1088, 1232, 1256, 1260, 1268, 1392, 2564, 2568, 2692,
               2696, 2700, 2704});
  settings(2, {1244, 1384});
  settings(5, {1364, 2616});
  settings(10, {1332});
  settings(50, {16});
  settings(200, {1352, 1504});
  settings(1000, {2612});
  settings(10000, {2608});
  settings(0.09f, {824, 832});
  settings(0.1f, {1012, 1252});
  settings(0.3f, {952});
  settings(1.0f, {2732});
  settings(50.0f, {596});
  settings(70.0f, {820, 828});
  expected.Put(122904, 2).Put<uint8_t>(122909, 1).Put(122912, 1.0f).Put(122924, 0.2f);
  expected.Put(122932, 1).Put(122936, 300.0f).Put(122940, 10.0f).Put(122944, 1).Put(122952, -1);
  expected.Put(122956, 4).Put<uint8_t>(122964, 1).Put<uint8_t>(122965, 1);
  expected.PadTo(sizeof(InstrumentState));
  Tracked<InstrumentState> state;
  ValidateSettings(state.get(), 0);
  const auto* bytes = reinterpret_cast<const uint8_t*>(state.get());
  for (size_t at = 0; at < expected.size(); ++at) {
    ASSERT_EQ(expected[at], bytes[at]) << "state offset " << at << ", settings " << at - 119840;
  }
}

// Settings, and behind = what the last one becomes where the others are as given. 20000 / 100 /
// sqrt(3) is 115.5 V at the input.
TEST(Validation, ValuesOutOfRange) {
  std::istringstream rows(R"(
    8#400000=400000 8#400001=1 8#-1=1 12.9=2 13.9=7 14.0=1 16#52=50 16#57=55 16#300=400 596:49=50
    596:2000=1000 596:inf=50 600.1=3 604:nan=0 608:-inf=0 612:5=5 616#6=2 620#-1=2 624#5=5
    820:3001=3000 828:99.96=100 842.7=1 844#2=1 844#7=5 844#1000000=7200 848#2=2 848#3=1 856#1=2
    860#2=2 864.9=1 920.8=1 952:0.1=0.3 952:11=10 956#121=120 956#-1=1 976#6=0 976#5=5 980#2=0
    1000.1=0 1001.5=1 1012:12.34=12.3 1012:151=150 1012:nan=0.1 1016#0=1 1016#9=3 1020#15=10
    1088#3=2 1224#9=1 1229.2=0 1244#7=6 1252:112=112 1332#0=10 1352#1501=200 1352#1500=1500
    1364#6=7 1364#5=5 1384#9=3 1392#4=4 1400#2=1 1504#1501=1500 1504#-5=200 2436:-0.1=0.03
    2440:0.6=0.25 2440:0.5=0.5 2448.2=0 2456#3=0 2560.2=0 2560.1=1 2564#9=1 2568#1001=1 2604#2=0
    2608#99=10000 2608#100=100 2612#100001=1000 2616#51=5 2688#2=0 2692#0=1 2696#100=100
    2700#10001=1 2704#101=1 2732:0.5=1 2732:9=3
    1020#1,1024#60=0 1020#20,1024#60=10 1020#20,2560.1,1024#60=2 1244#5,1252:112=110
    16#60,820:1=80 13.2,1392#2=1 13.1,1392#2=2 596:136,4#99=0 596:230,4#99=1 596:400,4#99=2
    13.4,596:400,4#99=1 13.6,596:50,4#99=2 13.4,8#100,2568#1,12.1,596:20000,4#99=0
    13.6,596:5000=1000 13.7,596:5000=1732.0508)");
  for (std::string row; rows >> row;) {
    std::replace(row.begin(), row.end(), ',', ' ');
    const size_t equals = row.find('='), last = row.rfind(' ') + 1;
    const std::string place = row.substr(last, row.find_first_of("#.:", last) + 1 - last);
    Tracked<InstrumentState> state;
    Bytes settings(kSettingsSize);
    settings.PutSettings(0, row.substr(0, equals));
    state->settings = Load<UifParams>(settings.data());
    ValidateSettings(state.get(), 0);
    const auto* found = reinterpret_cast<const uint8_t*>(&state->settings);
    settings.assign(found, found + kSettingsSize);
    EXPECT_TRUE(Bytes(settings).PutSettings(0, place + row.substr(equals + 1)) == settings) << row;
  }
}

TEST(Validation, ListsAndLimits) {
  ValueList list;
  BuildValueList(&list, {10, kListHole, 20, 30});
  EXPECT_EQ(10, SnapToList(15, list)) << "a tie takes the earlier entry";
  EXPECT_EQ(10, SnapToList(INT32_MIN, list)) << "holes are skipped";
  TrimListBelow(&list, 20);
  EXPECT_EQ(10, SnapToList(30, list));
  BuildValueList(&list, {});
  EXPECT_EQ(kListEnd, SnapToList(5, list));
  EXPECT_FLOAT_EQ(0.09f, SignallingLimit(499));
  EXPECT_FLOAT_EQ(0.09f, SignallingLimit(500));
  EXPECT_FLOAT_EQ(0.0670820393f, SignallingLimit(707.106781f)) << "sqrt(9 * 5) half way";
  EXPECT_FLOAT_EQ(0.05f, SignallingLimit(9999));
  EXPECT_FLOAT_EQ(0.0223606798f, SignallingLimit(31622.7766f)) << "sqrt(5 * 1) half way";
}

TEST(SettingFile, Names) {
  struct {
    const char* record;
    int32_t type;
    const char* name;
  } const cases[] = {
      {"R0007X.ext", 0, "R0007PAR.ext"},
      {"C:\\data 7\\R0012GEN.REC", 0, "C:\\data 7\\R0012PAR.REC"},
      {"/mnt/2024/R7.REC", 1, "/mnt/2024/R0007PAR.REC"},
      {"R123456Y.REC", 0, "R123456PAR.REC"},
      {"R20240307123456.REC", 0, "R20240307123456PAR.REC"},
      {"nodigits.REC", 0, "nodigits0000PAR.REC"},
      {"noextension", 0, "noextension0000PAR"},
      {"R0007X.tar.REC", 0, "R0007PAR.tar.REC"},
      {"", 0, "0000PAR"},
      {"R0007RVC-2024-03-07-tail.REC", 10, "R0007PAR-2024-03-07-tail.REC"},
      {"R0007SES-2024_3x_07_tail.REC", 15, "R0007PAR-2024-03-07-tail.REC"},
      {"R0007EMT-2024-03-07-tail.REC", 18, "R0007PAR-2024-03-07-.REC"},
      {"R0007SES", 15, "R0007PAR-0-00-00-"},
  };
  for (const auto& c : cases) {
    char name[kMaxPath + 1];
    EXPECT_TRUE(BuildSettingFileName(c.record, name, "PAR", c.type));
    EXPECT_STREQ(c.name, name);
  }
  char name[kMaxPath + 1];
  EXPECT_FALSE(BuildSettingFileName((std::string(509, 'a') + "1").c_str(), name, "PAR", 0));
}

TEST(SettingFile, ReplacesTheSettingsAsFarAsItGoes) {
  const std::string record = InFolder("S0003X.REC");
  Tracked<UifParams> settings;
  settings->rand_mark = 77;
  EXPECT_EQ(1, LoadSettingFile(record.c_str(), settings.get()));
  EXPECT_EQ(77u, settings->rand_mark);
  Bytes file = HeadOf(4);
  file.Put<uint32_t>(8 + 16, 60).Put<uint32_t>(8 + 2444, 5);
  file.resize(2000);
  WriteFile(InFolder("S0003PAR.REC"), file);
  EXPECT_EQ(0, LoadSettingFile(record.c_str(), settings.get()));
  EXPECT_EQ(60u, settings->system_frequency);
  EXPECT_EQ(77u, settings->rand_mark) << "behind the end of the short file";
}

TEST(InstrumentStateRecord, HasTheRecordingsSettingsAndReleasesWhatItOwns) {
  const uint32_t before = TrackedBytes();
  UifParams settings{};
  settings.nominal_voltage = 4321.0f;
  {
    ScopedState state(&settings);
    EXPECT_EQ(4321.0f, state->settings.nominal_voltage) << "not validated";
    EXPECT_EQ(2u, state->fixed122904);
    state->owned[1] = Allocate(100);
  }
  EXPECT_EQ(before, TrackedBytes());
}

}  // namespace
}  // namespace quorvex::test
