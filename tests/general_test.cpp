// General recordings: whole records of each layout against a second writer, then ranges, progress
// and setting files.
#include <gtest/gtest.h>

#include <cmath>

#include "model.h"
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

std::string RecordsOf(const std::string& document) {
  const std::string body = BodyOf(document);
  const std::string open = "<RECORDS>\r\n", close = "</RECORDS>\r\n";
  EXPECT_EQ(open, body.substr(0, open.size()));
  EXPECT_EQ(close, body.substr(body.size() - close.size()));
  return body.substr(open.size(), body.size() - open.size() - close.size());
}

void Voltages(Model* m, bool reduced) {
  m->Open("VOLTAGES");
  uint32_t at = 72;
  for (const char* phase : {"u1", "u2", "u3", "un", "u12", "u23", "u31"}) {
    m->Open("U", phase).List("rms 0", kMinMaxRms, at);
    m->List("thd 16, thdPr 24, tdd 32, tddPr 40", kMaxRms, at).List("cf 48", kMinMaxAvg, at);
    if (!reduced) {
      for (const auto& [name, place] : Pairs("Pst 60, Plt 76, Pst1m 92")) {
        m->Open(name);
        for (const auto& [v, offset] : Pairs(kMinMaxRms)) m->Float(v, at + place + offset);
        m->Whole("flag", at + (name == "Pst" ? 168 : name == "Plt" ? 172 : 176)).Close(name);
      }
      m->Open("SIGNALING").List("SIGNAL1 108, SIGNAL2 120", kMinMaxAvg, at).Close("SIGNALING");
      m->Open("SIGNALING_3s").Open("SIGNAL1").Whole("IN", at + 144).Whole("OUT", at + 148);
      m->Close("SIGNAL1").Open("SIGNAL2").Whole("IN", at + 152).Whole("OUT", at + 156);
      m->Close("SIGNAL2").Close("SIGNALING_3s");
    }
    m->Open("UNDER_OVER_VOLTAGE").Float("under", at + 160).Float("over", at + 164);
    m->Close("UNDER_OVER_VOLTAGE").Close("U");
    at += 180;
  }
  m->Close("VOLTAGES");
}

void CurrentsAndFrequencies(Model* m) {
  m->Open("CURRENTS");
  uint32_t at = 1332;
  for (const char* phase : {"i1", "i2", "i3", "in"}) {
    m->Open("I", phase).List("rms 0", kMinMaxRmsA, at);
    m->List("thd 20, thdPr 36, tdd 52, tddPr 68", kMaxRmsA, at);
    m->List("cf 84", kSix, at).List("k 108", kMinMaxRmsA, at).Close("I");
    at += 128;
  }
  m->Close("CURRENTS");
  m->List("f_sampl 1844, f_200ms 1868, f_10s 1892", "min 0, max 4, avgA 16");
}

void Energy(Model* m, uint32_t at) {
  m->Open("ENERGY").Float("EPp", at).Float("EPm", at + 4);
  m->Float("EQp", at + 8).Float("EQm", at + 12).Close("ENERGY");
}

