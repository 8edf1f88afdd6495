// Tells what a recording is, as far as its head does.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "records/recording.h"
#include "shared/system.h"

namespace quorvex::tool {

// The head of a recording, or why it has none. A file that ends inside its head keeps what there
// is.
struct Recording {
  ExitCode code = kDone;
  std::string problem;  // empty where there is none
  std::optional<FileHeader> header;
  const RecordType* type = nullptr;  // null for unknown types
  uint64_t size = 0;
  bool setting_file = false;  // its settings are those of a setting file
  bool has_layout = true;     // for its records; the settings may name none
  uint32_t profile = 0;
  std::optional<uint64_t> records;  // see RecordCount
};
// `settings`, where asked for, are those in force: the setting file's where the type takes one.
Recording Inspect(const std::string& path, UifParams* settings = nullptr);

// Whole records of a recording; nothing where records differ in size or have no layout.
std::optional<uint64_t> RecordCount(const Recording& recording, const UifParams& settings);

// The fields of the record information line.
enum class InfoForm : uint8_t {
  kText,
  kTime,
  kSeconds,  // minutes and more are shown as such
  kPeriods,
  kAmount,  // in V or A, with a prefix
  kLevel,   // in percent, with an amount in brackets; or only either
  kNumber,
};
struct InfoField {
  const char* label;
  InfoForm form;
};
struct InfoValue {
  InfoField field;
  std::string text;
};
std::vector<InfoValue> InfoValues(const std::string& path, const RecordType& type);
// Every field that a type has, in the order of the types.
std::vector<InfoField> AllInfoFields();

// Everything that a file list shows of a recording.
struct Facts {
  std::string path;
  Recording recording;
  std::vector<InfoValue> values;
  const char* end_from = nullptr;  // where the end comes from; null where there is none
  std::optional<std::string> instrument, serial, connection;
};
Facts FactsOf(const std::string& path);

}  // namespace quorvex::tool
