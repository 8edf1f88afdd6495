// quorvex convert decides which recordings become which documents, and has them converted.
#include <atomic>

#include "commands/commands.h"
#include "records/record_types.h"
#include "shared/conversion_jobs.h"
#include "shared/help.h"
#include "shared/manifest.h"
#include "shared/messages.h"
#include "shared/paths.h"

namespace quorvex::tool {
namespace {

struct ConvertOptions {
  SourcesAsked inputs;
  std::string output, records;  // empty: beside each recording; all of them
  std::string manifest;         // empty: none
  unsigned jobs = 0;            // as many as there are cores
  size_t stop_after = 0;        // failures; 0: however many
  bool overwrite = false, no_clobber = false, newer = false, no_sync = false, quiet = false;
};

// Gives the job its range. Only of general recordings a part can be converted.
bool TakeRange(const Range& range, Job* job) {
  const Recording& r = job->recording;
  const uint64_t records = r.records.value_or(0);
  job->range = range;
  if (r.type != &kGeneral) {
    job->Fail(kUnknownType, job->input,
              std::string("holds ") + r.type->name +
                  "; only general recordings are converted in part (--records)");
  } else if (range.first > records) {
    job->Fail(kUsage, job->input,
              "has " + std::to_string(records) + (records == 1 ? " record" : " records") +
                  ", none from " + std::to_string(range.first) + " on (--records)");
  }
  return job->problem.empty();
}

// What is asked of every job.
class Preparation {
 public:
  Preparation(const ConvertOptions& options, const Range& range, bool into_folder)
      : options_(options),
        range_(range),
        into_folder_(into_folder),
        manifest_(options.manifest.empty() ? "" : FullPath(options.manifest)),
        places_("document", options.overwrite || options.newer, into_folder) {}

  // Says where the document goes, and reads the recording's head where there is one to be written.
  void Look(Job* job) const {
    Name(job);
    job->current = options_.newer && !job->output.empty() && !job->is_new && IsCurrent(job);
    job->exists = job->current;
    if (job->current && options_.manifest.empty()) return;
    job->recording = Inspect(job->input);
    if (job->current) return;
    if (job->recording.code != kDone) {
      return job->Fail(job->recording.code, job->input, job->recording.problem);
    }
    if (!options_.records.empty() && !TakeRange(range_, job)) return;
    if (job->named.size() > kMaxPath) {
      job->Fail(kNoOutput, job->named, "the path is longer than 511 bytes");
    } else if (!job->output.empty() && !job->is_new && IsFolder(job->named)) {
      job->Fail(kNoOutput, job->named, "is a folder");
    }
  }

  void Place(Job* job) {
    if (job->output.empty()) return RemoveLeftovers(TemporaryFolder());
    if (!manifest_.empty() && FullPath(job->output) == manifest_) {
      return job->Fail(kNoOutput, job->named, "is the manifest");
    }
    places_.Take(job);
    if (job->exists && options_.no_clobber) job->Leave();
  }

 private:
  void Name(Job* job) const {
    const bool spooled = IsSpooled(job->input);
    if (options_.output == "-" || (spooled && options_.output.empty())) {
      job->named = "standard output";
      return;
    }
    job->named = options_.output;
    if (options_.output.empty()) job->named = WithoutExtension(job->input) + ".xml";
    if (into_folder_) job->named = Inside(options_.output, WithoutExtension(job->place) + ".xml");
    bool there = false;
    job->output = Resolved(job->named, &there);
    job->is_new = !there;
  }

