// Voltage quality, averages and settings files.
#include <gtest/gtest.h>

#include "outline.h"

namespace quorvex::test {
namespace {

// Where the first of three voltages has its values; no RMS voltage is at 0.
struct Layout {
  uint32_t interval, size, rms, thd, pst, orders, harmonics;
  const char* components;
};
constexpr Layout kLayouts[] = {{600, 536, 0, 16, 520, 41, 28, "2199023255551"},
                               {900, 248, 16, 28, 232, 16, 40, "65535"},
                               {60, 544, 16, 28, 532, 41, 40, "2199023255551"}};

Bytes QualityRecording(const Layout& layout, uint8_t connection, const Bytes& records) {
  Bytes file = HeadOf(16);
  file.Put(8 + 844, layout.interval).Put(8 + 13, connection).PutBytes(3072, records);
  return file;
}

std::string QualityOutline(const Layout& layout, bool lines) {
  const char* const names[][3] = {{"u1", "u2", "u3"}, {"u12", "u23", "u31"}};
  std::string voltages, spectra;
  for (uint32_t i = 0; i < 3; ++i) {
    const std::string name = names[lines ? 1 : 0][i];
    const auto value = [&](const char* of, uint32_t at) { return of + std::to_string(at + 4 * i); };
    voltages += "U[" + name + "]{ " + (layout.rms != 0 ? value("rms:", layout.rms) : "") +
                value(" thd:", layout.thd) + value(" Pst:", layout.pst) + " } ";
    spectra += name + "h:" + std::to_string(layout.harmonics + 4 * layout.orders * i) + " ";
  }
  return "RECORD_RESULTS{ LAST_TIME!0 VOLTAGES{ @rms " + voltages + "} HARMONICS_U{ @HARM_U/" +
         std::to_string(layout.orders) + ",1,1 " + spectra + "} }";
}

TEST(VoltageQuality, WholeRecordsOfEachLayoutAndConnection) {
  for (const Layout& layout : kLayouts) {
    const Bytes record = Filled(layout.size);
    for (uint8_t connection = 0; connection <= 8; ++connection) {
      const bool lines = connection == 2 || connection == 4 || connection == 7;
      const std::string document = Converted(QualityRecording(layout, connection, record));
      ExpectSame(InRecords(Expected(record, QualityOutline(layout, lines))), BodyOf(document));
      const std::string content = "<HARM_CONTENT>64</HARM_CONTENT>\r\n<HARM_COMPONENTS>";
      EXPECT_EQ(1u, CountOf(document, content + layout.components + "<"));
    }
  }
  ExpectTruncationIsHarmless(QualityRecording(kLayouts[1], 3, Filled(248)));
}

std::vector<float> fractions;
int32_t OnProgress(float fraction) {
  fractions.push_back(fraction);
  return fraction > 0.6f ? -1 : 0;
}

TEST(VoltageQuality, EndOfFileAndProgress) {
  const Layout& layout = kLayouts[1];
  const auto records = [&](size_t bytes, QuorvexProgress progress) {
    const Bytes file = QualityRecording(layout, 3, Bytes(bytes));
    return CountOf(Converted(file, progress), "<RECORD_RESULTS>");
  };
  EXPECT_EQ(0u, records(0, nullptr));
  EXPECT_EQ(3u, records(3 * 248 + 247, nullptr));
  EXPECT_EQ(3u, records(3 * 248 + 247, OnProgress)) << "the file counts as four";
  EXPECT_EQ(std::vector<float>({0.25f, 0.5f, 0.75f}), fractions);
  EXPECT_EQ(2u, records(3 * 248, OnProgress));
}

TEST(SettingsOnly, NotEvenAnEmptyListOfRecords) {
  EXPECT_EQ("", BodyOf(Converted(HeadOf(4).PadTo(5000))));
  ExpectTruncationIsHarmless(HeadOf(4));
}

constexpr uint32_t kSummary = 7688;

std::string SummaryOutline(const std::string& name) {
  const std::string power =
      "Ep%0 Eq%8 P:16 Qc:24 Qi:20 Sn:28 SfundU:32 MAX_POWER_1{ P:40 DATE_TIME!48 } "
      "MAX_POWER_2{ P:64 DATE_TIME!72 } MAX_POWER_3{ P:88 DATE_TIME!96 } } ";
  const std::string harmonics = " thd:0 avg:4*51 } ", interharmonics = " avg:4*51 } ";
  std::string outline = name + "{ NUM#0 ";
  uint32_t line_at = 8;
  for (const char* line : {"L1", "L2", "L3", "TN"}) {
    outline += line + ("{ +" + std::to_string(line_at)) + " MOTOR{ +32 " + power +
               "GENERATOR{ +144 " + power;
    if (name == "REC_AVG") {
      outline += "HARMONICS{ uh{ +256" + harmonics + "uhPr{ +464" + harmonics + "uih{ +1088" +
                 interharmonics + "uihPr{ +1296" + interharmonics + "ih{ +672" + harmonics +
                 "ihPr{ +880" + harmonics + "iih{ +1504" + interharmonics + "iihPr{ +1712" +
                 interharmonics + "} ";
    }
    outline += "} ";
    line_at += 1920;
  }
  return outline + "}";
}

// The file's summaries by number: what a short file lacks is the one before.
TEST(Averages, WholeDocumentAndShortFiles) {
  const Bytes all = Filled(3 * kSummary).Put(40, double{kNone});
  Bytes summaries[3];
  for (size_t i = 0; i < 3; ++i) {
    const auto from = all.begin() + static_cast<std::ptrdiff_t>(i * kSummary);
    summaries[i].assign(from, from + kSummary);
  }
  for (const auto& [present, shown] : {std::pair{3u, "012"}, {2u, "011"}, {1u, "000"}}) {
    Bytes file = HeadOf(11).PutBytes(3072, all);
    file.resize(3072 + present * kSummary);
    std::string expected;
    for (const auto& [name, number] :
         {std::pair{"REC_AVG", shown[0]}, {"REC_AVG_MAX", shown[1]}, {"REC_AVG_LAST", shown[2]}}) {
      expected += Expected(summaries[number - '0'], SummaryOutline(name));
    }
    ExpectSame(expected, BodyOf(Converted(file)));
  }
  EXPECT_EQ(3u, CountOf(Converted(HeadOf(11)), "<TN>\r\n<MOTOR>\r\n<Ep>0.000000E+00<"));
  ExpectTruncationIsHarmless(HeadOf(11).PadTo(3072 + 64));
}

}  // namespace
}  // namespace quorvex::test
