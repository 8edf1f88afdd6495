#include "support.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "support/memory.h"

namespace quorvex::test {
namespace fs = std::filesystem;

namespace {

struct Folder {
  fs::path path;
  Folder() {
    std::random_device random;
    path = fs::temp_directory_path() / ("quorvex-test-" + std::to_string(random()));
    fs::create_directories(path);
  }
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
};

bool ClosesItsRoot(const std::string& document) {
  constexpr char kEnd[] = "</Project>\r\n";
  constexpr size_t kSize = sizeof kEnd - 1;
  return document.size() > kSize && document.compare(document.size() - kSize, kSize, kEnd) == 0;
}

// Documents are left for a schema to judge in the folder that the environment names. Of cut off
// recordings a few are enough.
bool cutting = false;
void Leave(const std::string& document) {
  const char* folder = std::getenv("QUORVEX_DOCUMENTS");
  if (folder == nullptr || cutting || document.empty()) return;
  static int number = 0;
  const char* shard = std::getenv("GTEST_SHARD_INDEX");
  fs::create_directories(folder);
  const std::string name =
      std::string(shard != nullptr ? shard : "") + "-" + std::to_string(++number);
  std::ofstream(fs::path(folder) / (name + ".xml"), std::ios::binary) << document;
}

}  // namespace

Bytes& Bytes::PutTime(size_t at, int year, int month, int day, int hour, int minute,
                      double seconds) {
  Put<uint16_t>(at, static_cast<uint16_t>(year));
  Put<uint8_t>(at + 2, static_cast<uint8_t>(month)).Put<uint8_t>(at + 3, static_cast<uint8_t>(day));
  Put<uint8_t>(at + 4, static_cast<uint8_t>(hour));
  Put<uint8_t>(at + 5, static_cast<uint8_t>(minute));
  return Put<double>(at + 8, seconds);
}

Bytes& Bytes::PutText(size_t at, const std::string& text) {
  if (size() < at + text.size()) resize(at + text.size());
  std::memcpy(data() + at, text.data(), text.size());
  return *this;
}

Bytes& Bytes::PutBytes(size_t at, const Bytes& bytes) {
  if (size() < at + bytes.size()) resize(at + bytes.size());
  std::copy(bytes.begin(), bytes.end(), begin() + static_cast<std::ptrdiff_t>(at));
  return *this;
}

Bytes& Bytes::PadTo(size_t bytes) {
  if (size() < bytes) resize(bytes);
  return *this;
}

Bytes HeadOf(uint32_t type) {
  Bytes head;
  head.Put<uint32_t>(0, 3).Put<uint32_t>(4, type).PadTo(3072);
  return head;
}

std::string InFolder(const std::string& name) {
  static const Folder folder;
  return (folder.path / name).string();
}

void WriteFile(const std::string& path, const Bytes& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

bool Exists(const std::string& path) { return fs::exists(path); }

std::string Converted(const Bytes& recording, QuorvexProgress progress, const std::string& name) {
  const std::string input = InFolder(name);
  const std::string output = InFolder("converted.xml");
  fs::remove(output);
  WriteFile(input, recording);
  const uint32_t before = TrackedBytes();
  QuorvexConvert(input.c_str(), output.c_str(), progress);
  EXPECT_EQ(before, TrackedBytes());
  const std::string document = ReadFile(output);
  EXPECT_TRUE(document.empty() || ClosesItsRoot(document));
  Leave(document);
  fs::remove(input);
  return document;
}

std::string BodyOf(const std::string& document) {
  const std::string root_end = "</Project>\r\n";
  for (const char* head : {"</UIF_PARAMS>\r\n", "</FILE_HEADER>\r\n"}) {
    const size_t at = document.find(head);
    if (at == std::string::npos) continue;
    const size_t from = at + std::strlen(head);
    return document.substr(from, document.size() - root_end.size() - from);
  }
  return "";
}

std::string Lines(const std::string& text) {
  std::string lines;
  for (const char c : text) {
    if (c == '\n') lines += '\r';
    lines += c;
  }
  return lines;
}

void ExpectTruncationIsHarmless(const Bytes& recording) {
#ifdef _WIN32
  constexpr size_t kEvery = 16;  // a file costs more there, and the code is the same
  constexpr size_t kStride = 61;
#else
  constexpr size_t kEvery = 8192;
  constexpr size_t kStride = 257;
#endif
  unsigned cuts = 0;
  for (size_t size = 0; size < recording.size(); size += size < kEvery ? 1 : kStride) {
    cutting = ++cuts % 509 != 0;
    Bytes cut(recording.begin(), recording.begin() + static_cast<std::ptrdiff_t>(size));
    Converted(cut);
    if (testing::Test::HasFailure()) FAIL() << "cut at " << size;
  }
  cutting = false;
}

}  // namespace quorvex::test
