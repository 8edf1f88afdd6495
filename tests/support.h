// What the tests share: recordings built byte by byte, and documents taken apart.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "checks.h"
#include "quorvex64.h"
#include "settings/settings_record.h"
#include "support/loads.h"

namespace quorvex::test {

constexpr float kNone = -1e37f;

// Bytes that grow to hold what is put into them; what is not put is zero.
struct Bytes : std::vector<uint8_t> {
  using std::vector<uint8_t>::vector;

  template <typename T>
  Bytes& Put(size_t at, T value) {
    if (size() < at + sizeof value) resize(at + sizeof value);
    Store(data() + at, value);
    return *this;
  }
  Bytes& PutTime(size_t at, int year, int month, int day, int hour, int minute, double seconds);
  // Settings by their offsets from `at`: "16#50" an integer of 32 bits, "13.2" a byte, "604:0.5" a
  // float and "2584%0.5" a double.
  Bytes& PutSettings(size_t at, const std::string& settings);
  Bytes& PutText(size_t at, const std::string& text);
  Bytes& PutBytes(size_t at, const Bytes& bytes);
  Bytes& PadTo(size_t size);
};

// A file of a type with version 3 and zeroed settings at byte 8: 3072 bytes.
Bytes HeadOf(uint32_t type);

// The same with settings such that one step of a sample is worth 1.25, 2.5, 5 and 0.625 V on the
// phases and the neutral, and 1.25, 2.5, 5 and 10 A; the neutral's own current is worth 20 A where
// its own range is asked and not the phases'.
Bytes ScaledHead(uint32_t type, uint8_t connection);

using fuzz::InFolder, fuzz::ReadFile, fuzz::WriteFile;
bool Exists(const std::string& path);

// A record in which every word is another one, so that what is read from a wrong place shows: as
// floats, doubles and times they are ordinary, but for a missing value now and then. `first` gives
// other words.
Bytes Filled(uint32_t size, uint32_t first = 0);

// The document that a recording converts to, empty where there is none. Fails the running test
// where the tracked counter does not come back, or a document does not close its root.
std::string Converted(const Bytes& recording, QuorvexProgress progress = nullptr,
                      const std::string& name = "T0001X.REC");

// Leaves a document for check_schema to judge, where the environment names a folder.
void LeaveForSchema(const std::string& document, const std::string& name);

// What stands in a document behind the settings block (the file header where there is none) and
// before the root's end.
std::string BodyOf(const std::string& document);

std::string Line(const std::string& element, const std::string& value);
// The values of an element wherever it stands, with blanks between.
std::string ValuesOf(const std::string& document, const std::string& element);
size_t CountOf(const std::string& text, const std::string& part);

// Fails the running test with the first line that differs.
void ExpectSame(const std::string& expected, const std::string& document);

}  // namespace quorvex::test
