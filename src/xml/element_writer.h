// A streaming XML writer: one element a line, no indentation, lines ended by CR LF.
#pragma once

#include <cstdint>

#include "support/bounded_text.h"
#include "support/file.h"

namespace quorvex {

constexpr uint32_t kWriterBuffer = 65536;
// Page caches take larger pieces into larger pages, in a sixth less time. To get and clear such a
// buffer takes more than that of a small document, so it comes after so many pieces.
constexpr uint32_t kLargeBuffer = 4 * kWriterBuffer;
constexpr uint32_t kPiecesBeforeLarge = 32;
constexpr int32_t kMaxOpenElements = 20;

enum class Output : int32_t {
  kMemory = 0,  // the buffer grows with the text
  kFile = 1,    // the buffer is written out whenever it is full
};

struct XmlWriter {
  FileHandle* file;
  int32_t depth;                       // open elements
  const char* open[kMaxOpenElements];  // their names, not copied
  Output mode;
  char* buffer;
  uint32_t capacity;
  uint32_t position;  // bytes in the buffer
  uint32_t pieces;    // written
  GoOn go_on;         // see WriteAll; null for none
  bool abandoned;     // it said no: nothing more is written
};

// A writer with an empty buffer. It owns `file`, null in memory mode.
XmlWriter* CreateWriter(FileHandle* file);

// Writes what the buffer holds, closes the file, releases everything. Null is left alone. Open
// elements stay open: whoever opened them closes them first. Whether all text has arrived.
bool CloseWriter(XmlWriter* writer);

// What Reserve does where the buffer is full.
char* MakeRoom(XmlWriter* writer, uint32_t size);

// Room for `size` more bytes in one piece, kWriterBuffer at the most. Write there, then Advance.
inline char* Reserve(XmlWriter* writer, uint32_t size) {
  if (size > writer->capacity - writer->position) [[unlikely]]
    return MakeRoom(writer, size);
  return writer->buffer + writer->position;
}
inline void Advance(XmlWriter* writer, const char* end) {
  writer->position = static_cast<uint32_t>(end - writer->buffer);
}

void PutText(XmlWriter* writer, const char* text);

// `attributes` is the ready text between name and '>', empty for none. `name` must outlive the
// element.
void OpenElement(XmlWriter* writer, const char* name, const char* attributes = "");
void CloseElement(XmlWriter* writer);

// The attribute that tells elements of one name apart: phase="label".
inline void PhaseAttribute(const char* label, char* to, uint32_t room) {
  BoundedText text(to, room);
  text.Put("phase=\"");
  text.Put(label);
  text.Put('"');
}

}  // namespace quorvex
