#include "tables/table.h"

#include <algorithm>
#include <cctype>
#include <iterator>

namespace quorvex {
namespace {

ValueType TypeOf(Kind kind) {
  switch (kind) {
    case Kind::kU8:
    case Kind::kU16:
    case Kind::kI32:
      return ValueType::kInt32;
    case Kind::kI64:
      return ValueType::kInt64;
    case Kind::kF64:
    case Kind::kSeconds:
      return ValueType::kDouble;
    case Kind::kText:
    case Kind::kRawText:
      return ValueType::kText;
    case Kind::kF32:
    case Kind::kScaledI16:
    case Kind::kScaledF32:
    case Kind::kSpectrum:
    case Kind::kNoValue:
    case Kind::kMade:
    case Kind::kGap:
    case Kind::kGroup:
      break;
  }
  return ValueType::kFloat;
}

ValueType TypeOf(const Field& f) {
  if (f.kind == Kind::kGroup) return ValueType::kTime;
  return TypeOf(f.kind == Kind::kMade ? f.made_as : f.kind);
}

// Samples are known by their channel: "u1" by its label, or a channel's element with what is
// measured there, "L12" in volts being "u12".
std::string ChannelName(const Value& value) {
  const size_t label = value.path.rfind('[');
  if (label != std::string::npos) {
    return value.path.substr(label + 1, value.path.find(']', label) - label - 1);
  }
  std::string name = value.path.substr(0, value.path.find('/'));
  if (name[0] == 'L') name.erase(0, 1);
  for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return (value.unit == "V" ? "u" : "i") + name;
}

constexpr const char* kParts[] = {"/first", "/second", "/third"};

void AddColumns(const Value& value, Table* table) {
  const Field& f = *value.field;
  std::string name = value.path.substr(value.inside);
  if (IsSample(value)) name = ChannelName(value);
  const auto parts = static_cast<uint32_t>(
      f.kind == Kind::kSpectrum ? std::min<size_t>(f.written_floats, std::size(kParts)) : 1);
  for (uint32_t part = 0; part < parts; ++part) {
    Column column{name, value.path, TypeOf(f), value.unit, value.meaning};
    column.part = part;
    if (parts > 1) column.name += kParts[part];
    table->columns.push_back(std::move(column));
  }
}

Column KeyColumn(Key key) {
  switch (key) {
    case Key::kRecord:
      return {"record", "", ValueType::kInt64, "", "number of the record in the file, from 1", key};
    case Key::kElement:
      return {"element", "", ValueType::kText, "", "name of the record's element", key};
    case Key::kOrder:
      return {"order", "", ValueType::kInt32, "", "harmonic order", key};
    case Key::kTime:
      return {"time",
              "",
              ValueType::kDouble,
              "s",
              "from the first sample; missing where no believable step is known",
              key};
    case Key::kIndex:
    case Key::kNone:
      break;
  }
  return {"index", "", ValueType::kInt64, "", "place in the list, from 1", Key::kIndex};
}

// The table of a list, which is begun with its first value.
Table* ListOf(const Value& value, TableSet* set) {
  for (Table& table : set->tables) {
    if (table.from == Table::From::kLists && table.name == value.table) return &table;
  }
  Table table = {Table::From::kLists, value.table, "what repeats in a record"};
  const Field& row = *value.list.row;
  const bool orders = row.kind == Kind::kSpectrum || row.by_order;
  if (IsSample(value)) table.meaning = "the samples of all channels";
  if (orders) table.meaning = "spectra of one kind, an order a row";
  table.columns.push_back(KeyColumn(Key::kRecord));
  table.columns.push_back(KeyColumn(orders ? Key::kOrder : Key::kIndex));
  if (IsSample(value)) table.columns.push_back(KeyColumn(Key::kTime));
  // Parts of an endless list have as many as its row has, or, where they are told one by one, less
  // than this.
  constexpr uint32_t kMostOfPart = 4096;
  table.most_rows = row.endless                   ? std::max(row.count, kMostOfPart)
                    : row.kind == Kind::kSpectrum ? OrdersOf(row)
                                                  : row.count;
  table.first_order = row.first_order;
  set->tables.push_back(std::move(table));
  return &set->tables.back();
}

void AddRecords(const RecordType& type, const Field& layout, const UifParams& settings,
                TableSet* set) {
  Table records = {Table::From::kRecords, "records", "a row a record"};
  records.columns.push_back(KeyColumn(Key::kRecord));
  if (type.list == nullptr && layout.name[0] == '\0') {
    for (uint32_t r = 0; r < layout.row_count; ++r) set->elements.emplace_back(layout.rows[r].name);
    records.columns.push_back(KeyColumn(Key::kElement));
    records.most_rows = static_cast<uint32_t>(set->elements.size());
  }
  set->tables.push_back(std::move(records));
  const size_t at = set->tables.size() - 1;
  for (Value& value : ValuesOf(layout, WiringOf(type, settings))) {
    if (!set->elements.empty()) value.path.erase(0, value.path.find('/') + 1);
    Table* table = value.list.row != nullptr ? ListOf(value, set) : &set->tables[at];
    // Records with several names share columns.
    const bool known = !set->elements.empty() &&
                       std::any_of(table->columns.begin(), table->columns.end(),
                                   [&](const Column& c) { return c.path == value.path; });
    if (!known) AddColumns(value, table);
  }
  // Voltages stand in front of currents, as people draw them.
  for (Table& table : set->tables) {
    if (table.name != kSamples) continue;
    std::stable_partition(table.columns.begin(), table.columns.end(),
                          [](const Column& c) { return c.key != Key::kNone || c.unit == "V"; });
  }
}

Table HeadTable(Table::From from, const char* name, const char* meaning) {
  Table table = {from, name, meaning};
  table.columns = {{"path", "", ValueType::kText, "", "what it is"},
                   {"value", "", ValueType::kText, "", "as it is shown"},
                   {"unit", "", ValueType::kText}};
  return table;
}

}  // namespace

const Table* TableSet::Find(const std::string& name) const {
  const auto found = std::find_if(tables.begin(), tables.end(),
                                  [&](const Table& table) { return table.name == name; });
  return found != tables.end() ? &*found : nullptr;
}

TableSet TablesOf(const RecordType& type, const UifParams& settings) {
  return TablesOf(type, type.walk != nullptr ? LayoutOf(type, settings) : nullptr, settings);
}

TableSet TablesOf(const RecordType& type, const Field* layout, const UifParams& settings) {
  TableSet set;
  set.tables.push_back(HeadTable(Table::From::kFile, "file", "what the recording is"));
  if (type.settings_at != 0) {
    set.tables.push_back(
        HeadTable(Table::From::kSettings, "settings", "the settings, as documents show them"));
  }
  if (layout != nullptr) AddRecords(type, *layout, settings, &set);
  return set;
}

std::string WordOf(const RecordType& type, const Field* layout) {
  for (uint32_t i = 0; type.choice != nullptr && i < type.choice->count; ++i) {
    if (type.choice->layouts[i] == layout) {
      return std::string(type.word) + "_" + type.choice->words[i];
    }
  }
  return type.word;
}

const char* NameOf(ValueType type) {
  constexpr const char* kNames[] = {"int32", "int64", "float", "double", "text", "time"};
  return kNames[static_cast<size_t>(type)];
}

}  // namespace quorvex
