// Verdicts and events against figures made by hand: recordings in which known shares of known
// values are wrong. What networks are judged by is the limits file that ships.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>

#include "assessment/chains.h"
#include "assessment/voltage_events.h"
#include "records/record_types.h"
#include "report/limits_file.h"
#include "report/texts.h"
#include "sample.h"
#include "support.h"

namespace quorvex::test {
namespace {

using samples::RecordBytes, samples::RecordingFile;

constexpr int64_t kMicroseconds = 1000000;
constexpr int64_t kBegin = 1709251200 * kMicroseconds;  // 1 March 2024
constexpr double kWeekSeconds = 7 * 86400.0;

const Limits& Shipped() {
  static std::string problem;
  static const Limits limits = *tool::LimitsOf(tool::kShippedLimits, nullptr, &problem);
  return limits;
}

// Seconds since kBegin; in that month.
DateTimeRecord At(double seconds) {
  samples::Clock clock = samples::ClockAt(1, 0, 0, 0);
  const int days = static_cast<int>(seconds / 86400);
  clock.now.day = static_cast<uint8_t>(1 + days);
  clock.Advance(seconds - days * 86400.0);
  return clock.now;
}
Span Between(double from, double to) {
  const auto at = [](double s) { return kBegin + std::llround(s * 1e6); };
  return {at(from), at(to)};
}

enum Layout { kFull, kCompact, kStandard, kQuality };
// "u1 rms/rms" is of a voltage, "u1h#5" float 5 of a spectrum; others are paths.
using Values = std::map<std::string, double>;

// A recording of intervals, one after the other.
class Intervals {
 public:
  explicit Intervals(Layout layout, uint32_t interval = 600, uint8_t connection = 3)
      : layout_(layout) {
    settings = samples::NetworkSettings();
    settings.profile = layout;
    settings.interval = interval;
    settings.connection = connection;
  }
  Intervals& With(const std::function<void(UifParams*)>& change) {
    change(&settings);
    return *this;
  }
  Intervals& Nominal(double volts) {
    nominal = volts;
    return *this;
  }
  Intervals& Flag(double from, double to) {
    flags.push_back(Between(from, to));
    return *this;
  }
  // So many with these values and no others.
  Intervals& Add(int count, const Values& values) {
    const bool quality = layout_ == kQuality;
    RecordBytes record(quality ? *kVoltageQuality.choice->choose(settings)
                               : *kGeneral.choice->layouts[layout_]);
    record.ClearFloats();
    for (const auto& [name, value] : values) {
      const size_t blank = name.find(' '), mark = name.find('#');
      if (mark != std::string::npos) {
        const auto place = static_cast<uint32_t>(std::stoul(name.substr(mark + 1)));
        record.SetFloat("HARMONICS_U/HARM_U[" + name.substr(0, mark) + "]", place, value);
      } else if (blank != std::string::npos) {
        record.Set("VOLTAGES/U[" + name.substr(0, blank) + "]/" + name.substr(blank + 1), value);
      } else {
        record.Set(name, value);
      }
    }
    return Add(count, record);
  }
  Intervals& Add(int count, RecordBytes record) {
    for (int i = 0; i < count; ++i, seconds_ += settings.interval) {
      if (layout_ != kQuality) record.SetTime("START_TIME", At(seconds_));
      record.SetTime("LAST_TIME", At(seconds_ + settings.interval));
      records_.insert(records_.end(), record.bytes().begin(), record.bytes().end());
    }
    return *this;
  }
  Intervals& Skip(int count) {
    seconds_ += count * static_cast<double>(settings.interval);
    return *this;
  }
  Assessment Assessed(const std::string& name = "A0001X.REC") const {
    RecordingFile file(layout_ == kQuality ? 16 : 1, &settings);
    const std::string path = InFolder(name);
    file.Append(records_.data(), records_.size()).Write(path.substr(0, path.rfind('/')), name);
    return Assess({path}, Shipped(), nominal, flags, {});
  }

  UifParams settings;
  std::vector<Span> flags;
  double nominal = 0;