void FullPowers(Model* m) {
  m->Open("PHASE_POWERS");
  uint32_t at = 7944;
  for (const char* phase : {"p1", "p2", "p3"}) {
    m->Open("P", phase).Open("COMBINED");
    m->List("Pp 0, Pm 24, Qip 48, Qim 72, Qcp 96, Qcm 120, S 240", kSix, at);
    m->List("PFip 528, PFim 552, PFcp 576, PFcm 600", kSix, at).Close("COMBINED");
    m->Open("FUNDAMENTAL").List("Pp 336, Pm 360, Qip 144, Qim 168, Qcp 192, Qcm 216", kSix, at);
    m->List("S 264, DPFip 624, DPFim 648, DPFcp 672, DPFcm 696", kSix, at);
    m->List("tgFip 720, tgFim 744, tgFcp 768, tgFcm 792", kSix, at).Close("FUNDAMENTAL");
    m->Open("HARMONIC").List("Pp 384, Pm 408, Sn 288, Sh 312, Di 432, Dv 456", kSix, at);
    m->List("Dh 480, HP 504", kSix, at).Close("HARMONIC");
    Energy(m, at + 816);
    m->Close("P");
    at += 832;
  }
  m->Close("PHASE_POWERS").Open("pt").Open("COMBINED");
  m->List(
      "Pp 0, Pm 24, Qip 48, Qim 72, Qcp 96, Qcm 120, Qa 1416, Sv 144, Sa 1392, Se 168, PFip_e 624, "
      "PFim_e 648, PFcp_e 672, PFcm_e 696, PFip_v 720, PFim_v 744, PFcp_v 768, PFcm_v 792, PFip_a "
      "912, PFim_a 936, PFcp_a 960, PFcm_a 984",
      kSix, 10440);
  m->Close("COMBINED").Open("FUNDAMENTAL");
  m->List(
      "Pp_p 432, Pm_p 456, Pp_fund 1512, Pm_fund 1536, Qip_p 312, Qim_p 336, Qcp_p 360, Qcm_p 384, "
      "Qip_v 1296, Qim_v 1320, Qcp_v 1344, Qcm_v 1368, QaFund 1488, Se 192, SvFund 1440, SaFund "
      "1464, Sp 216, Su 240, LU 408, PFip_p 816, PFim_p 840, PFcp_p 864, PFcm_p 888, PFip_vFund "
      "1008, PFim_vFund 1032, PFcp_vFund 1056, PFcm_vFund 1080, PFip_aFund 1104, PFim_aFund 1128, "
      "PFcp_aFund 1152, PFcm_aFund 1176, tgFip 1200, tgFim 1224, tgFcp 1248, tgFcm 1272",
      kSix, 10440);
  m->Close("FUNDAMENTAL").Open("HARMONIC");
  m->List("Pp 480, Pm 504, DeI 528, DeV 552, DeH 576, HP 600, SeN 264, SeH 288", kSix, 10440);
  m->Close("HARMONIC");
  Energy(m, 10440 + 1560);
  m->Close("pt");
}

void StandardPowers(Model* m) {
  const char *avg = "avg 0", *avg_a = "avgA 0";
  m->Open("PHASE_POWERS");
  uint32_t at = 1916;
  for (const char* phase : {"p1", "p2", "p3"}) {
    m->Open("P", phase).Open("COMBINED");
    m->List("Pp 0, Pm 1, Qip 2, Qim 3, Qcp 4, Qcm 5, S 10", avg, at, 4);
    m->List("PFip 22, PFim 24, PFcp 26, PFcm 28", avg_a, at, 4).Close("COMBINED");
    m->Open("FUNDAMENTAL");
    m->List("Pp 14, Pm 15, Qip 6, Qim 7, Qcp 8, Qcm 9, S 11", avg, at, 4);
    m->List("DPFip 30, DPFim 32, DPFcp 34, DPFcm 36", avg_a, at, 4);
    m->List("tgFip 38, tgFim 40, tgFcp 42, tgFcm 44", avg_a, at, 4).Close("FUNDAMENTAL");
    m->Open("HARMONIC");
    m->List("Pp 16, Pm 17, Sn 12, Sh 13, Di 18, Dv 19, Dh 20, HP 21", avg, at, 4);
    m->Close("HARMONIC");
    Energy(m, at + 4 * 46);
    m->Close("P");
    at += 200;
  }
  m->Close("PHASE_POWERS").Open("pt").Open("COMBINED");
  m->List("Pp 0, Pm 1, Qip 2, Qim 3, Qcp 4, Qcm 5, Qa 87, Sv 6, Sa 86, Se 7", avg, 2516, 4);
  m->List(
      "PFip_e 26, PFim_e 28, PFcp_e 30, PFcm_e 32, PFip_v 34, PFim_v 36, PFcp_v 38, PFcm_v 40, "
      "PFip_a 50, PFim_a 52, PFcp_a 54, PFcm_a 56",
      avg_a, 2516, 4);
  m->Close("COMBINED").Open("FUNDAMENTAL");
  m->List(
      "Pp_p 18, Pm_p 19, Pp_fund 91, Pm_fund 92, Qip_p 13, Qim_p 14, Qcp_p 15, Qcm_p 16, Qip_v 82, "
      "Qim_v 83, Qcp_v 84, Qcm_v 85, QaFund 90, SvFund 88, SaFund 89, Se 8, Sp 9, Su 10, LU 17",
      avg, 2516, 4);
  m->List(
      "PFip_p 42, PFim_p 44, PFcp_p 46, PFcm_p 48, PFip_vFund 58, PFim_vFund 60, PFcp_vFund 62, "
      "PFcm_vFund 64, PFip_aFund 66, PFim_aFund 68, PFcp_aFund 70, PFcm_aFund 72, tgFip 74, tgFim "
      "76, tgFcp 78, tgFcm 80",
      avg_a, 2516, 4);
  m->Close("FUNDAMENTAL").Open("HARMONIC");
  m->List("Pp 20, Pm 21, DeI 22, DeV 23, DeH 24, HP 25, SeN 11, SeH 12", avg, 2516, 4);
  m->Close("HARMONIC");
  Energy(m, 2516 + 4 * 93);
  m->Close("pt");
}

