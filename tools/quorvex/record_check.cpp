#include "record_check.h"

#include <algorithm>
#include <cerrno>

#include "places.h"
#include "record_shape.h"
#include "record_times.h"
#include "scratch.h"
#include "settings/cases.h"
#include "settings/codes.h"
#include "settings/setting_file.h"
#include "settings/settings_table.h"
#include "settings/time_texts.h"
#include "support/file.h"
#include "support/loads.h"

namespace quorvex::tool {
namespace {

std::string Number(uint64_t number) { return std::to_string(number); }

// Bytes of a file that is read forward, ahead where records are small.
class Reader {
 public:
  Reader(const std::string& path, uint64_t stride)
      : file_(path.c_str(), kOpenRead), ahead_(stride < kDense ? kAhead : 0) {}

  // `size` bytes from `offset`, null where the file has them no longer. Valid until the next call.
  const uint8_t* At(uint64_t offset, uint32_t size) {
    if (offset < from_ || offset + size > from_ + buffer_.size()) {
      if (!file_ || !SeekTo(file_.get(), offset)) return nullptr;
      from_ = offset;
      buffer_.resize(std::max(size, ahead_));
      buffer_.resize(ReadBytes(file_.get(), buffer_.data(), static_cast<uint32_t>(buffer_.size())));
      if (buffer_.size() < size) return nullptr;
    }
    return buffer_.data() + (offset - from_);
  }

 private:
  static constexpr uint64_t kDense = 8192;
  static constexpr uint32_t kAhead = 65536;
  File file_;
  uint32_t ahead_;
  uint64_t from_ = 0;
  std::vector<uint8_t> buffer_;
};

void CheckHead(const Recording& r, Findings* findings) {
  if (r.code != kDone) {
    std::optional<uint64_t> at;
    if (r.code == kCutShort) at = r.size;
    if (r.code == kUnknownType) at = offsetof(FileHeader, type);
    findings->Add({Severity::kError, FindingKind::kHead, at, 0, "", r.problem});
  }
  if (!r.header) return;
  const auto version = static_cast<int32_t>(r.header->version);
  if (version > 0) return;
  findings->Add({Severity::kWarning, FindingKind::kHead, offsetof(FileHeader, version), 0,
                 "FILE_VERSION", "is " + std::to_string(version) + ", which is no version"});
}

// Says whose settings are in force; the result goes behind what is found in them.
std::string CheckSettingFile(const std::string& path, bool used, Findings* findings) {
  if (IsSpooled(path)) return "";
  char name[kMaxPath + 1];
  if (!BuildSettingFileName(path.c_str(), name, "PAR", 0)) return "";
  const std::string path_of_file = name;
  const std::string file = path_of_file.substr(path_of_file.find_last_of("/\\") + 1);
  const auto add = [&](Severity severity, const std::string& text) {
    findings->Add({severity, FindingKind::kSettingFile, std::nullopt, 0, "", text});
  };
  FileInfo info{};
  if (IsFolder(path_of_file) || QueryFileInfo(name, &info) != 0) {
    add(Severity::kNote, "no setting file " + file + ": the settings are its own");
    return "";
  }
  if (!used) {
    errno = 0;
    const File again(name, kOpenRead);
    const std::string reason = errno != 0 ? LastError() : "is no regular file";
    add(Severity::kWarning, "the setting file " + file +
                                " cannot be read, the settings are the recording's own: " + reason);
    return "";
  }
  const uint64_t size = WholeSize(info);
  if (size < kHeadSize) {
    add(Severity::kError, "the setting file " + file + " ends after " + Number(size) + " of " +
                              Number(kHeadSize) +
                              " bytes; the rest of the settings is the recording's own");
  } else {
    add(Severity::kNote, "the settings are those of " + file);
  }
  return " (in " + file + ")";
}

void CheckSettings(const std::string& path, const RecordType& type, const UifParams& settings,
                   const std::string& remark, Findings* findings) {
  static const Places places = PlacesOf(kSettingsBlock, kAllCases, kSettingsBlock.name);
  const auto* bytes = reinterpret_cast<const uint8_t*>(&settings);
  CheckPlaces(places, {bytes, 0, type.settings_at, 0, remark.c_str()}, findings);
  if (*WordOf(kWirings, settings.connection) == '\0') {
    findings->Add({Severity::kWarning, FindingKind::kCount,
                   type.settings_at + offsetof(UifParams, connection), 0, "UIF_PARAMS/CONNECTION",
                   "is " + Number(settings.connection) + ", which is no wiring" + remark});
  }
  if (type.information == nullptr) return;
  const uint64_t at = type.settings_at + kSettingsSize;
  Reader file(path, 0);
  const uint8_t* information = file.At(at, type.information->size);
  if (information == nullptr) return;
  CheckPlaces(PlacesOf(*type.information, CaseOf(settings), type.information->name),
              {information, 0, at, 0}, findings);
}

// The records of a recording, one after the other.
struct RecordWalk {
  const std::string& path;
  const RecordType& type;
  const UifParams& settings;
  uint64_t size;
  Findings* findings;
  RecordShape shape{};
  Places places{};
  uint32_t from = 0, end = 0;  // the bytes of a record that count
  int32_t samples_at = -1;     // the word that counts what there is bounded room for
  std::string samples_element{};
  DateTimeRecord last{};
  uint64_t last_record = 0;

