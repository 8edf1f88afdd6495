// quorvex report says what happened on a network: a page, or figures for programs.
#include <cmath>

#include "commands/commands.h"
#include "report/limits_file.h"
#include "report/page.h"
#include "report/summary.h"
#include "report/texts.h"
#include "shared/gather.h"
#include "shared/help.h"
#include "shared/messages.h"
#include "shared/output_places.h"
#include "shared/paths.h"
#include "shared/request.h"
#include "shared/text_file.h"

namespace quorvex::tool {
namespace {

struct ReportOptions {
  std::vector<std::string> inputs;
  std::string output, limits, utc_offset, language = "en";
  double nominal = 0;
  bool json = false, overwrite = false;
};

bool ReadLimits(const ReportOptions& options, Limits* limits) {
  std::string problem;
  const std::optional<Limits> shipped = LimitsOf(kShippedLimits, nullptr, &problem);
  if (options.limits.empty()) {
    *limits = shipped.value_or(Limits());
    return shipped.has_value();
  }
  std::string text;
  if (!ReadText(options.limits, &text)) {
    Complain(options.limits, "cannot be read: " + LastError());
    return false;
  }
  const std::optional<Limits> own = LimitsOf(text, &*shipped, &problem);
  if (!own) {
    Complain(options.limits, problem);
    return false;
  }
  *limits = *own;
  return true;
}

// Whether the page may go where it is to go, asked before anything is read.
bool TakePlace(const ReportOptions& options, const std::vector<std::string>& recordings, Job* job) {
  job->named = options.output;
  job->output = Resolved(options.output);
  OutputPlaces places("page", options.overwrite);
  if (IsFolder(job->output)) {
    job->Fail(kNoOutput, job->named, "is a folder; a report is one file");
  } else if (job->output.size() > kMaxPath) {
    job->Fail(kNoOutput, job->named, "the path is longer than 511 bytes");
  }
  // Recordings are told by their heads, so that none of them has to be compared with the place.
  if (!recordings.empty()) job->input = recordings.front();
  if (job->problem.empty()) places.Take(job);
  if (job->problem.empty()) return true;
  Complain(job->culprit, job->problem);
  return false;
}

ExitCode Report(const ReportOptions& options) {
  if (options.output.empty() && !options.json) {
    Say("report needs -o, the page's name, or --json; see --help");
    return kUsage;
  }
  const bool to_output = options.output == "-";
  if (to_output && options.json) {
    Complain("-o -", "standard output takes the page or the figures, not both");
    return kUsage;
  }
  ReportRequest request;
  if (!ReadLimits(options, &request.limits)) return kUsage;
  if (!std::isfinite(options.nominal) || options.nominal < 0) {
    Complain("--nominal", "is no voltage");
    return kUsage;
  }
  request.nominal = options.nominal;
  if (!ParseUtcOffset(options.utc_offset, &request.read)) return kUsage;

  std::vector<std::string> recordings;
  const bool gathered = GatherRecordings(options.inputs, &recordings);
  // A folder without recordings gives a report that says so; what is not there gives none.
  for (const std::string& input : options.inputs) {
    if (input == "-" || Exists(input)) continue;
    Complain(input, "does not exist");
    return kNoInput;
  }
  if (!gathered && recordings.empty() && options.inputs == std::vector<std::string>{"-"}) {
    return kNoInput;
  }
  Job job;
  if (!options.output.empty() && !to_output && !TakePlace(options, recordings, &job)) {
    return job.code;
  }
  const Card card = ReadCard(recordings, request);
  ExitCode code = kDone;
  if (!options.output.empty()) {
    const std::string page = PageOf(card, request);
    if (to_output) {
      UseBytes(stdout);
      Print(page);
    } else {
      const std::string problem =
          PutText(page, FolderOf(job.output), job.output, options.overwrite);
      if (!problem.empty()) {
        Complain(job.named, "cannot be written: " + problem);
        code = kNoOutput;
      }
    }
  }
  if (!options.json) return code;
  PrintSummary(card, request, [](const std::string& piece) { Print(piece); });
  return code == kDone && IsAnyOutside(card) ? kDoubtful : code;
}

}  // namespace

Command AddReport(CLI::App& app) {
  const auto options = std::make_shared<ReportOptions>();
  CLI::App* line = app.add_subcommand(
      "report", "Say what happened on a network: verdicts, trends, events, on one page");
  TakePaths(line, &options->inputs);
  line->add_option("-o,--output", options->output,
                   "The page: one HTML file that needs nothing else; - is standard output")
      ->option_text("PATH");
  line->add_flag("--json", options->json,
                 "The figures for programs, on standard output; no page unless -o is given too. "
                 "The exit code is 1 then where any index is outside its limit");
  line->add_option("--limits", options->limits,
                   "A JSON file of limits, in the place of those of EN 50160 for low voltage")
      ->option_text("PATH");
  line->add_option("--nominal", options->nominal,
                   "The nominal voltage, in the place of that of the recordings' settings")
      ->option_text("V");
  line->add_option("--utc-offset", options->utc_offset,
                   "What the instrument's clock is ahead of UTC: +01:00. Times are shifted to UTC "
                   "then; otherwise they are the clock's")
      ->option_text("±HH:MM");
  line->add_option("--lang", options->language, "The language of the page: en")
      ->check(CLI::IsMember({"en"}))
      ->option_text("LANGUAGE");
  line->add_flag("--overwrite", options->overwrite, "Replace a page that exists already");
  line->footer(Footer({"quorvex report card -o report.html",
                       "quorvex report --json card | jq '.assessment[] | select(.verdict == "
                       "\"outside\")'"},
                      {kDone, kDoubtful, kUsage, kNoInput, kNoOutput}));
  return {line, [options] { return Report(*options); }};
}

}  // namespace quorvex::tool
