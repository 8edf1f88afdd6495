#include "model.h"

#include <cstdio>
#include <limits>
#include <sstream>

#include "xml/text_forms.h"

namespace quorvex::test {

std::vector<std::pair<std::string, uint32_t>> Pairs(const std::string& list) {
  std::vector<std::pair<std::string, uint32_t>> pairs;
  std::istringstream words(list);
  std::string name, number;
  while (words >> name >> number) pairs.emplace_back(name, std::stoul(number));
  return pairs;
}

Model& Model::Open(const std::string& name, const std::string& phase) {
  text += "<" + name + (phase.empty() ? "" : " phase=\"" + phase + "\"") + ">\r\n";
  return *this;
}

Model& Model::Close(const std::string& name) {
  text += "</" + name + ">\r\n";
  return *this;
}

Model& Model::Line(const std::string& name, const std::string& value) {
  text += "<" + name + ">" + value + "</" + name + ">\r\n";
  return *this;
}

Model& Model::Float(const std::string& name, uint32_t at) {
  const auto value = Load<float>(record_.data() + at);
  char digits[32] = "-";
  if (value != kNone) std::snprintf(digits, sizeof digits, "%E", static_cast<double>(value));
  return Line(name, digits);
}

Model& Model::Whole(const std::string& name, uint32_t at) {
  return Line(name, std::to_string(Load<int32_t>(record_.data() + at)));
}

Model& Model::Time(const std::string& name) {
  Open(name).Line("year", "2024").Line("month", "3").Line("day", "7").Line("hour", "14");
  return Line("min", "5").Line("sec", "9.25").Close(name);
}

Model& Model::List(const std::string& list, const std::string& values, uint32_t at, uint32_t unit) {
  for (const auto& [name, place] : Pairs(list)) {
    Open(name);
    for (const auto& [value, offset] : Pairs(values)) Float(value, at + place * unit + offset);
    Close(name);
  }
  return *this;
}

Model& Model::Spectrum(const std::string& name, const std::string& phase, uint32_t at,
                       uint32_t entries, uint32_t on_disk, uint32_t written) {
  std::vector<float> floats;
  for (uint32_t entry = 0; entry < entries; ++entry) {
    for (uint32_t i = 0; i < written; ++i) {
      const auto value = Load<float>(record_.data() + at + 4 * (entry * on_disk + i));
      floats.push_back(value == kNone ? std::numeric_limits<float>::infinity() : value);
    }
  }
  std::vector<char> base64(floats.size() * 6);
  char* end = Base64Encode(reinterpret_cast<const uint8_t*>(floats.data()),
                           static_cast<uint32_t>(floats.size() * 4), base64.data());
  Open(name, phase);
  text.append(base64.data(), end);
  return Close(name);
}

Bytes FillRecord(uint32_t size, std::initializer_list<uint32_t> times) {
  Bytes record;
  for (uint32_t at = 0; at < size; at += 4) {
    record.Put(at, at % 44 == 0 ? kNone : static_cast<float>(at) * 1.37f - 3000.0f);
  }
  for (const uint32_t at : times) record.PutTime(at, 2024, 3, 7, 14, 5, 9.25);
  return record;
}

std::vector<float> Decoded(const std::string& base64) {
  const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  Bytes bytes;
  uint32_t bits = 0;
  int count = 0;
  for (const char c : base64) {
    const size_t value = alphabet.find(c);
    if (value == std::string::npos) break;
    bits = bits << 6 | static_cast<uint32_t>(value);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes.push_back(static_cast<uint8_t>(bits >> count));
  }
  std::vector<float> floats;
  for (size_t at = 0; at + 4 <= bytes.size(); at += 4) {
    floats.push_back(Load<float>(bytes.data() + at));
  }
  return floats;
}

std::string TextAt(const std::string& document, const std::vector<std::string>& path) {
  size_t at = 0;
  for (const std::string& name : path) {
    const std::string tag = "<" + name + ">";
    at = document.find(tag, at);
    if (at == std::string::npos) return "no " + name;
    at += tag.size();
  }
  at = document.find_first_not_of("\r\n", at);
  return document.substr(at, document.find_first_of("<\r", at) - at);
}

}  // namespace quorvex::test
