// Voltage quality, averages and settings files.
#include <gtest/gtest.h>

#include "model.h"

namespace quorvex::test {
namespace {

struct Layout {
  uint32_t interval, size;
  bool rms;
  uint32_t thd, spectra, orders, pst;
};
constexpr Layout kLayouts[] = {{600, 536, false, 16, 28, 41, 520},
                               {900, 248, true, 28, 40, 16, 232},
                               {0, 544, true, 28, 40, 41, 532},
                               {60, 544, true, 28, 40, 41, 532}};

Bytes QualityRecording(const Layout& layout, uint8_t connection, const Bytes& records) {
  Bytes file = HeadOf(16);
  file.Put(8 + 844, layout.interval).Put(8 + 13, connection).PutBytes(3072, records);
  return file;
}

TEST(VoltageQuality, WholeRecordsOfEachLayoutAndConnection) {
  for (const Layout& layout : kLayouts) {
    const Bytes record = FillRecord(layout.size, {0});
    for (uint8_t connection = 0; connection <= 8; ++connection) {
      const bool lines = connection == 2 || connection == 4 || connection == 7;
      const char* const names[] = {lines ? "u12" : "u1", lines ? "u23" : "u2",
                                   lines ? "u31" : "u3"};
      Model m(record);
      m.Open("RECORDS").Open("RECORD_RESULTS").Time("LAST_TIME").Open("VOLTAGES");
      for (uint32_t i = 0; i < 3; ++i) {
        m.Open("U", names[i]);
        if (layout.rms) m.List("rms 16", "rms 0", 4 * i);
        m.List("thd 0", "rms 0", layout.thd + 4 * i).List("Pst 0", "rms 0", layout.pst + 4 * i);
        m.Close("U");
      }
      m.Close("VOLTAGES").Open("HARMONICS_U");
      for (uint32_t i = 0; i < 3; ++i) {
        const uint32_t at = layout.spectra + 4 * layout.orders * i;
        m.Spectrum("HARM_U", std::string(names[i]) + "h", at, layout.orders, 1, 1);
      }
      m.Close("HARMONICS_U").Close("RECORD_RESULTS").Close("RECORDS");
      const std::string document = Converted(QualityRecording(layout, connection, record));
      EXPECT_EQ(m.text, BodyOf(document)) << layout.interval << ", connection " << int{connection};
      EXPECT_EQ("64", TextAt(document, {"HARM_CONTENT"}));
      EXPECT_EQ(layout.interval == 900 ? "65535" : "2199023255551",
                TextAt(document, {"HARM_COMPONENTS"}));
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
    size_t records = 0;
    for (size_t at = 0; (at = document.find("<RECORD_RESULTS>", at)) != std::string::npos; ++at) {
      ++records;
    }
    return records;
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
  EXPECT_EQ("1234", TextAt(alone, {"RECORD_PARAMS", "INTERVAL"}));
  const std::string path = InFolder("S0004PAR.REC");
  WriteFile(path, HeadOf(4));
  EXPECT_EQ(alone, Converted(file, nullptr, "S0004SET.REC"));
  std::remove(path.c_str());
  ExpectTruncationIsHarmless(HeadOf(4));
}

constexpr uint32_t kSummary = 7688;

void Power(Model* m, const std::string& name, const std::string& ep, uint32_t at) {
  m->Open(name).Line("Ep", ep).Line("Eq", "-2.500000E+100");
  for (const auto& [value, place] : Pairs("P 16, Qc 24, Qi 20, Sn 28, SfundU 32")) {
    m->Float(value, at + place);
  }
  for (const auto& [peak, place] : Pairs("MAX_POWER_1 40, MAX_POWER_2 64, MAX_POWER_3 88")) {
    m->Open(peak).Float("P", at + place).Time("DATE_TIME").Close(peak);
  }
  m->Close(name);
}

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

void SummaryText(Model* m, const std::string& name) {
  m->Open(name).Whole("NUM", 0);
  for (const auto& [line, at] : Pairs("L1 8, L2 1928, L3 3848, TN 5768")) {
    m->Open(line);
    Power(m, "MOTOR", line == "L1" ? "-" : "1.234500E+03", at + 32);
    Power(m, "GENERATOR", "1.234500E+03", at + 144);
    if (name == "REC_AVG") {
      m->Open("HARMONICS");
      for (const auto& [spectrum, place] : Pairs("uh 256, uhPr 464, uih 1088, uihPr 1296, ih 672, "
                                                 "ihPr 880, iih 1504, iihPr 1712")) {
        m->Open(spectrum);
        if (spectrum[1] == 'h') m->Float("thd", at + place);
        for (uint32_t i = 0; i < 51; ++i) m->Float("avg", at + place + 4 + 4 * i);
        m->Close(spectrum);
      }
      m->Close("HARMONICS");
    }
    m->Close(line);
  }
  m->Close(name);
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
      Model m(summaries[number - '0']);
      SummaryText(&m, name);
      expected += m.text;
    }
    EXPECT_TRUE(expected == BodyOf(Converted(file))) << present;
  }
  const std::string empty = BodyOf(Converted(HeadOf(11)));
  EXPECT_EQ("0.000000E+00", TextAt(empty, {"REC_AVG_LAST", "TN", "GENERATOR", "P"}));
  Bytes partial = HeadOf(11);
  ExpectTruncationIsHarmless(partial.PadTo(3072 + 64));
}

}  // namespace
}  // namespace quorvex::test
