// The record information line, and the texts that it is made of.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "settings/codes.h"
#include "settings/instrument_state.h"
#include "settings/time_texts.h"
#include "settings/value_texts.h"
#include "support.h"
#include "support/memory.h"

namespace quorvex::test {
namespace {

template <typename Make>
std::string TextOf(Make make) {
  char text[128];
  BoundedText to(text, sizeof text);
  make(&to);
  return text;
}

std::string InfoOf(const Bytes& recording, const std::string& name = "L0001X.REC") {
  const std::string path = InFolder(name);
  WriteFile(path, recording);
  char text[600];
  std::memset(text, '#', sizeof text);
  const uint32_t before = TrackedBytes();
  QuorvexGetRecordInfo(path.c_str(), text);
  EXPECT_EQ(before, TrackedBytes());
  EXPECT_EQ('#', text[512]) << "never more than 511 bytes and the terminator";
  std::remove(path.c_str());
  return text;
}

Bytes HeadWith(uint32_t type, size_t start_at, size_t end_at) {
  Bytes head = HeadOf(type);
  head.PutTime(8 + start_at, 2024, 3, 7, 14, 5, 9.1237);
  return head.PutTime(8 + end_at, 2024, 12, 31, 23, 59, 59.9999);
}
constexpr char kTimes[] = " '07.Mar.2024 14:05:09.123' '31.Dec.2024 23:59:59.999'";

TEST(RecordInfo, PeriodicRecordings) {
  const struct {
    uint32_t type, profile, interval;
    size_t records_size;
    const char* end_and_interval;
  } cases[] = {
      {1, 0, 600, 6 * 40448, "'07.Mar.2024 15:05:09.123' '10 Min '"},
      {1, 0, 600, 7 * 40448 - 1, "'07.Mar.2024 15:05:09.123' '10 Min '"},
      {1, 2, 90, 2 * 4608, "'07.Mar.2024 14:08:09.123' '1 Min 30 s'"},
      {1, 5, 5, 2 * 4608, "'07.Mar.2024 14:05:09.123' '5 s'"},  // counted as full records
      {16, 1, 0, 3 * 40448, "'07.Mar.2024 14:05:09.123' ''"},
      {16, 2, 86400, 25 * 4608, "'01.Apr.2024 14:05:09.123' '1440 Min '"},
  };
  for (const auto& c : cases) {
    Bytes file = HeadWith(c.type, 872, 904);
    file.Put(8 + 976, c.profile).Put(8 + 844, c.interval);
    file.PadTo(3072 + c.records_size);
    EXPECT_EQ(std::to_string(c.type) + " '07.Mar.2024 14:05:09.123' " + c.end_and_interval,
              InfoOf(file));
  }
  Bytes settings = HeadWith(9, 872, 904);
  WriteFile(InFolder("L0001PAR.REC"), settings.PutSettings(8, "844#61"));
  EXPECT_EQ(std::string("16") + kTimes + " '1 Min 1 s'", InfoOf(HeadOf(16)));
  EXPECT_EQ("4", InfoOf(HeadOf(4)) + "4") << "a type without a description";
  std::remove(InFolder("L0001PAR.REC").c_str());
}

TEST(RecordInfo, TriggeredRecordings) {
  const std::string clamp_and_voltage = "596:230 121.1 128:10 132#50 ";  // 5 A
  const std::string wave = clamp_and_voltage + "1252:110 1256#2 1260#90061 1264#0 1244#";
  const std::string inrush = clamp_and_voltage + "1012:10 1016#4 1020#7200 1024#60 2444#-1";
  const std::string series = "1372:12.5 1376#10 1380#2 1364#";
  const std::string durations = " ' 1 days 01 hours 1 Min 1 s' '0 s'";
  const struct {
    uint32_t type;
    size_t start_at, end_at;
    std::string settings, text;
  } cases[] = {
      {2, 1280, 1312, wave + "1", " 'Manual' '-' '-'" + durations},
      {2, 1280, 1312, wave + "5", " 'Level U' '110.0% (253.0V)' 'Fall'" + durations},
      {2, 1280, 1312, wave + "6", " 'Level I' '110.0% (5.500A)' 'Fall'" + durations},
      {2, 1280, 1312, wave + "7", " 'Envelope' '-' '-'" + durations},
      {2, 1280, 1312, wave + "37", " '' '-' '-'" + durations},
      {14, 1032, 1064, inrush, " '10.0% (500.0mA)' '' '02 hours ' '1 Min ' -1"},
      {17, 1472, 1488, series + "7", " 'Envelope' '12.50V' '10 periods' '2 periods'"},
      {17, 1472, 1488, series + "5", " 'Level U' '-' '10 periods' '2 periods'"},
      // In stored order U, UN, I, IN and the envelopes alike; in the line level and envelope in
      // turn.
      {5, 1472, 1488,
       "1404:400 1408:0.05 1412:12500 1416:-1e37 1420:60 1424:20 1428:0.25 1432:1e30",
       " '' '400.0V' '60.00V' '50.00mV' '20.00V' '12.50kA' '250.0mA' '-' '>999.9kA'"},
  };
  for (const auto& c : cases) {
    Bytes file = HeadWith(c.type, c.start_at, c.end_at).PutSettings(8, c.settings);
    EXPECT_EQ(std::to_string(c.type) + kTimes + c.text, InfoOf(file));
  }
}

TEST(RecordInfo, RecordingsWithTimesInTheirRecords) {
  Bytes live = HeadOf(6);
  EXPECT_EQ("6 '00.Jan.0000 00:00:00.000'", InfoOf(live));
  live.PutTime(3072 + 78528, 2024, 3, 7, 14, 5, 9.1237).PadTo(3072 + 79392);
  EXPECT_EQ("6 '07.Mar.2024 14:05:09.123'", InfoOf(live));

  Bytes meter = HeadOf(18);
  meter.PutTime(3072, 2024, 3, 7, 14, 5, 9.1237).PutTime(3088, 2024, 12, 31, 23, 59, 59.9999);
  const std::string first = std::string("18") + kTimes;
  EXPECT_EQ(first, InfoOf(meter)) << "less than a record: its own end";
  meter.PutTime(3072 + 144 + 16, 2025, 13, 1, 2, 3, 4).PadTo(3072 + 2 * 144 + 143);
  EXPECT_EQ("18 '07.Mar.2024 14:05:09.123' '01.Jan.2025 02:03:04.000'", InfoOf(meter));
}

TEST(RecordInfo, NamesAndDamagedFiles) {
  const Bytes file = HeadWith(2, 1280, 1312);
  for (const char* name : {"data.rec", "DATA.REC", "data.Rec"}) {
    EXPECT_NE("", InfoOf(file, name)) << name;
  }
  for (const char* name : {"data.rec.bak", "data", "rec", "data.reco", "data.re"}) {
    EXPECT_EQ("", InfoOf(file, name)) << name;
  }
  char text[512] = "before";
  QuorvexGetRecordInfo(InFolder("missing.REC").c_str(), text);
  EXPECT_STREQ("", text);
  EXPECT_EQ("", InfoOf({1, 0, 0, 0}));
  for (const uint32_t type : {1u, 2u, 5u, 6u, 14u, 16u, 17u, 18u}) {
    Bytes damaged(3072, 0xFF);
    Bytes huge(3072, 0x7E);  // floats of 1e38, doubles of 1e300
    huge.Put(8 + 1244, 6u).Put(4, type);
    EXPECT_NE("", InfoOf(damaged.Put(4, type)));
    EXPECT_NE("", InfoOf(huge));
  }
}

TEST(TimeTexts, CalendarAndParts) {
  const struct {
    int year, month, day;
    float days;
    const char* text;
  } cases[] = {{2024, 2, 28, 1, "29.Feb.2024"},  {2023, 2, 28, 1, "01.Mar.2023"},
               {2000, 2, 29, 1, "01.Mar.2000"},  {2100, 2, 28, 1, "01.Mar.2100"},
               {2024, 4, 30, 1, "01.May.2024"},  {2024, 12, 31, 1, "01.Jan.2025"},
               {2024, 1, 1, 366, "01.Jan.2025"}, {2024, 0, 31, 1, "01.Feb.2024"}};
  for (const auto& c : cases) {
    Bytes time;
    time.PutTime(0, c.year, c.month, c.day, 23, 59, 59.5);
    auto moved = Load<DateTimeRecord>(time.data());
    AddSeconds(&moved, 86400 * c.days);
    const auto text = [&](BoundedText* to) { DateTimeText(moved, TimeDetail::kMilliseconds, to); };
    EXPECT_EQ(c.text + std::string(" 23:59:59.500"), TextOf(text));
  }
  for (const auto& [seconds, text] : {std::pair{-0.5, "-0.500"},
                                      {-0.0001, "00.000"},
                                      {-1.25, "-1.250"},
                                      {9.0, "09.000"},
                                      {1e300, "2147483647.000"},
                                      {-1e300, "-2147483648.000"},
                                      {double{NAN}, "00.000"}}) {
    DateTimeRecord time{};
    time.month = 13, time.seconds = seconds;
    EXPECT_EQ(std::string("00.Jan.0000 00:00:") + text,
              TextOf([&](BoundedText* to) { DateTimeText(time, TimeDetail::kMilliseconds, to); }));
  }
  for (const auto& [duration, text] : {std::pair{59u, "59 s"},
                                       {3605u, "01 hours 5 s"},
                                       {10 * 86400u, "10 days "},
                                       {86460u, " 1 days 1 Min "}}) {
    EXPECT_EQ(text, TextOf([d = duration](BoundedText* to) { DurationText(d, to); }));
  }
}

TEST(ValueTexts, EngineeringFormatAndLevels) {
  const struct {
    double value;
    int decimals, exponent;
  } formats[] = {{10, 2, 0},    {100, 1, 0},  {230, 1, 0},  {99.9, 2, 0}, {9.9, 3, 0}, {1.0, 1, -3},
                 {0.02, 2, -3}, {1000, 1, 0}, {20e3, 2, 3}, {1e12, 1, 9}, {0, 3, -9},  {-5, 3, -9}};
  for (const auto& f : formats) {
    const EngineeringChoice choice = EngineeringFormat(f.value);
    EXPECT_EQ(f.decimals, choice.decimals) << f.value;
    EXPECT_EQ(f.exponent, choice.exponent) << f.value;
  }
  UifParams settings{};
  ClampParams& clamp = settings.clamp[0];
  clamp = {0, "", 1, {}, 400, 1000, 50, 0, {}, 3, 0, {}, 600, 5, 0, 0};
  EXPECT_EQ(500, ClampNominalCurrent(clamp));
  clamp.parallel_feeders = 1;
  EXPECT_EQ(1500, ClampNominalCurrent(clamp));
  clamp.trafo = 1;
  EXPECT_EQ(180000, ClampNominalCurrent(clamp));
  clamp.type = 2;
  EXPECT_EQ(24000, ClampNominalCurrent(clamp));
  settings.nominal_voltage = 20000;
  const struct {
    uint32_t trigger;
    bool percent_first;
    const char* text;
  } levels[] = {{5, false, "12.5% (2.50kV)"},
                {7, true, "12.5% (2.50kV)"},
                {6, false, "3.000kA (12.5%)"},
                {6, true, "12.5% (3.000kA)"},
                {8, true, "12.5%"}};
  for (const auto& l : levels) {
    EXPECT_EQ(l.text, TextOf([&](BoundedText* to) {
                LevelText(12.5f, l.trigger, settings, to, l.percent_first);
              }));
  }
  const char* const texts[][2] = {
      {"", WordOf(kTriggers, 0)}, {"Events & Alarms", WordOf(kTriggers, 4)},
      {"", WordOf(kTriggers, 9)}, {"Interval", WordOf(kTriggers, 8)},
      {"\xCE\xA9", UnitText(1)},  {"W/m2", UnitText(38)},
      {"Gvarh", UnitText(52)},    {"", UnitText(0xFFFFFFFF)}};
  for (const auto& [expected, text] : texts) EXPECT_STREQ(expected, text);
}

TEST(ValueTexts, RoundingAndDescribedValues) {
  const struct {
    double value;
    uint32_t decimals;
    int32_t integer;
  } rounded[] = {{2.5, 0, 3},          {-2.5, 0, -3},       {0.125, 2, 13}, {3e9, 0, INT32_MAX},
                 {-3e9, 0, INT32_MIN}, {1, 200, INT32_MAX}, {NAN, 1, 0},    {1e-99, 200, 10}};
  for (const auto& r : rounded) {
    int32_t integer = 1;
    RoundToDigits(r.value, r.decimals, &integer);
    EXPECT_EQ(r.integer, integer) << r.value;
  }
  const std::pair<double, const char*> values[] = {{0, "0.00mV"},
                                                   {0.00123, "1.23mV"},
                                                   {0.0999949, "99.99mV"},
                                                   {0.099995, "100.0mV"},
                                                   {-0.05, "-50.00mV"},
                                                   {0.99996, "1.000V"},
                                                   {9.9994, "9.999V"},
                                                   {9.9996, "10.00V"},
                                                   {10, "10.00V"},
                                                   {99.996, "100.0V"},
                                                   {100, "100.0V"},
                                                   {230, "230.0V"},
                                                   {999.96, "1.000kV"},
                                                   {-20000, "-20.00kV"},
                                                   {999940, "999.9kV"},
                                                   {999951, ">999.9kV"},
                                                   {-1e30, "<-999.9kV"},
                                                   {kNone, "-"},
                                                   {NAN, "-"},
                                                   {HUGE_VAL, "-"}};
  for (const auto& [value, text] : values) {
    EXPECT_EQ(text, TextOf([v = value](BoundedText* to) {
                to->Put(UnitText(DescribedValueText(v, kVoltageDescriptor, to).code));
              }));
  }
}

}  // namespace
}  // namespace quorvex::test
