// Texts made from several settings, and the companion setting file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sstream>

#include "settings/setting_file.h"
#include "settings/settings_table.h"
#include "support.h"
#include "support/file.h"
#include "support/memory.h"
#include "xml/plan.h"

namespace quorvex::test {
namespace {

std::string BlockOf(const UifParams& settings, bool harmonics) {
  XmlWriter* writer = CreateWriter(nullptr);
  RenderOnce(writer, kSettingsBlock, kAllCases, &settings, {.number = {harmonics ? 1 : 0}});
  EXPECT_EQ(0, writer->depth);
  const std::string text(writer->buffer, writer->position);
  CloseWriter(writer);
  return text;
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
      std::replace(element.begin(), element.end(), '~', ' ');
      const size_t equals = element.find('=');
      EXPECT_EQ(element.substr(equals + 1), ValuesOf(block, element.substr(0, equals)))
          << c.settings;
    }
  }
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
      {"R000012345X.REC", 0, "R12345PAR.REC"},
      {"R00000000X.REC", 0, "R0000PAR.REC"},
  };
  for (const auto& c : cases) {
    char name[kMaxPath + 1];
    EXPECT_TRUE(BuildSettingFileName(c.record, name, "PAR", c.type));
    EXPECT_STREQ(c.name, name);
  }
  char name[kMaxPath + 1];
  for (const size_t size : {504, 505}) {  // "0000PAR" is added
    const std::string path(size, 'a');
    EXPECT_EQ(size == 504, BuildSettingFileName(path.c_str(), name, "PAR", 0));
  }
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

}  // namespace
}  // namespace quorvex::test
