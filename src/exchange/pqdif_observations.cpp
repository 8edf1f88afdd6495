#include "exchange/pqdif_observations.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>

#include "assessment/voltage_events.h"
#include "exchange/waveforms.h"

namespace quorvex::pqdif {
namespace {

constexpr double kSecond = 1e6;
constexpr float kMissing = std::numeric_limits<float>::quiet_NaN();

int64_t InMilliseconds(int64_t time) { return (time + 500) / 1000 * 1000; }

bool IsMissing(const std::vector<float>& values) {
  return std::all_of(values.begin(), values.end(), [](float v) { return std::isnan(v); });
}

Element Series(std::vector<Element> values, double base = 0) {
  if (base > 0) values.push_back(Real(kSeriesBase, base));
  return Collection(kOneSeries, std::move(values));
}
Element Seconds(const std::vector<double>& seconds) {
  return Series({Reals(kSeriesValues, seconds)});
}
Element Shared() { return Series({Number(kShareChannel, 0), Number(kShareSeries, 0)}); }

// Makes observations of one recording.
class Maker {
 public:
  Maker(Recorded* recorded, const Take& take) : recorded_(*recorded), take_(take), head_(Open()) {
    if (!head_->file || head_->type == nullptr) return;
    head_->UseSettingFile();
    wiring_ = head_->settings.connection;
    set_ = TablesOf(*head_->type, head_->settings);
  }

  bool Make() {
    if (!head_->file || head_->type == nullptr) return true;
    const uint32_t type = head_->type->type;
    if (type == kGeneralType || type == kVoltageQualityType) return Intervals();
    if (type == kEventsType) return Events();
    if (type == kChangesType) return Changes();
    if (!Waveforms()) return false;
    for (const char* table : kHalfCycleTables) {
      if (!Readings(table)) return false;
    }
    return true;
  }

 private:
  // What has been read of a table of spectra, for one observation.
  struct SpectrumRows {
    Spectra spectra;
    std::unique_ptr<TableRows> rows;
    bool more = false;
    std::vector<std::map<int64_t, std::vector<float>>> values = {};  // by trend, by order
  };

  std::unique_ptr<RecordingHead> Open() const {
    return std::make_unique<RecordingHead>(recorded_.path.c_str());
  }

  Element ChannelOf(const Channel& channel, std::vector<Element> series,
                    std::vector<Element> more = {}) const {
    const auto& known = *recorded_.channels;
    const auto at = std::find(known.begin(), known.end(), channel) - known.begin();
    std::vector<Element> elements = {Number(kChannelIndex, static_cast<uint32_t>(at))};
    std::move(more.begin(), more.end(), std::back_inserter(elements));
    elements.push_back(Collection(kSeriesInstances, std::move(series)));
    return Collection(kOneChannel, std::move(elements));
  }

  double Nominal() const { return static_cast<double>(head_->settings.nominal_voltage); }
  double NominalOf(const Channel& channel) const {
    return IsJudged(channel, wiring_) ? Nominal() : 0;
  }

  bool Intervals();
  void TakeSpectra(SpectrumRows* spectra, int64_t record, size_t row) const;
  bool Flush(const std::vector<Trend>& trends, int64_t start, std::vector<double>* ends,
             std::vector<std::vector<float>>* values, std::vector<SpectrumRows>* spectra);
  bool Waveforms();
  bool Waveform(const std::vector<WaveChannel>& waves, const WaveRecord& record);
  bool Events();
  bool Changes();
  bool Readings(const char* table);

