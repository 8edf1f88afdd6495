// Verdicts and events against figures made by hand: recordings in which known shares of known
// values are wrong, judged by the limits that the program comes with.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <regex>
#include <sstream>

#include "assessment/chains.h"
#include "assessment/voltage_events.h"
#include "periodic.h"
#include "records/record_types.h"
#include "report/limits_file.h"
#include "report/texts.h"
#include "support.h"
#include "support/loads.h"

namespace quorvex::test {
namespace {

using samples::RecordBytes, samples::RecordingFile;

std::string problem;
const Limits kLimits = *tool::LimitsOf(tool::kShippedLimits, nullptr, &problem);

// Seconds since all begins.
DateTimeRecord At(double seconds) {
  DateTimeRecord time = {2024, 3, 1, 0, 0, {}, 0};
  AddSeconds(&time, static_cast<float>(std::floor(seconds)));
  time.seconds += seconds - std::floor(seconds);
  return time;
}

std::string Write(const RecordingFile& file, const std::string& name = "A0001X.REC") {
  const std::string path = InFolder(name);
  file.Write(path.substr(0, path.size() - name.size()), name);
  return path;
}

std::vector<std::string> WordsOf(const std::string& text) {
  std::istringstream words(text);
  return {std::istream_iterator<std::string>(words), {}};
}

// Sets what "u1=230" says: a voltage, "u1h#4=9" float 4 of a spectrum, "u1/Plt/rms=1" an element of
// a voltage, "sym/um/rms=2" any other, "freqs/9=50" nine of the 720 frequencies of two hours.
void SetOne(const std::string& word, RecordBytes* record) {
  const size_t is = word.find('='), mark = word.find('#'), slash = word.find('/');
  const std::string path = word.substr(0, is), front = word.substr(0, std::min(mark, slash));
  const double value = std::stod(word.substr(is + 1));
  if (mark < is) {
    const auto place = static_cast<uint32_t>(std::stoul(word.substr(mark + 1)));
    record->SetFloat("HARMONICS_U/HARM_U[" + front + "]", place, value);
  } else if (front == "freqs") {
    samples::StartFrequencies(record, samples::ClockAt(1, 0, 0, 0));
    record->SetRaw(1936, 720);
    for (int i = std::stoi(path.substr(6)); i > 0;) record->Set(samples::FrequencyPath(--i), value);
  } else if (slash > is) {
    record->Set("VOLTAGES/U[" + path + "]/rms/rms", value);
  } else if (const std::string name = path.substr(slash); name == "/IN" || name == "/OUT") {
    record->Set("VOLTAGES/U[" + front + "]/SIGNALING_3s/SIGNAL1" + name, value);
  } else {
    record->Set(word[0] == 'u' ? "VOLTAGES/U[" + front + "]" + name : path, value);
  }
}

// Makes and judges recordings of intervals, one after the other. Words of settings come first: the
// layout, "every=60" for the seconds of an interval, "option=240" for a nominal voltage that is
// asked for. "950 u1=230" are so many intervals with this and no other value, "skip=3" is a gap of
// so many, "skip=-2" begins so many earlier, "ends=9" ends them so many later than they begin,
// "next" begins another recording; "flag=600-1200" is an event from second to second.
const std::map<std::string, std::string> kSettings = {
    {"compact", "976#1"}, {"standard", "976#2"}, {"reduced", "2560.1"}, {"every", "844#"},
    {"wiring", "13."},    {"hertz", "16#"},      {"own", "596:"}};
Assessment Judged(const std::string& text) {
  const UifParams usual = samples::NetworkSettings();
  Bytes settings(sizeof usual);
  settings.Put(0, usual);
  bool quality = false;
  double option = 0, seconds = 0, ends = 1;
  std::vector<Span> flags;
  std::vector<uint8_t> bytes;
  std::vector<std::string> paths, words = WordsOf(text + " next");
  for (size_t w = 0; w < words.size(); ++w) {
    const std::string &word = words[w], name = word.substr(0, word.find('='));
    const double value = name != word ? std::stod(word.substr(name.size() + 1)) : 0;
    if (kSettings.count(name) != 0) {
      settings.PutSettings(
          0, kSettings.at(name) + word.substr(std::min(word.size(), name.size() + 1)));
    }
    const auto s = Load<UifParams>(settings.data());
    if (name == "quality") quality = true;
    if (name == "ends") ends = value;
    if (name == "option") option = value;
    if (name == "skip") seconds += value * s.interval;
    if (name == "flag") {
      const double to = std::stod(word.substr(word.find('-') + 1));
      flags.push_back({MicrosecondsOf(At(value)), MicrosecondsOf(At(to))});
    } else if (name == "next") {
      RecordingFile file(quality ? 16 : 1, &s);
      file.Append(bytes.data(), bytes.size());
      paths.push_back(Write(file, "A" + std::to_string(paths.size()) + "X.REC"));
      bytes.clear();
    }
    if (word[0] < '0' || word[0] > '9') continue;
    RecordBytes record(*(quality ? kVoltageQuality : kGeneral).choice->choose(s));
    record.ClearFloats();
    const auto is_value = [](const std::string& v) { return v[0] == 'u' || v.find('/') < 99; };
    for (; is_value(words[w + 1]); ++w) SetOne(words[w + 1], &record);
    for (int i = std::stoi(name); i > 0; --i, seconds += s.interval) {
      if (!quality) record.SetTime("START_TIME", At(seconds));
      record.SetTime("LAST_TIME", At(seconds + ends * s.interval));
      bytes.insert(bytes.end(), record.bytes().begin(), record.bytes().end());
    }
  }
  return Assess(paths, kLimits, option, flags, {});
}

// What the first row with this key says: "2 voltage u1 95" is an index, a channel and the share in
// percent that is needed, of the second week; u1, 95 and the week may be left out.
std::string Told(const Assessment& assessment, const std::string& key) {
  const bool second = key[0] == '2';
  const std::vector<Week>& weeks = assessment.weeks;
  for (const IndexRow& row : weeks.size() > (second ? 1 : 0) ? weeks[second].rows : Week{}.rows) {
    std::ostringstream told;
    told << (second ? "2 " : "") << row.limit->index;
    if (row.channel != "u1" && row.channel != "all") told << " " << row.channel;
    if (row.limit->needed != 0.95) told << " " << 100 * row.limit->needed;
    if (told.str() != key) continue;
    told << ": " << NameOf(row.verdict);
    if (row.within) told << " " << *row.within << " of " << row.used;
    if (row.flagged != 0) told << ", " << row.flagged << " flagged";
    return told.str();
  }
  return key + ": no row";
}

// What happened on a network of "nominal dip swell interruption wiring": "dip u1 u2 80 % 0.2 s A1".
// A transition is its seconds, phase, state before and after, voltage, and the extreme that the
// phase came to, if any: "0.2:1:10:212:184". States are 0 for none, dips, swells, interruptions.
std::string Happened(const std::string& text) {
  double nominal = 0, dip = 0, swell = 0, interruption = 0;
  int wiring = 0;
  std::istringstream words(text.find(':') > text.find(' ') ? text : "230 207 253 11.5 3 " + text);
  words >> nominal >> dip >> swell >> interruption >> wiring;
  UifParams settings = samples::NetworkSettings();
  settings.connection = static_cast<uint8_t>(wiring);
  RecordBytes information(*kVoltageEvents.information);
  information.Set("NOMINAL_VOLTAGE", nominal).Set("DIP_TRESHOLD", dip);
  information.Set("SWELL_TRESHOLD", swell).Set("INTTERUPT_TRESHOLD", interruption);
  RecordingFile file(8, &settings, 128);
  file.Append(information);
  for (std::string word; words >> word;) {
    double seconds = 0, volts = 0, extreme = kNone;
    int phase = 0, before = 0, after = 0;
    std::sscanf(word.c_str(), "%lf:%d:%1d%1d:%lf:%lf", &seconds, &phase, &before, &after, &volts,
                &extreme);
    RecordBytes record(*kVoltageEvents.record);
    record.ClearFloats().Set("PHASE_NUMBER", phase).SetTime("TIME_STAMP", At(seconds));
    record.Set("TRANSITION_FROM_EVENT_TYPE_ID", before).Set("RMS_12_AT_TRANSITION", volts);
    record.Set("TRANSITION_TO_EVENT_TYPE_ID", after);
    record.Set(before == 2 ? "DATA/SWELL/MAX_VALUE" : "DATA/DIP/MIN_VALUE", extreme);
    file.Append(record);
  }
  std::ostringstream told;
  for (const VoltageEvent& e : EventsOf(Write(file), kLimits, 0, {}).events) {
    told << (told.str().empty() ? "" : " ; ") << NameOf(e.kind) << " ";
    for (const std::string& channel : e.channels) told << channel << " ";
    told << std::round(10 * e.percent) / 10 << " %";
    if (e.to != kNoTime) told << " " << e.seconds() << " s";
    if (!e.event_class.empty()) told << " " << e.event_class;
  }
  return told.str().empty() ? "nothing" : told.str();
}

// A line is what is made, "->", and what is told of it, with ";" between; it goes on in lines that
// begin with blanks.
constexpr const char* kCases = R"(
# 950 of 1000 values are 95 %; what has no value counts for neither side. All have to keep 195.5 V.
compact 950 u1=230 50 u1=206.9 8 -> voltage: within 0.95 of 1000 ; voltage 100: within 1 of 1000
compact 949 u1=230 51 u1=206.9 8 -> voltage: outside 0.949 of 1000 ; voltage u2: not measured
compact 999 u1=230 1 u1=195.4 -> voltage 100: outside 0.999 of 1000
# A limit is within, as the nearest float: 57.15 V of 63.5 V is a bit more, 69.85 V a bit less.
compact 500 u1=207 508 u1=253 -> voltage: within 1 of 1008
compact 504 u1=206.99998 504 u1=253.00002 -> voltage: outside 0 of 1008
compact option=63.5 504 u1=57.15 504 u1=69.85 -> voltage: within 1 of 1008
compact own=110 1008 u1=105 -> voltage: within 1 of 1008
compact own=inf 1008 u1=230 -> voltage: not measured
compact 958 u1=230 40 u1=nan 10 u1=inf -> voltage: within 1 of 958
# 95 % of 1008 are 957.6, be it values or intervals that are missing.
compact 957 u1=230 51 -> voltage: not a full week 1 of 957
compact 958 u1=230 50 -> voltage: within 1 of 958
compact 900 u1=230 skip=51 57 u1=230 -> voltage: not a full week 1 of 957
compact 900 u1=230 skip=50 next 58 u1=230 -> voltage: within 1 of 958
# A share that fails is told, without a verdict.
compact 72 u1=230 72 u1=190 -> voltage: not a full week 0.5 of 144
compact 1000 u1=230 next 8 u1=230 144 u1=190 -> voltage: within 1 of 1008 ;
  2 voltage: not a full week 0 of 144
# The event's end is the first moment of the third interval, its begin the end of the first.
compact flag=600-1200 1 u1=230 2 u1=9 1005 u1=230 -> voltage: within 1 of 1006, 2 flagged
# Flagged intervals are there: 949 and 9 are enough, 949 and 8 are not.
compact flag=599401-604799 949 u1=230 59 -> voltage: within 1 of 949, 9 flagged
compact flag=600001-604799 949 u1=230 59 -> voltage: not a full week 1 of 949, 8 flagged
# Times that go back are left out: three of the last five. So is one that
# lasts for years. Fifty years on is one week more.
compact 5 u1=230 skip=-3 5 u1=230 -> voltage: not a full week 1 of 7
compact flag=700000-700001 ends=2000000 1 u1=9 ends=1 1007 u1=230 -> voltage: within 1 of 1007
compact 1 u1=230 skip=2600000 3 u1=230 -> 2 voltage: not a full week 1 of 3
# Of 240 and 266 V the mean is 253 V, the root of the mean of squares 253.33 V.
compact every=60 5 u1=240 5 u1=266 -> voltage: not a full week 0 of 1
compact every=60 5 u1/thdPr/rms=7 5 u1/thdPr/rms=9 -> thd: not a full week 0 of 1
compact every=60 4 u1=230 1 23 u1=230 -> voltage: not a full week 1 of 1
compact every=60 flag=650-655 30 u1=230 -> voltage: not a full week 1 of 2, 1 flagged
# What does not make ten minutes is no measurement of them; flicker is taken as it is.
compact every=900 672 u1=230 u1/Plt/rms=1 -> voltage: not measured ; plt: within 1 of 672
compact every=420 1440 u1=230 -> voltage: not measured
# 95 % of 84 times two hours are 79.8.
compact every=7200 76 u1/Plt/rms=1 4 u1/Plt/rms=1.1 -> plt: within 0.95 of 80
compact every=7200 79 u1/Plt/rms=1 -> plt: not a full week 1 of 79
compact 9 f_10s/avgA=50 -> unbalance: not measured ; frequency 99.5: not measured
standard 958 sym/um/rms=2 -> unbalance: within 1 of 958
standard reduced 1 u1/Plt/rms=1 u1/IN=200 -> plt: not measured ; signalling 99: not measured
# Ten minutes of voltage quality have no voltage; distortion is in percent.
quality 958 u1/thd/rms=8 50 -> voltage: not measured ; thd: within 1 of 958 ; plt: not measured
quality every=300 2 u1=230 -> voltage: not a full week 1 of 1
# Of 230 V 13.8 V are 6 %. The compact spectrum begins with order 1.
quality 1008 u1h#1=230 u1h#5=13.8 -> harmonic-5: within 1 of 1008
compact 504 u1h#0=230 u1h#4=13.8 504 u1h#0=230 u1h#4=13.81 -> harmonic-5: outside 0.5 of 1008
# Percent go before volts, and the first float of an order before the second.
1 u1h#2=230 u1h#10=23 u1hPr#10=6 u1hPr#11=9 -> harmonic-5: not a full week 1 of 1
hertz=400 1 u1hPr#26=3 u1hPr#28=0 -> harmonic-13: not a full week 1 of 1 ; harmonic-14: not measured
hertz=55 1 u1hPr#40=0 u1hPr#42=0 -> harmonic-20: not a full week 1 of 1 ; harmonic-21: not measured
# A week has 60480 frequencies, of which half a percent are 302.4. Events do not matter.
every=7200 flag=0-99999 83 freqs/720=50 1 freqs/720=50 freqs/302=49.4 ->
  frequency 99.5: within 0.995007 of 60480 ; frequency 100: within 1 of 60480
every=7200 83 freqs/720=50 1 freqs/720=50.5 freqs/303=50.6 ->
  frequency 99.5: outside 0.99499 of 60480
# 95 % of them are 57456.
every=7200 79 freqs/720=52 1 freqs/576=46.9 -> frequency 100: outside 0.989975 of 57456
every=7200 79 freqs/720=50 1 freqs/575=50 -> frequency 99.5: not a full week 1 of 57455
every=7200 hertz=60 1 freqs/7=59.4 1 freqs/7=60.61 -> frequency 99.5: not a full week 0.5 of 14
# Of the week 99.8 %, of the first day 99 and 98.5 %. Days begin where the week does: at noon.
standard every=7200 12 u1/IN=198 u1/OUT=2 72 u1/IN=200 -> signalling 99: within 0.99 of 16800
standard every=7200 12 u1/IN=197 u1/OUT=3 72 u1/IN=200 -> signalling 99: outside 0.985 of 16800
standard every=7200 skip=6 6 u1/IN=49 u1/OUT=1 78 u1/IN=50 -> signalling 99: within 0.99 of 4200
standard every=7200 flag=1-2 1 u1/OUT=7 83 u1/IN=200 -> signalling 99: within 1 of 16600, 7 flagged
standard every=700000 1 u1/IN=200 -> signalling 99: not a full week 1 of 200
# Wirings: phases, or pairs of lines with values of their own; a phase stands for its pair where the
# layout has no pair.
compact wiring=1 1 u1=230 u2=230 -> voltage: not a full week 1 of 1 ; voltage u2: no row
compact wiring=5 1 u2=230 u12=230 -> voltage u2: not a full week 1 of 1 ; voltage u3: no row
compact wiring=6 1 u1=230 u12=9 -> voltage: not a full week 1 of 1 ; voltage u12: no row
compact wiring=9 1 u1=230 u2=230 -> voltage: not a full week 1 of 1 ; voltage u2: no row
compact wiring=2 1 u1=9 u12=230 u12h#0=100 u12h#4=6 -> voltage: no row ;
  voltage u12: not a full week 1 of 1 ; harmonic-5 u12: not a full week 1 of 1
wiring=7 1 u1=9 u23=230 u1hPr#10=9 u23hPr#10=6 -> voltage u23: not a full week 1 of 1 ;
  harmonic-5 u23: not a full week 1 of 1 ; harmonic-5 u12: not measured
standard wiring=4 1 u1=9 u31=230 u31h#1=100 u31h#5=6 -> voltage u31: not a full week 1 of 1 ;
  harmonic-5 u31: not a full week 1 of 1
standard wiring=7 1 u1=9 u31=230 u3h#1=100 u3h#5=6 -> voltage u31: not a full week 1 of 1 ;
  harmonic-5 u31: not a full week 1 of 1
quality every=300 wiring=7 2 u31=230 u31/thd/rms=8 u31h#1=100 u31h#5=6 -> thd: no row ;
  thd u31: not a full week 1 of 1 ; harmonic-5 u31: not a full week 1 of 1
# The third phase is back last; the recording ends before any is.
events 0:1:03:2 0.003:3:03:3 0.005:2:03:2.3 9:1:30:212 9:2:30:212 180:3:30:212 ->
  interruption u1 u2 u3 0.9 % 180 s short
events 1:1:03:2 1:3:03:3 1:2:03:2.3 181.001:3:30:212 181:1:30:212 181:2:30:212 ->
  interruption u1 u2 u3 0.9 % 180.001 s long
events 0:1:03:2.3 0.003:3:03:3 0.005:2:03:2.3 -> interruption u1 u2 u3 1 %
# One phase alone is no interruption where there are more, nor are all with one at its threshold.
events 0:1:03:2.3 0.5:1:30:212 -> dip u1 1 % 0.5 s X2
events 230 207 253 11.5 1 0:1:03:2.3 0.5:1:30:212 -> interruption u1 1 % 0.5 s short
events 230 207 253 11.5 5 0:1:03:2.3 0:2:03:11.5 1:1:30:212 1:2:30:212 -> dip u1 u2 1 % 1 s X3
# From the first phase that leaves to the last that is back, the worst voltage; one leaves anew.
events 1:2:01:200 1.05:3:01:200 1.35:2:10:212:115 1.43:3:10:212:138 1.44:3:01:200 1.5:3:10:212 ->
  dip u2 u3 50 % 0.43 s C2 ; dip u3 87 % 0.06 s A1
# Deeper within the dip, and back to the dip. With a clock that went back.
events 0:1:01:200 0.1:1:13:9.2 0.3:1:31:14 0.5:1:10:212 -> dip u1 4 % 0.5 s X2
events 9:1:01:184 5:1:10:212 -> dip u1 80 %
# A dip turns into a swell, which ends in the state that the dip came from, though its last voltage
# is not in the band. A swell on one phase while another dips are two events.
events 0:1:01:184 0.5:1:12:260 0.7:1:20:253:276 ->
  dip u1 80 % 0.5 s A2 ; swell u1 120 % 0.2 s S1
events 0:1:01:184 0.1:2:02:260 0.2:1:10:212 0.3:2:20:248:264.5 ->
  dip u1 80 % 0.2 s A1 ; swell u2 115 % 0.2 s T1
# Thresholds in percent, of pairs of lines; at a threshold it begins, which may be no float.
events 400 90 110 5 4 0:2:01:360 0.2:2:10:361:280 -> dip u23 70 % 0.2 s B1
events 400 90 110 5 4 0:2:01:360.1 0.2:2:10:361 -> nothing
events 63.5 57.15 69.85 3.175 3 0:1:01:57.15 0.2:1:10:60:50.8 -> dip u1 80 % 0.2 s A1
events 63.5 90 110 5 3 0:1:02:69.85 0.2:1:20:66:76.2 -> swell u1 120 % 0.2 s S1
)";
TEST(Assessment, Cases) {
  std::istringstream lines(std::regex_replace(std::string(kCases), std::regex("\n +"), " "));
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line[0] == '#') continue;
    const size_t arrow = line.find(" -> ");
    const std::string made = line.substr(0, arrow), told = line.substr(arrow + 4);
    if (made.substr(0, 7) == "events ") {
      EXPECT_EQ(told, Happened(made.substr(7))) << made;
      continue;
    }
    const Assessment assessment = Judged(made);
    std::string is;
    for (size_t at = 0; at != 2; at = told.find(" ; ", at) + 3) {
      is += (at != 0 ? " ; " : "") + Told(assessment, told.substr(at, told.find(':', at) - at));
    }
    EXPECT_EQ(told, is) << made;
  }
}

