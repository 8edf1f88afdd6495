#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "shared/system.h"
#include "support/file.h"

namespace quorvex::tool {
namespace {

constexpr int kRoom = 4 * static_cast<int>(kMaxPath);

std::string FromWide(const std::wstring& wide, UINT code_page) {
  const int length = static_cast<int>(wide.size());
  const int size =
      WideCharToMultiByte(code_page, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
  std::string text(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(code_page, 0, wide.data(), length, text.data(), size, nullptr, nullptr);
  return text;
}

std::wstring ToWide(const std::string& text) {
  const int length = static_cast<int>(text.size());
  const int size = MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<size_t>(size), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), size);
  return wide;
}

// What a pattern with * or ? in its last part stands for; itself where that is nothing.
void Expand(const std::wstring& argument, std::vector<std::string>* arguments) {
  WIN32_FIND_DATAW found{};
  HANDLE search = INVALID_HANDLE_VALUE;
  if (argument.find_first_of(L"*?") != std::wstring::npos) {
    search = FindFirstFileW(argument.c_str(), &found);
  }
  if (search == INVALID_HANDLE_VALUE) {
    arguments->push_back(FromWide(argument, CP_ACP));
    return;
  }
  const std::wstring folder = argument.substr(0, argument.find_last_of(L"/\\:") + 1);
  do {
    const std::wstring name = found.cFileName;
    if (name != L"." && name != L"..") arguments->push_back(FromWide(folder + name, CP_ACP));
  } while (FindNextFileW(search, &found) != 0);
  FindClose(search);
}

std::atomic<bool> done{false};

BOOL WINAPI OnConsoleEvent(DWORD event) {
  CountInterrupt();
  // Of a closed console and a log-off nothing is left when this returns, or after five seconds.
  constexpr DWORD kPause = 10, kMost = 4500;
  if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) return TRUE;
  for (DWORD waited = 0; !done && waited < kMost; waited += kPause) Sleep(kPause);
  return TRUE;
}

}  // namespace

std::vector<std::string> Arguments(int, char**) {
  std::vector<std::string> arguments;
  std::wstring argument;
  bool quoted = false, any = false, program = true;
  for (const wchar_t* at = GetCommandLineW();; ++at) {
    const bool ends = *at == L'\0' || (!quoted && (*at == L' ' || *at == L'\t'));
    if (ends && any && !program) Expand(argument, &arguments);
    if (ends && any) {
      program = false;
      argument.clear();
      any = false;
    }
    if (*at == L'\0') return arguments;
    if (ends) continue;
    any = true;
    if (*at == L'"') {
      quoted = !quoted;
    } else {
      argument += *at;
    }
  }
}

bool OwnsItsWindow() {
  DWORD processes[2];
  return GetConsoleProcessList(processes, 2) == 1 && _isatty(_fileno(stdin)) != 0 &&
         _isatty(_fileno(stdout)) != 0;
}

void WaitForEnter() {
  std::printf("\nPress Enter to close this window.");
  std::fflush(stdout);
  for (int c = std::getchar(); c != '\n' && c != EOF; c = std::getchar()) {
  }
}

void PrepareStreams() {
  static const UINT before = GetConsoleOutputCP();
  SetConsoleOutputCP(CP_UTF8);
  std::atexit([] { SetConsoleOutputCP(before); });
}

void UseBytes(std::FILE* stream) {
  std::fflush(stream);
  _setmode(_fileno(stream), _O_BINARY);
}

bool ErrorsGoToTerminal() { return _isatty(_fileno(stderr)) != 0; }

size_t TerminalColumns() {
  CONSOLE_SCREEN_BUFFER_INFO about{};
  const bool told = GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &about) != 0;
  const int columns = about.srWindow.Right - about.srWindow.Left + 1;
  return told && columns > 1 ? static_cast<size_t>(columns) : 80;
}

std::string Utf8(const std::string& path) {
  return GetACP() == CP_UTF8 ? path : FromWide(ToWide(path), CP_UTF8);
}

std::string SystemError() {
  const DWORD error = GetLastError();
  wchar_t text[kRoom];
  const DWORD size =
      FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                     text, static_cast<DWORD>(std::size(text)), nullptr);
  std::string reason = FromWide(std::wstring(text, size), CP_UTF8);
  reason.erase(reason.find_last_not_of(" .\r\n") + 1);
  return reason.empty() ? "error " + std::to_string(error) : reason;
}

