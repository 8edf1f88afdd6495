// The command line: a host of the library like any other.
#include <algorithm>

#include "commands/commands.h"
#include "shared/help.h"
#include "shared/messages.h"
#include "shared/system.h"

namespace {

using namespace quorvex::tool;

void TakePaths(CLI::App* command, std::vector<std::string>* paths) {
  command
      ->add_option("PATH", *paths,
                   "Recordings, and folders: every .REC file below them; - is standard input")
      ->required();
}

int Run(const std::vector<std::string>& arguments) {
  CLI::App app{"Converts record files of a power-quality analyser into XML documents.", "quorvex"};
  app.formatter(std::make_shared<HelpFormatter>());
  app.require_subcommand(1);
  app.set_version_flag("-V,--version", VersionText(), "Print the version and exit");
  app.footer(
      "Examples:\n"
      "  quorvex info card                 what is on a card\n"
      "  quorvex check card                is it sound?\n"
      "  quorvex convert card -o documents/\n"
      "\n"
      "quorvex COMMAND --help says more of a command, and its exit codes.");

  ConvertOptions convert;
  auto* convert_command = app.add_subcommand("convert", "Write the XML documents of recordings");
  TakePaths(convert_command, &convert.inputs);
  convert_command
      ->add_option("-o,--output", convert.output,
                   "Document, or a folder for the documents (a new one ends in /); - is standard "
                   "output. By default beside each recording, with the extension .xml")
      ->option_text("PATH");
  auto* overwrite = convert_command->add_flag(
      "--overwrite", convert.overwrite,
      "Replace documents that exist already. By default they are left as they are, and the command "
      "fails for them. Recordings are never replaced");
  convert_command
      ->add_flag("-n,--no-clobber", convert.no_clobber,
                 "Leave documents that exist already, and do not fail for them")
      ->excludes(overwrite);
  convert_command
      ->add_option("--records", convert.records,
                   "Only these records of a general recording, counted from 1: 3-5, 5- or 5")
      ->option_text("A-B");
  convert_command
      ->add_option("-j,--jobs", convert.jobs,
                   "Conversions side by side; as many as there are cores by default")
      ->option_text("N");
  convert_command->add_flag("-q,--quiet", convert.quiet,
                            "Failures only: no findings in recordings, no progress, no summary");
  convert_command->footer(
      Footer({"quorvex convert R0001GEN.REC", "quorvex convert card -o documents/ --no-clobber",
              "quorvex convert R0001GEN.REC --records 37-72 -o morning.xml"},
             {kDone, kUsage, kNoInput, kUnknownType, kCutShort, kNoOutput, kCancelled}));

  InfoOptions info;
  auto* info_command = app.add_subcommand("info", "Say what recordings are");
  TakePaths(info_command, &info.inputs);
  auto* raw = info_command->add_flag("--raw", info.raw,
                                     "Only the record information line, as hosts get it");
  info_command->add_flag("--json", info.json, "For programs: an array, an object a line")
      ->excludes(raw);
  info_command->footer(Footer({"quorvex info card", "quorvex info R0001GEN.REC",
                               "quorvex info --json card | jq '.[].type'"},
                              {kDone, kUsage, kNoInput, kUnknownType, kCutShort, kNoOutput}));

  CheckOptions check;
  auto* check_command =
      app.add_subcommand("check", "Say whether recordings are sound, before they are converted");
  TakePaths(check_command, &check.inputs);
  check_command->add_flag("--json", check.json, "For programs: an array, an object a line");
  check_command->footer(
      Footer({"quorvex check card", "quorvex check --json card | jq '.[] | select(.worst)'"},
             {kDone, kDoubtful, kUsage, kNoInput, kUnknownType, kCutShort, kNoOutput, kDamaged}));

  std::string path;
  auto* count_command = app.add_subcommand("count", "Print how many whole records a recording has");
  count_command->add_option("FILE", path, "Recording; - is standard input")->required();
  count_command->footer(
      Footer({"quorvex count R0001GEN.REC"},
             {kDone, kUsage, kNoInput, kUnknownType, kCutShort, kNoOutput, kDamaged}));

  uint32_t type = 0;
  auto* schema_command = app.add_subcommand("schema", "Print the XML Schema of the documents");
  schema_command->add_option("--type", type, "Of one record type, 1 to 18; of any by default")
      ->check(CLI::Range(1, 18))
      ->option_text("N");
  schema_command->footer(
      Footer({"quorvex schema --type 10 > quorvex-10.xsd"}, {kDone, kUsage, kNoOutput}));
  // For the project itself: made into docs/formats.md and a module of the Python package.
  auto* formats_command = app.add_subcommand("formats", "Print the format reference")->group("");
  bool python = false;
  formats_command->add_flag("--python", python, "As a module of the Python package");
  auto* version_command =
      app.add_subcommand("version", "Print the versions of program and library");
  version_command->footer(Footer({}, {kDone, kNoOutput}));
  std::string about;
  auto* help_command = app.add_subcommand("help", "Explain a command");
  help_command->add_option("COMMAND", about, "Which one; all in short by default");
  help_command->footer(Footer({"quorvex help convert"}, {kDone, kUsage}));

  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return "quorvex: " + Shown(error.what()) + "; see --help\n";
  });
  const auto explain = [&](const std::string& problem) {
    Say(problem);
    return kUsage;
  };
  if (const std::string problem = Misspelt(app, arguments); !problem.empty()) {
    return explain(problem);
  }
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kUsage;
  }
  if (convert_command->parsed()) return Convert(convert);
  if (check_command->parsed()) return Check(check);
  if (info_command->parsed()) return Info(info);
  if (count_command->parsed()) return Count(path);
  if (schema_command->parsed()) return PrintSchema(type);
  if (formats_command->parsed()) return PrintFormats(python);
  if (version_command->parsed()) return Version();
  if (about.empty()) {
    Print(app.help());
    return kDone;
  }
  if (const std::string problem = Misspelt(app, {about}); !problem.empty()) return explain(problem);
  Print(app.get_subcommand(about)->help("quorvex"));
  return kDone;
}

// A recording dropped on the program, or a double click on it: nobody has typed a command.
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
