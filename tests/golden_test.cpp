// Documents, information lines and counts of every type against what they were: documents.golden
// has a line for each type and deciding setting, and in it a checksum for each wiring. All words of
// the recordings differ, so that what is read from a wrong place shows. Where documents are to
// change, QUORVEX_UPDATE=1 quorvex_tests '--gtest_filter=*Golden*' writes the table anew.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "records/record_types.h"
#include "settings/validation.h"
#include "support.h"
#include "support/memory.h"

namespace quorvex::test {
namespace {

struct Deciding {
  uint32_t type;
  const char* settings;     // as PutSettings takes them, one without blanks
  const char* counts = "";  // the same, within a record
};
constexpr Deciding kCases[] = {
    {1, "976#0", "1936#2"},
    {1, "976#1"},
    {1, "976#2"},
    {1, "976#3"},
    {1, "976#5"},
    {2, "632#2", "20#2 24#3 864#2"},
    {3, "2168#1"},
    {4, "2168#2"},
    {5, "1400#0"},
    {5, "1400#1"},
    {6, "632#7", "0#2 67900#1"},
    {7, "632#0"},
    {8, "16#400"},
    {9, "16#55"},
    {10, "2596#0"},
    {11, "976#1"},
    {12, "2144#18"},
    {13, "632#-1"},
    {14, "1244#6"},
    {15, "0#0"},
    {16, "844#600"},
    {16, "844#900"},
    {16, "844#61"},
    {17, "1364#7", "24#2"},
    {18, "632#1"},
};

// Settings with texts that documents can show and scales that samples can show.
Bytes SettingsOf(const Deciding& deciding, int connection, int reduced) {
  Bytes s = Filled(kSettingsSize);
  for (const size_t clamp : {20, 164, 308, 452}) {
    s.PutText(clamp + 1, "clamp " + std::to_string(clamp) + '\0');
    s.PutSettings(clamp, "101.0 108:12.5 112#-7 116.1 120#3 124.1 128#7 132#3");
  }
  s.PutText(2016, std::string("a<b\nc+d") + '\0').PutText(2116, "12345678");
  s.PutText(2150, std::string("3.0") + '\0').PutText(2449, "SHORT").PutText(2712, "LONGER");
  s.PutText(2624, "eighteen.characte>x").PutText(2642, std::string("3x230") + '\0');
  s.PutText(2592, "EN").PutSettings(0, "4#1 8#3 2568#2 12.1 632#1 804#10 808#100 1440#3 2732:2.9");
  s.PutSettings(0, "1244#5 1252:90 1256#2 1260#90061 1264#61 1364#5 1372:12.5 596:230");
  s.PutSettings(0, "844#600 2144#8 2168#0 2576%-0.5 2584%45.12346 2596#1");
  s.PutSettings(0, deciding.settings).Put(13, static_cast<uint8_t>(connection));
  return s.Put(2560, static_cast<uint8_t>(reduced));
}

// A recording of two whole records and some bytes behind them; `second` is where the second begins.
Bytes RecordingOf(const Deciding& deciding, int connection, int reduced, size_t* second) {
  const RecordType& type = *FindRecordType(deciding.type);
  const Bytes settings = SettingsOf(deciding, connection, reduced);
  Bytes file = Filled(type.records_at).PutSettings(0, "0#3").Put(4, deciding.type);
  if (type.settings_at != 0) file.PutBytes(type.settings_at, settings);
  if (type.information != nullptr) file.Put(kLongHeadSize, 3);
  auto size = static_cast<uint32_t>(RecordSize(type, Load<UifParams>(settings.data())));
  std::string counts = deciding.counts;
  if (deciding.type == 9) size = 48 + 68 * 3, counts = "32#3";
  if (deciding.type == 15) size = 40 + 16 * 2, counts = "36#2";
  const Bytes filled = Filled(2 * size + 8);
  for (uint32_t i = 0; i < 2; ++i) {
    Bytes record(filled.begin() + i * size, filled.begin() + (i + 1) * size);
    record.PutSettings(0, size != 0 ? counts : "");
    if (type.record_settings_at != 0) {
      record.PutText(0, std::string("a <capture>") + '\0');
      record.PutBytes(type.record_settings_at, settings);
    }
    *second = file.size();
    file.PutBytes(file.size(), record);
  }
  return file.PadTo(file.size() + 7);
}

// All that the library says of a recording.
std::string AnswersTo(const Bytes& file) {
  const std::string document = Converted(file), path = InFolder("G0001X.REC");
  WriteFile(path, file);
  char text[512];
  QuorvexGetRecordInfo(path.c_str(), text);
  return document + text + " " + std::to_string(QuorvexGetNumberOfRecords(path.c_str())) + "\n";
}

uint32_t Checksum(const std::string& text) {  // FNV-1a
  uint32_t sum = 2166136261;
  for (const char c : text) sum = (sum ^ static_cast<uint8_t>(c)) * 16777619;
  return sum;
}

using Table = std::map<std::string, std::string>;
const std::filesystem::path kTable = QUORVEX_GOLDEN;
Table ReadTable() {
  Table table;
  std::ifstream file(kTable);
  for (std::string name, sums; file >> name && std::getline(file, sums);) table[name] = sums;
  return table;
}

void Rewrite(const std::string& key, const std::string& line) {
  Table table = ReadTable();
  table[key] = line;
  std::ofstream file(kTable, std::ios::binary);
  for (const auto& [name, sums] : table) file << name << sums << "\n";
}

class Golden : public testing::TestWithParam<Deciding> {};

std::string NameOf(int number) {
  const Deciding& d = testing::TestWithParam<Deciding>::GetParam();
  return "golden-" + std::to_string(d.type) + "-" + d.settings + "-" + std::to_string(number);
}

TEST_P(Golden, Documents) {
  const std::string key = std::to_string(GetParam().type) + ":" + GetParam().settings;
  const bool update = std::getenv("QUORVEX_UPDATE") != nullptr;
  std::istringstream before(ReadTable()[key]);
  std::string line;
  for (const int connection : {0, 1, 2, 3, 4, 5, 6, 7, 8, 255}) {
    std::string all;
    for (const int reduced : {0, 1}) {
      size_t second = 0;
      const Bytes whole = RecordingOf(GetParam(), connection, reduced, &second);
      // A record and most of another; a cut in the head.
      for (const size_t size :
           {whole.size(), second + (whole.size() - second) * 5 / 8, size_t{900}}) {
        Bytes file = whole;
        file.resize(size);
        all += AnswersTo(file);
        if (size == whole.size()) LeaveForSchema(Converted(file), NameOf(connection * 2 + reduced));
      }
    }
    char sum[32];
    std::snprintf(sum, sizeof sum, "%u:%08x", static_cast<unsigned>(all.size()), Checksum(all));
    std::string earlier;
    before >> earlier;
    line += std::string(" ") + sum;
    const bool same = update || earlier == sum;
    const std::string name = NameOf(connection) + ".txt";
    if (!same || std::getenv("QUORVEX_LEAVE") != nullptr) WriteFile(name, {all.begin(), all.end()});
    EXPECT_TRUE(same) << key << ", wiring " << connection << ": " << earlier << " before, " << sum
                      << " now, in " << name
                      << "; with QUORVEX_LEAVE=1 another build leaves its own";
  }
  if (update) Rewrite(key, line);
}

// Cut off anywhere, a recording converts without harm: byte by byte where records begin, in strides
// elsewhere.
TEST_P(Golden, CutAnywhere) {
  constexpr int kWiring = 7;
  size_t second = 0;
  Bytes file = RecordingOf(GetParam(), kWiring, 0, &second);
  const size_t first = FindRecordType(GetParam().type)->records_at;
  while (!file.empty() && !HasFailure()) {
    const size_t size = file.size();
    const auto is_near = [size](size_t place) { return size < place + 24 && size + 8 > place; };
    file.resize(
        size - (is_near(0) || is_near(first) || is_near(second) ? 1 : std::min<size_t>(size, 331)));
    Converted(file);
    EXPECT_FALSE(HasFailure()) << file.size();
  }
}
// What the instrument's check makes of settings, of which hosts see nothing: every word in turn has
// values at bounds of some setting, in settings of zero, in wild ones and in checked ones.
TEST(GoldenState, OfSettingsOutOfRange) {
  std::vector<uint32_t> words = {1u << 31, ~0u};
  for (uint32_t n = 0; n < 13; ++n) words.push_back(n);
  for (const uint32_t n : {20, 30, 50, 55, 60, 100, 120, 200, 300, 400, 1000, 1500, 3600, 10000,
                           40000, 100000, 400000}) {
    words.insert(words.end(), {n - 1, n, n + 1, n + n / 10});
  }
  for (const float n : {0.06f, 0.1f, 0.3f, 0.5f, 1.0f, 3.0f, 10.0f, 50.0f, 100.0f, 110.0f, 136.0f,
                        150.0f, 235.0f, 375.0f, 650.0f, 1000.0f, 3000.0f, HUGE_VALF, NAN}) {
    for (const float of : {n, n * 1.006f, n * 0.994f, -n})
      words.push_back(std::bit_cast<uint32_t>(of));
  }
  Tracked<InstrumentState> state;
  uint64_t sum = 0;
  const auto check = [&](const Bytes& settings) {
    state->settings = Load<UifParams>(settings.data());
    ValidateSettings(state.get(), 0);
    for (SignallingChannel& signal : state->settings.signal)
      signal.limit = 0;  // as the C library has it
    const auto* checked = reinterpret_cast<const uint8_t*>(&state->settings);
    for (size_t at = 0; at + 8 <= kSettingsSize; at += 8) {
      sum = (sum ^ Load<uint64_t>(checked + at)) * 1099511628211;
    }
    return Bytes(checked, checked + kSettingsSize);
  };
  const Bytes transformed =
      Bytes(kSettingsSize).PutSettings(0, "1020#60 4#2 8#3 12.1 13.2 596:400");
  for (Bytes base : {transformed, Filled(kSettingsSize), check(Bytes(kSettingsSize))}) {
    for (size_t at = 0; at < kSettingsSize; at += 4) {
      const auto kept = Load<uint32_t>(&base[at]);
      for (const uint32_t word : words) check(base.Put(at, word));
      base.Put(at, kept);
    }
  }
  const auto* fixed = reinterpret_cast<const char*>(state.get());
  const uint32_t rest = Checksum(std::string(fixed + sizeof(UifParams), fixed + sizeof *state));
  const std::string line = " " + std::to_string(sum) + " " + std::to_string(rest);
  if (std::getenv("QUORVEX_UPDATE") != nullptr) Rewrite("state", line);
  EXPECT_EQ(ReadTable()["state"], line);
}
INSTANTIATE_TEST_SUITE_P(EveryType, Golden, testing::ValuesIn(kCases));

}  // namespace
}  // namespace quorvex::test