  Recorded& recorded_;
  const Take& take_;
  std::unique_ptr<RecordingHead> head_;
  uint8_t wiring_ = 0;
  TableSet set_;
};

bool Maker::Intervals() {
  const std::vector<Trend> trends = TrendsOf(set_, wiring_);
  std::vector<std::string> columns = {"record", "START_TIME", "LAST_TIME"};
  constexpr size_t kFirstValue = 3;
  for (const Trend& trend : trends) {
    columns.insert(columns.end(), trend.columns.begin(), trend.columns.end());
  }
  TableRows rows(recorded_.path, "records", columns, recorded_.read);
  std::vector<SpectrumRows> spectra;
  for (Spectra& table : SpectraOf(set_, wiring_)) {
    std::vector<std::string> wanted = {"record", "order"};
    for (const Trend& trend : table.trends) wanted.push_back(trend.columns[0]);
    auto read = std::make_unique<TableRows>(recorded_.path, table.table, wanted, recorded_.read);
    const bool more = read->Next();
    spectra.push_back({std::move(table), std::move(read), more});
    spectra.back().values.resize(spectra.back().spectra.trends.size());
  }
  std::vector<std::vector<float>> values(columns.size() - kFirstValue);
  std::vector<double> ends;
  int64_t start = 0;
  while (rows.Next()) {
    const int64_t interval = int64_t{head_->settings.interval} * 1000000;
    int64_t from = rows.Integer(1), to = rows.Integer(2);
    if (to == kNoTime && from != kNoTime) to = from + interval;
    if (from == kNoTime && to != kNoTime) from = to - interval;
    if (to == kNoTime) {
      ++recorded_.left_out;
      continue;
    }
    if (ends.empty()) start = InMilliseconds(from);
    for (SpectrumRows& table : spectra) TakeSpectra(&table, rows.Integer(0), ends.size());
    for (size_t c = 0; c < values.size(); ++c) {
      values[c].push_back(static_cast<float>(rows.Number(c + kFirstValue)));
    }
    ends.push_back(static_cast<double>(to - start) / kSecond);
    if (ends.size() < kMostIntervals) continue;
    if (!Flush(trends, start, &ends, &values, &spectra)) return false;
  }
  return ends.empty() || Flush(trends, start, &ends, &values, &spectra);
}

void Maker::TakeSpectra(SpectrumRows* table, int64_t record, size_t row) const {
  for (; table->more && table->rows->Integer(0) <= record; table->more = table->rows->Next()) {
    if (table->rows->Integer(0) < record) continue;
    for (size_t c = 0; c < table->values.size(); ++c) {
      std::vector<float>& values = table->values[c][table->rows->Integer(1)];
      values.resize(row, kMissing);
      values.push_back(static_cast<float>(table->rows->Number(c + 2)));
    }
  }
}

bool Maker::Flush(const std::vector<Trend>& trends, int64_t start, std::vector<double>* ends,
                  std::vector<std::vector<float>>* values, std::vector<SpectrumRows>* spectra) {
  Observation observation = {recorded_.name, start, kPeriodic};
  // The first channel has the times for all.
  const auto times = [&] { return observation.channels.empty() ? Seconds(*ends) : Shared(); };
  size_t column = 0;
  for (const Trend& trend : trends) {
    std::vector<Element> series = {times()};
    bool missing = true;
    for (size_t i = 0; i < trend.columns.size(); ++i, ++column) {
      missing = missing && IsMissing((*values)[column]);
      series.push_back(
          Series({Floats(kSeriesValues, (*values)[column])}, NominalOf(trend.channel)));
      (*values)[column].clear();
    }
    if (!missing) observation.channels.push_back(ChannelOf(trend.channel, std::move(series)));
  }
  for (SpectrumRows& table : *spectra) {
    for (size_t c = 0; c < table.values.size(); ++c) {
      for (auto& [order, amounts] : table.values[c]) {
        amounts.resize(ends->size(), kMissing);
        if (!IsMissing(amounts)) {
          observation.channels.push_back(ChannelOf(
              table.spectra.trends[c].channel, {times(), Series({Floats(kSeriesValues, amounts)})},
              {Short(kChannelGroup, static_cast<int16_t>(order))}));
        }
      }
      table.values[c].clear();
    }
  }
  ends->clear();
  return observation.channels.empty() || take_(observation);
}

bool Maker::Waveforms() {
  const std::vector<WaveChannel> waves = WaveChannels(recorded_.path);
  if (waves.empty()) return true;
  bool going_on = true;
  ForEachWaveRecord(recorded_.path, recorded_.read, [&](const WaveRecord& record) {
    const bool usable = record.start != kNoTime && record.step > 0;
    if (!usable) ++recorded_.left_out;
    going_on = !usable || Waveform(waves, record);
    return going_on;
  });
  return going_on;
}

bool Maker::Waveform(const std::vector<WaveChannel>& waves, const WaveRecord& record) {
  const auto rows = SamplesOf(recorded_.path, waves, record.number, recorded_.read);
  std::vector<std::vector<float>> samples(waves.size());
  for (uint64_t first = 0;; first += kMostSamples) {
    uint64_t count = 0;
    for (; count < kMostSamples && rows->Next(); ++count) {
      for (size_t c = 0; c < waves.size(); ++c) {
        samples[c].push_back(static_cast<float>(rows->Number(c)));
      }
    }
    if (count == 0) return true;
    const double since = static_cast<double>(first) * record.step;
    Observation observation = {recorded_.name + " record " + std::to_string(record.number),
                               record.start + std::llround(since * kSecond), kUntriggered};
    observation.start = InMilliseconds(observation.start);
    // What rounding took from the start is where the times begin.
    const double rest = since - static_cast<double>(observation.start - record.start) / kSecond;
    for (size_t c = 0; c < waves.size(); ++c) {
      std::vector<Element> times = {
          Reals(kSeriesValues, {1, static_cast<double>(count), record.step})};
      if (rest != 0) times.push_back(Real(kSeriesOffset, rest));
      if (!IsMissing(samples[c])) {
        observation.channels.push_back(
            ChannelOf(WaveformOf(waves[c].name, waves[c].unit),
                      {observation.channels.empty() ? Series(std::move(times)) : Shared(),
                       Series({Floats(kSeriesValues, samples[c])})}));
      }
      samples[c].clear();
    }
    if (!observation.channels.empty() && !take_(observation)) return false;
    if (count < kMostSamples) return true;
  }
}

// By kind, and by how long it lasted: up to 30 cycles, three seconds, a minute, and longer.
std::optional<Guid> DisturbanceOf(const VoltageEvent& event, double frequency) {
  constexpr Guid kByLength[][4] = {
      {kInstantSag, kMomentarySag, kTemporarySag, kUndervoltage},
      {kInstantSwell, kMomentarySwell, kTemporarySwell, kOvervoltage},
      {kMomentaryInterruption, kMomentaryInterruption, kTemporaryInterruption, kLongInterruption}};
  if (event.to == kNoTime) return std::nullopt;
  const double lengths[] = {30 / (frequency > 0 ? frequency : 50), 3, 60};
  const auto length =
      std::lower_bound(std::begin(lengths), std::end(lengths), event.seconds()) - lengths;
  return kByLength[static_cast<size_t>(event.kind)][length];
}

bool Maker::Events() {
  const RecordedEvents recorded = EventsOf(recorded_.path, {}, 0, recorded_.read);
  for (const VoltageEvent& event : recorded.events) {
    Observation observation = {recorded_.name + " " + NameOf(event.kind), event.from, kByChannel,
                               DisturbanceOf(event, head_->settings.system_frequency)};
    for (const std::string& channel : event.channels) observation.name += " " + channel;
    // An event that the recording does not see end has no duration.
    const double seconds = event.to != kNoTime ? event.seconds() : std::nan("");
    std::vector<Element> character = {Real(kMagnitude, event.percent)};
    if (event.to != kNoTime) character.push_back(Real(kDuration, seconds));
    const bool one = event.channels.size() == 1 && PhaseOf(event.channels[0]) != kNoPhase;
    observation.channels.push_back(ChannelOf(
        EventOf(one ? event.channels[0] : ""),
        {Seconds({0}), Series({Reals(kSeriesValues, {event.voltage})}, recorded.thresholds.nominal),
         Series({Reals(kSeriesValues, {seconds})})},
        std::move(character)));
    if (!take_(observation)) return false;
  }
  return true;
}

bool Maker::Changes() {
  TableRows rows(recorded_.path, "records",
                 {"record", "PHASE", "RVC_START_TIME", "DURATION", "DU_MAX"}, recorded_.read);
  TableRows list(recorded_.path, "RMS12_VALUES", {"record", "TIME_STAMP", "U"}, recorded_.read);
  bool more = list.Next();
  while (rows.Next()) {
    const std::string voltage = VoltageOf(rows.Integer(1), wiring_);
    const bool usable = rows.Integer(2) != kNoTime && !voltage.empty();
    const int64_t start = usable ? InMilliseconds(rows.Integer(2)) : 0;
    if (!usable) ++recorded_.left_out;
    std::vector<double> seconds;
    std::vector<float> values;
    for (; more && list.Integer(0) <= rows.Integer(0); more = list.Next()) {
      if (list.Integer(0) < rows.Integer(0) || list.Integer(1) == kNoTime) continue;
      seconds.push_back(static_cast<double>(list.Integer(1) - start) / kSecond);
      values.push_back(static_cast<float>(list.Number(2)));
    }
    if (!usable) continue;
    Observation observation = {recorded_.name + " change " + voltage, start, kByChannel,
                               kFluctuation};
    observation.channels.push_back(ChannelOf(
        ChangeOf(voltage), {Seconds({0}), Series({Reals(kSeriesValues, {rows.Number(4)})}),
                            Series({Reals(kSeriesValues, {rows.Number(3)})})}));
    if (!IsMissing(values)) {
      observation.channels.push_back(
          ChannelOf(HalfCyclesOf(voltage),
                    {Seconds(seconds), Series({Floats(kSeriesValues, values)}, Nominal())}));
    }
    if (!take_(observation)) return false;
  }
  return true;
}

bool Maker::Readings(const char* table) {
  TableRows rows(recorded_.path, table, {"record", "PHASE_NUMBER", "TIME_STAMP", "VALUE"},
                 recorded_.read);
  struct Reading {
    int64_t time;
    float value;
  };
  bool more = rows.Next();
  while (more) {
    const int64_t record = rows.Integer(0);
    std::map<int64_t, std::vector<Reading>> by_phase;
    int64_t first = INT64_MAX;
    for (; more && rows.Integer(0) == record; more = rows.Next()) {
      if (rows.Integer(2) == kNoTime || VoltageOf(rows.Integer(1), wiring_).empty()) continue;
      first = std::min(first, rows.Integer(2));
      by_phase[rows.Integer(1)].push_back({rows.Integer(2), static_cast<float>(rows.Number(3))});
    }
    if (by_phase.empty()) continue;
    Observation observation = {
        recorded_.name + " record " + std::to_string(record) + " half-cycles",
        InMilliseconds(first), kUntriggered};
    for (const auto& [phase, readings] : by_phase) {
      std::vector<double> seconds;
      std::vector<float> values;
      for (const Reading& reading : readings) {
        seconds.push_back(static_cast<double>(reading.time - observation.start) / kSecond);
        values.push_back(reading.value);
      }
      observation.channels.push_back(
          ChannelOf(HalfCyclesOf(VoltageOf(phase, wiring_)),
                    {Seconds(seconds), Series({Floats(kSeriesValues, values)}, Nominal())}));
    }
    if (!take_(observation)) return false;
  }
  return true;
}

}  // namespace

bool ForEachObservation(Recorded* recorded, const Take& take) {
  return Maker(recorded, take).Make();
}

std::vector<Element> ElementsOf(const Observation& observation) {
  std::vector<Element> elements = {
      Text(kObservationName, observation.name), Time(kTimeCreate, observation.start),
      Time(kTimeStart, observation.start), Number(kTriggerMethod, observation.trigger)};
  if (observation.trigger == kByChannel) elements.push_back(Numbers(kTriggerChannels, {0}));
  if (observation.disturbance) {
    elements.push_back(Identifier(kDisturbance, *observation.disturbance));
  }
  elements.push_back(Collection(kChannelInstances, observation.channels));
  return elements;
}

}  // namespace quorvex::pqdif