void Symmetry(Model* m, uint32_t at) {
  m->Open("sym").List("Up 36, Um 72, Uo 0", kMinMaxRms, at);
  m->List("Ip 52, Im 88, Io 16", kMinMaxRmsA, at).List("um 108, u0 124", kMinMaxRms, at);
  m->List("im 140, i0 160", kMinMaxRmsA, at).Close("sym");
}

// Spectra with phases and offsets as listed.
void Spectra(Model* m, const std::string& list, const std::string& name, const std::string& spectra,
             uint32_t on_disk, uint32_t written) {
  m->Open(list);
  for (const auto& [phase, at] : Pairs(spectra)) {
    m->Spectrum(name, phase, at, 51, on_disk, written);
  }
  m->Close(list);
}

void Flag(Model* m, const Bytes& record, uint32_t at) {
  m->Open("flag").text += std::to_string(Load<int32_t>(record.data() + at));
  m->Close("flag");
}

std::string FullRecordText(const Bytes& record, const Settings& settings) {
  Model m(record);
  m.Open("RECORD_RESULTS").Time("START_TIME").Time("LAST_TIME");
  Voltages(&m, settings.reduced != 0);
  CurrentsAndFrequencies(&m);
  m.Open("freq10s").Time("timeFirst").Open("freqs");
  for (uint32_t i = 0; i < 3; ++i) m.Float("freq", 1940 + 4 * i).Whole("flag", 4940 + 4 * i);
  m.Close("freqs").Close("freq10s");
  m.Open("zero_crossings").Whole("ZCnum", 12208).Close("zero_crossings");
  FullPowers(&m);
  Spectra(&m, "HARMONICS_U", "HARM_U",
          "u1h 12216 u2h 12624 u3h 13032 unh 13440 u1hPr 13848 u2hPr 14256 u3hPr 14664 unhPr 15072 "
          "u12h 22008 u23h 22416 u31h 22824 u12hPr 23232 u23hPr 23640 u31hPr 24048",
          2, 2);
  Spectra(&m, "HARMONICS_I", "HARM_I",
          "i1h 15480 i2h 16296 i3h 17112 inh 17928 i1hPr 18744 i2hPr 19560 i3hPr 20376 inhPr 21192",
          4, 3);
  if (settings.reduced == 0) {
    Spectra(&m, "INTER_HARMONICS_U", "IHARM_U",
            "u1ih 24456 u2ih 24864 u3ih 25272 unih 25680 u12ih 34248 u23ih 34656 u31ih 35064 "
            "u1ihPr 26088 u2ihPr 26496 u3ihPr 26904 unihPr 27312 "
            "u12ihPr 35472 u23ihPr 35880 u31ihPr 36288",
            2, 2);
    Spectra(&m, "INTER_HARMONICS_I", "IHARM_I",
            "i1ih 27720 i2ih 28536 i3ih 29352 inih 30168 "
            "i1ihPr 30984 i2ihPr 31800 i3ihPr 32616 inihPr 33432",
            4, 3);
  }
  Spectra(&m, "POWER_HARMONICS_P", "HARM_THD",
          "powerHarmL1 37032 powerHarmL2 37848 powerHarmL3 38664 powerHarmN 39480", 2, 1);
  Spectra(&m, "POWER_HARMONICS_M", "HARM_THD",
          "powerHarmL1 37440 powerHarmL2 38256 powerHarmL3 39072 powerHarmN 39888", 2, 1);
  Symmetry(&m, 12016);
  m.List("temperature 12196, tempBattery 36704", kMinMaxAvg).List("voltBattery 36716", kMinMaxRms);
  Flag(&m, record, 36696);
  if (settings.connection == 6 || settings.connection == 7) {
    m.Open("inverter").List("Urms 0, Udc 12, Uac 24", kMinMaxAvg, 36732);
    m.List("Irms 36, Idc 60, Iac 84, Pp 108, Pm 132, Pdcp 156, Pdcm 180", kSix, 36732);
    m.List("Sacp 204, Sacm 228, efficiency 252, rf 276", kSix, 36732);
    m.Open("ENERGY").Float("EPp", 7944 + 832 + 816).Float("EPm", 7944 + 832 + 820);
    m.Close("ENERGY").Close("inverter");
  }
  return m.Close("RECORD_RESULTS").text;
}

