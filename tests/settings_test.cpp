// The settings block, the settings check and the companion setting file.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <sstream>

#include "settings/instrument_state.h"
#include "settings/setting_file.h"
#include "settings/settings_block.h"
#include "settings/validation.h"
#include "support.h"
#include "support/file.h"
#include "support/memory.h"

namespace quorvex::test {
namespace {

// A description of the settings block beside the library's own: each word is an element in written
// order with the settings offset and the kind of its value. "NAME{" opens and "}" closes a block.
//   %1 a byte   %2 a 16-bit word   %4 a 32-bit word   %f a float   %t a date-time   = a given text
// Every value is made from its offset, so a mixed-up pair shows.
constexpr char kOutline[] = R"(
UIF_PARAMS{ CONNECTION%1:13 SYNCHRONIZATION%1:14 SYSTEM_FREQUENCY%4:16 NOMINAL_VOLTAGE%f:596
VOLTAGE_RATIO_PRIM%4:8 VOLTAGE_RATIO_SEC%4:2568 PV_PROBE_RATIO=2 TRIKOT_STAR_FACTOR_ID%1:12
UN_RANGE%1:600 SWELL%f:604 SWELL_HYSTERESIS%4:616 DIP%f:608 DIP_HYSTERESIS%4:620 INTERRUPT%f:612
INTERRUPT_HYSTERESIS%4:624 RVC_THRESHOLD%f:2436 RVC_HYST%f:2440 CAPTURE_EVENTS%1:628
CAPTURE_ALARMS%1:629 CLAMP_PH1{ clamp:20 } CLAMP_PH2{ clamp:164 } CLAMP_PH3{ clamp:308 }
CLAMP_N{ clamp:452 } ALARMS{ NUM=2 SETTINGS{ alarm:636 } SETTINGS{ alarm:660 } }
RANGE_I%4:804 RANGE_IN%4:808 RANGE_IS%4:812 RANGE_US%4:816
SIGNALING{ SIGNAL1{ f%f:820 limit%f:824 } SIGNAL2{ f%f:828 limit%f:832 } } CLOCK_TYPE%1:836
RECORD_PARAMS{ TYPE%1:842 INTERVAL%4:844 DURATION%4:852 INC_ACTIVE_EVENTS%4:856
INC_ACTIVE_ALARMS%4:860 INC_ACTIVE_SIGNALLING%1:864 INC_ACTIVE_TRANSIENTS%1:1000
INC_ACTIVE_INRUSH%1:1001 INC_ACTIVE_RVC%4:1224 INC_ACTIVE_INTERVAL%1:1229
SIGNALLING_DURATION%4:956 SIGNALLING_THRESHOLD%f:952 MANUAL_START%1:920 STOP_CAUSE%1:921
START_TIME%t:872 TIME_FIRST_PACKET%t:888 TIME_LAST_PACKET%t:904 PROFILE%4:976
HARM_CONTENT=72 HARM_COMPONENTS=67108862 START_PRESSED_TIME%t:984 EVENTS_WF_DURATION%4:1232
EVENTS_WF_PRETRIGGER%4:1236
INRUSH_PARAMS{ LEVEL%f:1012 SLOPE%4:1016 DURATION%4:1020 PRETRIGGER%4:1024 STORE_MODE%4:1088
STORE_NUM%4:1084 TRIG_CHANNEL%4:1080 START_TIME%t:1032 TRIG_TIME%t:1048 END_TIME%t:1064
MAX_I%f:1096 } RECORD_START_TYPE%4:980 START_CAUSE%1:1228 }
WAVE_RECORD_PARAMS{ TRIGGER%4:1244 REAL_TRIGGER%4:1248 LEVEL%f:1252 SLOPE%4:1256 DURATION%4:1260
PRETRIGGER%4:1264 STORE_MODE%4:1268 TRIG_CHANNEL%4:1328 START_TIME%t:1280 TRIG_TIME%t:1296
INTERVAL%4:1332 END_TIME%t:1312 }
TRANSIENTS_RECORD_PARAMS{ TRIGGER%4:1364 REAL_TRIGGER%4:1368 TRIGGER_TYPE%4:1392
SELECT_N_GND%4:1400 LEVEL%f:1372 DURATION%4:1376 PRETRIGGER%4:1380 LEVEL_U%f:1404 ENV_U%f:1420
LEVEL_UN%f:1408 LEVEL_I%f:1412 ENV_I%f:1428 LEVEL_IN%f:1416 ENV_IN%f:1432 STORE_MODE%4:1384
TRIG_CHANNEL%4:1388 START_TIME%t:1472 TRIG_TIME%t:1456 END_TIME%t:1488 NUM%4:1440 STEP%f:1436
MAX_VAL%f:1444 ALL_TRANSIENTS%4:1448 MAX_NUM%4:1504 }
EMETER_PARAMS{ START_PRESSED_TIME%t:2672 MODE%4:2604 CONSTANT%4:2608 PULSES_NUM%4:2612
MEAS_NUM%4:2616 ACCUMULATED_ENERGY%f:2620 SELECTED_Q%4:2688 CT_PRIM%4:2700 CT_SEC%4:2704
VT_PRIM%4:2692 VT_SEC%4:2696 EMETER_INFO{ MEASUREMENT_PLACE=eighteen.characte?
NOMINAL_DATA=3x230 SERIAL_NUMBER=-2 } }
INSTRUMENT_DATA{ ee_FirmData=a?b\c&d ee_SerialNumber=12345678 ee_CalDate%t:2128 ee_Dealer%2:2144
ee_HardwareVersion%2:2146 ee_FirmwareVersion=3.0 ee_DocumentationVersion%2:2148
instrument_GS=GS_7300 instrument_name=Grid_Sentry }
INSTRUMENT_CAL{ calibration:ee_konst_:2208 calibration:ee_ofs_:2320 ee_konst_Vbat%f:2432 }
rand_mark%4:2444 cname=FEEDER1 meas_method%4:2456 memory_struct%4:2564
gps_position=N_45.1235,_E_-0.5000 }
)";
constexpr char kClampOutline[] =
    "TYPE_IND%1:0 NAME=<clamp> TYPE%1:101 RANGE%f:104 A_NA_V%f:108 CURRENT_RANGE=-7.000000E+00 "
    "PARALLEL_FEEDERS%1:116 WIRES_NUM%4:120 TRAFO%1:124 TRAFO_PRIM_I%4:128 TRAFO_SEC_I%4:132 "
    "AUTORANGE%4:136 DIRECTION%4:140";
constexpr char kAlarmOutline[] =
    "QUANTITY{ ID%4:0 PARAMETER%4:4 PHASE_ID%4:8 } CONDITION_ID%4:12 QUANTITY_VALUE%f:16 "
    "TRIGGER_DURATION%f:20";
constexpr char kCalibrated[] =
    "U1_150V U1_300V U1_1000V U2_150V U2_300V U2_1000V U3_150V U3_300V U3_1000V Ue_150V Ue_300V "
    "Ue_1000V Un_150V Un_300V Un_1000V Us_150V Us_300V Us_1000V I1_10P I1_100P I2_10P I2_100P "
    "I3_10P I3_100P In_10P In_100P Is_10P Is_100P";

// Walks an outline: puts each value into the settings and writes the expected lines.
class Outline {
 public:
  Bytes settings;
  std::string expected;

