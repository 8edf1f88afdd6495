#include "assessment/voltage_events.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <optional>

#include "assessment/channels.h"
#include "tables/table_rows.h"

namespace quorvex {
namespace {

constexpr double kShortest = 0.01;  // seconds: what is over sooner has no class

// Values are recorded as floats, so what they are compared with is the nearest float too.
float Nearest(double value) { return static_cast<float>(value); }

// Of one phase.
struct PhaseEvent {
  bool swell;
  int64_t from, to;
  int64_t phase;
  double worst;
};

struct PhaseState {
  std::optional<PhaseEvent> open;
  int64_t code_before = kNoTime;  // the kind of event that the phase was in when it left the band
};

// Tables cut times to microseconds, and 32.12 s is a little less in binary. No event is told finer
// than this.
int64_t InMilliseconds(int64_t time) { return (time + 500) / 1000 * 1000; }

// Follows the transitions. What the codes of the kinds mean is not known, so voltages tell what an
// event is; the codes only tell that a phase is back in the state it came from.
class Follower {
 public:
  explicit Follower(const Thresholds& thresholds) : thresholds_(thresholds) {}

  struct Transition {
    int64_t phase, time, from_code, to_code;
    double voltage, dip_least, swell_most, interruption_least;
  };

  void Take(const Transition& t) {
    PhaseState& state = phases_[t.phase];
    const bool low = Nearest(t.voltage) <= Nearest(thresholds_.dip);
    const bool high = thresholds_.swell > 0 && Nearest(t.voltage) >= Nearest(thresholds_.swell);
    if (state.open) {
      Worsen(t, &*state.open);
      const bool other_side = state.open->swell ? low : high;
      const bool returned = t.from_code != t.to_code && t.to_code == state.code_before;
      if (!other_side && !returned && (low || high)) return;
      // A clock that was set back meanwhile does not say how long it was.
      if (t.time >= state.open->from) state.open->to = t.time;
      ended_.push_back(*state.open);
      state.open.reset();
      if (!other_side) return;
    } else {
      if (!low && !high) return;
      state.code_before = t.from_code;
    }
    state.open = PhaseEvent{high, t.time, kNoTime, t.phase, t.voltage};
  }

  std::vector<PhaseEvent> Result() {
    for (auto& [phase, state] : phases_) {
      if (state.open) ended_.push_back(*state.open);
    }
    std::stable_sort(ended_.begin(), ended_.end(),
                     [](const PhaseEvent& a, const PhaseEvent& b) { return a.from < b.from; });
    return ended_;
  }

 private:
  void Worsen(const Transition& t, PhaseEvent* event) const {
    if (event->swell) {
      for (const double v : {t.voltage, t.swell_most}) {
        if (v > event->worst) event->worst = v;
      }
      return;
    }
    for (const double v : {t.voltage, t.dip_least, t.interruption_least}) {
      if (v < event->worst) event->worst = v;
    }
  }