std::string StandardRecordText(const Bytes& record, const Settings& settings) {
  Model m(record);
  m.Open("RECORD_RESULTS").Time("START_TIME").Time("LAST_TIME");
  Voltages(&m, settings.reduced != 0);
  CurrentsAndFrequencies(&m);
  m.Open("zero_crossings").Whole("ZCnum", 3096).Close("zero_crossings");
  StandardPowers(&m);
  const bool lines = settings.connection == 2 || settings.connection == 4;
  Spectra(&m, "HARMONICS_U", "HARM_U",
          lines ? "u12h 3104 u23h 3308 u31h 3512" : "u1h 3104 u2h 3308 u3h 3512", 1, 1);
  Spectra(&m, "HARMONICS_I", "HARM_I", "i1h 3716 i2h 3920 i3h 4124 inh 4328", 1, 1);
  Symmetry(&m, 2904);
  m.List("temperature 3084", kMinMaxAvg);
  Flag(&m, record, 4532);
  if (settings.connection == 6 || settings.connection == 7) {
    m.Open("inverter");
    m.List(
        "Urms 0, Udc 1, Uac 2, Irms 3, Idc 4, Iac 5, Pp 6, Pm 7, Pdcp 8, Pdcm 9, Sacp 10, Sacm 11, "
        "efficiency 12, rf 13",
        "avg 0", 4540, 4);
    m.Open("ENERGY").Float("EPp", 1916 + 200 + 4 * 46).Float("EPm", 1916 + 200 + 4 * 47);
    m.Close("ENERGY").Close("inverter");
  }
  return m.Close("RECORD_RESULTS").text;
}

std::string CompactRecordText(const Bytes& record) {
  Model m(record);
  m.Open("RECORD_RESULTS").Time("START_TIME").Time("LAST_TIME").Open("VOLTAGES");
  uint32_t i = 0;
  for (const char* phase : {"u1", "u2", "u3", "u12", "u23", "u31"}) {
    m.Open("U", phase).List("rms 72, thdPr 204", "rms 0", 4 * i);
    m.List("Pst 112, Plt 116, Pst1m 120", "rms 0", 12 * i++).Close("U");
  }
  m.Close("VOLTAGES").Open("CURRENTS");
  i = 0;
  for (const char* phase : {"i1", "i2", "i3"}) {
    m.Open("I", phase).List("rms 96, thdPr 228", "rms 0", 4 * i++).Close("I");
  }
  m.Open("I", "in").List("rms 108", "rms 0").Open("thdPr").Line("rms", "-").Close("thdPr");
  m.Close("I").Close("CURRENTS").List("f_200ms 196, f_10s 200", "avgA 0");
  m.Open("pt").Open("COMBINED");
  m.List("Pp 240, Pm 244, Qip 248, Qim 256, Qcp 260, Qcm 252, Se 264", "avg 0");
  m.List("PFip_e 284, PFcp_e 308", "avgA 0").Close("COMBINED").Close("pt");
  Spectra(&m, "HARMONICS_U", "HARM_U", "u1h 316, u2h 416, u3h 516, u12h 616, u23h 716, u31h 816", 1,
          1);
  Spectra(&m, "HARMONICS_I", "HARM_I", "i1h 916, i2h 1016, i3h 1116", 1, 1);
  return m.Close("RECORD_RESULTS").text;
}

