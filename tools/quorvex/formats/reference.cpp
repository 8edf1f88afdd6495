// The format reference: layouts of files and trees of documents, as the tables have them.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <iterator>

#include "document_tree.h"
#include "generate.h"
#include "layout_lines.h"
#include "records/record_types.h"
#include "settings/settings_table.h"
#include "xml/document.h"

namespace quorvex::tool {
namespace {

struct Reference {
  std::string text;
  std::vector<const Field*> structures;  // met so far, in order, to be described
};

std::string Anchor(const std::string& heading) {
  std::string anchor;
  for (const char c : heading) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-') {
      anchor += static_cast<char>(std::tolower(c));
    } else if (c == ' ') {
      anchor += '-';
    }
  }
  return anchor;
}
std::string Link(const std::string& heading) {
  return "[" + heading + "](#" + Anchor(heading) + ")";
}
std::string Heading(const RecordType& type) { return std::to_string(type.type) + ": " + type.name; }

constexpr char kIntroduction[] = R"(# Formats

Made by `scripts/generate` from the layout tables; not edited by hand.

What the bytes of a recording mean, and where they stand in its document. Numbers are little-endian
and packed; offsets count from the start of the file, the record or the structure that a table
describes. Layout tables follow the bytes, trees follow the document.

| Type | Bytes | In the document |
|---|---|---|
| u8, u16 | 1, 2 | unsigned decimal |
| i32, i64 | 4, 8 | signed decimal, whatever the word counts |
| f32, f64 | 4, 8 | seven significant digits, `2.301000E+02`; `INF`, `-INF`, `NAN`, `-NAN` |
| i16 | 2 | raw sample, written like f32 after scaling |
| text | its width | letters, digits and ` .,!%&=+-*/_` stay, line ends become `\`, the rest `?` |
| n × m f32 | 4 n m | base64 of the written floats of each entry, from harmonic order 0 on where no other is named |

A text ends at its first NUL; clamp names stand as they are. A float that holds -1e37 (f64: that
value widened) has no value and reads `-`; in base64 it is +infinity.

*When* tells which recordings write an element: by the connection code of the settings
(`CONNECTION`; *other* stands for every code but 1 to 7), and by whether the instrument keeps full
or reduced lists (reduced where a byte of the settings is not 0, the one at )";

constexpr char kRules[] = R"().

In trees, `?` marks an element that not every recording has, `*` any number, `{n}` that many, and
brackets hold the values of the attribute `phase`.

XML Schemas of the documents are in [schema/](../schema): one for each record type, and
`quorvex-any.xsd` for documents of any type. `quorvex schema --type N` prints them.

    xmllint --noout --schema schema/quorvex-10.xsd R0010RVC.xml

All documents have the root `Project`, and XML Schema 1.0 gives an element one type wherever it
stands under the same parent. So the schema of any type holds the elements of every type at once,
those that only some have as optional ones; likewise the schemas of types with several layouts. Use
the schema of the type where it is known: it also insists on `FILE_TYPE`. A text with an ampersand,
or a clamp name with an angle bracket, makes a document that is not well-formed, so that no schema
accepts it.

## Contents

)";

// A table without the columns that have nothing to say.
void PutTable(Reference* to, const std::vector<std::string>& heads,
              const std::vector<std::vector<std::string>>& rows) {
  std::vector<size_t> shown;
  for (size_t c = 0; c < heads.size(); ++c) {
    if (std::any_of(rows.begin(), rows.end(), [c](const auto& row) { return !row[c].empty(); })) {
      shown.push_back(c);
    }
  }
  const auto put = [&](const std::vector<std::string>& row) {
    for (const size_t c : shown) to->text += "| " + row[c] + (row[c].empty() ? "" : " ");
    to->text += "|\n";
  };
  put(heads);
  for (size_t c = 0; c < shown.size(); ++c) to->text += "|---";
  to->text += "|\n";
  for (const auto& row : rows) put(row);
  to->text += "\n";
}

// The bytes of a table in the order in which they are stored.
void PutLayout(Reference* to, const Field& group) {
  std::vector<std::vector<std::string>> rows;
  for (const LayoutLine& line : LinesOf(group)) {
    std::string type = line.type;
    if (line.row->structure != nullptr) {
      type = Link(line.row->structure->name);
      const auto same = [&line](const Field* known) {
        return std::strcmp(known->structure->name, line.row->structure->name) == 0;
      };
      if (std::none_of(to->structures.begin(), to->structures.end(), same)) {
        to->structures.push_back(line.row);
      }
    }
    std::string element = line.path;
    if (!line.phases.empty()) element += "[" + line.phases + "]" + line.inner_path;
    rows.push_back({line.offset == kNext ? "next" : std::to_string(line.offset), line.bytes, type,
                    element.empty() ? "" : Code(element), line.meaning, line.unit, line.when});
  }
  PutTable(to, {"Offset", "Bytes", "Type", "Element", "Meaning", "Unit", "When"}, rows);
}

std::string Repetition(const Node& node) {
  if (node.least == 1 && node.most == 1) return "";
  if (node.least == 0 && node.most == 1) return "?";
  if (node.most == kUnbounded) return "*";
  if (node.least == node.most) return "{" + std::to_string(node.most) + "}";
  return "{" + std::to_string(node.least) + "-" + std::to_string(node.most) + "}";
}

std::string TreeName(const Node& node) {
  std::string text = node.name.empty() ? "(...)" : node.name;
  if (!node.phases.empty()) {
    text += "[";
    for (const std::string& phase : node.phases) text += (text.back() == '[' ? "" : " ") + phase;
    text += "]";
  }
  return text + Repetition(node);
}

// The only element of a group stands on its line.
const Node* OnlyChild(const Node& node) {
  if (!node.structures.empty() || node.children.size() != 1) return nullptr;
  const Node& child = node.children[0];
  const bool plain = !child.structures.empty() || child.children.empty();
  return plain && !child.name.empty() ? &child : nullptr;
}

// Elements of one kind in a row share a line.
void PutTree(Reference* to, const std::vector<Node>& nodes, int depth) {
  constexpr size_t kWidth = 98;
  const std::string indent(2 * static_cast<size_t>(depth), ' ');
  std::string line, kind;
  const auto end = [&] {
    if (!line.empty()) to->text += line + (kind.empty() ? "" : "  (" + kind + ")") + "\n";
    line.clear();
  };
  for (const Node& node : nodes) {
    const Node* only = OnlyChild(node);
    const Node& last = only != nullptr ? *only : node;
    const std::string name = TreeName(node) + (only != nullptr ? "/" + TreeName(*only) : "");
    const bool inner = last.structures.empty() && !last.children.empty();
    const std::string own = last.structures.empty() ? "" : last.structures[0];
    if (inner || own != kind || line.size() + name.size() + kind.size() + 5 > kWidth) end();
    kind = own;
    line += (line.empty() ? indent : " ") + name;
    if (inner) {
      end();
      PutTree(to, node.children, depth + 1);
    }
  }
  end();
}

void PutFile(Reference* to, const RecordType& type) {
  std::vector<std::vector<std::string>> parts;
  const auto part = [&parts](uint32_t at, uint32_t size, const std::string& what) {
    parts.push_back({std::to_string(at), size == 0 ? "" : std::to_string(size), what});
  };
  part(0, kFileHeaderSize, "file version and record type, each i32 (`FILE_HEADER`)");
  uint32_t end = kFileHeaderSize;
  if (type.settings_at != 0) {
    if (type.settings_at != end) part(end, type.settings_at - end, "not written");
    part(type.settings_at, kSettingsSize,
         Link(kSettingsBlock.structure->name) + " (`" + kSettingsBlock.name + "`)");
    end = type.settings_at + kSettingsSize;
  }
  if (type.information != nullptr) {
    part(end, type.information->size, std::string("`") + type.information->name + "`, below");
  }
  const std::vector<const Field*> layouts = LayoutsOf(type);
  if (layouts.size() == 1) {
    part(type.records_at, 0, type.once ? "the record" : "records, back to back");
  } else if (!layouts.empty()) {
    part(type.records_at, 0, "records of one of the layouts below, back to back");
  }
  PutTable(to, {"Offset", "Bytes", "Content"}, parts);
}

void PutDocument(Reference* to, const RecordType& type, const Field* layout) {
  to->text += "```\n" + std::string(kRootElement) + "\n  FILE_HEADER\n";
  if (type.settings_at != 0) to->text += std::string("  ") + kSettingsBlock.name + "\n";
  if (type.information != nullptr) {
    to->text += std::string("  ") + type.information->name + "\n";
    PutTree(to, NodesOf(*type.information), 2);
  }
  PutTree(to, RecordsOf(type, layout), 1);
  to->text += "```\n\n";
}

