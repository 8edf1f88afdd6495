// What a path or another process can do to a conversion.
#include <gtest/gtest.h>

#ifndef _WIN32

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <set>

#include "checks.h"
#include "field_mutator.h"
#include "records/record_types.h"
#include "sample.h"
#include "support.h"

namespace quorvex::test {
namespace {

namespace fs = std::filesystem;

Bytes Changes(size_t records) { return HeadOf(10).PadTo(3072 + records * 4088); }

TEST(Faults, InputsThatAreNoFiles) {
  const std::string pipe = InFolder("pipe.REC");
  const std::string output = InFolder("from-no-file.xml");
  ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
  std::fstream into(pipe);  // a recording could be read from it
  into << std::string("\3\0\0\0\4\0\0\0", 8) << std::string(3064, '\0') << std::flush;
  char text[512];
  for (const std::string& input : {pipe, InFolder(""), std::string("/dev/zero"), std::string()}) {
    QuorvexConvert(input.c_str(), output.c_str(), nullptr);
    QuorvexGetRecordInfo(input.c_str(), text);
    EXPECT_EQ(0, QuorvexGetFileVersion(input.c_str())) << input;
    EXPECT_FALSE(Exists(output)) << input;
  }
}

TEST(Faults, ARecordingIsNeverOverwrittenThroughLinks) {
  const std::string input = InFolder("recording.xml");
  const Bytes recording = Changes(1);
  WriteFile(input, recording);
  fs::create_hard_link(input, InFolder("hard.xml"));
  fs::create_symlink(input, InFolder("soft.xml"));
  for (const char* output : {"recording.xml", "hard.xml", "soft.xml"}) {
    QuorvexConvert(input.c_str(), InFolder(output).c_str(), nullptr);
  }
  QuorvexConvert(InFolder("soft.xml").c_str(), nullptr, nullptr);
  EXPECT_EQ(std::string(recording.begin(), recording.end()), ReadFile(input));
}

TEST(Faults, PathsOfAnyLengthAndAnyBytes) {
  // A path of exactly 511 bytes, in folders with blanks and bytes beyond ASCII.
  fs::path folder = InFolder("with blank \xC3\xBC\xC3\xA9");
  while (folder.string().size() < 400) folder /= std::string(60, 'd');
  fs::create_directories(folder);
  const size_t rest = 511 - folder.string().size() - 1;
  for (const auto& [size, converts] : {std::pair{rest, true}, {rest + 1, false}}) {
    const std::string input = (folder / (std::string(size - 4, 'r') + ".REC")).string();
    const std::string output = input.substr(0, input.size() - 4) + ".xml";
    WriteFile(input, Changes(1));
    QuorvexConvert(input.c_str(), nullptr, nullptr);
    EXPECT_EQ(converts, Exists(output)) << input.size();
    EXPECT_EQ(converts ? 3 : 0, QuorvexGetFileVersion(input.c_str()));
  }
  const std::string input = (folder / std::string(rest, 'n')).string();
  WriteFile(input, Changes(1));
  QuorvexConvert(input.c_str(), nullptr, nullptr);
  EXPECT_FALSE(Exists(input + ".xml")) << "the document's own path is too long";
}

std::string shrinking;

TEST(Faults, AnInputThatShrinksOrGrowsMeanwhile) {
  Bytes events = HeadOf(8);
  events.PadTo(3224 + 1000 * 264);
  shrinking = InFolder("T0001X.REC");
  const std::string shrunk = Converted(events, [](float) {
    fs::resize_file(shrinking, 3224 + 300 * 264);
    return 0;
  });
  const std::string grown = Converted(events, [](float fraction) {
    if (fraction < 0.5f) fs::resize_file(shrinking, 3224 + 1100 * 264);
    return 0;
  });
  EXPECT_LT(shrunk.size(), grown.size());
}

class DamagedFields : public testing::TestWithParam<const RecordType*> {};

TEST_P(DamagedFields, AreHarmless) {
  constexpr int kMutations = 500;
  constexpr size_t kMost = 48 * 1024;
  const RecordType& type = *GetParam();
  const std::string folder = InFolder("samples");
  if (fs::create_directories(folder)) samples::MakeAll(folder);
  const std::set<fs::path> sorted(fs::directory_iterator(folder), {});
  const fuzz::FieldMutator mutator(type);
  std::mt19937 random(type.type);
  const std::string recording = fuzz::InFolder("R0001X.REC");  // as the checks write it
  int mutations = kMutations;
  for (const fs::path& path : sorted) {
    const std::string text = ReadFile(path.string());
    if (Load<uint32_t>(text.data() + 4) != type.type) continue;
    const std::vector<uint8_t> sample(text.begin(), text.begin() + std::min(text.size(), kMost));
    for (int i = 0; i < mutations; ++i) {
      std::vector<uint8_t> damaged = sample;
      mutator.Mutate(&damaged, &random);
      ASSERT_EQ("", fuzz::ConversionProblem(damaged, i % 4 == 0)) << path << ' ' << i;
      ASSERT_EQ("", fuzz::QueryProblem(damaged)) << path << ' ' << i;
      if (i % 4 != 1) continue;
      ASSERT_EQ("", fuzz::TablesProblem(recording)) << path << ' ' << i;
    }
    mutations = kMutations / 10;  // further samples of the type
  }
  EXPECT_LT(mutations, kMutations) << "there is no sample";
}
INSTANTIATE_TEST_SUITE_P(EveryType, DamagedFields, testing::ValuesIn(kRecordTypes),
                         [](const auto& of) { return std::to_string(of.param->type); });

}  // namespace
}  // namespace quorvex::test

#endif
