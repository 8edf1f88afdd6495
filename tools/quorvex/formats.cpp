// quorvex schema and formats.
#include "commands.h"
#include "formats/generate.h"
#include "host.h"
#include "messages.h"
#include "records/record_types.h"

namespace quorvex::tool {

int PrintSchema(uint32_t type) {
  const RecordType* row = FindRecordType(type);
  const std::string schema = row != nullptr ? SchemaOf(*row) : SchemaOfAnyType();
  Print(schema);
  return kDone;
}

int PrintFormats(bool python) {
  Print(python ? PythonFormats() : FormatReference());
  return kDone;
}

}  // namespace quorvex::tool
