#include "model.h"

#include <cstdio>
#include <limits>
#include <map>
#include <sstream>

#include "xml/text_forms.h"

namespace quorvex::test {
namespace {

const std::map<std::string, std::vector<std::pair<const char*, uint32_t>>> kStatistics = {
    {"mmr", {{"min", 0}, {"max", 4}, {"rms", 8}}},
    {"mma", {{"min", 0}, {"max", 4}, {"avg", 8}}},
    {"mr", {{"max", 0}, {"rms", 4}}},
    {"mmrA", {{"min", 0}, {"max", 4}, {"rms", 8}, {"rmsA", 12}}},
    {"mrA", {{"max", 0}, {"rms", 4}, {"rmsA", 8}}},
    {"6", {{"min", 0}, {"max", 4}, {"avg", 8}, {"avgA", 16}}},
    {"freq", {{"min", 0}, {"max", 4}, {"avgA", 16}}},
    {"rms", {{"rms", 0}}},
    {"avg", {{"avg", 0}}},
    {"avgA", {{"avgA", 0}}},
};
constexpr char kTime[] = "year=2024 month=3 day=7 hour=14 min=5 sec=9.25";

class Outline {
 public:
  explicit Outline(const Bytes& record) : record_(record) {}

  std::string text;

  void Walk(const std::string& outline) {
    std::istringstream words(outline);
    for (std::string word; words >> word;) Take(word);
  }

 private:
  const Bytes& record_;
  std::vector<std::string> open_;
  uint32_t base_ = 0;
  uint32_t unit_ = 1;
  std::string kind_;

  void Open(const std::string& name, const std::string& phase = "") {
    text += "<" + name + (phase.empty() ? "" : " phase=\"" + phase + "\"") + ">\r\n";
    open_.push_back(name);
  }
  void Close() {
    text += "</" + open_.back() + ">\r\n";
    open_.pop_back();
  }
  void Line(const std::string& name, const std::string& value) {
    text += "<" + name + ">" + value + "</" + name + ">\r\n";
  }
  void Float(const std::string& name, uint32_t at) {
    const auto value = Load<float>(record_.data() + at);
    char digits[32] = "-";
    if (value != kNone) std::snprintf(digits, sizeof digits, "%E", static_cast<double>(value));
    Line(name, digits);
  }

  void Spectrum(const std::string& phase, uint32_t at) {
    const size_t slash = kind_.find('/');
    unsigned entries = 0, on_disk = 0, written = 0;
    std::sscanf(kind_.c_str() + slash, "/%u,%u,%u", &entries, &on_disk, &written);
    std::vector<float> floats;
    for (uint32_t i = 0; i < entries * on_disk; ++i) {
      const auto value = Load<float>(record_.data() + at + 4 * i);
      if (i % on_disk >= written) continue;
      floats.push_back(value == kNone ? std::numeric_limits<float>::infinity() : value);
    }
    std::string base64(floats.size() * 6, '\0');
    const char* end = Base64Encode(reinterpret_cast<const uint8_t*>(floats.data()),
                                   static_cast<uint32_t>(floats.size() * 4), base64.data());
    Open(kind_.substr(0, slash), phase);
    text += base64.substr(0, static_cast<size_t>(end - base64.data()));
    Close();
  }

  void Take(const std::string& word) {
    const size_t mark = word.find_first_of("{}[!+@:=");
    const std::string name = word.substr(0, mark);
    const std::string rest = word.substr(mark + 1);
    switch (word[mark]) {
      case '{':
        return Open(name);
      case '[':
        return Open(name, rest.substr(0, rest.find(']')));
      case '}':
        return Close();
      case '!':
        return Walk(name + "{ " + kTime + " }");
      case '+':
        base_ = static_cast<uint32_t>(std::stoul(rest));
        return;
      case '@':
        kind_ = rest.substr(0, rest.find('*'));
        unit_ = rest.back() == '*' ? 4 : 1;
        return;
      case '=':
        return Line(name, rest);
      default:
        break;
    }
    const uint32_t at = base_ + unit_ * static_cast<uint32_t>(std::stoul(rest));
    const std::string integer = std::to_string(Load<int32_t>(record_.data() + at));
    if (name.empty()) {
      text += integer;
    } else if (kind_ == "f") {
      Float(name, at);
    } else if (kind_ == "4") {
      Line(name, integer);
    } else if (kind_.find('/') != std::string::npos) {
      Spectrum(name, at);
    } else {
      Open(name);
      for (const auto& [value, offset] : kStatistics.at(kind_)) Float(value, at + offset);
      Close();
    }
  }
};

}  // namespace

std::string Expected(const Bytes& record, const std::string& outline) {
  Outline walked(record);
  walked.Walk(outline);
  return walked.text;
}

std::string Each(const std::string& element, const std::string& phases, uint32_t at, uint32_t step,
                 const std::string& body) {
  std::string outline;
  std::istringstream words(phases);
  for (std::string phase; words >> phase; at += step) {
    outline += element + "[" + phase + "]{ +" + std::to_string(at) + " " + body + " } ";
  }
  return outline + "+0 ";
}

Bytes FillRecord(uint32_t size, std::initializer_list<uint32_t> times) {
  Bytes record;
  for (uint32_t at = 0; at < size; at += 4) {
    record.Put(at, at % 44 == 0 ? kNone : static_cast<float>(at) * 1.37f - 3000.0f);
  }
  for (const uint32_t at : times) record.PutTime(at, 2024, 3, 7, 14, 5, 9.25);
  return record;
}

size_t CountOf(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
  return count;
}

}  // namespace quorvex::test
