#include <fcntl.h>
#include <io.h>

#include <cerrno>
#include <cstring>

#include "support/platform.h"

namespace quorvex {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// In wide characters: CreateFileA does not take paths beyond 259 bytes everywhere.
HANDLE Open(const char* path, DWORD access, DWORD share, DWORD disposition, DWORD flags) {
  constexpr int kRoom = 1024;
  wchar_t wide[kRoom];
  const UINT code_page = AreFileApisANSI() != 0 ? CP_ACP : CP_OEMCP;
  if (MultiByteToWideChar(code_page, 0, path, -1, wide, kRoom) == 0) return INVALID_HANDLE_VALUE;
  return CreateFileW(wide, access, share, nullptr, disposition, flags, nullptr);
}

HANDLE HandleOf(std::FILE* stream) {
  return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

// A stream that owns `file`. Null where the runtime has no room for another.
std::FILE* StreamOf(HANDLE file, int flags, const char* mode) {
  const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(file), flags | _O_BINARY);
  if (descriptor < 0) {
    CloseHandle(file);
    return nullptr;
  }
  std::FILE* stream = _fdopen(descriptor, mode);
  if (stream == nullptr) _close(descriptor);
  return stream;
}

// Why a write failed, as the C library would say it.
int ErrorNumber(DWORD error) {
  switch (error) {
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return ENOSPC;
    case ERROR_ACCESS_DENIED:
    case ERROR_LOCK_VIOLATION:
      return EACCES;
    case ERROR_INVALID_HANDLE:
      return EBADF;
    case ERROR_WRITE_PROTECT:
      return EROFS;
    case ERROR_FILE_TOO_LARGE:
      return EFBIG;
    default:
      return EIO;
  }
}

// Volume and index name a file whatever path leads to it. False where the path opens nothing.
bool FileIdentity(const char* path, BY_HANDLE_FILE_INFORMATION* identity) {
  const HANDLE file = Open(path, 0, kShareAll, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  if (file == INVALID_HANDLE_VALUE) return false;
  const bool known = GetFileInformationByHandle(file, identity) != 0;
  CloseHandle(file);
  return known;
}

}  // namespace

int QueryFileInfo(const char* path, FileInfo* info) {
  if (path == nullptr) return 1;
  bool found = info->in_progress != 0 && FindNextFileA(info->search, &info->found) != 0;
  if (info->in_progress == 0) {
    info->search = FindFirstFileA(path, &info->found);
    found = info->search != INVALID_HANDLE_VALUE;
  }
  if (info->search != INVALID_HANDLE_VALUE) FindClose(info->search);
  info->search = INVALID_HANDLE_VALUE;
  if (!found) return 1;
  std::strncpy(info->name, info->found.cFileName, sizeof info->name - 1);
  info->name[sizeof info->name - 1] = '\0';
  info->size = info->found.nFileSizeLow;
  SYSTEMTIME utc{};
  FileTimeToSystemTime(&info->found.ftCreationTime, &utc);
  info->year = utc.wYear;
  info->month = static_cast<uint8_t>(utc.wMonth);
  info->day = static_cast<uint8_t>(utc.wDay);
  info->hour = static_cast<uint8_t>(utc.wHour);
  info->minute = static_cast<uint8_t>(utc.wMinute);
  info->second = static_cast<uint8_t>(utc.wSecond);
  return 0;
}

uint64_t WholeSize(const FileInfo& info) {
  return (static_cast<uint64_t>(info.found.nFileSizeHigh) << 32) | info.found.nFileSizeLow;
}

bool SameFile(const char* first, const char* second) {
  BY_HANDLE_FILE_INFORMATION a{};
  BY_HANDLE_FILE_INFORMATION b{};
  return FileIdentity(first, &a) && FileIdentity(second, &b) &&
         a.dwVolumeSerialNumber == b.dwVolumeSerialNumber && a.nFileIndexHigh == b.nFileIndexHigh &&
         a.nFileIndexLow == b.nFileIndexLow;
}

std::FILE* OpenForReading(const char* path) {
  const HANDLE file = Open(path, GENERIC_READ, kShareAll, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
  if (file == INVALID_HANDLE_VALUE) return nullptr;
  if (GetFileType(file) == FILE_TYPE_DISK) return StreamOf(file, _O_RDONLY, "rb");
  CloseHandle(file);
  return nullptr;
}

std::FILE* OpenForAppending(const char* path) {
  // With this right alone the system itself writes at the end: the runtime would only where bytes
  // go through it.
  const HANDLE file = Open(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL);
  return file != INVALID_HANDLE_VALUE ? StreamOf(file, _O_WRONLY | _O_APPEND, "ab") : nullptr;
}

uint64_t SizeOfStream(std::FILE* stream) {
  LARGE_INTEGER size{};
  return GetFileSizeEx(HandleOf(stream), &size) != 0 ? static_cast<uint64_t>(size.QuadPart) : 0;
}

void DropReadAhead(std::FILE* stream) { _fseeki64(stream, 0, SEEK_CUR); }

// Not through the runtime, which says of a write that a full disk cut short that it failed, and not
// how much it took.
uint32_t WritePiece(std::FILE* stream, const void* bytes, uint32_t count) {
  DWORD written = 0;
  const bool whole = WriteFile(HandleOf(stream), bytes, count, &written, nullptr) != 0;
  if (written == 0) errno = whole ? ENOSPC : ErrorNumber(GetLastError());
  return written;
}

void PauseMs(uint32_t milliseconds) { Sleep(milliseconds); }

void SendDiagnostic(const char* text) { OutputDebugStringA(text); }

}  // namespace quorvex
