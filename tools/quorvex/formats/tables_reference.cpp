// The reference of tables: what stands in the columns of each record type, whatever its wiring.
#include <algorithm>
#include <cctype>
#include <cstddef>

#include "generate.h"
#include "records/record_types.h"
#include "tables/table.h"

namespace quorvex::tool {
namespace {

constexpr char kTablesIntroduction[] = R"(# Tables

Made by `scripts/generate` from the layout tables; not edited by hand.

A recording gives a few tables. They are the same in CSV files, in a database, in Python and through
`QuorvexTables`; docs/command-line.md says how to get them.

- **`file`**: what the recording is, a value a row: its header and what `quorvex info` says.
- **`settings`**: the instrument's settings and information blocks, a value a row, as documents show
  them (a date-time is one value), with paths such as `UIF_PARAMS/NOMINAL_VOLTAGE`. Sessions have none.
- **`records`**: a row a record. A column has the path of its element inside the record's, phases in
  brackets: `VOLTAGES/U[u1]/rms/max`. Missing values are missing.
- **Lists and spectra**: what repeats inside a record is a table of its own, with the record's number
  and the place in the list (`index`, from 1) or the harmonic `order` in front. What repeats together
  stands side by side. The samples of all channels are the table `samples`: `time` is in seconds from
  the first one, where a step between 1 us and 10 ms is known, and columns have the names of channels.
- In a **database** the tables of each kind of recordings stand together: `general_full_records` has
  the rows of all full general recordings, `snapshots_samples` those of all snapshots, with the number
  of the recording in front. The word in front of each table is given below.

Numbers are the recording's own: floats have 32 bits and are not cut to the seven digits of documents,
samples are scaled exactly as documents show them before rounding. The value -1e37, by which a
recording says that there is none, is missing, also in spectra and in samples before they are scaled. A
spectrum of a compact record is its own 25 orders, 1 to 25; documents run on behind them. Where an
order has several floats, the columns end in `/first`, `/second` and `/third`: what they are is not
known. Times are those of the instrument's clock, in microseconds, and missing where there is no such
point in time; `--utc-offset` shifts them to UTC. Bytes of a text that are no UTF-8 are U+FFFD.

Which columns a recording has follows from its settings: `quorvex export RECORDING --list` says it. Below
are those of all wirings together, in the order of the document; names in braces stand for one column
each.

)";

// Columns whose names differ in some of their parts: every combination of these is one.
struct Family {
  std::vector<std::vector<std::string>> parts;
  std::string type, unit;
};

std::vector<std::vector<std::string>> PartsOf(const std::string& name) {
  std::vector<std::vector<std::string>> parts;
  for (size_t at = 0; at <= name.size();) {
    const size_t end = std::min(name.find('/', at), name.size());
    parts.push_back({name.substr(at, end - at)});
    at = end + 1;
  }
  return parts;
}

// Takes the columns of the other in where both differ in one part. False where they do not.
bool Merge(const Family& other, Family* family) {
  if (family->parts.size() != other.parts.size() || family->type != other.type ||
      family->unit != other.unit) {
    return false;
  }
  size_t differing = 0, at = 0;
  for (size_t i = 0; i < family->parts.size(); ++i) {
    if (family->parts[i] == other.parts[i]) continue;
    ++differing;
    at = i;
  }
  if (differing != 1) return false;
  family->parts[at].insert(family->parts[at].end(), other.parts[at].begin(), other.parts[at].end());
  return true;
}

// "rms", "{min, max}", "U[{u1, u2}]"
std::string OneOf(const std::vector<std::string>& all) {
  if (all.size() == 1) return all[0];
  const std::string front = all[0].substr(0, all[0].find('[') + 1);
  const bool phases = std::all_of(all.begin(), all.end(), [&](const std::string& one) {
    return !front.empty() && one.compare(0, front.size(), front) == 0;
  });
  std::string text;
  for (const std::string& one : all) {
    text += (text.empty() ? "" : ", ") +
            (phases ? one.substr(front.size(), one.size() - front.size() - 1) : one);
  }
  return phases ? front + "{" + text + "}]" : "{" + text + "}";
}

std::string Lines(const std::vector<Column>& columns) {
  std::vector<Family> families;
  bool settings = false;
  for (const Column& column : columns) {
    const bool setting = column.name.compare(0, 11, "UIF_PARAMS/") == 0;
    settings = settings || setting;
    const Family family = {PartsOf(column.name), NameOf(column.type), column.unit};
    if (!setting && (families.empty() || !Merge(family, &families.back()))) {
      families.push_back(family);
    }
  }
  for (size_t before = 0; before != families.size();) {
    before = families.size();
    for (size_t i = 0; i < families.size(); ++i) {
      const auto merged = [&](const Family& other) { return Merge(other, &families[i]); };
      const auto behind = families.begin() + static_cast<std::ptrdiff_t>(i) + 1;
      families.erase(std::remove_if(behind, families.end(), merged), families.end());
    }
  }
  std::string text = "\n| Columns | Type | Unit |\n|---|---|---|\n";
  for (const Family& f : families) {
    std::string name;
    for (const auto& part : f.parts) name += (name.empty() ? "" : "/") + OneOf(part);
    text += "| `" + name + "` | " + f.type + " | " + f.unit + " |\n";
  }
  if (settings) text += "| `UIF_PARAMS/...` | | the values of `settings` |\n";
  return text;
}

// The tables of a layout with every wiring and kind of lists, their columns together.
std::vector<Table> TablesOfAll(const RecordType& type, const Field* layout) {
  std::vector<Table> all;
  for (unsigned which = 0; which < 16; ++which) {
    UifParams settings{};
    settings.connection = static_cast<uint8_t>(which % 8);
    settings.reduced_lists = static_cast<uint8_t>(which / 8);
    for (Table& table : TablesOf(type, layout, settings).tables) {
      const auto known = std::find_if(all.begin(), all.end(),
                                      [&](const Table& one) { return one.name == table.name; });
      if (known == all.end()) {
        all.push_back(std::move(table));
        continue;
      }
      // A new column goes behind the one that it follows here.
      auto place = known->columns.begin();
      for (const Column& column : table.columns) {
        const auto same = std::find_if(known->columns.begin(), known->columns.end(),
                                       [&](const Column& one) { return one.name == column.name; });
        place = same != known->columns.end() ? same + 1 : known->columns.insert(place, column) + 1;
      }
    }
  }
  return all;
}

}  // namespace

std::string TablesReference() {
  std::string text = kTablesIntroduction;
  for (const RecordType* type : kRecordTypes) {
    text += "## " + std::to_string(type->type) + ": " + type->name + "\n\n";
    std::vector<const Field*> layouts = {type->record};
    if (type->choice != nullptr) {
      layouts.assign(type->choice->layouts, type->choice->layouts + type->choice->count);
    }
    for (const Field* layout : layouts) {
      if (layout == nullptr) {
        text += "`" + WordOf(*type, layout) + "`: `file` and `settings` alone.\n\n";
        continue;
      }
      text += "### " + WordOf(*type, layout) + "\n\n";
      if (layout->meaning[0] != '\0') {
        std::string meaning = layout->meaning;
        meaning[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(meaning[0])));
        text += meaning + ".\n\n";
      }
      for (const Table& table : TablesOfAll(*type, layout)) {
        if (table.from == Table::From::kFile || table.from == Table::From::kSettings) continue;
        text += "**`" + table.name + "`**: " + table.meaning + ".\n" + Lines(table.columns) + "\n";
      }
    }
  }
  text.pop_back();
  return text;
}

}  // namespace quorvex::tool
