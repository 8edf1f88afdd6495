#include "report/card.h"

#include <algorithm>

#include "assessment/chains.h"
#include "findings/soundness.h"
#include "records/walk.h"
#include "shared/messages.h"
#include "shared/scratch.h"

namespace quorvex::tool {
namespace {

constexpr int64_t kMicroseconds = 1000000;

enum RecordTypes : uint32_t {
  kGeneralType = 1,
  kSettingsType = 4,
  kEventsType = 8,
  kSessionsType = 15,
  kVoltageQualityType = 16,
};

bool IsOfIntervals(uint32_t type) { return type == kGeneralType || type == kVoltageQualityType; }

// What a type's recordings are for in a report.
const char* UseOf(uint32_t type) {
  switch (type) {
    case kGeneralType:
    case kVoltageQualityType:
      return "indices, trends, harmonics";
    case 2:
    case 5:
    case 6:
    case 17:
      return "waveforms";
    case kEventsType:
      return "events, flags";
    case kSettingsType:
      return "settings of other recordings";
    default:
      return ListedTypeOf(type) != nullptr ? "a table" : "";
  }
}

template <size_t N>
std::string TextIn(const char (&field)[N]) {
  return AsUtf8(std::string(field, std::find(field, field + N, '\0')));
}

CardRecording Look(const std::string& path) {
  CardRecording entry;
  entry.path = path;
  RecordingHead head(path.c_str());
  entry.recording = Inspect(&head);
  if (entry.recording.code != kDone) {
    entry.left_out = entry.recording.problem;
    return entry;
  }
  Soundness soundness(&head, !IsSpooled(path));
  WalkRecording(&head, {}, &soundness);
  entry.findings = soundness.Result();
  const RecordingFacts facts = tool::FactsOf(path);
  entry.instrument = facts.facts.instrument.value_or("");
  entry.connection = facts.facts.connection.value_or("");
  const UifParams& settings = head.settings;
  const bool has_settings = head.type->settings_at != 0;
  if (has_settings) {
    entry.serial = TextIn(settings.ee_serial_number);
    entry.place = TextIn(settings.cname_short);
  }
  entry.layout = WordOf(*head.type, LayoutOf(*head.type, settings));
  entry.wiring = settings.connection;
  entry.interval = settings.interval;
  entry.nominal = static_cast<double>(settings.nominal_voltage);
  entry.frequency = settings.system_frequency;
  for (int s = 0; s < 2; ++s) entry.signals[s] = static_cast<double>(settings.signal[s].f);
  entry.used_for = UseOf(entry.type());
  if (!entry.recording.has_layout) {
    entry.used_for = "";
    entry.left_out = "its settings name no layout of records";
  } else if (entry.used_for.empty()) {
    entry.left_out = "a report has no place for " + std::string(head.type->name);
  }
  return entry;
}

// Recordings of one instrument belong together.
std::vector<Span> FlagsFor(const Card& card, const std::string& serial) {
  std::vector<Span> flags;
  for (const CardEvents& events : card.events) {
    if (card.recordings[events.recording].serial != serial) continue;
    for (const VoltageEvent& event : events.recorded.events) {
      // Where an event has no end its beginning is all that is certain.
      flags.push_back({event.from, event.to == kNoTime ? event.from : event.to});
    }
  }
  return Apart(std::move(flags));
}

// What must be the same for recordings to continue each other.
std::string SubjectOf(const CardRecording& entry) {
  std::string subject = entry.serial + '\n' + entry.layout + '\n' + std::to_string(entry.wiring) +
                        '\n' + std::to_string(entry.interval);
  for (const double number : {entry.nominal, entry.frequency, entry.signals[0], entry.signals[1]}) {
    subject += '\n' + std::to_string(number);
  }
  return subject;
}

void AssessChains(const ReportRequest& request, Card* card) {
  std::vector<Stretch> stretches;
  std::vector<size_t> numbers;
  for (size_t i = 0; i < card->recordings.size(); ++i) {
    CardRecording& entry = card->recordings[i];
    if (entry.used_for.empty() || !IsOfIntervals(entry.type())) continue;
    const int64_t interval = int64_t{entry.interval} * kMicroseconds;
    entry.time = TimeOf(entry.path, entry.recording.records.value_or(0), interval, request.read);
    if (entry.recording.records == 0) {
      entry.used_for = "";
      entry.left_out = "has no records";
      continue;
    }
    stretches.push_back({SubjectOf(entry), entry.time, interval});
    numbers.push_back(i);
  }
  for (const std::vector<size_t>& stretch_numbers : Chains(stretches)) {
    Chain chain;
    std::vector<std::string> paths;
    for (const size_t number : stretch_numbers) {
      chain.recordings.push_back(numbers[number]);
      paths.push_back(card->recordings[numbers[number]].path);
    }
    const std::string& serial = card->recordings[chain.recordings.front()].serial;
    chain.assessment =
        Assess(paths, request.limits, request.nominal, FlagsFor(*card, serial), request.read);
    card->chains.push_back(std::move(chain));
  }
}

}  // namespace

Card ReadCard(const std::vector<std::string>& paths, const ReportRequest& request) {
  Card card;
  for (const std::string& path : paths) card.recordings.push_back(Look(path));
  for (size_t i = 0; i < card.recordings.size(); ++i) {
    const CardRecording& entry = card.recordings[i];
    if (entry.used_for.empty()) continue;
    if (entry.type() == kEventsType) {
      card.events.push_back(
          {i, EventsOf(entry.path, request.limits, request.nominal, request.read)});
    } else if (const ListedType* type = ListedTypeOf(entry.type())) {
      card.listings.push_back(ListingOf(entry.path, i, *type, request.read));
    }
  }
  AssessChains(request, &card);
  return card;
}

std::string TimeOf(int64_t microseconds, const ReportRequest& request) {
  if (microseconds == kNoTime) return "";
  char text[32];
  const bool utc = request.read.utc_offset.has_value();
  // To the nearest millisecond, which is left away where it is none.
  std::string time(text, TimeText((microseconds + 500) / 1000 * 1000, utc, text));
  time.resize(sizeof "2024-03-05T09:17:32.120" - 1);
  if (time.compare(time.size() - 4, 4, ".000") == 0) time.resize(time.size() - 4);
  return utc ? time + "Z" : time;
}

std::string NameOf(const Card& card, size_t recording) {
  return CalledName(card.recordings[recording].path);
}

}  // namespace quorvex::tool
