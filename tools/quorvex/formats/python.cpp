// quorvex formats --python: what the Python package must know of the formats, so that it counts the
// records of a file and finds their times without a second description.
#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

#include "generate.h"
#include "records/record_types.h"
#include "support/loads.h"

namespace quorvex::tool {
namespace {

// Every case of the layout tables: the connection codes, and again with reduced lists.
constexpr uint8_t kConnections = 8;

// The words of the settings that choose layouts. They are small: profiles, and intervals of a day
// at the most.
constexpr size_t kChoosing[] = {offsetof(UifParams, profile), offsetof(UifParams, interval)};
constexpr uint32_t kMostChoosing = 86400;

std::string Number(uint64_t number) { return std::to_string(number); }
std::string Truth(bool truth) { return truth ? "True" : "False"; }

// A tuple, which the cases repeat: of one entry where they are all the same.
std::string ByCase(std::vector<uint64_t> sizes) {
  for (size_t half = sizes.size() / 2; half > 0; half /= 2) {
    if (!std::equal(sizes.begin(), sizes.begin() + half, sizes.begin() + half)) break;
    sizes.resize(half);
  }
  std::string text;
  for (const uint64_t size : sizes) text += (text.empty() ? "" : ", ") + Number(size);
  return "(" + text + (sizes.size() == 1 ? ",)" : ")");
}

// Where a record has a point in time, as an argument; nothing where it has none of these names.
std::string TimeAt(const Field& layout, std::initializer_list<const char*> names,
                   const std::string& argument) {
  for (const char* name : names) {
    const int32_t at = DateTimeAt(layout, name);
    if (at >= 0) return ", " + argument + "=" + std::to_string(at);
  }
  return "";
}

// `settings` choose the layout.
std::string LayoutText(const RecordType& type, UifParams settings) {
  std::vector<uint64_t> sizes, per_count;
  for (uint8_t reduced = 0; reduced < 2; ++reduced) {
    for (uint8_t connection = 0; connection < kConnections; ++connection) {
      settings.connection = connection;
      settings.reduced_lists = reduced;
      const auto size_with = [&](uint32_t count) {
        if (type.counted_at >= 0) {
          Store(reinterpret_cast<uint8_t*>(&settings) + type.counted_at, count);
        }
        return RecordSize(type, settings);
      };
      sizes.push_back(size_with(0));
      per_count.push_back(size_with(1) - size_with(0));
    }
  }
  const bool differ = type.counted_at < 0 && sizes[0] == 0;
  std::string text = "Layout(sizes=" + (differ ? "()" : ByCase(sizes));
  if (type.counted_at >= 0) {
    text += ", per_count=" + ByCase(per_count) + ", count_at=" + std::to_string(type.counted_at);
  }
  const Field& layout = *LayoutOf(type, settings);
  return text + TimeAt(layout, {"START_TIME"}, "start_at") +
         TimeAt(layout, {"LAST_TIME", "END_TIME"}, "end_at") + ")";
}

// What chooses a type's layouts, and which: by the value of that word, None for every other value.
std::string LayoutsText(const RecordType& type) {
  const auto entry = [&type](const std::string& value, const UifParams& settings) {
    return "\n            " + value + ": " + LayoutText(type, settings) + ",";
  };
  UifParams settings{};
  if (type.choice == nullptr) {
    const std::string only = type.record != nullptr ? entry("None", settings) + "\n        " : "";
    return "None,\n        layouts={" + only + "},\n";
  }
  std::string text;
  size_t at = 0;
  for (const size_t word : kChoosing) {
    const auto set = [&settings, word](uint32_t value) {
      Store(reinterpret_cast<uint8_t*>(&settings) + word, value);
    };
    set(UINT32_MAX);
    const Field* other = type.choice->choose(settings);
    const std::string others = other != nullptr ? entry("None", settings) : "";
    const size_t before = text.size();
    for (uint32_t value = 0; value <= kMostChoosing; ++value) {
      set(value);
      if (type.choice->choose(settings) != other) text += entry(Number(value), settings);
    }
    set(0);
    if (text.size() == before) continue;
    text += others;
    at = word;
  }
  return Number(at) + ",\n        layouts={" + text + "\n        },\n";
}

}  // namespace

std::string PythonFormats() {
  const auto constant = [](const std::string& name, size_t value) {
    return name + " = " + Number(value) + "\n";
  };
  std::string text =
      "\"\"\"The formats of the recordings, made from the library's tables by "
      "scripts/generate.\"\"\"\n\n"
      "from ._layouts import Layout, RecordType\n\n" +
      constant("SETTINGS_SIZE", kSettingsSize) +
      constant("CONNECTION_AT", offsetof(UifParams, connection)) +
      constant("REDUCED_LISTS_AT", offsetof(UifParams, reduced_lists)) +
      constant("INTERVAL_AT", offsetof(UifParams, interval)) + "\nRECORD_TYPES = {\n";
  for (const RecordType* type : kRecordTypes) {
    text += "    " + Number(type->type) + ": RecordType(\n        name=\"" + type->name + "\",\n";
    const auto put = [&text](const std::string& name, const std::string& value) {
      text += "        " + name + "=" + value + ",\n";
    };
    std::string labels, end_from = "settings";
    for (uint32_t i = 0; i < type->line.count; ++i) {
      const InfoField& field = type->line.fields[i];
      labels += (i == 0 ? "\"" : " \"") + std::string(field.label) + "\",";
      if (field.from == InfoFrom::kPeriods) end_from = "periods";
      if (field.from == InfoFrom::kLastRecord) end_from = "records";
    }
    put("line", "(" + labels + ")");
    put("end_from", "\"" + end_from + "\"");
    put("records_at", Number(type->records_at));
    put("settings_at", type->settings_at != 0 ? Number(type->settings_at) : "None");
    put("companion", Truth(type->companion));
    put("ranges", Truth(type == &kGeneral));
    put("progress", Truth(type->progress));
    put("once", Truth(type->once));
    text += "        chosen_by=" + LayoutsText(*type) + "    ),\n";
  }
  return text + "}\n";
}

}  // namespace quorvex::tool
