// Signalling, transients and inrush: whole documents and damaged files.
#include <gtest/gtest.h>

#include <algorithm>

#include "elements.h"
#include "support.h"

namespace quorvex::test {
namespace {

Bytes SignallingHead(int32_t packets) {
  Bytes head;
  head.PutTime(0, 2024, 3, 7, 14, 5, 1.5).Put(16, 0.25f).Put<int32_t>(20, -7).Put(24, kNone);
  head.Put<int32_t>(28, 12).Put(32, packets).Put<int32_t>(36, 99).Put<int32_t>(40, -8);
  return head.PadTo(48);
}

// Years count on from 2000, levels from 1000 through all arrays, flags down from -1.
Bytes SignallingRecording(int32_t packets) {
  Bytes record = SignallingHead(packets);
  for (int i = 0; i < packets; ++i) record.PutTime(record.size(), 2000 + i, 0, 0, 0, 0, 0);
  for (int i = 0; i < 12 * packets; ++i) record.Put(record.size(), static_cast<float>(1000 + i));
  for (int i = 1; i <= packets; ++i) record.Put(record.size(), -i);
  return record;
}

std::string RecordForm(int32_t packets, const std::string& data) {
  return "SIGNALLING_RECORD{ SIGNALLING_PARAMS{ TIME_FIRST_PACKET@1.5 TIME_STEP=2.500000E-01 "
         "TRIGGER=-7 DURATION=12 PACKETS_NUM=" +
         std::to_string(packets) + " TRESHOLD=- FLAG=-8 } SIGNALLING_DATA{ " + data + " } } ";
}

constexpr char kNoPackets[] =
    "END_TIMES{ } U1_SIG1{ } U1_SIG2{ } U2_SIG1{ } U2_SIG2{ } U3_SIG1{ } U3_SIG2{ } U12_SIG1{ } "
    "U12_SIG2{ } U23_SIG1{ } U23_SIG2{ } U31_SIG1{ } U31_SIG2{ } flags{ }";

TEST(Signalling, WholeDocument) {
  Bytes file = HeadOf(9);
  EXPECT_EQ(Xml("RECORDS{ }"), BodyOf(Converted(file)));
  file.PutBytes(3072, SignallingRecording(1)).PutBytes(3072 + 48 + 68, SignallingHead(0));
  const std::string data = R"(
    END_TIMES{ END_TIME{ year=2000 month=0 day=0 hour=0 min=0 sec=0.0 } }
    U1_SIG1{ U=1.000000E+03 } U1_SIG2{ U=1.001000E+03 } U2_SIG1{ U=1.002000E+03 }
    U2_SIG2{ U=1.003000E+03 } U3_SIG1{ U=1.004000E+03 } U3_SIG2{ U=1.005000E+03 }
    U12_SIG1{ U=1.006000E+03 } U12_SIG2{ U=1.007000E+03 } U23_SIG1{ U=1.008000E+03 }
    U23_SIG2{ U=1.009000E+03 } U31_SIG1{ U=1.010000E+03 } U31_SIG2{ U=1.011000E+03 }
    flags{ FLAG=-1 })";
  EXPECT_EQ(Xml("RECORDS{ " + RecordForm(1, data) + RecordForm(0, kNoPackets) + "}"),
            BodyOf(Converted(file)));
}

// The document of a file with one whole head at least, made the plain way: whole arrays in memory,
// each read into a block that keeps what the read leaves out.
std::string PlainlyConverted(const Bytes& file) {
  size_t at = 3072;
  const auto read = [&](Bytes* block) {
    const size_t got = std::min(block->size(), file.size() - at);
    std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(at), got, block->begin());
    at += got;
  };
  std::string records, name;
  Bytes head(48);
  for (size_t position = 3072; position < file.size();) {
    read(&head);
    const auto packets = Load<uint32_t>(&head[32]);
    Bytes levels(4 * packets), flags(4 * packets), times(16 * packets);
    std::string data;
    std::istringstream names(kNoPackets);
    for (std::string brace; names >> name >> brace; data += "} ") {
      Bytes& block = name == "END_TIMES{" ? times : name == "flags{" ? flags : levels;
      read(&block);
      data += name;
      for (size_t i = 0; i < block.size(); i += block.size() / packets) {
        const std::string year = std::to_string(Load<uint16_t>(&block[i]));
        if (&block == &times) {
          data += " END_TIME{ year=" + year + " month=0 day=0 hour=0 min=0 sec=0.0 }";
        } else if (&block == &levels) {
          data += " U=" + FloatE(Load<float>(&block[i]));
        } else {
          data += " FLAG=" + std::to_string(Load<int32_t>(&block[i]));
        }
      }
      data += " ";
    }
    records += RecordForm(static_cast<int32_t>(packets), data);
    position += 48 + 68 * packets;
  }
  return Xml("RECORDS{ " + records + "}");
}