  void Add(Severity severity, std::optional<uint64_t> offset, uint64_t record,
           const std::string& text) const {
    findings->Add({severity, FindingKind::kSize, offset, record, "", text});
  }

  void Prepare() {
    shape = ShapeOf(type, settings);
    if (shape.layout == nullptr) return;
    places = PlacesOf(*shape.layout, shape.which);
    from = places.from;
    end = places.end;
    if (places.input_room != 0) {
      samples_at = FindWord(*shape.layout, shape.which, places.counted_by, &samples_element);
      if (samples_at < 0) {
        samples_at = type.samples_at;
        samples_element = "samples of " + places.input_element;
      }
      Need(static_cast<uint32_t>(samples_at));
    }
    if (shape.count_at >= 0) Need(static_cast<uint32_t>(shape.count_at));
  }
  void Need(uint32_t word_at) {
    from = end == 0 ? word_at : std::min(from, word_at);
    end = std::max(end, word_at + 4);
  }

  // A record whose front is all there. Gives the count of its parts.
  int64_t CheckRecord(const Piece& piece) {
    CheckPlaces(places, piece, findings);
    if (places.time >= 0) CheckOrder(places.all[static_cast<size_t>(places.time)], piece);
    if (samples_at >= 0) {
      CheckCount(static_cast<uint32_t>(samples_at), places.input_room, piece, samples_element,
                 findings);
    }
    if (shape.count_at < 0) return shape.count;
    const auto at = static_cast<uint32_t>(shape.count_at);
    CheckCount(at, INT32_MAX, piece, shape.count_element, findings);
    return Load<int32_t>(piece.At(at));
  }

  void CheckOrder(const Place& place, const Piece& piece) {
    const auto time = Load<DateTimeRecord>(piece.At(place.offset));
    if (!IsPointInTime(time)) return;
    if (last_record != 0 && IsBefore(time, last) &&
        findings->Take(Severity::kWarning, FindingKind::kTime)) {
      findings->list.push_back({Severity::kWarning, FindingKind::kTime, piece.offset + place.offset,
                                piece.record, place.element,
                                "lies before that of record " + Number(last_record) + ", " +
                                    TimeText(last) + ": " + TimeText(time)});
    }
    last = time;
    last_record = piece.record;
  }

