// Schemas of a record type made up to show every way in which tables become elements.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "formats/document_tree.h"
#include "formats/generate.h"
#include "formats/layout_lines.h"
#include "records/record_types.h"
#include "settings/cases.h"

namespace quorvex::tool {
namespace {

constexpr auto kPair = Shared({"pair of values"}, {F32("low", 0, "lowest", "V"), F64("high", 4)});
constexpr Field kSample[] = {ScaledI16("v", 0, 0, "", "").Times(3).CountInput(0, "N")};
constexpr Field kListRows[] = {U8("N", 0), Each("ITEM", 4, 7, 12, kPair).CountAt(0)};
constexpr Field kFirstRows[] = {
    Gap(0, 4),
    Group("U", 4, kSample).Phase("u1").In(NotConnections({2})),
    Group("U", 4, kSample).Phase("u12").In(Connections({2})),
    Group("U", 10, kSample).Phase("un").In(Connections({1})),
    Group("A", 16, kPair),
    Text("B", 28, 8),
    Spectrum("H", "h", 36, 3, 2, 1),
};
constexpr Field kFirst = Record("R", 60, kFirstRows, "first");
constexpr Field kSecondRows[] = {
    Text("B", 0, 8),
    Group("A", 8, kPair),
    Spectrum("H", "h", 20, 2, 2, 2),
    Group("LIST", 36, kListRows),
    I32("N", 124).AtMost(7).Again(),
};
constexpr Field kSecond = Record("R", 128, kSecondRows, "second");
constexpr const Field* kLayouts[] = {&kFirst, &kSecond};
constexpr LayoutChoice kChoice = {kLayouts, 2, nullptr};
constexpr RecordType kMadeUp = {.type = 99,
                                .name = "made up",
                                .about = "",
                                .list = "LIST_OF",
                                .record = nullptr,
                                .write = nullptr,
                                .settings_at = 0,
                                .choice = &kChoice};

// Elements in short: name, phases in brackets, repetitions, type or content.
std::string Short(const std::vector<Node>& nodes) {
  std::string text;
  for (const Node& node : nodes) {
    text += (text.empty() ? "" : " ") + node.name;
    for (const std::string& phase : node.phases) text += "[" + phase + "]";
    if (node.least != 1 || node.most != 1) {
      text += std::to_string(node.least) + "-" +
              (node.most == kUnbounded ? "n" : std::to_string(node.most));
    }
    if (!node.structures.empty()) text += ":" + node.structures[0];
    for (const ValueForm& form : node.values) {
      text += ":" + std::to_string(static_cast<int>(form.kind)) + "." + std::to_string(form.size);
    }
    if (node.structures.empty() && !node.children.empty()) text += "(" + Short(node.children) + ")";
  }
  return text;
}
std::string KindText(Kind kind, int size) {
  return ":" + std::to_string(static_cast<int>(kind)) + "." + std::to_string(size);
}

TEST(Formats, CasesBecomeRepetitionsAndLayoutsBecomeOptions) {
  const std::string v = "(v0-3" + KindText(Kind::kF32, 0) + ")";
  const std::string b = KindText(Kind::kText, 8);
  const std::string h3 = KindText(Kind::kSpectrum, 12), h2 = KindText(Kind::kSpectrum, 16);
  EXPECT_EQ("U[u1][u12][un]1-2" + v + " A:pair of values B" + b + " H[h]" + h3,
            Short(NodesOf(kFirst)));
  // A and B change places from one layout to the other, so A may stand on either side.
  EXPECT_EQ("LIST_OF(R0-n(U[u1][u12][un]0-2" + v + " A0-1:pair of values B" + b +
                " A0-1:pair of values H[h]" + h3 + h2 + " LIST0-1(N" + KindText(Kind::kU8, 0) +
                " ITEM0-7:pair of values) N0-1" + KindText(Kind::kI32, 0) + "))",
            Short(RecordsOf(kMadeUp)));
}

// What a reader of the reference adds up is the whole record.
TEST(Formats, LinesCoverEveryByte) {
  for (const RecordType* type : kRecordTypes) {
    for (const Field* layout : LayoutsOf(*type)) {
      std::vector<bool> covered(layout->size);
      for (const LayoutLine& line : LinesOf(*layout)) {
        if (line.offset == kNext) continue;
        const std::string times = " × ";
        const size_t at = line.bytes.find(times);
        const unsigned long each =
            at != std::string::npos ? std::stoul(line.bytes.substr(at + times.size())) : 1;
        const size_t bytes = std::stoul(line.bytes) * each;
        ASSERT_LE(line.offset + bytes, layout->size) << type->type << " " << line.path;
        std::fill_n(covered.begin() + line.offset, bytes, true);
      }
      const auto hole = std::find(covered.begin(), covered.end(), false);
      EXPECT_EQ(covered.end(), hole) << type->type << " at " << hole - covered.begin();
    }
  }
}

}  // namespace
}  // namespace quorvex::tool
