#include "xml/element_writer.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "support/memory.h"

namespace quorvex {
namespace {

// In memory mode, at first: most of what is rendered there are the tags of a small table.
constexpr uint32_t kSmallBuffer = 4096;

void Grow(XmlWriter* writer, uint32_t needed) {
  while (writer->capacity < needed) writer->capacity += std::min(writer->capacity, kWriterBuffer);
  auto* larger = static_cast<char*>(Allocate(writer->capacity));
  std::memcpy(larger, writer->buffer, writer->position);
  Release(writer->buffer);
  writer->buffer = larger;
}

void WriteOut(XmlWriter* writer) {
  if (writer->abandoned) return;
  const uint32_t written = WriteAll(writer->file, writer->buffer, writer->position, writer->go_on);
  writer->abandoned = written != writer->position;
}

}  // namespace

XmlWriter* CreateWriter(FileHandle* file) {
  auto* writer = static_cast<XmlWriter*>(Allocate(sizeof(XmlWriter)));
  writer->file = file;
  writer->mode = file != nullptr ? Output::kFile : Output::kMemory;
  writer->capacity = file != nullptr ? kWriterBuffer : kSmallBuffer;
  writer->buffer = static_cast<char*>(Allocate(writer->capacity));
  return writer;
}

bool CloseWriter(XmlWriter* writer) {
  if (writer == nullptr) return true;
  if (writer->mode == Output::kFile) WriteOut(writer);
  const bool arrived = CloseFile(writer->file) && !writer->abandoned;
  Release(writer->buffer);
  Release(writer);
  return arrived;
}

char* MakeRoom(XmlWriter* writer, uint32_t size) {
  assert(size <= kWriterBuffer);
  if (writer->mode == Output::kFile) {
    WriteOut(writer);
    writer->position = 0;
    if (++writer->pieces == kPiecesBeforeLarge) {
      Release(writer->buffer);
      writer->capacity = kLargeBuffer;
      writer->buffer = static_cast<char*>(Allocate(kLargeBuffer));
    }
  } else {
    Grow(writer, writer->position + size);
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

}  // namespace quorvex
