#include "exchange/comtrade.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <limits>
#include <numeric>

#include "records/sample_scales.h"
#include "settings/settings_table.h"
#include "support/loads.h"

namespace quorvex {
namespace {

constexpr char kLineEnd[] = "\r\n";

// How samples are stored. Numbers go from -limit to limit; what is missing is another one.
struct Storage {
  const char* name;
  uint32_t size;  // bytes a sample; of a text 0
  int64_t limit;
  const char *low, *high;  // what the configuration says of the range
};
// The range of text ends at 99999, which is missing.
constexpr Storage kStorage[] = {
    {"ASCII", 0, 99998, "-99998", "99998"},
    {"BINARY", 2, 32767, "-32767", "32767"},
    {"BINARY32", 4, 2147483647, "-2147483647", "2147483647"},
    {"FLOAT32", 4, 0, "-3.4028235E38", "3.4028235E38"},
};
constexpr int kMissingText = 99999;

const Storage& StorageOf(const ComtradeForm& form) {
  return kStorage[static_cast<size_t>(form.data)];
}

template <typename... Format>
void AppendNumber(std::string* to, auto number, Format... format) {
  char digits[32];
  to->append(digits, std::to_chars(digits, digits + sizeof digits, number, format...).ptr);
}

template <typename T>
void AppendBytes(std::string* to, T value) {
  char bytes[sizeof value];
  Store(bytes, value);
  to->append(bytes, sizeof bytes);
}

// With zeros in front.
void AppendDigits(std::string* to, int64_t number, size_t digits, const char* behind = "") {
  const std::string text = std::to_string(number);
  to->append(digits - std::min(digits, text.size()), '0').append(text).append(behind);
}

// Names come from the instrument: whatever could end a field or a line, or needs an encoding, which
// the format does not name, becomes '_'.
std::string NameField(const char* text, size_t room) {
  constexpr size_t kLongestName = 64;
  std::string name;
  for (size_t i = 0; i < std::min(room, kLongestName) && text[i] != '\0'; ++i) {
    const bool plain = text[i] >= ' ' && text[i] <= '~' && text[i] != ',';
    name += plain ? text[i] : '_';
  }
  return name;
}

void AppendTime(std::string* to, int64_t microseconds) {
  if (microseconds == kNoTime) {  // which zeros stand for
    *to += "00/00/0000,00:00:00.000000\r\n";
    return;
  }
  using Microseconds = std::chrono::microseconds;
  const std::chrono::sys_time<Microseconds> time{Microseconds(microseconds)};
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  AppendDigits(to, static_cast<unsigned>(date.day()), 2, "/");
  AppendDigits(to, static_cast<unsigned>(date.month()), 2, "/");
  AppendDigits(to, static_cast<int>(date.year()), 4, ",");
  AppendDigits(to, clock.hours().count(), 2, ":");
  AppendDigits(to, clock.minutes().count(), 2, ":");
  AppendDigits(to, clock.seconds().count(), 2, ".");
  AppendDigits(to, clock.subseconds().count(), 6, kLineEnd);
}

// "+1", "-3h30", "0"
std::string ZoneCode(int32_t minutes) {
  if (minutes == 0) return "0";
  const int32_t size = std::abs(minutes);
  std::string code = (minutes < 0 ? "-" : "+") + std::to_string(size / 60);
  if (size % 60 == 0) return code;
  code += 'h';
  AppendDigits(&code, size % 60, 2);
  return code;
}

// Samples are stamped with 32 bits of microseconds, 72 minutes, of which the highest number says
// that there is no stamp. Longer records count in tens, hundreds and so on: the factor that stamps
// are multiplied by to be microseconds. The rate tells the exact times.
double TimeFactor(const ComtradeRecord& record) {
  constexpr double kMostStamps = 4294967294.0;
  const double longest = static_cast<double>(record.samples) * record.step * 1e6;
  double factor = 1;
  while (longest / factor > kMostStamps) factor *= 10;
  return factor;
}

// A transformer's ratio; 1:1 where the settings say none that could be.
void TakeRatio(uint32_t primary, uint32_t secondary, ComtradeChannel* channel) {
  if (static_cast<int32_t>(primary) <= 0 || static_cast<int32_t>(secondary) <= 0) return;
  channel->primary = primary;
  channel->secondary = secondary;
}

ComtradeChannel ChannelIn(const UifParams& settings, const WaveChannel& wave) {
  ComtradeChannel channel = {wave.name, wave.name.substr(1), wave.unit};
  if (channel.phase == "n") channel.phase = "N";
  // What an inverter takes has no phase.
  const bool input = channel.phase == "inv";
  if (input) channel.phase.clear();
  if (wave.name[0] == 'u') {
    TakeRatio(settings.voltage_ratio_prim, settings.voltage_ratio_sec, &channel);
    return channel;
  }
  const bool is_phase = channel.phase >= "1" && channel.phase <= "3";
  const ClampParams& clamp =
      settings.clamp[ClampOf(settings, is_phase ? channel.phase[0] - '1' : kNeutral)];
  if (clamp.trafo != 0) TakeRatio(clamp.trafo_prim_i, clamp.trafo_sec_i, &channel);
  return channel;
}

void AppendChannel(const ComtradeChannel& channel, const Storage& storage, std::string* to) {
  *to += ',' + channel.name + ',' + channel.phase + ",," + channel.unit + ',';
  AppendNumber(to, channel.step);
  *to += ',';
  AppendNumber(to, channel.offset);
  // All channels are sampled at once.
  *to += std::string(",0,") + storage.low + ',' + storage.high + ',';
  *to += std::to_string(channel.primary) + ',' + std::to_string(channel.secondary) + ",P\r\n";
}

}  // namespace

ComtradeRecord DescribeComtrade(const UifParams& settings, const std::vector<WaveChannel>& channels,
                                const WaveRecord& record, const ReadOptions& options) {
  ComtradeRecord described;
  const auto* place = reinterpret_cast<const uint8_t*>(&settings);
  const MadeValue name = RecordingName(place, {}), model = ModelName(place, {});
  const char* serial = settings.ee_serial_number;
  described.station = NameField(name.text, sizeof name.text);
  described.device = NameField(model.text, sizeof model.text) + ' ' +
                     NameField(serial, sizeof settings.ee_serial_number);
  described.frequency = settings.system_frequency;
  for (const WaveChannel& channel : channels) {
    described.channels.push_back(ChannelIn(settings, channel));
  }
  described.start = record.start;
  described.trigger = record.trigger != kNoTime ? record.trigger : record.start;
  described.utc_offset = options.utc_offset;
  described.step = record.step;
  return described;
}

void TakeRange(const TableRows& sample, ComtradeRecord* record) {
  ++record->samples;
  for (size_t c = 0; c < record->channels.size(); ++c) {
    const double value = sample.Number(c);
    if (!std::isfinite(value)) continue;
    ComtradeChannel& channel = record->channels[c];
    channel.low = channel.values == 0 ? value : std::min(channel.low, value);
    channel.high = channel.values == 0 ? value : std::max(channel.high, value);
    channel.sum_of_sizes += std::abs(value);
    ++channel.values;
  }
}

StepFinder::StepFinder(const ComtradeRecord& record)
    : frequency_(record.frequency), channels_(record.channels.size()) {
  // Noise around zero is no period: a half-wave reaches a quarter of what there is on average.
  for (size_t c = 0; c < channels_.size(); ++c) {
    const ComtradeChannel& channel = record.channels[c];
    if (channel.values != 0) {
      channels_[c].margin = channel.sum_of_sizes / static_cast<double>(channel.values) / 4;
    }
  }
}

void StepFinder::Take(const TableRows& sample) {
  constexpr size_t kMostPeriods = 4096;
  const auto place = static_cast<double>(number_++);
  for (size_t c = 0; c < channels_.size(); ++c) {
    Crossings& channel = channels_[c];
    const double value = sample.Number(c), before = channel.before;
    channel.before = value;
    if (!std::isfinite(value)) {  // from a gap on it begins anew
      channel.below = false;
      channel.last = -1;
      continue;
    }
    if (channel.below && before < 0 && value >= 0) {
      channel.at = place - value / (value - before);
    }
    if (value < -channel.margin) channel.below = true;
    if (!channel.below || !(value > channel.margin) || channel.at < 0) continue;
    if (channel.last >= 0 && channel.periods.size() < kMostPeriods) {
      channel.periods.push_back(channel.at - channel.last);
    }
    channel.last = channel.at;
    channel.at = -1;
    channel.below = false;
  }
}

double StepFinder::Step() const {
  constexpr double kLeastSamples = 4, kNear = 0.05;
  constexpr double kShortestStep = 1e-6, kLongestStep = 1e-2;
  for (const Crossings& channel : channels_) {
    std::vector<double> periods = channel.periods;
    if (periods.size() < 2 || frequency_ == 0) continue;
    std::sort(periods.begin(), periods.end());
    const double middle = periods[periods.size() / 2];
    const auto from = std::lower_bound(periods.begin(), periods.end(), middle * (1 - kNear));
    const auto to = std::upper_bound(from, periods.end(), middle * (1 + kNear));
    // What happened on the network may have moved some, but not most.
    if ((to - from) * 2 <= channel.periods.end() - channel.periods.begin()) continue;
    const double period = std::accumulate(from, to, 0.0) / static_cast<double>(to - from);
    // It is no better known than to a whole number of samples a second.
    const double rate = std::round(period * frequency_);
    const bool believable = rate >= 1 / kLongestStep && rate <= 1 / kShortestStep;
    if (period >= kLeastSamples && believable) return 1 / rate;
  }
  return 0;
}

void FindScales(const ComtradeForm& form, ComtradeRecord* record) {
  const auto limit = static_cast<double>(StorageOf(form).limit);
  for (ComtradeChannel& channel : record->channels) {
    if (limit == 0 || channel.values == 0) continue;
    const double half = (channel.high - channel.low) / 2;
    channel.offset = channel.low + half;
    // Where all samples are the same, the offset says it all.
    if (half > 0) channel.step = half / limit;
  }
}

std::string ComtradeConfiguration(const ComtradeRecord& record, const ComtradeForm& form) {
  const Storage& storage = StorageOf(form);
  const std::string channels = std::to_string(record.channels.size());
  std::string text = form.one_file ? "--- file type: CFG ---\r\n" : "";
  text +=
      record.station + ',' + record.device + (form.revision_2013 ? ",2013" : ",1999") + kLineEnd;
  text += channels + ',' + channels + "A,0D" + kLineEnd;
  for (size_t c = 0; c < record.channels.size(); ++c) {
    text += std::to_string(c + 1);
    AppendChannel(record.channels[c], storage, &text);
  }
  text += std::to_string(record.frequency) + "\r\n1\r\n";  // one rate
  // Without the last digits, so that 1 / 0.0003 is not 3333.3333333333335.
  AppendNumber(&text, 1 / record.step, std::chars_format::general, 10);
  text += ',' + std::to_string(record.samples) + kLineEnd;
  AppendTime(&text, record.start);
  AppendTime(&text, record.trigger);
  text += std::string(storage.name) + kLineEnd;
  AppendNumber(&text, TimeFactor(record));
  text += kLineEnd;
  if (form.revision_2013) {
    // The zone of the times and that of the place: "x" where it is not known.
    text += record.utc_offset ? "0," + ZoneCode(*record.utc_offset) : "x,x";
    // Nothing tells how true the instrument's clock is, nor whether it knows of leap seconds.
    text += std::string(kLineEnd) + "F,3" + kLineEnd;
  }
  if (!form.one_file) return text;
  text += "--- file type: INF ---\r\n--- file type: HDR ---\r\n--- file type: DAT ";
  text += storage.name;
  if (storage.size != 0) {
    const uint64_t size = 8 + uint64_t{storage.size} * record.channels.size();
    text += ": " + std::to_string(record.samples * size);
  }
  return text + " ---" + kLineEnd;
}

void AppendComtradeSample(const ComtradeRecord& record, const ComtradeForm& form, uint64_t number,
                          const TableRows& sample, std::string* to) {
  const bool text = form.data == ComtradeData::kAscii;
  const auto limit = static_cast<double>(StorageOf(form).limit);
  const double time = static_cast<double>(number - 1) * record.step * 1e6 / TimeFactor(record);
  const auto stamp = static_cast<uint32_t>(std::llround(time));
  if (text) {
    AppendNumber(to, number);
    *to += ',';
    AppendNumber(to, stamp);
  } else {
    AppendBytes(to, static_cast<uint32_t>(number));
    AppendBytes(to, stamp);
  }
  for (size_t c = 0; c < record.channels.size(); ++c) {
    const double value = sample.Number(c);
    const bool missing = !std::isfinite(value);
    int64_t scaled = 0;
    if (!missing && limit > 0) {
      const double exact = (value - record.channels[c].offset) / record.channels[c].step;
      scaled = std::llround(std::clamp(exact, -limit, limit));
    }
    switch (form.data) {
      case ComtradeData::kAscii:
        *to += ',';
        AppendNumber(to, missing ? kMissingText : scaled);
        break;
      case ComtradeData::kBinary:
        AppendBytes(to, static_cast<int16_t>(missing ? INT16_MIN : scaled));
        break;
      case ComtradeData::kBinary32:
        AppendBytes(to, static_cast<int32_t>(missing ? INT32_MIN : scaled));
        break;
      case ComtradeData::kFloat32:
        AppendBytes(to, missing ? std::numeric_limits<float>::lowest() : static_cast<float>(value));
        break;
    }
  }
  if (text) *to += kLineEnd;
}

}  // namespace quorvex