std::optional<Identity> IdentityOf(const std::string& path) {
  const HANDLE file =
      CreateFileA(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return std::nullopt;
  BY_HANDLE_FILE_INFORMATION about{};
  const bool known = GetFileInformationByHandle(file, &about) != 0;
  CloseHandle(file);
  if (!known) return std::nullopt;
  return Identity(about.dwVolumeSerialNumber,
                  static_cast<uint64_t>(about.nFileIndexHigh) << 32 | about.nFileIndexLow);
}

std::string Resolved(const std::string& path, bool* there) {
  if (there != nullptr) *there = Exists(path);
  return path;
}

std::string NameKey(const std::string& name) {
  std::wstring wide = ToWide(name);
  CharUpperBuffW(wide.data(), static_cast<DWORD>(wide.size()));
  return FromWide(wide, CP_UTF8);
}

bool PutInPlace(const std::string& from, const std::string& to, bool replace) {
  return MoveFileExA(from.c_str(), to.c_str(), replace ? MOVEFILE_REPLACE_EXISTING : 0) != 0;
}

bool CreateFolder(const std::string& path) {
  for (size_t at = path.find_first_of("/\\", 1);; at = path.find_first_of("/\\", at + 1)) {
    const std::string front = path.substr(0, at);
    const bool drive = !front.empty() && front.back() == ':';
    if (!drive && CreateDirectoryA(front.c_str(), nullptr) == 0) {
      const DWORD error = GetLastError();
      if (!IsFolder(front)) {
        SetLastError(error);
        return false;
      }
    }
    if (at == std::string::npos) return true;
  }
}

std::string FullPath(const std::string& path) {
  char full[kRoom] = "";
  const DWORD size = GetFullPathNameA(path.c_str(), kRoom, full, nullptr);
  std::string text = size != 0 && size < kRoom ? full : path;
  std::replace(text.begin(), text.end(), '\\', '/');
  const bool root = text.size() == 3 && text[1] == ':';
  if (text.size() > 1 && text.back() == '/' && !root) text.pop_back();
  return text;
}

std::optional<FileState> StateOf(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA about{};
  if (GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &about) == 0 ||
      (about.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return std::nullopt;
  }
  const auto joined = [](DWORD high, DWORD low) { return static_cast<uint64_t>(high) << 32 | low; };
  // The system counts tenths of microseconds from 1601 on: what matters are differences, and a
  // signed number of nanoseconds holds 292 years.
  constexpr uint64_t kYears1970 = 116'444'736'000'000'000;
  const FILETIME& time = about.ftLastWriteTime;
  return FileState{
      static_cast<int64_t>(joined(time.dwHighDateTime, time.dwLowDateTime) - kYears1970) * 100,
      joined(about.nFileSizeHigh, about.nFileSizeLow)};
}

bool SyncFile(const std::string& path, int) {
  const HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const bool synced = FlushFileBuffers(file) != 0;
  const DWORD error = GetLastError();
  CloseHandle(file);
  SetLastError(error);
  return synced;
}

std::string MachineName() {
  char name[256] = "";
  DWORD size = sizeof name;
  GetComputerNameExA(ComputerNameDnsHostname, name, &size);
  return name;
}

uint32_t ProcessId() { return static_cast<uint32_t>(_getpid()); }

std::string TemporaryFolder() {
  char folder[MAX_PATH + 1] = "";
  return GetTempPathA(sizeof folder, folder) != 0 ? folder : ".";
}

bool IsLink(const std::string& path) {
  const DWORD attributes = GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

// The system refuses to remove a file that is open; in between it is the owner's while that lives.
bool CreateNew(const std::string& path, bool, int* taken) {
  *taken = -1;
  const int file = _open(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT,
                         _S_IREAD | _S_IWRITE);
  return file >= 0 && _close(file) == 0;
}

void GiveBack(int) {}

void RemoveLeftover(const std::string& path, uint32_t owner) {
  const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, owner);
  const bool gone = process == nullptr ? GetLastError() == ERROR_INVALID_PARAMETER
                                       : WaitForSingleObject(process, 0) == WAIT_OBJECT_0;
  if (process != nullptr) CloseHandle(process);
  if (gone) DeleteFileA(path.c_str());
}

void CatchInterrupts() { SetConsoleCtrlHandler(OnConsoleEvent, TRUE); }
void InterruptsAreDone() { done = true; }

}  // namespace quorvex::tool
