// What checksums of documents do not explain: which files are recordings, ranges, progress, counts
// that cannot be.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "support.h"
#include "support/memory.h"

namespace quorvex::test {
namespace {

TEST(Recordings, FilesThatAreNone) {
  for (const Bytes& file : {Bytes{}, Bytes{1, 0, 0, 0}, Bytes{1, 0, 0, 0, 0, 0, 0, 0},
                            Bytes{1, 0, 0, 0, 19, 0, 0, 0}, Bytes{1, 0, 0, 0, 15, 1, 0, 0}}) {
    EXPECT_EQ("", Converted(file));
  }
}

// A document to the last byte: the first session has an element, the second none, the third one of
// the three that it announces.
TEST(Recordings, AWholeDocument) {
  Bytes file = Bytes().PutSettings(0, "0#-7 4#15 40#5 44#1 48#-1 52#2 56#3 60#2147483647");
  file.PutTime(8, 2024, 3, 7, 14, 5, 59.9999999).PutTime(24, 65535, 255, 0, 1, 2, -0.5);
  file.PutSettings(0, "100#-2147483648 140#3 144#4 148#5 152#6 156#7").PadTo(160 + 15);
  const std::string no_time =
      "<year>0</year>\r\n<month>0</month>\r\n<day>0</day>\r\n<hour>0</hour>\r\n<min>0</min>\r\n"
      "<sec>0.0</sec>\r\n";
  const std::string no_times = "<startTime>\r\n" + no_time + "</startTime>\r\n<endTime>\r\n" +
                               no_time + "</endTime>\r\n<sessionId>0</sessionId>\r\n";
  EXPECT_EQ(
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n"
      "<Project xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
      "xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\">\r\n"
      "<FILE_HEADER>\r\n<FILE_VERSION>-7</FILE_VERSION>\r\n<FILE_TYPE>15</FILE_TYPE>\r\n"
      "</FILE_HEADER>\r\n"
      "<SESSION>\r\n<SESSION_HEADER>\r\n<startTime>\r\n<year>2024</year>\r\n<month>3</month>\r\n"
      "<day>7</day>\r\n<hour>14</hour>\r\n<min>5</min>\r\n<sec>59.999999</sec>\r\n</startTime>\r\n"
      "<endTime>\r\n<year>65535</year>\r\n<month>255</month>\r\n<day>0</day>\r\n<hour>1</hour>\r\n"
      "<min>2</min>\r\n<sec>0.-5</sec>\r\n</endTime>\r\n<sessionId>5</sessionId>\r\n"
      "<elementsNum>1</elementsNum>\r\n</SESSION_HEADER>\r\n<ELEMENT>\r\n"
      "<elementType>-1</elementType>\r\n<fromScreen>2</fromScreen>\r\n<toScreen>3</toScreen>\r\n"
      "<num>2147483647</num>\r\n</ELEMENT>\r\n</SESSION>\r\n"
      "<SESSION>\r\n<SESSION_HEADER>\r\n" +
          no_times +
          "<elementsNum>-2147483648</elementsNum>\r\n</SESSION_HEADER>\r\n</SESSION>\r\n"
          "<SESSION>\r\n<SESSION_HEADER>\r\n" +
          no_times +
          "<elementsNum>3</elementsNum>\r\n</SESSION_HEADER>\r\n<ELEMENT>\r\n"
          "<elementType>4</elementType>\r\n<fromScreen>5</fromScreen>\r\n<toScreen>6</toScreen>\r\n"
          "<num>7</num>\r\n</ELEMENT>\r\n</SESSION>\r\n</Project>\r\n",
      Converted(file));
}

TEST(Recordings, FilesThatEndBeforeTheirFirstRecord) {
  for (const uint32_t type : {1u, 2u, 3u, 9u, 10u, 12u, 13u, 14u, 16u, 17u, 18u}) {
    for (const size_t size : {8u, 100u, 3071u, 3072u}) {
      Bytes file = HeadOf(type);
      file.resize(size);
      EXPECT_EQ("<RECORDS>\r\n</RECORDS>\r\n", BodyOf(Converted(file))) << type << ' ' << size;
    }
  }
  EXPECT_EQ("", BodyOf(Converted(HeadOf(4).PadTo(5000)))) << "not even a list";
  EXPECT_EQ(24u, CountOf(Converted(HeadOf(11)), "<Ep>0.000000E+00<")) << "summaries of zeros";
}

TEST(Recordings, SettingFilesReplaceTheSettingsOfSomeTypes) {
  const std::string path = InFolder("T0007PAR.REC");
  const std::set<uint32_t> replaced = {1, 2, 3, 5, 14, 16, 17};
  for (uint32_t type = 1; type <= 18; ++type) {
    if (type == 15) continue;  // sessions know no settings
    WriteFile(path, HeadOf(99).Put<uint8_t>(8 + 13, 6));
    const Bytes file = HeadOf(type).Put<uint8_t>(8 + 13, 1).Put<uint8_t>(128 + 13, 1).PadTo(3364);
    const std::string document = Converted(file, nullptr, "T0007X.REC");
    EXPECT_EQ(replaced.count(type) != 0 ? "6" : "1", ValuesOf(document, "CONNECTION").substr(0, 1))
        << type;
  }
  std::remove(path.c_str());
}

std::vector<float> fractions;
size_t stop_after = SIZE_MAX;
int32_t OnProgress(float fraction) {
  fractions.push_back(fraction);
  return fractions.size() >= stop_after ? -1 : 0;
}

// A negative answer stops behind the record just written.
TEST(Recordings, ProgressIsThePositionAndStops) {
  const struct {
    uint32_t type;
    size_t first, size;
    const char* element;
  } cases[] = {{2, 3072, 32 + 832 + 2884, "<RECORD_RESULTS>"},
               {3, 3072, 32, "<RECORD_RESULTS>"},
               {7, 3364, 864, "<TRANSITION>"},
               {8, 3224, 264, "<TRANSITION>"},
               {14, 3072, 32, "<RECORD_RESULTS>"},
               {17, 3072, 32 + 4 * 3000, "<RECORD_RESULTS>"}};
  for (const auto& c : cases) {
    const Bytes file = HeadOf(c.type).PadTo(c.first + 2 * c.size + 31);
    const auto whole = static_cast<float>(file.size());
    const float expected[] = {static_cast<float>(c.first + c.size) / whole,
                              static_cast<float>(c.first + 2 * c.size) / whole};
    for (const size_t records : {2, 1}) {
      stop_after = records == 2 ? SIZE_MAX : 1;
      fractions.clear();
      EXPECT_EQ(records, CountOf(Converted(file, OnProgress), c.element)) << c.type;
      EXPECT_EQ(std::vector<float>(expected, expected + records), fractions) << c.type;
    }
  }
  stop_after = SIZE_MAX;
}

// Records of voltage quality are counted, a last one cut short as a whole one.
TEST(Recordings, ProgressOfVoltageQuality) {
  const Bytes file = HeadOf(16).Put(8 + 844, 900).PadTo(3072 + 3 * 248 + 247);
  for (const size_t stop : {size_t{9}, size_t{2}}) {
    fractions.clear();
    stop_after = stop;
    EXPECT_EQ(std::min<size_t>(stop, 3), CountOf(Converted(file, OnProgress), "<RECORD_RESULTS>"));
    std::vector<float> expected = {0.25f, 0.5f, 0.75f};
    expected.resize(std::min<size_t>(stop, 3));
    EXPECT_EQ(expected, fractions);
  }
  stop_after = SIZE_MAX;
}

constexpr uint32_t kFull = 40448, kCompact = 1536;

// The RMS voltages of the records that a range writes; each record's tells its number.
std::string ConvertedRange(const Bytes& file, uint32_t first, uint32_t last, bool progress) {
  const std::string input = InFolder("R0007X.REC"), output = InFolder("range.xml");
  WriteFile(input, file);
  fractions.clear();
  const uint32_t before = TrackedBytes();
  QuorvexConvertPerPartes(input.c_str(), output.c_str(), first, last,
                          progress ? OnProgress : nullptr);
  EXPECT_EQ(before, TrackedBytes());
  std::string numbers;
  const std::string records = ReadFile(output);
  const std::string tag = "<U phase=\"u1\">\r\n<rms>\r\n<rms>";
  for (size_t at = 0; (at = records.find(tag, at)) != std::string::npos;) {
    at += tag.size();
    numbers += records[at];
  }
  return numbers;
}

Bytes NumberedRecords(int count) {
  Bytes file = HeadOf(1).Put(8 + 976, 1);
  for (int i = 1; i <= count; ++i) {
    file.Put(file.size() + 72, static_cast<float>(i))
        .PadTo(3072 + static_cast<size_t>(i) * kCompact);
  }
  return file;
}

TEST(General, Ranges) {
  const Bytes file = NumberedRecords(3).PadTo(3072 + 4 * kCompact - 1);  // and one cut short
  const float infinite = INFINITY, part = 1.0f / 4.0f;
  const struct {
    uint32_t first, last;
    const char* records;
    std::vector<float> progress;
  } cases[] = {
      {1, 0xFFFFFFFF, "123", {part, 2 * part, 3 * part}},  // the file counts as four
      {2, 3, "23", {0.5f, 1.0f}},
      {2, 2, "2", {1.0f}},
      {3, 9, "3", {part}},
      {3, 2, "3", {infinite}},  // the first is converted before the range is looked at
      {4, 9, "", {}},
      {0, 3, "", {}},
      {0x80000000, 0xFFFFFFFF, "", {}},
      {(1u << 23) + 1, 1u << 23, "1", {infinite}},  // 2^23 records are 3 * 2^32 bytes: back to 0
      {(1u << 23) + 2, (1u << 23) + 3, "23", {0.5f, 1.0f}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.records, ConvertedRange(file, c.first, c.last, true)) << c.first << '-' << c.last;
    EXPECT_EQ(c.progress, fractions) << c.first << '-' << c.last;
  }
  stop_after = 2;
  EXPECT_EQ("12", ConvertedRange(file, 1, 0xFFFFFFFF, true)) << "stopped behind the second";
  stop_after = SIZE_MAX;
}

TEST(General, ProfilesWithoutALayout) {
  for (const uint32_t profile : {3u, 4u, 6u, 0xFFFFFFFFu}) {
    const Bytes file = NumberedRecords(1).Put(8 + 976, profile);
    EXPECT_EQ("", ConvertedRange(file, 1, 0xFFFFFFFF, false));
    EXPECT_EQ("", ConvertedRange(file, 2, 6, true));
    // The last index stands for the record size: (4608 - 3072) / 6 rounds to 256, the range is 5.
    EXPECT_EQ(std::vector<float>({0.2f, 0.4f, 0.6f, 0.8f, 1.0f}), fractions);
    stop_after = 3;
    ConvertedRange(file, 1, 0xFFFFFFFF, true);
    EXPECT_EQ(3u, fractions.size());
    stop_after = SIZE_MAX;
  }
}

// No value is infinity (00 00 80 7F), a zero of either sign stays as it is; a current's fourth
// float is left out.
TEST(General, SpectraInBase64) {
  Bytes file = HeadOf(1);
  file.Put(3072 + 12216, kNone).Put(3072 + 12220, 0.5f).Put(3072 + 12224, -0.0f);
  file.Put(3072 + 15480 + 12, 9.0f).Put(3072 + 15480 + 16, 0.5f).PadTo(3072 + kFull);
  const std::string document = Converted(file);
  EXPECT_EQ(1u, CountOf(document, "<HARM_U phase=\"u1h\">\r\nAACAfwAAAD8AAACAAAAAAAAA"));
  EXPECT_EQ(1u, CountOf(document, "<HARM_I phase=\"i1h\">\r\nAAAAAAAAAAAAAAAAAAAAPwAA"));
}

// What counts say, and what documents have of it.
TEST(Counts, BeyondTheirRoomOrBelowNone) {
  const struct {
    uint32_t type;
    const char* counts;  // from the start of the file
    size_t size;
    const char* element;
    size_t written;
  } cases[] = {
      {1, "5008#-2147483648", 3072 + kFull, "freq", 0},
      {1, "5008#-1", 3072 + kFull, "freq", 0},
      {1, "5008#1", 3072 + kFull, "freq", 1},
      {1, "5008#750", 3072 + kFull, "freq", 750},
      {1, "5008#751", 3072 + kFull, "freq", 750},
      {2, "21.6 3092#5000", 3072 + 22948, "v", 2 * 2 * 2048 + 8 * 51},
      {2, "21.6 3092#2048", 3072 + 22948, "v", 2 * 2 * 2048 + 8 * 51},
      {2, "21.6 3092#-1", 3072 + 22948, "v", 8 * 51},
      {2, "3936#91", 3072 + 3748, "VALUE", 90},
      {2, "3936#-1", 3072 + 3748, "VALUE", 0},
      {2, "2568.1 3936#331", 3072 + 11428, "VALUE", 330},
      {2, "2568.7 3936#200", 3072 + 11428, "VALUE", 200},
      {5, "1448#3392", 3392, "v", 4 * 3392},  // as many samples as bytes, but no more
      {5, "1448#3393", 3392, "v", 0},
      {5, "1448#-1", 3392, "v", 0},
      {5, "1448#-2147483648", 3392, "v", 0},
      {6, "3072#1073741824", 3072 + 79516, "v", 7 * (2 * 2048 + 4 * 51)},
      {6, "70972#1073741824", 3072 + 79516, "VALUE", 330},
      {6, "70972#-1", 3072 + 79516, "VALUE", 0},
      {7, "3192#8", 3364, "TRIGGER_DURATION", 7},
      {7, "3192#7", 3364, "TRIGGER_DURATION", 7},
      {7, "3192#-1", 3364, "TRIGGER_DURATION", 0},
      {4, "640#8", 3072, "TRIGGER_DURATION", 7},
      {4, "640#1", 3072, "TRIGGER_DURATION", 1},
      {17, "3096#1501", 3072 + 12032, "v", 4 * 1500},
      {17, "3096#-1", 3072 + 12032, "v", 0},
  };
  for (const auto& c : cases) {
    const Bytes file = HeadOf(c.type).PutSettings(0, c.counts).PadTo(c.size);
    const std::string values = ValuesOf(Converted(file), c.element);
    const auto blanks = std::count(values.begin(), values.end(), ' ');
    EXPECT_EQ(c.written, values.empty() ? 0 : static_cast<size_t>(blanks) + 1)
        << c.type << c.counts;
  }
}

TEST(Transients, Names) {
  Bytes file = HeadOf(12).PutText(3072, "part<1>").PadTo(3072 + 3164);
  file.PutText(3072 + 3164, std::string(99, 'N') + "\n" + std::string(13, '\0') + "\6");
  const std::string document = Converted(file.PadTo(3072 + 2 * 3164));
  EXPECT_EQ("part?1? " + std::string(99, 'N') + "\\", ValuesOf(document, "name"));
  EXPECT_EQ("0 0 6", ValuesOf(document, "CONNECTION")) << "the name has no end but its width";
}

}  // namespace
}  // namespace quorvex::test
