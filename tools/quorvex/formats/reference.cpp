// The format reference: layouts of files and trees of documents, as the tables have them.
#include <algorithm>
#include <cctype>
#include <cstring>
#include <iterator>
#include <utility>

#include "document_tree.h"
#include "generate.h"
#include "records/record_types.h"
#include "settings/settings_table.h"
#include "xml/document.h"

namespace quorvex::tool {
namespace {

constexpr uint32_t kNext = UINT32_MAX;  // an offset: behind the row before

// A line of a layout: an element, or elements that differ by their phase only.
struct Line {
  uint32_t offset = 0, size = 0, count = 1;
  bool again = false;                    // reads what another has
  std::string path, phases, inner_path;  // path, phases of its last element, what is inside that
  std::string bytes, type, meaning, unit, when;
};

struct Reference {
  std::string text;
  std::vector<Field> structures;  // met so far, in order, to be described
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
std::string Code(const std::string& text) { return "`" + text + "`"; }
std::string Heading(const RecordType& type) { return std::to_string(type.type) + ": " + type.name; }

std::string Codes(unsigned bits) {
  if ((bits & 0xFF) == 0xFE) return "1 to 7";
  std::string text;
  for (unsigned code = 1; code <= 7; ++code) {
    if ((bits >> code & 1) != 0) text += (text.empty() ? "" : ", ") + std::to_string(code);
  }
  if ((bits & 1) != 0) text += text.empty() ? "other" : ", other";
  return text;
}

// In words, which recordings have a row.
std::string WhenText(Cases cases) {
  const unsigned full = cases & 0xFFu, reduced = cases >> 8;
  std::string text;
  if (full == 0) text = "reduced lists";
  if (reduced == 0) text = "full lists";
  const unsigned connections = full | reduced;
  if (connections != 0xFF)
    text += (text.empty() ? "" : "; ") + ("connection " + Codes(connections));
  return text;
}

std::string TypeText(const Field& f) {
  switch (f.kind) {
    case Kind::kGap:
      return "";
    case Kind::kU8:
      return "u8";
    case Kind::kU16:
      return "u16";
    case Kind::kI32:
    case Kind::kFlagWord:
      return "i32";
    case Kind::kI64:
      return "i64";
    case Kind::kF32:
    case Kind::kScaledF32:
      return "f32";
    case Kind::kF64:
    case Kind::kSeconds:
      return "f64";
    case Kind::kScaledI16:
      return "i16";
    case Kind::kMade:
      return "computed";
    case Kind::kSpectrum: {
      const std::string floats = std::to_string(f.size / f.entry_floats / 4) + " × " +
                                 std::to_string(f.entry_floats) + " f32";
      if (f.entry_floats == f.written_floats) return floats;
      return floats + ", " + std::to_string(f.written_floats) + " written";
    }
    default:
      return "text";
  }
}

// Bytes from a table's first to behind its last.
uint32_t ExtentOf(const Field& group) {
  uint32_t end = group.size;
  for (uint32_t r = 0; r < group.row_count; ++r) {
    const Field& f = group.rows[r];
    if (f.behind) continue;
    const uint32_t size = f.kind == Kind::kGroup ? ExtentOf(f) : f.size;
    end = std::max(end, f.offset + size + (f.count - 1) * f.step);
  }
  return end;
}

// Bytes that are a row's own.
uint32_t ClaimsOf(const Field& f) {
  uint32_t claims = f.claims;
  for (uint32_t r = 0; r < f.row_count; ++r) claims += ClaimsOf(f.rows[r]);
  return claims;
}

bool HasPartsBehind(const Field& group) {
  return std::any_of(group.rows, group.rows + group.row_count,
                     [](const Field& f) { return f.behind || HasPartsBehind(f); });
}

// What a count in the record stands in: an element, or bytes that none shows.
std::string CountText(const Field& f, const Field& enclosing, uint32_t place) {
  if (f.count_from == CountFrom::kTable) return "";
  if (f.count_from == CountFrom::kInput) {
    const std::string path = f.counted_by;
    return Code(path.substr(path.rfind('/') + 1)) + " of them";
  }
  for (uint32_t r = 0; r < enclosing.row_count; ++r) {
    const Field& row = enclosing.rows[r];
    const bool shown = row.kind != Kind::kGap && row.name[0] != '\0';
    if (shown && row.offset == f.count_ref && row.size == 4) return Code(row.name) + " of them";
  }
  const std::string at = std::to_string(place + f.count_ref);
  if (f.count == 1) return "where the i32 at " + at + " is above 0";
  return "as many as the i32 at " + at + " says";
}

// Where rows stand: in which group, on which path of elements, under which conditions.
struct Around {
  uint32_t place = 0;
  std::string path, phase, inner_path, meaning;
  Cases cases = kAllCases;
  bool behind = false;
  uint32_t count = 1, step = 0;  // repetitions of the group
  std::string repeated;          // how many of them there are, in words
};

void Join(std::string* text, const std::string& more) {
  if (!more.empty()) *text += (text->empty() ? "" : "; ") + more;
}

void Flatten(Reference* to, const Field& group, const Around& around, std::vector<Line>* lines) {
  for (uint32_t r = 0; r < group.row_count; ++r) {
    const Field& f = group.rows[r];
    if (f.kind == Kind::kNoValue) continue;
    Around inside = around;
    inside.place += f.offset;
    inside.cases = static_cast<Cases>(around.cases & f.cases);
    inside.behind = around.behind || f.behind;
    if (f.name[0] != '\0') {
      std::string& path = around.phase.empty() ? inside.path : inside.inner_path;
      path += (path.empty() && around.phase.empty() ? "" : "/") + std::string(f.name);
    }
    if (f.phase != nullptr) inside.phase = f.phase;
    if (f.meaning[0] != '\0') inside.meaning = f.meaning;
    if (f.repeated) {
      inside.count = f.endless ? kUnbounded : f.count;
      inside.step = f.step;
      inside.repeated = CountText(f, group, around.place);
    }
    if (f.every != 0) inside.step = f.every;
    if (f.kind == Kind::kGroup && f.structure == nullptr) {
      Flatten(to, f, inside, lines);
      continue;
    }
    Line line;
    line.offset = inside.behind ? kNext : inside.place;
    const uint32_t size = f.kind == Kind::kGroup ? ExtentOf(f) : f.size;
    line.bytes = std::to_string(inside.step != 0 && inside.count != 1 ? inside.step : size);
    if (inside.count == kUnbounded) {
      line.bytes = "n × " + line.bytes;
    } else if (inside.count != 1) {
      line.bytes = std::to_string(inside.count) + " × " + line.bytes;
    }
    line.type = TypeText(f);
    if (f.kind == Kind::kGap) {
      line.meaning = "not written";
    } else {
      line.path = inside.path;
      line.phases = inside.phase;
      line.inner_path = inside.inner_path;
      line.meaning = inside.meaning;
    }
    line.unit = f.unit;
    if (f.structure != nullptr) {
      line.type = Link(f.structure->name);
      const auto same = [&f](const Field& known) {
        return std::strcmp(known.structure->name, f.structure->name) == 0;
      };
      if (std::none_of(to->structures.begin(), to->structures.end(), same)) {
        to->structures.push_back(f);
      }
    }
    line.when = WhenText(inside.cases);
    Join(&line.when, inside.repeated);
    const uint32_t claims = ClaimsOf(f);
    if (claims == 0) Join(&line.when, "read again");
    if (claims != 0 && claims < f.size && f.kind != Kind::kGroup) {
      Join(&line.when, "runs on into the next");
    }
    line.again = claims == 0;
    line.size = size;
    lines->push_back(std::move(line));
  }
}

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

// Whether a line stands right behind another and is the same of the next phase.
bool Continues(const Line& line, const Line& before) {
  return !line.phases.empty() && line.offset != kNext &&
         line.offset == before.offset + before.count * before.size && line.size == before.size &&
         line.path == before.path && line.inner_path == before.inner_path &&
         line.type == before.type && line.meaning == before.meaning && line.unit == before.unit &&
         line.when == before.when && !before.phases.empty();
}

// The bytes of a table in the order in which they are stored.
void PutLayout(Reference* to, const Field& group) {
  std::vector<Line> lines;
  Flatten(to, group, {}, &lines);
  std::stable_sort(lines.begin(), lines.end(), [](const Line& a, const Line& b) {
    return std::pair(a.again, a.offset) < std::pair(b.again, b.offset);
  });
  std::vector<Line> joined;
  for (Line& line : lines) {
    const auto before = std::find_if(joined.rbegin(), joined.rend(), [&line](const Line& earlier) {
      return Continues(line, earlier);
    });
    if (before == joined.rend()) {
      joined.push_back(std::move(line));
      continue;
    }
    before->phases += " " + line.phases;
    before->bytes = std::to_string(++before->count) + " × " + line.bytes;
  }
  std::vector<std::vector<std::string>> rows;
  for (const Line& line : joined) {
    std::string element = line.path;
    if (!line.phases.empty()) element += "[" + line.phases + "]" + line.inner_path;
    rows.push_back({line.offset == kNext ? "next" : std::to_string(line.offset), line.bytes,
                    line.type, element.empty() ? "" : Code(element), line.meaning, line.unit,
                    line.when});
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
  to->text += std::string(type.about) + "\n\n";
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
  text =
      "# Formats\n\n"
      "Made by `scripts/generate` from the layout tables; not edited by hand.\n\n"
      "What the bytes of a recording mean, and where they stand in its document. Numbers are "
      "little-endian and packed; offsets count from the start of the file, the record or the "
      "structure that a table describes. Layout tables follow the bytes, trees follow the "
      "document.\n\n"
      "| Type | Bytes | In the document |\n|---|---|---|\n"
      "| u8, u16 | 1, 2 | unsigned decimal |\n"
      "| i32, i64 | 4, 8 | signed decimal, whatever the word counts |\n"
      "| f32, f64 | 4, 8 | seven significant digits, `2.301000E+02`; `INF`, `-INF`, `NAN`, `-NAN` "
      "|\n"
      "| i16 | 2 | raw sample, written like f32 after scaling |\n"
      "| text | its width | up to the first NUL; letters, digits and ` .,!%&=+-*/_` stay, line "
      "ends "
      "become `\\`, the rest `?` (clamp names stand as they are) |\n"
      "| n × m f32 | 4 n m | base64 of the written floats of each entry, an entry a harmonic order "
      "from 0 on |\n\n"
      "A float that holds -1e37 (f64: that value widened) has no value and reads `-`; in base64 it "
      "is +infinity.\n\n"
      "*When* tells which recordings write an element: by the connection code of the settings "
      "(`CONNECTION`; *other* stands for every code but 1 to 7), and by whether the instrument "
      "keeps "
      "full or reduced lists (byte 2560 of the settings, not 0: reduced). In trees, `?` marks an "
      "element that not every recording has, `*` any number, `{n}` that many, and brackets the "
      "values of the attribute `phase`.\n\n"
      "XML Schemas of the documents are in [schema/](../schema): one for each record type, and "
      "`quorvex-any.xsd` for documents of any type. `quorvex schema --type N` prints them.\n\n"
      "    xmllint --noout --schema schema/quorvex-10.xsd R0010RVC.xml\n\n"
      "All documents have the root `Project`, and XML Schema 1.0 gives an element one type "
      "wherever "
      "it stands under the same parent. So the schema of any type holds the elements of every type "
      "at once, those that only some have as optional ones; likewise the schemas of types with "
      "several layouts. Use the schema of the type where it is known: it also insists on "
      "`FILE_TYPE`. Texts with an ampersand or an angle bracket give documents that no schema "
      "accepts, for they are not well-formed.\n\n"
      "## Contents\n\n";
  for (const RecordType* type : kRecordTypes) text += "- " + Link(Heading(*type)) + "\n";
  const std::string contents = text;
  text.clear();
  const Field settings = Group("", kSettingsRows);
  reference.structures.push_back(settings);
  for (const RecordType* type : kRecordTypes) PutType(&reference, *type);
  text += "## Structures\n\n";
  std::string names;
  for (size_t i = 0; i < reference.structures.size(); ++i) {
    const Field structure = reference.structures[i];
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
