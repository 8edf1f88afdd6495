// The elements of documents, gathered from the layout tables: what schema and format reference are
// made from.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "records/recording.h"

namespace quorvex::tool {

constexpr uint32_t kUnbounded = UINT32_MAX;

// How an element's text reads. `size` is the width of a text, the decoded bytes of base64; `most`
// is the bound of an integer that has one, and `own_line` makes a difference to integers only.
struct ValueForm {
  Kind kind;
  uint32_t size = 0;
  int32_t most = INT32_MAX;
  bool own_line = false;
  auto operator<=>(const ValueForm&) const = default;  // NOLINT(modernize-use-nullptr): no pointer
};

// An element, or, without a name, a sequence of elements.
struct Node {
  std::string name;
  std::string meaning, unit;
  std::string fixed;                    // the one text that it has, empty where it may have others
  std::vector<std::string> phases;      // values of the attribute `phase`, none without it
  std::vector<std::string> structures;  // what its content is known as; several in alternatives
  std::set<ValueForm> values;           // forms of its text, none around elements
  std::vector<Node> children;
  uint32_t least = 1, most = 1;  // repetitions
};

// What a row means, with the words of its codes.
std::string MeaningOf(const Field& f);

// The elements of a table's rows.
std::vector<Node> NodesOf(const Field& group);

// Elements of either list, in an order that both keep; what one of them lacks is optional.
std::vector<Node> Merged(const std::vector<Node>& first, const std::vector<Node>& second);

// The records of a type, with the list around them where there is one. `layout` is null for all
// layouts of a type with several.
std::vector<Node> RecordsOf(const RecordType& type, const Field* layout = nullptr);

// The content of the root: of one type's documents, and of any type's.
std::vector<Node> DocumentOf(const RecordType& type);
std::vector<Node> DocumentOfAnyType();

// Every layout of a type's records, none for a type without records.
std::vector<const Field*> LayoutsOf(const RecordType& type);

}  // namespace quorvex::tool
