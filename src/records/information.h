// The information line: what file lists show of a recording. Each record type that has one says in
// its table which fields stand in it; here are their values, and their texts as hosts get them.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "layout/date_time.h"
#include "support/bounded_text.h"

namespace quorvex {

struct RecordingHead;
struct UifParams;

// What a field's bytes are, and how they are shown.
enum class InfoForm : uint8_t {
  kTime,
  kInterval,  // seconds, in minutes and seconds
  kDuration,  // seconds, in days, hours, minutes and seconds
  kPeriods,   // of the network
  kTrigger,   // a code with a word, as the next
  kSlope,
  kLevel,  // in percent, with what that comes to in V or A
  kVolts,
  kAmperes,
  kNumber,  // without quotes
};

enum class InfoFrom : uint8_t {
  kSettings,
  kFirstRecord,
  kLastRecord,
  kPeriods,  // the end of the last interval: without a setting file it is estimated
};

struct InfoField {
  const char* label;
  InfoForm form;
  uint32_t at;  // in the settings or the record
  InfoFrom from = InfoFrom::kSettings;
  uint32_t trigger = 0;     // of a level that always has the same
  uint32_t trigger_at = 0;  // of one that has not: the trigger's place in the settings
  uint32_t triggers = 0;    // and a set of codes: the triggers that the field is shown for
};

// As many as a type has at the most.
constexpr uint32_t kMostInfoFields = 11;

constexpr uint32_t TriggerSet(std::initializer_list<uint32_t> codes) {
  uint32_t set = 0;
  for (const uint32_t code : codes) set |= 1u << code;
  return set;
}

// The fields of a type's line.
struct InfoLine {
  const InfoField* fields = nullptr;
  uint32_t count = 0;

  constexpr InfoLine() = default;
  template <uint32_t N>
  constexpr InfoLine(const InfoField (&all)[N]) : fields(all), count(N) {
    static_assert(N <= kMostInfoFields);
  }
};

// The value of a field, in the member that its form suggests.
struct InfoValue {
  const InfoField* field;
  bool shown = true;  // otherwise "-"
  DateTimeRecord time{};
  uint32_t number = 0;   // seconds, periods, codes
  uint32_t trigger = 0;  // of a level
  float level = 0;       // as it is stored: in percent, V or A
  double amount = 0;     // what it comes to, in V or A
};

// The values of a recording's line, in its order; their number. 0 for types without a line. They
// are of its own settings; only where the end is one of intervals, those of a setting file are used
// from then on. `estimated` says that there was none, so that the end follows from the number of
// records.
uint32_t InfoValues(RecordingHead* recording, InfoValue (&values)[kMostInfoFields],
                    bool* estimated);

// The text of a value. `settings` are what percentages are of.
void InfoText(const InfoValue& value, const UifParams& settings, BoundedText* to);

}  // namespace quorvex