 private:
  Layout layout_;
  double seconds_ = 0;
  std::vector<uint8_t> records_;
};

std::string Text(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

// "within 0.95 of 1000, 8 flagged" of an index, a channel and the share that is needed.
std::string Told(const Week& week, const std::string& index, const std::string& channel,
                 double needed) {
  for (const IndexRow& row : week.rows) {
    if (row.limit->index != index || row.channel != channel || row.limit->needed != needed) {
      continue;
    }
    std::string told = NameOf(row.verdict);
    if (row.within) told += Text(" %.6g", *row.within) + " of " + std::to_string(row.used);
    if (!row.within && row.used != 0) told += " of some";
    return told + (row.flagged != 0 ? ", " + std::to_string(row.flagged) + " flagged" : "");
  }
  return "no row";
}

constexpr const char* kNotMeasured = "not measured";
struct Expected {
  const char *index, *channel;
  double needed;
  std::string told;
  size_t week = 0;
};
struct Case {
  const char* name;
  Intervals made;
  std::vector<Expected> expected;
};

Values Volts(double volts) { return {{"u1 rms/rms", volts}}; }

// A week of ten-minute voltages: `good` and `bad` ones, and the rest without a value.
Intervals Week1008(int good, int bad, double bad_volts = 206.9) {
  const int rest = 1008 - good - bad;
  return Intervals(kCompact).Add(good, Volts(230)).Add(bad, Volts(bad_volts)).Add(rest, Values{});
}

std::vector<Case> VoltageCases() {
  const auto is = [](const char* told) {
    return std::vector<Expected>{{"voltage", "u1", 0.95, told}};
  };
  const auto rms_of = [](double a, double b, uint32_t interval, int count) {
    return Intervals(kCompact, interval).Add(count, Volts(a)).Add(count, Volts(b));
  };
  return {
      // Of 1000 values 950 are 95 %, and what has no value counts for neither side.
      {"just enough",
       Week1008(950, 50),
       {{"voltage", "u1", 0.95, "within 0.95 of 1000"},
        {"voltage", "u1", 1, "within 1 of 1000"},  // 206.9 V is above 195.5 V
        {"voltage", "u2", 0.95, kNotMeasured}}},
      {"one too few", Week1008(949, 51), is("outside 0.949 of 1000")},
      {"one below 85 %",
       Week1008(999, 1, 195.4),
       {{"voltage", "u1", 0.95, "within 0.999 of 1000"},
        {"voltage", "u1", 1, "outside 0.999 of 1000"}}},
      // Limits are within: 207 V and 253 V are.
      {"at the limits", Week1008(500, 500, 207), is("within 1 of 1000")},
      {"at the upper limit", Week1008(500, 500, 253), is("within 1 of 1000")},
      {"next to it", Week1008(500, 500, std::nextafter(253.0f, 300.0f)), is("outside 0.5 of 1000")},
      // 63.5 V and 10 % are no floats: 57.15 V as a float is the limit, and so is 69.85 V.
      {"a limit between floats", Week1008(500, 500, 57.15).Nominal(63.5),
       is("outside 0.5 of 1000")},
      {"floats on both limits",
       Intervals(kCompact).Nominal(63.5).Add(504, Volts(57.15)).Add(504, Volts(69.85)),
       is("within 1 of 1008")},
      {"nominal by option", Week1008(0, 1008, 215.9).Nominal(240), is("outside 0 of 1008")},
      {"own nominal", Week1008(0, 1008, 105).With([](UifParams* s) { s->nominal_voltage = 110; }),
       is("within 1 of 1008")},
      {"none", Week1008(0, 1008).With([](UifParams* s) { s->nominal_voltage = 0; }),
       is(kNotMeasured)},
      // 95 % of 1008 are 957.6.
      {"957 of a week", Week1008(957, 0), is("not a full week 1 of 957")},
      {"958 of a week", Week1008(958, 0), is("within 1 of 958")},
      {"957 with a gap", Intervals(kCompact).Add(900, Volts(230)).Skip(51).Add(57, Volts(230)),
       is("not a full week 1 of 957")},
      // A share that fails stays no verdict.
      {"a day", Intervals(kCompact).Add(72, Volts(230)).Add(72, Volts(190)),
       is("not a full week 0.5 of 144")},
      {"eight days",
       Week1008(1008, 0).Add(144, Volts(190)),
       {{"voltage", "u1", 0.95, "within 1 of 1008"},
        {"voltage", "u1", 0.95, "not a full week 0 of 144", 1}}},
      // The interval that the event ends in, be it at its first moment, is left out; the one that
      // ends as the event begins is not. Bad values are left out with it, so all others are within.
      {"flagged",
       Intervals(kCompact)
           .Flag(600, 1200)
           .Add(1, Volts(230))
           .Add(2, Volts(100))
           .Add(1005, Volts(230)),
       is("within 1 of 1006, 2 flagged")},
      {"flagged by a moment", Week1008(1008, 0).Flag(900, 900), is("within 1 of 1007, 1 flagged")},
      // 52 values are missing at most 50: flagged ones are there.
      {"flagged count as there", Week1008(950, 0).Flag(956 * 600.0 + 1, 963 * 600.0 + 1),
       is("within 1 of 950, 8 flagged")},
      {"missing by far", Week1008(900, 0).Flag(956 * 600.0 + 1, 963 * 600.0 + 1),
       is("not a full week 1 of 900, 8 flagged")},
      // 240 V and 266 V: their mean is 253 V, the root of the mean of their squares 253.33 V.
      {"put together", rms_of(240, 266, 60, 5), is("not a full week 0 of 1")},
      {"a tenth missing", rms_of(230, 230, 60, 14), is("not a full week 1 of 2")},
      {"one without a value",
       Intervals(kCompact, 60).Add(4, Volts(230)).Add(1, Values{}).Add(15, Volts(230)),
       is("not a full week 1 of 1")},
      {"a window flagged by its part", rms_of(230, 230, 60, 15).Flag(650, 655),
       is("not a full week 1 of 2, 1 flagged")},
      {"in one second", rms_of(240, 266, 1, 300), is("not a full week 0 of 1")},
      {"a quarter of an hour", rms_of(230, 230, 900, 336), is(kNotMeasured)},
      {"seven minutes", rms_of(230, 230, 420, 720), is(kNotMeasured)},
      {"no interval", rms_of(230, 230, 0, 1), is("no row")},
  };
}

void Expect(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    const Assessment assessment = c.made.Assessed();
    for (const Expected& e : c.expected) {
      const bool there = e.week < assessment.weeks.size();
      EXPECT_EQ(e.told,
                there ? Told(assessment.weeks[e.week], e.index, e.channel, e.needed) : "no row")
          << c.name << ": " << e.index << " of " << e.channel;
    }
  }
}

TEST(Assessment, Voltages) { Expect(VoltageCases()); }

}  // namespace
}  // namespace quorvex::test
