// What the command line needs of the operating system: file matters that the two platforms do
// differently, interrupts, and the exit codes.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>
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

// The program's arguments, without its name. On Windows they come from the command line as it was
// typed: a backslash in front of a quote is part of a path there ("C:\My card\"), and * and ? are
// for the program to expand.
std::vector<std::string> Arguments(int argc, char** argv);

// Whether the program has a window of its own, which closes when it ends: recordings were dropped
// on it, or it was opened by a double click.
bool OwnsItsWindow();
void WaitForEnter();

// What is printed is UTF-8, whatever the terminal thinks; bytes are not changed on their way.
void PrepareStreams();
void UseBytes(std::FILE* stream);
bool ErrorsGoToTerminal();
// Of the terminal that errors go to; 80 where it does not tell.
size_t TerminalColumns();

// Turns a path into UTF-8, whatever the system has it in.
std::string Utf8(const std::string& path);

// Say why the last call failed: one of the system's own, and one of the C library.
std::string SystemError();
std::string LastError();
std::string TextOfError(int error);

// Say what stands at `path`: anything, a folder, a link to something, what is no regular file (a
// device, a pipe, a folder too).
bool Exists(const std::string& path);
bool IsFolder(const std::string& path);
bool IsLink(const std::string& path);
bool IsSpecial(const std::string& path);
bool SameRecording(const std::string& first, const std::string& second);

// An identity names a file or folder whatever path leads to it; there is none where nothing stands.
using Identity = std::pair<uint64_t, uint64_t>;
std::optional<Identity> IdentityOf(const std::string& path);

// Follows a symbolic link to the file that it leads to; other paths stay as they are. Says whether
// anything stands there.
std::string Resolved(const std::string& path, bool* there = nullptr);

// Turns the name of a file into what its folder compares names by.
std::string NameKey(const std::string& name);

// Gives the file `from` the name `to`. Without `replace` only where nothing has that name, also
// not since a moment ago. False: SystemError().
bool PutInPlace(const std::string& from, const std::string& to, bool replace);

// Creates a folder and those around it. False: SystemError().
bool CreateFolder(const std::string& path);

// These separate the parts of a path.
#ifdef _WIN32
constexpr char kSeparators[] = "/\\:";
#else
constexpr char kSeparators[] = "/";
#endif

// What a folder holds, as far as its listing tells.
struct Entry {
  enum Kind : uint8_t { kUnknown, kFile, kFolder, kLink };
  std::string name;
  Kind kind;
};
// Lists a folder by names, sorted, without "." and "..". False where it cannot be read:
// LastError(). Names that cannot be said in this system's code page go into `unsayable`.
bool EntriesIn(const std::string& folder, std::vector<Entry>* entries,
               std::vector<std::string>* unsayable);

// The path from the root, without "." and "..", as it is written: no link is followed. Its parts
// are separated by "/" everywhere.
std::string FullPath(const std::string& path);

// When a file was last written, in nanoseconds of the file system's clock, and its bytes. Nothing
// where there is no regular file.
struct FileState {
  int64_t written;
  uint64_t size;
};
std::optional<FileState> StateOf(const std::string& path);

// Waits until what was written into a file would survive a power cut; `taken` is what CreateNew
// gave. False: SystemError().
bool SyncFile(const std::string& path, int taken);

std::string MachineName();
uint32_t ProcessId();
std::string TemporaryFolder();

// Creates an empty file where nothing is, for its owner's eyes only where `only_ours`, and takes it
// for this process, so that RemoveLeftover in another one leaves it alone. `taken` is to be given
// back, which takes -1 too. False where something is there, or another process removes it just now
// (errno EEXIST), or it cannot be: LastError().
bool CreateNew(const std::string& path, bool only_ours, int* taken);
void GiveBack(int taken);
// Removes a scratch file of process `owner` unless that still has it.
void RemoveLeftover(const std::string& path, uint32_t owner);

// From now on an interrupt (a closed terminal too) is only counted. One more than `kMostPatience`
// ends at once.
void CatchInterrupts();
int Interrupts();
inline bool Interrupted() { return Interrupts() > 0; }
void CountInterrupt();
// The program is about to end in order: a closed console need not wait any longer.
void InterruptsAreDone();

// Removes the scratch files and ends the process, for conversions that cannot be asked to stop.
[[noreturn]] void EndAtOnce();

}  // namespace quorvex::tool
