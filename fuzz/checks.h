// What must hold after any call, whatever bytes went in.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quorvex::fuzz {

// A document is at most this many times its recording, plus the settings and the last record that a
// cut may leave whole: docs/safety.md tells where the figures come from.
constexpr uint64_t kMostTimes = 512;
constexpr uint64_t kMostBeyond = 1 << 20;

// A file in a folder of this process's own, which is removed at its end.
std::string InFolder(const std::string& name);
void WriteFile(const std::string& path, const std::vector<uint8_t>& bytes);
// Empty where there is no such file.
std::string ReadFile(const std::string& path);

// How many files this process has open; 0 where the system does not say.
size_t OpenFiles();

// Says where a document opens or closes an element out of turn; empty where it does not.
std::string StructureProblem(std::string document);

// Converts the bytes as a recording and says what is wrong with the outcome; empty where nothing
// is. `with_progress` asks for progress and stops after some calls.
std::string ConversionProblem(const std::vector<uint8_t>& recording, bool with_progress);

// The same for the record information line and the other queries.
std::string QueryProblem(const std::vector<uint8_t>& recording);

// Reads every table of a recording, which must end, and says what is wrong with the batches.
std::string TablesProblem(const std::string& path);

}  // namespace quorvex::fuzz