  // Times among the arrays behind a record at byte `at`.
  void CheckArrays(Reader* file, uint64_t at, int64_t count, uint64_t record) const {
    VisitArrays(shape, count, [&](const Field& row, const std::string& element, uint64_t offset) {
      for (int64_t i = 0; IsDateTime(row) && i < count; ++i) {
        const uint64_t place = at + offset + static_cast<uint64_t>(i) * row.step;
        const uint8_t* bytes = file->At(place, kDateTimeSize);
        if (bytes == nullptr) return;
        const auto time = Load<DateTimeRecord>(bytes);
        if (!IsSet(time) || IsPointInTime(time)) continue;
        if (!findings->Take(Severity::kWarning, FindingKind::kTime)) continue;
        findings->list.push_back({Severity::kWarning, FindingKind::kTime, place, record,
                                  element + "[" + std::to_string(i + 1) + "]",
                                  "is no point in time: " + TimeText(time)});
      }
    });
  }

  void Run() {
    Prepare();
    if (shape.layout == nullptr) {
      return findings->Add(NoLayout(settings.profile));
    }
    if (size == type.records_at) return Add(Severity::kNote, size, 0, "there are no records");
    if (size > UINT32_MAX) {
      Add(Severity::kWarning, UINT32_MAX, 0,
          "records are counted in files of up to 4 GiB; what lies behind may not be converted");
    }
    if (shape.endless && shape.count_at < 0 && shape.count < 0) {
      findings->Add({Severity::kError, FindingKind::kCount, std::nullopt, 0, shape.count_element,
                     "counts " + std::to_string(shape.count) + ", which is none"});
    }
    Reader file(path, FixedRecordSize(shape));
    uint64_t at = type.records_at;
    for (uint64_t record = 1; at < size; ++record) {
      const uint64_t left = size - at;
      uint64_t needed = shape.front;
      if (left >= needed) {
        const uint8_t* bytes = end > from ? file.At(at + from, end - from) : nullptr;
        if (bytes == nullptr && end > from) return;  // the file shrinks meanwhile
        const int64_t count = CheckRecord({bytes, from, at, record});
        if (shape.endless && count > 0) CheckArrays(&file, at, count, record);
        needed = RecordSize(shape, count);
      }
      if (left < needed) {
        const std::string outcome = left >= type.cut.from
                                        ? std::string("; the document holds it: ") + type.cut.rest
                                        : "; the document leaves it out";
        return Add(Severity::kError, at, record,
                   "ends after " + Number(left) + " of " + Number(needed) + " bytes" + outcome);
      }
      at += needed;
      if (type.once) break;
    }
    if (at < size) NotConverted(at, "the record");
  }

  void NotConverted(uint64_t at, const std::string& what) const {
    Add(Severity::kWarning, at, 0,
        Number(size - at) + " bytes behind " + what + " are not converted");
  }
};

}  // namespace

Finding NoLayout(uint32_t profile) {
  return {Severity::kError,
          FindingKind::kSize,
          std::nullopt,
          0,
          "",
          "the settings' profile " + Number(profile) + " has no layout; no record is converted"};
}

CheckResult CheckRecording(const std::string& path) {
  CheckResult result;
  Findings* findings = &result.findings;
  UifParams settings{};
  result.recording = Inspect(path, &settings);
  CheckHead(result.recording, findings);
  if (result.recording.code != kDone) return result;
  const RecordType& type = *result.recording.type;
  const uint64_t size = result.recording.size;
  result.records = result.recording.records;
  std::string remark;
  if (type.companion) remark = CheckSettingFile(path, result.recording.setting_file, findings);
  if (type.settings_at != 0) CheckSettings(path, type, settings, remark, findings);
  RecordWalk walk{path, type, settings, size, findings};
  if (type.write != nullptr) {
    walk.Run();
  } else if (size > type.records_at) {
    walk.NotConverted(type.records_at, "the settings");
  }
  return result;
}

}  // namespace quorvex::tool
