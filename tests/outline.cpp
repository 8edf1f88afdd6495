#include "outline.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <map>
#include <sstream>

#include "xml/base64.h"

namespace quorvex::test {
namespace {

const std::map<std::string, std::string> kStatistics = {
    {"mmr", "min:0 max:4 rms:8"},
    {"mma", "min:0 max:4 avg:8"},
    {"mr", "max:0 rms:4"},
    {"mmrA", "min:0 max:4 rms:8 rmsA:12"},
    {"mrA", "max:0 rms:4 rmsA:8"},
    {"6", "min:0 max:4 avg:8 avgA:16"},
    {"freq", "min:0 max:4 avgA:16"},
    {"rms", "rms:0"},
    {"avg", "avg:0"},
    {"avgA", "avgA:0"},
};

// Cut to microseconds, without the zeros at the end but for the first.
std::string SecondsOf(double seconds) {
  seconds = std::clamp(seconds, -2147483648.0, 2147483647.0);
  char text[40];
  std::snprintf(text, sizeof text, "%.6f",
                static_cast<double>(static_cast<int64_t>(seconds * 1e6)) / 1e6);
  std::string cut = text;
  while (cut.back() == '0' && cut[cut.size() - 2] != '.') cut.pop_back();
  return cut;
}

struct Writer {
  const Bytes& record;
  std::string text = {};

  template <typename T>
  T At(uint32_t at) const {
    (void)record.at(at + sizeof(T) - 1);  // a mistaken outline fails
    return Load<T>(record.data() + at);
  }
  void Line(const std::string& name, const std::string& value) {
    text += name.empty() ? value : "<" + name + ">" + value + "</" + name + ">\r\n";
  }
  void Group(const std::string& name, uint32_t at, const std::string& outline) {
    std::istringstream words(outline);
    Element(name, "", words, at, "f");
  }
  // Up to the closing word of the outline, or its end.
  void Element(const std::string& name, const std::string& attribute, std::istringstream& words,
               uint32_t base, const std::string& kind) {
    text += "<" + name + attribute + ">\r\n";
    Walk(words, base, kind);
    text += "</" + name + ">\r\n";
  }

  void Spectrum(const std::string& phase, uint32_t at, const std::string& kind) {
    const size_t slash = kind.find('/');
    unsigned entries = 0, on_disk = 0, written = 0;
    std::sscanf(kind.c_str() + slash, "/%u,%u,%u", &entries, &on_disk, &written);
    std::vector<float> floats;
    for (uint32_t i = 0; i < entries * on_disk; ++i) {
      if (i % on_disk >= written) continue;
      const auto value = At<float>(at + 4 * i);
      floats.push_back(value == kNone ? std::numeric_limits<float>::infinity() : value);
    }
    std::string base64(floats.size() * 6, '\0');
    const char* end = Base64Encode(reinterpret_cast<const uint8_t*>(floats.data()),
                                   static_cast<uint32_t>(floats.size() * 4), base64.data());
    const std::string name = kind.substr(0, slash);
    text += "<" + name + " phase=\"" + phase + "\">\r\n";
    text += base64.substr(0, static_cast<size_t>(end - base64.data())) + "</" + name + ">\r\n";
  }

  // A value of the kind that the outline names; returns its size.
  uint32_t OfKind(const std::string& name, uint32_t at, const std::string& kind) {
    const std::string number = kind.substr(kind.find('/') + 1);
    if (kind == "f") {
      Line(name, FloatE(static_cast<double>(At<float>(at))));
    } else if (kind.rfind("i16/", 0) == 0) {
      Line(name, FloatE(static_cast<double>(At<int16_t>(at) * std::stof(number))));
      return 2;
    } else if (kind.rfind("f32/", 0) == 0) {
      Line(name, FloatE(static_cast<double>(At<float>(at) * std::stof(number))));
    } else if (number != kind) {
      Spectrum(name, at, kind);
    } else {
      Group(name, at, kStatistics.at(kind));
    }
    return 4;
  }

  uint32_t Value(const std::string& name, char mark, uint32_t at, const std::string& kind) {
    switch (mark) {
      case '#':
        return Line(name, std::to_string(At<int32_t>(at))), 4;
      case ',':
        return Line(name, std::to_string(At<uint16_t>(at))), 2;
      case '.':
        return Line(name, std::to_string(At<uint8_t>(at))), 1;
      case '%':
        return Line(name, FloatE(At<double>(at))), 8;
      case '!':
        Group(name, at, "year,0 month.2 day.3 hour.4 min.5 sec=" + SecondsOf(At<double>(at + 8)));
        return 16;
      case '~':
        return Group(name, at, "value:0 type#4"), 8;
      case '^':
        return Group(name, at, "A:0 phase:4"), 8;
      default:
        return OfKind(name, at, kind);
    }
  }

  void Walk(std::istringstream& words, uint32_t base, std::string kind) {
    uint32_t from = base;
    for (std::string word; words >> word && word != "}";) {
      const size_t mark = word.find_first_of("{[+@=:#,.%!~^");
      const std::string name = word.substr(0, mark);
      std::string rest = word.substr(mark + 1);
      if (word[mark] == '{') {
        Element(name, "", words, from, kind);
      } else if (word[mark] == '[') {
        Element(name, " phase=\"" + rest.substr(0, rest.find(']')) + "\"", words, from, kind);
      } else if (word[mark] == '+') {
        from = base + static_cast<uint32_t>(std::stoul(rest));
      } else if (word[mark] == '@') {
        kind = rest;
      } else if (word[mark] == '=') {
        std::replace(rest.begin(), rest.end(), '~', ' ');
        Line(name, rest);
      } else {
        const bool in_floats = kind.back() == '*';
        const size_t times = rest.find('*');
        uint32_t at = from + static_cast<uint32_t>(std::stoul(rest)) * (in_floats ? 4 : 1);
        int left = times == std::string::npos ? 1 : std::stoi(rest.substr(times + 1));
        for (; left > 0; --left) {
          at += Value(name, word[mark], at, kind.substr(0, kind.size() - (in_floats ? 1 : 0)));
        }
      }
    }
  }
};

}  // namespace

std::string Expected(const Bytes& record, const std::string& outline) {
  Writer writer{record};
  std::istringstream words(outline);
  writer.Walk(words, 0, "f");
  return writer.text;
}

std::string Each(const std::string& element, const std::string& phases, uint32_t at, uint32_t step,
                 const std::string& body) {
  std::string outline;
  std::istringstream words(phases);
  for (std::string phase; words >> phase; at += step) {
    outline += element + "[" + phase + "]{ +" + std::to_string(at) + " " + body + " } ";
  }
  return outline;
}

Bytes Filled(uint32_t size) {
  Bytes record;
  for (uint32_t at = 0; at < size; at += 4) {
    record.Put<uint32_t>(at, 0x40400000 + at / 4 * 105);
    if (at % 44 == 0) record.Put(at, kNone);
  }
  return record;
}

std::string FloatE(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%E", value);
  return value == static_cast<double>(kNone) ? "-" : text;
}

size_t CountOf(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
  return count;
}

}  // namespace quorvex::test
