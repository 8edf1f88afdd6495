// bench_files [FOLDER [MEGABYTES [ROUNDS [BEFORE]]]]: converts large recordings with the library,
// with the same converters on printf and on libxml2's text writer, and writes the finished
// document's bytes raw, in turn, and prints medians. "Floor" is reading the recording and writing
// the document with nothing in between: no converter can be faster. "Own" is a conversion into
// nothing. BEFORE is another build of the library, whose times stand beside. All that is time of
// the processor, which other programs disturb least. Then two conversions side by side against one
// after the other, by the clock. FOLDER is where the files go; what a memory file system gives is
// the steadiest.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "quorvex64.h"
#include "sample.h"
#include "support/loads.h"

namespace {

namespace fs = std::filesystem;
using quorvex::kHeadSize;
using Convert = decltype(&QuorvexConvert);

[[noreturn]] void Fail(const std::string& what) {
  std::fprintf(stderr, "bench: %s\n", what.c_str());
  std::exit(1);
}

Convert LoadConvert(const char* library) {
  void* handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) Fail(dlerror());
  return reinterpret_cast<Convert>(dlsym(handle, "QuorvexConvert"));
}

using Bytes = std::vector<char>;

Bytes ReadFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

void WriteFile(const fs::path& path, const Bytes& bytes) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  constexpr size_t kPiece = 65536;
  for (size_t at = 0; at < bytes.size(); at += kPiece) {
    const size_t size = std::min(kPiece, bytes.size() - at);
    if (write(file, bytes.data() + at, size) != static_cast<ssize_t>(size)) Fail("disk full");
  }
  close(file);
}

void ReadThrough(const fs::path& path) {
  static char piece[65536];
  const int file = open(path.c_str(), O_RDONLY);
  while (read(file, piece, sizeof piece) > 0) {
  }
  close(file);
}

// A recording with `copies` times its records; a waveform capture with waveforms that much longer.
Bytes Multiplied(const Bytes& recording, size_t copies) {
  constexpr size_t kCaptureLengthAt = 8 + 1440;
  constexpr size_t kCaptureSlots = 8;
  Bytes large(recording.begin(), recording.begin() + kHeadSize);
  const bool capture = recording[4] == 5;
  const size_t slots = capture ? kCaptureSlots : 1;
  const size_t slot = (recording.size() - kHeadSize) / slots;
  large.reserve(kHeadSize + slot * slots * copies);
  for (size_t s = 0; s < slots; ++s) {
    const auto from = recording.begin() + static_cast<std::ptrdiff_t>(kHeadSize + s * slot);
    for (size_t i = 0; i < copies; ++i) {
      large.insert(large.end(), from, from + static_cast<std::ptrdiff_t>(slot));
    }
  }
  if (capture) {
    const auto samples = quorvex::Load<int32_t>(recording.data() + kCaptureLengthAt);
    quorvex::Store(large.data() + kCaptureLengthAt, samples * static_cast<int32_t>(copies));
  }
  return large;
}

double Seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Of the processor, in milliseconds, for doing it `times` times.
double Milliseconds(size_t times, const std::function<void()>& work) {
  const std::clock_t start = std::clock();
  for (size_t i = 0; i < times; ++i) work();
  return static_cast<double>(std::clock() - start) * 1000 / CLOCKS_PER_SEC;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// How much faster four conversions are on two threads than on one.
void SideBySide(Convert convert, const std::string& input, const fs::path& folder, size_t rounds) {
  std::vector<double> seconds[2];
  const auto two = [&](int thread) {
    for (int i = 0; i < 2; ++i) {
      const fs::path output = folder / ("side" + std::to_string(2 * thread + i) + ".xml");
      fs::remove(output);
      convert(input.c_str(), output.c_str(), nullptr);
    }
  };
  for (size_t round = 0; round < rounds; ++round) {
    seconds[0].push_back(Seconds([&] {
      two(0);
      two(1);
    }));
    seconds[1].push_back(Seconds([&] {
      std::thread other([&] { two(1); });
      two(0);
      other.join();
    }));
  }
  std::printf(
      "\nfour conversions of the last: %.3f s one after the other, %.3f s on two threads, ratio "
      "%.2f\n",
      Median(seconds[0]), Median(seconds[1]), Median(seconds[0]) / Median(seconds[1]));
}

struct Contender {
  const char* name;
  Convert convert;
  bool quick;
  std::vector<double> times{}, own{};
};

// The quick ones take more turns: together they need a tenth of the time of the others.
constexpr size_t kQuickTurns = 5;

// Converts each of the inputs so many times, and prints a row of the table.
void Measure(const std::string& label, const std::vector<fs::path>& inputs, size_t times,
             size_t rounds, std::vector<Contender>* contenders) {
  const std::string output = (inputs[0].parent_path() / "output.xml").string();
  std::vector<Bytes> documents;
  double mb = 0;
  for (const fs::path& input : inputs) {
    (*contenders)[0].convert(input.c_str(), output.c_str(), nullptr);
    documents.push_back(ReadFile(output));
    mb += static_cast<double>(documents.back().size() * times) / 1e6;
    for (const Contender& contender : *contenders) {
      contender.convert(input.c_str(), output.c_str(), nullptr);
      if (ReadFile(output) != documents.back()) {
        Fail(label + ": " + contender.name + " gives another document");
      }
    }
  }
  std::vector<double> raw, floor;
  for (Contender& contender : *contenders) {
    contender.times.clear();
    contender.own.clear();
  }
  const auto take_turn = [&](Contender* contender) {
    const auto convert_to = [&](const char* path) {
      for (const fs::path& input : inputs) contender->convert(input.c_str(), path, nullptr);
    };
    fs::remove(output);
    contender->times.push_back(Milliseconds(times, [&] { convert_to(output.c_str()); }));
    if (!contender->quick) return;
    contender->own.push_back(Milliseconds(times, [&] { convert_to("/dev/null"); }));
  };
  for (size_t turn = 0; turn < rounds * kQuickTurns; ++turn) {
    for (Contender& contender : *contenders) {
      if (contender.quick || turn % kQuickTurns == 0) take_turn(&contender);
    }
    fs::remove(output);
    raw.push_back(Milliseconds(times, [&] {
      for (const Bytes& document : documents) WriteFile(output, document);
    }));
    floor.push_back(raw.back() + Milliseconds(times, [&] {
                      for (const fs::path& input : inputs) ReadThrough(input);
                    }));
  }
  const auto time = [&](size_t of) { return Median((*contenders)[of].times); };
  const auto own = [&](size_t of) { return Median((*contenders)[of].own); };
  std::printf("| %s | %.0f | %.0f | %.0f | %.0f | %.0f | %.0f | %.0f | %.2f | %.2f | %.1f | %.1f |",
              label.c_str(), mb, Median(raw), Median(floor), time(0), own(0), time(1), time(2),
              time(0) / Median(raw), time(0) / Median(floor), time(1) / time(0), time(2) / time(0));
  if (contenders->size() > 3) {
    std::printf(" %.0f | %.0f | %.2f |", time(3), own(3), time(3) / time(0));
  }
  std::printf("\n");
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const fs::path folder = fs::path(argc > 1 ? argv[1] : "/dev/shm") / "quorvex-bench";
  const size_t megabytes = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 100;
  const size_t rounds = argc > 3 ? std::strtoul(argv[3], nullptr, 10) : 3;
  const char* before = argc > 4 ? argv[4] : nullptr;
  std::vector<Contender> contenders = {{"library", LoadConvert(QUORVEX_LIBRARY), true},
                                       {"printf", LoadConvert(PRINTF_LIBRARY), false},
                                       {"libxml2", LoadConvert(LIBXML2_LIBRARY), false}};
  if (before != nullptr) contenders.push_back({"before", LoadConvert(before), true});

  fs::remove_all(folder);
  fs::create_directories(folder);
  quorvex::samples::MakeAll(folder.string());
  std::printf(
      "| recording | document MB | raw write ms | floor ms | library ms | library's own ms "
      "| printf ms | libxml2 ms | library : raw write | library : floor | printf : library "
      "| libxml2 : library |%s\n|---|---|---|---|---|---|---|---|---|---|---|---|%s\n",
      before != nullptr ? " before ms | before's own ms | before : library |" : "",
      before != nullptr ? "---|---|---|" : "");
  std::vector<std::string> seen;
  std::vector<fs::path> samples, small;
  for (const auto& entry : fs::directory_iterator(folder)) samples.push_back(entry.path());
  std::sort(samples.begin(), samples.end());
  const fs::path large = folder / "large.REC";
  const fs::path output = folder / "output.xml";
  size_t small_documents = 0;
  for (const fs::path& sample : samples) {
    const Bytes recording = ReadFile(sample);
    contenders[0].convert(sample.c_str(), output.c_str(), nullptr);
    const size_t copies = megabytes * 1000000 / fs::file_size(output) + 1;
    if (recording.size() < 100000) {
      small.push_back(sample);
      small_documents += fs::file_size(output);
    }
    const auto type = quorvex::Load<int32_t>(recording.data() + 4);
    constexpr int32_t kTypes[] = {1, 2, 5, 6, 9, 10, 16, 17};
    if (std::find(std::begin(kTypes), std::end(kTypes), type) == std::end(kTypes)) continue;
    std::string label = "type " + std::to_string(type);
    if (type == 1) {
      label += ", profile " + std::to_string(quorvex::Load<int32_t>(recording.data() + 8 + 976));
    }
    if (std::find(seen.begin(), seen.end(), label) != seen.end()) continue;
    seen.push_back(label);
    if (type == 6) {  // one record, which cannot be made longer
      Measure(label + ", " + std::to_string(copies) + " times", {sample}, copies, rounds,
              &contenders);
      continue;
    }
    WriteFile(large, Multiplied(recording, copies));
    Measure(label, {large}, 1, rounds, &contenders);
  }
  const size_t times = megabytes * 1000000 / small_documents + 1;
  Measure(
      std::to_string(small.size()) + " samples below 100 kB, " + std::to_string(times) + " times",
      small, times, rounds, &contenders);
  SideBySide(contenders[0].convert, large.string(), folder, rounds);
  fs::remove_all(folder);
  return 0;
}
