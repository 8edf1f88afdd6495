#include "document_tree.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "records/record_types.h"
#include "settings/settings_table.h"

namespace quorvex::tool {
namespace {

constexpr unsigned kCaseCount = 16;

// Repetitions of an element in each case.
struct Counted {
  Node node;
  std::array<uint32_t, kCaseCount> least{}, most{};
};

uint32_t Sum(uint32_t a, uint32_t b) {
  return a == kUnbounded || b == kUnbounded ? kUnbounded : a + b;
}

[[noreturn]] void Fail(const std::string& what) {
  std::fprintf(stderr, "quorvex: %s\n", what.c_str());
  std::exit(1);
}

template <typename T>
void AddMissing(const std::vector<T>& from, std::vector<T>* to) {
  for (const T& value : from) {
    if (std::find(to->begin(), to->end(), value) == to->end()) to->push_back(value);
  }
}

// What either element may hold. Repetitions stay those of the first.
void MergeContent(const Node& other, Node* node) {
  if (node->phases.empty() != other.phases.empty()) Fail(node->name + " with and without phase");
  if (node->values.empty() != other.values.empty()) Fail(node->name + " with and without text");
  AddMissing(other.phases, &node->phases);
  node->values.insert(other.values.begin(), other.values.end());
  if (node->fixed != other.fixed) node->fixed.clear();
  if (node->structures != other.structures || node->structures.empty()) {
    node->children = Merged(node->children, other.children);
    if (node->structures.empty() || other.structures.empty()) {
      node->structures.clear();
    } else {
      AddMissing(other.structures, &node->structures);
    }
  }
  // A meaning or a unit of one alternative would be wrong for the other.
  if (node->unit != other.unit) node->unit.clear();
  if (node->meaning != other.meaning) {
    if (node->phases.empty() || node->children.empty()) node->meaning.clear();
    node->unit.clear();
  }
}

ValueForm FormOf(const Field& f) {
  switch (f.kind) {
    case Kind::kText:
    case Kind::kRawText:
      return {f.kind, f.size};
    case Kind::kMade:
      return {f.made_as};
    case Kind::kSpectrum:
      return {f.kind, f.size / f.entry_floats * f.written_floats};
    case Kind::kScaledI16:
    case Kind::kScaledF32:
      return {Kind::kF32};
    case Kind::kU8:
    case Kind::kU16:
    case Kind::kI32:
    case Kind::kI64:
    case Kind::kF32:
    case Kind::kF64:
    case Kind::kSeconds:
    case Kind::kNoValue:
    case Kind::kGap:
    case Kind::kGroup:
      break;
  }
  return {f.kind, 0, f.most, f.own_line};
}

std::vector<Node> NodesIn(const Field& group, Cases in);

Node NodeOf(const Field& f, Cases in) {
  Node node;
  node.name = f.name;
  node.meaning = MeaningOf(f);
  node.unit = f.unit;
  if (f.phase != nullptr) node.phases.emplace_back(f.phase);
  if (f.kind == Kind::kGroup) {
    // A structure is the same wherever it stands.
    node.children = NodesIn(f, f.structure != nullptr ? kAllCases : in);
    if (f.structure != nullptr) node.structures.emplace_back(f.structure->name);
  } else {
    node.values.insert(FormOf(f));
  }
  return node;
}

void Gather(const Field& group, Cases in, std::vector<Counted>* to) {
  for (uint32_t r = 0; r < group.row_count; ++r) {
    const Field& f = group.rows[r];
    const auto here = static_cast<Cases>(in & f.cases);
    if (f.kind == Kind::kGap || here == 0) continue;
    if (f.kind == Kind::kGroup && f.name[0] == '\0' && !f.repeated) {
      Gather(f, here, to);
      continue;
    }
    Counted row{NodeOf(f, here)};
    for (unsigned which = 0; which < kCaseCount; ++which) {
      if ((here >> which & 1) == 0) continue;
      row.least[which] = f.count_from == CountFrom::kTable ? f.count : 0;
      row.most[which] = f.endless ? kUnbounded : f.count;
    }
    // Elements of one name in a row are one element that repeats.
    if (!to->empty() && !row.node.name.empty() && to->back().node.name == row.node.name) {
      Counted& same = to->back();
      MergeContent(row.node, &same.node);
      for (unsigned which = 0; which < kCaseCount; ++which) {
        same.least[which] = Sum(same.least[which], row.least[which]);
        same.most[which] = Sum(same.most[which], row.most[which]);
      }
    } else {
      to->push_back(std::move(row));
    }
  }
}

std::vector<Node> NodesIn(const Field& group, Cases in) {
  std::vector<Counted> rows;
  Gather(group, in, &rows);
  std::vector<Node> nodes;
  for (Counted& row : rows) {
    row.node.least = kUnbounded;
    row.node.most = 0;
    for (unsigned which = 0; which < kCaseCount; ++which) {
      if ((in >> which & 1) == 0) continue;
      row.node.least = std::min(row.node.least, row.least[which]);
      row.node.most = std::max(row.node.most, row.most[which]);
    }
    nodes.push_back(std::move(row.node));
  }
  return nodes;
}

}  // namespace

std::string MeaningOf(const Field& f) {
  std::string text = f.meaning;
  std::string before = ": ";
  for (uint32_t value = 0; f.codes != nullptr && value < f.codes->count; ++value) {
    const std::string word = WordOf(*f.codes, value);
    if (word.empty()) continue;
    text += before + std::to_string(value) + " " + word;
    before = ", ";
  }
  return text;
}

std::vector<Node> NodesOf(const Field& group) { return NodesIn(group, kAllCases); }

std::vector<Node> Merged(const std::vector<Node>& first, const std::vector<Node>& second) {
  std::vector<Node> merged;
  auto next = first.begin();
  const auto add_optional = [&merged](const Node& node) {
    merged.push_back(node);
    merged.back().least = 0;
  };
  for (const Node& node : second) {
    const auto is_same = [&node](const Node& other) { return other.name == node.name; };
    const auto same = std::find_if(next, first.end(), is_same);
    if (same == first.end()) {
      add_optional(node);
      // Written earlier in one list and later in the other: it may stand in either place.
      const auto earlier = std::find_if(merged.begin(), merged.end() - 1, is_same);
      if (earlier == merged.end() - 1) continue;
      MergeContent(node, &*earlier);
      earlier->least = 0;
      merged.back() = *earlier;
      continue;
    }
    std::for_each(next, same, add_optional);
    merged.push_back(*same);
    MergeContent(node, &merged.back());
    merged.back().least = std::min(same->least, node.least);
    merged.back().most = std::max(same->most, node.most);
    next = same + 1;
  }
  std::for_each(next, first.end(), add_optional);
  return merged;
}

std::vector<const Field*> LayoutsOf(const RecordType& type) {
  if (type.choice != nullptr) {
    return {type.choice->layouts, type.choice->layouts + type.choice->count};
  }
  if (type.record != nullptr) return {type.record};
  return {};
}

std::vector<Node> RecordsOf(const RecordType& type, const Field* layout) {
  std::vector<Node> records;
  for (const Field* one : LayoutsOf(type)) {
    if (layout != nullptr && one != layout) continue;
    std::vector<Node> nodes = NodesOf(*one);
    if (one->name[0] != '\0') {
      Node record = NodeOf(*one, kAllCases);
      if (!type.once) {
        record.least = 0;
        record.most = kUnbounded;
      }
      nodes = {std::move(record)};
    }
    records = records.empty() ? nodes : Merged(records, nodes);
  }
  if (type.list == nullptr) return records;
  Node list;
  list.name = type.list;
  list.children = std::move(records);
  return {std::move(list)};
}

std::vector<Node> DocumentOf(const RecordType& type) {
  std::vector<Node> document = {NodeOf(kFileHeader, kAllCases)};
  for (Node& node : document[0].children) {
    if (node.name == kFileHeaderRows[1].name) node.fixed = std::to_string(type.type);
  }
  if (type.settings_at != 0) document.push_back(NodeOf(kSettingsBlock, kAllCases));
  if (type.information != nullptr) document.push_back(NodeOf(*type.information, kAllCases));
  std::vector<Node> records = RecordsOf(type);
  std::move(records.begin(), records.end(), std::back_inserter(document));
  return document;
}

std::vector<Node> DocumentOfAnyType() {
  std::vector<Node> document;
  for (const RecordType* type : kRecordTypes) {
    const std::vector<Node> nodes = DocumentOf(*type);
    document = document.empty() ? nodes : Merged(document, nodes);
  }
  return document;
}

}  // namespace quorvex::tool
