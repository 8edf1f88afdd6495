// Unaligned little-endian loads and stores: record bytes carry no alignment.
#pragma once

#include <bit>
#include <cstring>

namespace quorvex {

static_assert(std::endian::native == std::endian::little, "records are read as they lie");

template <typename T>
inline T Load(const void* from) {
  T value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

template <typename T>
inline void Store(void* to, T value) {
  std::memcpy(to, &value, sizeof value);
}

}  // namespace quorvex
