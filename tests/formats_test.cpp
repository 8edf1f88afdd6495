// The format reference against the tables; its words and trees are compared with facts written
// down, and the schemas with documents, where they are generated.
#include <gtest/gtest.h>

#include <algorithm>

#include "formats/document_tree.h"
#include "formats/layout_lines.h"
#include "records/record_types.h"

namespace quorvex::tool {
namespace {

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
