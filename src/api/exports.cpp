// The fourteen exports.
#include "quorvex64.h"

#include "api/record_info.h"
#include "records/recording.h"
#include "support/memory.h"

namespace {

using namespace quorvex;

constexpr uint32_t kHeadParamsBuffer = 30720;  // room for a head-and-settings document
constexpr uint32_t kGenRecBuffer = 404480;     // ten times the full general record
constexpr uint32_t kGeneralType = 1;
constexpr float kGeneralRecordSize = 40448.0f;

void Convert(const Request& request) {
  if (request.input == nullptr) return;
  FileHeader header{};
  ReadFileHeader(request.input, &header);
  if (const RecordType* type = FindRecordType(header.type)) ConvertRecording(*type, request);
}

}  // namespace

int32_t QuorvexGetVersion(void) { return QUORVEX_VERSION; }

int32_t QuorvexGetFileVersion(const char* path) {
  FileHeader header{};
  ReadFileHeader(path, &header);
  return static_cast<int32_t>(header.version);
}

void QuorvexConvert(const char* path, const char* output_path, QuorvexProgress progress) {
  Convert({.input = path, .output = output_path, .progress = progress});
}

void QuorvexConvertPerPartes(const char* path, const char* output_path, uint32_t first_record,
                             uint32_t last_record, QuorvexProgress progress) {
  Convert({path, output_path, first_record, last_record, progress});
}

int32_t QuorvexGetNumberOfRecords(const char* path) {
  FileHeader header{};
  ReadFileHeader(path, &header);
  if (header.type != kGeneralType) return 0;
  Tracked<FileInfo> info;
  const uint32_t size = QueryFileInfo(path, info.get()) == 0 ? info->size : 0;
  // A size below the head's wraps round, and its quotient then fits no 32-bit integer.
  const uint64_t behind_head = static_cast<uint64_t>(size) - kHeadSize;
  const float count = static_cast<float>(behind_head) / kGeneralRecordSize + 0.5f;
  return count < 2147483648.0f ? static_cast<int32_t>(count) : INT32_MIN;
}

void QuorvexGetRecordInfo(const char* path, char* text) {
  if (path != nullptr && text != nullptr) DescribeRecording(path, text);
}

void* QuorvexCreateBufHeadParamsToRAM(void) { return Allocate(kHeadParamsBuffer); }

void* QuorvexCreateBufGenRecToRAM(uint32_t count) { return Allocate(count * kGenRecBuffer); }

void QuorvexDestroyBufHeadParamsToRAM(void* buffer) { Release(buffer); }

void QuorvexConvertGenRecToFile(void) {}

// One function under several names: kept for hosts that look the names up.
#define QUORVEX_SAME_AS(name) __attribute__((alias(name)))
void QuorvexDestroyBufGenRecToRAM(void* buffer) QUORVEX_SAME_AS("QuorvexDestroyBufHeadParamsToRAM");
void QuorvexConvertGenRecToRAM(void) QUORVEX_SAME_AS("QuorvexConvertGenRecToFile");
void QuorvexConvertHeadParamsToFile(void) QUORVEX_SAME_AS("QuorvexConvertGenRecToFile");
void QuorvexConvertHeadParamsToRAM(void) QUORVEX_SAME_AS("QuorvexConvertGenRecToFile");
