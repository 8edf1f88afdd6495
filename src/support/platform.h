// What the library asks of the operating system, one source file a platform behind it.
#pragma once

#include <cstdint>
#include <cstdio>

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
#include <sys/stat.h>  // IWYU pragma: export
#endif

namespace quorvex {

#ifdef _WIN32
using PlatformFileData = WIN32_FIND_DATAA;
using SearchHandle = HANDLE;
#else
using PlatformFileData = struct statx;
using SearchHandle = void*;
#endif

// What a search by path tells of a file. The record is shared with the instrument's own software;
// only the size is used here.
struct FileInfo {
  char name[256];        // the found name without its directory
  uint32_t size;         // the low 32 bits of the size in bytes
  uint16_t in_progress;  // 0 starts a new search; callers set it before the query
  uint8_t spare;
  uint16_t
      year;  // creation time, UTC; what the instrument's software keeps of a file, as is the rest
  uint8_t month, day, hour, minute, second;
  SearchHandle search;
  PlatformFileData found;  // the platform's own record
};

// Fills `info` for `path`. 0 on success, 1 where there is no such file. Each query stands alone:
// the search is closed before it returns, so one that continues (in_progress not 0) finds nothing.
int QueryFileInfo(const char* path, FileInfo* info);

// The size of the found file in full.
uint64_t WholeSize(const FileInfo& info);

// Whether two paths lead to one existing file, through links too.
bool SameFile(const char* first, const char* second);

// Opens a regular file for reading. Null for everything else: a pipe or a device could keep its
// reader waiting for ever, and cannot be read twice. Others may have it open for anything, deleting
// too.
std::FILE* OpenForReading(const char* path);

// Opens or creates a file; whatever is written goes to its end.
std::FILE* OpenForAppending(const char* path);

// The size of an open file, 0 where that is not known.
uint64_t SizeOfStream(std::FILE* stream);

// Gives up what a stream has read ahead: what is written next goes past its buffer.
void DropReadAhead(std::FILE* stream);

// Writes up to `count` bytes where the file stands; returns how many arrived. 0 on failure, with
// the reason in `errno`.
uint32_t WritePiece(std::FILE* stream, const void* bytes, uint32_t count);

void PauseMs(uint32_t milliseconds);

// The platform's debug output; dropped where there is none.
void SendDiagnostic(const char* text);

}  // namespace quorvex
