// Type 4: the instrument's settings and nothing else.
#include "records/record_types.h"

namespace quorvex {

const RecordType kSettingsOnly = {
    .type = 4,
    .word = "settings_only",
    .name = "settings",
    .about = "The settings and nothing else: there is not even an empty list of records.",
    .state = true,
};

}  // namespace quorvex
