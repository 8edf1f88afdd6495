#include "findings/soundness.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "layout/date_time.h"
#include "settings/cases.h"
#include "settings/codes.h"
#include "settings/setting_file.h"
#include "settings/settings_table.h"
#include "support/loads.h"

namespace quorvex {
namespace {

std::string Number(uint64_t number) { return std::to_string(number); }

bool IsFolder(const char* path) {
  struct stat status {};
  return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

// The path of the row at a place of a table; empty where there is none.
std::string ElementAt(const Field& group, uint32_t place, uint32_t at) {
  for (uint32_t r = 0; r < group.row_count; ++r) {
    const Field& f = group.rows[r];
    if (f.kind == Kind::kGap || f.repeated) continue;
    const uint32_t here = place + f.offset;
    if (f.kind == Kind::kGroup) {
      const std::string inside = ElementAt(f, here, at);
      if (!inside.empty()) return std::string(f.name) + "/" + inside;
    } else if (here == at) {
      return f.name;
    }
  }
  return "";
}

}  // namespace

std::optional<Finding> HeadProblem(const RecordingHead& recording) {
  const auto problem = [](uint64_t at, const std::string& text) {
    return Finding{Severity::kError, FindingKind::kHead, at, 0, "", text};
  };
  uint64_t head = sizeof(FileHeader);
  if (recording.size >= head) {
    if (recording.type == nullptr) {
      return problem(offsetof(FileHeader, type),
                     "is of the unknown record type " + Number(recording.header.type));
    }
    head = recording.type->records_at;
  }
  if (recording.size >= head) return std::nullopt;
  return problem(recording.size, "ends inside its head (" + Number(recording.size) + " of " +
                                     Number(head) + " bytes)");
}

Finding NoLayout(uint32_t profile) {
  return {Severity::kError,
          FindingKind::kSize,
          std::nullopt,
          0,
          "",
          "the settings' profile " + Number(profile) + " has no layout; no record is converted"};
}

Soundness::Soundness(const RecordingHead* recording, bool named)
    : recording_(*recording), type_(*recording->type), which_(CaseOf(recording->settings)) {
  const auto version = static_cast<int32_t>(recording_.header.version);
  if (version <= 0) {
    Add(Severity::kWarning, FindingKind::kHead, offsetof(FileHeader, version), 0, "FILE_VERSION",
        "is " + std::to_string(version) + ", which is no version");
  }
  if (type_.companion) CheckSettingFile(named);
}

void Soundness::Add(Severity severity, FindingKind kind, std::optional<uint64_t> offset,
                    uint64_t record, const std::string& element, const std::string& text) {
  findings_.Add({severity, kind, offset, record, element, text});
}

// Says whose settings are in force.
void Soundness::CheckSettingFile(bool named) {
  if (!named) return;
  char name[kMaxPath + 1];
  if (!BuildSettingFileName(recording_.path, name, "PAR", 0)) return;
  const std::string path = name;
  const std::string file = path.substr(path.find_last_of("/\\") + 1);
  const auto add = [&](Severity severity, const std::string& text) {
    Add(severity, FindingKind::kSettingFile, std::nullopt, 0, "", text);
  };
  FileInfo info{};
  if (QueryFileInfo(name, &info) != 0 || IsFolder(name)) {
    return add(Severity::kNote, "no setting file " + file + ": the settings are its own");
  }
  if (!recording_.setting_file) {
    errno = 0;
    const File again(name, kOpenRead);
    const std::string reason = errno != 0 ? std::strerror(errno) : "is no regular file";
    return add(Severity::kWarning,
               "the setting file " + file +
                   " cannot be read, the settings are the recording's own: " + reason);
  }
  remark_ = " (in " + file + ")";
  const uint64_t size = WholeSize(info);
  if (size < kHeadSize) {
    add(Severity::kError, "the setting file " + file + " ends after " + Number(size) + " of " +
                              Number(kHeadSize) +
                              " bytes; the rest of the settings is the recording's own");
  } else {
    add(Severity::kNote, "the settings are those of " + file);
  }
}

void Soundness::CheckSettings(const Piece& piece) {
  CheckPlaces(PlacesIn(piece.layout), piece, {std::string(piece.layout.name) + "/", remark_},
              &findings_);
  const uint8_t connection = recording_.settings.connection;
  if (WordOf(kWirings, connection)[0] != '\0') return;
  Add(Severity::kWarning, FindingKind::kCount, piece.at + offsetof(UifParams, connection), 0,
      "UIF_PARAMS/CONNECTION", "is " + Number(connection) + ", which is no wiring" + remark_);
}

const Places& Soundness::PlacesIn(const Field& layout) {
  for (const Places& places : places_) {
    if (places.layout == &layout) return places;
  }
  places_.push_back(PlacesOf(layout, which_));
  return places_.back();
}

void Soundness::BeginGroup(const Field& group, const char* phase) {
  groups_.emplace_back(group.name);
  if (phase != nullptr) groups_.back() += std::string("[") + phase + "]";
}

void Soundness::EndGroup() { groups_.pop_back(); }

void Soundness::Bytes(const Piece& piece) {
  if (piece.record == 0) {
    if (&piece.layout == &kSettingsBlock) return CheckSettings(piece);
    const std::string path = std::string(piece.layout.name) + "/";
    return CheckPlaces(PlacesIn(piece.layout), piece, {path, ""}, &findings_);
  }
  BeginRecords();
  // Paths begin inside the record: the list around it and its own element are left out.
  Surroundings around;
  for (size_t i = type_.list != nullptr ? 2 : 1; i < groups_.size(); ++i) {
    around.path += groups_[i] + "/";
  }
  if (groups_.size() > (type_.list != nullptr ? 1u : 0u) && piece.layout.name[0] != '\0')
    around.path += std::string(piece.layout.name) + "/";
  const Places& places = PlacesIn(piece.layout);
  CheckPlaces(places, piece, around, &findings_);
  if (ordered_ != piece.record) CheckOrder(places, piece, around.path);
  ordered_ = piece.record;
}

// Records follow each other in time, by the first time in the first piece of each.
void Soundness::CheckOrder(const Places& places, const Piece& piece, const std::string& path) {
  if (places.time < 0) return;
  const Place& place = places.all[static_cast<size_t>(places.time)];
  if (place.offset + kDateTimeSize > piece.present) return;
  const auto time = Load<DateTimeRecord>(static_cast<const uint8_t*>(piece.bytes) + place.offset);
  if (!IsPointInTime(time)) return;
  if (last_record_ != 0 && IsBefore(time, last_) &&
      findings_.Take(Severity::kWarning, FindingKind::kTime)) {
    findings_.list.push_back({Severity::kWarning, FindingKind::kTime, piece.at + place.offset,
                              piece.record, path + place.element,
                              "lies before that of record " + Number(last_record_) + ", " +
                                  TimeText(last_) + ": " + TimeText(time)});
  }
  last_ = time;
  last_record_ = piece.record;
}

// What the sizes tell before the first record.
void Soundness::BeginRecords() {
  if (begun_) return;
  begun_ = true;
  const uint64_t size = recording_.size;
  if (type_.walk == nullptr) return;
  if (LayoutOf(type_, recording_.settings) == nullptr) {
    return findings_.Add(NoLayout(recording_.settings.profile));
  }
  if (size == type_.records_at) {
    return Add(Severity::kNote, FindingKind::kSize, size, 0, "", "there are no records");
  }
  if (size > UINT32_MAX) {
    Add(Severity::kWarning, FindingKind::kSize, UINT32_MAX, 0, "",
        "records are counted in files of up to 4 GiB; what lies behind may not be converted");
  }
  if (type_.counted_at < 0) return;
  const auto at = static_cast<uint32_t>(type_.counted_at);
  const auto count = Load<int32_t>(reinterpret_cast<const uint8_t*>(&recording_.settings) + at);
  if (count >= 0) return;
  Add(Severity::kError, FindingKind::kCount, std::nullopt, 0,
      std::string(kSettingsBlock.name) + "/" + ElementAt(kSettingsBlock, 0, at),
      "counts " + std::to_string(count) + ", which is none");
}

bool Soundness::EndRecord(const RecordEnd& end) {
  BeginRecords();
  end_ = end.at + end.size;
  const uint64_t present = recording_.PresentAt(end.at, end.size);
  if (present == end.size || recording_.size == type_.records_at) return true;
  Add(Severity::kError, FindingKind::kSize, end.at, end.record, "",
      "ends after " + Number(present) + " of " + Number(end.size) + " bytes" +
          (end.written ? std::string("; the document holds it: ") + type_.cut.rest
                       : "; the document leaves it out"));
  return true;
}

void Soundness::TellBehind(uint64_t at, const std::string& what) {
  if (at >= recording_.size) return;
  Add(Severity::kWarning, FindingKind::kSize, at, 0, "",
      Number(recording_.size - at) + " bytes behind " + what + " are not converted");
}

Findings Soundness::Result() {
  BeginRecords();
  if (type_.walk == nullptr) TellBehind(type_.records_at, "the settings");
  if (type_.once) TellBehind(end_, "the record");
  return findings_;
}

}  // namespace quorvex
