#include "support/file.h"

#include <cerrno>
#include <cstring>

#include "support/memory.h"

namespace quorvex {
namespace {

constexpr uint32_t kFullDiskPauseMs = 10;

std::FILE* OpenStream(const char* path, int32_t mode) {
  switch (mode) {
    case kOpenCreate:
      return std::fopen(path, "wb");
    case kOpenAppend:
      return OpenForAppending(path);
    case kOpenUpdate:
      return std::fopen(path, "rb+");
    default:
      return OpenForReading(path);
  }
}

}  // namespace

FileHandle* OpenFile(const char* path, int32_t mode) {
  if (path == nullptr || std::strlen(path) > kMaxPath) return nullptr;
  auto* file = static_cast<FileHandle*>(Allocate(sizeof(FileHandle)));
  file->stream = OpenStream(path, mode);
  if (file->stream == nullptr) {
    Release(file);
    return nullptr;
  }
  return file;
}

bool CloseFile(FileHandle* file) {
  if (file == nullptr) return true;
  const bool closed = file->stream == nullptr || std::fclose(file->stream) == 0;
  file->stream = nullptr;
  Release(file);
  return closed;
}

#ifdef _WIN32
uint32_t ReadBytes(FileHandle* file, void* to, uint32_t count) {
  return static_cast<uint32_t>(std::fread(to, 1, count, file->stream));
}
bool SeekTo(FileHandle* file, uint64_t position) {
  return _fseeki64(file->stream, static_cast<int64_t>(position), SEEK_SET) == 0;
}
#else
// A handle is one thread's own, and the lock of a stream costs as much as a small record.
uint32_t ReadBytes(FileHandle* file, void* to, uint32_t count) {
  return static_cast<uint32_t>(fread_unlocked(to, 1, count, file->stream));
}
bool SeekTo(FileHandle* file, uint64_t position) {
  return fseeko(file->stream, static_cast<off_t>(position), SEEK_SET) == 0;
}
#endif

uint64_t SizeOf(FileHandle* file) { return SizeOfStream(file->stream); }

uint32_t WriteAll(FileHandle* file, const void* bytes, uint32_t count, GoOn go_on) {
  // Past the stream's own buffer: a stream that fails half way forgets what it had buffered.
  DropReadAhead(file->stream);
  uint32_t written = 0;
  int error = 0;
  while (written < count) {
    if (go_on != nullptr && !go_on(error)) break;
    errno = 0;
    const uint32_t piece =
        WritePiece(file->stream, static_cast<const uint8_t*>(bytes) + written, count - written);
    error = piece == 0 ? errno : 0;
    if (piece == 0) PauseMs(kFullDiskPauseMs);
    written += piece;
  }
  return written;
}

void StripExtension(const char* source, char* destination) {
  std::strcpy(destination, source);
  if (char* dot = std::strrchr(destination, '.')) *dot = '\0';
}

}  // namespace quorvex
