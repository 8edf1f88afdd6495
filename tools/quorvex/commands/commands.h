// The commands of the command line. The file of each says what the command takes, and runs it.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

#include "shared/system.h"

namespace quorvex::tool {

struct Command {
  CLI::App* line;                 // its command line
  std::function<ExitCode()> run;  // does what was typed there, and explains itself
};
using AddCommand = Command(CLI::App& app);

// Every command, in the order that the help has them. A new one is a file that defines AddName, and
// a line here.
#define QUORVEX_COMMANDS(COMMAND) \
  COMMAND(Convert)                \
  COMMAND(Export)                 \
  COMMAND(Report)                 \
  COMMAND(Info)                   \
  COMMAND(Check)                  \
  COMMAND(Count)                  \
  COMMAND(Schema)                 \
  COMMAND(Formats)                \
  COMMAND(Version)                \
  COMMAND(Help)

#define QUORVEX_DECLARED(name) AddCommand Add##name;
QUORVEX_COMMANDS(QUORVEX_DECLARED)
#undef QUORVEX_DECLARED

}  // namespace quorvex::tool
