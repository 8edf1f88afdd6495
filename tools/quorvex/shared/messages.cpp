#include "shared/messages.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <iterator>

#include "shared/scratch.h"
#include "shared/system.h"

namespace quorvex::tool {
namespace {

int print_error = 0;  // the first, after which nothing more is printed

constexpr uint32_t kNoCharacter = 0xFFFFFFFF;

// The character at `at` of a UTF-8 text, which moves behind it; a byte that is none by itself.
uint32_t NextCharacter(const std::string& text, size_t* at) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
  const uint8_t first = byte((*at)++);
  if (first < 0x80) return first;
  const int more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
  if (first < 0xC2 || first > 0xF4) return kNoCharacter;
  uint32_t character = first & (0x3Fu >> more);
  size_t end = *at;
  for (int i = 0; i < more; ++i, ++end) {
    if (end >= text.size() || (byte(end) & 0xC0) != 0x80) return kNoCharacter;
    character = character << 6 | (byte(end) & 0x3Fu);
  }
  constexpr uint32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
  const bool surrogate = character >= 0xD800 && character < 0xE000;
  if (character < kLeast[more] || surrogate || character > 0x10FFFF) return kNoCharacter;
  *at = end;
  return character;
}

struct CharacterRange {
  uint32_t first, last;
};
template <size_t N>
bool IsIn(const CharacterRange (&ranges)[N], uint32_t character) {
  return std::any_of(std::begin(ranges), std::end(ranges), [&](const CharacterRange& r) {
    return character >= r.first && character <= r.last;
  });
}

constexpr CharacterRange kSteering[] = {{0, 0x1F},        {0x7F, 0x9F},
                                        {0x200E, 0x200F}, {0x2028, 0x202E},
                                        {0x2066, 0x2069}, {kNoCharacter, kNoCharacter}};
// Combining marks and such; characters of East Asian scripts and pictures.
constexpr CharacterRange kNoColumn[] = {
    {0x300, 0x36F},   {0x483, 0x489},   {0x591, 0x5BD},   {0x610, 0x61A},   {0x64B, 0x65F},
    {0xE31, 0xE31},   {0xE34, 0xE3A},   {0xE47, 0xE4E},   {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF},
    {0x200B, 0x200D}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};
constexpr CharacterRange kTwoColumns[] = {
    {0x1100, 0x115F}, {0x2E80, 0x303E},   {0x3041, 0xA4CF},   {0xA960, 0xA97F},
    {0xAC00, 0xD7A3}, {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
    {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

}  // namespace

std::string Shown(const std::string& text, bool as_json) {
  std::string shown;
  for (size_t at = 0; at < text.size();) {
    const size_t from = at;
    const uint32_t character = NextCharacter(text, &at);
    char escape[16];
    if (!IsIn(kSteering, character)) {
      shown.append(text, from, at - from);
    } else if (as_json) {
      std::snprintf(escape, sizeof escape, "\\u%04x", character);
      shown += escape;
    } else {
      for (size_t i = from; i < at; ++i) {
        std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<uint8_t>(text[i]));
        shown += escape;
      }
    }
  }
  return shown;
}

size_t WidthOf(const std::string& text) {
  size_t width = 0;
  for (size_t at = 0; at < text.size();) {
    const uint32_t character = NextCharacter(text, &at);
    width += IsIn(kNoColumn, character) ? 0 : IsIn(kTwoColumns, character) ? 2 : 1;
  }
  return width;
}

std::string CalledName(const std::string& path) { return IsSpooled(path) ? "-" : Utf8(path); }

void Complain(const std::string& path, const std::string& reason) {
  Say(CalledName(path) + ": " + reason);
}

void Say(const std::string& text) { std::fprintf(stderr, "quorvex: %s\n", Shown(text).c_str()); }

bool Print(const std::string& text) {
  if (print_error != 0) return false;
  errno = 0;
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) print_error = errno;
  return print_error == 0;
}

bool OutputArrived() {
  errno = 0;
  if (print_error == 0 && std::fflush(stdout) != 0) print_error = errno;
  if (print_error == 0) return true;
  Complain("standard output", "cannot be written: " + TextOfError(print_error));
  return false;
}

std::string ShortSize(double bytes) {
  constexpr const char* kUnits[] = {"B", "kB", "MB", "GB", "TB"};
  size_t unit = 0;
  for (; bytes >= 999.5 && unit + 1 < std::size(kUnits); ++unit) bytes /= 1000;
  char text[32];
  std::snprintf(text, sizeof text, "%.*f %s", unit > 0 && bytes < 9.95 ? 1 : 0, bytes,
                kUnits[unit]);
  return text;
}

}  // namespace quorvex::tool
