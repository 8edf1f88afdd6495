#include "export/pqdif_file.h"

#include <zlib.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>

#include "exchange/pqdif.h"
#include "shared/jobs.h"
#include "shared/messages.h"
#include "shared/output_places.h"
#include "shared/paths.h"
#include "support/file.h"

namespace quorvex::tool {
namespace {

constexpr char kClockNote[] =
    "times are those of the instrument's clock; --utc-offset says what it is ahead of UTC";

bool Deflate(const std::string& body, std::string* compressed) {
  uLongf size = compressBound(static_cast<uLong>(body.size()));
  compressed->resize(size);
  const int code = compress2(reinterpret_cast<Bytef*>(compressed->data()), &size,
                             reinterpret_cast<const Bytef*>(body.data()),
                             static_cast<uLong>(body.size()), Z_DEFAULT_COMPRESSION);
  compressed->resize(size);
  return code == Z_OK;
}

// In microseconds; builds that are to be the same again say when they are.
int64_t TimeOfCreation() {
  using std::chrono::seconds;
  int64_t epoch = 0;
  const char* text = std::getenv("SOURCE_DATE_EPOCH");
  const char* end = text != nullptr ? text + std::strlen(text) : nullptr;
  const bool is_set =
      text != nullptr && text != end && std::from_chars(text, end, epoch).ptr == end;
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  if (!is_set) epoch = std::chrono::duration_cast<seconds>(now).count();
  return epoch * 1000000;
}

// "card.pqd", "card-2.pqd"
std::string NumberedName(const std::string& path, unsigned number) {
  if (number == 1) return path;
  const size_t name = path.size() - NameOnly(path).size();
  size_t dot = path.rfind('.');
  if (dot == std::string::npos || dot <= name) dot = path.size();
  return path.substr(0, dot) + "-" + std::to_string(number) + path.substr(dot);
}

// The files of a run, which get their names when all are complete.
class PqdifFiles {
 public:
  explicit PqdifFiles(const PqdifRequest& request) : request_(request) {}
  ~PqdifFiles() { CloseFile(file_); }
  PqdifFiles(const PqdifFiles&) = delete;
  PqdifFiles& operator=(const PqdifFiles&) = delete;

  // These fail the job that is worked on.
  bool Begin(unsigned number, std::string* name) {
    const std::string path = NumberedName(request_.output, number);
    *name = NameOnly(path);
    if (!request_.overwrite && Exists(path)) {
      return Fail(path, "exists already; --overwrite replaces it");
    }
    const auto slot = static_cast<unsigned>(files_.size() % kMostWorkers);
    files_.push_back({path, std::make_unique<Scratch>(slot)});
    Scratch& scratch = *files_.back().scratch;
    if (!scratch.Create(FolderOf(path))) return Fail(path, "cannot be written: " + LastError());
    file_ = OpenFile(scratch.path().c_str(), kOpenCreate);
    return file_ != nullptr || Fail(path, "cannot be written: " + LastError());
  }
  bool Write(const std::string& bytes) {
    const auto size = static_cast<uint32_t>(bytes.size());
    return WriteAll(file_, bytes.data(), size, GoOn) == size || FailWriting();
  }
  bool End() {
    FileHandle* file = file_;
    file_ = nullptr;
    return CloseFile(file) || FailWriting();
  }

  bool PutInPlaces() {
    for (File& file : files_) {
      if (file.scratch->Become(file.path, request_.overwrite)) continue;
      const std::string reason = SystemError();
      return Fail(file.path, !request_.overwrite && Exists(file.path)
                                 ? "exists already; --overwrite replaces it"
                                 : "cannot be written: " + reason);
    }
    return true;
  }

  std::string Names() const {
    const std::string first = files_.front().path;
    return files_.size() == 1 ? first : first + " to " + NameOnly(files_.back().path);
  }
  size_t count() const { return files_.size(); }

 private:
  struct File {
    std::string path;
    std::unique_ptr<Scratch> scratch;
  };

  static bool Fail(const std::string& path, const std::string& reason) {
    current_job->Fail(kNoOutput, path, reason);
    return false;
  }
  bool FailWriting() const {
    if (Interrupted()) {
      current_job->Fail(kCancelled, current_job->input, "cancelled");
      return false;
    }
    const int error = current_job->write_error;
    return Fail(files_.back().path,
                "cannot be written" + (error != 0 ? ": " + TextOfError(error) : ""));
  }

