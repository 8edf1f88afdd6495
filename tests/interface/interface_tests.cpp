// The library as a host meets it: loaded at run time, its exports looked up by name.
#include <gtest/gtest.h>

#include <immintrin.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#define QUORVEX_STATIC  // declarations only: the functions come from the loaded library
#include "quorvex64.h"

#ifdef _WIN32
#include <windows.h>

#include <psapi.h>
#else
#include <dlfcn.h>
#include <pthread.h>

#include <fstream>
#endif

namespace {

#ifdef _WIN32
void* Load(const char* path) { return LoadLibraryA(path); }
void* Find(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}
bool Unload(void* library, const char* path) {
  FreeLibrary(static_cast<HMODULE>(library));
  return GetModuleHandleA(path) == nullptr;
}
#else
void* Load(const char* path) { return dlopen(path, RTLD_NOW); }
void* Find(void* library, const char* name) { return dlsym(library, name); }
bool Unload(void* library, const char* path) {
  dlclose(library);
  return dlopen(path, RTLD_NOW | RTLD_NOLOAD) == nullptr;
}
#endif

void* Lookup(const char* name) {
  static void* library = Load(QUORVEX_LIBRARY);
  return library == nullptr ? nullptr : Find(library, name);
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
  char path[512] = "count.rec", line[512];
  WriteFile(path, FileOf(1, 1, 3072));
  EXPORT(QuorvexGetRecordInfo)(path, line);
  EXPORT(QuorvexGetRecordInfo)(path, path);
  EXPECT_STREQ(line, path) << "the line may replace the path";
  EXPECT_EQ('1', line[0]);
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

// A recording of any type with all kinds of numbers in it.
std::vector<uint8_t> Noise(uint32_t type) {
  std::vector<uint8_t> bytes = FileOf(1, type, 60000);
  for (size_t i = 8; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * i * 37 + i / 5);
  bytes[8 + 13] = 3;                    // connection
  std::memset(&bytes[8 + 976], 0, 4);   // profile
  std::memset(&bytes[8 + 1376], 0, 4);  // samples of a capture
  return bytes;
}

// The processor's floating-point settings, and what has happened under them.
struct Floats {
  uint32_t sse;
  uint16_t control, status;
  bool operator==(const Floats&) const = default;
};
Floats CurrentFloats() {
  Floats f{_mm_getcsr(), 0, 0};
  asm volatile("fnstcw %0\n\tfnstsw %1" : "=m"(f.control), "=m"(f.status));
  return f;
}
void SetFloats(const Floats& f) {
  asm volatile("fnclex\n\tfldcw %0" : : "m"(f.control));
  _mm_setcsr(f.sse);
}

constexpr Floats kChanged = {0x5F80, 0x0A7F, 0};
Floats floats_seen;
int32_t QUORVEX_CALL LookAndChange(float) {
  floats_seen = CurrentFloats();
  SetFloats(kChanged);
  return -1;
}

TEST(Interface, FloatingPointSettingsAreTheHosts) {
  const auto convert = EXPORT(QuorvexConvert);
  const auto describe = EXPORT(QuorvexGetRecordInfo);
  const Floats before = CurrentFloats();
  // Every exception interrupts; rounding upwards, with denormals as zero; downwards, flags
  // standing.
  for (const Floats& host : {Floats{0, 0x0340, 0}, {0xDFC0, 0x0B40, 0}, {0x2021, 0x0760, 0}}) {
    for (uint32_t type = 1; type <= 18; ++type) {
      WriteFile("floats.rec", Noise(type));
      char lines[2][512];
      convert("floats.rec", "usual.xml", nullptr);
      describe("floats.rec", lines[0]);
      floats_seen = host;
      SetFloats(host);
      convert("floats.rec", "floats.xml", nullptr);
      describe("floats.rec", lines[1]);
      EXPORT(QuorvexGetNumberOfRecords)("floats.rec");
      const Floats after = CurrentFloats();
      convert("floats.rec", "stopped.xml", LookAndChange);
      const Floats stopped = CurrentFloats();
      asm volatile("fwait");  // where anything is pending it comes now
      SetFloats(before);
      EXPECT_TRUE(ReadFile("usual.xml") == ReadFile("floats.xml")) << type;
      EXPECT_STREQ(lines[0], lines[1]);
      EXPECT_TRUE(after == host && floats_seen == host) << type;
      EXPECT_TRUE(stopped == host || stopped == kChanged) << type;
    }
  }
  for (const char* name : {"floats.rec", "usual.xml", "floats.xml", "stopped.xml"}) {
    std::remove(name);
  }
}

// What a process holds: handles or descriptors, the next free slot for data of threads, memory.
struct Held {
  uint64_t handles, slot, kilobytes;
};
Held HeldNow() {
#ifdef _WIN32
  // Not counted, as Wine does not: the lowest free one is given out.
  const HANDLE fresh = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  CloseHandle(fresh);
  const DWORD slot = TlsAlloc();
  TlsFree(slot);
  PROCESS_MEMORY_COUNTERS memory{};
  K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
  return {reinterpret_cast<uintptr_t>(fresh), slot, memory.PagefileUsage / 1024};
#else
  pthread_key_t slot{};
  pthread_key_create(&slot, nullptr);
  pthread_key_delete(slot);
  uint64_t all = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  const auto files = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  return {static_cast<uint64_t>(files), slot, resident * 4};
#endif
}

TEST(Interface, ComesAndGoesWithoutATrace) {
  constexpr char kCopy[] = "./comes-and-goes.dll";  // no other test has loaded it
  std::filesystem::copy_file(QUORVEX_LIBRARY, kCopy,
                             std::filesystem::copy_options::overwrite_existing);
  WriteFile("cycle.rec", Noise(1));
  Held first{}, last{};
  for (int cycle = 0; cycle < 120; ++cycle) {
    last = HeldNow();
    if (cycle == 20) first = last;
    void* library = Load(kCopy);
    ASSERT_NE(nullptr, library);
    char line[512];
    void* convert = Find(library, "QuorvexConvert");
    void* describe = Find(library, "QuorvexGetRecordInfo");
    reinterpret_cast<decltype(&QuorvexConvert)>(convert)("cycle.rec", nullptr, nullptr);
    reinterpret_cast<decltype(&QuorvexGetRecordInfo)>(describe)("cycle.rec", line);
    ASSERT_TRUE(Unload(library, kCopy));
  }
  EXPECT_EQ(first.slot, last.slot);
  EXPECT_LE(last.handles, first.handles + 40);  // Windows gives them out in an order of its own
#ifndef __SANITIZE_ADDRESS__                    // which keeps what is freed for a while
  EXPECT_LT(last.kilobytes, first.kilobytes + 1000);
#endif
  for (const char* name : {kCopy, "cycle.rec", "cycle.xml"}) std::remove(name);
}

#ifdef _WIN32
TEST(Interface, LongPathsAndSharedRecordings) {
  WriteFile("short.rec", Noise(18));
  EXPORT(QuorvexConvert)("short.rec", "short.xml", nullptr);
  std::wstring path = L"\\\\?\\" + std::filesystem::current_path().wstring();
  std::vector<std::wstring> folders;
  while (path.size() < 300) {
    folders.push_back(path += L"\\" + std::wstring(60, L'd'));
    CreateDirectoryW(path.c_str(), nullptr);
  }
  path += L"\\long.rec";
  ASSERT_TRUE(CopyFileW(L"short.rec", path.c_str(), FALSE));
  std::string bytes;
  for (const wchar_t c : path) bytes += static_cast<char>(c);
  EXPORT(QuorvexConvert)(bytes.c_str(), "long.xml", nullptr);
  EXPECT_TRUE(ReadFile("short.xml") == ReadFile("long.xml"));
  // Somebody who means to delete it, and lets others go on meanwhile.
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE held = CreateFileA("short.rec", GENERIC_READ | DELETE, kShareAll, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  EXPECT_EQ(1, EXPORT(QuorvexGetFileVersion)("short.rec"));
  CloseHandle(held);
  DeleteFileW(path.c_str());
  for (; !folders.empty(); folders.pop_back()) RemoveDirectoryW(folders.back().c_str());
  for (const char* name : {"short.rec", "short.xml", "long.xml"}) std::remove(name);
}
#endif

}  // namespace
