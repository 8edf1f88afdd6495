// What everything stands on: tracked memory, files, the element writer and the layout tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstring>
#include <sstream>

#include "layout/date_time.h"
#include "layout/tiles.h"
#include "support.h"
#include "support/escape_text.h"
#include "support/file.h"
#include "support/memory.h"
#include "texts/float_texts.h"
#include "xml/base64.h"
#include "xml/document.h"
#include "xml/plan.h"
#include "xml/spectrum_text.h"

namespace quorvex::test {
namespace {

TEST(TrackedMemory, CountsPayloadAndLeavesForeignPointersAlone) {
  const uint32_t before = TrackedBytes();
  void* none = Allocate(0);
  auto* some = static_cast<uint8_t*>(Allocate(1000));
  EXPECT_EQ(before + 1000, TrackedBytes());
  EXPECT_EQ(0, some[999]);
  some[-1] = 0;  // a damaged guard word
  Release(some);
  EXPECT_EQ(before + 1000, TrackedBytes());
  some[-1] = 0x11;
  Release(some);
  Release(none);
  EXPECT_EQ(before, TrackedBytes());
}

TEST(Files, NumberedModes) {
  const std::string path = InFolder("modes");
  const auto write = [&](int32_t mode, const char* text) {
    File file(path.c_str(), mode);
    WriteAll(file.get(), text, static_cast<uint32_t>(std::strlen(text)));
  };
  for (const int32_t mode : {0, 1, 7, -1, 4}) EXPECT_EQ(nullptr, OpenFile(path.c_str(), mode));
  write(kOpenCreate, "created");
  write(kOpenAppend, ", appended");
  write(kOpenUpdate, "CRE");
  char text[32] = "";
  {
    File file(path.c_str(), 7);
    ASSERT_TRUE(file);
    EXPECT_TRUE(SeekTo(file.get(), 1));
    EXPECT_EQ(16u, ReadBytes(file.get(), text, sizeof text));
  }
  EXPECT_STREQ("REated, appended", text);
  {
    File file(path.c_str(), kOpenUpdate);
    EXPECT_EQ(2u, ReadBytes(file.get(), text, 2));
    WriteAll(file.get(), "EA", 2);  // where the reading stood, however much was read ahead
    EXPECT_EQ(3u, ReadBytes(file.get(), text, 3));
    EXPECT_EQ("ted", std::string(text, 3));
  }
  EXPECT_EQ("CREAted, appended", ReadFile(path));
  write(kOpenCreate, "x");
  EXPECT_EQ("x", ReadFile(path));
}

TEST(Files, InformationOfAFile) {
  const std::string path = InFolder("information.rec");
  FileInfo info{};
  EXPECT_EQ(1, QueryFileInfo(path.c_str(), &info));
  Bytes bytes;
  WriteFile(path, bytes.PadTo(70000));
  EXPECT_EQ(0, QueryFileInfo(path.c_str(), &info));
  EXPECT_STREQ("information.rec", info.name);
  EXPECT_EQ(70000u, info.size);
  EXPECT_EQ(70000u, WholeSize(info));
  namespace chrono = std::chrono;
  const auto created = chrono::sys_days(chrono::year(info.year) / info.month / info.day) +
                       chrono::seconds(3600 * info.hour + 60 * info.minute + info.second);
  EXPECT_LT(chrono::abs(chrono::system_clock::now() - created), chrono::minutes(2));
  info.in_progress = 1;
  EXPECT_EQ(1, QueryFileInfo(path.c_str(), &info)) << "each query stands alone";
#ifdef _WIN32
  info.search = FindFirstFileA(path.c_str(), &info.found);
  EXPECT_EQ(1, QueryFileInfo(path.c_str(), &info)) << "there is no second one";
  EXPECT_EQ(INVALID_HANDLE_VALUE, info.search) << "closed in every case";
#endif
}

std::string TextOf(XmlWriter* writer) {
  const std::string text(writer->buffer, writer->position);
  CloseWriter(writer);
  return text;
}

TEST(ElementWriter, TextsLongerThanTheBufferArriveWhole) {
  std::string expected;
  const std::string path = InFolder("long.xml");
  XmlWriter* file = CreateWriter(OpenFile(path.c_str(), kOpenCreate));
  XmlWriter* memory = CreateWriter(nullptr);
  for (const size_t size : {65535u, 1u, 65536u, 65537u, 3000000u, 3u}) {
    std::string text;
    for (size_t i = 0; i < size; ++i) text += static_cast<char>('a' + (i + i / 26 + size) % 26);
    PutText(file, text.c_str());
    PutText(memory, text.c_str());
    expected += text;
  }
  EXPECT_EQ(kLargeBuffer, file->capacity);
  CloseWriter(file);
  EXPECT_TRUE(expected == ReadFile(path));
  EXPECT_TRUE(expected == TextOf(memory));
}

TEST(ElementWriter, EscapedTexts) {
  const std::pair<std::string, std::string> cases[] = {{"AZaz09 .,!%&=+-*/_", "AZaz09 .,!%&=+-*/_"},
                                                       {"<a>\r\n", "?a?\\\\"},
                                                       {"\"'\t\x7F\xC3\xA9#@[`{", "??????????\?"},
                                                       {std::string("ab\0cd", 5), "ab"}};
  for (const auto& [text, escaped] : cases) {
    char to[32];
    EXPECT_EQ(escaped, std::string(to, EscapeText(text.c_str(), to, 30)));
  }
  char to[4];
  EXPECT_EQ("abcd", std::string(to, EscapeText("abcdef", to, 4))) << "no terminator is needed";
}

TEST(ElementWriter, Base64) {
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},        {"f", "Zg=="},          {"fo", "Zm8="},
      {"foo", "Zm9v"}, {"foobar", "Zm9vYmFy"}, {"\xFB\xEF\xFF", "++//"}};
  for (const auto& [bytes, text] : cases) {
    char to[16];
    const auto* from = reinterpret_cast<const uint8_t*>(bytes.data());
    EXPECT_EQ(text, std::string(to, Base64Encode(from, static_cast<uint32_t>(bytes.size()), to)));
  }
  // Every six bits in every place of a long text.
  const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (uint32_t first = 0; first < 64; ++first) {
    std::string bytes, text;
    for (uint32_t i = 0; i < 64; i += 4) {
      uint32_t three_bytes = 0;
      for (uint32_t k = i; k < i + 4; ++k) {
        three_bytes = three_bytes << 6 | (first + k) % 64;
        text += alphabet[(first + k) % 64];
      }
      for (const int shift : {16, 8, 0}) bytes += static_cast<char>(three_bytes >> shift);
    }
    char to[64];
    const auto* from = reinterpret_cast<const uint8_t*>(bytes.data());
    EXPECT_EQ(text, std::string(to, Base64Encode(from, 48, to)));
  }
}

