#include "assessment/interval_reader.h"

#include <algorithm>

#include "assessment/channels.h"

namespace quorvex {
namespace {

// Beyond these orders the instrument does not measure at such frequencies.
int HighestOrderAt(uint32_t system_frequency) {
  return system_frequency == 400 ? 13 : system_frequency == 55 ? 20 : kHighestOrder;
}

double NumberIn(const TableRows& rows, int column) {
  return column < 0 ? kNone : rows.Number(static_cast<size_t>(column));
}

std::vector<std::string> WantSpectra(const std::string& front,
                                     const std::vector<std::string>& channels, Columns* columns) {
  columns->Want({"record"});
  columns->Want({"order"});
  for (const std::string& channel : channels) {
    const std::string named = front + channel, instead = front + PhaseInPlaceOf(channel);
    columns->Want({named + "hPr]/first", named + "hPr]"});
    columns->Want({named + "h]/first", named + "h]", instead + "h]/first", instead + "h]"});
  }
  return columns->all();
}

}  // namespace

Subject SubjectOf(const UifParams& settings, double nominal) {
  Subject subject;
  subject.nominal = nominal > 0 ? nominal : static_cast<double>(settings.nominal_voltage);
  if (!std::isfinite(subject.nominal)) subject.nominal = 0;
  subject.frequency = settings.system_frequency;
  subject.interval = int64_t{settings.interval} * kSecond;
  if (subject.interval > 0 && kTenMinutes % subject.interval == 0) {
    subject.parts = static_cast<uint32_t>(kTenMinutes / subject.interval);
  }
  subject.voltages = VoltageChannels(settings.connection);
  subject.currents = CurrentChannels(settings.connection);
  subject.highest_order = HighestOrderAt(settings.system_frequency);
  std::copy_n(settings.signal, 2, subject.signals);
  return subject;
}

Gathered Begin(const Subject& subject) {
  Gathered week;
  const auto parts = std::max(subject.parts, 1u);
  week.unbalance = Gauge(parts);
  for (const std::string& channel : subject.voltages) {
    week.channels.emplace_back().channel = channel;
    week.channels.back().rms = week.channels.back().thd = Gauge(parts);
  }
  const auto spectra = [&](const std::vector<std::string>& channels) {
    std::vector<SpectrumGauges> gauges;
    gauges.reserve(channels.size());
    for (const std::string& channel : channels) {
      gauges.push_back({channel, false, std::vector<Gauge>(kHighestOrder + 1, Gauge(parts))});
    }
    return gauges;
  };
  week.voltages = spectra(subject.voltages);
  week.currents = spectra(subject.currents);
  return week;
}

IntervalReader::IntervalReader(const std::string& path, const Subject& subject,
                               const ReadOptions& options)
    : subject_(subject),
      records_(path, "records", WantRecords(), options),
      voltages_(path, "HARMONICS_U",
                WantSpectra("HARMONICS_U/HARM_U[", subject.voltages, &voltage_columns_), options),
      currents_(path, "HARMONICS_I",
                WantSpectra("HARMONICS_I/HARM_I[", subject.currents, &current_columns_), options),
      frequencies_(path, "freq10s", {"record", "freq"}, options) {
  more_voltages_ = voltages_.Next();
  more_currents_ = currents_.Next();
  more_frequencies_ = frequencies_.Next();
  FindColumns();
}

Span IntervalReader::Time() const {
  Span time = {records_.Integer(kStart), records_.Integer(kLast)};
  if (time.from == kNoTime && time.to != kNoTime) time.from = time.to - subject_.interval;
  if (time.to == kNoTime && time.from != kNoTime) time.to = time.from + subject_.interval;
  return time;
}

void IntervalReader::TakeRecord(const Interval& interval, Gathered* week) {
  const int64_t record = records_.Integer(kRecord);
  TakeChannels(interval, week);
  TakeSpectra(&voltages_, &more_voltages_, voltage_at_, record, interval, &week->voltages);
  TakeSpectra(&currents_, &more_currents_, current_at_, record, interval, &week->currents);
  week->has_frequency = week->has_frequency || frequencies_.Knows(1);
  while (more_frequencies_ && frequencies_.Integer(0) <= record) {
    if (frequencies_.Integer(0) == record) {
      week->frequency.Take(++week->frequencies, frequencies_.Number(1), false);
    }
    more_frequencies_ = frequencies_.Next();
  }
  week->frequency_extremes.Take(NumberIn(records_, f_least_));
  week->frequency_extremes.Take(NumberIn(records_, f_most_));
}

std::vector<std::string> IntervalReader::WantRecords() {
  for (const char* key : {"record", "START_TIME", "LAST_TIME"}) columns_.Want({key});
  columns_.Want({"sym/um/rms"});
  columns_.Want({"f_10s/min", "f_10s/avgA"});
  columns_.Want({"f_10s/max", "f_10s/avgA"});
  for (const std::string& channel : subject_.voltages) {
    const auto want = [&](const std::string& name, const std::string& instead = "") {
      std::vector<std::string> names;
      for (const std::string& called : {channel, PhaseInPlaceOf(channel)}) {
        const std::string front = "VOLTAGES/U[" + called + "]/";
        names.push_back(front + name);
        if (!instead.empty()) names.push_back(front + instead);
      }
      columns_.Want(names);
    };
    want("rms/rms");
    // Voltage quality keeps distortion in percent under the name that it has elsewhere in volts.
    want("thdPr/rms", "thd/rms");
    want("Plt/rms");
    for (const char* signal : {"SIGNAL1", "SIGNAL2"}) {
      want(std::string("SIGNALING_3s/") + signal + "/IN");
      want(std::string("SIGNALING_3s/") + signal + "/OUT");
    }
  }
  return columns_.all();
}

void IntervalReader::FindColumns() {
  size_t want = 3;
  const auto next = [&] { return columns_.In(records_, want++); };
  unbalance_ = next();
  f_least_ = next();
  f_most_ = next();
  for (size_t c = 0; c < subject_.voltages.size(); ++c) {
    ChannelColumns at{};
    at.rms = next();
    at.thd = next();
    at.plt = next();
    for (int s = 0; s < 2; ++s) {
      at.in[s] = next();
      at.out[s] = next();
    }
    channel_at_.push_back(at);
  }
  const auto spectra = [](const TableRows& rows, const Columns& columns, size_t channels) {
    std::vector<SpectrumColumn> found;
    for (size_t c = 0; c < channels; ++c) {
      const int percent = columns.In(rows, 2 + 2 * c);
      const int units = columns.In(rows, 3 + 2 * c);
      found.push_back({percent >= 0 ? percent : units, percent >= 0});
    }
    return found;
  };
  voltage_at_ = spectra(voltages_, voltage_columns_, subject_.voltages.size());
  current_at_ = spectra(currents_, current_columns_, subject_.currents.size());
}

void IntervalReader::TakeChannels(const Interval& interval, Gathered* week) {
  week->has_unbalance = week->has_unbalance || unbalance_ >= 0;
  week->unbalance.Take(interval.window, NumberIn(records_, unbalance_), interval.flagged);
  for (size_t c = 0; c < week->channels.size(); ++c) {
    ChannelGauges& channel = week->channels[c];
    const ChannelColumns& at = channel_at_[c];
    channel.has_rms = channel.has_rms || at.rms >= 0;
    channel.has_thd = channel.has_thd || at.thd >= 0;
    channel.has_plt = channel.has_plt || at.plt >= 0;
    channel.rms.Take(interval.window, NumberIn(records_, at.rms), interval.flagged);
    channel.thd.Take(interval.window, NumberIn(records_, at.thd), interval.flagged);
    const double plt = NumberIn(records_, at.plt);
    // Flicker stays as recorded: an interval is a window of its own.
    channel.plt.Take(interval.time.from, plt, interval.flagged);
    if (interval.flagged || plt == plt) {
      channel.plt_windows.insert(interval.window / (kTwoHours / kTenMinutes));
    }
    for (int s = 0; s < 2; ++s) {
      if (at.in[s] < 0 || at.out[s] < 0) continue;
      channel.has_signals = true;
      const double in = NumberIn(records_, at.in[s]), out = NumberIn(records_, at.out[s]);
      if (!(in >= 0) || !(out >= 0) || in + out == 0) continue;
      SignalCounts& counts = channel.signals[s];
      ++counts.intervals;
      if (interval.flagged) {
        counts.flagged += static_cast<uint64_t>(in + out);
        continue;
      }
      SignalCounts::Day& day = counts.days[interval.window / (kDay / kTenMinutes)];
      day.in += static_cast<uint64_t>(in);
      day.out += static_cast<uint64_t>(out);
    }
  }
}

void IntervalReader::TakeSpectra(TableRows* rows, bool* more,
                                 const std::vector<SpectrumColumn>& columns, int64_t record,
                                 const Interval& interval, std::vector<SpectrumGauges>* spectra) {
  for (SpectrumGauges& spectrum : *spectra) spectrum.fundamental = kNone;
  while (*more && rows->Integer(0) <= record) {
    const int64_t order = rows->Integer(1);
    const bool wanted = rows->Integer(0) == record && order <= subject_.highest_order;
    for (size_t c = 0; wanted && order >= 1 && c < spectra->size(); ++c) {
      SpectrumGauges& spectrum = (*spectra)[c];
      if (columns[c].column < 0) continue;
      spectrum.is_there = true;
      double value = NumberIn(*rows, columns[c].column);
      if (!columns[c].percent) {
        if (order == 1) spectrum.fundamental = value;
        value = spectrum.fundamental > 0 ? 100 * value / spectrum.fundamental : kNone;
      }
      spectrum.orders[static_cast<size_t>(order)].Take(interval.window, value, interval.flagged);
    }
    *more = rows->Next();
  }
}

}  // namespace quorvex
