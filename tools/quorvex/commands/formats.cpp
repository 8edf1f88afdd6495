// quorvex schema and formats.
#include "commands/commands.h"
#include "formats/generate.h"
#include "records/record_types.h"
#include "shared/messages.h"
#include "shared/system.h"

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
