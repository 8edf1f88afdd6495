#include "exchange/pqdif_channels.h"

#include <algorithm>
#include <sstream>

#include "assessment/channels.h"
#include "exchange/waveforms.h"

namespace quorvex::pqdif {
namespace {

enum class Each : uint8_t { kVoltage, kCurrent, kPower, kOnce };

// Columns of some quantities: FRONT LEAF /min, /max and /AVERAGE, with "%" for a channel. A
// quantity without an average is one value.
struct Row {
  const char* front;
  const char* leaves;
  const char* average;
  Each each;
  Measured measured;
  Unit unit;
  Guid characteristic;
  PhaseId phase = kNoPhase;       // of what is there once
  const char* only_in = nullptr;  // where the column has this unit
};

constexpr Row kRows[] = {
    {"VOLTAGES/U[%]/", "rms", "rms", Each::kVoltage, kVoltage, kVolts, kRms},
    {"VOLTAGES/U[%]/", "thdPr", "rms", Each::kVoltage, kVoltage, kPercent, kThd},
    // Voltage quality keeps distortion in percent under the name that it has elsewhere in volts.
    {"VOLTAGES/U[%]/", "thd", "rms", Each::kVoltage, kVoltage, kPercent, kThd, kNoPhase, ""},
    {"VOLTAGES/U[%]/", "thd", "rms", Each::kVoltage, kVoltage, kVolts, kHarmonicRms, kNoPhase, "V"},
    {"VOLTAGES/U[%]/", "cf", "avg", Each::kVoltage, kVoltage, kUnitless, kCrestFactor},
    {"VOLTAGES/U[%]/", "Pst", "rms", Each::kVoltage, kVoltage, kUnitless, kPst},
    {"VOLTAGES/U[%]/", "Plt", "rms", Each::kVoltage, kVoltage, kUnitless, kPlt},
    {"CURRENTS/I[%]/", "rms", "rms", Each::kCurrent, kCurrent, kAmperes, kRms},
    {"CURRENTS/I[%]/", "thdPr", "rms", Each::kCurrent, kCurrent, kPercent, kThd},
    {"CURRENTS/I[%]/", "thd", "rms", Each::kCurrent, kCurrent, kAmperes, kHarmonicRms},
    {"CURRENTS/I[%]/", "tddPr", "rms", Each::kCurrent, kCurrent, kPercent, kTdd},
    {"CURRENTS/I[%]/", "cf", "avg", Each::kCurrent, kCurrent, kUnitless, kCrestFactor},
    {"CURRENTS/I[%]/", "k", "rms", Each::kCurrent, kCurrent, kUnitless, kKFactor},
    {"", "f_10s f_200ms", "avgA", Each::kOnce, kNone, kHertz, kFrequency},
    {"PHASE_POWERS/P[%]/COMBINED/", "Pp Pm", "avg", Each::kPower, kPower, kWatts, kActive},
    {"PHASE_POWERS/P[%]/COMBINED/", "Qip Qim Qcp Qcm", "avg", Each::kPower, kPower, kVars,
     kReactive},
    {"PHASE_POWERS/P[%]/COMBINED/", "S", "avg", Each::kPower, kPower, kVa, kApparent},
    {"PHASE_POWERS/P[%]/COMBINED/", "PFip PFim PFcp PFcm", "avgA", Each::kPower, kPower, kUnitless,
     kPowerFactor},
    {"PHASE_POWERS/P[%]/FUNDAMENTAL/", "DPFip DPFim DPFcp DPFcm", "avgA", Each::kPower, kPower,
     kUnitless, kDisplacementFactor},
    {"pt/COMBINED/", "Pp Pm", "avg", Each::kOnce, kPower, kWatts, kActive, kTotal},
    {"pt/COMBINED/", "Qip Qim Qcp Qcm", "avg", Each::kOnce, kPower, kVars, kReactive, kTotal},
    {"pt/COMBINED/", "Se", "avg", Each::kOnce, kPower, kVa, kApparent, kTotal},
    {"pt/COMBINED/", "Sv", "avg", Each::kOnce, kPower, kVa, kApparentVector, kTotal},
    {"pt/COMBINED/", "Sa", "avg", Each::kOnce, kPower, kVa, kApparentArithmetic, kTotal},
    {"pt/COMBINED/", "PFip_e PFim_e PFcp_e PFcm_e", "avgA", Each::kOnce, kPower, kUnitless,
     kPowerFactor, kTotal},
    {"pt/FUNDAMENTAL/", "Pp_fund Pm_fund", "avg", Each::kOnce, kPower, kWatts, kActiveFundamental,
     kTotal},
    {"pt/ENERGY/", "EPp", "", Each::kOnce, kEnergy, kWattHours, kEnergyTaken, kTotal},
    {"pt/ENERGY/", "EPm", "", Each::kOnce, kEnergy, kWattHours, kEnergyGiven, kTotal},
    {"sym/", "um", "rms", Each::kOnce, kVoltage, kPercent, kNegativeRatio, kTotal},
    {"sym/", "u0", "rms", Each::kOnce, kVoltage, kPercent, kZeroRatio, kTotal},
    {"sym/", "im", "rms", Each::kOnce, kCurrent, kPercent, kNegativeRatio, kTotal},
    {"sym/", "i0", "rms", Each::kOnce, kCurrent, kPercent, kZeroRatio, kTotal},
    {"sym/", "Up", "rms", Each::kOnce, kVoltage, kVolts, kPositive, kTotal},
    {"sym/", "Um", "rms", Each::kOnce, kVoltage, kVolts, kNegative, kTotal},
    {"sym/", "Uo", "rms", Each::kOnce, kVoltage, kVolts, kZero, kTotal},
    {"sym/", "Ip", "rms", Each::kOnce, kCurrent, kAmperes, kPositive, kTotal},
    {"sym/", "Im", "rms", Each::kOnce, kCurrent, kAmperes, kNegative, kTotal},
    {"sym/", "Io", "rms", Each::kOnce, kCurrent, kAmperes, kZero, kTotal},
    {"", "temperature", "avg", Each::kOnce, kTemperature, kCelsius, kNothing},
};

struct SpectrumRow {
  const char* table;
  const char* column;
  Measured measured;
  Unit unit;
  Guid characteristic;
  const char* called;
};
constexpr SpectrumRow kSpectra[] = {
    {"HARMONICS_U", "HARM_U[%h]", kVoltage, kVolts, kHarmonics, " harmonics"},
    {"HARMONICS_I", "HARM_I[%h]", kCurrent, kAmperes, kHarmonics, " harmonics"},
    {"INTER_HARMONICS_U", "IHARM_U[%ih]", kVoltage, kVolts, kInterharmonics, " interharmonics"},
    {"INTER_HARMONICS_I", "IHARM_I[%ih]", kCurrent, kAmperes, kInterharmonics, " interharmonics"},
};

// What "%" may stand for.
std::vector<std::string> ChannelsFor(Each each) {
  switch (each) {
    case Each::kVoltage:
      return {"u1", "u2", "u3", "un", "u12", "u23", "u31"};
    case Each::kCurrent:
      return {"i1", "i2", "i3", "in"};
    case Each::kPower:
      return {"p1", "p2", "p3"};
    case Each::kOnce:
      break;
  }
  return {""};
}

// Tables without pairs name phases in their places where the wiring has nothing but pairs.
std::string MeantBy(const std::string& channel, const Table& table, uint8_t wiring) {
  const bool has_pairs = std::any_of(
      table.columns.begin(), table.columns.end(),
      [](const Column& column) { return column.name.find("[u12") != std::string::npos; });
  for (const std::string& voltage : VoltageChannels(wiring)) {
    if (!has_pairs && channel == PhaseInPlaceOf(voltage)) return voltage;
  }
  return channel;
}

std::string With(const char* pattern, const std::string& channel) {
  std::string text = pattern;
  const size_t at = text.find('%');
  if (at != std::string::npos) text.replace(at, 1, channel);
  return text;
}

// Null where the table has none.
const Column* Find(const Table& table, const std::string& name) {
  const auto found = std::find_if(table.columns.begin(), table.columns.end(),
                                  [&](const Column& column) { return column.name == name; });
  return found != table.columns.end() ? &*found : nullptr;
}

void AddTrends(const Table& records, const Row& row, const std::string& channel, uint8_t wiring,
               std::vector<Trend>* trends) {
  std::istringstream leaves(row.leaves);
  const std::string front = With(row.front, channel);
  const std::string meant = MeantBy(channel, records, wiring);
  const bool single = row.average[0] == '\0';
  for (std::string leaf; leaves >> leaf;) {
    const Column* average = Find(records, front + leaf + (single ? "" : "/") + row.average);
    if (average == nullptr || (row.only_in != nullptr && average->unit != row.only_in)) continue;
    const bool total = row.phase == kTotal && row.measured >= kPower;
    Trend trend = {{channel.empty() ? (total ? "total " : "") + leaf : meant + " " + leaf,
                    channel.empty() ? row.phase : PhaseOf(meant), kValueLog, row.measured, row.unit,
                    row.characteristic},
                   {}};
    for (const auto& [name, value] : {std::pair("/min", kMin), std::pair("/max", kMax)}) {
      if (Find(records, front + leaf + name) == nullptr) continue;
      trend.columns.push_back(front + leaf + name);
      trend.channel.values.push_back(value);
    }
    trend.columns.push_back(average->name);
    trend.channel.values.push_back(single ? kVal : kAvg);
    trends->push_back(std::move(trend));
  }
}

}  // namespace

PhaseId PhaseOf(const std::string& channel) {
  constexpr std::pair<const char*, PhaseId> kPhases[] = {
      {"1", kAn}, {"2", kBn}, {"3", kCn}, {"n", kNg}, {"12", kAb}, {"23", kBc}, {"31", kCa}};
  for (const auto& [name, phase] : kPhases) {
    if (!channel.empty() && channel.substr(1) == name) return phase;
  }
  return kNoPhase;
}

std::string VoltageOf(int64_t phase, uint8_t wiring) {
  const std::vector<std::string> voltages = VoltageChannels(wiring);
  const bool known = phase >= 1 && phase <= static_cast<int64_t>(voltages.size());
  return known ? voltages[static_cast<size_t>(phase - 1)] : "";
}

std::vector<Trend> TrendsOf(const TableSet& set, uint8_t wiring) {
  const Table* records = set.Find("records");
  std::vector<Trend> trends;
  if (records == nullptr) return trends;
  for (const Row& row : kRows) {
    for (const std::string& channel : ChannelsFor(row.each))
      AddTrends(*records, row, channel, wiring, &trends);
  }
  return trends;
}

std::vector<Spectra> SpectraOf(const TableSet& set, uint8_t wiring) {
  std::vector<Spectra> all;
  for (const SpectrumRow& row : kSpectra) {
    const Table* table = set.Find(row.table);
    if (table == nullptr) continue;
    Spectra spectra = {row.table, {}};
    const Each each = row.measured == kVoltage ? Each::kVoltage : Each::kCurrent;
    for (const std::string& channel : ChannelsFor(each)) {
      const std::string column = std::string(row.table) + "/" + With(row.column, channel);
      const Column* found = Find(*table, column + "/first");
      if (found == nullptr) found = Find(*table, column);
      if (found == nullptr) continue;
      const std::string meant = MeantBy(channel, *table, wiring);
      spectra.trends.push_back({{meant + row.called,
                                 PhaseOf(meant),
                                 kValueLog,
                                 row.measured,
                                 row.unit,
                                 row.characteristic,
                                 {kAvg}},
                                {found->name}});
    }
    all.push_back(std::move(spectra));
  }
  return all;
}

Channel WaveformOf(const std::string& name, const std::string& unit) {
  const bool volts = unit == "V";
  return {name,
          PhaseOf(name),
          kWaveform,
          volts ? kVoltage : kCurrent,
          volts ? kVolts : kAmperes,
          kInstantaneous,
          {kVal}};
}
Channel HalfCyclesOf(const std::string& voltage) {
  return {voltage + " half-cycle rms", PhaseOf(voltage), kValueLog, kVoltage, kVolts, kRms, {kVal}};
}
Channel EventOf(const std::string& voltage) {
  const bool several = voltage.empty();
  return {several ? "events of several voltages" : voltage + " events",
          several ? kWorst : PhaseOf(voltage),
          kMagDurTime,
          kVoltage,
          kVolts,
          kRms,
          {kVal, kDur}};
}
Channel ChangeOf(const std::string& voltage) {
  // What the deviation is a share of, and whether in percent, recordings do not say.
  return {voltage + " changes", PhaseOf(voltage), kMagDurTime, kVoltage, kUnitless,
          kLargestChange,       {kVal, kDur}};
}

bool IsJudged(const Channel& channel, uint8_t wiring) {
  const std::vector<std::string> voltages = VoltageChannels(wiring);
  return channel.measured == kVoltage && channel.characteristic == kRms &&
         (channel.phase == kWorst ||
          std::any_of(voltages.begin(), voltages.end(),
                      [&](const std::string& u) { return PhaseOf(u) == channel.phase; }));
}

std::vector<Channel> ChannelsOf(const std::string& path, const RecordingHead& head) {
  std::vector<Channel> channels;
  const uint32_t type = head.type->type;
  const uint8_t wiring = head.settings.connection;
  const TableSet set = TablesOf(*head.type, head.settings);
  if (type == kGeneralType || type == kVoltageQualityType) {
    for (const Trend& trend : TrendsOf(set, wiring)) channels.push_back(trend.channel);
    for (const Spectra& spectra : SpectraOf(set, wiring)) {
      for (const Trend& trend : spectra.trends) channels.push_back(trend.channel);
    }
  }
  for (const WaveChannel& wave : WaveChannels(path)) {
    channels.push_back(WaveformOf(wave.name, wave.unit));
  }
  const bool has_readings =
      std::any_of(std::begin(kHalfCycleTables), std::end(kHalfCycleTables),
                  [&](const char* table) { return set.Find(table) != nullptr; });
  for (const std::string& voltage : VoltageChannels(wiring)) {
    if (type == kEventsType) channels.push_back(EventOf(voltage));
    if (type == kChangesType) channels.push_back(ChangeOf(voltage));
    if (type == kChangesType || has_readings) channels.push_back(HalfCyclesOf(voltage));
  }
  if (type == kEventsType) channels.push_back(EventOf(""));
  return channels;
}

}  // namespace quorvex::pqdif
