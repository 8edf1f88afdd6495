// What checksums of documents do not explain: which files are recordings, what becomes of files cut
// short, counts that cannot be, ranges, progress, scales.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>

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

Bytes operator+(const Bytes& first, const Bytes& second) {
  return Bytes(first).PutBytes(first.size(), second);
}
Bytes Part(const Bytes& bytes, size_t from, size_t size) {
  const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(from);
  return {begin, begin + static_cast<std::ptrdiff_t>(size)};
}
// `bytes` in front of what is left of `before`.
Bytes Over(const Bytes& before, const Bytes& bytes) { return Bytes(before).PutBytes(0, bytes); }

// One buffer takes each record, or a part of it, after the other, so what a file cut short lacks is
// what was there before: the document is that of a file which has these bytes.
TEST(CutFiles, HoldWhatWasReadBefore) {
  const auto expect_same = [](const Bytes& head, const Bytes& cut, const Bytes& filled) {
    ExpectSame(BodyOf(Converted(head + filled)), BodyOf(Converted(head + cut)));
  };
  const Bytes some = Filled(40, 9000);
  // The front of a snapshot is kept apart from its channels: of these the last before is kept.
  const Bytes snapshot = Filled(3748 + 2 * 9600).PutSettings(0, "20#2 864#2");
  const Bytes front = Filled(700, 5000).PutSettings(0, "20#2"),
              channel = Part(snapshot, 13348, 9600);
  expect_same(ScaledHead(2, 1), snapshot + front,
              snapshot + Over(Part(snapshot, 0, 3748), front) + channel + channel);
  const Bytes series = Filled(32 + 4 * 3000).PutSettings(0, "24#1500");
  const Bytes samples = Filled(32 + 3000 + 70, 7000).PutSettings(0, "24#1400");
  expect_same(ScaledHead(17, 1), series + samples, series + Over(series, samples));
  const Bytes live = Filled(20000).PutSettings(0, "0#2");
  expect_same(ScaledHead(6, 3), live, Bytes(live).PadTo(79516));
  const Bytes changes = Filled(2 * 4088);
  expect_same(HeadOf(10), changes + some, changes + Over(Part(changes, 4088, 4088), some));
  const Bytes inrush = Filled(2 * 24);
  expect_same(HeadOf(13), inrush + Part(some, 0, 1),
              inrush + Over(Part(inrush, 24, 24), Part(some, 0, 1)));
  const Bytes meter = Filled(144);
  expect_same(HeadOf(18).PutSettings(0, "21.3"), meter + some, meter + Over(meter, some));
  const Bytes summary = Filled(7688);
  expect_same(HeadOf(11), summary, summary + summary + summary);
  expect_same(HeadOf(11), summary + some, summary + Over(summary, some) + Over(summary, some));
  // The settings of an entry that is cut off are the file's in the first, and the entry's before.
  const Bytes file_settings = Part(HeadOf(12).PutSettings(0, "21.4"), 8, 3064);
  const Bytes name = Bytes().PutText(0, "part<1>").PadTo(100);
  const Bytes entry = Over(name, Bytes()) + Part(HeadOf(12).PutSettings(0, "21.6"), 8, 3064);
  const Bytes head = Over(HeadOf(12), {}).PutBytes(8, file_settings);
  expect_same(head, Part(name, 0, 60), name + file_settings);
  expect_same(head, entry + Part(some, 0, 10), entry + Over(entry, Part(some, 0, 10)));
}

Bytes CaptureFile(uint8_t connection, int32_t samples) {
  Bytes file = HeadOf(5);
  file.Put<int32_t>(16, 1).Put<int32_t>(2576, 1).Put<uint8_t>(21, connection).Put(1448, samples);
  for (const size_t at : {136, 280, 424, 568}) file.Put(at, 1000.0f);
  return file;
}

// The same of waveforms, which are of several pieces each; the one buffer is zero at first.
TEST(CutFiles, CapturesHoldTheWaveformBefore) {
  constexpr uint32_t kSamples = 9000, kSize = 4 * kSamples;
  const Bytes samples = Filled(8 * kSize);
  const auto expect_same = [&](size_t present, const Bytes& first, const Bytes& others) {
    const Bytes head = CaptureFile(1, kSamples), free(2 * kSize);
    ExpectSame(BodyOf(Converted(head + first + free + others + others + free + others)),
               BodyOf(Converted(head + Part(samples, 0, present))));
  };
  const Bytes first = Part(samples, 0, kSize);
  // The cut goes through a sample of the second waveform, in slot 3.
  constexpr size_t kCut = 4 * 4999 + 2;
  expect_same(3 * kSize + kCut, first, Over(first, Part(samples, 3 * kSize, kCut)));
  const Bytes half = Part(samples, 0, 4 * 4500).PadTo(kSize);
  expect_same(4 * 4500, half, half);
}

