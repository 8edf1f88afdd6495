// Calls of the system that fail: a disk that fills up in the middle of a write, takes odd pieces
// and empties again, and the Nth call of each kind for every N that a conversion comes to.
#include <gtest/gtest.h>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <ctime>
#endif

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <set>

#include "sample.h"
#include "shared/inspection.h"
#include "support.h"
#include "support/loads.h"
#include "support/memory.h"
#include "support/platform.h"

namespace {

size_t room_left = SIZE_MAX;
int refusals = 0;

// How much of so many bytes the disk takes. Where it takes none, a little is free the next time.
size_t Taken(size_t count) {
  const size_t piece = std::min(count, room_left);
  if (room_left != SIZE_MAX) room_left -= piece;
  if (piece == 0) room_left = 1 + static_cast<size_t>(++refusals) * 1013 % 4099;
  return piece;
}

enum Call { kNoCall, kOpen, kState, kRead, kSeek, kWrite, kClose, kHeap, kCalls };
Call failing = kNoCall;
int calls_before = 0;        // the one that fails
uint32_t refused_bytes = 0;  // of the heap, with the prefix of a block

// Whether this call is the one. None follows: a fault is alone.
bool Fails(Call call) {
  if (call != failing || calls_before-- > 0) return false;
  failing = kNoCall;
  errno = call == kHeap ? ENOMEM : EIO;
  return true;
}

}  // namespace

// These stand in for the system's calls in this program, the library's code included: the linker is
// told so (-Wl,--wrap), but for those that Windows imports.
#define STANDS_IN(call, result, name, parameters, arguments, failure) \
  extern "C" result __real_##name parameters;                         \
  extern "C" result __wrap_##name parameters {                        \
    return Fails(call) ? failure : __real_##name arguments;           \
  }
STANDS_IN(kOpen, std::FILE*, fopen, (const char* path, const char* mode), (path, mode), nullptr)
extern "C" void* __real_calloc(size_t count, size_t size);
extern "C" void* __wrap_calloc(size_t count, size_t size) {
  if (!Fails(kHeap)) return __real_calloc(count, size);
  refused_bytes = static_cast<uint32_t>(count * size);
  return nullptr;
}
extern "C" int __real_fclose(std::FILE* file);
extern "C" int __wrap_fclose(std::FILE* file) {
  const bool fails = Fails(kClose);
  return __real_fclose(file) != 0 || fails ? EOF : 0;
}
#ifdef _WIN32
BOOL WINAPI FullDisk(HANDLE file, const void* bytes, DWORD count, DWORD* written, OVERLAPPED* at) {
  static const auto real = reinterpret_cast<decltype(&FullDisk)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32"), "WriteFile")));
  const auto piece = Fails(kWrite) ? 0 : static_cast<DWORD>(Taken(count));
  if (piece != 0 && !real(file, bytes, piece, written, at)) return FALSE;
  if (piece == count) return TRUE;
  *written = piece;  // and yet it is a failure: so says a disk that has room for a part
  SetLastError(ERROR_DISK_FULL);
  return FALSE;
}
extern "C" {
decltype(&FullDisk) __imp_WriteFile = FullDisk;
}
STANDS_IN(kRead, size_t, fread, (void* to, size_t size, size_t count, std::FILE* file),
          (to, size, count, file), 0)
#else
extern "C" ssize_t write(int file, const void* bytes, size_t count) {
  const size_t piece = Fails(kWrite) ? 0 : Taken(count);
  if (piece != 0) return syscall(SYS_write, file, bytes, piece);
  errno = ENOSPC;
  return -1;
}
extern "C" int __real_open(const char* path, int flags, ...);
extern "C" int __wrap_open(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const auto mode = va_arg(more, unsigned int);
  va_end(more);
  return Fails(kOpen) ? -1 : __real_open(path, flags, mode);
}
STANDS_IN(kOpen, std::FILE*, fdopen, (int file, const char* mode), (file, mode), nullptr)
STANDS_IN(kState, int, fstat, (int file, struct stat* to), (file, to), -1)
STANDS_IN(kRead, size_t, fread_unlocked, (void* to, size_t size, size_t count, std::FILE* file),
          (to, size, count, file), 0)
STANDS_IN(kSeek, int, fseeko, (std::FILE * file, off_t to, int from), (file, to, from), -1)
extern "C" int __wrap_nanosleep(const struct timespec*, struct timespec*) { return 0; }
#endif

