// Writers of the settings block and of its parts that stand elsewhere too.
#pragma once

#include "settings/settings_record.h"
#include "xml/element_writer.h"

namespace quorvex {

// The element `UIF_PARAMS`. `harmonics_flag` is set for voltage quality recordings only.
void WriteSettingsBlock(XmlWriter* to, const UifParams& settings, bool harmonics_flag);

// One clamp under an element name of the caller's.
void WriteClampParams(XmlWriter* to, const char* name, const ClampParams& clamp);

// `NUM` and one `SETTINGS` per alarm setting, under an element name of the caller's. A count above
// the seven that there is room for counts as seven; a negative one is shown, without settings.
void WriteAlarmSettings(XmlWriter* to, const char* name, const AlarmSettings& alarms);

}  // namespace quorvex
