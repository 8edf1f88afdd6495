#include "records/information.h"

#include "records/recording_head.h"
#include "settings/codes.h"
#include "settings/time_texts.h"
#include "settings/value_texts.h"
#include "support/loads.h"

namespace quorvex {
namespace {

// Records that an estimated end counts: two sizes for all profiles and for voltage quality too.
// File lists have always shown this estimate, however far it is off for the others.
uint32_t EstimatedRecords(const RecordingHead& recording) {
  constexpr uint32_t kStandardProfile = 2;
  const int32_t record_size = recording.settings.profile == kStandardProfile ? 4608 : 40448;
  const uint32_t behind_head = static_cast<uint32_t>(recording.size) - kHeadSize;
  return static_cast<uint32_t>(static_cast<int32_t>(behind_head) / record_size);
}

// Reads the time at a place of the file; where it ends before, the time stays.
void ReadTime(RecordingHead* recording, uint64_t at, DateTimeRecord* time) {
  if (SeekTo(recording->file.get(), at)) ReadBytes(recording->file.get(), time, sizeof *time);
}

DateTimeRecord TimeOf(const InfoField& field, RecordingHead* recording, bool estimated) {
  const UifParams& settings = recording->settings;
  DateTimeRecord time{};
  if (estimated && field.from == InfoFrom::kPeriods) {
    time = settings.start_time;
    AddSeconds(&time, static_cast<float>(settings.interval * EstimatedRecords(*recording)));
    return time;
  }
  if (field.from == InfoFrom::kSettings || field.from == InfoFrom::kPeriods) {
    return Load<DateTimeRecord>(reinterpret_cast<const uint8_t*>(&settings) + field.at);
  }
  const uint64_t first = uint64_t{recording->type->records_at} + field.at;
  ReadTime(recording, first, &time);
  if (field.from == InfoFrom::kFirstRecord) return time;
  // A file without a whole record leaves the first one's time standing.
  const uint32_t size = recording->type->record->size;
  const uint32_t count = (static_cast<uint32_t>(recording->size) - kHeadSize) / size;
  ReadTime(recording, first + uint64_t{count - 1} * size, &time);
  return time;
}

void AmountText(float amount, const ValueDescriptor& descriptor, BoundedText* to) {
  const ShownUnit unit = DescribedValueText(static_cast<double>(amount), descriptor, to);
  to->Put(UnitText(unit.code));
}

}  // namespace

uint32_t InfoValues(RecordingHead* recording, InfoValue (&values)[kMostInfoFields],
                    bool* estimated) {
  *estimated = false;
  if (recording->type == nullptr) return 0;
  const InfoLine& line = recording->type->line;
  for (uint32_t i = 0; i < line.count; ++i) {
    if (line.fields[i].from != InfoFrom::kPeriods) continue;
    recording->UseSettingFile();
    *estimated = !recording->setting_file;
  }
  const auto* settings = reinterpret_cast<const uint8_t*>(&recording->settings);
  for (uint32_t i = 0; i < line.count; ++i) {
    const InfoField& field = line.fields[i];
    InfoValue& value = values[i];
    value = {&field};
    if (field.form == InfoForm::kTime) {
      value.time = TimeOf(field, recording, *estimated);
      continue;
    }
    value.number = Load<uint32_t>(settings + field.at);
    value.level = Load<float>(settings + field.at);
    value.trigger = field.trigger;
    if (field.trigger_at != 0) {
      value.trigger = Load<uint32_t>(settings + field.trigger_at);
      value.shown = value.trigger < 32 && (field.triggers >> value.trigger & 1) != 0;
    }
    value.amount = field.form == InfoForm::kLevel
                       ? LevelAmount(value.level, value.trigger, recording->settings)
                       : static_cast<double>(value.level);
  }
  return line.count;
}

void InfoText(const InfoValue& value, const UifParams& settings, BoundedText* to) {
  if (!value.shown) return to->Put("-");
  switch (value.field->form) {
    case InfoForm::kTime:
      return DateTimeText(value.time, TimeDetail::kMilliseconds, to);
    case InfoForm::kInterval:
      return IntervalText(value.number, to);
    case InfoForm::kDuration:
      return DurationText(value.number, to);
    case InfoForm::kTrigger:
      return to->Put(WordOf(kTriggers, value.number));
    case InfoForm::kSlope:
      return to->Put(WordOf(kSlopes, value.number));
    case InfoForm::kLevel:
      return LevelText(value.level, value.trigger, settings, to, true);
    case InfoForm::kVolts:
      return AmountText(value.level, kVoltageDescriptor, to);
    case InfoForm::kAmperes:
      return AmountText(value.level, kCurrentDescriptor, to);
    case InfoForm::kPeriods:
    case InfoForm::kNumber:
      to->PutInteger(static_cast<int32_t>(value.number));
      if (value.field->form == InfoForm::kPeriods) to->Put(" periods");
      return;
  }
}

}  // namespace quorvex
