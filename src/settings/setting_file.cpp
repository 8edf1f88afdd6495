#include "settings/setting_file.h"

#include <cstdint>
#include <cstring>

#include "support/file.h"
#include "support/memory.h"

namespace quorvex {
namespace {

// The instrument tells its own record type in a word of its own; here it stays 0.
constexpr int32_t kRecordType = 0;
// Tail of a dated energy meter name, in the place of the file's own.
constexpr char kMeterTail[] = "";

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// A bounded text that remembers whether everything fitted.
struct Name {
  char* text;
  uint32_t used = 0;
  bool fits = true;

  void Put(const char* from, size_t size) {
    if (size > kMaxPath - used) {
      fits = false;
      return;
    }
    std::memcpy(text + used, from, size);
    used += static_cast<uint32_t>(size);
    text[used] = '\0';
  }
  void Put(const char* from) { Put(from, std::strlen(from)); }
  // Decimal digits, however many, as a number of at least `width`.
  void PutNumber(const char* digits, size_t count, size_t width) {
    for (; count > 0 && *digits == '0'; --count) ++digits;
    for (size_t i = count; i < width; ++i) Put("0");
    Put(digits, count);
  }
};

// Number of decimal digits in front, `most` at the most.
size_t DigitsIn(const char* text, size_t most) {
  size_t count = 0;
  while (count < most && IsDigit(text[count])) ++count;
  return count;
}

const char* SkipUpTo(const char* text, size_t count) {
  while (count-- > 0 && *text != '\0') ++text;
  return text;
}

}  // namespace

bool BuildSettingFileName(const char* record_path, char* result, const char* kind,
                          int32_t record_type) {
  Name name{result};
  const char* base = record_path;
  for (const char* at = record_path; *at != '\0'; ++at) {
    if (*at == '\\' || *at == '/') base = at;
  }
  const char* number = base;
  while (*number != '\0' && *number != '.' && !IsDigit(*number)) ++number;
  const size_t digits = DigitsIn(number, SIZE_MAX);
  const char* rest = number + digits;

  name.Put(record_path, static_cast<size_t>(number - record_path));
  name.PutNumber(number, digits, 4);
  name.Put(kind);
  const bool dated = record_type == 10 || record_type == 15 || record_type == 18;
  if (dated) {
    rest += std::strcspn(rest, "-");
    // A field is as wide as it is in the name; its number ends at the first non-digit.
    constexpr struct { size_t width, shown; } kDate[] = {{4, 1}, {2, 2}, {2, 2}};
    for (const auto& part : kDate) {
      rest = SkipUpTo(rest, 1);  // the separator
      name.Put("-");
      name.PutNumber(rest, DigitsIn(rest, part.width), part.shown);
      rest = SkipUpTo(rest, part.width);
    }
    rest = SkipUpTo(rest, 1);
    name.Put("-");
    const size_t tail = std::strcspn(rest, ".");
    if (record_type == 18) {
      name.Put(kMeterTail);
    } else {
      name.Put(rest, tail);
    }
    rest += tail;
  } else {
    rest += std::strcspn(rest, ".");
  }
  name.Put(rest);
  return name.fits;
}

int32_t LoadSettingFile(const char* record_path, UifParams* settings) {
  Tracked<char> name(kMaxPath + 1);
  if (!BuildSettingFileName(record_path, name.get(), "PAR", kRecordType)) return 1;
  File file(name.get(), kOpenRead);
  if (!file) return 1;
  uint8_t prefix[kFileHeaderSize];
  ReadBytes(file.get(), prefix, sizeof prefix);
  ReadBytes(file.get(), settings, kSettingsSize);
  return 0;
}

}  // namespace quorvex