  const PqdifRequest& request_;
  std::vector<File> files_;
  FileHandle* file_ = nullptr;
};

// Which recordings have which source; the places of the sources are in the order of the recordings.
struct Plan {
  std::vector<pqdif::Source> sources;
  std::map<std::string, size_t> without_place;  // by the type's name
  struct Entry {
    std::string path;
    Recording recording;
    size_t source = 0;
    bool has_place = false;
  };
  std::vector<Entry> entries;
};

Plan PlanOf(const std::vector<std::string>& recordings) {
  Plan plan;
  for (const std::string& path : recordings) {
    RecordingHead head(path.c_str());
    Plan::Entry entry = {path, Inspect(&head)};
    if (entry.recording.code == kDone) {
      const Facts facts = FactsOf(path).facts;
      const pqdif::Source source =
          pqdif::SourceOf(path, head, facts.instrument.value_or(""), facts.serial.value_or(""));
      entry.has_place = !source.channels.empty();
      const auto known =
          std::find_if(plan.sources.begin(), plan.sources.end(),
                       [&](const pqdif::Source& other) { return other.IsOf(source); });
      if (!entry.has_place) {
        ++plan.without_place[head.type->name];
      } else if (known != plan.sources.end()) {
        pqdif::AddChannels(source, &*known);
        entry.source = static_cast<size_t>(known - plan.sources.begin());
      } else {
        entry.source = plan.sources.size();
        plan.sources.push_back(source);
      }
    }
    plan.entries.push_back(std::move(entry));
  }
  std::stable_sort(plan.entries.begin(), plan.entries.end(),
                   [](const Plan::Entry& a, const Plan::Entry& b) { return a.source < b.source; });
  return plan;
}

void TellNotes(const Plan& plan, const PqdifRequest& request, const Outcome& outcome,
               uint64_t left_out, const PqdifFiles& files) {
  if (!request.read.utc_offset) Say(kClockNote);
  std::string names;
  for (const auto& [name, count] : plan.without_place) {
    names += (names.empty() ? "" : ", ") + name + " (" + std::to_string(count) + ")";
  }
  if (!names.empty()) Say("left out, as PQDIF has no place for them: " + names);
  if (left_out > 0) {
    Say("left out: " + std::to_string(left_out) +
        " records without a time, or with samples without a step");
  }
  if (files.count() > 1) {
    Say("one file would be too large for its readers; " + files.Names() +
        " are each complete in themselves");
  }
  if (outcome.found < 2) return;
  const size_t written = outcome.found - outcome.failed;
  Say("found " + std::to_string(outcome.found) + ", written " + std::to_string(written) +
      ", skipped " + std::to_string(outcome.failed) + "; PQDIF in " + files.Names());
}

}  // namespace

ExitCode ExportPqdif(const PqdifRequest& request, const std::vector<std::string>& recordings,
                     Progress* progress) {
  const Plan plan = PlanOf(recordings);
  Job whole;  // what is about the output alone
  whole.input = recordings.front();
  whole.output = whole.named = request.output;
  const bool any = !plan.sources.empty();
  if (any && IsFolder(request.output)) {
    whole.Fail(kNoOutput, request.output, "is a folder; PQDIF needs a file");
  } else if (any) {
    OutputPlaces("PQDIF file", request.overwrite).Take(&whole);
  }
  if (whole.code != kDone) {
    Complain(whole.culprit, whole.problem);
    return whole.code;
  }
  PqdifFiles files(request);
  const std::string comment = request.read.utc_offset ? "" : std::string("Note: ") + kClockNote;
  pqdif::Writer writer(
      {request.read, TimeOfCreation(), comment,
       request.plain ? pqdif::Compress() : pqdif::Compress(Deflate), request.largest},
      {[&](unsigned number, std::string* name) { return files.Begin(number, name); },
       [&](const std::string& bytes) { return files.Write(bytes); }, [&] { return files.End(); }});
  uint64_t left_out = 0;
  const pqdif::Source* begun = nullptr;
  bool failed = false;
  Counting::Totals totals;
  for (const Plan::Entry& entry : plan.entries) {
    ++totals.files;
    totals.bytes += entry.recording.size;
  }
  totals.complete = true;
  Outcome outcome;
  Steps steps;
  steps.next = [&](Job* job) {
    if (job->number == plan.entries.size()) return false;
    const Plan::Entry& entry = plan.entries[job->number];
    job->input = entry.path;
    job->output = job->named = request.output;
    job->recording = entry.recording;
    if (entry.recording.code != kDone) {
      job->Fail(entry.recording.code, entry.path, entry.recording.problem);
    }
    return true;
  };
  steps.work = [&](Job* job, unsigned) {
    const Plan::Entry& entry = plan.entries[job->number];
    if (failed || !entry.has_place) return;
    const pqdif::Source* source = &plan.sources[entry.source];
    const std::string name = IsSpooled(job->input) ? "recording" : NameOnly(job->input);
    pqdif::Recorded recorded = {job->input, name, nullptr, {}};
    failed = (source != begun && !writer.Begin(*source)) || !writer.Add(&recorded);
    begun = source;
    left_out += recorded.left_out;
  };
  steps.told = [&](const Job& job) { outcome.Take(job); };
  steps.totals = [&] { return totals; };
  const bool finished = RunJobs(steps, 1, progress);
  const bool readable = outcome.failed < outcome.found;
  if (finished && !failed && readable) {
    current_job = &whole;
    if (writer.observations() == 0) {
      whole.Fail(kNoInput, request.output, "is not written; the recordings have nothing for it");
    } else if (writer.End() && files.PutInPlaces() && !request.quiet) {
      TellNotes(plan, request, outcome, left_out, files);
    }
    current_job = nullptr;
    if (whole.code != kDone) Complain(whole.culprit, whole.problem);
  }
  if (!finished) Say("cancelled");
  InterruptsAreDone();
  if (!finished) return kCancelled;
  if (whole.code != kDone) return whole.code;
  return outcome.code;
}

}  // namespace quorvex::tool
