// quorvex version prints what --version prints: the versions of program and library.
#include "commands/commands.h"
#include "quorvex64.h"
#include "shared/help.h"
#include "shared/messages.h"

namespace quorvex::tool {

Command AddVersion(CLI::App& app) {
  const std::string text = std::string("quorvex ") + QUORVEX_TOOL_VERSION + " (library " +
                           std::to_string(QuorvexGetVersion()) + ")";
  app.set_version_flag("-V,--version", text, "Print the version and exit");
  CLI::App* line = app.add_subcommand("version", "Print the versions of program and library");
  line->footer(Footer({}, {kDone, kNoOutput}));
  return {line, [text] {
            Print(text + "\n");
            return kDone;
          }};
}

}  // namespace quorvex::tool
