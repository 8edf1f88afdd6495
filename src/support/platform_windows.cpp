#include <io.h>

#include <cstring>

#include "support/platform.h"

namespace quorvex {
namespace {

// Volume and index name a file whatever path leads to it. False where the path opens nothing.
bool FileIdentity(const char* path, BY_HANDLE_FILE_INFORMATION* identity) {
  const HANDLE file = CreateFileA(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                  nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const bool known = GetFileInformationByHandle(file, identity) != 0;
  CloseHandle(file);
  return known;
}

}  // namespace

int QueryFileInfo(const char* path, FileInfo* info) {
  if (path == nullptr) return 1;
  if (info->in_progress == 0) {
    info->search = FindFirstFileA(path, &info->found);
    if (info->search == INVALID_HANDLE_VALUE) return 1;
  } else if (FindNextFileA(info->search, &info->found) == 0) {
    return 1;
  }
  FindClose(info->search);
  info->search = INVALID_HANDLE_VALUE;
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
  std::FILE* stream = std::fopen(path, "rb");
  if (stream == nullptr) return nullptr;
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
  if (GetFileType(handle) == FILE_TYPE_DISK) return stream;
  std::fclose(stream);
  return nullptr;
}

uint32_t WritePiece(std::FILE* stream, const void* bytes, uint32_t count) {
  const int written = _write(_fileno(stream), bytes, count);
  return written > 0 ? static_cast<uint32_t>(written) : 0;
}

void PauseMs(uint32_t milliseconds) { Sleep(milliseconds); }

void SendDiagnostic(const char* text) { OutputDebugStringA(text); }

}  // namespace quorvex