  const ConvertOptions& options_;
  Range range_;
  bool into_folder_;
  std::string manifest_;
  OutputPlaces places_;
};

// Why options do not go together; null where they do.
const char* Contradiction(const ConvertOptions& options) {
  if (options.newer && !options.records.empty()) {
    return "--newer and --records exclude each other: a document does not tell its records";
  }
  const std::string& list = options.inputs.sources.list;
  if (!list.empty() && list != "-" && SameRecording(list, options.manifest)) {
    return "--manifest would replace the list of --files-from";
  }
  if (options.newer && options.output == "-") return "--newer needs documents that stay";
  if (options.manifest == "-" && options.output == "-") {
    return "standard output takes the document or the manifest, not both";
  }
  return nullptr;
}

// Whether documents go into a folder, which is made where it is missing. False where they cannot
// go there.
bool PrepareOutput(const ConvertOptions& options, bool archive, const Ahead& ahead,
                   bool* into_folder, ExitCode* code) {
  const std::string& output = options.output;
  if (output.empty() || !ahead.Any()) return true;
  const bool slash = std::string(kSeparators).find(output.back()) != std::string::npos;
  const Found& first = ahead.first();
  const bool mirrored = output != "-" && (archive || first.below.find('/') != std::string::npos ||
                                          (options.newer && first.walked));
  const bool wanted = ahead.Several() || mirrored;
  const std::string bare = output.substr(0, output.find_last_not_of(kSeparators) + 1);
  const bool other = output == "-" || (Exists(bare) && !IsFolder(bare));
  if (wanted && other) {
    Complain(output, "is no folder; several documents need one");
    *code = kUsage;
    return false;
  }
  if (!IsFolder(output) && (slash || wanted) && !CreateFolder(output)) {
    Complain(output, "cannot be created: " + SystemError());
    *code = kNoOutput;
    return false;
  }
  *into_folder = IsFolder(output);
  return true;
}

ExitCode Convert(ConvertOptions options) {
  Range range;
  if (!options.records.empty() && !ParseRange(options.records, &range)) {
    Complain("--records " + options.records, "is no range of records such as 3-5, 5- or 5");
    return kUsage;
  }
  const std::string problem = ProblemOf(&options.inputs);
  const char* contradiction = Contradiction(options);
  if (!problem.empty() || contradiction != nullptr) {
    Say(!problem.empty() ? problem : contradiction);
    return kUsage;
  }
  const Sources& sources = options.inputs.sources;
  // An archive of which there is one recording yet, or one in this share, is still one.
  const bool archive = !sources.list.empty() || sources.share.of > 1 || sources.paths.size() > 1;
  Progress progress(!options.quiet);
  std::unique_ptr<Gathering> gathering;
  if (const std::string reason = Gathering::Prepare(sources, &gathering); !reason.empty()) {
    Complain(sources.list, reason);
    return kNoInput;
  }
  Ahead ahead(gathering.get());
  bool into_folder = false;
  ExitCode code = kDone;
  if (!PrepareOutput(options, archive, ahead, &into_folder, &code)) return code;
  CatchInterrupts();
  Manifest manifest(options.manifest);
  if (!manifest.Begin()) return kNoOutput;

  Preparation preparation(options, range, into_folder);
  Outcome outcome;
  std::atomic<size_t> failures{0};
  Counting counting(*gathering);
  Steps steps;
  steps.next = NextOf(&ahead);
  steps.look = [&](Job* job) { preparation.Look(job); };
  steps.place = [&](Job* job) { preparation.Place(job); };
  steps.work = Converting({{options.overwrite || options.newer, !options.no_sync},
                           !options.quiet || manifest.IsWanted(),
                           manifest.IsWanted(),
                           options.no_clobber,
                           options.newer});
  steps.ended = [&](Job* job) {
    if (manifest.IsWanted()) manifest.Add(*job);
    // They were for the manifest; that there is nothing to convert is told all the same.
    if (options.quiet && job->recording.has_layout) job->findings = {};
    failures += job->code != kDone ? 1 : 0;
  };
  steps.told = [&](const Job& job) { outcome.Take(job); };
  steps.totals = [&] { return counting.Get(); };
  steps.given_up = [&] { return options.stop_after != 0 && failures >= options.stop_after; };
  const bool finished = RunJobs(steps, ahead.Several() ? WorkersFor(options.jobs) : 1, &progress);

  if (!options.no_clobber) outcome.TellExisting("documents");
  const bool stopped = options.stop_after != 0 && outcome.failed >= options.stop_after;
  if (!finished) Say("cancelled");
  if (finished && stopped) Say("stopped after " + std::to_string(outcome.failed) + " failures");
  if ((ahead.Several() || archive) && !options.quiet) {
    Say(outcome.Text() + "; " + std::to_string(outcome.with_errors) + " with errors, " +
        std::to_string(outcome.with_warnings) + " with warnings");
  }
  const bool told_all = manifest.End(!options.no_sync);
  InterruptsAreDone();
  if (!finished) return kCancelled;
  return outcome.code == kDone && !told_all ? kNoOutput : outcome.code;
}

}  // namespace

Command AddConvert(CLI::App& app) {
  const auto options = std::make_shared<ConvertOptions>();
  CLI::App* line = app.add_subcommand("convert", "Write the XML documents of recordings");
  TakeSources(line, &options->inputs);
  line->add_option("-o,--output", options->output,
                   "Document, or a folder for the documents (a new one ends in /), in which the "
                   "folders below PATH are mirrored; - is standard output. By default beside each "
                   "recording, with the extension .xml")
      ->option_text("PATH");
  auto* overwrite = line->add_flag(
      "--overwrite", options->overwrite,
      "Replace documents that exist already. By default they are left as they are, and the command "
      "fails for them. Recordings are never replaced");
  auto* no_clobber = line->add_flag("-n,--no-clobber", options->no_clobber,
                                    "Leave documents that exist already, and do not fail for them")
                         ->excludes(overwrite);
  line->add_flag("--newer", options->newer,
                 "Write what is missing, and replace what is older than its recording or setting "
                 "file. Two seconds more do not count")
      ->excludes(overwrite)
      ->excludes(no_clobber);
  line->add_option("--records", options->records,
                   "Only these records of a general recording, counted from 1: 3-5, 5- or 5")
      ->option_text("A-B");
  line->add_option("-j,--jobs", options->jobs,
                   "Conversions side by side; as many as there are cores by default")
      ->option_text("N");
  line->add_option("--manifest", options->manifest,
                   "Say in this file what became of each recording, a line of JSON each; - is "
                   "standard output")
      ->check(NotEmpty)
      ->option_text("FILE");
  line->add_option("--stop-after", options->stop_after,
                   "Begin no more conversions after so many failures")
      ->check(CLI::Range(1, 1'000'000'000))
      ->option_text("K");
  line->add_flag(
      "--no-sync", options->no_sync,
      "Do not wait for the disk before a document gets its name: faster, but a power cut "
      "may leave documents that are not whole");
  line->add_flag("-q,--quiet", options->quiet,
                 "Failures only: no findings in recordings, no progress, no summary");
  line->footer(Footer(
      {"quorvex convert R0001GEN.REC", "quorvex convert card -o documents/ --no-clobber",
       "quorvex convert R0001GEN.REC --records 37-72 -o morning.xml",
       "quorvex convert archive -o documents --newer --manifest documents.jsonl",
       "find archive -name '*.REC' -print0 | quorvex convert --files-from - -0 -o documents"},
      {kDone, kUsage, kNoInput, kUnknownType, kCutShort, kNoOutput, kCancelled}));
  return {line, [options] { return Convert(*options); }};
}

}  // namespace quorvex::tool
