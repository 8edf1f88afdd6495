// quorvex help explains the program or one of its commands, as --help does.
#include "shared/help.h"

#include "commands/commands.h"
#include "shared/messages.h"

namespace quorvex::tool {
namespace {

ExitCode Help(const CLI::App& app, const std::string& about) {
  if (IsMisspelt(app, {about})) return kUsage;
  Print(about.empty() ? app.help() : app.get_subcommand(about)->help("quorvex"));
  return kDone;
}

}  // namespace

Command AddHelp(CLI::App& app) {
  const auto about = std::make_shared<std::string>();
  CLI::App* line = app.add_subcommand("help", "Explain a command");
  line->add_option("COMMAND", *about, "Which one; all in short by default");
  line->footer(Footer({"quorvex help convert"}, {kDone, kUsage}));
  return {line, [&app, about] { return Help(app, *about); }};
}

}  // namespace quorvex::tool
