// Verdicts and events against figures made by hand: recordings in which known shares of known
// values are wrong, judged by the limits that the program comes with.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <sstream>

#include "assessment/chains.h"
#include "assessment/voltage_events.h"
#include "periodic.h"
#include "records/record_types.h"
#include "report/limits_file.h"
#include "report/texts.h"
#include "sample.h"
#include "support.h"

namespace quorvex::test {
namespace {

using samples::RecordBytes, samples::RecordingFile;

constexpr int64_t kBegin = 1709251200;  // 1 March 2024, in seconds
constexpr int64_t kMicro = 1000000;

const Limits& Shipped() {
  static std::string problem;
  static const Limits limits = *tool::LimitsOf(tool::kShippedLimits, nullptr, &problem);
  return limits;
}

// Seconds since kBegin.
DateTimeRecord At(double seconds) {
  DateTimeRecord time = {2024, 3, 1, 0, 0, {}, 0};
  AddSeconds(&time, static_cast<float>(std::floor(seconds)));
  time.seconds += seconds - std::floor(seconds);
  return time;
}
int64_t TimeAt(double seconds) { return kBegin * kMicro + std::llround(seconds * 1e6); }

std::string Write(const RecordingFile& file) {
  const std::string name = "A0001X.REC", path = InFolder(name);
  file.Write(path.substr(0, path.size() - name.size()), name);
  return path;
}

constexpr int kFrequencies = 720;  // of two hours

// Sets what "u1=230" says: a voltage, "u1h#4" float 4 of a spectrum, with slashes an element;
// "freqs/9=50" the first nine of two hours' frequencies.
void SetOne(const std::string& word, RecordBytes* record) {
  const size_t is = word.find('='), mark = word.find('#');
  const std::string name = word.substr(0, std::min(is, mark));
  const double value = std::stod(word.substr(is + 1));
  if (mark != std::string::npos) {
    const auto place = static_cast<uint32_t>(std::stoul(word.substr(mark + 1)));
    record->SetFloat("HARMONICS_U/HARM_U[" + name + "]", place, value);
  } else if (name.substr(0, 6) == "freqs/") {
    samples::StartFrequencies(record, samples::ClockAt(1, 0, 0, 0));
    record->SetRaw(1936, kFrequencies);
    for (int i = std::stoi(name.substr(6)); i > 0;) record->Set(samples::FrequencyPath(--i), value);
  } else if (name.find('/') == std::string::npos) {
    record->Set("VOLTAGES/U[" + name + "]/rms/rms", value);
  } else if (name[0] == 'u') {
    const size_t slash = name.find('/');
    record->Set("VOLTAGES/U[" + name.substr(0, slash) + "]" + name.substr(slash), value);
  } else {
    record->Set(name, value);
  }
}

// Makes and judges a recording of intervals, one after the other. Words of settings come first:
// the layout, "every=60" for the seconds of an interval, "option=240" for a nominal voltage that is
// asked for. Then "950 u1=230" are so many intervals with this and no other value, "skip=3" is a
// gap of so many, "back=2" begins so many earlier; "flag=600-1200" an event from second to second.
Assessment Judged(const std::string& text) {
  UifParams s = samples::NetworkSettings();
  bool quality = false;
  double option = 0, seconds = 0;
  std::vector<Span> flags;
  std::vector<uint8_t> bytes;
  std::istringstream stream(text);
  const std::vector<std::string> words(std::istream_iterator<std::string>(stream), {});
  for (size_t w = 0; w < words.size(); ++w) {
    const std::string &word = words[w], name = word.substr(0, word.find('='));
    const double value = name != word ? std::stod(word.substr(name.size() + 1)) : 0;
    if (name == "compact") s.profile = 1;
    if (name == "standard") s.profile = 2;
    if (name == "quality") quality = true;
    if (name == "every") s.interval = static_cast<uint32_t>(value);
    if (name == "wiring") s.connection = static_cast<uint8_t>(value);
    if (name == "hertz") s.system_frequency = static_cast<uint32_t>(value);
    if (name == "own") s.nominal_voltage = static_cast<float>(value);
    if (name == "reduced") s.reduced_lists = 1;
    if (name == "option") option = value;
    if (name == "skip") seconds += value * s.interval;
    if (name == "back") seconds -= value * s.interval;
    if (name == "flag") {
      flags.push_back({TimeAt(value), TimeAt(std::stod(word.substr(word.find('-') + 1)))});
    }
    if (word[0] < '0' || word[0] > '9') continue;
    RecordBytes record(*(quality ? kVoltageQuality : kGeneral).choice->choose(s));
    record.ClearFloats();
    const auto is_value = [](const std::string& v) { return v[0] == 'u' || v.find('/') < 99; };
    for (; w + 1 < words.size() && is_value(words[w + 1]); ++w) SetOne(words[w + 1], &record);
    for (int i = std::stoi(name); i > 0; --i, seconds += s.interval) {
      if (!quality) record.SetTime("START_TIME", At(seconds));
      record.SetTime("LAST_TIME", At(seconds + s.interval));
      bytes.insert(bytes.end(), record.bytes().begin(), record.bytes().end());
    }
  }
  RecordingFile file(quality ? 16 : 1, &s);
  return Assess({Write(file.Append(bytes.data(), bytes.size()))}, Shipped(), option, flags, {});
}

// "voltage u1 95: within 0.95 of 1000, 8 flagged": an index, a channel and the share in percent
// that is needed; in week `w`.
std::string Told(const Assessment& assessment, size_t w, const std::string& key) {
  if (w >= assessment.weeks.size()) return key + ": no week";
  for (const IndexRow& row : assessment.weeks[w].rows) {
    std::ostringstream told;
    told << row.limit->index << " " << row.channel << " " << 100 * row.limit->needed;
    if (told.str() != key) continue;
    told << ": " << NameOf(row.verdict);
    if (row.within) told << " " << *row.within << " of " << row.used;
    if (!row.within && row.used != 0) told << " of nothing";
    if (row.flagged != 0) told << ", " << row.flagged << " flagged";
    return told.str();
  }
  return key + ": no row";
}

struct Case {
  std::string recording;
  std::vector<std::string> told;  // "w" in front is of the second week
};
void Expect(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    const Assessment assessment = Judged(c.recording);
    for (const std::string& told : c.told) {
      const bool second = told[0] == '2';
      const std::string wanted = told.substr(second ? 2 : 0);
      EXPECT_EQ(wanted, Told(assessment, second ? 1 : 0, wanted.substr(0, wanted.find(':'))))
          << c.recording;
    }
  }
}

TEST(Assessment, Shares) {
  Expect({
      // Of 1000 values 950 are 95 %; what has no value counts for neither side. 206.9 V is below
      // 207 V, and above the 195.5 V that all have to keep.
      {"compact 950 u1=230 50 u1=206.9 8",
       {"voltage u1 95: within 0.95 of 1000", "voltage u1 100: within 1 of 1000",
        "voltage u2 95: not measured"}},
      {"compact 949 u1=230 51 u1=206.9 8", {"voltage u1 95: outside 0.949 of 1000"}},
      {"compact 999 u1=230 1 u1=195.4 8",
       {"voltage u1 95: within 0.999 of 1000", "voltage u1 100: outside 0.999 of 1000"}},
      // A limit is within, as the float that is nearest to it: 57.15 V of 63.5 V is a bit more as
      // a float, 69.85 V a bit less. The next float behind 253 is not.
      {"compact 500 u1=207 508 u1=253", {"voltage u1 95: within 1 of 1008"}},
      {"compact 504 u1=206.99998 504 u1=253.00002", {"voltage u1 95: outside 0 of 1008"}},
      {"compact option=63.5 504 u1=57.15 504 u1=69.85", {"voltage u1 95: within 1 of 1008"}},
      {"compact own=110 1008 u1=105", {"voltage u1 95: within 1 of 1008"}},
      {"compact option=240 1008 u1=215.9", {"voltage u1 95: outside 0 of 1008"}},
      {"compact own=0 1008 u1=230", {"voltage u1 95: not measured"}},
      {"compact own=nan 1008 u1=230", {"voltage u1 95: not measured"}},
      {"compact own=inf 1008 u1=230", {"voltage u1 95: not measured"}},
      // A value that is none takes no part.
      {"compact 958 u1=230 40 u1=nan 10 u1=inf", {"voltage u1 95: within 1 of 958"}},
  });
}

TEST(Assessment, Weeks) {
  Expect({
      // 95 % of 1008 are 957.6. It is all the same whether values or intervals are missing.
      {"compact 957 u1=230 51", {"voltage u1 95: not a full week 1 of 957"}},
      {"compact 958 u1=230 50", {"voltage u1 95: within 1 of 958"}},
      {"compact 900 u1=230 skip=51 57 u1=230", {"voltage u1 95: not a full week 1 of 957"}},
      {"compact 900 u1=230 skip=50 58 u1=230", {"voltage u1 95: within 1 of 958"}},
      // A share that fails is told, without a verdict.
      {"compact 72 u1=230 72 u1=190", {"voltage u1 95: not a full week 0.5 of 144"}},
      {"compact 1008 u1=230 144 u1=190",
       {"voltage u1 95: within 1 of 1008", "2 voltage u1 95: not a full week 0 of 144"}},
      // The event's end is the first moment of the third interval, its begin the end of the first.
      {"compact flag=600-1200 1 u1=230 2 u1=9 1005 u1=230",
       {"voltage u1 95: within 1 of 1006, 2 flagged", "thd u1 95: not measured, 2 flagged"}},
      // Flagged intervals are there: 949 and 9 are enough, 949 and 8 are not.
      {"compact flag=599401-604799 949 u1=230 50 9 u1=230",
       {"voltage u1 95: within 1 of 949, 9 flagged"}},
      {"compact flag=600001-604799 949 u1=230 51 8",
       {"voltage u1 95: not a full week 1 of 949, 8 flagged"}},
      // Times that go back are left out: three of the last five.
      {"compact 5 u1=230 back=3 5 u1=230", {"voltage u1 95: not a full week 1 of 7"}},
      // A year far off is one week more, not thousands.
      {"compact 1 u1=230 skip=2600000 3 u1=230", {"2 voltage u1 95: not a full week 1 of 3"}},
  });
}

TEST(Assessment, PutTogether) {
  Expect({
      // Of 240 and 266 V the mean is 253 V, the root of the mean of squares 253.33 V; of 7 and 9 %
      // it is 8.06 %.
      {"compact every=60 5 u1=240 u1/thdPr/rms=7 5 u1=266 u1/thdPr/rms=9",
       {"voltage u1 95: not a full week 0 of 1", "thd u1 95: not a full week 0 of 1"}},
      {"compact every=1 300 u1=240 300 u1=266", {"voltage u1 95: not a full week 0 of 1"}},
      {"compact every=60 28 u1=230", {"voltage u1 95: not a full week 1 of 2"}},
      {"compact every=60 4 u1=230 1 15 u1=230", {"voltage u1 95: not a full week 1 of 1"}},
      {"compact every=60 flag=650-655 30 u1=230",
       {"voltage u1 95: not a full week 1 of 2, 1 flagged"}},
      // What does not make ten minutes is no measurement of them; flicker is taken as it is.
      {"compact every=900 672 u1=230 u1/Plt/rms=1",
       {"voltage u1 95: not measured", "plt u1 95: within 1 of 672"}},
      {"compact every=420 1440 u1=230", {"voltage u1 95: not measured"}},
      // 95 % of 84 times two hours are 79.8.
      {"compact every=7200 80 u1/Plt/rms=1", {"plt u1 95: within 1 of 80"}},
      {"compact every=7200 79 u1/Plt/rms=1", {"plt u1 95: not a full week 1 of 79"}},
      {"compact 957 u1/Plt/rms=1 51 u1/Plt/rms=1.1", {"plt u1 95: outside 0.949405 of 1008"}},
  });
}

TEST(Assessment, WhatLayoutsHave) {
  Expect({
      {"compact 1008 u1=230",
       {"unbalance all 95: not measured", "signalling u1 99: not measured",
        "frequency all 99.5: not measured"}},
      {"standard 958 sym/um/rms=2", {"unbalance all 95: within 1 of 958"}},
      {"standard reduced 1 u1=230 u1/Plt/rms=1 u1/SIGNALING_3s/SIGNAL1/IN=200",
       {"voltage u1 95: not a full week 1 of 1", "plt u1 95: not measured",
        "signalling u1 99: not measured"}},
      // Ten minutes of voltage quality have no voltage; distortion is in percent.
      {"quality 1008 u1/thd/rms=8 u1h#1=230 u1h#5=13.8",
       {"voltage u1 95: not measured", "thd u1 95: within 1 of 1008", "plt u1 95: not measured",
        "harmonic-5 u1 95: within 1 of 1008"}},
      {"quality every=300 2 u1=230", {"voltage u1 95: not a full week 1 of 1"}},
      // Of 230 V 13.8 V are 6 %. The compact spectrum begins with order 1.
      {"compact 500 u1h#0=230 u1h#4=13.8 508 u1h#0=230 u1h#4=13.81",
       {"harmonic-5 u1 95: outside 0.496032 of 1008", "harmonic-6 u1 95: not measured"}},
      {"compact 1 u1h#4=13.8", {"harmonic-5 u1 95: not measured"}},
      // Percent go before volts, and the first float of an order before the second.
      {"1 u1h#2=230 u1h#10=23 u1hPr#10=6 u1hPr#11=9", {"harmonic-5 u1 95: not a full week 1 of 1"}},
      {"hertz=400 1 u1hPr#26=3 u1hPr#28=0.1",
       {"harmonic-13 u1 95: not a full week 1 of 1", "harmonic-14 u1 95: not measured"}},
      {"hertz=55 1 u1hPr#40=0.4 u1hPr#42=0.1",
       {"harmonic-20 u1 95: not a full week 1 of 1", "harmonic-21 u1 95: not measured"}},
  });
}

TEST(Assessment, Frequencies) {
  Expect({
      // A week has 60480, of which half a percent are 302.4. Events do not matter.
      {"every=7200 flag=0-99999 83 freqs/720=50 1 freqs/720=50 freqs/302=49.4",
       {"frequency all 99.5: within 0.995007 of 60480", "frequency all 100: within 1 of 60480"}},
      {"every=7200 83 freqs/720=50 1 freqs/720=50.5 freqs/303=50.6",
       {"frequency all 99.5: outside 0.99499 of 60480"}},
      {"every=7200 79 freqs/720=52 1 freqs/576=46.9",
       {"frequency all 100: outside 0.989975 of 57456"}},
      {"every=7200 79 freqs/720=50 1 freqs/575=50",
       {"frequency all 99.5: not a full week 1 of 57455"}},
      {"every=7200 hertz=60 2 freqs/720=59.4", {"frequency all 99.5: not a full week 1 of 1440"}},
      {"every=7200 hertz=60 2 freqs/720=60.61", {"frequency all 99.5: not a full week 0 of 1440"}},
  });
}

TEST(Assessment, SignallingByDay) {
  const std::string in = " u1/SIGNALING_3s/SIGNAL1/IN=", out = " u1/SIGNALING_3s/SIGNAL1/OUT=";
  const auto week = [&](const std::string& front, int count, int bad) {
    return "standard every=7200 " + front + std::to_string(count) + in + std::to_string(200 - bad) +
           out + std::to_string(bad) + " " + std::to_string(84 - count) + in + "200";
  };
  Expect({
      {week("", 12, 2), {"signalling u1 99: within 0.99 of 16800"}},
      // Of the week 99.8 %, of the first day 98.5 %.
      {week("", 12, 3), {"signalling u1 99: outside 0.985 of 16800"}},
      // Days begin where the week does, here at noon: six of the first day's twelve.
      {week("skip=6 ", 6, 4), {"signalling u1 99: within 0.99 of 16800"}},
      {week("flag=1-2 ", 1, 200), {"signalling u1 99: within 1 of 16600, 200 flagged"}},
      // An interval longer than a week is none.
      {"standard every=700000 1" + in + "200", {"signalling u1 99: not a full week 1 of 200"}},
  });
}

// The voltages that each wiring is judged by, with their own values where the table has them.
TEST(Assessment, Wirings) {
  for (const std::string layout : {"", "compact ", "standard ", "quality every=300 "}) {
    for (int wiring = 0; wiring <= 8; ++wiring) {
      const bool pairs = wiring == 2 || wiring == 4 || wiring == 7;
      std::string made = layout + "wiring=" + std::to_string(wiring) + " 2";
      const std::string distortion = layout[0] == 'q' ? "/thd/rms=" : "/thdPr/rms=";
      const std::string spectrum = layout.empty() ? "hPr#" : "h#";
      const int first = layout[0] == 'c' ? 0 : 1, step = layout.empty() ? 2 : 1;
      for (const std::string u : {"u1", "u2", "u3", "u12", "u23", "u31"}) {
        made += " " + u + ((layout[0] == 'q' ? pairs : u.size() == 3) ? "=412 " : "=231 ");
        made += u + distortion + "3 " + u + spectrum + std::to_string(first * step) + "=100 ";
        made += u + spectrum + std::to_string((first + 4) * step) + "=4";
      }
      std::map<std::string, std::string> told;
      const Assessment assessment = Judged(made);
      for (const IndexRow& row : assessment.weeks.at(0).rows) {
        if (row.used == 0 || row.limit->needed == 1) continue;
        told[row.limit->index] +=
            row.channel + "=" + std::to_string(std::lround(*row.highest)) + " ";
      }
      const auto all = [&](const std::string& v) {
        if (pairs) return "u12=" + v + " u23=" + v + " u31=" + v + " ";
        const std::string two = wiring == 3 || wiring == 5 ? "u2=" + v + " " : "";
        return "u1=" + v + " " + two + (wiring == 3 ? "u3=" + v + " " : "");
      };
      EXPECT_EQ(all(pairs ? "412" : "231"), told["voltage"]) << made;
      EXPECT_EQ(all("3"), told["thd"]) << made;
      EXPECT_EQ(all("4"), told["harmonic-5"]) << made;
    }
  }
}

// A phase goes from one state to another; `extreme` is what it came to meanwhile, 0 for nothing.
struct Transition {
  double seconds;
  int phase, from, to;
  double volts, extreme;
};
enum State { kIn, kDip, kSwell, kOut };
struct Network {
  double nominal = 230, dip = 207, swell = 253, interruption = 11.5;
  uint8_t wiring = 3;
};

// "dip u1+u2 80 % 0.2 s A1; ..." of what happened.
std::string Happened(const std::vector<Transition>& transitions, const Network& network = {}) {
  UifParams settings = samples::NetworkSettings();
  settings.connection = network.wiring;
  RecordBytes information(*kVoltageEvents.information);
  information.Set("NOMINAL_VOLTAGE", network.nominal).Set("DIP_TRESHOLD", network.dip);
  information.Set("SWELL_TRESHOLD", network.swell).Set("INTTERUPT_TRESHOLD", network.interruption);
  RecordingFile file(8, &settings, 128);
  file.Append(information);
  for (const Transition& t : transitions) {
    RecordBytes record(*kVoltageEvents.record);
    record.ClearFloats().Set("PHASE_NUMBER", t.phase).SetTime("TIME_STAMP", At(t.seconds));
    record.Set("TRANSITION_FROM_EVENT_TYPE_ID", t.from).Set("RMS_12_AT_TRANSITION", t.volts);
    record.Set("TRANSITION_TO_EVENT_TYPE_ID", t.to);
    if (t.extreme != 0) {
      record.Set(t.from == kSwell ? "DATA/SWELL/MAX_VALUE" : "DATA/DIP/MIN_VALUE", t.extreme);
    }
    file.Append(record);
  }
  std::ostringstream told;
  for (const VoltageEvent& e : EventsOf(Write(file), Shipped(), 0, {}).events) {
    told << (told.str().empty() ? "" : "; ") << NameOf(e.kind) << " ";
    for (const std::string& channel : e.channels) told << channel << " ";
    told << std::round(10 * e.percent) / 10 << " %";
    if (e.to != kNoTime) told << " " << e.seconds() << " s";
    if (!e.event_class.empty()) told << " " << e.event_class;
  }
  return told.str();
}

// Upper bounds of residual voltages are not in a class, of durations they are; whatever the nominal
// voltage, of which percents are not floats.
TEST(VoltageEvents, Classes) {
  constexpr struct {
    double percent, seconds;
    const char* name;
  } kClasses[] = {
      {89.9, 0.01, "A1"},  {80, 0.2, "A1"},   {79.9, 0.2, "B1"},    {80, 0.201, "A2"},
      {70, 0.5, "B2"},     {69.9, 0.5, "C2"}, {70, 0.501, "B3"},    {40, 1, "C3"},
      {39.9, 1.001, "D4"}, {5, 5, "D4"},      {5, 5.001, "D5"},     {4.9, 60, "X5"},
      {4.9, 60.001, ""},   {80, 0.009, ""},   {110.1, 0.5, "T1"},   {119.9, 0.501, "T2"},
      {120, 0.5, "S1"},    {120, 5, "S2"},    {119.9, 5.001, "T3"}, {120, 60, "S3"},
      {120, 60.001, ""},
  };
  for (const double nominal : {230.0, 63.5, 231.0, 20000.0}) {
    for (const auto& c : kClasses) {
      const double one = nominal / 100, at = 7.311;
      const int state = c.percent > 100 ? kSwell : kDip;
      std::ostringstream told;
      told << (state == kSwell ? "swell u1 " : "dip u1 ") << c.percent << " % " << c.seconds
           << " s";
      const std::string name = *c.name != '\0' ? std::string(" ") + c.name : "";
      EXPECT_EQ(told.str() + name,
                Happened({{at, 1, kIn, state, c.percent * one, 0},
                          {at + c.seconds, 1, state, kIn, 100 * one, c.percent * one}},
                         {nominal, 90 * one, 110 * one, 5 * one}))
          << nominal;
    }
  }
}

TEST(VoltageEvents, OfPhases) {
  const std::vector<Transition> out = {
      {0, 1, kIn, kOut, 2.3, 0}, {0.003, 3, kIn, kOut, 3, 0}, {0.005, 2, kIn, kOut, 2.3, 0}};
  const auto all_out = [&](double seconds, double lowest) {
    std::vector<Transition> all = out;
    for (const int phase : {1, 2}) all.push_back({seconds - 1, phase, kOut, kIn, 212, 0});
    all.push_back({seconds, 3, kOut, kIn, 212, lowest});
    return all;
  };
  const struct {
    std::vector<Transition> transitions;
    const char* told;
    Network network = {};
  } kCases[] = {
      {all_out(180, 2.3), "interruption u1 u2 u3 1 % 180 s short"},
      {all_out(180.001, 2.3), "interruption u1 u2 u3 1 % 180.001 s long"},
      // The recording ends before the voltage is back.
      {out, "interruption u1 u2 u3 1 %"},
      // One phase alone is no interruption where there are three, but where it is the only one.
      {{out[0], {0.5, 1, kOut, kIn, 212, 0}}, "dip u1 1 % 0.5 s X2"},
      {{out[0], {0.5, 1, kOut, kIn, 212, 0}}, "interruption u1 1 % 0.5 s short", {.wiring = 1}},
      // All phases, of which one stays at the threshold.
      {{{0, 1, kIn, kOut, 2.3, 0},
        {0, 2, kIn, kOut, 11.5, 0},
        {1, 1, kOut, kIn, 212, 0},
        {1, 2, kOut, kIn, 212, 0}},
       "dip u1 u2 1 % 1 s X3",
       {.wiring = 5}},
      // From the first phase that leaves to the last that is back, with the worst voltage; the
      // third is out again later.
      {{{1, 2, kIn, kDip, 200, 0},
        {1.05, 3, kIn, kDip, 200, 0},
        {1.35, 2, kDip, kIn, 212, 115},
        {1.43, 3, kDip, kIn, 212, 138},
        {1.44, 3, kIn, kDip, 200, 0},
        {1.5, 3, kDip, kIn, 212, 0}},
       "dip u2 u3 50 % 0.43 s C2; dip u3 87 % 0.06 s A1"},
      // Deeper within the dip, as a state of its own, and back to the dip.
      {{{0, 1, kIn, kDip, 200, 0},
        {0.1, 1, kDip, kOut, 10, 0},
        {0.3, 1, kOut, kDip, 14, 0},
        {0.5, 1, kDip, kIn, 212, 0}},
       "dip u1 4.3 % 0.5 s X2"},
      // A dip turns into a swell, which is over where it goes back to where all began, though its
      // last voltage is not in the band.
      {{{0, 1, kIn, kDip, 184, 0}, {0.5, 1, kDip, kSwell, 260, 0}, {0.7, 1, kSwell, kIn, 253, 276}},
       "dip u1 80 % 0.5 s A2; swell u1 120 % 0.2 s S1"},
      // A swell on one phase while another dips are two events.
      {{{0, 1, kIn, kDip, 184, 0},
        {0.1, 2, kIn, kSwell, 260, 0},
        {0.2, 1, kDip, kIn, 212, 0},
        {0.3, 2, kSwell, kIn, 248, 264.5}},
       "dip u1 80 % 0.2 s A1; swell u2 115 % 0.2 s T1"},
      {{{0, 1, kIn, kDip, 184, 0}}, "dip u1 80 %"},
      // A clock that went back has no duration.
      {{{9, 1, kIn, kDip, 184, 0}, {5, 1, kDip, kIn, 212, 0}}, "dip u1 80 %"},
      // Thresholds in percent, of pairs of lines.
      {{{0, 2, kIn, kDip, 360, 0}, {0.2, 2, kDip, kIn, 361, 280}},
       "dip u23 70 % 0.2 s B1",
       {400, 90, 110, 5, 4}},
      {{{0, 2, kIn, kDip, 360.1, 0}, {0.2, 2, kDip, kIn, 361, 0}}, "", {400, 90, 110, 5, 4}},
      {{{0, 1, kIn, kDip, 57.15, 0}, {0.2, 1, kDip, kIn, 60, 0}},
       "dip u1 90 % 0.2 s",
       {63.5, 57.15, 69.85, 3.175}},
      {{{0, 1, kIn, kSwell, 69.85, 0}, {0.2, 1, kSwell, kIn, 66, 76.2}},
       "swell u1 120 % 0.2 s S1",
       {63.5, 90, 110, 5}},
      {{{0, 1, kIn, kSwell, 253, 0}, {0.2, 1, kSwell, kIn, 250, 0}}, "swell u1 110 % 0.2 s T1"},
      {{{0, 1, kIn, kSwell, 252.9, 0}, {0.2, 1, kSwell, kIn, 250, 0}}, ""},
  };
  for (const auto& c : kCases) EXPECT_EQ(c.told, Happened(c.transitions, c.network));
}

TEST(Assessment, Chains) {
  const int64_t t = 600 * kMicro;
  const std::vector<Stretch> stretches = {
      {"a", {5 * t, 9 * t}, t},       {"a", {0, 4 * t + 1}, t},    // just under an interval
      {"a", {10 * t, 11 * t}, t},     {"b", {11 * t, 12 * t}, t},  // a whole one; another subject
      {"a", {11 * t - 1, 12 * t}, t}, {"a", {11 * t, 12 * t}, t},  // too early; at the end
      {"a", {kNoTime, kNoTime}, t},   {"a", {12 * t, kNoTime}, t},
  };
  EXPECT_EQ((std::vector<std::vector<size_t>>{{6}, {1, 0}, {2, 5, 7}, {4}, {3}}),
            Chains(stretches));
}

}  // namespace
}  // namespace quorvex::test
