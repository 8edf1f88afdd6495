// quorvex info says what recordings are, to people and to programs.
#include <algorithm>
#include <cstdio>

#include "commands/commands.h"
#include "quorvex64.h"
#include "records/record_types.h"
#include "shared/gather.h"
#include "shared/help.h"
#include "shared/inspection.h"
#include "shared/json.h"
#include "shared/paths.h"
#include "shared/scratch.h"

namespace quorvex::tool {
namespace {

struct InfoOptions {
  std::vector<std::string> inputs;
  bool raw = false;  // the record information lines are printed as the library gives them
  bool json = false;
};

void PutValue(const Fact& fact, Json* to) {
  for (const PlainFact& value : PlainFacts(fact)) {
    if (value.text.empty()) continue;
    (*to)[value.key] = value.is == PlainFact::Is::kText   ? Json(value.text)
                       : value.is == PlainFact::Is::kReal ? Json(std::stod(value.text))
                                                          : Json(std::stoll(value.text));
  }
}

Json ToJson(const RecordingFacts& of) {
  const Recording& r = of.recording;
  const Facts& facts = of.facts;
  Json entry = JsonOf(of.path, r, r.records);
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
std::string ShortTime(const Fact& fact) {
  std::string time = PlainFacts(fact)[0].text.substr(0, 16);
  if (!time.empty()) time[10] = ' ';
  return time;
}

// `folder` is where all files lie; the table leaves it out.
Row ToRow(const RecordingFacts& of, const std::string& folder) {
  const Recording& r = of.recording;
  std::string start, end, interval;
  for (const Fact& fact : of.facts.values) {
    const std::string label = fact.value.field->label;
    if (label == "start" || label == "time") start = ShortTime(fact);
    if (label == "end") end = ShortTime(fact);
    if (label == "interval") interval = fact.text;
  }
  return {Shown(CalledName(of.path).substr(folder.size())),
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

void PrintLabelled(const RecordingFacts& of) {
  const Recording& r = of.recording;
  PrintLabelled("file", CalledName(of.path));
  PrintLabelled("type", std::to_string(r.type->type) + ", " + r.type->name);
  PrintLabelled("version", std::to_string(static_cast<int32_t>(r.header->version)));
  PrintLabelled("size", std::to_string(r.size) + " bytes");
  if (r.records) PrintLabelled("records", std::to_string(*r.records));
  for (const Fact& fact : of.facts.values) {
    const std::string label = fact.value.field->label;
    const bool estimate = label == "end" && of.facts.end_from == std::string("estimate");
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
    const RecordingFacts facts = FactsOf(path);
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
