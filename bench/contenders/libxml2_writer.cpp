// The library's XML layer on libxml2's text writer. The line ends are ours and go in raw.
#include <libxml/xmlwriter.h>

#include <cstdio>

#include "contender.h"

namespace quorvex {
namespace {

xmlTextWriterPtr Writer(XmlWriter* writer) {
  return reinterpret_cast<xmlTextWriterPtr>(writer->buffer);
}
const xmlChar* X(const char* text) { return reinterpret_cast<const xmlChar*>(text); }
void LineEnd(XmlWriter* writer) { xmlTextWriterWriteRaw(Writer(writer), X("\r\n")); }

int WriteToStream(void* stream, const char* bytes, int count) {
  return static_cast<int>(
      std::fwrite(bytes, 1, static_cast<size_t>(count), static_cast<std::FILE*>(stream)));
}

// `attributes` is ready text; the root's and one phase are all there is.
void Start(XmlWriter* writer, const char* name, const char* attributes) {
  xmlTextWriterStartElement(Writer(writer), X(name));
  char label[64];
  if (std::sscanf(attributes, "phase=\"%63[^\"]\"", label) == 1) {
    xmlTextWriterWriteAttribute(Writer(writer), X("phase"), X(label));
  } else if (attributes[0] != '\0') {
    xmlTextWriterWriteAttribute(Writer(writer), X("xmlns:xsi"),
                                X("http://www.w3.org/2001/XMLSchema-instance"));
    xmlTextWriterWriteAttribute(Writer(writer), X("xmlns:xsd"),
                                X("http://www.w3.org/2001/XMLSchema"));
  }
}

}  // namespace

void PutText(XmlWriter* writer, const char* text) {
  xmlTextWriterWriteRaw(Writer(writer), X(text));
}

void OpenElement(XmlWriter* writer, const char* name, const char* attributes) {
  Start(writer, name, attributes);
  LineEnd(writer);
  ++writer->depth;
}

void CloseElement(XmlWriter* writer) {
  xmlTextWriterFullEndElement(Writer(writer));
  LineEnd(writer);
  --writer->depth;
}

void ValueElement(XmlWriter* writer, const char* name, const char* value) {
  xmlTextWriterStartElement(Writer(writer), X(name));
  xmlTextWriterWriteRaw(Writer(writer), X(value));
  xmlTextWriterFullEndElement(Writer(writer));
  LineEnd(writer);
}

void TextElement(XmlWriter* writer, const char* name, const char* attributes, const char* text) {
  Start(writer, name, attributes);
  LineEnd(writer);
  xmlTextWriterWriteRaw(Writer(writer), X(text));
  xmlTextWriterFullEndElement(Writer(writer));
  LineEnd(writer);
}

XmlWriter* CreateWriter(FileHandle* file) {
  auto* writer = static_cast<XmlWriter*>(Allocate(sizeof(XmlWriter)));
  writer->file = file;
  xmlOutputBufferPtr output =
      xmlOutputBufferCreateIO(WriteToStream, nullptr, file->stream, nullptr);
  writer->buffer = reinterpret_cast<char*>(xmlNewTextWriter(output));
  return writer;
}

bool CloseWriter(XmlWriter* writer) {
  if (writer == nullptr) return true;
  xmlFreeTextWriter(Writer(writer));
  const bool closed = CloseFile(writer->file);
  Release(writer);
  return closed;
}

}  // namespace quorvex
