#include "export/comtrade_files.h"

#include <cmath>
#include <memory>

#include "export/output_files.h"

namespace quorvex::tool {
namespace {

constexpr char kWhat[] = "file";

// What of a name tells the record; nothing where there is one record, whichever are wanted.
std::string NumberIn(const std::vector<uint64_t>& numbers, uint64_t record) {
  return numbers.size() == 1 ? "" : "-" + std::to_string(record);
}

// Goes through the samples of a record. False where the job has failed or `take` gave up.
bool Pass(const std::vector<WaveChannel>& channels, uint64_t record, const ReadOptions& options,
          Job* job, const std::function<bool(const TableRows&)>& take) {
  constexpr uint64_t kBetweenLooks = 1 << 14;
  const auto rows = SamplesOf(job->input, channels, record, options);
  for (uint64_t row = 0; rows->Next(); ++row) {
    if (row % kBetweenLooks == 0 && Interrupted()) {
      job->Fail(kCancelled, job->input, "cancelled");
      return false;
    }
    if (!take(*rows)) return false;
  }
  return true;
}

// What is known of a record before its samples are written. False where they cannot be, with the
// reason in `refused` or the job.
bool Prepare(const std::vector<WaveChannel>& channels, uint64_t number,
             const ExportRequest& request, ComtradeRecord* record, Job* job, std::string* refused) {
  const auto measure = [&](const TableRows& sample) {
    TakeRange(sample, record);
    return true;
  };
  if (!Pass(channels, number, request.read, job, measure)) return false;
  const std::string called = "record " + std::to_string(number);
  if (record->samples == 0) {
    job->notes.push_back(called + " has no samples; it is left out");
    return false;
  }
  if (record->step > 0) return true;
  StepFinder finder(*record);
  const auto find = [&](const TableRows& sample) {
    finder.Take(sample);
    return true;
  };
  if (!Pass(channels, number, request.read, job, find)) return false;
  record->step = finder.Step();
  const std::string why = called + " has no believable sampling rate, ";
  const std::string at = std::to_string(record->frequency) + " Hz";
  if (record->step > 0) {
    job->notes.push_back(why + "but periods; at " + at + " they make it " +
                         std::to_string(std::llround(1 / record->step)) + " samples a second");
    return true;
  }
  if (refused->empty()) *refused = why + "nor periods of " + at + "; it is not written";
  return false;
}

void WriteRecord(const std::vector<WaveChannel>& channels, uint64_t number,
                 const ComtradeRecord& record, const ComtradeForm& form,
                 const ExportRequest& request, unsigned worker, Job* job) {
  const std::string stem = job->output, named = job->named;
  const auto write = [&](const char* ending, const std::function<bool(Writer*)>& content) {
    job->output = stem + ending;
    job->named = named + ending;
    WriteOutput(kWhat, request.overwrite, worker, job, content);
  };
  const auto configuration = [&](Writer* writer) {
    *writer->text() += ComtradeConfiguration(record, form);
    return true;
  };
  const auto samples = [&](Writer* writer) {
    uint64_t sample = 0;
    const auto append = [&](const TableRows& row) {
      AppendComtradeSample(record, form, ++sample, row, writer->text());
      return writer->WriteWhereFull();
    };
    if (!Pass(channels, number, request.read, job, append)) return false;
    if (sample != record.samples) job->Fail(kNoInput, job->input, "has changed meanwhile");
    return job->problem.empty();
  };
  if (form.one_file) {
    write(".cff", [&](Writer* writer) { return configuration(writer) && samples(writer); });
    return;
  }
  // Readers open the .cfg, so when that is there its samples are.
  write(".dat", samples);
  if (job->problem.empty()) write(".cfg", configuration);
}

void RunJob(const ExportRequest& request, const ComtradeForm& form, unsigned worker, Job* job) {
  const Opened opened(job->input);
  if (opened.code != kDone) return job->Fail(opened.code, job->input, opened.problem);
  const std::vector<WaveChannel> channels = WaveChannels(job->input);
  const std::vector<uint64_t> numbers = WaveNumbers(job->input);
  const std::string stem = job->output, named = job->named;
  std::string refused;
  uint64_t done = 0, written = 0;
  ForEachWaveRecord(job->input, request.read, [&](const WaveRecord& wave) {
    ComtradeRecord record = DescribeComtrade(opened.head.settings, channels, wave, request.read);
    if (Prepare(channels, wave.number, request, &record, job, &refused)) {
      job->output = stem + NumberIn(numbers, wave.number);
      job->named = named + NumberIn(numbers, wave.number);
      FindScales(form, &record);
      ++written;
      WriteRecord(channels, wave.number, record, form, request, worker, job);
    }
    job->fraction = static_cast<float>(++done) / static_cast<float>(numbers.size());
    return job->problem.empty();
  });
  job->output = stem;
  if (job->problem.empty() && !refused.empty()) job->Fail(kNoInput, job->input, refused);
  if (job->problem.empty() && written == 0) job->Fail(kNoInput, job->input, "has no samples");
  if (request.quiet || written == 0) job->notes.clear();
}

}  // namespace

std::string FormOf(const ComtradeAsked& asked, ComtradeForm* form) {
  constexpr std::pair<const char*, ComtradeData> kWords[] = {
      {"ascii", ComtradeData::kAscii},
      {"binary", ComtradeData::kBinary},
      {"binary32", ComtradeData::kBinary32},
      {"float32", ComtradeData::kFloat32},
  };
  for (const auto& [word, data] : kWords) {
    if (asked.data == word) form->data = data;
  }
  form->one_file = asked.one_file;
  const bool newer = form->data == ComtradeData::kBinary32 || form->data == ComtradeData::kFloat32;
  form->revision_2013 = asked.revision == "2013" || newer || form->one_file;
  if (asked.revision != "1999" || !form->revision_2013) return "";
  return std::string("the revision of 1999 has no ") +
         (form->one_file ? "single file (--cff)" : "data of type " + asked.data) +
         "; --comtrade 2013 has";
}

std::vector<std::string> ComtradeEndings(const std::string& path, const ReadOptions& read,
                                         const ComtradeForm& form) {
  const std::vector<uint64_t> numbers = WaveNumbers(path);
  std::vector<std::string> endings;
  for (const uint64_t number : numbers) {
    if (number < read.first || number > read.last) continue;
    const std::string stem = NumberIn(numbers, number);
    if (form.one_file) {
      endings.push_back(stem + ".cff");
    } else {
      endings.insert(endings.end(), {stem + ".cfg", stem + ".dat"});
    }
  }
  return endings;
}

Work WritingComtrade(const ExportRequest& request, const ComtradeForm& form) {
  return [request, form](Job* job, unsigned worker) { RunJob(request, form, worker, job); };
}

}  // namespace quorvex::tool
