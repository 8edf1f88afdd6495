// The command line: a host of the library like any other.
#include <algorithm>

#include "commands/commands.h"
#include "shared/help.h"
#include "shared/messages.h"

namespace {

using namespace quorvex::tool;

#define QUORVEX_ROW(name) Add##name,
constexpr AddCommand* kCommands[] = {QUORVEX_COMMANDS(QUORVEX_ROW)};

int Run(const std::vector<std::string>& arguments) {
  CLI::App app{
      "Turns record files of a power-quality analyser into reports, tables and XML documents.",
      "quorvex"};
  app.formatter(std::make_shared<HelpFormatter>());
  app.require_subcommand(1);
  app.footer(
      "Examples:\n"
      "  quorvex info card                 what is on a card\n"
      "  quorvex check card                is it sound?\n"
      "  quorvex report card -o report.html\n"
      "  quorvex convert card -o documents/\n"
      "  quorvex export card -o tables/\n"
      "\n"
      "quorvex COMMAND --help says more of a command, and its exit codes.");
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return "quorvex: " + Shown(error.what()) + "; see --help\n";
  });
  std::vector<Command> commands;
  for (AddCommand* add : kCommands) commands.push_back(add(app));

  if (IsMisspelt(app, arguments)) return kUsage;
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kUsage;
  }
  const auto typed = [](const Command& command) { return command.line->parsed(); };
  return std::find_if(commands.begin(), commands.end(), typed)->run();
}

// Runs what stands for the words that nobody has typed: a recording was dropped on the program, or
// it was opened by a double click.
int RunInOwnWindow(const std::vector<std::string>& arguments) {
  std::vector<std::string> words = arguments;
  const bool dropped = !words.empty() && std::all_of(words.begin(), words.end(), Exists);
  if (dropped) words.insert(words.begin(), {"convert", "--"});
  if (words.empty()) words = {"help"};
  const int code = Run(words);
  if (dropped && code == kDone) Print("The documents are beside the recordings.\n");
  WaitForEnter();
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  PrepareStreams();
  const std::vector<std::string> arguments = Arguments(argc, argv);
  const int code = OwnsItsWindow() ? RunInOwnWindow(arguments) : Run(arguments);
  return OutputArrived() ? code : static_cast<int>(kNoOutput);
}
