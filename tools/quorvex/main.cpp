// The command line: a host of the library like any other.
#include <CLI/CLI.hpp>

#include "commands.h"
#include "host.h"

int main(int argc, char** argv) {
  using namespace quorvex::tool;
  CLI::App app{"Converts record files of a power-quality analyser into XML documents.", "quorvex"};
  app.require_subcommand(1);
  app.footer(
      "Exit codes:\n"
      "  0    done; checked and sound\n"
      "  1    checked: warnings\n"
      "  2    wrong arguments\n"
      "  3    the recording is missing or cannot be read\n"
      "  4    the file is of an unknown record type, or not of the type asked for\n"
      "  5    the recording ends inside its head\n"
      "  6    the document cannot be written\n"
      "  7    checked: errors\n"
      "  130  cancelled");

  const auto take_paths = [](CLI::App* command, std::vector<std::string>* paths) {
    command->add_option("PATH", *paths, "Recordings, and folders: every .REC file below them")
        ->required();
  };
  ConvertOptions convert;
  auto* convert_command = app.add_subcommand("convert", "Write the XML documents of recordings");
  take_paths(convert_command, &convert.inputs);
  convert_command->add_option("-o,--output", convert.output,
                              "Document, or a folder for the documents; beside each recording with "
                              "the extension .xml by default");
  convert_command->add_option("--records", convert.records,
                              "Records A-B of a general recording, counted from 1");
  convert_command->add_option("-j,--jobs", convert.jobs,
                              "Conversions side by side; as many as there are cores by default");
  convert_command->add_flag("-q,--quiet", convert.quiet,
                            "Failures only: no findings in recordings, no summary");
  InfoOptions info;
  auto* info_command = app.add_subcommand("info", "Say what recordings are");
  take_paths(info_command, &info.inputs);
  auto* raw = info_command->add_flag("--raw", info.raw,
                                     "Only the record information line, as hosts get it");
  info_command->add_flag("--json", info.json, "For programs: an array, an object a line")
      ->excludes(raw);
  CheckOptions check;
  auto* check_command =
      app.add_subcommand("check", "Say whether recordings are sound, before they are converted");
  take_paths(check_command, &check.inputs);
  check_command->add_flag("--json", check.json, "For programs: an array, an object a line");
  std::string path;
  auto* count_command = app.add_subcommand("count", "Print the records of a general recording");
  count_command->add_option("FILE", path, "Recording")->required();
  uint32_t type = 0;
  auto* schema_command = app.add_subcommand("schema", "Print the XML Schema of the documents");
  schema_command->add_option("--type", type, "Of one record type, 1 to 18; of any by default")
      ->check(CLI::Range(1, 18));
  // For the project itself: made into docs/formats.md and a module of the Python package.
  auto* formats_command = app.add_subcommand("formats", "Print the format reference")->group("");
  bool python = false;
  formats_command->add_flag("--python", python, "As a module of the Python package");
  app.add_subcommand("version", "Print the version of the library");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kUsage;
  }
  if (convert_command->parsed()) return Convert(convert);
  if (check_command->parsed()) return Check(check);
  if (info_command->parsed()) return Info(info);
  if (count_command->parsed()) return Count(path);
  if (schema_command->parsed()) return PrintSchema(type);
  if (formats_command->parsed()) return PrintFormats(python);
  return Version();
}
