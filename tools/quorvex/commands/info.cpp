// quorvex info says what recordings are, to people and to programs.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "api/time_texts.h"
#include "commands/commands.h"
#include "quorvex64.h"
#include "shared/gather.h"
#include "shared/help.h"
#include "shared/inspection.h"
#include "shared/json.h"
#include "shared/scratch.h"

namespace quorvex::tool {
namespace {

struct Options {
  std::vector<std::string> inputs;
  bool raw = false;  // the record information lines are printed as the library gives them
  bool json = false;
};

// Turns "07.Mar.2024 14:05:09.123" into "2024-03-07T14:05:09.123", and what is no point in time
// into nothing.
std::string IsoTime(const std::string& text) {
  int day = 0, year = 0, hour = 0, minute = 0, used = 0;
  char month[4];
  DateTimeRecord time{};
  if (std::sscanf(text.c_str(), "%d.%3[A-Za-z].%d %d:%d:%n", &day, month, &year, &hour, &minute,
                  &used) != 5) {
    return "";
  }
  constexpr char kMonths[] = "JanFebMarAprMayJunJulAugSepOctNovDec";
  const char* name = std::strstr(kMonths, month);
  if (name == nullptr) return "";
  const std::string seconds = text.substr(static_cast<size_t>(used));
  time.year = static_cast<uint16_t>(year);
  time.month = static_cast<uint8_t>((name - kMonths) / 3 + 1);
  time.day = static_cast<uint8_t>(day);
  time.hour = static_cast<uint8_t>(hour);
  time.minute = static_cast<uint8_t>(minute);
  time.seconds = std::strtod(seconds.c_str(), nullptr);
  if (!IsPointInTime(time)) return "";
  char date[24];
  std::snprintf(date, sizeof date, "%04d-%02d-%02dT%02d:%02d:", time.year, time.month, time.day,
                time.hour, time.minute);
  return date + seconds;
}

// Tells how many seconds "1 days 02 hours 3 Min 4 s" are.
Json Seconds(const std::string& text) {
  if (text.empty()) return nullptr;
  double seconds = 0;
  const char* at = text.c_str();
  for (char* end; *at != '\0'; at = end) {
    const double number = std::strtod(at, &end);
    if (end == at) return nullptr;
    while (*end == ' ') ++end;
    const double unit = *end == 'd' ? 86400 : *end == 'h' ? 3600 : *end == 'M' ? 60 : 1;
    seconds += number * unit;
    while (*end != '\0' && *end != ' ') ++end;
  }
  return static_cast<int64_t>(seconds);
}

// Tells how many volts "12.50kV" are. What passes the limits of the display is no number.
Json Amount(const char* text) {
  char* end = nullptr;
  const double number = std::strtod(text, &end);
  if (end == text || !(std::abs(number) < 1e30)) return nullptr;
  return *end == 'k' ? number * 1000 : *end == 'm' ? number / 1000 : number;
}

std::string KeyOf(const InfoField& field) {
  std::string key = field.label;
  std::transform(key.begin(), key.end(), key.begin(), [](unsigned char c) {
    return c == ' ' ? '_' : static_cast<char>(std::tolower(c));
  });
  return field.form == InfoForm::kPeriods ? key + "_periods" : key;
}

void PutValue(const InfoValue& value, Json* to) {
  const std::string key = KeyOf(value.field);
  const std::string& text = value.text;
  switch (value.field.form) {
    case InfoForm::kTime:
      if (const std::string time = IsoTime(text); !time.empty()) (*to)[key] = time;
      break;
    case InfoForm::kSeconds:
      (*to)[key] = Seconds(text);
      break;
    case InfoForm::kPeriods:
    case InfoForm::kNumber:
      (*to)[key] = std::strtoll(text.c_str(), nullptr, 10);
      break;
    case InfoForm::kAmount:
      (*to)[key] = Amount(text.c_str());
      break;
    case InfoForm::kLevel: {
      const size_t percent = text.find('%');
      const size_t bracket = text.find('(');
      if (percent != std::string::npos) (*to)[key + "_percent"] = Amount(text.c_str());
      if (percent == std::string::npos) (*to)[key] = Amount(text.c_str());
      if (bracket != std::string::npos) (*to)[key] = Amount(text.c_str() + bracket + 1);
      break;
    }
    case InfoForm::kText:
      if (!text.empty() && text != "-") (*to)[key] = text;
      break;
  }
}

Json ToJson(const Facts& facts) {
  const Recording& r = facts.recording;
  Json entry = JsonOf(facts.path, r, r.records);
  for (const InfoField& field : AllInfoFields()) {
    entry[KeyOf(field)] = nullptr;
    if (field.form == InfoForm::kLevel) entry[KeyOf(field) + "_percent"] = nullptr;
  }
  for (const InfoValue& value : facts.values) PutValue(value, &entry);
  entry["end_from"] = entry["end"].is_null() ? Json() : Json(facts.end_from);
  entry["instrument"] = nullptr;
  if (facts.instrument) {
    entry["instrument"] = {{"name", *facts.instrument},
                           {"serial", facts.serial->empty() ? Json() : Json(*facts.serial)}};
  }
  entry["connection"] = OrNull(facts.connection);
  entry["problem"] = r.code != kDone ? Json(r.problem) : Json();
  return entry;
}

using Row = std::vector<std::string>;

// The table has times to the minute: seconds would take the room that names need.
std::string ShortTime(const std::string& text) {
  std::string time = IsoTime(text).substr(0, 16);
  if (!time.empty()) time[10] = ' ';
  return time;
}

// `folder` is where all files lie; the table leaves it out.
Row ToRow(const Facts& facts, const std::string& folder) {
  const Recording& r = facts.recording;
  std::string start, end, interval;
  for (const InfoValue& value : facts.values) {
    const std::string label = value.field.label;
    if (label == "start" || label == "time") start = ShortTime(value.text);
    if (label == "end") end = ShortTime(value.text);
    if (label == "interval") interval = value.text;
  }
  return {Shown(CalledName(facts.path).substr(folder.size())),
          r.type != nullptr ? r.type->name : "-",
          start,
          end,
          interval,
          r.records ? std::to_string(*r.records) : "",
          r.code != kNoInput ? ShortSize(static_cast<double>(r.size)) : "",
          r.problem};
}

void PrintTable(const std::vector<Row>& rows) {
  const Row heads = {"FILE", "TYPE", "START", "END", "INTERVAL", "RECORDS", "SIZE", "PROBLEM"};
  constexpr size_t kNumbersFrom = 5;  // these stand to the right, up to the last column
  std::vector<size_t> widths(heads.size());
  for (size_t c = 0; c < heads.size(); ++c) {
    widths[c] = WidthOf(heads[c]);
    for (const Row& row : rows) widths[c] = std::max(widths[c], WidthOf(row[c]));
  }
  const auto print = [&](const Row& row) {
    std::string line;
    for (size_t c = 0; c < row.size(); ++c) {
      const std::string room(widths[c] - WidthOf(row[c]), ' ');
      const bool number = c >= kNumbersFrom && c + 1 < row.size();
      line += (number ? room + row[c] : row[c] + room) + "  ";
    }
    line.erase(line.find_last_not_of(' ') + 1);
    Print(line + "\n");
  };
  print(heads);
  for (const Row& row : rows) print(row);
}

void PrintLabelled(const std::string& label, const std::string& value) {
  const std::string head = label + ":";
  Print(head + std::string(20 - head.size(), ' ') + Shown(value) + "\n");
}

void PrintLabelled(const Facts& facts) {
  const Recording& r = facts.recording;
  PrintLabelled("file", CalledName(facts.path));
  PrintLabelled("type", std::to_string(r.type->type) + ", " + r.type->name);
  PrintLabelled("version", std::to_string(static_cast<int32_t>(r.header->version)));
  PrintLabelled("size", std::to_string(r.size) + " bytes");
  if (r.records) PrintLabelled("records", std::to_string(*r.records));
  for (const InfoValue& value : facts.values) {
    const bool estimate =
        facts.end_from == std::string("estimate") && value.field.label == std::string("end");
    PrintLabelled(value.field.label, value.text + (estimate ? " (estimated)" : ""));
  }
}

ExitCode PrintRaw(const std::string& path) {
  const Recording recording = Inspect(path);
  if (recording.code != kDone) {
    Complain(path, recording.problem);
    return recording.code;
  }
  char line[512];
  QuorvexGetRecordInfo(path.c_str(), line);
  Print(std::string(line) + "\n");
  return kDone;
}

ExitCode Info(const Options& options) {
  std::vector<std::string> paths;
  ExitCode code = GatherRecordings(options.inputs, &paths) ? kDone : kNoInput;
  const bool alone = paths.size() == 1 && (paths == options.inputs || IsSpooled(paths.front()));
  const bool one_folder = options.inputs.size() == 1 && !alone;
  const std::string folder = one_folder ? Utf8(Inside(options.inputs[0], "")) : "";
  JsonArray array;
  std::vector<Row> rows;
  for (const std::string& path : paths) {
    if (options.raw) {
      const ExitCode outcome = PrintRaw(path);
      if (code == kDone) code = outcome;
      continue;
    }
    const Facts facts = FactsOf(path);
    if (code == kDone) code = facts.recording.code;
    if (options.json) {
      array.Add(ToJson(facts));
    } else if (!alone) {
      rows.push_back(ToRow(facts, folder));
    } else if (facts.recording.code != kDone) {
      Complain(path, facts.recording.problem);
    } else {
      PrintLabelled(facts);
    }
  }
  if (options.json) array.Close();
  if (!rows.empty()) PrintTable(rows);
  return code;
}

}  // namespace

Command AddInfo(CLI::App& app) {
  const auto options = std::make_shared<Options>();
  CLI::App* line = app.add_subcommand("info", "Say what recordings are");
  TakePaths(line, &options->inputs);
  auto* raw =
      line->add_flag("--raw", options->raw, "Only the record information line, as hosts get it");
  line->add_flag("--json", options->json, "For programs: an array, an object a line")
      ->excludes(raw);
  line->footer(Footer({"quorvex info card", "quorvex info R0001GEN.REC",
                       "quorvex info --json card | jq '.[].type'"},
                      {kDone, kUsage, kNoInput, kUnknownType, kCutShort, kNoOutput}));
  return {line, [options] { return Info(*options); }};
}

}  // namespace quorvex::tool