// What becomes of a last record that is cut short.
std::string CutText(const RecordType& type) {
  if (LayoutsOf(type).empty()) return "";
  const std::string record = type.once ? " A record" : " A last record";
  const auto [from, rest] = type.cut;
  if (from == kLeftOut.from) return record + " that is cut short is left out.";
  std::string text = record + " that is cut short is written";
  if (from > 1) text += " where its first " + std::to_string(from) + " bytes are there";
  text += ": " + std::string(rest) + ".";
  if (type.record_settings_at == 0) return text;
  return text + " What the first lacks of its settings is taken from those of the file.";
}

void PutType(Reference* to, const RecordType& type) {
  to->text += "## " + Heading(type) + "\n\n";
  const auto earlier = std::find_if(
      std::begin(kRecordTypes), std::end(kRecordTypes), [&type](const RecordType* other) {
        return other->type < type.type && other->record == type.record && type.record != nullptr;
      });
  if (earlier != std::end(kRecordTypes)) {
    to->text += "The same as " + Link(Heading(**earlier)) + " but for the number.\n\n";
    return;
  }
  to->text += type.about + CutText(type) + "\n\n";
  if (type.companion) {
    to->text += "A setting file beside the recording replaces its settings.\n\n";
  }
  PutFile(to, type);
  if (type.information != nullptr) {
    to->text += "**" + Code(type.information->name) + "**, " + type.information->meaning + ", " +
                std::to_string(type.information->size) + " bytes:\n\n";
    PutLayout(to, *type.information);
  }
  for (const Field* layout : LayoutsOf(type)) {
    to->text += "**" + std::string(layout->name[0] != '\0' ? Code(layout->name) : "The record") +
                "**" + (layout->meaning[0] != '\0' ? ", " + std::string(layout->meaning) : "");
    if (!HasPartsBehind(*layout)) to->text += ", " + std::to_string(layout->size) + " bytes";
    to->text += ":\n\n";
    PutLayout(to, *layout);
    PutDocument(to, type, layout);
  }
  if (LayoutsOf(type).empty()) PutDocument(to, type, nullptr);
}

}  // namespace

std::string FormatReference() {
  Reference reference;
  std::string& text = reference.text;
  text = kIntroduction + std::to_string(offsetof(UifParams, reduced_lists)) + kRules;
  for (const RecordType* type : kRecordTypes) text += "- " + Link(Heading(*type)) + "\n";
  const std::string contents = text;
  text.clear();
  reference.structures.push_back(&kSettingsBlock);
  for (const RecordType* type : kRecordTypes) PutType(&reference, *type);
  text += "## Structures\n\n";
  std::string names;
  for (size_t i = 0; i < reference.structures.size(); ++i) {
    const Field& structure = *reference.structures[i];
    const StructureInfo& info = *structure.structure;
    names += (i == 0 ? "" : ", ") + Link(info.name);
    text += "### " + std::string(info.name) + "\n\n";
    if (info.note[0] != '\0') text += std::string(info.note) + "\n\n";
    PutLayout(&reference, structure);
    text += "```\n";
    PutTree(&reference, NodesOf(structure), 0);
    text += "```\n\n";
  }
  while (text.size() > 1 && text[text.size() - 2] == '\n') text.pop_back();
  return contents + "- " + Link("Structures") + ": " + names + "\n\n" + text;
}

}  // namespace quorvex::tool
