#include "api/record_info.h"

#include <cstring>

#include "records/record_types.h"
#include "settings/codes.h"
#include "settings/instrument_state.h"
#include "settings/setting_file.h"
#include "settings/time_texts.h"
#include "settings/value_texts.h"
#include "support/file.h"
#include "support/memory.h"

namespace quorvex {
namespace {

// A recording as far as its head tells.
struct Head {
  const char* path;
  FileHeader header;
  UifParams settings;
  const UifParams* in_force;  // of the instrument state: what the texts of levels are made with
  bool estimated;             // no setting file: the end follows from the number of records
  int32_t records;            // where it is estimated
};

uint32_t SizeOf(const char* path) {
  Tracked<FileInfo> info;
  return QueryFileInfo(path, info.get()) == 0 ? info->size : 0;
}

bool ReadHead(const char* path, Head* head) {
  File file(path, kOpenRead);
  if (!file) return false;
  head->path = path;
  ReadBytes(file.get(), &head->header, sizeof head->header);
  ReadBytes(file.get(), &head->settings, kSettingsSize);
  const bool periodic = head->header.type == 1 || head->header.type == 16;
  head->estimated = periodic && LoadSettingFile(path, &head->settings) != 0;
  if (head->estimated) {
    // Two record sizes for all profiles and for voltage quality too: file lists have always shown
    // this estimate, however far it is off for the others.
    constexpr uint32_t kStandardProfile = 2;
    const int32_t record_size = head->settings.profile == kStandardProfile ? 4608 : 40448;
    const auto behind_head = static_cast<int32_t>(SizeOf(path) - kHeadSize);
    head->records = behind_head / record_size;
  }
  return true;
}

void PutTime(const DateTimeRecord& time, BoundedText* to) {
  to->Put(" '");
  DateTimeText(time, TimeDetail::kMilliseconds, to);
  to->Put('\'');
}

void PutQuoted(const char* text, BoundedText* to) {
  to->Put(" '");
  to->Put(text);
  to->Put('\'');
}

void PutDuration(uint32_t seconds, BoundedText* to) {
  to->Put(" '");
  DurationText(seconds, to);
  to->Put('\'');
}

void PutPeriods(uint32_t periods, BoundedText* to) {
  to->Put(" '");
  to->PutInteger(static_cast<int32_t>(periods));
  to->Put(" periods'");
}

void PutLevel(const Head& head, float level, uint32_t trigger, BoundedText* to) {
  to->Put(" '");
  LevelText(level, trigger, *head.in_force, to, true);
  to->Put('\'');
}

void PutValue(float value, const ValueDescriptor& descriptor, BoundedText* to) {
  to->Put(" '");
  const ShownUnit unit = DescribedValueText(static_cast<double>(value), descriptor, to);
  to->Put(UnitText(unit.code));
  to->Put('\'');
}

void DescribePeriodic(const Head& head, BoundedText* to) {
  const UifParams& s = head.settings;
  DateTimeRecord end = s.time_last_packet;
  if (head.estimated) {
    end = s.start_time;
    AddSeconds(&end, static_cast<float>(s.interval * static_cast<uint32_t>(head.records)));
  }
  PutTime(s.start_time, to);
  PutTime(end, to);
  to->Put(" '");
  IntervalText(s.interval, to);
  to->Put('\'');
}

void DescribeSnapshots(const Head& head, BoundedText* to) {
  const WaveRecordParams& wave = head.settings.wave;
  PutTime(wave.start_time, to);
  PutTime(wave.end_time, to);
  PutQuoted(WordOf(kTriggers, wave.trigger), to);
  if (wave.trigger == kTriggerLevelU || wave.trigger == kTriggerLevelI) {
    PutLevel(head, wave.level, wave.trigger, to);
    PutQuoted(WordOf(kSlopes, wave.slope), to);
  } else {
    PutQuoted("-", to);
    PutQuoted("-", to);
  }
  PutDuration(wave.duration, to);
  PutDuration(wave.pretrigger, to);
}

void DescribeWaveform(const Head& head, BoundedText* to) {
  const TransientsParams& transients = head.settings.transients;
  PutTime(transients.start_time, to);
  PutTime(transients.end_time, to);
  PutQuoted(WordOf(kTriggers, transients.trigger), to);
  PutValue(transients.level_u, kVoltageDescriptor, to);
  PutValue(transients.env_u, kVoltageDescriptor, to);
  PutValue(transients.level_un, kVoltageDescriptor, to);
  PutValue(transients.env_un, kVoltageDescriptor, to);
  PutValue(transients.level_i, kCurrentDescriptor, to);
  PutValue(transients.env_i, kCurrentDescriptor, to);
  PutValue(transients.level_in, kCurrentDescriptor, to);
  PutValue(transients.env_in, kCurrentDescriptor, to);
}

void DescribeWaveformSeries(const Head& head, BoundedText* to) {
  const TransientsParams& transients = head.settings.transients;
  PutTime(transients.start_time, to);
  PutTime(transients.end_time, to);
  PutQuoted(WordOf(kTriggers, transients.trigger), to);
  if (transients.trigger == kTriggerEnvelope) {
    PutValue(transients.level, kVoltageDescriptor, to);
  } else {
    PutQuoted("-", to);
  }
  PutPeriods(transients.duration, to);
  PutPeriods(transients.pretrigger, to);
}

void DescribeInrush(const Head& head, BoundedText* to) {
  const InrushParams& inrush = head.settings.inrush;
  PutTime(inrush.start_time, to);
  PutTime(inrush.end_time, to);
  PutLevel(head, inrush.level, kTriggerLevelI, to);
  PutQuoted(WordOf(kSlopes, inrush.slope), to);
  PutDuration(inrush.duration, to);
  PutDuration(inrush.pretrigger, to);
  to->Put(' ');
  to->PutInteger(static_cast<int32_t>(head.settings.rand_mark));
}

// Reads what there is at a position; the rest keeps what it held.
void ReadAt(const char* path, uint64_t position, void* to, uint32_t count) {
  File file(path, kOpenRead);
  if (file && SeekTo(file.get(), position)) ReadBytes(file.get(), to, count);
}

// Where a type's first record has an element.
uint64_t PlaceOf(const RecordType& type, const char* name) {
  const Field* row = type.record->rows;
  while (std::strcmp(row->name, name) != 0) ++row;
  return uint64_t{type.records_at} + row->offset;
}

void DescribeLiveResults(const Head& head, BoundedText* to) {
  DateTimeRecord start{};
  ReadAt(head.path, PlaceOf(kLiveResults, "TIME_START"), &start, sizeof start);
  PutTime(start, to);
}

void DescribeEnergyMeter(const Head& head, BoundedText* to) {
  const uint32_t record_size = kEnergyMeter.record->size;
  const uint32_t count = (SizeOf(head.path) - kHeadSize) / record_size;
  const uint64_t end_at = PlaceOf(kEnergyMeter, "END_TIME");
  DateTimeRecord start{}, end{};
  ReadAt(head.path, PlaceOf(kEnergyMeter, "START_TIME"), &start, sizeof start);
  PutTime(start, to);
  // A file without a whole record leaves the first one's end standing.
  ReadAt(head.path, end_at, &end, sizeof end);
  ReadAt(head.path, end_at + uint64_t{count - 1} * record_size, &end, sizeof end);
  PutTime(end, to);
}

constexpr struct {
  uint32_t type;
  void (*describe)(const Head& head, BoundedText* to);
} kDescriptions[] = {
    {1, DescribePeriodic},        {2, DescribeSnapshots},    {5, DescribeWaveform},
    {6, DescribeLiveResults},     {14, DescribeInrush},      {16, DescribePeriodic},
    {17, DescribeWaveformSeries}, {18, DescribeEnergyMeter},
};

bool EndsInRec(const char* path) {
  const char* extension = std::strrchr(path, '.');
  if (extension == nullptr) return false;
  const char* wanted = ".REC";
  for (; *wanted != '\0'; ++wanted, ++extension) {
    const bool lower = *extension >= 'a' && *extension <= 'z';
    if ((lower ? *extension - 'a' + 'A' : *extension) != *wanted) return false;
  }
  return *extension == '\0';
}

}  // namespace

void DescribeRecording(const char* path, char* text) {
  Tracked<char> line(kRecordInfoRoom);
  BoundedText to(line.get(), kRecordInfoRoom);
  Tracked<Head> head;
  if (EndsInRec(path) && ReadHead(path, head.get())) {
    const ScopedState state(head->estimated ? nullptr : &head->settings);
    head->in_force = &state->settings;
    for (const auto& description : kDescriptions) {
      if (description.type != head->header.type) continue;
      to.PutInteger(static_cast<int32_t>(head->header.type));
      description.describe(*head, &to);
    }
  }
  std::strcpy(text, line.get());
}

int32_t CountGeneralRecords(const char* path) {
  constexpr uint32_t kGeneralType = 1;
  constexpr float kFullRecordSize = 40448.0f;
  FileHeader header{};
  ReadFileHeader(path, &header);
  if (header.type != kGeneralType) return 0;
  // A size below the head's wraps round, and its quotient then fits no 32-bit integer.
  const uint64_t behind_head = static_cast<uint64_t>(SizeOf(path)) - kHeadSize;
  const float count = static_cast<float>(behind_head) / kFullRecordSize + 0.5f;
  return count < 2147483648.0f ? static_cast<int32_t>(count) : INT32_MIN;
}

}  // namespace quorvex
