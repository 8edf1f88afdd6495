// What the two contenders share: they walk the tables directly and format with printf.
#pragma once

#include "layout/rows.h"
#include "support/memory.h"
#include "xml/element_writer.h"

namespace quorvex {

// An element whose text stands on a line of its own.
void TextElement(XmlWriter* writer, const char* name, const char* attributes, const char* text);

// <name>value</name> on one line.
void ValueElement(XmlWriter* writer, const char* name, const char* value);

}  // namespace quorvex
