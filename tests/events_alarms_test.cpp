// Voltage events and alarms: whole documents, what ends them, and their progress.
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

// Every word of the record holds its own offset.
Bytes OffsetsAsWords(uint32_t size) {
  Bytes record;
  for (uint32_t at = 0; at < size; at += 4) record.Put(at, at);
  return record.PutTime(size - 16, 2024, 3, 7, 14, 5, 9.25);
}

std::string Counts(const std::string& name, int at, int count) {
  std::string numbers;
  for (int i = 0; i < count; ++i) numbers += Value("N", at + 4 * i);
  return Element(name, numbers);
}

Bytes EventRecord() {
  Bytes record = OffsetsAsWords(264).Put<int32_t>(0, -1).Put(4, 201.5f);
  return record.Put(220, 150.0f).Put(224, kNone).Put(228, 250.25f).Put(232, 4.5f);
}

std::string EventText() {
  const struct {
    const char* name;
    int at, count;
  } counters[] = {{"TOTAL_TRANSITION_COUNT", 8, 1},
                  {"TOTAL_PHASE_START_COUNT", 12, 1},
                  {"TOTAL_PHASE_START_COUNTS", 16, 3},
                  {"TOTAL_PHASE_DIP_START_COUNT", 28, 1},
                  {"TOTAL_PHASE_SWELL_START_COUNT", 32, 1},
                  {"TOTAL_PHASE_INTERRUPT_START_COUNT", 36, 1},
                  {"PHASE_DIP_START_COUNTS", 40, 3},
                  {"PHASE_SWELL_START_COUNTS", 52, 3},
                  {"PHASE_INTERRUPT_START_COUNTS", 64, 3},
                  {"TOTAL_PHASE_END_COUNT", 76, 1},
                  {"TOTAL_PHASE_END_COUNTS", 80, 3},
                  {"TOTAL_PHASE_DIP_END_COUNT", 92, 1},
                  {"TOTAL_PHASE_SWELL_END_COUNT", 96, 1},
                  {"TOTAL_PHASE_INTERRUPT_END_COUNT", 100, 1},
                  {"PHASE_DIP_END_COUNTS", 104, 3},
                  {"PHASE_SWELL_END_COUNTS", 116, 3},
                  {"PHASE_INTERRUPT_END_COUNTS", 128, 3},
                  {"TOTAL_UNITED_POLY_PHASE_START_COUNT", 140, 1},
                  {"TOTAL_POLY_PHASE_START_COUNT", 144, 1},
                  {"TOTAL_POLY_PHASE_DIP_START_COUNT", 148, 1},
                  {"TOTAL_POLY_PHASE_SWELL_START_COUNT", 152, 1},
                  {"TOTAL_POLY_PHASE_INTERRUPT_START_COUNT", 156, 1},
                  {"TOTAL_UNITED_POLY_PHASE_END_COUNT", 160, 1},  // 164 has no element
                  {"TOTAL_POLY_PHASE_DIP_END_COUNT", 168, 1},
                  {"TOTAL_POLY_PHASE_SWELL_END_COUNT", 172, 1},
                  {"TOTAL_POLY_PHASE_INTERRUPT_END_COUNT", 176, 1}};
  std::string statistic;
  for (const auto& c : counters) {
    statistic += c.count == 1 ? Value(c.name, c.at) : Counts(c.name, c.at, c.count);
  }
  std::string words =
      Value("TRANSITION_FROM_EVENT_TYPE_ID", 180) + Value("TRANSITION_TO_EVENT_TYPE_ID", 184);
  int at = 188;
  for (const char* way : {"TO", "FROM"}) {
    for (const char* what : {"DIP", "SWELL", "INTERRUPT", "UNITED_EVENT"}) {
      words += Value(std::string("IS_TRANSITION_") + way + "_GLOBAL_" + what, at);
      at += 4;
    }
  }
  const std::string data =
      Element("DIP", Value("MIN_VALUE", "1.500000E+02") + Value("DEPTH", "-")) +
      Element("SWELL", Value("MAX_VALUE", "2.502500E+02")) +
      Element("INTERRUPT", Value("MIN_VALUE", "4.500000E+00"));
  return Element("TRANSITION", Value("PHASE_NUMBER", -1) +
                                   Value("RMS_12_AT_TRANSITION", "2.015000E+02") +
                                   Element("STATISTIC", statistic) + words + Element("DATA", data) +
                                   Time("TIME_STAMP", "9.25"));
}