  void Walk(const std::string& text, size_t base) {
    std::istringstream words(text);
    for (std::string word; words >> word;) Take(word, base);
  }

 private:
  std::vector<std::string> open_;

  void Line(const std::string& name, const std::string& value) {
    expected += "<" + name + ">" + value + "</" + name + ">\n";
  }

  void Take(const std::string& word, size_t base) {
    const size_t mark = word.find_first_of("{}%=:");
    const std::string name = word.substr(0, mark);
    const std::string rest = word.substr(mark + 1);
    const size_t colon = word.rfind(':');
    const size_t at = colon == std::string::npos ? 0 : base + std::stoul(word.substr(colon + 1));
    char number[40];
    switch (word[mark]) {
      case '{':
        expected += "<" + name + ">\n";
        open_.push_back(name);
        return;
      case '}':
        expected += "</" + open_.back() + ">\n";
        open_.pop_back();
        return;
      case '=': {
        std::string value = rest;
        if (name == "instrument_GS" || name == "instrument_name" || name == "gps_position") {
          for (char& c : value) c = c == '_' ? ' ' : c;
        }
        Line(name, value);
        return;
      }
      case ':':
        if (name == "clamp") Walk(kClampOutline, at);
        if (name == "alarm") Walk(kAlarmOutline, at);
        if (name == "calibration") Calibration(rest.substr(0, rest.find(':')), at);
        return;
      default:
        break;
    }
    switch (rest[0]) {
      case '1':
        settings.Put(at, static_cast<uint8_t>(at));
        return Line(name, std::to_string(at % 256));
      case '2':
        settings.Put(at, static_cast<uint16_t>(at));
        return Line(name, std::to_string(at));
      case '4':
        settings.Put(at, static_cast<int32_t>(at) - 100000);
        return Line(name, std::to_string(static_cast<int32_t>(at) - 100000));
      case 'f':
        settings.Put(at, static_cast<float>(at) + 0.5f);
        std::snprintf(number, sizeof number, "%E", static_cast<double>(at) + 0.5);
        return Line(name, number);
      default:
        settings.PutTime(at, static_cast<int>(at), 1, 2, 3, 4, 5.5);
        expected += "<" + name + ">\n<year>" + std::to_string(at) +
                    "</year>\n<month>1</month>\n<day>2</day>\n<hour>3</hour>\n<min>4</min>\n"
                    "<sec>5.5</sec>\n</" +
                    name + ">\n";
    }
  }

