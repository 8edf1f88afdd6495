// What the command lines of the commands share, and how they explain themselves.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "shared/gather.h"

namespace quorvex::tool {

// Shows options with the names of their values, and nothing else of what the parser knows of them.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override;
};

// Makes a command take recordings and folders of them.
void TakePaths(CLI::App* command, std::vector<std::string>* paths);

// What is wrong with an empty value: a variable of the shell that is not set would ask for nothing.
std::string NotEmpty(const std::string& value);

// The same for a command that takes archives: lists of recordings too, and shares of them.
struct SourcesAsked {
  Sources sources;
  std::string share;
};
void TakeSources(CLI::App* command, SourcesAsked* asked);
// What is wrong with them; empty where nothing is.
std::string ProblemOf(SourcesAsked* asked);

// What ends the help of a command: examples, and the exit codes that it can have.
std::string Footer(const std::vector<std::string>& examples, const std::vector<int>& codes);

// Whether a first argument is no command, which is said on stderr.
bool IsMisspelt(const CLI::App& app, const std::vector<std::string>& arguments);

}  // namespace quorvex::tool
