// JSON as the commands print it: an array with each entry on a line of its own, in UTF-8.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "shared/inspection.h"
#include "shared/messages.h"

namespace quorvex::tool {

using Json = nlohmann::ordered_json;

template <typename T>
Json OrNull(const std::optional<T>& value) {
  return value ? Json(*value) : Json();
}

// Makes the entry of a recording, with what every command tells of it first.
inline Json JsonOf(const std::string& path, const Recording& r,
                   const std::optional<uint64_t>& records) {
  Json entry;
  entry["file"] = CalledName(path);
  entry["type"] = r.header ? Json(r.header->type) : Json();
  entry["name"] = r.type != nullptr ? Json(r.type->name) : Json();
  entry["version"] = r.header ? Json(static_cast<int32_t>(r.header->version)) : Json();
  entry["size"] = r.code != kNoInput ? Json(r.size) : Json();
  entry["records"] = OrNull(records);
  return entry;
}

// What was found, in the order of the file.
inline Json FindingsOf(const Findings& findings) {
  Json list = Json::array();
  for (const Finding& f : findings.list) {
    list.push_back({{"severity", NameOf(f.severity)},
                    {"kind", NameOf(f.kind)},
                    {"offset", OrNull(f.offset)},
                    {"record", f.record != 0 ? Json(f.record) : Json()},
                    {"element", f.element.empty() ? Json() : Json(f.element)},
                    {"text", f.text}});
  }
  return list;
}

class JsonArray {
 public:
  void Add(const Json& entry) {
    Print(started_ ? ",\n" : "[\n");
    Print(Shown(entry.dump(-1, ' ', false, Json::error_handler_t::replace), true));
    started_ = true;
  }
  void Close() { Print(started_ ? "\n]\n" : "[]\n"); }

 private:
  bool started_ = false;
};

}  // namespace quorvex::tool
