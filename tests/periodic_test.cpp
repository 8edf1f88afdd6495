// Voltage quality, averages and settings files.
#include <gtest/gtest.h>

#include "model.h"

namespace quorvex::test {
namespace {

struct Layout {
  uint32_t interval, size;
  const char *components, *outline;  // 1, 2 and 3 stand for the names of the voltages
};
constexpr Layout kLayouts[] = {
    {600, 536, "2199023255551",
     "U[1]{ thd:16 Pst:520 } U[2]{ thd:20 Pst:524 } U[3]{ thd:24 Pst:528 } } "
     "HARMONICS_U{ @HARM_U/41,1,1 1h:28 2h:192 3h:356 }"},
    {900, 248, "65535",
     "U[1]{ rms:16 thd:28 Pst:232 } U[2]{ rms:20 thd:32 Pst:236 } U[3]{ rms:24 thd:36 Pst:240 } } "
     "HARMONICS_U{ @HARM_U/16,1,1 1h:40 2h:104 3h:168 }"},
    {60, 544, "2199023255551",
     "U[1]{ rms:16 thd:28 Pst:532 } U[2]{ rms:20 thd:32 Pst:536 } U[3]{ rms:24 thd:36 Pst:540 } } "
     "HARMONICS_U{ @HARM_U/41,1,1 1h:40 2h:204 3h:368 }"},
};

Bytes QualityRecording(const Layout& layout, uint8_t connection, const Bytes& records) {
  Bytes file = HeadOf(16);
  file.Put(8 + 844, layout.interval).Put(8 + 13, connection).PutBytes(3072, records);
  return file;
}

// "1h:40" and "[1]" with the voltage's name.
std::string Named(const std::string& outline, bool lines) {
  std::string named;
  for (size_t i = 0; i < outline.size(); ++i) {
    const char before = i > 0 ? outline[i - 1] : ' ';
    const bool name = before == '[' || (before == ' ' && outline[i + 1] == 'h');
    const char* const names[] = {lines ? "u12" : "u1", lines ? "u23" : "u2", lines ? "u31" : "u3"};
    const bool digit = outline[i] >= '1' && outline[i] <= '3';
    named += name && digit ? names[outline[i] - '1'] : std::string(1, outline[i]);
  }
  return "RECORDS{ RECORD_RESULTS{ LAST_TIME! VOLTAGES{ @rms " + named + " } }";
}

TEST(VoltageQuality, WholeRecordsOfEachLayoutAndConnection) {
  for (const Layout& layout : kLayouts) {
    const Bytes record = FillRecord(layout.size, {0});
    for (uint8_t connection = 0; connection <= 8; ++connection) {
      const bool lines = connection == 2 || connection == 4 || connection == 7;
      const std::string document = Converted(QualityRecording(layout, connection, record));
      EXPECT_EQ(Expected(record, Named(layout.outline, lines)), BodyOf(document))
          << layout.interval << ", connection " << int{connection};
      const std::string content = "<HARM_CONTENT>64</HARM_CONTENT>\r\n<HARM_COMPONENTS>";
      EXPECT_EQ(1u, CountOf(document, content + layout.components + "<"));
    }
  }
  ExpectTruncationIsHarmless(QualityRecording(kLayouts[1], 3, FillRecord(248, {0})));
}

std::vector<float> fractions;
int32_t OnProgress(float fraction) {
  fractions.push_back(fraction);
  return fraction > 0.6f ? -1 : 0;
}

TEST(VoltageQuality, EndOfFileProgressAndSettingFile) {
  const Layout& layout = kLayouts[1];
  const auto count = [](const std::string& document) {
    return CountOf(document, "<RECORD_RESULTS>");
  };
  Bytes records(3 * 248 + 247);  // counts as four
  const Bytes file = QualityRecording(layout, 3, records);
  EXPECT_EQ(3u, count(Converted(file)));
  EXPECT_EQ(3u, count(Converted(file, OnProgress)));
  EXPECT_EQ(std::vector<float>({0.25f, 0.5f, 0.75f}), fractions);
  records.resize(3 * 248);
  fractions.clear();
  EXPECT_EQ(2u, count(Converted(QualityRecording(layout, 3, records), OnProgress)));
  EXPECT_EQ("<RECORDS>\r\n</RECORDS>\r\n", BodyOf(Converted(QualityRecording(layout, 3, {}))));
  const std::string path = InFolder("Q0016PAR.REC");
  WriteFile(path, QualityRecording(kLayouts[2], 3, {}));
  EXPECT_EQ(1u, count(Converted(file, nullptr, "Q0016VQ.REC"))) << "one of 544 bytes";
  std::remove(path.c_str());
}

TEST(SettingsOnly, NoRecordsAndNoSettingFile) {
  Bytes file = HeadOf(4);
  file.Put<uint32_t>(8 + 844, 1234).PadTo(5000);
  const std::string alone = Converted(file);
  EXPECT_EQ("", BodyOf(alone));
  EXPECT_EQ(1u, CountOf(alone, "<INTERVAL>1234<"));
  const std::string path = InFolder("S0004PAR.REC");
  WriteFile(path, HeadOf(4));
  EXPECT_EQ(alone, Converted(file, nullptr, "S0004SET.REC"));
  std::remove(path.c_str());
  ExpectTruncationIsHarmless(HeadOf(4));
}

constexpr uint32_t kSummary = 7688;

// A summary with other floats for each `seed`.
Bytes Summary(float seed) {
  Bytes summary = FillRecord(kSummary, {});
  for (uint32_t line = 8; line < kSummary; line += 1920) {
    summary.Put(line + 260, seed);
    for (const uint32_t block : {line + 32, line + 144}) {
      summary.Put(block, block == 40 ? static_cast<double>(kNone) : 1234.5)
          .Put(block + 8, -2.5e100);
      summary.Put(block + 16, seed);
      for (const uint32_t peak : {48u, 72u, 96u}) {
        summary.PutTime(block + peak, 2024, 3, 7, 14, 5, 9.25);
      }
    }
  }
  return summary;
}

std::string SummaryOutline(const std::string& name) {
  const std::string power =
      " Eq=-2.500000E+100 @f P:16 Qc:24 Qi:20 Sn:28 SfundU:32 MAX_POWER_1{ P:40 DATE_TIME! } "
      "MAX_POWER_2{ P:64 DATE_TIME! } MAX_POWER_3{ P:88 DATE_TIME! } } ";
  std::string outline = name + "{ @4 NUM:0 ", orders;
  for (uint32_t i = 1; i <= 51; ++i) orders += "avg:" + std::to_string(4 * i) + " ";
  uint32_t line_at = 8;
  for (const char* line : {"L1", "L2", "L3", "TN"}) {
    const auto at = [&](uint32_t place) { return "{ +" + std::to_string(line_at + place) + " "; };
    outline += line + ("{ MOTOR" + at(32)) + (line_at == 8 ? "Ep=-" : "Ep=1.234500E+03") + power +
               "GENERATOR" + at(144) + "Ep=1.234500E+03" + power;
    if (name == "REC_AVG") {
      const std::string thd = "thd:0 " + orders + "} ";
      outline += "HARMONICS{ uh" + at(256) + thd + "uhPr" + at(464) + thd + "uih" + at(1088) +
                 orders + "} uihPr" + at(1296) + orders + "} ih" + at(672) + thd + "ihPr" +
                 at(880) + thd + "iih" + at(1504) + orders + "} iihPr" + at(1712) + orders + "} } ";
    }
    outline += "} ";
    line_at += 1920;
  }
  return outline + "}";
}

// The file's summaries by number: what a short file lacks is the one before.
TEST(Averages, WholeDocumentAndShortFiles) {
  const Bytes summaries[] = {Summary(1), Summary(2), Summary(3)};
  for (const auto& [present, shown] : {std::pair{3u, "012"}, {2u, "011"}, {1u, "000"}}) {
    Bytes file = HeadOf(11);
    for (size_t i = 0; i < present; ++i) file.PutBytes(file.size(), summaries[i]);
    std::string expected;
    for (const auto& [name, number] :
         {std::pair{"REC_AVG", shown[0]}, {"REC_AVG_MAX", shown[1]}, {"REC_AVG_LAST", shown[2]}}) {
      expected += Expected(summaries[number - '0'], SummaryOutline(name));
    }
    EXPECT_TRUE(expected == BodyOf(Converted(file))) << present;
  }
  EXPECT_EQ(3u, CountOf(Converted(HeadOf(11)), "<TN>\r\n<MOTOR>\r\n<Ep>0.000000E+00<"));
  Bytes partial = HeadOf(11);
  ExpectTruncationIsHarmless(partial.PadTo(3072 + 64));
}

}  // namespace
}  // namespace quorvex::test