// A file of signalling recordings as if it had all that it lacks: heads keep what was in the head
// before, the arrays of levels what was in the one before, all else is zero.
Bytes WithAllPackets(const Bytes& file) {
  Bytes whole = Part(file, 0, 3072);
  size_t at = 3072;
  const auto read = [&](Bytes* block) {
    const size_t got = std::min(block->size(), file.size() - std::min(file.size(), at));
    std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(at), got, block->begin());
    at += block->size();
    whole.PutBytes(whole.size(), *block);
  };
  Bytes head(48);
  while (at < file.size()) {
    read(&head);
    const auto packets = Load<uint32_t>(&head[32]);
    Bytes times(16 * packets), levels(4 * packets), flags(4 * packets);
    read(&times);
    for (int i = 0; i < 12; ++i) read(&levels);
    read(&flags);
  }
  return whole;
}

Bytes SignallingHead(int32_t packets) { return Filled(48).Put(32, packets); }

TEST(CutFiles, SignallingCutAnywhere) {
  const auto expect_same = [](const Bytes& file) {
    ExpectSame(BodyOf(Converted(WithAllPackets(file))), BodyOf(Converted(file)));
    EXPECT_FALSE(HasFailure()) << file.size();
  };
  Bytes file = HeadOf(9) + SignallingHead(2) + Filled(2 * 68) + SignallingHead(0) +
               SignallingHead(3) + Filled(3 * 68, 500);
  for (; file.size() >= 3072 + 48; file.pop_back()) expect_same(file);
  // Arrays of several pieces, cut off in their midst.
  constexpr int32_t kPackets = 2500;
  const Bytes large = HeadOf(9) + SignallingHead(kPackets) + Filled(kPackets * 68);
  const size_t arrays = 3072 + 48 + 16 * kPackets;
  for (const size_t size : {large.size() - 5, arrays + 48 * kPackets, arrays + 9001,
                            arrays + 5 * 4 * kPackets + 4097, arrays, arrays - 30001}) {
    expect_same(Part(large, 0, size));
  }
  constexpr int32_t kMost = 3072 + 48;  // packets: as many as the file has bytes
  expect_same(HeadOf(9) + SignallingHead(kMost));
}

// A count that cannot be means no packets; beyond one that is too high there is nothing to find.
TEST(Signalling, CountsThatCannotBe) {
  for (const int32_t packets : {-1, INT32_MIN, 3072 + 2 * 48 + 1, INT32_MAX}) {
    const std::string document = Converted(HeadOf(9) + SignallingHead(packets) + SignallingHead(0));
    EXPECT_EQ(std::to_string(packets) + (packets < 0 ? " 0" : ""),
              ValuesOf(document, "PACKETS_NUM"));
    EXPECT_EQ(packets < 0 ? 2u : 1u, CountOf(document, "<END_TIMES>\r\n</END_TIMES>"));
  }
}

TEST(Transients, Names) {
  Bytes file = HeadOf(12).PutText(3072, "part<1>").PadTo(3072 + 3164);
  file.PutText(3072 + 3164, std::string(99, 'N') + "\n" + std::string(13, '\0') + "\6");
  const std::string document = Converted(file.PadTo(3072 + 2 * 3164));
  EXPECT_EQ("part?1? " + std::string(99, 'N') + "\\", ValuesOf(document, "name"));
  EXPECT_EQ("0 0 6", ValuesOf(document, "CONNECTION")) << "the name has no end but its width";
}

// What one step of a sample comes to, by channel; `none` is a value only where it is not scaled.
TEST(Scales, OfChannelReadings) {
  const struct {
    uint8_t channel;
    float volts, amperes;
    const char *u, *i;
  } cases[] = {
      {0, 2, 3, "2.000000E+00", "3.000000E+00"},
      {0, kNone, kNone, "-", "-"},
      {1, 2, 4, "2.500000E+00", "5.000000E+00"},
      {1, kNone, kNone, "-1.250000E+37", "-1.250000E+37"},
      {2, 2, 4, "5.000000E+00", "1.000000E+01"},
      {3, 2, 4, "1.000000E+01", "2.000000E+01"},
      {4, 2, 4, "1.250000E+00", "8.000000E+01"},
      {4, kNone, kNone, "-6.250000E+36", "-"},
      {5, 2, 4, "2.000000E+00", "4.000000E+00"},
      {255, 2, kNone, "2.000000E+00", "-"},
  };
  for (const auto& c : cases) {
    const Bytes reading = Bytes(32).Put(16, c.channel).Put(20, c.volts).Put(24, c.amperes);
    const std::string document = Converted(ScaledHead(3, 3) + reading);
    EXPECT_EQ(c.u, ValuesOf(document, "U"));
    EXPECT_EQ(c.i, ValuesOf(document, "I"));
  }
}