// Of every size and with a marker in every place as twelve bytes after the other have it.
TEST(ElementWriter, Spectra) {
  const std::pair<uint16_t, uint16_t> shapes[] = {{1, 1}, {2, 1}, {2, 2}, {4, 3}, {3, 2}};
  for (const auto& [entry, written] : shapes) {
    for (uint32_t entries = 1; entries <= 41; ++entries) {
      for (uint32_t marked = 0; marked <= entries * entry; ++marked) {
        std::vector<uint32_t> floats, kept;
        for (uint32_t i = 0; i < entries * entry; ++i) {
          const auto marker = std::bit_cast<uint32_t>(kNoValue);
          floats.push_back(i == marked ? marker : 0x9E3779B9 * (marked + i));
          if (i % entry < written) kept.push_back(i == marked ? 0x7F800000 : floats[i]);
        }
        std::string expected;
        std::vector<char> to((kept.size() * 4 + 2) / 3 * 4 + kCopySize);
        for (size_t i = 0; i < kept.size(); i += 3) {
          const auto bytes = static_cast<uint32_t>(std::min<size_t>(kept.size() - i, 3) * 4);
          const auto* from = reinterpret_cast<const uint8_t*>(&kept[i]);
          expected.append(to.data(), Base64Encode(from, bytes, to.data()));
        }
        const Field field = Spectrum("", "", 0, entries, entry, written, "");
        const auto* from = reinterpret_cast<const uint8_t*>(floats.data());
        ASSERT_EQ(expected, std::string(to.data(), SpectrumText(field, from, to.data())))
            << entries << " of " << entry << ", marker " << marked;
      }
    }
  }
}

