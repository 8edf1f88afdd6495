// quorvex schema and formats.
#include <cstdio>

#include "commands.h"
#include "formats/generate.h"
#include "host.h"
#include "records/record_types.h"

namespace quorvex::tool {

int PrintSchema(uint32_t type) {
  const RecordType* row = FindRecordType(type);
  const std::string schema = row != nullptr ? SchemaOf(*row) : SchemaOfAnyType();
  std::fputs(schema.c_str(), stdout);
  return kDone;
}

int PrintFormats(bool python) {
  std::fputs((python ? PythonFormats() : FormatReference()).c_str(), stdout);
  return kDone;
}

}  // namespace quorvex::tool