  void Calibration(const std::string& prefix, size_t at) {
    std::istringstream names(kCalibrated);
    for (std::string name; names >> name; at += 4)
      Take(prefix + name + "%f:" + std::to_string(at), 0);
  }
};

// The block as the writers give it, without the elements around.
template <typename Write>
std::string Written(Write write) {
  XmlWriter* writer = CreateWriter(nullptr);
  write(writer);
  EXPECT_EQ(0, writer->depth);
  const std::string text(writer->buffer, writer->position);
  CloseWriter(writer);
  return text;
}

std::string BlockOf(const UifParams& settings, bool harmonics = false) {
  return Written([&](XmlWriter* to) { WriteSettingsBlock(to, settings, harmonics); });
}

std::string ElementOf(const std::string& text, const std::string& name) {
  const std::string open = "<" + name + ">";
  const size_t at = text.find(open);
  if (at == std::string::npos) return "no " + name;
  return text.substr(at + open.size(), text.find('<', at + 1) - at - open.size());
}

TEST(SettingsBlock, EveryFieldInWrittenOrder) {
  Outline outline;
  outline.settings.assign(kSettingsSize, 0xEE);
  outline.Walk(kOutline, 0);
  Bytes& s = outline.settings;
  for (size_t clamp = 20; clamp <= 452; clamp += 144) {
    s.PutText(clamp + 1, std::string("<clamp>") + '\0').Put<int32_t>(clamp + 112, -7);
  }
  s.Put<int32_t>(632, 2).Put(2732, 2.9f).Put<int64_t>(2664, -2).Put<uint32_t>(2168, 1);
  s.PutText(2624, "eighteen.characte>x").PutText(2642, std::string("3x230") + '\0');
  s.PutText(2016, std::string("a<b\nc&d") + '\0').PutText(2116, "12345678");
  s.PutText(2150, std::string("3.0") + '\0').PutText(2449, "FEEDER1");
  s.Put(2576, -0.5).Put(2584, 45.12346).PutText(2592, "EN").Put<uint32_t>(2596, 0);
  EXPECT_EQ(Lines(outline.expected), BlockOf(Load<UifParams>(s.data())));
}

TEST(SettingsBlock, FloatsWithoutValueAndZeroedSettings) {
  UifParams s{};
  s.swell = kNone;
  const std::string block = BlockOf(s);
  EXPECT_EQ("-", ElementOf(block, "SWELL"));
  EXPECT_EQ("0.000000E+00", ElementOf(block, "DIP"));
  EXPECT_EQ("", ElementOf(block, "gps_position")) << "a zero letter ends the text";
  EXPECT_NE(std::string::npos, block.find("<ALARMS>\r\n<NUM>0</NUM>\r\n</ALARMS>\r\n"));
}

TEST(SettingsBlock, HarmonicContentAndComponents) {
  struct {
    bool flag;
    uint32_t profile, interval, frequency;
    const char *content, *components;
  } const cases[] = {
      {false, 0, 600, 50, "156", "2251799813685247"}, {false, 0, 600, 55, "156", "2097151"},
      {false, 0, 600, 400, "156", "16383"},           {false, 2, 600, 400, "72", "16383"},
      {false, 5, 600, 55, "72", "2097151"},           {false, 5, 600, 60, "72", "2251799813685247"},
      {false, 1, 600, 400, "72", "67108862"},         {false, 6, 900, 50, "72", "67108862"},
      {true, 0, 600, 400, "64", "2199023255551"},     {true, 2, 900, 50, "64", "65535"},
      {true, 0, 1, 50, "64", "2199023255551"}};
  for (const auto& c : cases) {
    UifParams s{};
    s.profile = c.profile;
    s.interval = c.interval;
    s.system_frequency = c.frequency;
    const std::string block = BlockOf(s, c.flag);
    EXPECT_EQ(c.content, ElementOf(block, "HARM_CONTENT")) << c.flag << c.profile;
    EXPECT_EQ(c.components, ElementOf(block, "HARM_COMPONENTS"))
        << c.flag << ' ' << c.profile << ' ' << c.interval << ' ' << c.frequency;
  }
}

TEST(SettingsBlock, ModelsAndNamesByDealer) {
  struct {
    uint32_t family;
    uint16_t dealer;
    const char *code, *name, *cname;
  } const cases[] = {{0, 8, "GS 7100", "Gridlog 4", "short"},
                     {1, 8, "GW 7200", "Grid Sentry", "short"},
                     {1, 16, "GS 7300", "Voltra EX", "short"},
                     {1, 18, "GS 7300", "Grid Sentry", "a much longer name"},
                     {2, 16, "GS 7400", "Grid Sentry Pro", "short"},
                     {0xFFFFFFFF, 18, "GS 7400", "Grid Sentry Pro", "a much longer name"}};
  for (const auto& c : cases) {
    UifParams s{};
    s.model_family = c.family;
    s.ee_dealer = c.dealer;
    std::memcpy(s.cname_short, "short", 6);
    std::memcpy(s.cname_long, "a much longer name", 18);
    const std::string block = BlockOf(s);
    EXPECT_EQ(c.code, ElementOf(block, "instrument_GS")) << c.family << ' ' << c.dealer;
    EXPECT_EQ(c.name, ElementOf(block, "instrument_name")) << c.family << ' ' << c.dealer;
    EXPECT_EQ(c.cname, ElementOf(block, "cname")) << c.dealer;
  }
}

TEST(SettingsBlock, PositionsAndRatiosOutOfRange) {
  UifParams s{};
  s.latitude_letter = 'S';
  s.latitude = 1e300;
  s.longitude_letter = 'W';
  const std::string position = ElementOf(BlockOf(s), "gps_position");
  EXPECT_EQ(100u, position.size());
  EXPECT_EQ("S 1000000000000000", position.substr(0, 18));
  s.latitude = std::numeric_limits<double>::quiet_NaN();
  s.longitude_letter = '\0';
  EXPECT_EQ("S nan, ", ElementOf(BlockOf(s), "gps_position"));
  s.no_position = 1;
  EXPECT_EQ("Not available", ElementOf(BlockOf(s), "gps_position"));
  for (const float ratio : {kNone, 3e9f, -INFINITY, NAN}) {
    s.pv_probe_ratio = ratio;
    EXPECT_EQ("-2147483648", ElementOf(BlockOf(s), "PV_PROBE_RATIO")) << ratio;
  }
  s.pv_probe_ratio = -2.9f;
  EXPECT_EQ("-2", ElementOf(BlockOf(s), "PV_PROBE_RATIO"));
}

TEST(SettingsBlock, AlarmCountsAndEndlessClampNames) {
  AlarmSettings alarms{};
  for (const auto& [count, shown, settings] :
       {std::tuple{-3, "-3", 0}, {0, "0", 0}, {7, "7", 7}, {8, "7", 7}, {INT32_MAX, "7", 7}}) {
    alarms.num = count;
    const std::string text =
        Written([&](XmlWriter* to) { WriteAlarmSettings(to, "INFORMATION", alarms); });
    EXPECT_EQ(0u, text.find(std::string("<INFORMATION>\r\n<NUM>") + shown + "</NUM>\r\n"));
    int found = 0;
    for (size_t at = text.find("<SETTINGS>"); at != std::string::npos; ++found) {
      at = text.find("<SETTINGS>", at + 1);
    }
    EXPECT_EQ(settings, found) << count;
  }
  ClampParams clamp{};
  std::memset(clamp.name, 'n', sizeof clamp.name);
  clamp.type = 'x';
  const std::string text = Written([&](XmlWriter* to) { WriteClampParams(to, "CLAMP", clamp); });
  EXPECT_EQ(std::string(100, 'n'), ElementOf(text, "NAME"));
}

TEST(Validation, ZeroedStateGetsTheDefaults) {
  Tracked<InstrumentState> state;
  ValidateSettings(state.get(), 0);
  // What is not zero any more, by state offset; the rest of the record is untouched.
  Bytes expected;
  expected.PadTo(sizeof(InstrumentState));
  const auto settings = [&](size_t at, auto value) { expected.Put(119840 + at, value); };
  for (const size_t at : {8u, 2568u, 848u, 844u, 1020u, 1016u, 1088u, 1232u, 1260u, 1256u, 1268u,
                          1392u, 956u, 2564u, 2700u, 2704u, 2692u, 2696u}) {
    settings(at, uint32_t{1});
  }
  for (const size_t at : {13u, 14u, 842u}) settings(at, uint8_t{1});
  settings(16, uint32_t{50});
  settings(2732, 1.0f);
  settings(596, 50.0f);
  for (const size_t at : {1012u, 1252u}) settings(at, 0.1f);
  settings(1244, uint32_t{2});
  settings(1332, uint32_t{10});
  settings(1352, uint32_t{200});
  settings(1364, uint32_t{5});
  settings(1384, uint32_t{2});
  settings(1504, uint32_t{200});
  for (const size_t at : {820u, 828u}) settings(at, 70.0f);
  for (const size_t at : {824u, 832u}) settings(at, 0.09f);
  settings(952, 0.3f);
  settings(2608, uint32_t{10000});
  settings(2616, uint32_t{5});
  settings(2612, uint32_t{1000});
  expected.Put(122904, uint32_t{2}).Put(122909, uint8_t{1}).Put(122912, 1.0f);
  expected.Put(122924, 0.2f).Put(122932, 1).Put(122936, 300.0f).Put(122940, 10.0f);
  expected.Put(122944, 1).Put(122952, -1).Put(122956, 4).Put(122964, uint8_t{1});
  expected.Put(122965, uint8_t{1});
  const auto* bytes = reinterpret_cast<const uint8_t*>(state.get());
  for (size_t at = 0; at < expected.size(); ++at) {
    ASSERT_EQ(expected[at], bytes[at]) << "state offset " << at << ", settings " << at - 119840;
  }
}

// One 32-bit word of the settings in, what it becomes.
template <typename T>
T Validated(size_t offset, T value, const std::function<void(UifParams*)>& also = {}) {
  Tracked<InstrumentState> state;
  if (also) also(&state->settings);
  auto* at = reinterpret_cast<uint8_t*>(&state->settings) + offset;
  Store(at, value);
  ValidateSettings(state.get(), 0);
  return Load<T>(at);
}

TEST(Validation, IntegersOutOfRange) {
  struct {
    size_t offset;
    int32_t value, becomes;
  } const cases[] = {
      {8, 400000, 400000},  {8, 400001, 1},    {8, -1, 1},         {2568, 1001, 1},
      {16, 52, 50},         {16, 57, 55},      {16, 300, 400},     {616, 6, 2},
      {620, -1, 2},         {624, 5, 5},       {2456, 3, 0},       {2564, 9, 1},
      {980, 2, 0},          {844, 2, 1},       {844, 7, 5},        {844, 1000000, 7200},
      {848, 2, 2},          {848, 3, 1},       {856, 1, 2},        {860, 2, 2},
      {1224, 9, 1},         {976, 6, 0},       {976, 5, 5},        {1020, 15, 10},
      {1016, 0, 1},         {1016, 9, 3},      {1088, 3, 2},       {1244, 7, 6},
      {1332, 0, 10},        {1352, 1501, 200}, {1352, 1500, 1500}, {1392, 4, 4},
      {1364, 6, 7},         {1364, 5, 5},      {1400, 2, 1},       {1384, 9, 3},
      {1504, 1501, 1500},   {1504, -5, 200},   {956, 121, 120},    {956, -1, 1},
      {2608, 99, 10000},    {2608, 100, 100},  {2604, 2, 0},       {2616, 51, 5},
      {2612, 100001, 1000}, {2688, 2, 0},      {2700, 10001, 1},   {2704, 101, 1},
      {2692, 0, 1},         {2696, 100, 100},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.becomes, Validated(c.offset, c.value)) << c.offset << ": " << c.value;
  }
  const std::pair<size_t, std::pair<int, int>> bytes[] = {
      {12, {9, 2}},   {13, {9, 7}},   {14, {0, 1}},   {600, {1, 3}},  {842, {7, 1}},
      {864, {9, 1}},  {1000, {1, 0}}, {1001, {5, 1}}, {1229, {2, 0}}, {920, {8, 1}},
      {2448, {2, 0}}, {2560, {2, 0}}, {2560, {1, 1}}};
  for (const auto& [offset, change] : bytes) {
    EXPECT_EQ(change.second, Validated(offset, static_cast<uint8_t>(change.first))) << offset;
  }
}

