// A second, plain writer of documents: what tests expect of a record, from an outline of names and
// places as the record formats give them.
#pragma once

#include <string>

#include "support.h"

namespace quorvex::test {

// The text of an outline. Its words, in written order:
//   NAME{ or NAME[phase]{ opens an element and } closes it; NAME=TEXT stands as it is, ~ for a
//   blank NAME:16 is the value at byte 16, a float where no @KIND says otherwise NAME#16 is an
//   integer of 32 bits, NAME,16 of 16 and NAME.16 of 8; NAME%16 a double, NAME!16 a time, NAME~16 a
//   value with its type, NAME^16 a phasor; without a name a bare line NAME:16*9 is nine elements,
//   of values side by side +N: until the element around closes, places count from N bytes behind
//   where its own count from
//   @KIND: until then : means statistics (mmr, mma, mr, mmrA, mrA, 6, freq) or single values (rms,
//   avg, avgA) in elements, samples times a number (i16/2.5, f32/2.5), or spectra in base64
//   (NAME/entries,floats,written); with a '*' behind it places are in floats; @f is floats again
std::string Expected(const Bytes& record, const std::string& outline);

// `body` in an element per phase of the list, from `at` on, `step` bytes apart.
std::string Each(const std::string& element, const std::string& phases, uint32_t at, uint32_t step,
                 const std::string& body);

// A record in which every word is another one, so that what is read from a wrong place shows: as
// floats, doubles and times they are ordinary, but for a missing value now and then.
Bytes Filled(uint32_t size);

// The C library's text of a float.
std::string FloatE(double value);

size_t CountOf(const std::string& text, const std::string& part);

}  // namespace quorvex::test
