// The element of a waveform: named by its quantity, told apart by the attribute `phase`.
#pragma once

#include "xml/element_writer.h"

namespace quorvex {

inline void OpenWaveform(XmlWriter* to, const char* name, const char* label) {
  char attributes[32];
  PhaseAttribute(label, attributes, sizeof attributes);
  OpenElement(to, name, attributes);
}

}  // namespace quorvex
