#include "support.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>

#include "support/memory.h"

namespace quorvex::test {
namespace fs = std::filesystem;

Bytes& Bytes::PutTime(size_t at, int year, int month, int day, int hour, int minute,
                      double seconds) {
  const auto byte = [](int value) { return static_cast<uint8_t>(value); };
  Put(at, static_cast<uint16_t>(year)).Put(at + 2, byte(month)).Put(at + 3, byte(day));
  return Put(at + 4, byte(hour)).Put(at + 5, byte(minute)).Put(at + 8, seconds);
}

Bytes& Bytes::PutSettings(size_t at, const std::string& settings) {
  std::istringstream words(settings);
  for (std::string word; words >> word;) {
    const size_t mark = word.find_first_of("#.:%"), place = at + std::stoul(word);
    const std::string value = word.substr(mark + 1);
    if (word[mark] == '#') Put(place, static_cast<int32_t>(std::stoll(value)));
    if (word[mark] == '.') Put(place, static_cast<uint8_t>(std::stoi(value)));
    if (word[mark] == ':') Put(place, std::stof(value));
    if (word[mark] == '%') Put(place, std::stod(value));
  }
  return *this;
}

Bytes& Bytes::PutText(size_t at, const std::string& text) {
  return PutBytes(at, {text.begin(), text.end()});
}

Bytes& Bytes::PutBytes(size_t at, const Bytes& bytes) {
  if (size() < at + bytes.size()) resize(at + bytes.size());
  std::copy(bytes.begin(), bytes.end(), begin() + static_cast<std::ptrdiff_t>(at));
  return *this;
}

Bytes& Bytes::PadTo(size_t bytes) {
  if (size() < bytes) resize(bytes);
  return *this;
}

Bytes HeadOf(uint32_t type) {
  Bytes head;
  head.Put<uint32_t>(0, 3).Put<uint32_t>(4, type).PadTo(3072);
  return head;
}

Bytes ScaledHead(uint32_t type, uint8_t connection) {
  Bytes head = HeadOf(type);
  head.Put<int32_t>(16, 1).Put<int32_t>(2576, 1).Put<uint8_t>(21, connection);
  head.Put(2216, 8192.0f).Put(2228, 16384.0f).Put(2240, 32768.0f).Put(2264, 4096.0f);
  for (const size_t at : {136, 280, 424, 568}) head.Put(at, 1.0f);
  head.Put<uint8_t>(812, 100).Put<uint8_t>(816, 10);
  head.Put(2292, 16384.0f).Put(2300, 32768.0f).Put(2308, 65536.0f).Put(2316, 131072.0f);
  return head.Put(2312, 262144.0f);
}

Bytes Filled(uint32_t size, uint32_t first) {
  Bytes record;
  for (uint32_t at = 0; at < size; at += 4) {
    const uint32_t mixed = (first + at / 4 + 1) * 2654435761u;
    const uint32_t sign = mixed >> 29 == 0 ? 0x80000000 : 0;
    record.Put(at, sign | ((0x3E + (mixed >> 24) % 4) << 24) | (mixed & 0xFFFFFF));
    if (at % 172 == 0) record.Put(at, kNone);
  }
  record.resize(size);
  return record;
}

bool Exists(const std::string& path) { return fs::exists(path); }

std::string Converted(const Bytes& recording, QuorvexProgress progress, const std::string& name) {
  const std::string input = InFolder(name);
  const std::string output = InFolder("converted.xml");
  fs::remove(output);
  WriteFile(input, recording);
  const uint32_t before = TrackedBytes();
  QuorvexConvert(input.c_str(), output.c_str(), progress);
  EXPECT_EQ(before, TrackedBytes());
  const std::string document = ReadFile(output);
  EXPECT_EQ("", document.empty() ? "" : fuzz::StructureProblem(document));
  fs::remove(input);
  return document;
}

void LeaveForSchema(const std::string& document, const std::string& name) {
  const char* folder = std::getenv("QUORVEX_DOCUMENTS");
  if (folder == nullptr) return;
  fs::create_directories(folder);
  WriteFile((fs::path(folder) / (name + ".xml")).string(), {document.begin(), document.end()});
}

std::string BodyOf(const std::string& document) {
  const std::string root_end = "</Project>\r\n";
  for (const char* head : {"</UIF_PARAMS>\r\n", "</FILE_HEADER>\r\n"}) {
    const size_t at = document.find(head);
    if (at == std::string::npos) continue;
    const size_t from = at + std::strlen(head);
    return document.substr(from, document.size() - root_end.size() - from);
  }
  return "";
}

std::string Line(const std::string& element, const std::string& value) {
  return "<" + element + ">" + value + "</" + element + ">\r\n";
}

std::string ValuesOf(const std::string& document, const std::string& element) {
  std::string values;
  const std::string tag = "<" + element + ">";
  for (size_t at = 0; (at = document.find(tag, at)) != std::string::npos;) {
    at += tag.size();
    const size_t end = document.find('<', at);
    if (document[at] != '\r') values += (values.empty() ? "" : " ") + document.substr(at, end - at);
  }
  return values;
}

size_t CountOf(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
  return count;
}

void ExpectSame(const std::string& expected, const std::string& document) {
  if (expected == document) return;
  size_t line = 0, at = 0;
  for (; at < expected.size() && at < document.size() && expected[at] == document[at]; ++at) {
    if (expected[at] == '\n') line = at + 1;
  }
  const auto around = [&](const std::string& text) { return text.substr(line, at - line + 60); };
  ADD_FAILURE() << "at byte " << at << "\nexpected " << around(expected) << "\nfound "
                << around(document);
}

}  // namespace quorvex::test
