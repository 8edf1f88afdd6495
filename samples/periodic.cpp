// Periodic recordings of one feeder: general records in each profile, voltage quality, averages,
// and a settings file.
#include "periodic.h"

#include <cmath>

#include "records/record_types.h"

namespace quorvex::samples {

void Statistic(RecordBytes* record, const std::string& path, double value, Names names,
               double spread) {
  for (const char* name : names) {
    double shown = value;
    if (name == kMin) shown *= 1 - spread;
    if (name == kMax) shown *= 1 + spread;
    record->Set(path + "/" + name, shown);
  }
}

std::string Numbered(const char* text, int index) {
  std::string name = text;
  name += std::to_string(index + 1);
  return name;
}

void SetTimes(RecordBytes* record, const Clock& clock) {
  Clock end = clock;
  end.Advance(kInterval);
  record->SetTime("START_TIME", clock.now).SetTime("LAST_TIME", end.now);
}

void StartFrequencies(RecordBytes* record, const Clock& clock) {
  constexpr uint32_t kCountAt = 1936;
  record->SetRaw(kCountAt, kFrequenciesPerRecord).SetTime("freq10s/timeFirst", clock.now);
}

std::string FrequencyPath(int index) { return "freq10s/freqs/freq[" + std::to_string(index) + "]"; }

namespace {

const Names kMinMaxAvg = {kMin, kMax, "avg"};
const Names kMaxRms = {kMax, "rms"};
const Names kMaxRmsA = {kMax, "rms", "rmsA"};
const Names kFrequencyNames = {kMin, kMax, "avgA"};

void SetVoltage(RecordBytes* record, const std::string& name, double volts, double thd,
                double pst) {
  const std::string u = "VOLTAGES/U[" + name + "]/";
  Statistic(record, u + "rms", volts, kMinMaxRms);
  Statistic(record, u + "thd", volts * thd / 100, kMaxRms);
  Statistic(record, u + "thdPr", thd, kMaxRms);
  Statistic(record, u + "cf", 1.42, kMinMaxAvg);
  Statistic(record, u + "Pst", pst, kMinMaxRms);
  Statistic(record, u + "Plt", pst * 0.9, kMinMaxRms);
  Statistic(record, u + "Pst1m", pst * 1.1, kMinMaxRms);
  record->Set(u + "Pst/flag", 1).Set(u + "Plt/flag", 1).Set(u + "Pst1m/flag", 1);
  Statistic(record, u + "SIGNALING/SIGNAL1", 1.1, kMinMaxAvg);
  Statistic(record, u + "SIGNALING/SIGNAL2", 0.4, kMinMaxAvg);
  record->Set(u + "SIGNALING_3s/SIGNAL1/IN", 200).Set(u + "SIGNALING_3s/SIGNAL2/IN", 200);
}

void SetCurrent(RecordBytes* record, const std::string& name, double amps, double thd) {
  const std::string i = "CURRENTS/I[" + name + "]/";
  Statistic(record, i + "rms", amps, kMinMaxRmsA, 0.15);
  Statistic(record, i + "thd", amps * thd / 100, kMaxRmsA);
  Statistic(record, i + "thdPr", thd, kMaxRmsA);
  Statistic(record, i + "cf", 1.55, kSix);
  Statistic(record, i + "k", 1.4, kMinMaxRmsA);
}

// Powers are statistics in full records and single averages in standard ones.
struct PowerSetter {
  RecordBytes* record;
  bool full;
  void Power(const std::string& path, double value) const {
    full ? Statistic(record, path, value, kSix, 0.1) : (void)record->Set(path + "/avg", value);
  }
  void Factor(const std::string& path, double value) const {
    full ? Statistic(record, path, value, kSix, 0.01) : (void)record->Set(path + "/avgA", value);
  }
  void Energy(const std::string& path, double p, double q) const {
    record->Set(path + "/EPp", p * kHoursPerRecord).Set(path + "/EPm", 0);
    record->Set(path + "/EQp", q * kHoursPerRecord).Set(path + "/EQm", 0);
  }
};

void SetPowers(RecordBytes* record, const Feeder& network, bool full) {
  const PowerSetter set = {record, full};
  double p = 0, q = 0, s = 0;
  for (int i = 0; i < kPhases; ++i) {
    const Phase& phase = network.phase[i];
    const std::string at = Numbered("PHASE_POWERS/P[p", i) + "]/";
    const double harmonic_amps = phase.amps_thd / 100;
    set.Power(at + "COMBINED/Pp", phase.p);
    set.Power(at + "COMBINED/Qip", phase.q);
    set.Power(at + "COMBINED/S", phase.s);
    set.Factor(at + "COMBINED/PFip", phase.power_factor);
    set.Power(at + "FUNDAMENTAL/Pp", phase.p * 0.998);
    set.Power(at + "FUNDAMENTAL/Qip", phase.q * 0.98);
    set.Power(at + "FUNDAMENTAL/S", phase.s / std::sqrt(1 + harmonic_amps * harmonic_amps));
    set.Factor(at + "FUNDAMENTAL/DPFip", phase.power_factor * 1.01);
    set.Factor(at + "FUNDAMENTAL/tgFip", phase.tangent);
    set.Power(at + "HARMONIC/Di", phase.s * harmonic_amps);
    set.Power(at + "HARMONIC/Dv", phase.s * phase.volts_thd / 100);
    set.Energy(at + "ENERGY", phase.p, phase.q);
    p += phase.p;
    q += phase.q;
    s += phase.s;
  }
  set.Power("pt/COMBINED/Pp", p);
  set.Power("pt/COMBINED/Qip", q);
  set.Power("pt/COMBINED/Sv", std::hypot(p, q));
  set.Power("pt/COMBINED/Sa", s);
  set.Power("pt/COMBINED/Se", s * 1.005);
  set.Factor("pt/COMBINED/PFip_e", p / (s * 1.005));
  set.Factor("pt/COMBINED/PFip_v", p / std::hypot(p, q));
  set.Factor("pt/COMBINED/PFip_a", p / s);
  set.Power("pt/FUNDAMENTAL/Pp_p", p * 0.997);
  set.Power("pt/FUNDAMENTAL/Qip_p", q * 0.98);
  set.Power("pt/FUNDAMENTAL/LU", 0.06);
  set.Factor("pt/FUNDAMENTAL/tgFip", q / p);
  set.Energy("pt/ENERGY", p, q);
}

void SetSymmetry(RecordBytes* record, const Feeder& network) {
  double volts = 0, amps = 0;
  for (const Phase& phase : network.phase) {
    volts += phase.volts / kPhases;
    amps += phase.amps / kPhases;
  }
  constexpr struct {
    const char* letter;
    double voltage, current;  // percent of the positive sequence
  } kParts[] = {{"p", 100, 100}, {"m", 0.5, 6}, {"o", 0.3, 5}};
  for (const auto& part : kParts) {
    Statistic(record, std::string("sym/U") + part.letter, volts * part.voltage / 100, kMinMaxRms);
    Statistic(record, std::string("sym/I") + part.letter, amps * part.current / 100, kMinMaxRmsA);
  }
  Statistic(record, "sym/um", 0.5, kMinMaxRms);
  Statistic(record, "sym/u0", 0.3, kMinMaxRms);
  Statistic(record, "sym/im", 6, kMinMaxRmsA);
  Statistic(record, "sym/i0", 5, kMinMaxRmsA);
}

// What full and standard records have in common.
void SetCommon(RecordBytes* record, const Feeder& network, bool full) {
  for (int i = 0; i < kPhases; ++i) {
    const Phase& phase = network.phase[i];
    SetVoltage(record, Numbered("u", i), phase.volts, phase.volts_thd, network.pst);
    SetVoltage(record, std::string("u") + kLines[i], phase.volts * kRoot3, phase.volts_thd * 0.9,
               network.pst);
    SetCurrent(record, Numbered("i", i), phase.amps, phase.amps_thd);
  }
  SetVoltage(record, "un", 0.8, 40, 0);
  SetCurrent(record, "in", network.phase[0].amps * 0.12, 60);
  for (const char* name : {"f_sampl", "f_200ms", "f_10s"}) {
    Statistic(record, name, network.frequency, kFrequencyNames, 2e-4);
  }
  record->Set("zero_crossings/ZCnum", std::round(network.frequency * kInterval));
  SetPowers(record, network, full);
  SetSymmetry(record, network);
  Statistic(record, "temperature", 31.5, kMinMaxAvg);
}

void SetFullSpectra(RecordBytes* record, const Feeder& network) {
  for (int i = 0; i < kPhases; ++i) {
    const Phase& phase = network.phase[i];
    const std::string phases[] = {Numbered("u", i), std::string("u") + kLines[i]};
    for (const std::string& u : phases) {
      const double volts = u == phases[0] ? phase.volts : phase.volts * kRoot3;
      const auto harmonics = Spectrum(VoltageOrder, volts / 100, 2);
      const auto percent = Spectrum(VoltageOrder, 1, 2);
      record->SetFloats("HARMONICS_U/HARM_U[" + u + "h]", harmonics);
      record->SetFloats("HARMONICS_U/HARM_U[" + u + "hPr]", percent);
      const auto between = Spectrum(VoltageOrder, volts / 4000, 2);
      record->SetFloats("INTER_HARMONICS_U/IHARM_U[" + u + "ih]", between);
    }
    const std::string at = Numbered("", i);
    const auto amps = Spectrum(CurrentOrder, phase.amps / 100, 4);
    record->SetFloats("HARMONICS_I/HARM_I[i" + at + "h]", amps);
    record->SetFloats("HARMONICS_I/HARM_I[i" + at + "hPr]", Spectrum(CurrentOrder, 1, 4));
    record->SetFloats("INTER_HARMONICS_I/IHARM_I[i" + at + "ih]",
                      Spectrum(CurrentOrder, phase.amps / 4000, 4));
    record->SetFloats("POWER_HARMONICS_P/HARM_THD[powerHarmL" + at + "]",
                      Spectrum(CurrentOrder, phase.p / 5000, 2));
  }
}

}  // namespace

RecordBytes FullRecord(const Feeder& network, const Clock& clock, double hour) {
  RecordBytes record(*kGeneral.choice->layouts[0]);
  record.ClearFloats();
  SetCommon(&record, network, true);
  StartFrequencies(&record, clock);
  for (int i = 0; i < kFrequenciesPerRecord; ++i) {
    record.Set(FrequencyPath(i), FeederAt(hour + i / 360.0).frequency);
  }
  SetFullSpectra(&record, network);
  Statistic(&record, "tempBattery", 33.0, kMinMaxAvg);
  Statistic(&record, "voltBattery", 7.4, kMinMaxRms);
  return record;
}

namespace {

RecordBytes CompactRecord(const Feeder& network) {
  constexpr int kCompactHighest = 25, kCompactLowest = 1;
  RecordBytes record(*kGeneral.choice->layouts[1]);
  record.ClearFloats();
  double p = 0, q = 0, s = 0;
  for (int i = 0; i < kPhases; ++i) {
    const Phase& phase = network.phase[i];
    const std::string phases[] = {Numbered("u", i), std::string("u") + kLines[i]};
    for (const std::string& name : phases) {
      const double volts = name == phases[0] ? phase.volts : phase.volts * kRoot3;
      const std::string u = "VOLTAGES/U[" + name + "]/";
      record.Set(u + "rms/rms", volts).Set(u + "thdPr/rms", phase.volts_thd);
      record.Set(u + "Pst/rms", network.pst).Set(u + "Plt/rms", network.pst * 0.9);
      record.Set(u + "Pst1m/rms", network.pst * 1.1);
      record.SetFloats("HARMONICS_U/HARM_U[" + name + "h]",
                       Spectrum(VoltageOrder, volts / 100, 1, kCompactHighest, kCompactLowest));
    }
    const std::string i_path = Numbered("CURRENTS/I[i", i) + "]/";
    record.Set(i_path + "rms/rms", phase.amps).Set(i_path + "thdPr/rms", phase.amps_thd);
    record.SetFloats(Numbered("HARMONICS_I/HARM_I[i", i) + "h]",
                     Spectrum(CurrentOrder, phase.amps / 100, 1, kCompactHighest, kCompactLowest));
    p += phase.p;
    q += phase.q;
    s += phase.s;
  }
  record.Set("CURRENTS/I[in]/rms/rms", network.phase[0].amps * 0.12);
  record.Set("f_200ms/avgA", network.frequency).Set("f_10s/avgA", network.frequency);
  record.Set("pt/COMBINED/Pp/avg", p).Set("pt/COMBINED/Qip/avg", q);
  record.Set("pt/COMBINED/Se/avg", s * 1.005).Set("pt/COMBINED/PFip_e/avgA", p / (s * 1.005));
  return record;
}

RecordBytes StandardRecord(const Feeder& network) {
  RecordBytes record(*kGeneral.choice->layouts[2]);
  record.ClearFloats();
  SetCommon(&record, network, false);
  for (int i = 0; i < kPhases; ++i) {
    const Phase& phase = network.phase[i];
    record.SetFloats(Numbered("HARMONICS_U/HARM_U[u", i) + "h]",
                     Spectrum(VoltageOrder, phase.volts / 100, 1));
    record.SetFloats(Numbered("HARMONICS_I/HARM_I[i", i) + "h]",
                     Spectrum(CurrentOrder, phase.amps / 100, 1));
  }
  return record;
}

RecordingFile GeneralRecording(const UifParams& settings, int records) {
  RecordingFile file(1, &settings);
  Clock clock = ClockAt(4, 0, 0, 0);
  for (int i = 0; i < records; ++i) {
    const double hour = i * kHoursPerRecord;
    const Feeder network = FeederAt(hour);
    RecordBytes record = settings.profile == 0   ? FullRecord(network, clock, hour)
                         : settings.profile == 1 ? CompactRecord(network)
                                                 : StandardRecord(network);
    SetTimes(&record, clock);
    file.Append(record);
    clock.Advance(kInterval);
  }
  return file;
}

}  // namespace

void MakeGeneral(const std::string& folder) {
  UifParams settings = NetworkSettings();
  const char* const names[] = {"R0001GEN.REC", "R0101GEN.REC", "R0201GEN.REC"};
  for (uint32_t profile = 0; profile < 3; ++profile) {
    settings.profile = profile;
    GeneralRecording(settings, kRecordsPerDay).Write(folder, names[profile]);
  }
  // A recording that was started with the wrong connection: the setting file beside it corrects it.
  GeneralRecording(settings, 6).Write(folder, "R0301GEN.REC");
  settings.connection = 4;
  settings.time_last_packet = ClockAt(4, 1, 0, 0).now;
  RecordingFile(4, &settings).Write(folder, "R0301PAR.REC");
}

RecordBytes QualityRecord(const UifParams& settings, const Feeder& network) {
  constexpr int kQualityHighest = 40;
  RecordBytes record(*kVoltageQuality.choice->choose(settings));
  for (int p = 0; p < kPhases; ++p) {
    const Phase& phase = network.phase[p];
    const std::string u = Numbered("VOLTAGES/U[u", p) + "]/";
    record.Set(u + "thd/rms", phase.volts_thd).Set(u + "Pst/rms", network.pst);
    record.SetFloats(Numbered("HARMONICS_U/HARM_U[u", p) + "h]",
                     Spectrum(VoltageOrder, phase.volts / 100, 1, kQualityHighest));
  }
  return record;
}

void MakeVoltageQuality(const std::string& folder) {
  constexpr int kDays = 7;
  const UifParams settings = NetworkSettings();
  RecordingFile file(16, &settings);
  Clock clock = ClockAt(4, 0, 0, 0);
  for (int i = 0; i < kDays * kRecordsPerDay; ++i) {
    RecordBytes record = QualityRecord(settings, FeederAt(i % kRecordsPerDay * kHoursPerRecord));
    clock.Advance(kInterval);
    file.Append(record.SetTime("LAST_TIME", clock.now));
  }
  file.Write(folder, "R0016VQ.REC");
}

void MakeSettingsOnly(const std::string& folder) {
  const UifParams settings = NetworkSettings();
  RecordingFile(4, &settings).Write(folder, "R0004SET.REC");
}

void MakeAverages(const std::string& folder) {
  const UifParams settings = NetworkSettings();
  RecordingFile file(11, &settings);
  RecordBytes record(*kAverages.record);
  record.ClearFloats();
  constexpr struct {
    const char* name;
    double hour;  // of the day, whose values stand for the summary
  } kSummaries[] = {{"REC_AVG", 14}, {"REC_AVG_MAX", 19}, {"REC_AVG_LAST", 24}};
  for (const auto& summary : kSummaries) {
    const Feeder network = FeederAt(summary.hour);
    record.Set(std::string(summary.name) + "/NUM", kRecordsPerDay);
    for (int i = 0; i < kPhases; ++i) {
      const Phase& phase = network.phase[i];
      const std::string line = std::string(summary.name) + Numbered("/L", i) + "/";
      const std::string motor = line + "MOTOR/";
      record.Set(motor + "Ep", phase.p * 24).Set(motor + "Eq", phase.q * 24);
      record.Set(motor + "P", phase.p).Set(motor + "Qi", phase.q);
      record.Set(motor + "Sn", phase.s * phase.amps_thd / 100);
      for (int peak = 0; peak < 3; ++peak) {
        const std::string at = motor + Numbered("MAX_POWER_", peak) + "/";
        record.Set(at + "P", phase.p * (1.3 - 0.05 * peak));
        record.SetTime(at + "DATE_TIME", ClockAt(4, 18 + peak, 10 * i, 0).now);
      }
      if (summary.name != kSummaries[0].name) continue;
      const std::string spectra = line + "HARMONICS/";
      record.Set(spectra + "uhPr/thd", phase.volts_thd).Set(spectra + "ihPr/thd", phase.amps_thd);
      for (int order = 0; order <= kHighestOrder; ++order) {
        const std::string avg = "/avg[" + std::to_string(order) + "]";
        const double volts = VoltageOrder(order), amps = CurrentOrder(order);
        record.Set(spectra + "uhPr" + avg, volts).Set(spectra + "ihPr" + avg, amps);
        record.Set(spectra + "uh" + avg, volts * phase.volts / 100);
        record.Set(spectra + "ih" + avg, amps * phase.amps / 100);
      }
    }
  }
  file.Append(record);
  file.Write(folder, "R0011AVG.REC");
}

}  // namespace quorvex::samples