namespace quorvex::test {
namespace {

namespace fs = std::filesystem;

TEST(Faults, AFullDiskDelaysButLosesNothing) {
  const Bytes changes = HeadOf(10).PadTo(3072 + 5 * 4088);
  const std::string whole = Converted(changes);
  room_left = 70000;
  const std::string delayed = Converted(changes);
  room_left = 0;
  errno = 0;
  std::FILE* file = std::fopen(InFolder("full").c_str(), "wb");
  EXPECT_EQ(0u, WritePiece(file, "x", 1));
  EXPECT_EQ(ENOSPC, errno);
  std::fclose(file);
  room_left = SIZE_MAX;
  EXPECT_GT(refusals, 10);
  EXPECT_TRUE(whole == delayed);
}

// What must hold when the Nth call of a kind fails while something is done with a recording. False
// where it does not come to that call any more.
template <typename Do>
bool HoldsWithout(Call call, int nth, const std::string& recording, Do something) {
  const std::string before = ReadFile(recording);
  const uint32_t tracked = TrackedBytes();
  const size_t open_files = fuzz::OpenFiles();
  refused_bytes = 0;
  calls_before = nth;
  failing = call;
  something();
  const bool reached = failing == kNoCall;
  failing = kNoCall;
  // A refused attempt counts as handed out: its bytes without the prefix.
  const uint32_t refused = refused_bytes != 0 ? refused_bytes - 8 : 0;
  EXPECT_EQ(tracked + refused, TrackedBytes());
  EXPECT_EQ(open_files, fuzz::OpenFiles());
  EXPECT_TRUE(before == ReadFile(recording));
  EXPECT_FALSE(testing::Test::HasFailure()) << recording << ": " << call << " number " << nth;
  return reached && !testing::Test::HasFailure();
}

// Every one at first; behind many records one is as the other.
int Next(int nth) { return nth + 1 + nth / 40; }

TEST(Faults, AnyOneCallThatFails) {
  const std::string folder = InFolder("faulty");
  fs::create_directories(folder);
  samples::MakeAll(folder);
  const std::string document = InFolder("faulty.xml");
  std::set<uint32_t> types;
  int faults[kCalls] = {};
  for (const fs::path& path : std::set<fs::path>(fs::directory_iterator(folder), {})) {
    const std::string recording = path.string();
    const std::string bytes = ReadFile(recording);
    if (!types.insert(Load<uint32_t>(bytes.data() + 4)).second) continue;
    fs::resize_file(path, std::min<size_t>(bytes.size(), 60000));
    QuorvexConvert(recording.c_str(), document.c_str(), nullptr);
    const std::string whole = ReadFile(document);
    for (int call = kOpen; call < kCalls; ++call) {
      const auto kind = static_cast<Call>(call);
      const bool harmless = kind == kWrite || kind == kClose || kind == kHeap;
      int nth = 0;
      for (; HoldsWithout(kind, nth, recording,
                          [&] {
                            fs::remove(document);
                            QuorvexConvert(recording.c_str(), document.c_str(), nullptr);
                          });
           nth = Next(nth)) {
        const std::string found = ReadFile(document);
        // Waiting helps where there is no room, and nothing is lost where only the end is in doubt.
        EXPECT_TRUE(found == whole || (!harmless && (kind != kOpen || found.empty())))
            << call << " number " << nth;
        EXPECT_EQ("", found.empty() ? "" : fuzz::StructureProblem(found));
      }
      faults[call] += nth;
      EXPECT_TRUE(whole == ReadFile(document)) << "it works again right after";
      char text[512];
      for (nth = 0; HoldsWithout(kind, nth, recording,
                                 [&] { QuorvexGetRecordInfo(recording.c_str(), text); });) {
        nth = Next(nth);
      }
      for (nth = 0; HoldsWithout(kind, nth, recording, [&] {
             QuorvexConvert(recording.c_str(), recording.c_str(), nullptr);
             EXPECT_GE(100u, tool::CheckRecording(recording).findings.list.size());
           });) {
        nth = Next(nth);
      }
    }
  }
  for (const Call call : {kOpen, kRead, kWrite, kClose, kHeap}) EXPECT_LE(17, faults[call]) << call;
}

}  // namespace
}  // namespace quorvex::test
