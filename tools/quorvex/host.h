// What the command line needs of its host: file matters that the two platforms do differently,
// messages, and the exit codes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quorvex::tool {

enum ExitCode {
  kDone = 0,
  kDoubtful = 1,  // a check has warnings
  kUsage = 2,
  kNoInput = 3,  // missing or unreadable
  kUnknownType = 4,
  kCutShort = 5,  // ends inside its head
  kNoOutput = 6,  // the document cannot be written
  kDamaged = 7,   // a check has errors
  kCancelled = 130,
};

// "FILE: reason" on stderr, in the one form that all messages have.
void Complain(const std::string& path, const std::string& reason);

// A path as the host has it, in UTF-8.
std::string Utf8(const std::string& path);

// The text of the last failed call.
std::string LastError();

// Whether something stands at `path` that is no regular file (a device, a pipe, a folder).
bool IsFolder(const std::string& path);
bool IsSpecial(const std::string& path);
bool SameRecording(const std::string& first, const std::string& second);

// The file that a symbolic link leads to; the path itself where it is none.
std::string Resolved(const std::string& path);

// Puts `from` in the place of `to`, which may exist.
bool Replace(const std::string& from, const std::string& to);

// Whether the disk that `path` stands on has no room for the next piece of a document.
bool IsDiskFull(const std::string& path);

uint32_t ProcessId();
bool ErrorsGoToTerminal();

// Names in a folder, sorted, without "." and "..". Empty where it cannot be read.
std::vector<std::string> NamesIn(const std::string& folder);

// From now on an interrupt only sets the flag that Interrupted() reads; a second one ends at once.
void CatchInterrupts();
bool Interrupted();

// Removes the scratch files and ends the process, for conversions that cannot be asked to stop.
[[noreturn]] void EndAtOnce();

// The file that a worker is writing; empty for none.
constexpr unsigned kMostWorkers = 64;
void SetScratch(unsigned worker, const std::string& path);

}  // namespace quorvex::tool
