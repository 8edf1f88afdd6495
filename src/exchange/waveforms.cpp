#include "exchange/waveforms.h"

#include <algorithm>

#include "records/channels.h"

namespace quorvex {
namespace {

// A channel under some wirings, and the columns that hold it: the first that there is.
struct Wired {
  Cases in;
  const char* columns[2];
};
constexpr Wired kWired[] = {
    {kPhase1, {"u1", ""}},
    {kPhase2, {"u2", ""}},
    {kPhase3, {"u3", ""}},
    // A capture can hold the voltages of these wirings against ground; it names them so then.
    {kLineToLine, {"u12", "u1"}},
    {kLineToLine, {"u23", "u2"}},
    {kLineToLine, {"u31", "u3"}},
    {kNeutralWire, {"un", ""}},
    {kInverter, {"uinv", ""}},
    {kAllCases, {"i1", "i12"}},
    {kCurrent2, {"i2", "i23"}},
    {kCurrent3, {"i3", "i31"}},
    {kNeutralWire, {"in", ""}},
    {kInverter, {"iinv", ""}},
};

int64_t Shifted(const DateTimeRecord& time, const ReadOptions& options) {
  const int64_t at = MicrosecondsOf(time);
  if (at == kNoTime || !options.utc_offset) return at;
  return at - int64_t{*options.utc_offset} * 60 * 1000000;
}

}  // namespace

std::vector<WaveChannel> WaveChannels(const std::string& path) {
  RecordingHead head(path.c_str());
  if (!head.file || head.type == nullptr) return {};
  head.UseSettingFile();
  const TableSet set = TablesOf(*head.type, head.settings);
  const Table* samples = set.Find(kSamples);
  if (samples == nullptr) return {};
  std::vector<WaveChannel> channels;
  for (const Wired& wired : kWired) {
    if ((wired.in & CaseOf(head.settings)) == 0) continue;
    for (const std::string column : wired.columns) {
      const auto found = std::find_if(samples->columns.begin(), samples->columns.end(),
                                      [&](const Column& c) { return c.name == column; });
      if (found == samples->columns.end()) continue;
      const bool is_current = column[0] == 'i';
      channels.push_back({is_current ? wired.columns[0] : column, column, found->unit});
      break;
    }
  }
  return channels;
}

std::vector<uint64_t> WaveNumbers(const std::string& path) {
  std::vector<uint64_t> numbers;
  if (WaveChannels(path).empty()) return numbers;
  TableRows records(path, "records", {"record"}, {});
  while (records.Next()) numbers.push_back(static_cast<uint64_t>(records.Integer(0)));
  return numbers;
}

void ForEachWaveRecord(const std::string& path, const ReadOptions& options,
                       const std::function<bool(const WaveRecord&)>& take) {
  if (WaveChannels(path).empty()) return;
  TableRows records(path, "records", {"record", "timeStart", "TIME_START"}, options);
  while (records.Next()) {
    WaveRecord record = {static_cast<uint64_t>(records.Integer(0)), records.Integer(1)};
    if (record.start == kNoTime) record.start = records.Integer(2);
    ReadOptions one = options;
    one.first = one.last = record.number;
    // The second sample's time is the step, where that is believable.
    TableRows samples(path, kSamples, {"time"}, one);
    if (samples.Next() && samples.Next() && samples.Number(0) > 0) record.step = samples.Number(0);
    // A capture has its times in the settings, as it has its step.
    const UifParams& settings = records.head().settings;
    if (records.head().type->step_at >= 0) {
      record.start = Shifted(settings.transients.start_time, options);
      record.trigger = Shifted(settings.transients.trig_time, options);
    }
    if (!take(record)) return;
  }
}

std::unique_ptr<TableRows> SamplesOf(const std::string& path,
                                     const std::vector<WaveChannel>& channels, uint64_t record,
                                     const ReadOptions& options) {
  ReadOptions one = options;
  one.first = one.last = record;
  std::vector<std::string> columns;
  columns.reserve(channels.size());
  for (const WaveChannel& channel : channels) columns.push_back(channel.column);
  return std::make_unique<TableRows>(path, kSamples, columns, one);
}

}  // namespace quorvex