constexpr Field kPairRows[] = {U8("a", 0), Gap(1, 1), U16("b", 2)};
constexpr Field kSharedRows[] = {I32("one", 0).In(0x0001), F32("other", 0).In(0x0002),
                                 U8("first", 0).Again(), Each("pair", 4, 2, 4, kPairRows),
                                 I32("n", 12).Times(2)};
constexpr Field kOverlapRows[] = {I32("one", 0), U8("two", 3), Gap(4, 4)};
constexpr Field kHoleRows[] = {I32("one", 0), Gap(5, 3)};
constexpr Field kBeyondRows[] = {I32("one", 0), Gap(4, 4), F32("again", 6).Again()};
static_assert(Tiles<WrongByte(Record("shared", 20, kSharedRows))>);
static_assert(WrongByte(Record("overlap", 8, kOverlapRows)) == 3);
static_assert(WrongByte(Record("hole", 8, kHoleRows)) == 4);
static_assert(WrongByte(Record("beyond", 8, kBeyondRows)) == 8);

TEST(LayoutTables, CasesRepetitionsAndCounts) {
  Bytes record;
  record.Put<int32_t>(0, 5).Put<uint8_t>(4, 1).Put<uint16_t>(6, 2).Put<uint8_t>(8, 3);
  record.Put<uint16_t>(10, 4).Put<int32_t>(12, -6).Put<int32_t>(16, 7);
  XmlWriter* writer = CreateWriter(nullptr);
  RenderOnce(writer, Record("r", 20, kSharedRows), 0x0001, record.data());
  EXPECT_EQ(
      "<r>\r\n<one>5</one>\r\n<first>5</first>\r\n<pair>\r\n<a>1</a>\r\n<b>2</b>\r\n</pair>\r\n"
      "<pair>\r\n<a>3</a>\r\n<b>4</b>\r\n</pair>\r\n<n>-6</n>\r\n<n>7</n>\r\n</r>\r\n",
      TextOf(writer));

  // Arrays side by side, as many of each as a word of the record says.
  static constexpr Field kSideRows[] = {U8("x", 0).Every(1), U16("y", 3).Every(2)};
  static constexpr Field kCountedRows[] = {I32("count", 0),
                                           Each("", 4, 3, 0, kSideRows).CountAt(0)};
  for (const auto& [count, expected] :
       {std::pair{"-1", ""}, {"2", "10 20 11 21"}, {"9", "10 20 11 21 12 22"}}) {
    Bytes counted;
    counted.Put<int32_t>(0, std::stoi(count)).PutBytes(4, {10, 11, 12, 20, 0, 21, 0, 22, 0});
    writer = CreateWriter(nullptr);
    RenderOnce(writer, Record("", 13, kCountedRows), kAllCases, counted.data());
    std::string sides = Line("count", count);
    std::istringstream values(expected);
    for (std::string x, y; values >> x >> y;) sides += Line("x", x) + Line("y", y);
    EXPECT_EQ(sides, TextOf(writer));
  }
}

// Each differs from the one before it in one unit.
TEST(LayoutTables, DateTimesInARow) {
  static constexpr Field kTimeRows[] = {DateTime("", 0)};
  static constexpr Field kRows[] = {Each("", 0, 7, kDateTimeSize, kTimeRows)};
  constexpr int kUnits = 6;
  const char* const names[kUnits] = {"year", "month", "day", "hour", "min", "sec"};
  int units[kUnits] = {65535, 100, 31, 23, 59, 12};
  Bytes record;
  std::string expected;
  for (int t = 0; t <= kUnits; ++t) {
    if (t > 0) --units[kUnits - t];
    size_t at = static_cast<size_t>(t) * kDateTimeSize;
    record.Put<double>(at + 8, units[5]).Put(at, static_cast<uint16_t>(units[0]));
    for (int u = 0; u < kUnits; ++u) {
      if (u > 0 && u < 5) record.Put(at + 1 + u, static_cast<uint8_t>(units[u]));
      expected += Line(names[u], std::to_string(units[u]) + (u == 5 ? ".0" : ""));
    }
  }
  XmlWriter* writer = CreateWriter(nullptr);
  RenderOnce(writer, Record("", 7 * kDateTimeSize, kRows), kAllCases, record.data());
  EXPECT_EQ(expected, TextOf(writer));
}

}  // namespace
}  // namespace quorvex::test