  Thresholds thresholds_;
  std::map<int64_t, PhaseState> phases_;
  std::vector<PhaseEvent> ended_;
};

// Phases that are out at the same time are one event.
struct Joined {
  VoltageEvent event;
  int64_t reach;                    // as far as it is certain to go
  std::map<int64_t, double> worst;  // by phase
};

std::vector<Joined> Join(const std::vector<PhaseEvent>& phases, bool swells) {
  std::vector<Joined> joined;
  size_t unfinished = SIZE_MAX;
  for (const PhaseEvent& phase : phases) {
    if (phase.swell != swells) continue;
    // A phase that is still out when the recording ends may also lack the transition by which it
    // was back, so it only meets what meets its beginning, and what is still out as well.
    const auto meets = [&](const Joined& before) {
      return phase.from <= before.reach || (phase.to == kNoTime && before.event.to == kNoTime);
    };
    size_t place = joined.size() - 1;
    if (!joined.empty() && !meets(joined[place])) place = unfinished;
    if (place >= joined.size() || !meets(joined[place])) {
      const EventKind kind = swells ? EventKind::kSwell : EventKind::kDip;
      joined.push_back({{kind, phase.from, phase.from, {}, phase.worst, 0}, phase.from, {}});
      place = joined.size() - 1;
    }
    if (phase.to == kNoTime) unfinished = place;
    joined[place].reach = std::max({joined[place].reach, phase.from, phase.to});
    VoltageEvent& event = joined[place].event;
    event.to = phase.to == kNoTime || event.to == kNoTime ? kNoTime : std::max(event.to, phase.to);
    event.voltage =
        swells ? std::max(event.voltage, phase.worst) : std::min(event.voltage, phase.worst);
    const auto [entry, is_new] = joined[place].worst.emplace(phase.phase, phase.worst);
    if (!is_new && (swells ? phase.worst > entry->second : phase.worst < entry->second)) {
      entry->second = phase.worst;
    }
  }
  return joined;
}

}  // namespace

Thresholds ThresholdsOf(const RecordingHead& head, double nominal) {
  Thresholds volts;
  std::map<std::string, double> stored;
  for (const HeadRow& row : SettingsRows(head, {})) {
    if (row.value && row.path.compare(0, 12, "INFORMATION/") == 0) {
      stored[row.path.substr(12)] = std::strtod(row.value->c_str(), nullptr);
    }
  }
  const auto own = static_cast<double>(head.settings.nominal_voltage);
  volts.nominal = nominal > 0                     ? nominal
                  : stored["NOMINAL_VOLTAGE"] > 0 ? stored["NOMINAL_VOLTAGE"]
                                                  : own;
  volts.dip = stored["DIP_TRESHOLD"];
  volts.swell = stored["SWELL_TRESHOLD"];
  volts.interruption = stored["INTTERUPT_TRESHOLD"];
  if (!(volts.dip > 0)) {
    volts.dip = static_cast<double>(head.settings.dip);
    volts.swell = static_cast<double>(head.settings.swell);
    volts.interruption = static_cast<double>(head.settings.interrupt);
  }
  // Percentages or volts: a dip begins near 0.9 of the nominal voltage, in whichever it is. The
  // recording's own nominal voltage decides, as the thresholds were made for that.
  const double made_for = stored["NOMINAL_VOLTAGE"] > 0 ? stored["NOMINAL_VOLTAGE"] : own;
  volts.from_percent =
      made_for > 0 && std::abs(volts.dip / 100 - 0.9) < std::abs(volts.dip / made_for - 0.9);
  if (volts.from_percent) {
    for (double* value : {&volts.dip, &volts.swell, &volts.interruption}) {
      *value = *value * made_for / 100;
    }
  }
  return volts;
}

const char* NameOf(EventKind kind) {
  constexpr const char* kNames[] = {"dip", "swell", "interruption"};
  return kNames[static_cast<size_t>(kind)];
}

std::string ClassOf(const VoltageEvent& event, const Limits& limits) {
  if (event.to == kNoTime) return "";
  if (event.kind == EventKind::kInterruption) {
    return event.seconds() <= limits.short_interruption ? "short" : "long";
  }
  const EventClasses& classes = event.kind == EventKind::kDip ? limits.dips : limits.swells;
  if (event.seconds() < kShortest) return "";
  // 50.8 V as a float are a little less than 80 % of 63.5 V.
  const double percent = std::round(event.percent * 1e4) / 1e4;
  for (const EventClasses::Row& row : classes.rows) {
    if (!(percent >= row.from && percent < row.to)) continue;
    for (size_t c = 0; c < classes.seconds.size(); ++c) {
      if (event.seconds() <= classes.seconds[c]) return row.name + std::to_string(c + 1);
    }
  }
  return "";
}

RecordedEvents EventsOf(const std::string& path, const Limits& limits, double nominal,
                        const ReadOptions& options) {
  enum { kPhase, kTime, kFrom, kTo, kVoltage, kDip, kSwell, kInterruption };
  TableRows rows(path, "records",
                 {"PHASE_NUMBER", "TIME_STAMP", "TRANSITION_FROM_EVENT_TYPE_ID",
                  "TRANSITION_TO_EVENT_TYPE_ID", "RMS_12_AT_TRANSITION", "DATA/DIP/MIN_VALUE",
                  "DATA/SWELL/MAX_VALUE", "DATA/INTERRUPT/MIN_VALUE"},
                 options);
  RecordedEvents recorded;
  recorded.thresholds = ThresholdsOf(rows.head(), nominal);
  const Thresholds& thresholds = recorded.thresholds;
  Follower follower(thresholds);
  while (rows.Next()) {
    ++recorded.transitions;
    if (rows.Integer(kTime) == kNoTime) continue;
    follower.Take({rows.Integer(kPhase), InMilliseconds(rows.Integer(kTime)), rows.Integer(kFrom),
                   rows.Integer(kTo), rows.Number(kVoltage), rows.Number(kDip), rows.Number(kSwell),
                   rows.Number(kInterruption)});
  }
  const std::vector<std::string> channels = VoltageChannels(rows.head().settings.connection);
  const std::vector<PhaseEvent> phases = follower.Result();
  for (const bool swells : {false, true}) {
    for (Joined& joined : Join(phases, swells)) {
      VoltageEvent& event = joined.event;
      bool all_out = joined.worst.size() >= channels.size();
      for (const auto& [phase, worst] : joined.worst) {
        const bool known = phase >= 1 && phase <= static_cast<int64_t>(channels.size());
        event.channels.push_back(known ? channels[static_cast<size_t>(phase - 1)]
                                       : "phase " + std::to_string(phase));
        all_out = all_out && known && Nearest(worst) < Nearest(thresholds.interruption);
      }
      if (all_out && !swells) event.kind = EventKind::kInterruption;
      event.percent = 100 * event.voltage / thresholds.nominal;
      event.event_class = ClassOf(event, limits);
      recorded.events.push_back(event);
    }
  }
  std::stable_sort(recorded.events.begin(), recorded.events.end(),
                   [](const VoltageEvent& a, const VoltageEvent& b) { return a.from < b.from; });
  return recorded;
}

}  // namespace quorvex
