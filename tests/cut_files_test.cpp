// What becomes of files cut short: the document is that of a file which holds what was read before.
#include <gtest/gtest.h>

#include <algorithm>

#include "support.h"

namespace quorvex::test {
namespace {

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

// The same of waveforms, which are of several pieces each; the one buffer is zero at first.
TEST(CutFiles, CapturesHoldTheWaveformBefore) {
  constexpr uint32_t kSamples = 9000, kSize = 4 * kSamples;
  const Bytes samples = Filled(8 * kSize);
  const auto expect_same = [&](size_t present, const Bytes& first, const Bytes& others) {
    const Bytes head = ScaledHead(5, 1).Put(1448, kSamples), free(2 * kSize);
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

}  // namespace
}  // namespace quorvex::test
