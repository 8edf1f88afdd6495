// quorvex schema prints the XML Schema of the documents.
#include "commands/commands.h"
#include "formats/generate.h"
#include "records/record_types.h"
#include "shared/help.h"
#include "shared/messages.h"

namespace quorvex::tool {

Command AddSchema(CLI::App& app) {
  const auto type = std::make_shared<uint32_t>(0);
  CLI::App* line = app.add_subcommand("schema", "Print the XML Schema of the documents");
  const std::string last = std::to_string(kRecordTypeCount);
  line->add_option("--type", *type, "Of one record type, 1 to " + last + "; of any by default")
      ->check(CLI::Range(1u, kRecordTypeCount))
      ->option_text("N");
  line->footer(Footer({"quorvex schema --type 10 > quorvex-10.xsd"}, {kDone, kUsage, kNoOutput}));
  return {line, [type] {
            const RecordType* row = FindRecordType(*type);
            Print(row != nullptr ? SchemaOf(*row) : SchemaOfAnyType());
            return kDone;
          }};
}

}  // namespace quorvex::tool