// Samples of one step on each channel and, of the neutral's current, in which range is asked.
TEST(Scales, OfSnapshotsLiveResultsAndSeries) {
  const struct {
    uint32_t type;
    size_t samples, step, current;  // of a voltage, to the next channel's, to the current's
    const char* values;
  } cases[] = {
      {2, 3072 + 3748 + 80, 9600, 4096, "1.25 1.25 2.5 2.5 5 5 0.625 10"},
      {6, 3072 + 8 + 80, 9600, 4096, "1.25 1.25 2.5 2.5 5 5 0.625 20 1.25 1.25 2.5 2.5 5 5"},
      {17, 3072 + 32, 3000, 4 * 3000, "1.25 2.5 5 0.625 1.25 2.5 5 20"},
  };
  for (const auto& c : cases) {
    Bytes file = ScaledHead(c.type, 3).PadTo(3072 + 32 + 8 * 3000);
    file.PutSettings(3072, c.type == 2 ? "20#1" : c.type == 6 ? "0#1" : "24#1");
    for (size_t i = 0; i < (c.type == 6 ? 7 : 4); ++i) {
      file.Put<int16_t>(c.samples + i * c.step, 1)
          .Put<int16_t>(c.samples + i * c.step + c.current, 1);
    }
    std::istringstream samples(ValuesOf(Converted(file.PadTo(3072 + 79516 * (c.type == 6))), "v"));
    std::string values;
    for (double value; samples >> value;) {  // harmonics are zeros
      char text[16];
      std::snprintf(text, sizeof text, "%g ", value);
      if (value != 0) values += text;
    }
    EXPECT_EQ(c.values + std::string(" "), values) << c.type;
  }
}

// What samples of 1, 4, 5 and 8 on u1, un, i1 and in come to.
TEST(Scales, OfCaptures) {
  constexpr double kRoot = 1.7320508;
  const struct {
    uint8_t kind;
    int32_t prim;
    uint8_t type1, type_n, trafo, feeders;
    double expected[4];
  } cases[] = {
      {0, 1, 0, 0, 0, 0, {1, 4, 5, 16}},
      {1, 1, 0, 0, 0, 0, {kRoot, 4 * kRoot, 5, 16}},
      {2, 3, 0, 0, 0, 0, {kRoot, 4 * kRoot, 5, 16}},
      {3, -2, 0, 0, 0, 0, {-2, -8, 5, 16}},
      {0, 1, 0, 0, 1, 0, {1, 4, 20, 64}},
      {0, 1, 0, 0, 1, 1, {1, 4, 60, 192}},
      {0, 1, 2, 0, 1, 1, {1, 4, 20, 192}},
      {0, 1, 0, 2, 0, 1, {1, 4, 15, 16}},
      {0, 1, 0, 5, 0, 0, {1, 4, 5, 8}},
      {0, 1, 2, 5, 0, 1, {1, 4, 5, 8}},
      {0, 1, 5, 5, 0, 1, {1, 4, 15, 48}},
  };
  for (const auto& c : cases) {
    Bytes file = CaptureFile(1, 1).Put<uint8_t>(20, c.kind).Put<int32_t>(16, c.prim);
    file.Put<uint8_t>(129, c.type1).Put<uint8_t>(561, c.type_n).Put(568, 2000.0f);
    for (const size_t clamp : {136, 568}) {
      file.Put<uint8_t>(clamp + 8, c.feeders).Put<int32_t>(clamp + 12, 3);
      file.Put<uint8_t>(clamp + 16, c.trafo);
      file.Put<int32_t>(clamp + 20, 8).Put<int32_t>(clamp + 24, 2);
    }
    file.Put(3072, 1.0f).Put(3072 + 12, 4.0f).Put(3072 + 16, 5.0f).Put(3072 + 28, 8.0f);
    std::string expected;
    for (const double value : c.expected) {
      char text[32];
      std::snprintf(text, sizeof text, "%s%E", expected.empty() ? "" : " ", value);
      expected += text;
    }
    EXPECT_EQ(expected, ValuesOf(Converted(file), "v")) << &c - cases;
  }
}

}  // namespace
}  // namespace quorvex::test
