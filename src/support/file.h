// File handles with numbered modes, reading, writing, and file names.
#pragma once

#include <cstdint>
#include <cstdio>

#include "support/platform.h"  // IWYU pragma: export

namespace quorvex {

// A path that the library takes is at most this long; longer ones count as not openable.
constexpr uint32_t kMaxPath = 511;

// A tracked 8-byte block that holds the runtime's stream; a null stream means closed.
struct FileHandle {
  std::FILE* stream;
};
static_assert(sizeof(FileHandle) == 8);

// The instrument's own numbering. Nothing here appends or updates, but the numbers are kept.
enum OpenMode : int32_t { kOpenRead = 1, kOpenCreate = 2, kOpenAppend = 3, kOpenUpdate = 4 };

// Opens "wb", "ab" or "rb+" for modes 2, 3 and 4 and "rb" for every other. Null on failure, for a
// null path and for one longer than kMaxPath, and where something else than a regular file is to be
// read.
FileHandle* OpenFile(const char* path, int32_t mode);

// Closes the stream and releases the handle; null is left alone. False where the system says only
// now that something written before did not arrive.
bool CloseFile(FileHandle* file);

// Bytes read, fewer than `count` at the end of the file. The rest of the buffer stays as it was.
uint32_t ReadBytes(FileHandle* file, void* to, uint32_t count);

bool SeekTo(FileHandle* file, uint64_t position);
// In bytes; 0 where it is not known.
uint64_t SizeOf(FileHandle* file);

// Asked in front of a piece that is written (with 0), and after one of which nothing arrived (with
// the reason as errno has it): whether to go on. No host can ask for this; the command line does.
using GoOn = bool (*)(int error);

// Writes all of `count` bytes and returns `count`. A piece that writes nothing (a full disk) is
// tried again after a pause until there is room: a document is never silently cut short. Only
// `go_on`, where there is one, ends that: then fewer bytes have been written.
uint32_t WriteAll(FileHandle* file, const void* bytes, uint32_t count, GoOn go_on = nullptr);

// Copies `source` without its last '.' and what follows. `destination` needs as much room.
void StripExtension(const char* source, char* destination);

// Closes a file when its scope ends.
class File {
 public:
  File(const char* path, int32_t mode) : handle_(OpenFile(path, mode)) {}
  ~File() { CloseFile(handle_); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  FileHandle* get() { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  FileHandle* handle_;
};

}  // namespace quorvex