TEST(VoltageEvents, WholeDocument) {
  Bytes file = LongHeadOf(8);
  file.Put<uint8_t>(3192, 3).Put(3196, 230.0f).Put(3200, 207.0f).Put(3204, kNone);
  file.Put(3208, 11.5f).PadTo(kEvents);
  const std::string information = Element(
      "INFORMATION", Value("CONNECTION", 3) + Value("NOMINAL_VOLTAGE", "2.300000E+02") +
                         Value("DIP_TRESHOLD", "2.070000E+02") + Value("SWELL_TRESHOLD", "-") +
                         Value("INTTERUPT_TRESHOLD", "1.150000E+01"));
  EXPECT_EQ(information + Element("TRANSITIONS", ""), BodyOf(Converted(file)));

  file.PutBytes(kEvents, EventRecord()).PutBytes(kEvents + 264, EventRecord());
  file.PadTo(kEvents + 2 * 264 + 100);  // a third that is cut off
  const std::string document = Converted(file);
  EXPECT_EQ(information + Element("TRANSITIONS", EventText() + EventText()), BodyOf(document));
  EXPECT_NE(std::string::npos, document.find("<UIF_PARAMS>\r\n<CONNECTION>5<"));
  file.resize(kEvents + 264);
  ExpectTruncationIsHarmless(file);
}

TEST(Alarms, WholeDocument) {
  Bytes file = LongHeadOf(7);
  file.PutBytes(3192, OffsetsAsWords(172)).Put<int32_t>(3192, 1).Put(3192 + 20, 0.5f);
  file.Put(3192 + 24, 3.0f).PadTo(kAlarms);
  Bytes record = OffsetsAsWords(864).Put(812, 253.0f).Put(816, 0.25f).Put(840, kNone);
  file.PutBytes(kAlarms, record).PadTo(kAlarms + 2 * 864 - 1);

  const auto quantity = [](int at) {
    return Element("QUANTITY",
                   Value("ID", at) + Value("PARAMETER", at + 4) + Value("PHASE_ID", at + 8));
  };
  const auto setting = [&](int at, const std::string& value, const std::string& duration) {
    return quantity(at) + Value("CONDITION_ID", at + 12) + Value("QUANTITY_VALUE", value) +
           Value("TRIGGER_DURATION", duration);
  };
  std::string statistic = Value("TRANSITION_SERIAL_NUMBER", 0);
  int at = 4;
  for (const std::string end : {"START", "END"}) {
    for (const std::string group :
         {"UIF", "COMBINED_POWER", "FUNDAMENTAL_POWER", "NONFUNDAMENTAL_POWER", "FLICKER", "SYM",
          "HARMONICS", "INTERHARMONICS", "SIGNALING", "TEMPERATURE", "ALL"}) {
      statistic += Counts("GROUP_" + group + "_" + end + "_SERIAL_NUMBERS", at, 9);
      at += 36;
    }
  }
  EXPECT_EQ(
      Element("INFORMATION",
              Value("NUM", 1) + Element("SETTINGS", setting(4, "5.000000E-01", "3.000000E+00"))) +
          Element(
              "TRANSITIONS",
              Element("TRANSITION",
                      Element("STATISTIC", statistic) +
                          Element("SETTING", setting(796, "2.530000E+02", "2.500000E-01")) +
                          Value("STATE_ID", 820) + Value("ALARM_GROUP_ID", 824) + quantity(828) +
                          Value("QUANTITY_VALUE", "-") + Time("TIME_STAMP", "9.25"))),
      BodyOf(Converted(file)));
  file.resize(kAlarms + 864);
  ExpectTruncationIsHarmless(file);
}

TEST(Alarms, CountsOfSettingsStayInTheirRoom) {
  const struct {
    int32_t stored, shown, settings;
  } cases[] = {{0, 0, 0},         {7, 7, 7},   {8, 7, 7},
               {INT32_MAX, 7, 7}, {-1, -1, 0}, {INT32_MIN, INT32_MIN, 0}};
  for (const auto& c : cases) {
    const std::string body = BodyOf(Converted(LongHeadOf(7).Put(3192, c.stored).PadTo(kAlarms)));
    int settings = 0;
    for (size_t at = 0; (at = body.find("<SETTINGS>", at)) != std::string::npos; ++at) ++settings;
    EXPECT_EQ(c.settings, settings) << c.stored;
    EXPECT_EQ(0u, body.find("<INFORMATION>\r\n" + Value("NUM", c.shown))) << c.stored;
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
    const auto fraction_at = [&](size_t at) {
      return static_cast<float>(at) / static_cast<float>(file.size());
    };
    fractions.clear();
    answer = 0;
    const std::string whole = Converted(file, progress);
    EXPECT_EQ((std::vector{fraction_at(first + size), fraction_at(first + 2 * size)}), fractions);
    fractions.clear();
    answer = -1;
    const std::string body = BodyOf(Converted(file, progress));
    EXPECT_EQ(1u, fractions.size());
    EXPECT_EQ(body.find("<TRANSITION>"), body.rfind("<TRANSITION>")) << type;
    EXPECT_LT(body.size(), whole.size());
  }
}

}  // namespace
}  // namespace quorvex::test
