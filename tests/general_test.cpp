// General recordings: whole records of each layout against a second writer, then ranges, progress
// and setting files.
#include <gtest/gtest.h>

#include <cmath>

#include "outline.h"
#include "support/memory.h"

namespace quorvex::test {
namespace {

constexpr uint32_t kFull = 40448, kCompact = 1536, kStandard = 4608;

struct Settings {
  uint32_t profile = 0;
  uint8_t connection = 3;
  uint8_t reduced = 0;
};

Bytes Recording(const Settings& settings, std::initializer_list<Bytes> records = {}) {
  Bytes file = HeadOf(1);
  file.Put(8 + 976, settings.profile).Put(8 + 13, settings.connection);
  file.Put(8 + 2560, settings.reduced);
  for (const Bytes& record : records) file.PutBytes(file.size(), record);
  return file;
}

// Outlines of the groups and of the three records.

std::string VoltagesAndCurrents(bool reduced) {
  const std::string flicker =
      "@f Pst{ min:60 max:64 rms:68 flag#168 } Plt{ min:76 max:80 rms:84 flag#172 } "
      "Pst1m{ min:92 max:96 rms:100 flag#176 } SIGNALING{ @mma SIGNAL1:108 SIGNAL2:120 } "
      "SIGNALING_3s{ SIGNAL1{ IN#144 OUT#148 } SIGNAL2{ IN#152 OUT#156 } } ";
  const std::string voltage = "@mmr rms:0 @mr thd:16 thdPr:24 tdd:32 tddPr:40 @mma cf:48 " +
                              (reduced ? "" : flicker) +
                              "UNDER_OVER_VOLTAGE{ @f under:160 over:164 }";
  return "START_TIME!24 LAST_TIME!56 VOLTAGES{ " +
         Each("U", "u1 u2 u3 un u12 u23 u31", 72, 180, voltage) + "} CURRENTS{ " +
         Each("I", "i1 i2 i3 in", 1332, 128,
              "@mmrA rms:0 @mrA thd:20 thdPr:36 tdd:52 tddPr:68 @6 cf:84 @mmrA k:108") +
         "} @freq f_sampl:1844 f_200ms:1868 f_10s:1892 ";
}

const std::string kFullPhase =
    "@6 COMBINED{ Pp:0 Pm:24 Qip:48 Qim:72 Qcp:96 Qcm:120 S:240 PFip:528 PFim:552 PFcp:576 "
    "PFcm:600 "
    "} FUNDAMENTAL{ Pp:336 Pm:360 Qip:144 Qim:168 Qcp:192 Qcm:216 S:264 DPFip:624 DPFim:648 "
    "DPFcp:672 DPFcm:696 tgFip:720 tgFim:744 tgFcp:768 tgFcm:792 } HARMONIC{ Pp:384 Pm:408 Sn:288 "
    "Sh:312 Di:432 Dv:456 Dh:480 HP:504 } ENERGY{ @f EPp:816 EPm:820 EQp:824 EQm:828 }";
const std::string kFullTotal =
    "pt{ +10440 @6 COMBINED{ Pp:0 Pm:24 Qip:48 Qim:72 Qcp:96 Qcm:120 Qa:1416 Sv:144 Sa:1392 Se:168 "
    "PFip_e:624 PFim_e:648 PFcp_e:672 PFcm_e:696 PFip_v:720 PFim_v:744 PFcp_v:768 PFcm_v:792 "
    "PFip_a:912 PFim_a:936 PFcp_a:960 PFcm_a:984 } FUNDAMENTAL{ Pp_p:432 Pm_p:456 Pp_fund:1512 "
    "Pm_fund:1536 Qip_p:312 Qim_p:336 Qcp_p:360 Qcm_p:384 Qip_v:1296 Qim_v:1320 Qcp_v:1344 "
    "Qcm_v:1368 QaFund:1488 Se:192 SvFund:1440 SaFund:1464 Sp:216 Su:240 LU:408 PFip_p:816 "
    "PFim_p:840 PFcp_p:864 PFcm_p:888 PFip_vFund:1008 PFim_vFund:1032 PFcp_vFund:1056 "
    "PFcm_vFund:1080 PFip_aFund:1104 PFim_aFund:1128 PFcp_aFund:1152 PFcm_aFund:1176 tgFip:1200 "
    "tgFim:1224 tgFcp:1248 tgFcm:1272 } HARMONIC{ Pp:480 Pm:504 DeI:528 DeV:552 DeH:576 HP:600 "
    "SeN:264 SeH:288 } ENERGY{ @f EPp:1560 EPm:1564 EQp:1568 EQm:1572 } } ";
const std::string kStandardPhase =
    "COMBINED{ @avg* Pp:0 Pm:1 Qip:2 Qim:3 Qcp:4 Qcm:5 S:10 @avgA* PFip:22 PFim:24 PFcp:26 PFcm:28 "
    "} "
    "FUNDAMENTAL{ @avg* Pp:14 Pm:15 Qip:6 Qim:7 Qcp:8 Qcm:9 S:11 @avgA* DPFip:30 DPFim:32 DPFcp:34 "
    "DPFcm:36 tgFip:38 tgFim:40 tgFcp:42 tgFcm:44 } HARMONIC{ @avg* Pp:16 Pm:17 Sn:12 Sh:13 Di:18 "
    "Dv:19 Dh:20 HP:21 } ENERGY{ @f* EPp:46 EPm:47 EQp:48 EQm:49 }";
const std::string kStandardTotal =
    "pt{ +2516 COMBINED{ @avg* Pp:0 Pm:1 Qip:2 Qim:3 Qcp:4 Qcm:5 Qa:87 Sv:6 Sa:86 Se:7 @avgA* "
    "PFip_e:26 PFim_e:28 PFcp_e:30 PFcm_e:32 PFip_v:34 PFim_v:36 PFcp_v:38 PFcm_v:40 PFip_a:50 "
    "PFim_a:52 PFcp_a:54 PFcm_a:56 } FUNDAMENTAL{ @avg* Pp_p:18 Pm_p:19 Pp_fund:91 Pm_fund:92 "
    "Qip_p:13 Qim_p:14 Qcp_p:15 Qcm_p:16 Qip_v:82 Qim_v:83 Qcp_v:84 Qcm_v:85 QaFund:90 SvFund:88 "
    "SaFund:89 Se:8 Sp:9 Su:10 LU:17 @avgA* PFip_p:42 PFim_p:44 PFcp_p:46 PFcm_p:48 PFip_vFund:58 "
    "PFim_vFund:60 PFcp_vFund:62 PFcm_vFund:64 PFip_aFund:66 PFim_aFund:68 PFcp_aFund:70 "
    "PFcm_aFund:72 tgFip:74 tgFim:76 tgFcp:78 tgFcm:80 } HARMONIC{ @avg* Pp:20 Pm:21 DeI:22 DeV:23 "
    "DeH:24 HP:25 SeN:11 SeH:12 } ENERGY{ @f* EPp:93 EPm:94 EQp:95 EQm:96 } } ";
const std::string kSymmetry =
    "@mmr Up:36 Um:72 Uo:0 @mmrA Ip:52 Im:88 Io:16 @mmr um:108 u0:124 @mmrA im:140 i0:160 } ";
const std::string kInterharmonics =
    "INTER_HARMONICS_U{ @IHARM_U/51,2,2 u1ih:24456 u2ih:24864 u3ih:25272 unih:25680 u12ih:34248 "
    "u23ih:34656 u31ih:35064 u1ihPr:26088 u2ihPr:26496 u3ihPr:26904 unihPr:27312 u12ihPr:35472 "
    "u23ihPr:35880 u31ihPr:36288 } INTER_HARMONICS_I{ @IHARM_I/51,4,3 i1ih:27720 i2ih:28536 "
    "i3ih:29352 inih:30168 i1ihPr:30984 i2ihPr:31800 i3ihPr:32616 inihPr:33432 } ";

std::string FullRecord(const Settings& s) {
  const bool inverter = s.connection == 6 || s.connection == 7;
  return "RECORD_RESULTS{ " + VoltagesAndCurrents(s.reduced != 0) +
         "freq10s{ timeFirst!1920 freqs{ @f freq:1940 flag#4940 freq:1944 flag#4944 } } "
         "zero_crossings{ ZCnum#12208 } PHASE_POWERS{ " +
         Each("P", "p1 p2 p3", 7944, 832, kFullPhase) + "} " + kFullTotal +
         "HARMONICS_U{ @HARM_U/51,2,2 u1h:12216 u2h:12624 u3h:13032 unh:13440 u1hPr:13848 "
         "u2hPr:14256 u3hPr:14664 unhPr:15072 u12h:22008 u23h:22416 u31h:22824 u12hPr:23232 "
         "u23hPr:23640 u31hPr:24048 } HARMONICS_I{ @HARM_I/51,4,3 i1h:15480 i2h:16296 i3h:17112 "
         "inh:17928 i1hPr:18744 i2hPr:19560 i3hPr:20376 inhPr:21192 } " +
         (s.reduced != 0 ? "" : kInterharmonics) +
         "@HARM_THD/51,2,1 POWER_HARMONICS_P{ powerHarmL1:37032 powerHarmL2:37848 "
         "powerHarmL3:38664 "
         "powerHarmN:39480 } POWER_HARMONICS_M{ powerHarmL1:37440 powerHarmL2:38256 "
         "powerHarmL3:39072 powerHarmN:39888 } sym{ +12016 " +
         kSymmetry + "@mma temperature:12196 tempBattery:36704 @mmr voltBattery:36716 " +
         "flag{ #36696 } " +
         (inverter ? "inverter{ +36732 @mma Urms:0 Udc:12 Uac:24 @6 Irms:36 Idc:60 Iac:84 Pp:108 "
                     "Pm:132 Pdcp:156 Pdcm:180 Sacp:204 Sacm:228 efficiency:252 rf:276 "
                     "+0 ENERGY{ +8776 @f EPp:816 EPm:820 } } "
                   : "") +
         "}";
}

std::string StandardRecord(const Settings& s) {
  const bool inverter = s.connection == 6 || s.connection == 7;
  const bool lines = s.connection == 2 || s.connection == 4;
  return "RECORD_RESULTS{ " + VoltagesAndCurrents(s.reduced != 0) +
         "zero_crossings{ ZCnum#3096 } PHASE_POWERS{ " +
         Each("P", "p1 p2 p3", 1916, 200, kStandardPhase) + "} " + kStandardTotal +
         "HARMONICS_U{ @HARM_U/51,1,1 " +
         (lines ? "u12h:3104 u23h:3308 u31h:3512" : "u1h:3104 u2h:3308 u3h:3512") +
         " } HARMONICS_I{ @HARM_I/51,1,1 i1h:3716 i2h:3920 i3h:4124 inh:4328 } sym{ +2904 " +
         kSymmetry + "@mma temperature:3084 flag{ #4532 } " +
         (inverter ? "inverter{ +4540 @avg* Urms:0 Udc:1 Uac:2 Irms:3 Idc:4 Iac:5 Pp:6 Pm:7 Pdcp:8 "
                     "Pdcm:9 Sacp:10 Sacm:11 efficiency:12 rf:13 "
                     "+0 ENERGY{ +2116 @f* EPp:46 EPm:47 } } "
                   : "") +
         "}";
}

const std::string kCompactRecord =
    "RECORD_RESULTS{ START_TIME!24 LAST_TIME!56 VOLTAGES{ "
    "@rms U[u1]{ rms:72 thdPr:204 Pst:112 Plt:116 Pst1m:120 } "
    "U[u2]{ rms:76 thdPr:208 Pst:124 Plt:128 Pst1m:132 } "
    "U[u3]{ rms:80 thdPr:212 Pst:136 Plt:140 Pst1m:144 } "
    "U[u12]{ rms:84 thdPr:216 Pst:148 Plt:152 Pst1m:156 } "
    "U[u23]{ rms:88 thdPr:220 Pst:160 Plt:164 Pst1m:168 } "
    "U[u31]{ rms:92 thdPr:224 Pst:172 Plt:176 Pst1m:180 } } "
    "CURRENTS{ @rms I[i1]{ rms:96 thdPr:228 } I[i2]{ rms:100 thdPr:232 } I[i3]{ rms:104 thdPr:236 "
    "} "
    "I[in]{ rms:108 thdPr{ rms=- } } } @avgA f_200ms:196 f_10s:200 "
    "pt{ COMBINED{ @avg Pp:240 Pm:244 Qip:248 Qim:256 Qcp:260 Qcm:252 Se:264 @avgA PFip_e:284 "
    "PFcp_e:308 } } "
    "HARMONICS_U{ @HARM_U/51,1,1 u1h:316 u2h:416 u3h:516 u12h:616 u23h:716 u31h:816 } "
    "HARMONICS_I{ @HARM_I/51,1,1 i1h:916 i2h:1016 i3h:1116 } }";

TEST(General, WholeRecordsOfEachLayoutAndConnection) {
  const Bytes full = Filled(kFull).Put<int32_t>(1936, 2), compact = Filled(kCompact);
  const Bytes standard = Filled(kStandard);
  for (uint8_t connection = 0; connection <= 8; ++connection) {
    for (const uint8_t reduced : {uint8_t{0}, uint8_t{2}}) {
      for (const uint32_t profile : {0u, 1u, 2u, 5u}) {
        const Settings s = {profile, connection, reduced};
        const Bytes& record = profile == 0 ? full : profile == 1 ? compact : standard;
        const std::string outline = profile == 0   ? FullRecord(s)
                                    : profile == 1 ? kCompactRecord
                                                   : StandardRecord(s);
        ExpectSame(InRecords(Expected(record, outline)), BodyOf(Converted(Recording(s, {record}))));
        ASSERT_FALSE(HasFailure()) << profile << ' ' << int{connection} << ' ' << int{reduced};
      }
    }
  }
  ExpectTruncationIsHarmless(Recording({1}, {compact}));
}

// No value is infinity (00 00 80 7F), a zero of either sign stays as it is; a current's fourth
// float is left out.
TEST(General, SpectraInBase64) {
  Bytes record;
  record.Put(12216, kNone).Put(12220, 0.5f).Put(12224, -0.0f).Put(15480 + 12, 9.0f);
  record.Put(15480 + 16, 0.5f);
  const std::string document = Converted(Recording({0}, {record.PadTo(kFull)}));
  EXPECT_EQ(1u, CountOf(document, "<HARM_U phase=\"u1h\">\r\nAACAfwAAAD8AAACAAAAAAAAA"));
  EXPECT_EQ(1u, CountOf(document, "<HARM_I phase=\"i1h\">\r\nAAAAAAAAAAAAAAAAAAAAPwAA"));
}

TEST(General, TenSecondFrequencies) {
  const struct {
    int32_t stored;
    size_t written;
  } cases[] = {{INT32_MIN, 0}, {-1, 0}, {0, 0}, {1, 1}, {750, 750}, {751, 750}, {1000, 750}};
  for (const auto& c : cases) {
    Bytes record;
    record.Put(1936, c.stored).PadTo(kFull);
    const std::string text = Converted(Recording({0}, {record}));
    EXPECT_EQ(c.written, CountOf(text, "<freq>")) << c.stored;
    EXPECT_EQ(c.written == 0, text.find("<freq10s>\r\n</freq10s>\r\n") != std::string::npos);
  }
}

std::vector<float> fractions;
size_t stop_after = SIZE_MAX;
int32_t OnProgress(float fraction) {
  fractions.push_back(fraction);
  return fractions.size() >= stop_after ? -1 : 0;
}

// The RMS voltages of the records that a range writes; each record's tells its number.
std::string ConvertedRange(const Bytes& file, uint32_t first, uint32_t last, bool progress) {
  const std::string input = InFolder("R0007X.REC"), output = InFolder("range.xml");
  WriteFile(input, file);
  fractions.clear();
  const uint32_t before = TrackedBytes();
  QuorvexConvertPerPartes(input.c_str(), output.c_str(), first, last,
                          progress ? OnProgress : nullptr);
  EXPECT_EQ(before, TrackedBytes());
  std::string numbers;
  const std::string records = ReadFile(output);
  const std::string tag = "<U phase=\"u1\">\r\n<rms>\r\n<rms>";
  for (size_t at = 0; (at = records.find(tag, at)) != std::string::npos;) {
    at += tag.size();
    numbers += records[at];
  }
  return numbers;
}

Bytes NumberedRecord(int number) {
  Bytes record;
  return record.Put(72, static_cast<float>(number)).PadTo(kCompact);
}

TEST(General, Ranges) {
  const Bytes file = Recording({1}, {NumberedRecord(1), NumberedRecord(2), NumberedRecord(3),
                                     Bytes(kCompact - 1)});  // and one cut short
  const float infinite = INFINITY, part = 1.0f / 4.0f;
  const struct {
    uint32_t first, last;
    const char* records;
    std::vector<float> progress;
  } cases[] = {
      {1, 0xFFFFFFFF, "123", {part, 2 * part, 3 * part}},  // the file counts as four
      {2, 3, "23", {0.5f, 1.0f}},
      {2, 2, "2", {1.0f}},
      {3, 9, "3", {part}},
      {3, 2, "3", {infinite}},  // the first is converted before the range is looked at
      {4, 9, "", {}},
      {0, 3, "", {}},
      {0x80000000, 0xFFFFFFFF, "", {}},
      {(1u << 23) + 1, 1u << 23, "1", {infinite}},  // 2^23 records are 3 * 2^32 bytes: back to 0
      {(1u << 23) + 2, (1u << 23) + 3, "23", {0.5f, 1.0f}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.records, ConvertedRange(file, c.first, c.last, true)) << c.first << '-' << c.last;
    EXPECT_EQ(c.progress, fractions) << c.first << '-' << c.last;
  }
  stop_after = 2;
  EXPECT_EQ("12", ConvertedRange(file, 1, 0xFFFFFFFF, true)) << "stopped behind the second";
  stop_after = SIZE_MAX;
}

TEST(General, ProfilesWithoutALayout) {
  for (const uint32_t profile : {3u, 4u, 6u, 0xFFFFFFFFu}) {
    const Bytes file = Recording({profile}, {NumberedRecord(1)});
    EXPECT_EQ("", ConvertedRange(file, 1, 0xFFFFFFFF, false));
    EXPECT_EQ("", ConvertedRange(file, 2, 6, true));
    // The last index stands for the record size: (4608 - 3072) / 6 rounds to 256, the range is 5.
    EXPECT_EQ(std::vector<float>({0.2f, 0.4f, 0.6f, 0.8f, 1.0f}), fractions);
    stop_after = 3;
    ConvertedRange(file, 1, 0xFFFFFFFF, true);
    EXPECT_EQ(3u, fractions.size());
    stop_after = SIZE_MAX;
  }
}

}  // namespace
}  // namespace quorvex::test
