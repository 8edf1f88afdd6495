// Signalling, transients and inrush: whole documents and damaged files.
#include <gtest/gtest.h>

#include <algorithm>

#include "outline.h"

namespace quorvex::test {
namespace {

Bytes SignallingFile(std::initializer_list<int32_t> packets) {
  size_t size = 0;
  for (const int32_t count : packets) size += 48 + 68 * static_cast<size_t>(count);
  Bytes records = Filled(static_cast<uint32_t>(size));
  size_t at = 0;
  for (const int32_t count : packets) {
    records.Put(at + 32, count);
    at += 48 + 68 * static_cast<size_t>(count);
  }
  return HeadOf(9).PutBytes(3072, records);
}

// A recording as it stands in a document; `read` fills the arrays in stored order.
template <typename Read>
std::string SignallingRecord(const Bytes& head, size_t packets, Read read) {
  const std::string entries = "0*" + std::to_string(packets) + " }";
  const std::string params =
      Expected(head,
               "SIGNALLING_PARAMS{ TIME_FIRST_PACKET!0 TIME_STEP:16 TRIGGER#20 DURATION#28 "
               "PACKETS_NUM#32 TRESHOLD:24 FLAG#40 }");
  Bytes times(16 * packets), levels(4 * packets), flags(4 * packets);
  read(&times);
  std::string data = Expected(times, "END_TIMES{ END_TIME!" + entries);
  for (const std::string input : {"U1", "U2", "U3", "U12", "U23", "U31"}) {
    for (const char* frequency : {"_SIG1", "_SIG2"}) {
      read(&levels);
      data += Expected(levels, input + frequency + "{ U:" + entries);
    }
  }
  read(&flags);
  data += Expected(flags, "flags{ FLAG#" + entries);
  return InElement("SIGNALLING_RECORD", params + InElement("SIGNALLING_DATA", data));
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
  std::string records;
  Bytes head(48);
  for (size_t position = 3072; position < file.size();) {
    read(&head);
    const auto packets = Load<uint32_t>(&head[32]);
    records += SignallingRecord(head, packets, read);
    position += 48 + 68 * packets;
  }
  return InRecords(records);
}

TEST(Signalling, WholeDocumentsCutOffAnywhere) {
  Bytes file = SignallingFile({2, 0, 3});
  ExpectTruncationIsHarmless(file);
  for (; file.size() >= 3072 + 48; file.pop_back()) {
    ExpectSame(PlainlyConverted(file), BodyOf(Converted(file)));
    ASSERT_FALSE(HasFailure()) << file.size();
  }
  // Arrays of several pieces, cut off in their midst.
  constexpr int32_t kPackets = 2500;
  const Bytes large = SignallingFile({kPackets});
  const size_t arrays = 3072 + 48 + 16 * kPackets;
  for (const size_t size : {large.size(), large.size() - 5, arrays + 48 * kPackets, arrays + 9001,
                            arrays + 5 * 4 * kPackets + 4097, arrays, arrays - 30001}) {
    const Bytes cut(large.begin(), large.begin() + static_cast<std::ptrdiff_t>(size));
    ExpectSame(PlainlyConverted(cut), BodyOf(Converted(cut)));
  }
}

TEST(Signalling, CountsThatCannotBe) {
  constexpr int32_t kSize = 3072 + 2 * 48;
  const Bytes last = Filled(48).Put<int32_t>(32, 0);
  const auto without_packets = [](const Bytes& head) {
    return SignallingRecord(head, 0, [](Bytes*) {});
  };
  for (const int32_t packets : {-1, INT32_MIN, kSize + 1, INT32_MAX}) {
    const Bytes head = Filled(48).Put(32, packets);
    const Bytes file = HeadOf(9).PutBytes(3072, head).PutBytes(3120, last);
    const std::string behind = packets < 0 ? without_packets(last) : "";
    ExpectSame(InRecords(without_packets(head) + behind), BodyOf(Converted(file)));
  }
  const Bytes most = HeadOf(9).PutBytes(3072, Filled(48).Put(32, kSize)).PadTo(kSize);
  ExpectSame(PlainlyConverted(most), BodyOf(Converted(most)));
}

TEST(Transients, EntriesWithTheirSettings) {
  Bytes file = HeadOf(12).Put<uint8_t>(8 + 13, 4).PutText(3072, "part<1>");
  const std::string document = Converted(file);
  const size_t from = document.find("<UIF_PARAMS>");
  std::string settings = document.substr(from, document.find("<RECORDS>") - from);
  const auto entry = [&](const std::string& name) {
    return InElement("TRANSIENT_RECORD", Expected({}, "name=" + name) + settings);
  };
  EXPECT_EQ(InRecords(entry("part?1?")), BodyOf(document))
      << "an entry without settings shows the file's";

  // The name has the whole width; the second entry is cut off behind ten bytes.
  file.PutText(3072, std::string(99, 'N') + "\n" + std::string(13, '\0') + "\6");
  file.PadTo(3072 + 3164).PutText(3072 + 3164, std::string(10, 'M'));
  settings.replace(settings.find("<CONNECTION>4"), 13, "<CONNECTION>6");
  const std::string end = std::string(89, 'N') + "\\";
  EXPECT_EQ(InRecords(entry("NNNNNNNNNN" + end) + entry("MMMMMMMMMM" + end)),
            BodyOf(Converted(file)));
  file.resize(3072 + 3164);
  ExpectTruncationIsHarmless(file);
}

TEST(Inrush, EntriesAndTheRestOfOne) {
  Bytes records = Filled(72);
  Bytes file = HeadOf(13).PutBytes(3072, records);
  ExpectTruncationIsHarmless(file);
  file.resize(3072 + 49);
  // Of the third there is one byte; the rest is left from the second.
  std::copy(records.begin() + 25, records.begin() + 48, records.begin() + 49);
  std::string outline;
  for (const char* at : {"0", "24", "48"}) {
    outline += std::string("INRUSH_RECORD{ +") + at + " START_TIME!0 CHANNEL#16 MAX_I:20 } ";
  }
  EXPECT_EQ(InRecords(Expected(records, outline)), BodyOf(Converted(file)));
}

}  // namespace
}  // namespace quorvex::test
