// quorvex info says what recordings are, to people and to programs.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "commands/commands.h"
#include "quorvex64.h"
#include "records/record_types.h"
#include "shared/gather.h"
#include "shared/help.h"
#include "shared/inspection.h"
#include "shared/json.h"
#include "shared/scratch.h"

namespace quorvex::tool {
namespace {

struct InfoOptions {
  std::vector<std::string> inputs;
  bool raw = false;  // the record information lines are printed as the library gives them
  bool json = false;
};

// "2024-03-07T14:05:09.123"; nothing for what is no point in time.
std::string IsoTime(const DateTimeRecord& time) {
  if (!IsPointInTime(time)) return "";
  char text[40];
  const int milliseconds = static_cast<int>(time.seconds * 1000);
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03d", time.year, time.month,
                time.day, time.hour, time.minute, milliseconds / 1000, milliseconds % 1000);
  return text;
}

// An amount to the digits that a stored float has; nothing where it is no number.
Json Amount(double amount) {
  char text[32];
  std::snprintf(text, sizeof text, "%.7g", amount);
  if (!std::isfinite(amount) || amount == kNoValueDouble) return nullptr;
  return std::strtod(text, nullptr);
}

std::string KeyOf(const InfoField& field) {
  std::string key = field.label;
  std::transform(key.begin(), key.end(), key.begin(), [](unsigned char c) {
    return c == ' ' ? '_' : static_cast<char>(std::tolower(c));
  });
  return field.form == InfoForm::kPeriods ? key + "_periods" : key;
}

void PutValue(const Fact& fact, Json* to) {
  const InfoValue& value = fact.value;
  const std::string key = KeyOf(*value.field);
  if (!value.shown) return;
  switch (value.field->form) {
    case InfoForm::kTime:
      if (const std::string time = IsoTime(value.time); !time.empty()) (*to)[key] = time;
      break;
    case InfoForm::kInterval:
      if (value.number != 0) (*to)[key] = value.number;
      break;
    case InfoForm::kDuration:
      (*to)[key] = value.number;
      break;
    case InfoForm::kPeriods:
    case InfoForm::kNumber:
      (*to)[key] = static_cast<int32_t>(value.number);
      break;
    case InfoForm::kLevel:
      (*to)[key + "_percent"] = Amount(static_cast<double>(value.level));
      [[fallthrough]];
    case InfoForm::kVolts:
    case InfoForm::kAmperes:
      (*to)[key] = Amount(value.amount);
      break;
    case InfoForm::kTrigger:
    case InfoForm::kSlope:
      if (!fact.text.empty()) (*to)[key] = fact.text;
      break;
  }
}

Json ToJson(const Facts& facts) {
  const Recording& r = facts.recording;
  Json entry = JsonOf(facts.path, r, r.records);
  // Every field that some type has, so that all entries have the same.
  for (const RecordType* type : kRecordTypes) {
    for (uint32_t i = 0; i < type->line.count; ++i) {
      const InfoField& field = type->line.fields[i];
      entry[KeyOf(field)] = nullptr;
      if (field.form == InfoForm::kLevel) entry[KeyOf(field) + "_percent"] = nullptr;
    }
  }
  for (const Fact& fact : facts.values) PutValue(fact, &entry);
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
std::string ShortTime(const DateTimeRecord& stored) {
  std::string time = IsoTime(stored).substr(0, 16);
  if (!time.empty()) time[10] = ' ';
  return time;
}

// `folder` is where all files lie; the table leaves it out.
Row ToRow(const Facts& facts, const std::string& folder) {
  const Recording& r = facts.recording;
  std::string start, end, interval;
  for (const Fact& fact : facts.values) {
    const std::string label = fact.value.field->label;
    if (label == "start" || label == "time") start = ShortTime(fact.value.time);
    if (label == "end") end = ShortTime(fact.value.time);
    if (label == "interval") interval = fact.text;
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
  for (const Fact& fact : facts.values) {
    const std::string label = fact.value.field->label;
    const bool estimate = label == "end" && facts.end_from == std::string("estimate");
    PrintLabelled(label, fact.text + (estimate ? " (estimated)" : ""));
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

ExitCode Info(const InfoOptions& options) {
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
  const auto options = std::make_shared<InfoOptions>();
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
