// Snapshots and live results of a loaded network.
#include <algorithm>
#include <cmath>

#include "events.h"
#include "records/channel_groups.h"
#include "records/channels.h"
#include "records/record_types.h"

namespace quorvex::samples {
namespace {

constexpr int kScopeSamples = 800;
constexpr double kTimeStep = 1e-4;  // 200 samples a cycle
constexpr int kHalfCycleReadings = 30;

void SetTyped(RecordBytes* to, const std::string& at, double value) {
  to->Set(at + "/value", value).Set(at + "/type", value < 0 ? 2 : 1);
}

void SetEnergies(RecordBytes* to, const std::string& at, double p, double q, double s,
                 double hours) {
  to->Set(at + "Ep_p", p * hours).Set(at + "Eq_p", q * hours).Set(at + "Es_p", s * hours);
  to->Set(at + "Ep_m", 0).Set(at + "Eq_m", 0).Set(at + "Es_m", 0);
}

void SetPhasePower(RecordBytes* to, const std::string& at, const Powers& w, double hours) {
  const double harmonic_p = w.p - w.p1;
  const double nonfundamental = std::sqrt(std::max(0.0, w.s * w.s - w.s1 * w.s1));
  to->Set(at + "P", w.p).Set(at + "S", w.s).Set(at + "Q", w.q);
  to->Set(at + "Pfund", w.p1).Set(at + "Sfund", w.s1).Set(at + "Qfund", w.q1);
  to->Set(at + "Ph", harmonic_p).Set(at + "Sh", w.sh).Set(at + "Sn", nonfundamental);
  to->Set(at + "Di", w.di).Set(at + "Dv", w.dv);
  to->Set(at + "Dh", std::sqrt(std::max(0.0, w.sh * w.sh - harmonic_p * harmonic_p)));
  to->Set(at + "HP", w.s1 > 0 ? nonfundamental / w.s1 : 0);
  SetTyped(to, at + "PF", w.s > 0 ? w.p / w.s : 1);
  SetTyped(to, at + "DPF", w.s1 > 0 ? w.p1 / w.s1 : 1);
  SetTyped(to, at + "tgF", w.p1 != 0 ? w.q1 / w.p1 : 0);
  SetEnergies(to, at, w.p, w.q1, w.s, hours);
}

void SetQuantity(RecordBytes* to, const std::string& at, const std::string& name, const Wave& wave,
                 float scale) {
  const double fundamental = std::abs(wave.order[1]);
  const double rms = wave.Rms();
  to->Set(at + name + "L", rms).Set(at + "THD_" + name, wave.DistortionRms());
  if (fundamental > 0) {
    to->Set(at + "THD_" + name + "_PR", 100 * wave.DistortionRms() / fundamental);
    to->Set(at + "PHASE_" + name, Degrees(wave.order[1]));
  }
  to->Set(at + "CF_" + name, wave.Peak() / rms).Set(at + "PEAK_" + name, wave.Peak());
  to->Set(at + "MAX12_" + name, rms * 1.002).Set(at + "MIN12_" + name, rms * 0.998);
  const std::string harmonics = at + "HARM_" + name;
  const std::string interharmonics = at + "INTER_HARM_" + name;
  const std::string scope = at + "SCOPE_" + name;
  const auto value = [](const std::string& array, int i) {
    return array + "/v[" + std::to_string(i) + "]";
  };
  for (int k = 0; k < kOrders; ++k) {
    to->Set(value(harmonics, k), std::abs(wave.order[k])).Set(value(interharmonics, k), 0);
  }
  for (int i = 0; i < kScopeSamples; ++i) {
    to->Set(value(scope, i), RawSample(wave.At(i * kTimeStep), scale));
  }
}

// `at` is the path of the channel, ending in '/', or empty.
void SetChannel(RecordBytes* to, const std::string& at, const Channel& channel, const float* scales,
                double hours) {
  SetQuantity(to, at, "U", channel.u, scales[0]);
  SetQuantity(to, at, "I", channel.i, scales[1]);
  to->Set(at + "f_sampl", 1 / kTimeStep).Set(at + "f_200ms", kFrequency);
  to->Set(at + "f_10s", kFrequency);
  const Powers powers(channel);
  SetPhasePower(to, at + "POWER_ENERGY/", powers, hours);
  SetPhasePower(to, at + "POWER_ENERGY_CURRENT/", powers, 0.1);
  SetPhasePower(to, at + "POWER_ENERGY_LAST/", powers, 1);
  to->Set(at + "FLICKER/P_INST", 0.21).Set(at + "FLICKER/P_ST", 0.34);
  to->Set(at + "FLICKER/P_LT", 0.36).Set(at + "FLICKER/P_ST_1MIN", 0.31);
}

void SetSequences(RecordBytes* to, const std::string& at, const std::string& name,
                  const Phasor* phases) {
  const Phasor turn = Polar(1, 120);
  const Phasor zero = (phases[0] + phases[1] + phases[2]) / 3.0;
  const Phasor positive = (phases[0] + turn * phases[1] + turn * turn * phases[2]) / 3.0;
  const Phasor negative = (phases[0] + turn * turn * phases[1] + turn * phases[2]) / 3.0;
  const auto set = [&](const std::string& sequence, Phasor value) {
    to->Set(at + name + sequence + "/A", std::abs(value));
    to->Set(at + name + sequence + "/phase", Degrees(value));
  };
  set("o", zero);
  set("p", positive);
  set("m", negative);
  to->Set(at + "SYM_" + name + "m", 100 * std::abs(negative) / std::abs(positive));
  to->Set(at + "SYM_" + name + "o", 100 * std::abs(zero) / std::abs(positive));
}

// Of the three phases together; the network has no distortion of its voltages.
void SetTotalPower(RecordBytes* to, const std::string& at, const Network& network, double hours) {
  double p = 0, q = 0, q1 = 0, sa = 0, sa1 = 0, di = 0, uu = 0, ii = 0, ii1 = 0;
  for (int phase = 0; phase < 3; ++phase) {
    const Channel& channel = network.channel[phase];
    const Powers w(channel);
    p += w.p, q += w.q, q1 += w.q1, sa += w.s, sa1 += w.s1, di += w.di;
    uu += std::norm(channel.u.order[1]);
    ii += channel.i.Rms() * channel.i.Rms();
    ii1 += std::norm(channel.i.order[1]);
  }
  const double se = std::sqrt(uu * ii);
  const double se1 = std::sqrt(uu * ii1);
  const double sv1 = std::hypot(p, q1);
  const double unbalanced = std::sqrt(std::max(0.0, se1 * se1 - sv1 * sv1));
  const double nonfundamental = std::sqrt(se * se - se1 * se1);
  to->Set(at + "P", p).Set(at + "Se", se).Set(at + "Sv", std::hypot(p, q)).Set(at + "Sa", sa);
  to->Set(at + "Q", q).Set(at + "Qa", std::sqrt(sa * sa - p * p));
  to->Set(at + "PpFund", p).Set(at + "SpFund", sv1).Set(at + "SeFund", se1);
  to->Set(at + "SfundU", unbalanced).Set(at + "QpFund", q1).Set(at + "LUfund", unbalanced / sv1);
  to->Set(at + "Pfund", p).Set(at + "QvFund", q1).Set(at + "SvFund", sv1);
  to->Set(at + "QaFund", std::sqrt(sa1 * sa1 - p * p)).Set(at + "SaFund", sa1);
  to->Set(at + "SeN", nonfundamental).Set(at + "DeI", nonfundamental).Set(at + "DeV", 0);
  to->Set(at + "HP", nonfundamental / se1);
  SetTyped(to, at + "PFe", p / se);
  SetTyped(to, at + "PFv", p / std::hypot(p, q));
  SetTyped(to, at + "PFa", p / sa);
  SetTyped(to, at + "PFvFund", p / sv1);
  SetTyped(to, at + "PFaFund", p / sa1);
  SetTyped(to, at + "PFpFund", p / sv1);
  SetTyped(to, at + "tgF", q1 / p);
  SetEnergies(to, at, p, q1, se, hours);
}

// What stands beside the channels, under the element `at` (or the record itself).
void SetTotals(RecordBytes* to, const std::string& at, const Network& network, Clock clock,
               double hours) {
  SetTotalPower(to, at + "POWER_ENERGY_TOTAL/", network, hours);
  SetTotalPower(to, at + "POWER_ENERGY_TOTAL_CURRENT/", network, 0.1);
  SetTotalPower(to, at + "POWER_ENERGY_TOTAL_LAST/", network, 1);
  Phasor volts[3], amperes[3];
  for (int phase = 0; phase < 3; ++phase) {
    volts[phase] = network.channel[phase].u.order[1];
    amperes[phase] = network.channel[phase].i.order[1];
  }
  SetSequences(to, at + "SYM/", "U", volts);
  SetSequences(to, at + "SYM/", "I", amperes);
  for (int i = 0; i < kHalfCycleReadings; ++i) {
    const std::string reading = at + "RMS12/Vrms12[" + std::to_string(i) + "]/";
    to->Set(reading + "VALUE", std::abs(volts[i % 3]) + 0.1 * std::sin(i * 1.3));
    to->Set(reading + "PHASE_NUMBER", i % 3 + 1).SetTime(reading + "TIME_STAMP", clock.now);
    if (i % 3 == 2) clock.Advance(0.01);
  }
  to->SetCount(at + "RMS12/Vrms12", kHalfCycleReadings).Set(at + "TEMP", 31.5);
}

void SetInverter(RecordBytes* to, const Channel& input) {
  const double dc_watts = input.u.order[0].real() * input.i.order[0].real();
  to->Set("INVERTER/Udc", input.u.order[0].real()).Set("INVERTER/Uac", input.u.DistortionRms());
  to->Set("INVERTER/Idc", input.i.order[0].real()).Set("INVERTER/Iac", input.i.DistortionRms());
  to->Set("INVERTER/P", Powers(input).p).Set("INVERTER/Pdc", dc_watts);
  to->Set("INVERTER/Sac", input.u.DistortionRms() * input.i.DistortionRms());
  to->Set("INVERTER/eff", kInverterEfficiency);
  to->Set("INVERTER/rf", input.u.DistortionRms() / input.u.order[0].real());
}

void MakeLive(const std::string& folder, const std::string& name, uint8_t connection) {
  const UifParams settings = WaveformSettings(connection);
  float scales[2 * kMeasuredChannels];
  SampleScales(settings, NeutralRange::kOwn, scales);
  const Network network = LoadedNetwork(42);
  const Clock clock = ClockAt(4, 10, 20, 0);

  RecordBytes record(*kLiveResults.record);
  record.ClearFloats();
  const char* fourth = connection == 7 ? "INV" : "N";
  for (const std::string label : {"L1", "L2", "L3", fourth, "L12", "L23", "L31"}) {
    const int pair = 2 * ChannelOf(label.c_str());
    SetChannel(&record, label + "/", ChannelOfNetwork(network, label), scales + pair, 10);
    record.Set(label + "/K", 1.6);
  }
  SetTotals(&record, "", network, clock, 10);
  record.SetTime("TIME_START", clock.now).Set("TIME_STEP", kTimeStep);
  record.Set("numUsedSamples", kScopeSamples).Set("FLAG", 1).Set("CONNECTION_CHECK/freq", 1);
  if (connection == 7) SetInverter(&record, network.inverter);
  RecordingFile(6, &settings).Append(record).Write(folder, name);
}

}  // namespace

void AppendSnapshot(const UifParams& settings, const Network& network, const Clock& clock,
                    double hours, RecordingFile* file) {
  float scales[2 * kMeasuredChannels];
  SampleScales(settings, NeutralRange::kOfPhases, scales);
  RecordBytes record(*kSnapshots.record);
  record.ClearFloats().SetTime("timeStart", clock.now).Set("timeStep", kTimeStep);
  record.Set("numUsedSamples", kScopeSamples).SetRaw(kScopeCountAt, kScopeSamples);
  SetTotals(&record, "RESULTS/", network, clock, hours);
  const uint32_t list = Rms12ListSize(kRms12LongRoom) - Rms12ListSize(kRms12Room);
  file->Append(record.bytes().data(), record.bytes().size() - list);
  for (const std::string label : {"L1", "L2", "L3", "N"}) {
    RecordBytes block(kSnapshotChannel);
    const int pair = 2 * ChannelOf(label.c_str());
    block.ClearFloats();
    SetChannel(&block, "", ChannelOfNetwork(network, label), scales + pair, hours);
    file->Append(block);
  }
}

// The load grows from one snapshot to the next.
void MakeSnapshots(const std::string& folder) {
  const UifParams settings = WaveformSettings(3);
  RecordingFile file(2, &settings);
  for (int snapshot = 0; snapshot < 3; ++snapshot) {
    AppendSnapshot(settings, LoadedNetwork(30 + 12 * snapshot), ClockAt(4, 10, 10 * snapshot, 5),
                   10 + snapshot / 6.0, &file);
  }
  file.Write(folder, "R0002SNP.REC");
}

void MakeLiveResults(const std::string& folder) {
  MakeLive(folder, "R0006LIV.REC", 3);
  MakeLive(folder, "R0016INV.REC", 7);
}

}  // namespace quorvex::samples
