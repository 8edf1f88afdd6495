// The companion setting file: a copy of the settings as they were last set for a recording, in a
// file beside it that is found by name.
#pragma once

#include "settings/settings_record.h"

namespace quorvex {

// Reads the setting file of `record_path` over `settings`. 0 when there was one (a short one leaves
// the rest of `settings` as it was), 1 when none could be opened.
int32_t LoadSettingFile(const char* record_path, UifParams* settings);

// The name of a record file, prefix + number + middle text + extension, with `kind` ("PAR") in the
// place of the middle text. Files of types 10, 15 and 18 have a dated form, in which a date and a
// tail follow the middle text, though conversions never ask for it: the instrument's own software
// does. Any other `record_type` gives the short form. `result` has room for kMaxPath bytes and the
// terminator; false where the name is longer.
bool BuildSettingFileName(const char* record_path, char* result, const char* kind,
                          int32_t record_type);

}  // namespace quorvex