TEST(Validation, FloatsOutOfRange) {
  struct {
    size_t offset;
    float value, becomes;
  } const cases[] = {
      {2732, 0.5f, 1.0f},      {2732, 9.0f, 3.0f},     {596, 49.0f, 50.0f},
      {596, 2000.0f, 1000.0f}, {596, INFINITY, 50.0f}, {2440, 0.6f, 0.25f},
      {2440, 0.5f, 0.5f},      {2436, -0.1f, 0.03f},   {604, NAN, 0.0f},
      {608, -INFINITY, 0.0f},  {612, 5.0f, 5.0f},      {1012, 12.34f, 12.3f},
      {1012, 151.0f, 150.0f},  {1012, NAN, 0.1f},      {1252, 112.0f, 112.0f},
      {820, 3001.0f, 3000.0f}, {828, 99.96f, 100.0f},  {952, 0.1f, 0.3f},
      {952, 11.0f, 10.0f},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.becomes, Validated(c.offset, c.value)) << c.offset << ": " << c.value;
  }
  EXPECT_EQ(110.0f, Validated(1252, 112.0f, [](UifParams* s) { s->wave.trigger = 5; }));
  EXPECT_EQ(80.0f, Validated(820, 1.0f, [](UifParams* s) { s->system_frequency = 60; }));
}

