// How often a row repeats in the record at hand.
#pragma once

#include <algorithm>

#include "layout/field.h"
#include "support/loads.h"

namespace quorvex {

// `place` is where the row's group lies. Never more than there is room for.
inline uint32_t CountOf(const Field& f, const uint8_t* place, const Inputs& inputs) {
  if (f.count_from == CountFrom::kTable) return f.count;
  const int32_t count = f.count_from == CountFrom::kRecord ? Load<int32_t>(place + f.count_ref)
                                                           : inputs.number[f.count_ref];
#ifdef QUORVEX_BREAK_COUNTS
  return static_cast<uint32_t>(count);  // the fault that the fuzzers must find
#endif
  return count < 0 ? 0 : std::min(static_cast<uint32_t>(count), f.count);
}

}  // namespace quorvex
