#include "layout_lines.h"

#include <algorithm>
#include <utility>

#include "document_tree.h"

namespace quorvex::tool {
namespace {

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
    case Kind::kU8:
      return "u8";
    case Kind::kU16:
      return "u16";
    case Kind::kI32:
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
      std::string floats = std::to_string(f.size / f.entry_floats / 4) + " × " +
                           std::to_string(f.entry_floats) + " f32";
      if (f.entry_floats != f.written_floats) {
        floats += ", " + std::to_string(f.written_floats) + " written";
      }
      if (f.first_order != 0) floats += ", from order " + std::to_string(f.first_order);
      return floats;
    }
    case Kind::kText:
    case Kind::kRawText:
      return "text";
    case Kind::kGap:
    case Kind::kGroup:
    case Kind::kNoValue:
      break;
  }
  return "";
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

// What a count in the record stands in: an element, or bytes that none shows.
std::string CountText(const Field& f, const Field& enclosing, uint32_t place) {
  if (f.count_from == CountFrom::kTable) return "";
  if (f.count_from == CountFrom::kInput) {
    const std::string path = f.counted_by;
    const std::string from = path.substr(path.rfind('/') + 1);
    return from.find(' ') == std::string::npos ? Code(from) + " of them" : "as many as " + from;
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
  std::string path, phase, inner_path, meaning, unit;
  Cases cases = kAllCases;
  bool behind = false;
  uint32_t count = 1, step = 0;  // repetitions of the group
  std::string repeated;          // how many of them there are, in words
};

void Join(std::string* text, const std::string& more) {
  if (!more.empty()) *text += (text->empty() ? "" : "; ") + more;
}

void Flatten(const Field& group, const Around& around, std::vector<LayoutLine>* lines) {
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
    if (f.unit[0] != '\0') inside.unit = f.unit;
    if (f.meaning[0] != '\0') inside.meaning = MeaningOf(f);
    if (f.repeated) {
      inside.count = f.endless ? kUnbounded : f.count;
      inside.step = f.step;
      inside.repeated = CountText(f, group, around.place);
    }
    inside.step = StepOf(f, inside.step);
    if (f.kind == Kind::kGroup && f.structure == nullptr) {
      Flatten(f, inside, lines);
      continue;
    }
    LayoutLine line;
    line.row = &f;
    line.offset = inside.behind ? kNext : inside.place;
    const uint32_t size = f.kind == Kind::kGroup ? ExtentOf(f) : f.size;
    line.bytes = std::to_string(inside.step != 0 && inside.count != 1 ? inside.step : size);
    const std::string times = inside.count == kUnbounded ? "n" : std::to_string(inside.count);
    if (inside.count != 1) line.bytes = times + " × " + line.bytes;
    line.type = TypeText(f);
    if (f.kind == Kind::kGap) {
      line.meaning = f.meaning;
      Join(&line.meaning, "not written");
    } else {
      line.path = inside.path;
      line.phases = inside.phase;
      line.inner_path = inside.inner_path;
      line.meaning = inside.meaning;
      line.unit = inside.unit;
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

// Whether a line stands right behind another and is the same of the next phase.
bool Continues(const LayoutLine& line, const LayoutLine& before) {
  return !line.phases.empty() && line.offset != kNext &&
         line.offset == before.offset + before.count * before.size && line.size == before.size &&
         line.path == before.path && line.inner_path == before.inner_path &&
         line.type == before.type && line.meaning == before.meaning && line.unit == before.unit &&
         line.when == before.when && !before.phases.empty();
}

}  // namespace

bool HasPartsBehind(const Field& group) {
  return std::any_of(group.rows, group.rows + group.row_count,
                     [](const Field& f) { return f.behind || HasPartsBehind(f); });
}

std::vector<LayoutLine> LinesOf(const Field& group) {
  std::vector<LayoutLine> lines;
  Flatten(group, {}, &lines);
  std::stable_sort(lines.begin(), lines.end(), [](const LayoutLine& a, const LayoutLine& b) {
    return std::pair(a.again, a.offset) < std::pair(b.again, b.offset);
  });
  std::vector<LayoutLine> joined;
  for (LayoutLine& line : lines) {
    const auto before =
        std::find_if(joined.rbegin(), joined.rend(),
                     [&line](const LayoutLine& earlier) { return Continues(line, earlier); });
    if (before == joined.rend()) {
      joined.push_back(std::move(line));
      continue;
    }
    before->phases += " " + line.phases;
    before->bytes = std::to_string(++before->count) + " × " + line.bytes;
  }
  return joined;
}

}  // namespace quorvex::tool
