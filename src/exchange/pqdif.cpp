#include "exchange/pqdif.h"

#include <algorithm>
#include <iterator>

#include "assessment/voltage_events.h"
#include "records/sample_scales.h"

namespace quorvex::pqdif {
namespace {

std::string FixedText(const char* text, size_t size) {
  return AsUtf8(std::string(text, std::find(text, text + size, '\0')));
}

Element SeriesDefinition(const Guid& value, Unit unit, const Guid& characteristic, uint32_t method,
                         double nominal = 0) {
  std::vector<Element> elements = {Identifier(kValueType, value), Number(kUnits, unit),
                                   Identifier(kCharacteristic, characteristic),
                                   Number(kStorageMethod, method)};
  if (nominal > 0) elements.push_back(Real(kSeriesNominal, nominal));
  return Collection(kOneSeriesDefinition, std::move(elements));
}

Element DefinitionOf(const Channel& channel, double nominal) {
  const bool increments = channel.type == kWaveform;
  std::vector<Element> series = {
      SeriesDefinition(kTime, kSeconds, kNothing, increments ? kStoredIncrement : kStoredValues)};
  for (const Guid& value : channel.values) {
    series.push_back(value == kDur ? SeriesDefinition(value, kSeconds, kNothing, kStoredValues)
                                   : SeriesDefinition(value, channel.unit, channel.characteristic,
                                                      kStoredValues, nominal));
  }
  return Collection(
      kOneChannelDefinition,
      {Text(kChannelName, channel.name), Number(kPhase, channel.phase),
       Identifier(kQuantityType, channel.type), Number(kQuantityMeasured, channel.measured),
       Collection(kSeriesDefinitions, std::move(series))});
}

// ID_SINGLE_PHASE and so on; 0 where the standard has none.
uint32_t ConnectionOf(uint8_t wiring) {
  constexpr uint32_t kConnections[] = {0, 1, 5, 4, 5, 7, 1, 5};
  return wiring < std::size(kConnections) ? kConnections[wiring] : 0;
}

// The transformer in front of a channel: information, for values are those of its primary side.
std::vector<Element> TransformerOf(const Channel& channel, const UifParams& settings) {
  if (channel.measured == kVoltage) {
    const auto primary = static_cast<int32_t>(settings.voltage_ratio_prim);
    const auto secondary = static_cast<int32_t>(settings.voltage_ratio_sec);
    return {Number(kTransformerType, kPotential), Real(kSystemSide, primary),
            Real(kMonitorSide, secondary)};
  }
  const bool of_phase = channel.phase >= kAn && channel.phase <= kNg;
  const int clamp = ClampOf(settings, of_phase ? static_cast<int>(channel.phase) - kAn : 0);
  const ClampParams& used = settings.clamp[clamp];
  const bool through = used.trafo != 0;
  return {Number(kTransformerType, kCurrentType),
          Real(kSystemSide, through ? static_cast<int32_t>(used.trafo_prim_i) : 1),
          Real(kMonitorSide, through ? static_cast<int32_t>(used.trafo_sec_i) : 1)};
}

Element ChannelSettingOf(size_t index, const Channel& channel, const UifParams& settings,
                         const Thresholds& thresholds) {
  std::vector<Element> elements = {Number(kChannelIndex, static_cast<uint32_t>(index))};
  if (IsJudged(channel, settings.connection) && thresholds.dip > 0) {
    elements.push_back(Number(kTriggerType, kTriggerIsLow | kTriggerIsHigh));
    elements.push_back(Real(kTriggerLow, thresholds.dip));
    elements.push_back(Real(kTriggerHigh, thresholds.swell));
    elements.push_back(Real(kTriggerLowLow, thresholds.interruption));
  }
  if (channel.measured == kVoltage || channel.measured == kCurrent) {
    std::vector<Element> transformer = TransformerOf(channel, settings);
    std::move(transformer.begin(), transformer.end(), std::back_inserter(elements));
  }
  return Collection(kOneChannelSetting, std::move(elements));
}

std::vector<Element> SettingsOf(const Source& source, const RecordingHead& head, int64_t since) {
  const UifParams& settings = head.settings;
  const Thresholds thresholds = ThresholdsOf(head, 0);
  std::vector<Element> channels;
  channels.reserve(source.channels.size());
  for (size_t i = 0; i < source.channels.size(); ++i) {
    channels.push_back(ChannelSettingOf(i, source.channels[i], settings, thresholds));
  }
  std::vector<Element> elements = {Time(kEffective, since), Time(kTimeInstalled, since),
                                   Flag(kUseCalibration, false), Flag(kUseTransducer, false),
                                   Real(kNominalFrequency, settings.system_frequency)};
  const uint32_t connection = ConnectionOf(settings.connection);
  if (connection != 0) elements.push_back(Number(kConnection, connection));
  elements.push_back(Collection(kChannelSettings, std::move(channels)));
  return elements;
}

}  // namespace

Source SourceOf(const std::string& path, const RecordingHead& head, const std::string& model,
                const std::string& serial) {
  const UifParams& settings = head.settings;
  return {model,
          serial,
          FixedText(settings.ee_firmware_version, sizeof settings.ee_firmware_version),
          FixedText(settings.cname_short, sizeof settings.cname_short),
          settings.connection,
          static_cast<double>(settings.nominal_voltage),
          ChannelsOf(path, head)};
}

void AddChannels(const Source& more, Source* source) {
  std::vector<Channel>& known = source->channels;
  for (const Channel& channel : more.channels) {
    if (std::find(known.begin(), known.end(), channel) == known.end()) known.push_back(channel);
  }
}

bool Writer::Stored(const std::vector<Element>& elements, std::string* body) const {
  *body = BodyOf(elements);
  if (!options_.compress) return true;
  std::string compressed;
  if (!options_.compress(*body, &compressed)) return false;
  *body = std::move(compressed);
  return true;
}

bool Writer::BeginFile() {
  std::string name;
  if (!files_.begin(++number_, &name)) return false;
  chain_ = Chain(files_.write);
  observations_in_file_ = 0;
  const bool packed = static_cast<bool>(options_.compress);
  // Written in version 1.5, to be read by readers of 1.0.
  return chain_.Add(kContainer,
                    BodyOf({Numbers(kVersionInfo, {1, 5, 1, 0}), Text(kFileName, name),
                            Time(kCreation, options_.created), Text(kApplication, "Quorvex64"),
                            Text(kComments, options_.comment),
                            Number(kCompressionStyle, packed ? kRecordLevel : kUncompressed),
                            Number(kCompressionAlgorithm, packed ? kZlib : kUncompressed)}));
}

bool Writer::EndFile() { return chain_.End() && files_.end(); }

bool Writer::BeginSource() {
  std::vector<Element> channels;
  for (const Channel& channel : source_.channels) {
    const double nominal = IsJudged(channel, source_.wiring) ? source_.nominal : 0;
    channels.push_back(DefinitionOf(channel, nominal));
  }
  const std::string name = source_.model + (source_.serial.empty() ? "" : " " + source_.serial);
  std::string body;
  return Stored({Identifier(kSourceType, kMeasure), Identifier(kVendor, kNoVendor),
                 Identifier(kInstrumentType, kQualityMeter), Text(kModelName, source_.model),
                 Text(kSerialNumber, source_.serial), Text(kVersion, source_.firmware),
                 Text(kSourceName, name.empty() ? "instrument" : name),
                 Text(kLocation, source_.place), Time(kEffective, options_.created),
                 Collection(kChannelDefinitions, std::move(channels))},
                &body) &&
         chain_.Add(kDataSource, std::move(body));
}

bool Writer::Begin(const Source& source) {
  source_ = source;
  settings_key_.clear();
  if (number_ == 0 && !BeginFile()) return false;
  return BeginSource();
}

bool Writer::AddSettings(const RecordingHead& head) {
  std::string key = BodyOf(SettingsOf(source_, head, 0));
  if (key == settings_key_) return true;
  settings_key_ = std::move(key);
  int64_t since = MicrosecondsOf(head.settings.start_time);
  if (since == kNoTime) {
    since = options_.created;
  } else {
    since -= int64_t{options_.read.utc_offset.value_or(0)} * 60 * 1000000;
  }
  settings_ = SettingsOf(source_, head, since);
  return AddRecord(kMonitorSettings, settings_);
}

// Where a file is full the next one begins, which is complete in itself.
bool Writer::AddRecord(const Guid& type, const std::vector<Element>& elements) {
  std::string body, again;
  if (!Stored(elements, &body)) return false;
  if (chain_.SizeWith(body.size()) > options_.largest && observations_in_file_ > 0) {
    if (!EndFile() || !BeginFile() || !BeginSource()) return false;
    if (type != kMonitorSettings &&
        (!Stored(settings_, &again) || !chain_.Add(kMonitorSettings, std::move(again)))) {
      return false;
    }
  }
  return chain_.Add(type, std::move(body));
}

bool Writer::Add(Recorded* recorded) {
  RecordingHead head(recorded->path.c_str());
  if (!head.file || head.type == nullptr) return true;
  head.UseSettingFile();
  recorded->channels = &source_.channels;
  recorded->read = options_.read;
  bool has_settings = false;
  return ForEachObservation(recorded, [&](const Observation& observation) {
    if (!has_settings && !AddSettings(head)) return false;
    has_settings = true;
    if (!AddRecord(kObservation, ElementsOf(observation))) return false;
    ++observations_;
    ++observations_in_file_;
    return true;
  });
}

bool Writer::End() { return number_ == 0 || EndFile(); }

}  // namespace quorvex::pqdif
