#include "report/waves.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "assessment/channels.h"
#include "exchange/waveforms.h"
#include "tables/table_rows.h"

namespace quorvex::tool {
namespace {

constexpr size_t kMostWaveforms = 12, kMostChanges = 12, kMostTelegrams = 4;
constexpr size_t kMostPoints = 4000;
constexpr int kDigits = 4;
constexpr float kMissing = std::numeric_limits<float>::quiet_NaN();

// Lines over samples of which there may be any number: beyond some they are kept as the least and
// the most of a few samples each, as many as it takes.
class Samples {
 public:
  explicit Samples(size_t lines) : lines_(lines) {}

  void Take(const std::vector<double>& values) {
    for (size_t i = 0; i < lines_.size(); ++i) lines_[i].Take(values[i]);
    ++count_;
    if (++in_bucket_ == bucket_) Close();
  }
  void End() {
    if (in_bucket_ > 0) Close();
  }
  // Points and the samples from one to the next.
  const std::vector<float>& Points(size_t line) const { return lines_[line].points; }
  double SamplesAPoint() const { return bucket_ == 1 ? 1 : static_cast<double>(bucket_) / 2; }
  bool HasValues(size_t line) const { return lines_[line].any; }
  uint64_t count() const { return count_; }

 private:
  struct Line {
    std::vector<float> points;  // of a bucket one, or its least and its most
    float least = kMissing, most = kMissing;
    bool any = false;
    void Take(double value) {
      const auto v = static_cast<float>(value);
      if (!(v >= least)) least = std::isnan(v) ? least : v;
      if (!(v <= most)) most = std::isnan(v) ? most : v;
      any = any || !std::isnan(v);
    }
  };

  void Close() {
    for (Line& line : lines_) {
      line.points.push_back(line.least);
      if (bucket_ > 1) line.points.push_back(line.most);
      line.least = line.most = kMissing;
    }
    in_bucket_ = 0;
    if (!lines_.empty() && lines_[0].points.size() >= 2 * kMostPoints) Halve();
  }
  void Halve() {
    // From one sample a point to a pair of four, from pairs to pairs of twice as many.
    const size_t step = 4;
    for (Line& line : lines_) {
      std::vector<float> fewer;
      for (size_t i = 0; i + step <= line.points.size(); i += step) {
        Line pair;
        for (size_t k = i; k < i + step; ++k) {
          if (!std::isnan(line.points[k])) pair.Take(static_cast<double>(line.points[k]));
        }
        fewer.push_back(pair.least);
        fewer.push_back(pair.most);
      }
      line.points = std::move(fewer);
    }
    bucket_ = bucket_ == 1 ? step : bucket_ * 2;
  }

