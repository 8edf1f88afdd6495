// Signalling, transients and inrush: whole documents and damaged files.
#include <gtest/gtest.h>

#include <algorithm>

#include "elements.h"
#include "support.h"

namespace quorvex::test {
namespace {

const char* const kLevels[] = {"U1_SIG1",  "U1_SIG2",  "U2_SIG1",  "U2_SIG2",
                               "U3_SIG1",  "U3_SIG2",  "U12_SIG1", "U12_SIG2",
                               "U23_SIG1", "U23_SIG2", "U31_SIG1", "U31_SIG2"};

Bytes SignallingHead(int32_t packets) {
  Bytes head;
  head.PutTime(0, 2024, 3, 7, 14, 5, 1.5).Put(16, 0.25f).Put<int32_t>(20, -7).Put(24, kNone);
  head.Put<int32_t>(28, 12).Put(32, packets).Put<int32_t>(36, 99).Put<int32_t>(40, -8);
  return head.PadTo(48);
}

// Levels count on from 1000 through all arrays, flags down from -1.
Bytes SignallingRecording(int32_t packets) {
  Bytes recording = SignallingHead(packets);
  for (int i = 0; i < packets; ++i) {
    recording.PutTime(recording.size(), 2024, 3, 7, 14, 5, i % 60);
  }
  for (int i = 0; i < 12 * packets; ++i) recording.Put(recording.size(), 1000.0f + float(i));
  for (int i = 1; i <= packets; ++i) recording.Put<int32_t>(recording.size(), -i);
  return recording;
}

std::string ParamsText(int32_t packets) {
  return Element("SIGNALLING_PARAMS",
                 Time("TIME_FIRST_PACKET", "1.5") + Value("TIME_STEP", "2.500000E-01") +
                     Value("TRIGGER", -7) + Value("DURATION", 12) + Value("PACKETS_NUM", packets) +
                     Value("TRESHOLD", "-") + Value("FLAG", -8));
}

std::string EmptyData() {
  std::string data = Element("END_TIMES", "");
  for (const char* name : kLevels) data += Element(name, "");
  return Element("SIGNALLING_DATA", data + Element("flags", ""));
}

TEST(Signalling, WholeDocument) {
  Bytes file = HeadOf(9);
  EXPECT_EQ(Element("RECORDS", ""), BodyOf(Converted(file)));
  file.PutBytes(3072, SignallingRecording(2)).PutBytes(3072 + 48 + 136, SignallingHead(0));
  std::string data = Element("END_TIMES", Time("END_TIME", "0.0") + Time("END_TIME", "1.0"));
  for (int i = 0; i < 12; ++i) {
    data +=
        Element(kLevels[i], Value("U", FloatE(1000 + 2 * i)) + Value("U", FloatE(1001 + 2 * i)));
  }
  data = Element("SIGNALLING_DATA", data + Element("flags", Value("FLAG", -1) + Value("FLAG", -2)));
  EXPECT_EQ(Element("RECORDS", Element("SIGNALLING_RECORD", ParamsText(2) + data) +
                                   Element("SIGNALLING_RECORD", ParamsText(0) + EmptyData())),
            BodyOf(Converted(file)));
}

// The document of a recording of at least 3072 bytes and with honest counts, made the plain way:
// whole arrays in memory, each read into a block that keeps what the read leaves out.
std::string PlainlyConverted(const Bytes& file) {
  size_t at = 3072;
  const auto read = [&](Bytes* block) {
    const size_t got = std::min(block->size(), file.size() - at);
    std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(at), got, block->begin());
    at += got;
  };
  const auto time = [](const std::string& name, const uint8_t* from) {
    const auto micros = static_cast<int64_t>(Load<double>(from + 8) * 1e6);
    return Element(name, Value("year", Load<uint16_t>(from)) + Value("month", from[2]) +
                             Value("day", from[3]) + Value("hour", from[4]) +
                             Value("min", from[5]) +
                             Value("sec", std::to_string(micros / 1000000) +
                                              (micros % 1000000 == 500000 ? ".5" : ".0")));
  };
  const auto number = [](const std::string& name, float value) {
    return Value(name, value == kNone ? "-" : FloatE(value));
  };
  std::string records;
  Bytes head(48);
  for (size_t position = 3072; position < file.size();) {
    read(&head);
    const auto* h = head.data();
    const auto packets = Load<uint32_t>(h + 32);
    Bytes levels(4 * packets), flags(4 * packets), times(16 * packets);
    read(&times);
    std::string data, entries;
    for (size_t i = 0; i < packets; ++i) entries += time("END_TIME", &times[16 * i]);
    data += Element("END_TIMES", entries);
    for (const char* name : kLevels) {
      read(&levels);
      entries.clear();
      for (size_t i = 0; i < packets; ++i) entries += number("U", Load<float>(&levels[4 * i]));
      data += Element(name, entries);
    }
    read(&flags);
    entries.clear();
    for (size_t i = 0; i < packets; ++i) entries += Value("FLAG", Load<int32_t>(&flags[4 * i]));
    data += Element("flags", entries);
    records += Element(
        "SIGNALLING_RECORD",
        Element("SIGNALLING_PARAMS",
                time("TIME_FIRST_PACKET", h) + number("TIME_STEP", Load<float>(h + 16)) +
                    Value("TRIGGER", Load<int32_t>(h + 20)) +
                    Value("DURATION", Load<int32_t>(h + 28)) + Value("PACKETS_NUM", packets) +
                    number("TRESHOLD", Load<float>(h + 24)) +
                    Value("FLAG", Load<int32_t>(h + 40))) +
            Element("SIGNALLING_DATA", data));
    position += 48 + 68 * packets;
  }
  return Element("RECORDS", records);
}

TEST(Signalling, CutOffAnywhere) {
  Bytes file = HeadOf(9);
  file.PutBytes(3072, SignallingRecording(2)).PutBytes(3256, SignallingRecording(3));
  ExpectTruncationIsHarmless(file);
  for (; file.size() >= 3072; file.pop_back()) {
    ASSERT_EQ(PlainlyConverted(file), BodyOf(Converted(file))) << file.size();
  }
}

TEST(Signalling, LongRecordingsCutOffAreReadInPieces) {
  constexpr int32_t kPackets = 2500;
  const Bytes file = HeadOf(9).PutBytes(3072, SignallingRecording(kPackets));
  const size_t arrays = 3072 + 48 + 16 * kPackets;
  for (const size_t size : {file.size(), file.size() - 5, arrays + 48 * kPackets, arrays + 9001,
                            arrays + 5 * 4 * kPackets + 4097, arrays, arrays - 30001}) {
    const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_TRUE(PlainlyConverted(cut) == BodyOf(Converted(cut))) << size;
  }
}

TEST(Signalling, CountsThatCannotBe) {
  constexpr int32_t kSize = 3072 + 2 * 48;
  const std::string next = Element("SIGNALLING_RECORD", ParamsText(0) + EmptyData());
  const struct {
    int32_t packets;
    std::string behind;
  } cases[] = {{-1, next}, {INT32_MIN, next}, {kSize + 1, ""}, {INT32_MAX, ""}};
  for (const auto& c : cases) {
    Bytes file = HeadOf(9).PutBytes(3072, SignallingHead(c.packets));
    file.PutBytes(3120, SignallingHead(0));
    EXPECT_EQ(Element("RECORDS",
                      Element("SIGNALLING_RECORD", ParamsText(c.packets) + EmptyData()) + c.behind),
              BodyOf(Converted(file)));
  }
  Bytes file = HeadOf(9).PutBytes(3072, SignallingHead(kSize)).PadTo(kSize);
  EXPECT_TRUE(PlainlyConverted(file) == BodyOf(Converted(file))) << "the most that is believed";
}

// The settings block that follows `from`.
std::string SettingsIn(const std::string& text, size_t from) {
  const std::string end = "</UIF_PARAMS>\r\n";
  const size_t at = text.find("<UIF_PARAMS>", from);
  return text.substr(at, text.find(end, at) + end.size() - at);
}

TEST(Transients, EntriesWithTheirSettings) {
  Bytes file = HeadOf(12).Put<uint8_t>(8 + 13, 4);
  file.PutText(3072, "part <1>");
  std::string document = Converted(file);
  EXPECT_EQ(Element("RECORDS", Element("TRANSIENT_RECORD",
                                       Value("name", "part ?1?") + SettingsIn(document, 0))),
            BodyOf(document))
      << "an entry without settings shows the file's";

  file.PutText(3072, std::string(99, 'N') + "\n" + std::string(13, '\0') + "\6");
  file.PadTo(3072 + 3164).PutText(3072 + 3164, std::string(10, 'M'));
  document = Converted(file);
  const std::string file_settings = SettingsIn(document, 0);
  std::string settings = file_settings;
  settings.replace(settings.find("<CONNECTION>4"), 13, "<CONNECTION>6");
  const std::string name = std::string(89, 'N') + "\\";
  EXPECT_EQ(Element("RECORDS",
                    Element("TRANSIENT_RECORD", Value("name", "NNNNNNNNNN" + name) + settings) +
                        Element("TRANSIENT_RECORD", Value("name", "MMMMMMMMMM" + name) + settings)),
            BodyOf(document));
  file.resize(3072 + 3164);
  ExpectTruncationIsHarmless(file);
}

TEST(Inrush, EntriesAndTheRestOfOne) {
  Bytes file = HeadOf(13).PutTime(3072, 2024, 3, 7, 14, 5, 0.5).Put<int32_t>(3088, -1);
  file.Put(3092, 136.5f).PutTime(3096, 2024, 3, 7, 14, 5, 2.0).Put<int32_t>(3112, 3);
  file.Put(3116, kNone);
  const std::string second = Time("START_TIME", "2.0") + Value("CHANNEL", 3) + Value("MAX_I", "-");
  std::string rest = second;
  rest.replace(rest.find("2024"), 4, "2025");
  ExpectTruncationIsHarmless(file);
  EXPECT_EQ(
      Element("RECORDS", Element("INRUSH_RECORD", Time("START_TIME", "0.5") + Value("CHANNEL", -1) +
                                                      Value("MAX_I", "1.365000E+02")) +
                             Element("INRUSH_RECORD", second) + Element("INRUSH_RECORD", rest)),
      BodyOf(Converted(file.Put<uint8_t>(3120, 0xE9))));
}

}  // namespace
}  // namespace quorvex::test
