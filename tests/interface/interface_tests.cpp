// The library as a host meets it: loaded at run time, its exports looked up by name.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#define QUORVEX_STATIC  // declarations only: the functions come from the loaded library
#include "quorvex64.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

void* Lookup(const char* name) {
#ifdef _WIN32
  static const HMODULE library = LoadLibraryA("Quorvex64.dll");
  return library == nullptr ? nullptr : reinterpret_cast<void*>(GetProcAddress(library, name));
#else
  static void* library = dlopen(QUORVEX_LIBRARY, RTLD_NOW);
  return library == nullptr ? nullptr : dlsym(library, name);
#endif
}

#define EXPORT(name) reinterpret_cast<decltype(&name)>(Lookup(#name))

void WriteFile(const char* name, const std::vector<uint8_t>& bytes) {
  std::FILE* file = std::fopen(name, "wb");
  ASSERT_NE(nullptr, file) << name;
  std::fwrite(bytes.data(), 1, bytes.size(), file);
  std::fclose(file);
}

std::string ReadFile(const char* name) {
  std::string text;
  if (std::FILE* file = std::fopen(name, "rb")) {
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) text += static_cast<char>(c);
    std::fclose(file);
  }
  return text;
}

std::vector<uint8_t> FileOf(uint32_t version, uint32_t type, size_t size) {
  std::vector<uint8_t> bytes(size);
  std::memcpy(bytes.data(), &version, 4);
  std::memcpy(bytes.data() + 4, &type, 4);
  return bytes;
}

TEST(Interface, VersionAndTwinExports) {
  EXPECT_EQ(3744, EXPORT(QuorvexGetVersion)());
  void* empty = Lookup("QuorvexConvertGenRecToFile");
  EXPECT_NE(nullptr, empty);
  EXPECT_EQ(empty, Lookup("QuorvexConvertGenRecToRAM"));
  EXPECT_EQ(empty, Lookup("QuorvexConvertHeadParamsToFile"));
  EXPECT_EQ(empty, Lookup("QuorvexConvertHeadParamsToRAM"));
  EXPECT_EQ(Lookup("QuorvexDestroyBufGenRecToRAM"), Lookup("QuorvexDestroyBufHeadParamsToRAM"));
}

TEST(Interface, BuffersAreTrackedBlocks) {
  struct {
    void* block;
    uint32_t size;
  } const buffers[] = {{EXPORT(QuorvexCreateBufHeadParamsToRAM)(), 30720},
                       {EXPORT(QuorvexCreateBufGenRecToRAM)(2), 808960},
                       {EXPORT(QuorvexCreateBufGenRecToRAM)(0), 0}};
  for (const auto& buffer : buffers) {
    uint32_t prefix[2];
    std::memcpy(prefix, static_cast<uint8_t*>(buffer.block) - 8, 8);
    EXPECT_EQ(buffer.size, prefix[0]);
    EXPECT_EQ(0x11223344u, prefix[1]);
    std::memset(buffer.block, 0xFF, buffer.size);
    EXPORT(QuorvexDestroyBufGenRecToRAM)(buffer.block);
  }
  uint64_t foreign[2] = {};
  EXPORT(QuorvexDestroyBufHeadParamsToRAM)(&foreign[1]);  // no guard word: left alone
  EXPORT(QuorvexDestroyBufHeadParamsToRAM)(nullptr);
}

TEST(Interface, NumberOfRecordsRoundsToWholeFullRecords) {
  struct {
    uint32_t type;
    size_t size;
    int32_t count;
  } const cases[] = {{1, 3072, 0},
                     {1, 3072 + 40448 * 5, 5},
                     {1, 3072 + 40448 * 5 + 20223, 5},
                     {1, 3072 + 40448 * 5 + 20224, 6},
                     {1, 3071, INT32_MIN},
                     {1, 100, INT32_MIN},
                     {10, 3072 + 40448 * 5, 0}};
  for (const auto& c : cases) {
    WriteFile("count.rec", FileOf(1, c.type, c.size));
    EXPECT_EQ(c.count, EXPORT(QuorvexGetNumberOfRecords)("count.rec")) << c.type << ' ' << c.size;
  }
  std::remove("count.rec");
  EXPECT_EQ(0, EXPORT(QuorvexGetNumberOfRecords)("count.rec"));
}

TEST(Interface, NamesTheDocumentAfterTheRecording) {
  WriteFile("T0001.SES.rec", FileOf(0xFFFFFFFF, 15, 48));
  EXPECT_EQ(-1, EXPORT(QuorvexGetFileVersion)("T0001.SES.rec"));
  EXPORT(QuorvexConvert)("T0001.SES.rec", nullptr, nullptr);
  const std::string document = ReadFile("T0001.SES.xml");
  EXPECT_NE(std::string::npos, document.find("<FILE_VERSION>-1</FILE_VERSION>\r\n"));
  EXPORT(QuorvexConvertPerPartes)("T0001.SES.rec", "other name", 7, 9, nullptr);
  EXPECT_EQ(document, ReadFile("other name")) << "ranges are for general recordings";

  WriteFile("noextension", FileOf(1, 15, 48));
  EXPORT(QuorvexConvert)("noextension", nullptr, nullptr);
  EXPECT_NE("", ReadFile("noextension.xml"));
  for (const char* name :
       {"T0001.SES.rec", "T0001.SES.xml", "other name", "noextension", "noextension.xml"}) {
    std::remove(name);
  }
}

TEST(Interface, ARecordingIsNeverOverwritten) {
  const std::vector<uint8_t> recording = FileOf(1, 15, 48);
  WriteFile("recording.xml", recording);
  EXPORT(QuorvexConvert)("recording.xml", nullptr, nullptr);
  EXPORT(QuorvexConvert)("recording.xml", "./recording.xml", nullptr);
  EXPECT_EQ(std::string(recording.begin(), recording.end()), ReadFile("recording.xml"));
  std::remove("recording.xml");
}

TEST(Interface, NothingToDoIsSilent) {
  char text[512] = "before";
  EXPORT(QuorvexConvert)(nullptr, nullptr, nullptr);
  EXPORT(QuorvexConvert)("missing.rec", "missing.xml", nullptr);
  EXPECT_EQ("", ReadFile("missing.xml"));
  EXPORT(QuorvexConvert)(std::string(600, 'a').c_str(), nullptr, nullptr);
  WriteFile("there.rec", FileOf(1, 15, 48));
  EXPORT(QuorvexConvert)("there.rec", "no such folder/document.xml", nullptr);
  std::remove("there.rec");
  EXPECT_EQ(0, EXPORT(QuorvexGetFileVersion)(nullptr));
  EXPECT_EQ(0, EXPORT(QuorvexGetNumberOfRecords)(nullptr));
  EXPORT(QuorvexGetRecordInfo)(nullptr, text);
  EXPECT_STREQ("before", text);
  EXPORT(QuorvexGetRecordInfo)("missing.rec", nullptr);
}

}  // namespace
