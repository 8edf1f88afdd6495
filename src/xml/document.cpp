#include "xml/document.h"

#include <cstring>

#include "support/memory.h"

namespace quorvex {

XmlWriter* CreateDocument(const char* input, const char* output) {
  Tracked<char> beside(kMaxPath + sizeof ".xml");
  if (output == nullptr) {
    if (std::strlen(input) > kMaxPath) return nullptr;
    StripExtension(input, beside.get());
    std::strcat(beside.get(), ".xml");
    output = beside.get();
  }
  if (SameFile(input, output)) return nullptr;
  FileHandle* file = OpenFile(output, kOpenCreate);
  return file != nullptr ? CreateWriter(file) : nullptr;
}

void WriteDocumentStart(XmlWriter* document) {
  PutText(document, "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n");
  document->depth = 0;
  OpenElement(document, kRootElement,
              "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
              "xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\"");
}

}  // namespace quorvex
