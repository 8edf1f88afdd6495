#include "xml/element_writer.h"

#include <array>
#include <cassert>
#include <cstring>

#include "support/memory.h"

namespace quorvex {
namespace {

void Flush(XmlWriter* writer) {
  WriteAll(writer->file, writer->buffer, writer->position);
  writer->position = 0;
}

void Grow(XmlWriter* writer, uint32_t needed) {
  while (writer->capacity < needed) writer->capacity += kWriterBuffer;
  auto* larger = static_cast<char*>(Allocate(writer->capacity));
  std::memcpy(larger, writer->buffer, writer->position);
  Release(writer->buffer);
  writer->buffer = larger;
}

// Twelve bits are two characters.
constexpr auto kBase64Pairs = [] {
  constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::array<std::array<char, 2>, 4096> pairs{};
  for (size_t i = 0; i < pairs.size(); ++i) pairs[i] = {kAlphabet[i >> 6], kAlphabet[i & 63]};
  return pairs;
}();

bool IsKept(char c) {
  const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  const bool digit = c >= '0' && c <= '9';
  return letter || digit || std::strchr(" .,!%&=+-*/_", c) != nullptr;
}

}  // namespace

XmlWriter* CreateWriter(FileHandle* file) {
  auto* writer = static_cast<XmlWriter*>(Allocate(sizeof(XmlWriter)));
  writer->file = file;
  writer->mode = file != nullptr ? Output::kFile : Output::kMemory;
  writer->buffer = static_cast<char*>(Allocate(kWriterBuffer));
  writer->capacity = kWriterBuffer;
  return writer;
}

void CloseWriter(XmlWriter* writer) {
  if (writer == nullptr) return;
  if (writer->mode == Output::kFile) Flush(writer);
  CloseFile(writer->file);
  Release(writer->buffer);
  Release(writer);
}

char* Reserve(XmlWriter* writer, uint32_t size) {
  assert(size <= kWriterBuffer);
  if (size > writer->capacity - writer->position) {
    if (writer->mode == Output::kFile) {
      Flush(writer);
    } else {
      Grow(writer, writer->position + size);
    }
  }
  return writer->buffer + writer->position;
}

void PutText(XmlWriter* writer, const char* text) {
  size_t left = std::strlen(text);
  while (left > 0) {
    const auto piece = static_cast<uint32_t>(left < kWriterBuffer ? left : kWriterBuffer);
    char* to = Reserve(writer, piece);
    std::memcpy(to, text, piece);
    Advance(writer, to + piece);
    text += piece;
    left -= piece;
  }
}

void OpenElement(XmlWriter* writer, const char* name, const char* attributes) {
  PutText(writer, "<");
  PutText(writer, name);
  if (attributes[0] != '\0') {
    PutText(writer, " ");
    PutText(writer, attributes);
  }
  PutText(writer, ">\r\n");
  // Deeper nesting than any document has is a mistake of ours; without assertions the name is lost
  // but nothing is overwritten.
  assert(writer->depth < kMaxOpenElements);
  if (writer->depth < kMaxOpenElements) writer->open[writer->depth] = name;
  ++writer->depth;
}

void CloseElement(XmlWriter* writer) {
  assert(writer->depth > 0);
  if (writer->depth == 0) return;
  --writer->depth;
  PutText(writer, "</");
  if (writer->depth < kMaxOpenElements) PutText(writer, writer->open[writer->depth]);
  PutText(writer, ">\r\n");
}

void ValueElement(XmlWriter* writer, const char* name, const char* value) {
  PutText(writer, "<");
  PutText(writer, name);
  PutText(writer, ">");
  PutText(writer, value);
  PutText(writer, "</");
  PutText(writer, name);
  PutText(writer, ">\r\n");
}

char* EscapeText(const char* source, char* to, uint32_t limit) {
  for (uint32_t i = 0; i < limit && source[i] != '\0'; ++i) {
    const char c = source[i];
    if (c == '\n' || c == '\r') {
      *to++ = '\\';
    } else {
      *to++ = IsKept(c) ? c : '?';
    }
  }
  return to;
}

char* Base64Encode(const uint8_t* source, uint32_t size, char* to) {
  const auto put = [&to](uint32_t group) {
    std::memcpy(to, kBase64Pairs[group >> 12].data(), 2);
    std::memcpy(to + 2, kBase64Pairs[group & 0xFFF].data(), 2);
    to += 4;
  };
  uint32_t i = 0;
  for (; i + 3 <= size; i += 3) put(source[i] << 16u | source[i + 1] << 8u | source[i + 2]);
  const uint32_t left = size - i;
  if (left == 0) return to;
  put(source[i] << 16u | (left > 1 ? source[i + 1] << 8u : 0));
  to[-1] = '=';
  if (left == 1) to[-2] = '=';
  return to;
}

}  // namespace quorvex
