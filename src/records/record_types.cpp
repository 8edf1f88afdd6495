// The table of record types.
#include "records/record_types.h"

namespace quorvex {

const RecordType* FindRecordType(uint32_t type) {
  for (const RecordType* row : kRecordTypes) {
    if (row->type == type) return row;
  }
  return nullptr;
}

}  // namespace quorvex
