// An output document: its file, its declaration and its root element.
#pragma once

#include "xml/element_writer.h"

namespace quorvex {

// Creates (or truncates) the document: at `output`, or, where that is null, at the input path with
// its extension replaced by ".xml". Null where that cannot be created, and where it is the input
// itself: a recording is never destroyed.
XmlWriter* CreateDocument(const char* input, const char* output);

constexpr char kRootElement[] = "Project";

// The XML declaration and the opened root.
void WriteDocumentStart(XmlWriter* document);

// Writes what is buffered, closes the file and releases the document. Whether all has arrived.
inline bool CloseDocument(XmlWriter* document) { return CloseWriter(document); }

}  // namespace quorvex
