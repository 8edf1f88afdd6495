// Snapshots: a whole record, the channels of every connection, counts and files cut short.
#include <gtest/gtest.h>

#include "record_sketch.h"

namespace quorvex::test {
namespace {

constexpr size_t kChannels = 32 + 832 + 4 + 2880;

size_t CountIn(const std::string& text, const std::string& what) {
  size_t count = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
  return count;
}

// A snapshot of a phase and the neutral with two samples and two half-cycle readings.
Sketch PhaseAndNeutral() {
  Sketch s;
  s.Add(0, "timeStart@0 timeStep!16 numUsedSamples#24").record.Put<int32_t>(20, 2);
  s.Open("RESULTS");
  AddTotals(&s, 32 + 8);
  s.AddGroup("SYM", 32 + 632, kSymmetry).record.Put<int32_t>(864, 2);
  s.Open("RMS12").AddGroup("Vrms12", 868, "VALUE:0 PHASE_NUMBER#8 TIME_STAMP@16");
  s.AddGroup("Vrms12", 900, "VALUE!0 PHASE_NUMBER#8 TIME_STAMP@16").Close("RMS12");
  s.Add(32, "TEMP:696 FLAG#824").Close("RESULTS");
  AddChannel(&s, "L1", kChannels,
             {{"1.250000E+02", "-1.000000E+01"}, {"1.250000E+02", "-1.000000E+01"}});
  AddChannel(&s, "N", kChannels + 9600,
             {{"6.250000E+01", "-5.000000E+00"}, {"1.000000E+03", "-8.000000E+01"}});
  s.record.PadTo(kChannels + 2 * 9600);
  return s;
}

TEST(Snapshots, WholeDocument) {
  const Sketch s = PhaseAndNeutral();
  Bytes file = ScaledHead(2, 1);
  file.PutBytes(3072, s.record).PutBytes(3072 + s.record.size(), Bytes(31));
  EXPECT_EQ(Lines("<RECORDS>\n<RECORD_RESULTS>\n" + s.text + "</RECORD_RESULTS>\n</RECORDS>\n"),
            BodyOf(Converted(file)));
  EXPECT_EQ("<RECORDS>\r\n</RECORDS>\r\n", BodyOf(Converted(HeadOf(2))));
  ExpectTruncationIsHarmless(file);
}

// Each channel of a document with the first sample of both scopes.
std::string ChannelsIn(const std::string& body) {
  std::string found;
  for (size_t at = body.find("</RESULTS>"); (at = body.find("<UL>", at)) != std::string::npos;) {
    const size_t label = body.rfind('<', at - 1);
    found += body.substr(label, at - 2 - label);
    for (const char* scope : {"<SCOPE_U>\r\n<v>", "<SCOPE_I>\r\n<v>"}) {
      at = body.find(scope, at) + 14;
      found.append(" ").append(body, at, 8);
    }
    found += "; ";
  }
  return found;
}

// Gains tell the channels' settings apart, a sample of 80 in all blocks.
TEST(Snapshots, ChannelsOfEveryConnection) {
  const std::string lines =
      "<L12> 1.000000 1.000000; <L23> 2.000000 2.000000; <L31> 4.000000 4.000000; ";
  const std::string cases[] = {
      "",
      "<L1> 1.000000 1.000000; <N> 5.000000 8.000000; ",
      lines,
      "<L1> 1.000000 1.000000; <L2> 2.000000 2.000000; <L3> 4.000000 4.000000; "
      "<N> 5.000000 8.000000; ",
      lines,
      "<L1> 1.000000 1.000000; <L2> 2.000000 2.000000; <N> 5.000000 8.000000; ",
      "<L1> 1.000000 1.000000; <INV> 5.000000 8.000000; ",
      lines + "<INV> 5.000000 8.000000; ",
      "",
  };
  for (uint8_t connection = 0; connection < std::size(cases); ++connection) {
    Bytes file = ScaledHead(2, connection);
    file.Put<int32_t>(3072 + 20, 1).PadTo(3072 + kChannels);
    for (size_t i = 0; i < CountIn(cases[connection], "<"); ++i) {
      const size_t block = 3072 + kChannels + i * 9600;
      file.Put<int16_t>(block + 80, 80).Put<int16_t>(block + 4176, 80).PadTo(block + 9600);
    }
    file.PadTo(file.size() + 32);  // the next snapshot starts where the channels end
    const std::string body = BodyOf(Converted(file));
    EXPECT_EQ(cases[connection], ChannelsIn(body.substr(0, body.find("</RECORD_RESULTS>"))))
        << int{connection};
    EXPECT_EQ(2u, CountIn(body, "<RECORD_RESULTS>")) << int{connection};
  }
}

TEST(Snapshots, CountsBeyondTheirArrays) {
  const struct {
    uint8_t reduced;
    int32_t count;
    size_t readings, samples;
  } cases[] = {{0, 5000, 90, 2048}, {1, 5000, 330, 2048}, {7, 200, 200, 200}, {0, -1, 0, 0}};
  for (const auto& c : cases) {
    Bytes file = ScaledHead(2, 6);
    file.Put(2568, c.reduced).Put(3072 + 20, c.count).Put(3072 + 864, c.count);
    file.Put(3072 + 24, c.count).PadTo(3072 + 868 + (c.reduced != 0 ? 10560 : 2880) + 2 * 9600);
    const std::string body = BodyOf(Converted(file));
    EXPECT_EQ(c.readings, CountIn(body, "<Vrms12>")) << c.count;
    EXPECT_EQ(4 * c.samples + 8 * 51, CountIn(body, "<v>")) << c.count;
    EXPECT_EQ(1u, CountIn(body, "<RECORD_RESULTS>")) << c.count;
    const std::string shown = std::string("<numUsedSamples>") + std::to_string(c.count) + "<";
    EXPECT_EQ(1u, CountIn(body, shown)) << "the stored number";
  }
}

// One buffer serves all channels and one all snapshots.
TEST(Snapshots, FileCutShortRepeatsEarlierBytes) {
  const Sketch s = PhaseAndNeutral();
  Bytes file = ScaledHead(2, 1);
  file.PutBytes(3072, s.record);
  Bytes second(s.record.begin(), s.record.begin() + 32);
  second.PutBytes(32, Bytes(664)).Put(32 + 696, 19.5f);  // ends behind the temperature
  file.PutBytes(3072 + s.record.size(), second);
  const std::string body = BodyOf(Converted(file));
  const std::string record = body.substr(body.rfind("<RECORD_RESULTS>"));
  EXPECT_NE(std::string::npos, record.find("<TEMP>1.950000E+01</TEMP>\r\n<FLAG>856</FLAG>"));
  EXPECT_EQ(2u, CountIn(record, "<Vrms12>")) << "the count before";
  char neutral_voltage[32];
  std::snprintf(neutral_voltage, sizeof neutral_voltage, "<UL>%E</UL>",
                static_cast<double>(kChannels + 9600 + 4));
  EXPECT_EQ(2u, CountIn(record, neutral_voltage)) << "the channel read last, under both labels";
}

int calls;
float fraction;
int32_t StopAfterSecond(float done) {
  fraction = done;
  return ++calls == 2 ? -1 : 0;
}

TEST(Snapshots, StopWhereTheHostSays) {
  Bytes file = ScaledHead(2, 0);
  file.PadTo(3072 + 4 * kChannels);
  calls = 0;
  EXPECT_EQ(2u, CountIn(Converted(file, StopAfterSecond), "<RECORD_RESULTS>"));
  EXPECT_EQ(static_cast<float>(3072 + 2 * kChannels) / static_cast<float>(file.size()), fraction);
}

// The setting file beside a recording decides; live results have none.
TEST(Snapshots, SettingFileBesideTheRecording) {
  for (const uint32_t type : {2u, 3u, 5u, 6u, 14u, 17u}) {
    WriteFile(InFolder("T0007PAR.REC"), ScaledHead(type, 6).Put<int32_t>(1448, 1));
    Bytes file = HeadOf(type);
    file.Put<int32_t>(3072 + 24, 1).PadTo(3072 + 32 + 832 + 2884 + 9600);
    const std::string document = Converted(file, nullptr, "T0007X.REC");
    const bool replaced = document.find("<CONNECTION>6<") != std::string::npos;
    EXPECT_EQ(type != 6, replaced) << type;
    EXPECT_EQ(type == 2, document.find("<INV>") != std::string::npos) << type;
    EXPECT_EQ(type == 5 || type == 17 ? 4u : 0u, CountIn(document, "<v>") % 51)
        << type << ": waveforms beside spectra";
  }
  std::remove(InFolder("T0007PAR.REC").c_str());
}

}  // namespace
}  // namespace quorvex::test
