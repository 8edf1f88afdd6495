// JSON as the commands print it: an array with each entry on a line of its own, in UTF-8.
#pragma once

#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

#include "host.h"

namespace quorvex::tool {

using Json = nlohmann::ordered_json;

class JsonArray {
 public:
  void Add(const Json& entry) {
    std::printf("%s%s", started_ ? ",\n" : "[\n",
                entry.dump(-1, ' ', false, Json::error_handler_t::replace).c_str());
    started_ = true;
  }
  void Close() { std::printf(started_ ? "\n]\n" : "[]\n"); }

 private:
  bool started_ = false;
};

}  // namespace quorvex::tool
