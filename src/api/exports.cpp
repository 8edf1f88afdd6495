// The fourteen exports.
#include "quorvex64.h"

#include "api/record_info.h"
#include "records/recording_head.h"
#include "support/memory.h"
#include "xml/conversion.h"

namespace {

using namespace quorvex;

constexpr uint32_t kHeadParamsBuffer = 30720;  // room for a head-and-settings document
constexpr uint32_t kGenRecBuffer = 404480;     // ten times the full general record

// What computes is behind these functions, in other files: nothing of it is moved to where the
// host's floating-point settings are still in force.
void Convert(const char* path, const char* output_path, WalkOptions options) {
  if (path == nullptr) return;
  OwnFloats floats;
  options.host_floats = floats.host();
  RecordingHead recording(path);
  recording.UseSettingFile();
  ConvertRecording(&recording, {.output = output_path, .walk = options});
}

}  // namespace

int32_t QuorvexGetVersion(void) { return QUORVEX_VERSION; }

int32_t QuorvexGetFileVersion(const char* path) {
  return static_cast<int32_t>(RecordingHead(path).header.version);
}

void QuorvexConvert(const char* path, const char* output_path, QuorvexProgress progress) {
  Convert(path, output_path, {.progress = progress});
}

void QuorvexConvertPerPartes(const char* path, const char* output_path, uint32_t first_record,
                             uint32_t last_record, QuorvexProgress progress) {
  Convert(path, output_path, {first_record, last_record, progress});
}

int32_t QuorvexGetNumberOfRecords(const char* path) {
  const OwnFloats floats;
  return CountGeneralRecords(path);
}

void QuorvexGetRecordInfo(const char* path, char* text) {
  const OwnFloats floats;
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
