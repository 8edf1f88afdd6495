// What a check says of damaged recordings, to the last word.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "field_mutator.h"
#include "records/record_types.h"
#include "sample.h"
#include "settings/time_texts.h"
#include "shared/inspection.h"
#include "support.h"
#include "support/memory.h"

namespace quorvex::test {
namespace {

using tool::CheckRecording;
using tool::CheckResult;

constexpr size_t kSettings = 8;
constexpr size_t kRecords = 3072;

// A head with the connection of a four-wire network.
Bytes Sound(uint32_t type) { return HeadOf(type).Put<uint8_t>(kSettings + 13, 3); }
Bytes SoundLong(uint32_t type, size_t records_at) {
  return HeadOf(type).Put<uint8_t>(128 + 13, 3).PadTo(records_at);
}
Bytes Inrush(std::initializer_list<int> hours) {
  Bytes file = Sound(13);
  size_t at = kRecords;
  for (const int hour : hours) {
    file.PutTime(at, 2024, 3, 7, hour, 0, 0).PadTo(at + 24);
    at += 24;
  }
  return file;
}
// From the first of the month, a second past midnight, to the 29th of February.
Bytes EnergiesFromMonth(int month) {
  const Bytes file = Sound(18).PutTime(kRecords, 2024, month, 1, 0, 0, 1).PadTo(kRecords + 144);
  return Bytes(file).PutTime(kRecords + 16, 2024, 2, 29, 0, 0, 0);
}

// The findings of warnings and errors, a line each.
std::string FoundIn(const Bytes& file, Severity least = Severity::kWarning,
                    const std::string& name = "C0001X.REC") {
  WriteFile(InFolder(name), file);
  const uint32_t tracked = TrackedBytes();
  const CheckResult result = CheckRecording(InFolder(name));
  EXPECT_EQ(tracked, TrackedBytes());
  std::string text;
  for (const std::string& line : LinesOf(result.findings, least)) text += line + "\n";
  return text;
}

TEST(RecordCheck, DamagedRecordings) {
  // What the document makes of a record that is cut short.
  const std::string holds = "; the document holds it: ", zeros = " (zeros in the first)\n";
  const std::string left_over = holds + "what it lacks is left over from ";
  const std::string left_out = "; the document leaves it out\n";
  const struct {
    Bytes file;
    std::string found;
  } cases[] = {
      // Heads.
      {Sound(4).Put<int32_t>(0, -1),
       "warning: offset 0, FILE_VERSION: is -1, which is no version\n"},
      {{}, "error: offset 0: ends inside its head (0 of 8 bytes)\n"},
      {HeadOf(25), "error: offset 4: is of the unknown record type 25\n"},
      {Bytes(HeadOf(13)).Put<uint32_t>(0, 0),
       "warning: offset 0, FILE_VERSION: is 0, which is no version\n"
       "warning: offset 21, UIF_PARAMS/CONNECTION: is 0, which is no wiring\n"},
      {SoundLong(8, 3223), "error: offset 3223: ends inside its head (3223 of 3224 bytes)\n"},
      // Sizes.
      {Sound(10).PadTo(kRecords + 4088 + 100),
       "error: offset 7160, record 2: ends after 100 of 4088 bytes" + left_over +
           "the record before" + zeros},
      {Sound(4).PadTo(kRecords + 7),
       "warning: offset 3072: 7 bytes behind the settings are not converted\n"},
      {Sound(11).PadTo(kRecords + 3 * 7688 + 1),
       "warning: offset 26136: 1 bytes behind the record are not converted\n"},
      {Sound(6).PadTo(kRecords + 79515),
       "error: offset 3072, record 1: ends after 79515 of 79516 bytes" + holds +
           "what it lacks is zero\n"},
      {Sound(1).Put<uint32_t>(kSettings + 976, 3).PadTo(kRecords + 1),
       "error: the settings' profile 3 has no layout; no record is converted\n"},
      {Sound(1).Put<uint32_t>(kSettings + 976, 1).PadTo(kRecords + 1536 + 1535),
       "error: offset 4608, record 2: ends after 1535 of 1536 bytes" + left_out},
      // A snapshot with four channels, the long list of readings; a series of eight waveforms.
      {Sound(2)
           .Put<uint8_t>(kSettings + 2560, 1)
           .Put(kRecords + 864, 330)
           .PadTo(kRecords + 32 + 832 + 10564 + 4 * 9600),
       ""},
      {Sound(2).PadTo(kRecords + 32 + 832 + 2884 + 4 * 9600 - 1),
       "error: offset 3072, record 1: ends after 42147 of 42148 bytes" + left_over +
           "the record before" + zeros},
      {Sound(17).Put<uint8_t>(21, 6).PadTo(kRecords + 2 * (32 + 4 * 3000)), ""},
      {Sound(17).PadTo(kRecords + 32 + 8 * 3000 + 31),
       "error: offset 27104, record 2: ends after 31 of 24032 bytes" + left_out},
      {Sound(5).Put<int32_t>(1448, 10).PadTo(kRecords + 8 * 40 + 5),
       "warning: offset 3392: 5 bytes behind the record are not converted\n"},
      {Sound(5).Put<int32_t>(1448, 10).PadTo(kRecords + 8 * 40 - 5),
       "error: offset 3072, record 1: ends after 315 of 320 bytes" + left_over +
           "the waveform before" + zeros},
      {Sound(5).PadTo(kRecords + 4),
       "warning: offset 3072: 4 bytes behind the record are not converted\n"},
      {Sound(6), ""},
      {Sound(5).Put<int32_t>(1448, -1).PadTo(kRecords + 8),
       "error: UIF_PARAMS/TRANSIENTS_RECORD_PARAMS/NUM: counts -1, which is none\n"
       "warning: offset 3072: 8 bytes behind the record are not converted\n"},
      // Counts beyond their room, or below none.
      {Sound(13).Put<int32_t>(kSettings + 632, 8),
       "error: offset 640, UIF_PARAMS/ALARMS/NUM: counts 8, but there is room for 7\n"},
      {SoundLong(7, 3364).Put<int32_t>(3192, -2),
       "warning: offset 3192, INFORMATION/NUM: counts -2, which is none\n"},
      {Sound(2).Put(kRecords + 20, 2049).Put(kRecords + 864, 91).PadTo(kRecords + 42148),
       "error: offset 3092, record 1, number of samples of each waveform: counts 2049, but there "
       "is "
       "room for 2048\n"
       "error: offset 3936, record 1, RESULTS/RMS12/Vrms12: counts 91, but there is room for 90\n"},
      {Sound(6).Put(kRecords, 2049).Put(kRecords + 67900, 331).PadTo(kRecords + 79516),
       "error: offset 70972, record 1, RMS12/Vrms12: counts 331, but there is room for 330\n"
       "error: offset 3072, record 1, numUsedSamples: counts 2049, but there is room for 2048\n"},
      {Sound(17).Put(kRecords + 24, 1501).PadTo(kRecords + 24032),
       "error: offset 3096, record 1, numUsedSamples: counts 1501, but there is room for 1500\n"},
      {Sound(1).Put(kRecords + 1936, 751).PadTo(kRecords + 40448),
       "error: offset 5008, record 1, freq10s/freqs: counts 751, but there is room for 750\n"},
      {Sound(9).Put(kRecords + 32, 2).PadTo(kRecords + 48 + 2 * 68 + 48 - 1),
       "error: offset 3256, record 2: ends after 47 of 48 bytes" + left_over +
           "what was read before" + zeros},
      {Sound(9).Put(kRecords + 32, 3).PadTo(kRecords + 48 + 2 * 68),
       "error: offset 3072, record 1: ends after 184 of 252 bytes" + left_over +
           "what was read before" + zeros},
      {Bytes().Put(0, 3).Put(4, 15).Put(8 + 36, -1).Put(48 + 36, 2).PadTo(48 + 40 + 16),
       "warning: offset 44, record 1, SESSION_HEADER/elementsNum: counts -1, which is none\n"
       "error: offset 48, record 2: ends after 56 of 72 bytes" +
           holds + "elements that are not whole are left out\n"},
      // Times.
      {Inrush({9, 9, 12}), ""},
      {Inrush({9, 12, 10}),
       "warning: offset 3120, record 3, START_TIME: lies before that of record 2, "
       "2024-03-07 12:00:00.000: 2024-03-07 10:00:00.000\n"},
      {EnergiesFromMonth(13),
       "warning: offset 3072, record 1, START_TIME: is no point in time: 2024-13-01 "
       "00:00:01.000\n"},
      {Inrush({9, 25, 8}),
       "warning: offset 3096, record 2, START_TIME: is no point in time: 2024-03-07 25:00:00.000\n"
       "warning: offset 3120, record 3, START_TIME: lies before that of record 1, "
       "2024-03-07 09:00:00.000: 2024-03-07 08:00:00.000\n"},
      {EnergiesFromMonth(3),
       "warning: offset 3088, record 1, END_TIME: lies before START_TIME, 2024-03-01 00:00:01.000: "
       "2024-02-29 00:00:00.000\n"},
      {Sound(10)
           .PutTime(kRecords + 24, 2024, 3, 1, 0, 1, 0)
           .PutTime(kRecords + 40, 2024, 3, 1, 0, 0, 59)
           .PadTo(kRecords + 4088),
       "warning: offset 3112, record 1, RVC_STOP_TIME: lies before RVC_START_TIME, 2024-03-01 "
       "00:01:00.000: 2024-03-01 00:00:59.000\n"},
      {Sound(1)
           .Put<uint32_t>(kSettings + 976, 1)
           .PutTime(kRecords + 24, 2024, 3, 1, 1, 0, 0)
           .PutTime(kRecords + 56, 2024, 3, 1, 0, 59, 0)
           .PadTo(kRecords + 1536),
       "warning: offset 3128, record 1, LAST_TIME: lies before START_TIME, 2024-03-01 "
       "01:00:00.000: "
       "2024-03-01 00:59:00.000\n"},
      {Bytes()
           .Put(0, 3)
           .Put(4, 15)
           .PutTime(8, 2024, 3, 2, 0, 0, 0)
           .PutTime(24, 2024, 3, 1, 9, 9, 9)
           .PadTo(48),
       "warning: offset 24, record 1, SESSION_HEADER/endTime: lies before startTime, "
       "2024-03-02 00:00:00.000: 2024-03-01 09:09:09.000\n"},
      {Sound(13)
           .PutTime(kSettings + 888, 2025, 1, 1, 0, 0, 0)
           .PutTime(kSettings + 904, 2024, 12, 31, 0, 0, 0),
       "warning: offset 912, UIF_PARAMS/RECORD_PARAMS/TIME_LAST_PACKET: lies before "
       "RECORD_PARAMS/TIME_FIRST_PACKET, 2025-01-01 00:00:00.000: 2024-12-31 00:00:00.000\n"},
      {Sound(10).PutTime(kRecords + 856 + 16, 2023, 2, 29, 0, 0, 0).PadTo(kRecords + 4088),
       "warning: offset 3944, record 1, RMS12_VALUES/RMS12[2]/TIME_STAMP: is no point in time: "
       "2023-02-29 00:00:00.000\n"},
      {Sound(9)
           .Put(kRecords + 32, 2)
           .PutTime(kRecords + 48 + 16, 2024, 1, 1, 0, 60, 0)
           .PadTo(kRecords + 48 + 2 * 68),
       "warning: offset 3136, record 1, SIGNALLING_DATA/END_TIMES/END_TIME[2]: is no point in "
       "time: "
       "2024-01-01 00:60:00.000\n"},
      // Only readings that are written count: the second of one is not.
      {Sound(6)
           .Put(kRecords + 67900, 1)
           .PutTime(kRecords + 67904 + 32 + 16, 1, 1, 1, 0, 0, 0)
           .PadTo(kRecords + 79516),
       ""},
      // Texts: what XML does not allow, and what documents keep although it does not.
      {Sound(13).PutText(kSettings + 20 + 1, "Clamp <A>"),
       "error: offset 35, UIF_PARAMS/CLAMP_PH1/NAME: has a '<'; the document is no XML\n"},
      {Sound(13).PutText(kSettings + 452 + 1, "1\xC3\xA4\xE4"),
       "error: offset 464, UIF_PARAMS/CLAMP_N/NAME: has a byte 0xE4 that is no character; the "
       "document is no XML\n"},
      {Sound(13).PutText(kSettings + 164 + 1, "a\tb\x07"),
       "error: offset 176, UIF_PARAMS/CLAMP_PH2/NAME: has the control character 0x07; the document "
       "is no XML\n"},
      {Sound(12)
           .PutText(kRecords, "T&1")
           .PutText(kRecords + 100 + 2449, "A&B")
           .Put<uint8_t>(kRecords + 113, 3)
           .PadTo(kRecords + 3164),
       "error: offset 3073, record 1, name: has an ampersand; the document is no XML\n"
       "error: offset 5621, record 1, UIF_PARAMS/cname: has an ampersand; the document is no "
       "XML\n"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.found, FoundIn(c.file)) << c.found;
}

// What XML does not allow, in clamp names, which documents show as they are.
TEST(RecordCheck, TextsThatAreNoXml) {
  const struct {
    std::string name, fault;
  } cases[] = {
      {"100 A \"x\" 'y' > {z}\t\r\n", ""},
      {"\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", ""},
      {"]]>", "a ']]>'"},
      {"]]", ""},
      {"a&amp;", "an ampersand"},
      {"\x1F", "the control character 0x1F"},
      {"\xC1\x81", "a byte 0xC1 that is no character"},          // two bytes for one
      {"\xE0\x9F\xBF", "a byte 0xE0 that is no character"},      // three for two
      {"\xF0\x8F\xBF\xBF", "a byte 0xF0 that is no character"},  // four for three
      {"\xED\xA0\x80", "a byte 0xED that is no character"},      // half of a pair
      {"\xEF\xBF\xBE", "a byte 0xEF that is no character"},      // U+FFFE
      {"\xF4\x90\x80\x80", "a byte 0xF4 that is no character"},  // beyond Unicode
      {"\xF5\x80\x80\x80", "a byte 0xF5 that is no character"},
      {"\xE2\x82", "a byte 0xE2 that is no character"},  // cut off
      {"\xC3 ", "a byte 0xC3 that is no character"},
      {std::string(99, 'x') + "\xC3\xA4", "a byte 0xC3 that is no character"},  // cut by the width
  };
  for (const auto& c : cases) {
    Bytes file = Sound(13).PutText(kSettings + 20 + 1, c.name.substr(0, 100));
    const std::string found = FoundIn(file);
    if (c.fault.empty()) {
      EXPECT_EQ("", found) << c.name;
    } else {
      EXPECT_NE(std::string::npos, found.find("NAME: has " + c.fault + ";")) << c.name << found;
    }
  }
}

TEST(RecordCheck, PointsInTime) {
  const struct {
    int year, month, day, hour, minute;
    double seconds;
    bool valid;
  } cases[] = {
      {2024, 2, 29, 23, 59, 60.9, true}, {2023, 2, 29, 0, 0, 0, false},
      {2100, 2, 29, 0, 0, 0, false},     {2000, 2, 29, 0, 0, 0, true},
      {1970, 1, 1, 0, 0, 0, true},       {1969, 12, 31, 0, 0, 0, false},
      {2199, 12, 31, 0, 0, 0, true},     {2200, 1, 1, 0, 0, 0, false},
      {2024, 0, 1, 0, 0, 0, false},      {2024, 13, 1, 0, 0, 0, false},
      {2024, 4, 31, 0, 0, 0, false},     {2024, 4, 0, 0, 0, 0, false},
      {2024, 4, 1, 24, 0, 0, false},     {2024, 4, 1, 0, 60, 0, false},
      {2024, 4, 1, 0, 0, 61, false},     {2024, 4, 1, 0, 0, -0.001, false},
      {2024, 4, 1, 0, 0, NAN, false},
  };
  for (const auto& c : cases) {
    const Bytes time = Bytes().PutTime(0, c.year, c.month, c.day, c.hour, c.minute, c.seconds);
    EXPECT_EQ(c.valid, IsPointInTime(Load<DateTimeRecord>(time.data()))) << c.year << c.month;
  }
}

// Sizes follow the wiring and the counts.
TEST(RecordCheck, SizesOfRecords) {
  const struct {
    const RecordType& type;
    uint8_t connection;
    bool reduced;
    int32_t count;
    uint64_t size;
  } cases[] = {
      {kSnapshots, 1, false, 0, 3748 + 2 * 9600},
      {kSnapshots, 4, true, 0, 11428 + 3 * 9600},
      {kSnapshots, 7, false, 0, 3748 + 4 * 9600},
      {kSnapshots, 0, false, 0, 3748},
      {kWaveformSeries, 3, false, 0, 32 + 8 * 3000},
      {kWaveformSeries, 5, false, 0, 32 + 6 * 3000},
      {kWaveformSeries, 2, false, 0, 32 + 6 * 3000},
      {kWaveformSeries, 9, false, 0, 32 + 4 * 3000},
      {kWaveformCapture, 6, false, 100, 8 * 400},
      {kWaveformCapture, 5, false, INT32_MAX, uint64_t{INT32_MAX} * 32},
      {kWaveformCapture, 5, false, -7, 0},
      {kSignalling, 3, false, 10, 0},
      {kSessions, 0, false, 3, 0},
      {kGeneral, 3, true, 0, 40448},
      {kAverages, 3, false, 0, 3 * 7688},
  };
  for (const auto& c : cases) {
    UifParams settings{};
    settings.connection = c.connection;
    settings.reduced_lists = c.reduced ? 1 : 0;
    settings.transients.num = static_cast<uint32_t>(c.count);
    EXPECT_EQ(c.size, RecordSize(c.type, settings)) << c.type.name << int{c.connection};
  }
}

TEST(RecordCheck, NotesAndSettingFiles) {
  const Bytes file = Sound(3).PutText(kSettings + 2116, "7<").PadTo(kRecords + 32);
  const std::string shown =
      "note: offset 2125, UIF_PARAMS/INSTRUMENT_DATA/ee_SerialNumber: has characters that the "
      "document shows as others";
  EXPECT_EQ("note: no setting file C0002PAR.REC: the settings are its own\n" + shown + "\n",
            FoundIn(file, Severity::kNote, "C0002X.REC"));
  WriteFile(InFolder("C0002PAR.REC"), file);
  EXPECT_EQ("note: the settings are those of C0002PAR.REC\n" + shown + " (in C0002PAR.REC)\n",
            FoundIn(file, Severity::kNote, "C0002X.REC"));
  WriteFile(InFolder("C0002PAR.REC"), Bytes(100));
  EXPECT_EQ(
      "error: the setting file C0002PAR.REC ends after 100 of 3072 bytes; the rest of the "
      "settings is the recording's own\n" +
          shown + " (in C0002PAR.REC)\n" +
          "warning: offset 21, UIF_PARAMS/CONNECTION: is 0, which is no wiring (in "
          "C0002PAR.REC)\n",
      FoundIn(file, Severity::kNote, "C0002X.REC"));
  EXPECT_EQ("note: offset 3072: there are no records\n", FoundIn(Sound(13), Severity::kNote));
#ifndef _WIN32  // where this takes no room
  WriteFile(InFolder("C0004X.REC"), Sound(6));
  std::filesystem::resize_file(InFolder("C0004X.REC"), (uint64_t{1} << 32) + 1);
  EXPECT_EQ(
      "warning: offset 4294967295: records are counted in files of up to 4 GiB; what lies "
      "behind may not be converted",
      TextOf(CheckRecording(InFolder("C0004X.REC")).findings.list.at(0)));
#endif
}

TEST(RecordCheck, FindingsAreBounded) {
  Bytes file = Sound(13);
  for (size_t i = 0; i < 1000; ++i) file.PutTime(kRecords + i * 24, 2024, 13, 1, 0, 0, 0);
  file.PadTo(kRecords + 1000 * 24);
  const std::string found = FoundIn(file);
  EXPECT_EQ(21, std::count(found.begin(), found.end(), '\n'));
  EXPECT_NE(std::string::npos, found.find("warning: 980 more of the kind 'time'\n")) << found;
  EXPECT_EQ("", FoundIn(file, Severity::kError));
}

// Samples of all types are sound, and damaged ones are judged without harm.
TEST(RecordCheck, SamplesAndDamagedSamples) {
  constexpr size_t kMost = 48 * 1024;
  const std::string folder = InFolder("checked");
  std::filesystem::create_directories(folder);
  samples::MakeAll(folder);
  const std::string path = InFolder("C0003X.REC");
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const CheckResult sound = CheckRecording(entry.path().string());
    EXPECT_EQ(Severity::kNote, sound.findings.worst) << entry.path();
    const std::string text = ReadFile(entry.path().string());
    const fuzz::FieldMutator mutator(*sound.recording.type);
    std::mt19937 random(sound.recording.type->type);
    for (int i = 0; i < 60; ++i) {
      std::vector<uint8_t> damaged(text.begin(), text.begin() + std::min(text.size(), kMost));
      mutator.Mutate(&damaged, &random);
      Bytes file(damaged.begin(), damaged.end());
      WriteFile(path, file);
      const CheckResult result = CheckRecording(path);
      EXPECT_LE(result.findings.list.size(), kFindingKinds * kMostFindings);
      for (const Finding& finding : result.findings.list) {
        EXPECT_LE(finding.offset.value_or(0), file.size()) << entry.path() << ' ' << i;
      }
    }
  }
}

}  // namespace
}  // namespace quorvex::test
