// Snapshots and live results: whole documents of every connection, counts and files cut short.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "outline.h"

namespace quorvex::test {
namespace {

const std::string kEnergies = "Ep_p%0 Ep_m%8 Eq_p%16 Eq_m%24 Es_p%32 Es_m%40 ";
const std::string kTotalPower =
    "P:0 Se:12 Sv:8 Sa:20 Q:4 Qa:16 PFe~24 PFv~32 PFa~40 PpFund:48 SpFund:60 SeFund:56 SfundU:64 "
    "QpFund:52 LUfund:100 Pfund:112 QvFund:104 SvFund:68 PFvFund~84 QaFund:108 SaFund:72 "
    "PFaFund~92 tgF~144 PFpFund~76 Ph:116 SeN:132 DeI:120 DeV:124 DeH:128 SeH:136 HP:140 ";
const std::string kPhasePower =
    "P:0 S:4 Q:8 PF~12 Pfund:20 Sfund:28 Qfund:24 DPF~32 Ph:40 Sh:44 Sn:48 Di:52 Dv:56 Dh:60 HP:64 "
    "tgF~68 ";
const std::string kSymmetry =
    "Uo^0 Io^8 Up^16 Ip^24 Um^32 Im^40 SYM_Um:48 SYM_Uo:52 SYM_Im:56 SYM_Io:60 } ";
const std::string kReading = "VALUE:0 PHASE_NUMBER#8 TIME_STAMP!16 } ";

std::string At(size_t at) { return "{ +" + std::to_string(at) + " "; }

// Since the start, running and last.
std::string Periods(const std::string& name, size_t at, size_t step, const std::string& powers,
                    size_t energies) {
  std::string outline;
  for (const char* period : {"", "_CURRENT", "_LAST"}) {
    outline += name + period + At(at) + powers + "+" + std::to_string(at + energies) + " " +
               kEnergies + "} ";
    at += step;
  }
  return outline;
}
std::string Totals(size_t at) { return Periods("POWER_ENERGY_TOTAL", at, 208, kTotalPower, 152); }

// A channel's block with two samples a scope, scaled as ScaledHead() has it; the neutral's own
// range is asked in live results only.
std::string Channel(const std::string& label, size_t at, bool live, bool flicker) {
  const std::string scales[][2] = {{"1.25", "1.25"}, {"2.5", "2.5"}, {"5", "5"}};
  const std::string neutral[] = {"0.625", live ? "20" : "10"};
  const char second = label[1];
  const std::string* scale = second >= '1' && second <= '3' ? scales[second - '1'] : neutral;
  return label + At(at) +
         "UL:4 THD_U:8 THD_U_PR:12 CF_U:16 PEAK_U:20 MAX12_U:24 MIN12_U:28 PHASE_U:32 IL:36 "
         "THD_I:40 THD_I_PR:44 CF_I:48 PEAK_I:52 MAX12_I:56 MIN12_I:60 PHASE_I:64 " +
         (live ? "K:9576 " : "") + "f_sampl:68 f_200ms:72 f_10s:76 SCOPE_U{ @i16/" + scale[0] +
         " v:80*2 } SCOPE_I{ @i16/" + scale[1] + " v:4176*2 } " +
         Periods("POWER_ENERGY", 8272, 144, kPhasePower, 80) +
         "HARM_U{ v:8704*51 } HARM_I{ v:8908*51 } INTER_HARM_U{ v:9112*51 } "
         "INTER_HARM_I{ v:9316*51 } " +
         (flicker ? "FLICKER{ P_INST:9520 P_ST:9524 P_LT:9528 P_ST_1MIN:9532 } " : "") + "} ";
}

constexpr size_t kChannels = 32 + 832 + 4 + 2880;

// By connection code.
const std::vector<std::string> kLabels[] = {{},
                                            {"L1", "N"},
                                            {"L12", "L23", "L31"},
                                            {"L1", "L2", "L3", "N"},
                                            {"L12", "L23", "L31"},
                                            {"L1", "L2", "N"},
                                            {"L1", "INV"},
                                            {"L12", "L23", "L31", "INV"},
                                            {}};

// A snapshot with two samples and two half-cycle readings, and what it gives.
Bytes Snapshot(uint8_t connection) {
  Bytes record = Filled(static_cast<uint32_t>(kChannels + kLabels[connection].size() * 9600));
  return record.Put<int32_t>(20, 2).Put<int32_t>(864, 2).Put(32 + 8 + 160, double{kNone});
}
std::string SnapshotOutline(uint8_t connection) {
  std::string outline = "RECORD_RESULTS{ timeStart!0 timeStep:16 numUsedSamples#24 RESULTS{ +32 " +
                        Totals(8) + "SYM" + At(632) + kSymmetry + "RMS12{ Vrms12" + At(836) +
                        kReading + "Vrms12" + At(868) + kReading + "} TEMP:696 FLAG#824 } ";
  size_t at = kChannels;
  for (const std::string& label : kLabels[connection]) {
    outline += Channel(label, at, false, true);
    at += 9600;
  }
  return outline + "} ";
}

TEST(Snapshots, WholeDocumentsOfEveryConnection) {
  for (uint8_t connection = 0; connection < std::size(kLabels); ++connection) {
    const Bytes snapshot = Snapshot(connection);
    const std::string record = Expected(snapshot, SnapshotOutline(connection));
    Bytes file = ScaledHead(2, connection);
    file.PutBytes(3072, snapshot).PutBytes(file.size(), snapshot).PadTo(file.size() + 31);
    ExpectSame(InRecords(record + record), BodyOf(Converted(file)));
  }
  ExpectTruncationIsHarmless(ScaledHead(2, 1).PutBytes(3072, Snapshot(1)));
}

// One buffer serves all channels and one all snapshots.
TEST(Snapshots, FileCutShortRepeatsEarlierBytes) {
  const Bytes whole = Snapshot(1);
  Bytes cut = Snapshot(0);
  cut.resize(700);
  std::reverse(cut.begin() + 24, cut.end());
  Bytes file = ScaledHead(2, 1);
  file.PutBytes(3072, whole).PutBytes(file.size(), cut);
  Bytes repeated = whole;
  const Bytes neutral(whole.end() - 9600, whole.end());
  repeated.PutBytes(0, cut).PutBytes(kChannels, neutral);
  const std::string outline = SnapshotOutline(1);
  ExpectSame(InRecords(Expected(whole, outline) + Expected(repeated, outline)),
             BodyOf(Converted(file)));
}

TEST(Snapshots, CountsBeyondTheirArrays) {
  const struct {
    uint8_t reduced;
    int32_t count;
    size_t readings, samples;
  } cases[] = {{0, 5000, 90, 2048}, {1, 5000, 330, 2048}, {7, 200, 200, 200}, {0, -1, 0, 0}};
  for (const auto& c : cases) {
    Bytes file = ScaledHead(2, 6);
    file.Put(2568, c.reduced).Put(3072 + 20, c.count).Put(3072 + 864, c.count);
    file.Put(3072 + 24, c.count).PadTo(3072 + 868 + (c.reduced != 0 ? 10560 : 2880) + 2 * 9600);
    const std::string body = BodyOf(Converted(file));
    EXPECT_EQ(c.readings, CountOf(body, "<Vrms12>")) << c.count;
    EXPECT_EQ(4 * c.samples + 8 * 51, CountOf(body, "<v>")) << c.count;
    EXPECT_EQ(1u, CountOf(body, "<RECORD_RESULTS>")) << c.count;
    const std::string shown = "<numUsedSamples>" + std::to_string(c.count) + "<";
    EXPECT_EQ(1u, CountOf(body, shown)) << "the stored number";
  }
}

constexpr size_t kLiveSize = 79392 + 64 + 60;

TEST(LiveResults, WholeDocumentsOfAWyeAndOfInverters) {
  Bytes record = Filled(kLiveSize);
  record.Put<int32_t>(0, 2).Put<int32_t>(67900, 1).Put(8 + 8416 + 120, double{kNone});
  for (const uint8_t connection : {uint8_t{3}, uint8_t{6}, uint8_t{7}}) {
    const bool inverter = connection != 3;
    std::string outline = "UIF_RESULTS{ ";
    size_t at = 8;
    for (const char* label : {"L1", "L2", "L3", inverter ? "INV" : "N", "L12", "L23", "L31"}) {
      outline += Channel(label, at, true, !inverter);
      at += 9600;
    }
    outline += Totals(67208) + "SYM" + At(67832) + kSymmetry + "RMS12{ Vrms12" + At(67904) +
               kReading +
               "} TIME_START!78528 TIME_STEP:78548 numUsedSamples#0 TEMP:67896 FLAG#78584 "
               "CONNECTION_CHECK{ +79456 Ua#0 Ub#4 Uc#8 Ia#12 Ib#16 Ic#20 PhA#28 Phb#32 PhC#36 "
               "Useq#24 freq#40 results#44 Uinv#48 Iinv#52 Pinv#56 } ";
    if (inverter) {
      outline +=
          "INVERTER{ +28808 Urms:4 Udc:9584 Uac:9580 Irms:36 Idc:9592 Iac:9588 P:8400 "
          "Pdc:8408 Sac:8404 eff:8412 rf:9596 } ";
    }
    Bytes file = ScaledHead(6, connection);
    file.Put<uint8_t>(2568, inverter ? 2 : 0).PutBytes(3072, record);
    ExpectSame(Expected(record, outline + "}"), BodyOf(Converted(file)));
  }
}

TEST(LiveResults, CountsBeyondTheirArraysAndFilesCutShort) {
  Bytes file = ScaledHead(6, 1);
  file.Put<int32_t>(3072, 1 << 30).Put<int32_t>(3072 + 67900, 1 << 30).PadTo(3072 + kLiveSize);
  const std::string body = BodyOf(Converted(file));
  EXPECT_EQ(7u * (2 * 2048 + 4 * 51), CountOf(body, "<v>"));
  EXPECT_EQ(330u, CountOf(body, "<Vrms12>"));
  EXPECT_EQ(1u, CountOf(body, "<numUsedSamples>1073741824<"));
  ExpectTruncationIsHarmless(ScaledHead(6, 7).PadTo(3072 + kLiveSize));
}

}  // namespace
}  // namespace quorvex::test
