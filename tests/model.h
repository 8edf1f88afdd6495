// A second, plain writer of results: what tests expect of a record, from an outline of names and
// offsets as the record formats give them.
#pragma once

#include <string>

#include "support.h"

namespace quorvex::test {

// The text of an outline. Its words, in written order:
//   NAME{ or NAME[phase]{ opens and } closes an element; NAME! is the time of FillRecord()
//   +N counts offsets from N on; @KIND says what the following values are: f floats, 4 integers,
//   statistics (mmr, mma, mr, mmrA, mrA, 6, freq) or single values (rms, avg, avgA) in elements,
//   NAME/entries,floats,written spectra; a '*' behind it counts offsets in floats
//   NAME:N is a value at an offset; :N an integer on a line of its own; NAME=TEXT stands as it is
std::string Expected(const Bytes& record, const std::string& outline);

// `body` in an element per phase of the list, from `at` on, `step` bytes apart.
std::string Each(const std::string& element, const std::string& phases, uint32_t at, uint32_t step,
                 const std::string& body);

// A record in which every float is another one, with a missing value here and there, and the given
// places hold times.
Bytes FillRecord(uint32_t size, std::initializer_list<uint32_t> times);

size_t CountOf(const std::string& text, const std::string& part);

}  // namespace quorvex::test
