#include "sample.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "support/loads.h"

namespace quorvex::samples {
namespace {

[[noreturn]] void Fail(const std::string& what) {
  std::fprintf(stderr, "samples: %s\n", what.c_str());
  std::exit(1);
}

struct Found {
  const Field* field = nullptr;
  uint32_t offset = 0;
};

struct Part {
  std::string name;
  std::string phase;
  uint32_t repetition = 0;
};

Part ParsePart(const std::string& text) {
  Part part;
  const size_t bracket = text.find('[');
  part.name = text.substr(0, bracket);
  if (bracket == std::string::npos) return part;
  const std::string inside = text.substr(bracket + 1, text.size() - bracket - 2);
  if (inside.find_first_not_of("0123456789") == std::string::npos) {
    part.repetition = static_cast<uint32_t>(std::stoul(inside));
  } else {
    part.phase = inside;
  }
  return part;
}

Found Find(const Field& group, uint32_t place, uint32_t repetition, const std::string& path) {
  const size_t slash = path.find('/');
  const Part part = ParsePart(path.substr(0, slash));
  for (uint32_t r = 0; r < group.row_count; ++r) {
    const Field& f = group.rows[r];
    const uint32_t at = place + f.offset + repetition * StepOf(f, group.step);
    if (f.kind == Kind::kGroup && f.name[0] == '\0') {
      // A repetition without an element of its own takes its number from the row inside it.
      const Found inside = Find(f, at, f.repeated ? part.repetition : 0, path);
      if (inside.field != nullptr) return inside;
      continue;
    }
    const bool same_phase = part.phase.empty() || (f.phase != nullptr && part.phase == f.phase);
    if (f.kind == Kind::kGap || part.name != f.name || !same_phase) continue;
    const bool in_group = f.kind == Kind::kGroup;
    const uint32_t own = in_group || !f.repeated ? 0 : part.repetition * f.step;
    if (slash == std::string::npos) return {&f, at + own};
    if (!in_group) continue;
    const Found inside = Find(f, at, f.repeated ? part.repetition : 0, path.substr(slash + 1));
    if (inside.field != nullptr) return inside;
  }
  return {};
}

void StoreNumber(Kind kind, uint8_t* to, double value) {
  switch (kind) {
    case Kind::kU8:
      Store(to, static_cast<uint8_t>(value));
      break;
    case Kind::kU16:
      Store(to, static_cast<uint16_t>(value));
      break;
    case Kind::kScaledI16:
      Store(to, static_cast<int16_t>(value));
      break;
    case Kind::kI32:
      Store(to, static_cast<int32_t>(value));
      break;
    case Kind::kI64:
      Store(to, static_cast<int64_t>(value));
      break;
    case Kind::kF64:
    case Kind::kSeconds:
      Store(to, value);
      break;
    case Kind::kF32:
    case Kind::kScaledF32:
    case Kind::kSpectrum:
      Store(to, static_cast<float>(value));
      break;
    case Kind::kGap:
    case Kind::kGroup:
    case Kind::kText:
    case Kind::kRawText:
    case Kind::kMade:
    case Kind::kNoValue:
      Fail("a path that leads to no number");
  }
}

void ClearRows(const Field& group, uint32_t place, uint32_t repetition, uint8_t* bytes) {
  for (uint32_t r = 0; r < group.row_count; ++r) {
    const Field& f = group.rows[r];
    const uint32_t at = place + f.offset + repetition * StepOf(f, group.step);
    for (uint32_t i = 0; i < f.count; ++i) {
      uint8_t* to = bytes + at + i * f.step;
      if (f.kind == Kind::kGroup) ClearRows(f, at, i, bytes);
      if (f.kind == Kind::kF32) Store(to, kNoValue);
      if (f.kind == Kind::kF64) Store(to, kNoValueDouble);
      for (uint32_t b = 0; f.kind == Kind::kSpectrum && b < f.size; b += 4) Store(to + b, kNoValue);
    }
  }
}

}  // namespace

void Clock::Advance(double seconds) {
  now.seconds += seconds;
  const auto minutes = static_cast<int>(now.seconds / 60);
  now.seconds -= minutes * 60;
  const int minute = now.minute + minutes;
  const int hour = now.hour + minute / 60;
  now.minute = static_cast<uint8_t>(minute % 60);
  now.day = static_cast<uint8_t>(now.day + hour / 24);
  now.hour = static_cast<uint8_t>(hour % 24);
}

Clock ClockAt(int day, int hour, int minute, double seconds) {
  return {{2024,
           3,
           static_cast<uint8_t>(day),
           static_cast<uint8_t>(hour),
           static_cast<uint8_t>(minute),
           {0, 0},
           seconds}};
}

RecordBytes::RecordBytes(const Field& table) : table_(table), bytes_(table.size) {}

RecordBytes& RecordBytes::Set(const std::string& path, double value) {
  const Found found = Find(table_, 0, 0, path);
  if (found.field == nullptr) Fail("no element at " + path);
  StoreNumber(found.field->kind, bytes_.data() + found.offset, value);
  return *this;
}

RecordBytes& RecordBytes::SetTime(const std::string& path, const DateTimeRecord& time) {
  const Found found = Find(table_, 0, 0, path);
  if (found.field == nullptr || !IsDateTime(*found.field)) Fail("no time at " + path);
  Store(bytes_.data() + found.offset, time);
  return *this;
}

RecordBytes& RecordBytes::SetText(const std::string& path, const std::string& text) {
  const Found found = Find(table_, 0, 0, path);
  if (found.field == nullptr || text.size() > found.field->size) Fail("no text at " + path);
  std::memcpy(bytes_.data() + found.offset, text.data(), text.size());
  return *this;
}

RecordBytes& RecordBytes::SetCount(const std::string& path, int32_t count) {
  const Found found = Find(table_, 0, 0, path);
  if (found.field == nullptr || found.field->count_from != CountFrom::kRecord) {
    Fail("no counted element at " + path);
  }
  return SetRaw(found.offset - found.field->offset + found.field->count_ref, count);
}

RecordBytes& RecordBytes::SetRaw(uint32_t at, int32_t value) {
  Store(bytes_.data() + at, value);
  return *this;
}

RecordBytes& RecordBytes::SetFloat(const std::string& path, uint32_t index, double value) {
  const Found found = Find(table_, 0, 0, path);
  if (found.field == nullptr || found.field->kind != Kind::kSpectrum) Fail("no array at " + path);
  Store(bytes_.data() + found.offset + index * 4, static_cast<float>(value));
  return *this;
}

RecordBytes& RecordBytes::SetFloats(const std::string& path, const std::vector<double>& values) {
  const Found found = Find(table_, 0, 0, path);
  const bool fits = found.field != nullptr && values.size() * 4 <= found.field->size;
  if (!fits || found.field->kind != Kind::kSpectrum) Fail("no such array at " + path);
  uint8_t* to = bytes_.data() + found.offset;
  for (const double value : values) {
    Store(to, static_cast<float>(value));
    to += 4;
  }
  return *this;
}

RecordBytes& RecordBytes::ClearFloats() {
  ClearRows(table_, 0, 0, bytes_.data());
  return *this;
}

RecordingFile::RecordingFile(uint32_t type, const UifParams* settings, uint32_t settings_at) {
  bytes_.resize(settings != nullptr ? settings_at + kSettingsSize : kFileHeaderSize);
  Store<uint32_t>(bytes_.data(), 5);  // file version
  Store<uint32_t>(bytes_.data() + 4, type);
  if (settings != nullptr) Store(bytes_.data() + settings_at, *settings);
}

RecordingFile& RecordingFile::Append(const RecordBytes& record) {
  return Append(record.bytes().data(), record.bytes().size());
}

RecordingFile& RecordingFile::Append(const void* bytes, size_t size) {
  const auto* from = static_cast<const uint8_t*>(bytes);
  bytes_.insert(bytes_.end(), from, from + size);
  return *this;
}

void RecordingFile::Write(const std::string& folder, const std::string& name) const {
  std::ofstream file(folder + "/" + name, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes_.data()),
             static_cast<std::streamsize>(bytes_.size()));
  if (!file.flush()) Fail("cannot write " + folder + "/" + name);
}

}  // namespace quorvex::samples
