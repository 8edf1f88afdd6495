// The walk that nearly every conversion is: head, settings, state, document, records.
#include <optional>

#include "records/recording.h"
#include "settings/instrument_state.h"
#include "settings/setting_file.h"
#include "settings/settings_table.h"
#include "support/loads.h"
#include "support/memory.h"
#include "xml/document.h"
#include "xml/plan.h"

namespace quorvex {
namespace {

constexpr uint32_t kInformationRoom = 256;

// False where the file cannot be opened, or is of another type by now. Bytes that a short file
// lacks stay as they are.
bool ReadHead(const RecordType& type, const char* path, FileHeader* header, UifParams* settings,
              uint8_t* information) {
  File file(path, kOpenRead);
  if (!file) return false;
  ReadBytes(file.get(), header, sizeof *header);
  if (header->type != type.type) return false;
  if (type.settings_at == 0) return true;
  if (!SeekTo(file.get(), type.settings_at)) return true;
  ReadBytes(file.get(), settings, kSettingsSize);
  if (type.information != nullptr) ReadBytes(file.get(), information, type.information->size);
  return true;
}

// False where the file cannot be opened any longer.
bool WriteRecords(const RecordType& type, const Request& request, const UifParams& settings,
                  XmlWriter* document) {
  File input(request.input, kOpenRead);
  if (!input || !SeekTo(input.get(), type.records_at)) return false;
  Request reached = request;
  if (!type.progress) reached.progress = nullptr;
  // Of the open file: its name may be too long for a search, or a link's.
  const uint64_t size = SizeOf(input.get());
  type.write({type, reached, settings, document, input.get(), static_cast<uint32_t>(size), size});
  return true;
}

}  // namespace

void ReadFileHeader(const char* path, FileHeader* header) {
  header->type = 0;
  File file(path, kOpenRead);
  if (file) ReadBytes(file.get(), header, sizeof *header);
}

bool ConvertRecording(const RecordType& type, const Request& request) {
  FileHeader header{};
  Tracked<UifParams> settings;
  uint8_t information[kInformationRoom] = {};
  if (!ReadHead(type, request.input, &header, settings.get(), information)) return false;
  if (type.companion) LoadSettingFile(request.input, settings.get());
  std::optional<ScopedState> state;
  if (type.state) state.emplace(settings.get());

  XmlWriter* document = CreateDocument(request.input, request.output);
  if (document == nullptr) return false;
  document->go_on = request.go_on;
  WriteDocumentStart(document);
  RenderOnce(document, kFileHeader, kAllCases, &header);
  if (type.settings_at != 0) {
    Inputs inputs;
    inputs.number[kHarmonicsFlag] = type.harmonics_flag ? 1 : 0;
    RenderOnce(document, kSettingsBlock, kAllCases, settings.get(), inputs);
  }
  if (type.information != nullptr) {
    RenderOnce(document, *type.information, CaseOf(*settings), information);
  }
  if (type.list != nullptr) OpenElement(document, type.list);
  const bool there = type.write == nullptr || WriteRecords(type, request, *settings, document);
  if (type.list != nullptr) CloseElement(document);
  CloseElement(document);
  return CloseDocument(document) && there;
}

uint32_t CountRecords(uint32_t file_size, uint32_t record_size) {
  const uint32_t behind_head = file_size - kHeadSize;
  return behind_head == 0 ? 0 : (behind_head - 1) / record_size + 1;
}

void WriteCountedRecords(const Conversion& c) {
  if (c.whole_size < c.type.records_at) return;
  const uint32_t record_size = c.type.record->size;
  const Plan plan(*c.type.record, CaseOf(c.settings));
  Tracked<uint8_t> record(record_size);
  if (c.type.record_settings_at != 0) Store(record.get() + c.type.record_settings_at, c.settings);
  const uint32_t count = CountRecords(c.size, record_size);
  for (uint32_t i = 0; i < count && !c.document->abandoned; ++i) {
    ReadBytes(c.input, record.get(), record_size);
    plan.Render(c.document, record.get());
  }
}

void WriteRecordsToEnd(const Conversion& c) {
  const uint32_t record_size = c.type.record->size;
  const Plan plan(*c.type.record, CaseOf(c.settings));
  Tracked<uint8_t> record(record_size);
  while (ReadBytes(c.input, record.get(), record_size) == record_size) {
    plan.Render(c.document, record.get());
    if (!ReportPosition(c)) return;
  }
}

// Not inline, so that the fraction is computed before the settings change hands.
__attribute__((noinline)) bool Report(const Request& request, float fraction) {
  if (request.host_floats != nullptr) RestoreFloats(*request.host_floats);
  const int32_t answer = request.progress(fraction);
  if (request.host_floats != nullptr) {
    SaveFloats(request.host_floats);
    SetOwnFloats();
  }
  return answer >= 0;
}

bool ReportPosition(const Conversion& c) {
  if (c.request.progress == nullptr) return true;
  const auto position = static_cast<float>(PositionOf(c.input));
  return Report(c.request, position / static_cast<float>(c.size));
}

}  // namespace quorvex
