#include "shared/help.h"

#include <algorithm>
#include <numeric>

#include "shared/messages.h"
#include "shared/system.h"

namespace quorvex::tool {
namespace {

constexpr struct {
  int code;
  const char* meaning;
} kCodes[] = {
    {kDone, "done"},
    {kDoubtful, "a check has warnings; with report --json: an index is outside its limit"},
    {kUsage, "wrong arguments"},
    {kNoInput, "a recording or folder is missing or cannot be read"},
    {kUnknownType, "a file is of an unknown record type, or not of the type asked for"},
    {kCutShort, "a recording ends inside its head"},
    {kNoOutput, "an output cannot be written, or exists already"},
    {kDamaged, "a check has errors"},
    {kCancelled, "cancelled"},
};

// Counts the letters to change, add or leave out to make one word of the other.
size_t Distance(const std::string& a, const std::string& b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 1; i <= a.size(); ++i) {
    size_t corner = row[0]++;
    for (size_t j = 1; j <= b.size(); ++j) {
      const size_t changed = corner + (a[i - 1] == b[j - 1] ? 0 : 1);
      corner = row[j];
      row[j] = std::min({changed, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
  const std::string& value = option->get_option_text();
  return value.empty() ? "" : " " + value;
}

void TakePaths(CLI::App* command, std::vector<std::string>* paths) {
  command
      ->add_option("PATH", *paths,
                   "Recordings, and folders: every .REC file below them; - is standard input")
      ->required();
}

std::string NotEmpty(const std::string& value) { return value.empty() ? "has no value" : ""; }

void TakeSources(CLI::App* command, SourcesAsked* asked) {
  Sources& sources = asked->sources;
  command->add_option("PATH", sources.paths,
                      "Recordings, and folders: every .REC file below them; - is standard input");
  command
      ->add_option("--files-from", sources.list,
                   "Take the paths from this file, one a line; - is standard input")
      ->check(NotEmpty)
      ->option_text("FILE");
  command->add_flag("-0,--null", sources.nulls, "NUL ends the paths of --files-from, no line");
  command
      ->add_option("--base", sources.base,
                   "Mirror what is below this folder, of paths from --files-from; by default the "
                   "longest folder that they share")
      ->check(NotEmpty)
      ->option_text("DIR");
  command
      ->add_option("--shard", asked->share,
                   "Of the recordings below the folders given only part I of N, so that N machines "
                   "do each recording once: 3/16")
      ->check(NotEmpty)
      ->option_text("I/N");
}

std::string ProblemOf(SourcesAsked* asked) {
  Sources& sources = asked->sources;
  const bool has_list = !sources.list.empty();
  if (has_list != sources.paths.empty()) {
    return has_list ? "--files-from and PATH exclude each other" : "PATH is required; see --help";
  }
  if (!has_list && (sources.nulls || !sources.base.empty())) {
    return "--null and --base go with --files-from";
  }
  if (!sources.base.empty() && !IsFolder(sources.base)) {
    return "--base " + sources.base + ": is no folder";
  }
  if (asked->share.empty() || ParseShare(asked->share, &sources.share)) return "";
  return "--shard " + asked->share + ": is no part I of N such as 3/16";
}

std::string Footer(const std::vector<std::string>& examples, const std::vector<int>& codes) {
  std::string text = examples.empty() ? "" : "Examples:\n";
  for (const std::string& example : examples) text += "  " + example + "\n";
  text += examples.empty() ? "Exit codes:" : "\nExit codes:";
  for (const auto& row : kCodes) {
    if (std::find(codes.begin(), codes.end(), row.code) == codes.end()) continue;
    const std::string number = std::to_string(row.code);
    text += "\n  " + number + std::string(5 - number.size(), ' ') + row.meaning;
  }
  return text;
}

bool IsMisspelt(const CLI::App& app, const std::vector<std::string>& arguments) {
  if (arguments.empty() || arguments[0].empty() || arguments[0][0] == '-') return false;
  const std::string& word = arguments[0];
  std::string nearest;
  size_t least = 3;  // more is another word
  for (const CLI::App* command : app.get_subcommands(nullptr)) {
    const std::string& name = command->get_name();
    if (name == word) return false;
    if (command->get_group().empty()) continue;
    const size_t distance = Distance(word, name);
    if (distance < least) {
      least = distance;
      nearest = name;
    }
  }
  if (Exists(word)) {
    Say(Utf8(word) + " is a " + (IsFolder(word) ? "folder" : "file") +
        ", no command; did you mean: quorvex convert \"" + Utf8(word) + "\"?");
  } else {
    Say(Utf8(word) + " is no command; " +
        (nearest.empty() ? "quorvex --help lists them" : "did you mean: quorvex " + nearest + "?"));
  }
  return true;
}

}  // namespace quorvex::tool
