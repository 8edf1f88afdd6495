// A disk that fills up in the middle of a write, takes odd pieces, and empties again.
#include <gtest/gtest.h>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/syscall.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <cerrno>

#include "support.h"
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

}  // namespace

// Stands in for the system's write in this program, the library's code included.
#ifdef _WIN32
BOOL WINAPI FullDisk(HANDLE file, const void* bytes, DWORD count, DWORD* written, OVERLAPPED* at) {
  static const auto real = reinterpret_cast<decltype(&FullDisk)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32"), "WriteFile")));
  const auto piece = static_cast<DWORD>(Taken(count));
  if (piece != 0 && !real(file, bytes, piece, written, at)) return FALSE;
  if (piece == count) return TRUE;
  *written = piece;  // and yet it is a failure: so says a disk that has room for a part
  SetLastError(ERROR_DISK_FULL);
  return FALSE;
}
extern "C" {
decltype(&FullDisk) __imp_WriteFile = FullDisk;
}
#else
extern "C" ssize_t write(int file, const void* bytes, size_t count) {
  const size_t piece = Taken(count);
  if (piece != 0) return syscall(SYS_write, file, bytes, piece);
  errno = ENOSPC;
  return -1;
}
#endif

namespace quorvex::test {
namespace {

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

}  // namespace
}  // namespace quorvex::test
