// How the command line explains itself.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace quorvex::tool {

// Options with the names of their values, and nothing else of what the parser knows of them.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override;
};

// Examples, and the exit codes that a command can have.
std::string Footer(const std::vector<std::string>& examples, const std::vector<int>& codes);

// What is wrong with a first argument that is no command; empty where it is one.
std::string Misspelt(const CLI::App& app, const std::vector<std::string>& arguments);

}  // namespace quorvex::tool
