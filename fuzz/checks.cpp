#include "checks.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
#include <random>
#include <string_view>

#include "quorvex64.h"
#include "support/memory.h"
#include "tables/cursor.h"

namespace quorvex::fuzz {
namespace {

namespace fs = std::filesystem;

// A folder of this process's own, in memory where that is possible.
const fs::path& Folder() {
  static const fs::path folder = [] {
    std::error_code none;
    const fs::path memory = "/dev/shm";
    const fs::path base = fs::is_directory(memory, none) ? memory : fs::temp_directory_path();
    fs::path own = base / ("quorvex-fuzz-" + std::to_string(std::random_device()()));
    fs::create_directories(own);
    return own;
  }();
  static const struct Remover {
    ~Remover() {
      std::error_code ignored;
      fs::remove_all(folder, ignored);
    }
  } remover;
  return folder;
}

int32_t calls_left;

int32_t QUORVEX_CALL StopAfterSome(float) { return --calls_left > 0 ? 0 : -1; }

// Clamp names stand as they are and may hold anything; they do not count as structure.
void CutNames(std::string* text) {
  for (size_t at = text->find("<NAME>"); at != std::string::npos;
       at = text->find("<NAME>", at + 6)) {
    const size_t end = text->find("</NAME>", at);
    if (end != std::string::npos) text->erase(at + 6, end - at - 6);
  }
}

}  // namespace

std::string InFolder(const std::string& name) { return (Folder() / name).string(); }

void WriteFile(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

// Piece by piece: character by character it was a fifth of what damaged snapshots took under
// sanitizers.
std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text, piece(size_t{1} << 16, '\0');
  do {
    file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    text.append(piece, 0, static_cast<size_t>(file.gcount()));
  } while (file);
  return text;
}

size_t OpenFiles() {
#ifdef _WIN32
  return 0;  // Wine shows what it has open itself, now more and now less
#else
  std::error_code none;
  const fs::directory_iterator open("/proc/self/fd", none);
  return none ? 0 : static_cast<size_t>(std::distance(begin(open), fs::directory_iterator()));
#endif
}

std::string StructureProblem(std::string text) {
  constexpr char kStart[] = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<Project ";
  if (text.compare(0, sizeof kStart - 1, kStart) != 0) return "does not start as a document";
  CutNames(&text);
  std::vector<std::string_view> open;
  for (size_t at = text.find('\n') + 1; at < text.size();) {
    const size_t end = text.find("\r\n", at);
    if (end == std::string::npos) return "a line without an end";
    const std::string_view line = std::string_view(text).substr(at, end - at);
    at = end + 2;
    const size_t close = line.rfind("</");
    if (close == std::string::npos) {
      open.push_back(line.substr(1, line.find_first_of(" >") - 1));
    } else if (close == 0 || line[0] != '<') {
      const std::string_view name = line.substr(close + 2, line.size() - close - 3);
      if (open.empty() || open.back() != name)
        return "closes " + std::string(name) + " out of turn";
      open.pop_back();
    }
  }
  return open.empty() ? "" : std::string(open.back()) + " stays open";
}

std::string ConversionProblem(const std::vector<uint8_t>& recording, bool with_progress) {
  const std::string input = InFolder("R0001X.REC"), output = InFolder("document.xml");
  WriteFile(input, recording);
  fs::remove(output);
  const uint32_t tracked = TrackedBytes();
  const size_t open_files = OpenFiles();
  calls_left = 5;
  QuorvexConvert(input.c_str(), output.c_str(), with_progress ? StopAfterSome : nullptr);
  if (TrackedBytes() != tracked) return "tracked memory does not come back";
  if (OpenFiles() != open_files) return "a file stays open";
  if (!fs::exists(output)) return "";
  const std::string document = ReadFile(output);
  if (document.size() > kMostTimes * recording.size() + kMostBeyond) {
    return "a document of " + std::to_string(document.size()) + " bytes from " +
           std::to_string(recording.size());
  }
  return StructureProblem(document);
}

std::string QueryProblem(const std::vector<uint8_t>& recording) {
  const std::string input = InFolder("R0001X.REC");
  WriteFile(input, recording);
  const uint32_t tracked = TrackedBytes();
  char text[512];
  std::memset(text, 'x', sizeof text);
  QuorvexGetRecordInfo(input.c_str(), text);
  QuorvexGetNumberOfRecords(input.c_str());
  QuorvexGetFileVersion(input.c_str());
  if (std::memchr(text, '\0', sizeof text) == nullptr) return "an information line without an end";
  return TrackedBytes() == tracked ? "" : "tracked memory does not come back";
}

namespace {

// A row of which every column can be read; its texts lie in order.
std::string BatchProblem(const Batch& batch) {
  for (const ColumnData& data : batch.columns) {
    uint32_t nulls = 0;
    for (uint32_t row = 0; row < batch.rows; ++row) nulls += data.Has(row) ? 0 : 1;
    if (nulls != data.nulls) return "a wrong number of missing values in " + data.column->name;
    if (data.column->type != ValueType::kText) continue;
    for (uint32_t row = 0; row < batch.rows; ++row) {
      if (data.At<int32_t>(row) > data.At<int32_t>(row + 1)) return "texts out of order";
    }
    const std::string all(data.text, static_cast<size_t>(data.At<int32_t>(batch.rows)));
    if (all != AsUtf8(all)) return "a text that is no UTF-8";
  }
  return "";
}

}  // namespace

std::string TablesProblem(const std::string& path) {
  RecordingHead head(path.c_str());
  if (!head.file || head.type == nullptr || head.size < head.type->records_at) return "";
  head.UseSettingFile();
  const TableSet set = TablesOf(*head.type, head.settings);
  for (const Table& table : set.tables) {
    std::vector<uint32_t> columns(table.columns.size());
    std::iota(columns.begin(), columns.end(), 0u);
    ReadOptions options;
    options.first = 1 + head.size % 3;
    Cursor cursor(&head, set, table, columns, options);
    uint64_t rows = 0;
    for (Batch batch; cursor.Next(&batch); rows += batch.rows) {
      const std::string problem = BatchProblem(batch);
      if (!problem.empty()) return table.name + ": " + problem;
      // No row is made of less than a byte, but for those of one record.
      if (rows > head.size + kMostBeyond) return "no end of rows in " + table.name;
    }
  }
  return "";
}

}  // namespace quorvex::fuzz