  std::vector<Line> lines_;
  uint64_t bucket_ = 1, in_bucket_ = 0, count_ = 0;
};

// The columns of a table that hold values, with their labels and units.
struct Lines {
  std::vector<std::string> names, labels, units;
};

Lines LinesOf(const std::string& path, const std::string& table) {
  Lines lines;
  RecordingHead head(path.c_str());
  if (!head.file || head.type == nullptr) return lines;
  head.UseSettingFile();
  const TableSet set = TablesOf(*head.type, head.settings);
  const Table* found = set.Find(table);
  for (size_t c = 0; found != nullptr && c < found->columns.size(); ++c) {
    const Column& column = found->columns[c];
    if (column.key != Key::kNone || column.type != ValueType::kFloat) continue;
    lines.names.push_back(column.name);
    lines.labels.push_back(column.name);
    lines.units.push_back(column.unit);
  }
  return lines;
}

// A chart of the lines that have values, a group for each unit. `axis` is where samples are.
std::string MembersOf(const Lines& lines, const Samples& samples, const std::string& axis) {
  std::string groups;
  for (size_t first = 0; first < lines.names.size(); ++first) {
    const bool begins =
        std::find(lines.units.begin(), lines.units.begin() + std::ptrdiff_t(first),
                  lines.units[first]) == lines.units.begin() + std::ptrdiff_t(first);
    if (!begins) continue;
    std::string series;
    for (size_t i = first; i < lines.names.size(); ++i) {
      if (lines.units[i] != lines.units[first] || !samples.HasValues(i)) continue;
      AppendPart(JsonSeries(lines.labels[i], samples.Points(i), kDigits), &series);
    }
    if (series.empty()) continue;
    AppendPart("{\"unit\":" + JsonText(lines.units[first]) + ",\"series\":[" + series + "]}",
               &groups);
  }
  return groups.empty() ? "" : axis + ",\"groups\":[" + groups + "]";
}

std::string Axis(double step, double samples_a_point) {
  const bool known = step > 0 && std::isfinite(step);
  return "\"xunit\":" + JsonText(known ? "s" : "sample") +
         ",\"from\":0,\"step\":" + JsonNumber((known ? step : 1) * samples_a_point, 7);
}

const char* const kChannels[] = {"L1", "L2", "L3", "N", "L12", "L23", "L31", "INV"};

// "L12" gives "u12" and "i12".
std::string LabelOf(const char* letter, const std::string& channel) {
  if (channel == "N") return std::string(letter) + "n";
  if (channel == "INV") return std::string(letter) + "inv";
  return letter + channel.substr(1);
}

std::vector<Phasor> PhasorsOf(const std::string& path, const ReadOptions& one) {
  std::vector<std::string> angles, sizes_u = {"order"}, sizes_i = {"order"};
  for (const char* channel : kChannels) {
    angles.push_back(std::string(channel) + "/PHASE_U");
    angles.push_back(std::string(channel) + "/PHASE_I");
    sizes_u.push_back(std::string(channel) + "/HARM_U/v");
    sizes_i.push_back(std::string(channel) + "/HARM_I/v");
  }
  TableRows records(path, "records", angles, one);
  if (!records.Next()) return {};
  std::vector<Phasor> phasors;
  for (const bool current : {false, true}) {
    TableRows orders(path, current ? "HARM_I" : "HARM_U", current ? sizes_i : sizes_u, one);
    bool found = orders.Next();
    while (found && orders.Integer(0) != 1) found = orders.Next();
    for (size_t c = 0; found && c < std::size(kChannels); ++c) {
      const double size = orders.Number(c + 1);
      const double angle = records.Number(2 * c + (current ? 1 : 0));
      if (!std::isfinite(size) || !std::isfinite(angle) || size <= 0) continue;
      phasors.push_back(
          {LabelOf(current ? "i" : "u", kChannels[c]), current ? "A" : "V", size, angle});
    }
  }
  return phasors;
}

void AddPhasors(Wave* wave, Charts* charts) {
  if (wave->phasors.empty()) return;
  wave->phasors_figure = {wave->figure.id + "-phasors", "phasors", "Phasors of the fundamentals"};
  std::string vectors;
  for (const Phasor& phasor : wave->phasors) {
    AppendPart("{\"label\":" + JsonText(phasor.label) + ",\"unit\":" + JsonText(phasor.unit) +
                   ",\"size\":" + JsonNumber(phasor.size, 5) +
                   ",\"angle\":" + JsonNumber(phasor.angle, 5) + "}",
               &vectors);
  }
  charts->Add(wave->phasors_figure, "\"vectors\":[" + vectors + "]");
}

void AddWaveforms(const Card& card, size_t number, const ReportRequest& request, Waves* waves,
                  Charts* charts) {
  const CardRecording& recording = card.recordings[number];
  const std::vector<WaveChannel> channels = WaveChannels(recording.path);
  if (channels.empty()) return;
  Lines lines;
  for (const WaveChannel& channel : channels) {
    lines.names.push_back(channel.column);
    lines.labels.push_back(channel.name);
    lines.units.push_back(channel.unit);
  }
  const uint64_t records = recording.recording.records.value_or(0);
  ForEachWaveRecord(recording.path, request.read, [&](const WaveRecord& record) {
    if (waves->waveforms.size() >= kMostWaveforms) {
      waves->more_waveforms += records >= record.number ? records - record.number + 1 : 1;
      return false;
    }
    const auto rows = SamplesOf(recording.path, channels, record.number, request.read);
    Samples samples(channels.size());
    std::vector<double> values(channels.size());
    while (rows->Next()) {
      for (size_t i = 0; i < values.size(); ++i) values[i] = rows->Number(i);
      samples.Take(values);
    }
    samples.End();
    const std::string members =
        MembersOf(lines, samples, Axis(record.step, samples.SamplesAPoint()));
    if (members.empty()) return true;
    const std::string id = "wave-" + std::to_string(waves->waveforms.size() + 1);
    Wave wave = {number, record.number, record.start, {id, "wave", "Waveforms"}};
    charts->Add(wave.figure, members);
    ReadOptions one = request.read;
    one.first = one.last = record.number;
    wave.phasors = PhasorsOf(recording.path, one);
    AddPhasors(&wave, charts);
    waves->waveforms.push_back(wave);
    return true;
  });
}

void AddChanges(const Card& card, size_t number, const ReportRequest& request, Waves* waves,
                Charts* charts) {
  const CardRecording& recording = card.recordings[number];
  const std::vector<std::string> channels = VoltageChannels(recording.wiring);
  TableRows records(recording.path, "records", {"record", "RVC_START_TIME", "PHASE"}, request.read);
  while (records.Next()) {
    if (waves->changes.size() >= kMostChanges) {
      ++waves->more_changes;
      continue;
    }
    ReadOptions one = request.read;
    one.first = one.last = static_cast<uint64_t>(records.Integer(0));
    TableRows rows(recording.path, "RMS12_VALUES", {"U", "TIME_STAMP"}, one);
    std::vector<float> volts;
    std::string seconds;
    int64_t begin = records.Integer(1);
    while (rows.Next()) {
      const int64_t time = rows.Integer(1);
      if (time == kNoTime) continue;
      if (begin == kNoTime) begin = time;
      volts.push_back(static_cast<float>(rows.Number(0)));
      AppendPart(JsonNumber(static_cast<double>(time - begin) / 1e6, 6), &seconds);
    }
    if (volts.empty()) continue;
    const auto phase = static_cast<uint64_t>(records.Integer(2));
    const bool known = phase >= 1 && phase <= channels.size();
    const std::string label = known ? channels[phase - 1] : "U";
    const std::string id = "change-" + std::to_string(waves->changes.size() + 1);
    waves->changes.push_back({number, one.first, begin, {id, "wave", "Half-cycle voltage"}});
    charts->Add(waves->changes.back().figure, "\"xunit\":\"s\",\"x\":[" + seconds +
                                                  "],\"groups\":[{\"unit\":\"V\",\"series\":[" +
                                                  JsonSeries(label, volts, 5) + "]}]");
  }
}

void AddTelegrams(const Card& card, size_t number, const ReportRequest& request, Waves* waves,
                  Charts* charts) {
  const CardRecording& recording = card.recordings[number];
  Lines lines = LinesOf(recording.path, "SIGNALLING_DATA");
  for (size_t i = 0; i < lines.names.size(); ++i) {
    // "SIGNALLING_DATA/U12_SIG1/U"
    const std::string inner = lines.names[i].substr(lines.names[i].find('/') + 1);
    lines.labels[i] = inner.substr(0, inner.find('/'));
    std::replace(lines.labels[i].begin(), lines.labels[i].end(), '_', ' ');
  }
  TableRows records(
      recording.path, "records",
      {"record", "SIGNALLING_PARAMS/TIME_FIRST_PACKET", "SIGNALLING_PARAMS/TIME_STEP"},
      request.read);
  while (!lines.names.empty() && records.Next()) {
    if (waves->telegrams.size() >= kMostTelegrams) {
      ++waves->more_telegrams;
      continue;
    }
    ReadOptions one = request.read;
    one.first = one.last = static_cast<uint64_t>(records.Integer(0));
    TableRows rows(recording.path, "SIGNALLING_DATA", lines.names, one);
    Samples samples(lines.names.size());
    std::vector<double> values(lines.names.size());
    while (rows.Next()) {
      for (size_t i = 0; i < values.size(); ++i) values[i] = rows.Number(i);
      samples.Take(values);
    }
    samples.End();
    const std::string members =
        MembersOf(lines, samples, Axis(records.Number(2), samples.SamplesAPoint()));
    if (members.empty()) continue;
    const std::string id = "telegram-" + std::to_string(waves->telegrams.size() + 1);
    waves->telegrams.push_back(
        {number, one.first, records.Integer(1), {id, "wave", "Signalling levels"}});
    charts->Add(waves->telegrams.back().figure, members);
  }
}

}  // namespace

Waves AddWaves(const Card& card, const ReportRequest& request, Charts* charts) {
  Waves waves;
  for (size_t i = 0; i < card.recordings.size(); ++i) {
    const CardRecording& recording = card.recordings[i];
    if (recording.used_for.empty()) continue;
    switch (recording.type()) {
      case 2:
      case 5:
      case 6:
      case 17:
        AddWaveforms(card, i, request, &waves, charts);
        break;
      case 9:
        AddTelegrams(card, i, request, &waves, charts);
        break;
      case 10:
        AddChanges(card, i, request, &waves, charts);
        break;
      default:
        break;
    }
  }
  return waves;
}

}  // namespace quorvex::tool