TEST(General, WholeRecordsOfEachLayoutAndConnection) {
  Bytes full = FillRecord(kFull, {24, 56, 1920});
  full.Put<int32_t>(1936, 3);
  const Bytes standard = FillRecord(kStandard, {24, 56});
  const Bytes compact = FillRecord(kCompact, {24, 56});
  for (uint8_t connection = 0; connection <= 8; ++connection) {
    for (const uint8_t reduced : {uint8_t{0}, uint8_t{2}}) {
      const Settings zero = {0, connection, reduced};
      EXPECT_TRUE(FullRecordText(full, zero) == RecordsOf(Converted(Recording(zero, {full}))))
          << "full, connection " << int{connection} << ", reduced " << int{reduced};
      for (const uint32_t profile : {2u, 5u}) {
        const Settings s = {profile, connection, reduced};
        EXPECT_EQ(StandardRecordText(standard, s), RecordsOf(Converted(Recording(s, {standard}))));
      }
      const Settings one = {1, connection, reduced};
      EXPECT_EQ(CompactRecordText(compact), RecordsOf(Converted(Recording(one, {compact}))));
    }
  }
  ExpectTruncationIsHarmless(Recording({1}, {compact}));
}

// What a reader gets, taken apart again.
TEST(General, SpectraInBase64) {
  Bytes record;
  record.PadTo(kFull);
  record.Put(12216, kNone).Put(12220, 0.5f).Put(12224, -0.0f);
  for (uint32_t i = 0; i < 8; ++i) record.Put(15480 + 4 * i, static_cast<float>(i));
  const std::string document = Converted(Recording({0}, {record}));
  const std::string u = TextAt(document, {"HARMONICS_U", "HARM_U phase=\"u1h\""});
  const std::vector<float> volts = Decoded(u);
  EXPECT_EQ(544u, u.size());
  ASSERT_EQ(102u, volts.size());
  EXPECT_TRUE(std::isinf(volts[0]) && volts[0] > 0);
  EXPECT_EQ(0.5f, volts[1]);
  EXPECT_TRUE(volts[2] == 0 && std::signbit(volts[2])) << "zero stays the zero it is";
  const std::string i = TextAt(document, {"HARMONICS_I", "HARM_I phase=\"i1h\""});
  EXPECT_EQ(816u, i.size());
  const std::vector<float> amps = Decoded(i);
  EXPECT_EQ(std::vector<float>({0, 1, 2, 4, 5, 6}),
            std::vector<float>(amps.begin(), amps.begin() + 6));
  EXPECT_EQ(272u, TextAt(document, {"HARM_THD phase=\"powerHarmN\""}).size());
}

TEST(General, TenSecondFrequencies) {
  const struct {
    int32_t stored;
    size_t written;
  } cases[] = {{INT32_MIN, 0}, {-1, 0}, {0, 0}, {1, 1}, {750, 750}, {751, 750}, {1000, 750}};
  for (const auto& c : cases) {
    Bytes record;
    record.Put(1936, c.stored).PadTo(kFull);
    const std::string text = RecordsOf(Converted(Recording({0}, {record})));
    size_t written = 0;
    for (size_t at = 0; (at = text.find("<freq>", at)) != std::string::npos; ++at) ++written;
    EXPECT_EQ(c.written, written) << c.stored;
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
  const std::string records = RecordsOf(ReadFile(output));
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

TEST(General, SettingFileDecides) {
  const Bytes file = Recording({0, 3, 1}, {FillRecord(kStandard, {24, 56})});
  Bytes settings = Recording({2, 4, 0});
  const std::string path = InFolder("R0007PAR.REC");
  WriteFile(path, settings.Put<uint32_t>(4, 99));
  const Bytes record(file.begin() + 3072, file.end());
  EXPECT_EQ(StandardRecordText(record, {2, 4, 0}),
            RecordsOf(Converted(file, nullptr, "R0007GEN.REC")));
  WriteFile(path, Bytes());
  EXPECT_EQ("", RecordsOf(Converted(file, nullptr, "R0007GEN.REC"))) << "too short for a full one";
  std::remove(path.c_str());
}

}  // namespace
}  // namespace quorvex::test
