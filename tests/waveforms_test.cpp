// Channel readings, waveform captures and waveform series.
#include <gtest/gtest.h>

#include <sstream>

#include "outline.h"

namespace quorvex::test {
namespace {

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
  Bytes file = ScaledHead(3, 3);
  std::string expected;
  for (const auto& c : cases) {
    Bytes reading = Filled(32).Put(16, c.channel).Put(20, c.volts).Put(24, c.amperes);
    file.PutBytes(file.size(), reading);
    expected += Expected(
        reading, "RECORD_RESULTS{ timeEnd!0 type.16 U=" + std::string(c.u) + " I=" + c.i + " }");
  }
  file.PadTo(file.size() + 31);
  ExpectSame(InRecords(expected), BodyOf(Converted(file)));
  ExpectSame(InRecords(expected), BodyOf(Converted(file.Put<uint32_t>(4, 14))));
  ExpectTruncationIsHarmless(file);
}

// By connection code: the waveforms with their places among four of a quantity.
constexpr struct {
  const char *voltages, *currents;
} kWaveforms[] = {
    {"u1 0 un 3", "i1 0 in 3"},
    {"u1 0 un 3", "i1 0 in 3"},
    {"u12 0 u23 1 u31 2", "i1 0 i2 1 i3 2"},
    {"u1 0 u2 1 u3 2 un 3", "i1 0 i2 1 i3 2 in 3"},
    {"u12 0 u23 1 u31 2", "i1 0 i2 1 i3 2"},
    {"u1 0 u2 1 un 3", "i1 0 i2 1 in 2"},
    {"u1 0 uinv 3", "i1 0 iinv 3"},
    {"u12 0 u23 1 u31 2 uinv 3", "i1 0 i2 1 i3 2 iinv 3"},
    {"u1 0 un 3", "i1 0 in 3"},
};

bool IsPhase(const std::string& label) { return label[1] >= '1' && label[1] <= '3'; }

// Neutral currents count half, everything else is as it is captured.
std::string CaptureOutline(const char* voltages, const char* currents, size_t samples) {
  std::string outline = "RECORD_RESULTS{ VOLTAGES{ ", label;
  size_t slot;
  const auto add = [&](const char* element, size_t at) {
    const bool half = element[0] == 'I' && !IsPhase(label);
    outline += element + ("[" + label) + "]{ @f32/" + (half ? "0.5" : "1") +
               " v:" + std::to_string(at * 4 * samples) + "*" + std::to_string(samples) + " } ";
  };
  std::istringstream u(voltages), i(currents);
  while (u >> label >> slot) add("U", slot);
  outline += "} CURRENTS{ ";
  while (i >> label >> slot) add("I", 4 + slot);
  return outline + "} }";
}

Bytes CaptureFile(uint8_t connection, uint32_t samples) {
  Bytes file = HeadOf(5);
  file.Put<int32_t>(16, 1).Put<int32_t>(2576, 1).Put<uint8_t>(21, connection).Put(1448, samples);
  for (const size_t at : {136, 280, 424}) file.Put(at, 1000.0f);
  return file.Put(568, 500.0f);
}

TEST(WaveformCapture, WholeDocumentsOfEveryConnection) {
  const Bytes samples = Filled(8 * 4 * 3);
  for (uint8_t connection = 0; connection < std::size(kWaveforms); ++connection) {
    const auto& [voltages, currents] = kWaveforms[connection];
    Bytes file = CaptureFile(connection, 3).PutBytes(3072, samples);
    ExpectSame(InRecords(Expected(samples, CaptureOutline(voltages, currents, 3))),
               BodyOf(Converted(file)));
    // Where earth is chosen for the neutral, a delta's voltages go by their phase.
    file.Put(1408, 0xAB01);
    const bool by_phase = connection == 2 || connection == 4;
    const std::string outline = CaptureOutline(by_phase ? "u1 0 u2 1 u3 2" : voltages, currents, 3);
    ExpectSame(InRecords(Expected(samples, outline)), BodyOf(Converted(file)));
  }
  const Bytes file = CaptureFile(3, 3).PutBytes(3072, samples);
  ExpectTruncationIsHarmless(file);
  for (const int32_t damage : {0, -1, INT32_MIN, static_cast<int32_t>(file.size()) + 1}) {
    const std::string outline = CaptureOutline(kWaveforms[3].voltages, kWaveforms[3].currents, 0);
    ExpectSame(InRecords(Expected({}, outline)), BodyOf(Converted(Bytes(file).Put(1448, damage))));
  }
}

// What samples of 1, 4, 5 and 8 on u1, un, i1 and in come to.
TEST(WaveformCapture, Scales) {
  constexpr float kRoot = 1.7320508f;
  const struct {
    uint8_t kind;
    int32_t prim;
    uint8_t type1, type_n, trafo, feeders;
    float expected[4];
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
    Bytes values;
    for (const float value : c.expected) values.Put(values.size(), value);
    EXPECT_EQ(InRecords(Expected(values,
                                 "RECORD_RESULTS{ VOLTAGES{ U[u1]{ v:0 } U[un]{ v:4 } } "
                                 "CURRENTS{ I[i1]{ v:8 } I[in]{ v:12 } } }")),
              BodyOf(Converted(file)))
        << &c - cases;
  }
}

// A waveform of several pieces each. The instrument's one buffer keeps what the file lacks from the
// waveform read before, and that is zero at first.
TEST(WaveformCapture, FileCutShortRepeatsTheWaveformBefore) {
  constexpr uint32_t kSamples = 9000;
  const Bytes samples = Filled(8 * 4 * kSamples);
  const auto expect = [&](size_t bytes, const Bytes& first, const Bytes& others) {
    Bytes file = CaptureFile(1, kSamples).PutBytes(3072, samples);
    file.resize(3072 + bytes);
    Bytes shown = first;
    for (int i = 0; i < 3; ++i) shown.PutBytes(shown.size(), others);
    const std::string outline =
        "RECORD_RESULTS{ VOLTAGES{ U[u1]{ v:0*9000 } U[un]{ v:36000*9000 } } "
        "CURRENTS{ I[i1]{ v:72000*9000 } I[in]{ v:108000*9000 } } }";
    ExpectSame(InRecords(Expected(shown, outline)), BodyOf(Converted(file.Put(568, 1000.0f))));
  };
  Bytes first(samples.begin(), samples.begin() + 4 * kSamples);
  // The cut goes through a sample of the second waveform, in slot 3.
  constexpr size_t kCut = 4 * 4999 + 2;
  const auto neutral = samples.begin() + 3 * 4 * kSamples;
  expect(3 * 4 * kSamples + kCut, first, Bytes(first).PutBytes(0, {neutral, neutral + kCut}));
  std::fill(first.begin() + 4 * 4500, first.end(), uint8_t{0});
  expect(4 * 4500, first, first);
}

// Waveforms stand one behind the other and are scaled as ScaledHead() has it.
std::string SeriesOutline(uint8_t connection, size_t samples) {
  const std::string scales[][2] = {{"1.25", "1.25"}, {"2.5", "2.5"}, {"5", "5"}, {"0.625", "20"}};
  std::string outline = "RECORD_RESULTS{ timeStart!0 timeStep:16 numUsedSamples#24 ", label, slot;
  size_t at = 32;
  const auto add = [&](const char* labels, const char* group, const char* element, int quantity) {
    std::istringstream words(labels);
    outline += group;
    while (words >> label >> slot) {
      const size_t channel = IsPhase(label) ? static_cast<size_t>(label[1] - '1') : 3;
      outline += element + ("[" + label) + "]{ @i16/" + scales[channel][quantity] +
                 " v:" + std::to_string(at) + "*" + std::to_string(samples) + " } ";
      at += 3000;
    }
    outline += "} ";
  };
  add(kWaveforms[connection].voltages, "VOLTAGES{ ", "U", 0);
  add(kWaveforms[connection].currents, "CURRENTS{ ", "I", 1);
  return outline + "}";
}

TEST(WaveformSeries, WholeDocumentsOfEveryConnection) {
  for (uint8_t connection = 0; connection < std::size(kWaveforms); ++connection) {
    const std::string outline = SeriesOutline(connection, 2);
    const auto size = static_cast<uint32_t>(32 + 3000 * CountOf(outline, "v:"));
    const Bytes record = Filled(size).Put<int32_t>(24, 2);
    const std::string once = Expected(record, outline);
    Bytes file = ScaledHead(17, connection).Put<uint8_t>(1408, 1).PutBytes(3072, record);
    ExpectSame(InRecords(once + once), BodyOf(Converted(file.PutBytes(file.size(), record))));
  }
  ExpectTruncationIsHarmless(ScaledHead(17, 5).PadTo(3072 + 32 + 6 * 3000));
}

TEST(WaveformSeries, CountsBeyondTheSamplesAndFilesCutShort) {
  const Bytes first = Filled(32 + 4 * 3000).Put<int32_t>(24, INT32_MAX);
  const Bytes cut = Filled(32 + 2).Put<int32_t>(24, 9999).Put<int16_t>(32, 160);
  const Bytes second = Bytes(first).PutBytes(0, cut);
  const Bytes file = ScaledHead(17, 1).PutBytes(3072, first).PutBytes(3072 + 32 + 4 * 3000, cut);
  const std::string outline = SeriesOutline(1, 1500);
  ExpectSame(InRecords(Expected(first, outline) + Expected(second, outline)),
             BodyOf(Converted(file)));
}

}  // namespace
}  // namespace quorvex::test
