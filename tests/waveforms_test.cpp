// Channel readings, waveform captures and waveform series.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "record_sketch.h"

namespace quorvex::test {
namespace {

// The labels of a document's waveforms with their samples, shortened to two digits and exponent.
std::string WaveformsIn(const std::string& body) {
  std::string found;
  for (size_t at = 0; (at = body.find('<', at)) != std::string::npos; ++at) {
    if (body.compare(at, 3, "<v>") == 0) {
      const std::string value = body.substr(at + 3, body.find("</v>", at) - at - 3);
      const size_t digits = value[0] == '-' ? 4 : 3;
      found.append(" ").append(value, 0, digits);
      if (value != "-") found.append(value, value.size() - 4);
    }
    if (body.compare(at + 2, 8, " phase=\"") == 0) {
      const size_t label = at + 10;
      found.append(found.empty() ? "" : "; ");
      found.append(body, label, body.find('"', label) - label).append(":");
    }
  }
  return found;
}

TEST(ChannelReadings, ScaledByTheirChannel) {
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
  Sketch list;
  for (const auto& c : cases) {
    const size_t at = list.record.size();
    list.Open("RECORD_RESULTS").Add(at, "timeEnd@0").Value("type", std::to_string(c.channel));
    list.Value("U", c.u).Value("I", c.i).Close("RECORD_RESULTS");
    list.record.Put<uint32_t>(at + 16, 0xABCDEF00u | c.channel);
    list.record.Put(at + 20, c.volts).Put(at + 24, c.amperes).PadTo(at + 32);
  }
  Bytes file = ScaledHead(3, 3);
  file.PutBytes(3072, list.record).PadTo(file.size() + 31);
  const std::string document = Converted(file);
  EXPECT_EQ(Lines("<RECORDS>\n" + list.text + "</RECORDS>\n"), BodyOf(document));

  std::string other = document;
  other.replace(other.find("<FILE_TYPE>3<"), 13, "<FILE_TYPE>14<");
  EXPECT_EQ(other, Converted(file.Put<uint32_t>(4, 14)));
  ExpectTruncationIsHarmless(file);
}

// Slots hold 1, 2, ... 8 volts or amperes once a waveform of one sample.
Bytes CaptureFile(uint8_t connection) {
  Bytes file = HeadOf(5);
  file.Put<int32_t>(16, 1).Put<int32_t>(2576, 1).Put<uint8_t>(21, connection);
  file.Put<int32_t>(1448, 1);
  for (const size_t at : {136, 280, 424, 568}) file.Put(at, 1000.0f);
  for (size_t slot = 0; slot < 8; ++slot) {
    file.Put(3072 + 4 * slot, static_cast<float>(slot + 1));
  }
  return file;
}

TEST(WaveformCapture, WholeDocument) {
  Bytes file = CaptureFile(5);
  file.Put<int32_t>(1448, 2).Put(568, 500.0f);
  for (size_t i = 0; i < 16; ++i) file.Put(3072 + 4 * i, static_cast<float>(10 + i));
  file.Put(3072 + 4, kNone).Put(3072 + 44, kNone);
  EXPECT_EQ(Lines("<RECORDS>\n<RECORD_RESULTS>\n<VOLTAGES>\n"
                  "<U phase=\"u1\">\n<v>1.000000E+01</v>\n<v>-</v>\n</U>\n"
                  "<U phase=\"u2\">\n<v>1.200000E+01</v>\n<v>1.300000E+01</v>\n</U>\n"
                  "<U phase=\"un\">\n<v>1.600000E+01</v>\n<v>1.700000E+01</v>\n</U>\n"
                  "</VOLTAGES>\n<CURRENTS>\n"
                  "<I phase=\"i1\">\n<v>1.800000E+01</v>\n<v>1.900000E+01</v>\n</I>\n"
                  "<I phase=\"i2\">\n<v>2.000000E+01</v>\n<v>-</v>\n</I>\n"
                  "<I phase=\"in\">\n<v>1.100000E+01</v>\n<v>1.150000E+01</v>\n</I>\n"
                  "</CURRENTS>\n</RECORD_RESULTS>\n</RECORDS>\n"),
            BodyOf(Converted(file)));
  ExpectTruncationIsHarmless(file);
  for (const int32_t damage : {0, -1, INT32_MIN, 3072 + 64 + 1, INT32_MAX}) {
    file.Put(1448, damage);
    EXPECT_EQ("u1:; u2:; un:; i1:; i2:; in:", WaveformsIn(Converted(file))) << damage;
  }
}

// Scales of u1, un, i1 and in: samples of 1, 4, 5 and 8 before them.
TEST(WaveformCapture, Scales) {
  const struct {
    uint8_t kind;
    int32_t prim;
    uint8_t type1, type_n, trafo, feeders;
    const char* expected;
  } cases[] = {
      {0, 1, 0, 0, 0, 0, "u1: 1.0E+00; un: 4.0E+00; i1: 5.0E+00; in: 1.6E+01"},
      {1, 1, 0, 0, 0, 0, "u1: 1.7E+00; un: 6.9E+00; i1: 5.0E+00; in: 1.6E+01"},
      {2, 3, 0, 0, 0, 0, "u1: 1.7E+00; un: 6.9E+00; i1: 5.0E+00; in: 1.6E+01"},
      {3, -2, 0, 0, 0, 0, "u1: -2.0E+00; un: -8.0E+00; i1: 5.0E+00; in: 1.6E+01"},
      {0, 1, 0, 0, 1, 0, "u1: 1.0E+00; un: 4.0E+00; i1: 2.0E+01; in: 6.4E+01"},
      {0, 1, 0, 0, 1, 1, "u1: 1.0E+00; un: 4.0E+00; i1: 6.0E+01; in: 1.9E+02"},
      {0, 1, 2, 0, 1, 1, "u1: 1.0E+00; un: 4.0E+00; i1: 2.0E+01; in: 1.9E+02"},
      {0, 1, 0, 2, 0, 1, "u1: 1.0E+00; un: 4.0E+00; i1: 1.5E+01; in: 1.6E+01"},
      {0, 1, 0, 5, 0, 0, "u1: 1.0E+00; un: 4.0E+00; i1: 5.0E+00; in: 8.0E+00"},
      {0, 1, 2, 5, 0, 1, "u1: 1.0E+00; un: 4.0E+00; i1: 5.0E+00; in: 8.0E+00"},
      {0, 1, 5, 5, 0, 1, "u1: 1.0E+00; un: 4.0E+00; i1: 1.5E+01; in: 4.8E+01"},
  };
  for (const auto& c : cases) {
    Bytes file = CaptureFile(1);
    file.Put<uint8_t>(20, c.kind).Put<int32_t>(16, c.prim).Put(568, 2000.0f);
    file.Put<uint8_t>(129, c.type1).Put<uint8_t>(561, c.type_n);
    for (const size_t clamp : {136, 568}) {
      file.Put<uint8_t>(clamp + 8, c.feeders).Put<int32_t>(clamp + 12, 3);
      file.Put<uint8_t>(clamp + 16, c.trafo);
      file.Put<int32_t>(clamp + 20, 8).Put<int32_t>(clamp + 24, 2);
    }
    EXPECT_EQ(c.expected, WaveformsIn(Converted(file))) << &c - cases;
  }
}

// A waveform of several pieces each. The instrument's one buffer keeps what the file lacks from the
// waveform read before, and that is zero at first.
TEST(WaveformCapture, FileCutShortRepeatsTheWaveformBefore) {
  constexpr size_t kSamples = 9000;
  constexpr size_t kCut = 4999;  // samples of the second read waveform in the file
  Bytes file = CaptureFile(1);
  file.Put<int32_t>(1448, kSamples);
  const size_t neutral = 3072 + 3 * 4 * kSamples;
  for (size_t i = 0; i < kSamples; ++i) file.Put(3072 + 4 * i, 1.0f);
  for (size_t i = 0; i < kCut; ++i) file.Put(neutral + 4 * i, 2.0f);
  // The cut goes through a sample: its upper half is that of 1.0f, 0x3F80.
  file.Put<uint16_t>(neutral + 4 * kCut, 0xABCD);
  const auto repeated = [](size_t count, const std::string& text) {
    std::string all;
    for (size_t i = 0; i < count; ++i) all += text;
    return all;
  };
  const std::string ones = repeated(kSamples, " 1.0E+00");
  const std::string mixed =
      repeated(kCut, " 2.0E+00") + " 1.0E+00" + repeated(kSamples - kCut - 1, " 1.0E+00");
  const std::string document = Converted(file);
  EXPECT_EQ("u1:" + ones + "; un:" + mixed + "; i1:" + mixed + "; in:" + mixed,
            WaveformsIn(document));
  EXPECT_NE(std::string::npos, document.find("<v>1.005243E+00</v>"));

  file.resize(3072 + 4 * 4500);
  const std::string first = repeated(4500, " 1.0E+00") + repeated(4500, " 0.0E+00");
  EXPECT_EQ("u1:" + first + "; un:" + first + "; i1:" + first + "; in:" + first,
            WaveformsIn(Converted(file)));
}

// A record of a series whose waveforms start with `sample` and end with 80.
Bytes SeriesRecord(size_t waveforms, int32_t used, int16_t sample) {
  Bytes record;
  record.PutTime(0, 2024, 3, 7, 14, 5, 1.5).Put(16, 0.0002f).Put<int32_t>(20, -1).Put(24, used);
  for (size_t at = 32; at < 32 + waveforms * 3000; at += 3000) {
    record.Put(at, sample).Put<int16_t>(at + 2, -8).Put<int16_t>(at + 2998, 80);
  }
  return record;
}

TEST(WaveformSeries, WholeDocument) {
  Bytes file = ScaledHead(17, 5);
  file.PutBytes(3072, SeriesRecord(6, 2, 80));
  for (size_t i = 1; i < 6; ++i) {
    file.Put(3072 + 32 + i * 3000, static_cast<int16_t>(80 * (i + 1)));
  }
  EXPECT_EQ(
      Lines("<RECORDS>\n<RECORD_RESULTS>\n<timeStart>\n<year>2024</year>\n<month>3</month>\n"
            "<day>7</day>\n<hour>14</hour>\n<min>5</min>\n<sec>1.5</sec>\n</timeStart>\n"
            "<timeStep>2.000000E-04</timeStep>\n<numUsedSamples>2</numUsedSamples>\n<VOLTAGES>\n"
            "<U phase=\"u1\">\n<v>1.000000E+02</v>\n<v>-1.000000E+01</v>\n</U>\n"
            "<U phase=\"u2\">\n<v>4.000000E+02</v>\n<v>-2.000000E+01</v>\n</U>\n"
            "<U phase=\"un\">\n<v>1.500000E+02</v>\n<v>-5.000000E+00</v>\n</U>\n"
            "</VOLTAGES>\n<CURRENTS>\n"
            "<I phase=\"i1\">\n<v>4.000000E+02</v>\n<v>-1.000000E+01</v>\n</I>\n"
            "<I phase=\"i2\">\n<v>1.000000E+03</v>\n<v>-2.000000E+01</v>\n</I>\n"
            "<I phase=\"in\">\n<v>9.600000E+03</v>\n<v>-1.600000E+02</v>\n</I>\n"
            "</CURRENTS>\n</RECORD_RESULTS>\n</RECORDS>\n"),
      BodyOf(Converted(file)));
  ExpectTruncationIsHarmless(file);
}

TEST(Waveforms, OfEveryConnection) {
  const std::string pair = "u1: 1.0E+00; un: 4.0E+00; i1: 5.0E+00; in: 8.0E+00";
  const std::string currents = "; i1: 5.0E+00; i2: 6.0E+00; i3: 7.0E+00";
  const std::string delta = "u12: 1.0E+00; u23: 2.0E+00; u31: 3.0E+00";
  const std::string captures[] = {
      pair,
      pair,
      delta + currents,
      "u1: 1.0E+00; u2: 2.0E+00; u3: 3.0E+00; un: 4.0E+00" + currents + "; in: 8.0E+00",
      delta + currents,
      "u1: 1.0E+00; u2: 2.0E+00; un: 4.0E+00; i1: 5.0E+00; i2: 6.0E+00; in: 7.0E+00",
      "u1: 1.0E+00; uinv: 4.0E+00; i1: 5.0E+00; iinv: 8.0E+00",
      delta + "; uinv: 4.0E+00" + currents + "; iinv: 8.0E+00",
      pair,
  };
  for (uint8_t connection = 0; connection < std::size(captures); ++connection) {
    std::string expected = captures[connection];
    const auto waveforms = static_cast<size_t>(std::count(expected.begin(), expected.end(), ':'));
    Bytes capture = CaptureFile(connection);
    EXPECT_EQ(expected, WaveformsIn(Converted(capture))) << int{connection};
    if (connection == 2 || connection == 4) {
      expected = "u1: 1.0E+00; u2: 2.0E+00; u3: 3.0E+00" + currents;
    }
    capture.Put<uint8_t>(1408, 1);
    EXPECT_EQ(expected, WaveformsIn(Converted(capture))) << int{connection};

    // A series has the same waveforms, without the unused slots and whatever its voltages go by.
    std::string labels;
    std::istringstream words(captures[connection]);
    for (std::string label, sample; words >> label >> sample;) {
      labels.append(labels.empty() ? "" : "; ").append(label);
    }
    Bytes series = ScaledHead(17, connection);
    series.Put<uint8_t>(1408, 1).PadTo(3072 + 2 * (32 + waveforms * 3000));
    EXPECT_EQ(labels + "; " + labels, WaveformsIn(Converted(series))) << int{connection};
  }
}

int32_t Stop(float) { return -1; }

TEST(WaveformSeries, CountsBeyondTheSamplesAndFilesCutShort) {
  Bytes file = ScaledHead(17, 1);
  file.PutBytes(3072, SeriesRecord(4, INT32_MAX, 80));
  const size_t second = file.size();
  file.PutBytes(second, SeriesRecord(4, INT32_MAX, 160)).resize(second + 32 + 2);
  const std::string body = BodyOf(Converted(file));
  const size_t at = body.rfind("<RECORD_RESULTS>");
  std::string expected = WaveformsIn(body.substr(0, at));
  EXPECT_EQ(4u * 1500, static_cast<size_t>(std::count(expected.begin(), expected.end(), 'E')));
  EXPECT_EQ("1.6E+03", expected.substr(expected.size() - 7)) << "the last stored sample";
  EXPECT_NE(std::string::npos, body.find("<numUsedSamples>2147483647<"));
  expected.replace(expected.find("u1: 1.0E+02"), 11, "u1: 2.0E+02");
  EXPECT_EQ(expected, WaveformsIn(body.substr(at))) << "every waveform keeps a place of its own";
  EXPECT_EQ(at, BodyOf(Converted(file, Stop)).size() - std::string("</RECORDS>\r\n").size());
}

}  // namespace
}  // namespace quorvex::test
