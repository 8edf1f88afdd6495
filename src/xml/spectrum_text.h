// The form in which spectra stand in a document.
#pragma once

#include <cstdint>

#include "layout/field.h"

namespace quorvex {

// The written floats of every entry side by side in base64, the no-value marker as infinity.
// Returns the end of the text; behind it there is room for kCopySize characters more.
char* SpectrumText(const Field& f, const uint8_t* at, char* to);

}  // namespace quorvex
