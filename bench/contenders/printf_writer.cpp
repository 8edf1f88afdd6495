// The library's XML layer as it is usually written: every line through fprintf into a stdio stream.
// Linked in the place of element_writer.cpp and plan.cpp, so the converters and tables are the
// same.
#include <cstdio>
#include <cstring>

#include "contender.h"

namespace quorvex {

void PutText(XmlWriter* writer, const char* text) { std::fputs(text, writer->file->stream); }

void OpenElement(XmlWriter* writer, const char* name, const char* attributes) {
  const char* space = attributes[0] != '\0' ? " " : "";
  std::fprintf(writer->file->stream, "<%s%s%s>\r\n", name, space, attributes);
  writer->open[writer->depth++] = name;
}

void CloseElement(XmlWriter* writer) {
  std::fprintf(writer->file->stream, "</%s>\r\n", writer->open[--writer->depth]);
}

void ValueElement(XmlWriter* writer, const char* name, const char* value) {
  std::fprintf(writer->file->stream, "<%s>%s</%s>\r\n", name, value, name);
}

void TextElement(XmlWriter* writer, const char* name, const char* attributes, const char* text) {
  const char* space = attributes[0] != '\0' ? " " : "";
  std::fprintf(writer->file->stream, "<%s%s%s>\r\n%s</%s>\r\n", name, space, attributes, text,
               name);
}

XmlWriter* CreateWriter(FileHandle* file) {
  auto* writer = static_cast<XmlWriter*>(Allocate(sizeof(XmlWriter)));
  writer->file = file;
  return writer;
}

bool CloseWriter(XmlWriter* writer) {
  if (writer == nullptr) return true;
  const bool closed = CloseFile(writer->file);
  Release(writer);
  return closed;
}

}  // namespace quorvex