TEST(Validation, SettingsThatDependOnOthers) {
  const auto pretrigger = [](uint32_t duration, uint8_t reduced) {
    return Validated(1024, uint32_t{60}, [=](UifParams* s) {
      s->inrush.duration = duration;
      s->reduced_lists = reduced;
    });
  };
  EXPECT_EQ(0u, pretrigger(1, 0));
  EXPECT_EQ(10u, pretrigger(20, 0));
  EXPECT_EQ(2u, pretrigger(20, 1)) << "the duration is 5 at the most with reduced lists";
  EXPECT_EQ(3u, Validated(1392, uint32_t{2}, [](UifParams* s) { s->connection = 2; }) +
                    Validated(1392, uint32_t{2}));
  const auto range = [](float volts, uint8_t connection, uint32_t primary) {
    return Validated(4, uint32_t{99}, [=](UifParams* s) {
      s->nominal_voltage = volts;
      s->connection = connection;
      s->voltage_ratio_prim = primary;
      s->voltage_ratio_sec = 1;
      s->trikot_star_factor_id = primary == 1 ? 0 : 1;
    });
  };
  EXPECT_EQ(0u, range(136, 3, 1));
  EXPECT_EQ(1u, range(230, 3, 1));
  EXPECT_EQ(2u, range(400, 3, 1));
  EXPECT_EQ(1u, range(400, 4, 1)) << "line to line";
  EXPECT_EQ(2u, range(50, 6, 1)) << "inverter";
  EXPECT_EQ(0u, range(20000, 4, 100)) << "20000 / 100 / sqrt(3) is 115.5 at the input";
  const auto nominal = [](float volts, uint8_t connection) {
    return Validated(596, volts, [=](UifParams* s) { s->connection = connection; });
  };
  EXPECT_FLOAT_EQ(1732.0508f, nominal(5000, 7));
  EXPECT_FLOAT_EQ(1000.0f, nominal(5000, 6));
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

TEST(InstrumentStateRecord, IsCurrentWhileItLivesAndReleasesWhatItOwns) {
  const uint32_t before = TrackedBytes();
  UifParams settings{};
  settings.nominal_voltage = 4321.0f;
  {
    ScopedState state(&settings);
    EXPECT_EQ(4321.0f, CurrentState()->settings.nominal_voltage) << "not validated";
    EXPECT_EQ(2u, CurrentState()->fixed122904);
    const_cast<InstrumentState*>(CurrentState())->owned[1] = Allocate(100);
  }
  EXPECT_EQ(nullptr, CurrentState());
  EXPECT_EQ(before, TrackedBytes());
}

}  // namespace
}  // namespace quorvex::test
