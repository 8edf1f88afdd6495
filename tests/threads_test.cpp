// Conversions side by side in one process give what each gives alone.
#include <gtest/gtest.h>

#include <filesystem>
#include <thread>
#include <vector>

#include "checks.h"
#include "sample.h"
#include "support.h"
#include "support/memory.h"

namespace quorvex::test {
namespace {

// ThreadSanitizer needs no crowd to see two threads at one place, only any two; and what every
// thread does alone is all that the other sanitizers see.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr size_t kThreads = 4;
#else
constexpr size_t kThreads = 16;
#endif

TEST(Threads, MixedTypesSideBySide) {
  const std::string folder = InFolder("side by side");
  std::filesystem::create_directories(folder);
  samples::MakeAll(folder);
  std::vector<std::string> recordings;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    recordings.push_back(entry.path().string());
  }
  const auto document = [](const std::string& recording, size_t thread) {
    return recording + "." + std::to_string(thread) + ".xml";
  };
  const auto convert_all = [&](size_t thread) {
    // Every thread starts with another type, so different types run at once.
    for (size_t i = 0; i < recordings.size(); ++i) {
      const std::string& recording = recordings[(i + thread) % recordings.size()];
      char text[512];
      QuorvexGetRecordInfo(recording.c_str(), text);
      QuorvexConvert(recording.c_str(), document(recording, thread).c_str(), nullptr);
      EXPECT_EQ("", fuzz::TablesProblem(recording));
    }
  };
  convert_all(kThreads);
  const uint32_t before = TrackedBytes();
  std::vector<std::thread> threads;
  for (size_t i = 0; i < kThreads; ++i) threads.emplace_back(convert_all, i);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(before, TrackedBytes());
  for (const std::string& recording : recordings) {
    const std::string alone = ReadFile(document(recording, kThreads));
    EXPECT_NE("", alone) << recording;
    for (size_t i = 0; i < kThreads; ++i) {
      EXPECT_TRUE(alone == ReadFile(document(recording, i))) << recording << " on thread " << i;
      std::filesystem::remove(document(recording, i));
    }
  }
}

}  // namespace
}  // namespace quorvex::test
