// What the record types share: which files are recordings, setting files, progress by position.
#include <gtest/gtest.h>

#include <set>

#include "outline.h"

namespace quorvex::test {
namespace {

TEST(Dispatch, FilesThatAreNoRecordings) {
  for (const Bytes& file : {Bytes{}, Bytes{1, 0, 0, 0}, Bytes{1, 0, 0, 0, 0, 0, 0, 0},
                            Bytes{1, 0, 0, 0, 19, 0, 0, 0}, Bytes{1, 0, 0, 0, 15, 1, 0, 0}}) {
    EXPECT_EQ("", Converted(file));
  }
  EXPECT_NE("", Converted({1, 0, 0, 0, 15})) << "the missing bytes of the type are zero";
}

TEST(Recordings, FilesThatEndBeforeTheirFirstRecord) {
  for (const uint32_t type : {1u, 2u, 3u, 9u, 10u, 12u, 13u, 14u, 16u, 17u, 18u}) {
    for (const size_t size : {8u, 100u, 3071u, 3072u}) {
      Bytes file = HeadOf(type);
      file.resize(size);
      EXPECT_EQ("<RECORDS>\r\n</RECORDS>\r\n", BodyOf(Converted(file))) << type << ' ' << size;
    }
  }
}

TEST(Recordings, SettingFilesReplaceTheSettingsOfSomeTypes) {
  const std::string path = InFolder("T0007PAR.REC");
  const std::set<uint32_t> replaced = {1, 2, 3, 5, 14, 16, 17};
  for (uint32_t type = 1; type <= 18; ++type) {
    if (type == 15) continue;  // sessions know no settings
    WriteFile(path, HeadOf(99).Put<uint8_t>(8 + 13, 6));
    const Bytes file = HeadOf(type).Put<uint8_t>(8 + 13, 1).Put<uint8_t>(128 + 13, 1).PadTo(3364);
    const std::string document = Converted(file, nullptr, "T0007X.REC");
    const char connection = replaced.count(type) != 0 ? '6' : '1';
    EXPECT_EQ(1u, CountOf(document, std::string("<UIF_PARAMS>\r\n<CONNECTION>") + connection + "<"))
        << type;
  }
  std::remove(path.c_str());
}

std::vector<float> fractions;
int32_t answer;

// A negative answer stops behind the record just written.
TEST(Recordings, ProgressIsThePositionAndStops) {
  const QuorvexProgress progress = [](float fraction) {
    fractions.push_back(fraction);
    return answer;
  };
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
      answer = records == 2 ? 0 : -1;
      fractions.clear();
      EXPECT_EQ(records, CountOf(Converted(file, progress), c.element)) << c.type;
      EXPECT_EQ(std::vector<float>(expected, expected + records), fractions) << c.type;
    }
  }
}

}  // namespace
}  // namespace quorvex::test