TEST(Assessment, DamagedTimesMakeNoEndOfWeeks) {
  std::string made = "compact every=7200";
  for (int i = 0; i < 700; ++i) made += " 1 u1=230 skip=90";
  const Assessment assessment = Judged(made);
  EXPECT_EQ(700, assessment.weeks.size() + assessment.without_time);
  EXPECT_LE(assessment.weeks.size(), 600);
}

// A class has its lower bound of voltages and its upper one of durations, whatever the nominal
// voltage: percents of 63.5 and 231 V are no floats.
TEST(Assessment, ClassesOfEvents) {
  std::istringstream cases(
      "89.9 0.01 A1 80 0.2 A1 79.9 0.2 B1 80 0.201 A2 70 0.5 B2 69.9 0.5 C2 70 0.501 B3 40 1 C3 "
      "39.9 1.001 D4 5 5 D4 5 5.001 D5 4.9 60 X5 80 60.001 - 80 0.009 - 119.9 0.5 T1 "
      "110.1 0.501 T2 119.9 5.001 T3 120 0.5 S1 120 5 S2 120 60 S3 120 60.001 -");
  double percent = 0, seconds = 0;
  for (std::string name; cases >> percent >> seconds >> name;) {
    for (const double nominal : {230.0, 63.5, 231.0, 20000.0}) {
      const double one = nominal / 100, volts = percent * one;
      const char* kind = percent > 100 ? "swell" : "dip";
      std::ostringstream told, made;
      told << kind << " u1 " << percent << " % " << seconds << " s"
           << (name != "-" ? " " + name : "");
      made.precision(9);
      made << nominal << " " << 90 * one << " " << 110 * one << " " << 5 * one
           << " 3 7.311:1:01:" << volts << " " << 7.311 + seconds
           << ":1:" << (*kind == 's' ? "20:" : "10:") << nominal << ":" << volts;
      EXPECT_EQ(told.str(), Happened(made.str())) << nominal;
    }
  }
}

TEST(Assessment, Chains) {
  const int64_t t = 600000000, none = kNoTime;
  const auto of = [&](int64_t from, int64_t to) { return Stretch{"a", {from, to}, t}; };
  // The second goes before the first, with just under an interval between them; to the third there
  // is a whole one. The fourth is of another subject, the fifth begins too early.
  const std::vector<Stretch> stretches = {
      of(5 * t, 9 * t),       of(0, 4 * t + 1),   of(10 * t, 11 * t), {"b", {11 * t, 12 * t}, t},
      of(11 * t - 1, 12 * t), of(11 * t, 12 * t), of(none, none),     of(12 * t, none)};
  const std::vector<std::vector<size_t>> chains = {{6}, {1, 0}, {2, 5, 7}, {4}, {3}};
  EXPECT_EQ(chains, Chains(stretches));
}

}  // namespace
}  // namespace quorvex::test
