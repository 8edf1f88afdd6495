// The cases of the layout tables: which wiring a recording has, and whether it keeps reduced lists.
#pragma once

#include <initializer_list>

#include "layout/field.h"
#include "settings/settings_record.h"

namespace quorvex {

// Connection codes 1 to 7; 0 stands for every other code.
constexpr uint8_t WiringOf(uint8_t connection) { return connection <= 7 ? connection : 0; }

// Rows for these connection codes, with full and with reduced lists.
constexpr Cases Connections(std::initializer_list<int> codes) {
  unsigned bits = 0;
  for (const int code : codes) bits |= 0x0101u << code;
  return static_cast<Cases>(bits);
}
constexpr Cases NotConnections(std::initializer_list<int> codes) {
  return static_cast<Cases>(~Connections(codes));
}

constexpr Cases kFullLists = 0x00FF;

constexpr Cases CaseOf(uint8_t connection, bool reduced_lists) {
  return static_cast<Cases>(1u << (WiringOf(connection) + (reduced_lists ? 8 : 0)));
}
inline Cases CaseOf(const UifParams& settings) {
  return CaseOf(settings.connection, settings.reduced_lists != 0);
}

// How many rows of a table a recording of this case has.
template <size_t N>
constexpr uint32_t RowsIn(const Field (&rows)[N], Cases which) {
  uint32_t count = 0;
  for (const Field& row : rows) count += (row.cases & which) != 0 ? 1 : 0;
  return count;
}

}  // namespace quorvex
