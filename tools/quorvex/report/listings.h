// Records that a report shows as they are, a row each: changes, transients, inrush, alarms, meter
// tests. A listing is a table of what is shown of a type's records.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tables/table_rows.h"

namespace quorvex::tool {

struct ListedColumn {
  const char* key;     // in JSON
  const char* title;   // on the page, with the unit
  const char* column;  // of the table `records`
};

struct ListedType {
  uint32_t type;
  const char* key;    // in JSON
  const char* title;  // on the page
  std::vector<ListedColumn> columns;
};
const std::vector<ListedType>& ListedTypes();

// The first rows, as many as a page shows, and how many there are.
constexpr size_t kMostListed = 500;
struct Listing {
  const ListedType* type;
  size_t recording;                     // of the card
  std::vector<std::vector<Cell>> rows;  // a cell a column
  uint64_t count = 0;
};

// Of a recording; nothing where its type is none that is listed.
const ListedType* ListedTypeOf(uint32_t type);
Listing ListingOf(const std::string& path, size_t recording, const ListedType& type,
                  const ReadOptions& options);
void ForEachListed(const std::string& path, const ListedType& type, const ReadOptions& options,
                   const std::function<void(const std::vector<Cell>&)>& take);

}  // namespace quorvex::tool