TEST(Signalling, CutOffAnywhere) {
  Bytes file = HeadOf(9);
  file.PutBytes(3072, SignallingRecording(2)).PutBytes(3256, SignallingRecording(3));
  ExpectTruncationIsHarmless(file);
  for (; file.size() >= 3072 + 48; file.pop_back()) {
    ASSERT_EQ(PlainlyConverted(file), BodyOf(Converted(file))) << file.size();
  }
  // Arrays of several pieces, cut off in their midst.
  constexpr int32_t kPackets = 2500;
  const Bytes large = HeadOf(9).PutBytes(3072, SignallingRecording(kPackets));
  const size_t arrays = 3072 + 48 + 16 * kPackets;
  for (const size_t size : {large.size(), large.size() - 5, arrays + 48 * kPackets, arrays + 9001,
                            arrays + 5 * 4 * kPackets + 4097, arrays, arrays - 30001}) {
    const Bytes cut(large.begin(), large.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_TRUE(PlainlyConverted(cut) == BodyOf(Converted(cut))) << size;
  }
}

TEST(Signalling, CountsThatCannotBe) {
  constexpr int32_t kSize = 3072 + 2 * 48;
  const std::string next = RecordForm(0, kNoPackets);
  const std::pair<int32_t, std::string> cases[] = {
      {-1, next}, {INT32_MIN, next}, {kSize + 1, ""}, {INT32_MAX, ""}};
  for (const auto& [packets, behind] : cases) {
    Bytes file = HeadOf(9).PutBytes(3072, SignallingHead(packets));
    EXPECT_EQ(Xml("RECORDS{ " + RecordForm(packets, kNoPackets) + behind + "}"),
              BodyOf(Converted(file.PutBytes(3120, SignallingHead(0)))));
  }
  const Bytes file = HeadOf(9).PutBytes(3072, SignallingHead(kSize)).PadTo(kSize);
  EXPECT_TRUE(PlainlyConverted(file) == BodyOf(Converted(file))) << "the most that is believed";
}

TEST(Transients, EntriesWithTheirSettings) {
  const auto entry = [](const std::string& name, const std::string& settings) {
    return Xml("TRANSIENT_RECORD{ name=" + name + " ") + settings + "</TRANSIENT_RECORD>\r\n";
  };
  const auto records = [](const std::string& entries) {
    return "<RECORDS>\r\n" + entries + "</RECORDS>\r\n";
  };
  Bytes file = HeadOf(12).Put<uint8_t>(8 + 13, 4).PutText(3072, "part<1>");
  std::string document = Converted(file);
  const size_t from = document.find("<UIF_PARAMS>");
  std::string settings = document.substr(from, document.find("<RECORDS>") - from);
  EXPECT_EQ(records(entry("part?1?", settings)), BodyOf(document))
      << "an entry without settings shows the file's";

  file.PutText(3072, std::string(99, 'N') + "\n" + std::string(13, '\0') + "\6");
  file.PadTo(3072 + 3164).PutText(3072 + 3164, std::string(10, 'M'));
  settings.replace(settings.find("<CONNECTION>4"), 13, "<CONNECTION>6");
  const std::string end = std::string(89, 'N') + "\\";
  EXPECT_EQ(records(entry("NNNNNNNNNN" + end, settings) + entry("MMMMMMMMMM" + end, settings)),
            BodyOf(Converted(file)));
  file.resize(3072 + 3164);
  ExpectTruncationIsHarmless(file);
}

TEST(Inrush, EntriesAndTheRestOfOne) {
  Bytes file = HeadOf(13).PutTime(3072, 2024, 3, 7, 14, 5, 0.5).Put<int32_t>(3088, -1);
  file.Put(3092, 136.5f).PutTime(3096, 2023, 3, 7, 14, 5, 2.0).Put<int32_t>(3112, 3);
  file.Put(3116, kNone);
  ExpectTruncationIsHarmless(file);
  file.Put<uint8_t>(3120, 0xE8);  // the first byte of a third: its year
  EXPECT_EQ(Xml("RECORDS{ INRUSH_RECORD{ START_TIME@0.5 CHANNEL=-1 MAX_I=1.365000E+02 } "
                "INRUSH_RECORD{ START_TIME{ year=2023 month=3 day=7 hour=14 min=5 sec=2.0 } "
                "CHANNEL=3 MAX_I=- } INRUSH_RECORD{ START_TIME@2.0 CHANNEL=3 MAX_I=- } }"),
            BodyOf(Converted(file)));
}

}  // namespace
}  // namespace quorvex::test
