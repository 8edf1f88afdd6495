// quorvex formats prints the format reference. It is for the project itself, which makes
// docs/formats.md and a module of the Python package of it, so no help lists it.
#include "commands/commands.h"
#include "formats/generate.h"
#include "shared/messages.h"

namespace quorvex::tool {

Command AddFormats(CLI::App& app) {
  const auto python = std::make_shared<bool>(false);
  const auto tables = std::make_shared<bool>(false);
  CLI::App* line = app.add_subcommand("formats", "Print the format reference")->group("");
  line->add_flag("--python", *python, "As a module of the Python package");
  line->add_flag("--tables", *tables, "Of the tables that recordings give");
  return {line, [python, tables] {
            Print(*python ? PythonFormats() : *tables ? TablesReference() : FormatReference());
            return kDone;
          }};
}

}  // namespace quorvex::tool
