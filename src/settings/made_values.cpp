// Values of the settings that are computed from several fields.
#include <cstring>

#include "settings/settings_table.h"
#include "support/bounded_text.h"
#include "support/numbers.h"

namespace quorvex {
namespace {

constexpr uint32_t kQualityLongInterval = 900;

const UifParams& SettingsAt(const uint8_t* place) {
  return *reinterpret_cast<const UifParams*>(place);
}

MadeValue Integer(int64_t integer) {
  MadeValue value;
  value.integer = integer;
  return value;
}

// At most `limit` bytes of a text that may have no end.
MadeValue TextOf(const char* text, uint32_t limit) {
  MadeValue value;
  static_assert(sizeof(UifParams::cname_long) < kLongestMadeText);
  std::strncat(value.text, text, limit);
  return value;
}

// The stored spectrum reaches less high where the system frequency is high.
int64_t ComponentsByFrequency(uint32_t system_frequency) {
  switch (system_frequency) {
    case 400:
      return 0x3FFF;
    case 55:
      return 0x1FFFFF;
    default:
      return 0x7FFFFFFFFFFFF;
  }
}
}  // namespace

MadeValue CurrentRange(const uint8_t* place, const Inputs&) {
  MadeValue value;
  value.number = static_cast<float>(reinterpret_cast<const ClampParams*>(place)->current_range);
  return value;
}

MadeValue ProbeRatio(const uint8_t* place, const Inputs&) {
  return Integer(TruncateToInt(static_cast<double>(SettingsAt(place).pv_probe_ratio)));
}

MadeValue HarmonicContent(const uint8_t* place, const Inputs& inputs) {
  if (inputs.number[kHarmonicsFlag] != 0) return Integer(64);
  return Integer(SettingsAt(place).profile == 0 ? 156 : 72);
}

MadeValue HarmonicComponents(const uint8_t* place, const Inputs& inputs) {
  const UifParams& settings = SettingsAt(place);
  if (inputs.number[kHarmonicsFlag] != 0) {
    return Integer(settings.interval == kQualityLongInterval ? 0xFFFF : 0x1FFFFFFFFFF);
  }
  switch (settings.profile) {
    case 0:
    case 2:
    case 5:
      return Integer(ComponentsByFrequency(settings.system_frequency));
    default:
      return Integer(0x3FFFFFE);
  }
}

MadeValue ModelCode(const uint8_t* place, const Inputs&) {
  const UifParams& settings = SettingsAt(place);
  const char* code = "GS 7400";
  if (settings.model_family == 0) code = "GS 7100";
  if (settings.model_family == 1) code = settings.ee_dealer == 8 ? "GW 7200" : "GS 7300";
  return TextOf(code, 10);
}

MadeValue ModelName(const uint8_t* place, const Inputs&) {
  const UifParams& settings = SettingsAt(place);
  const char* name = "Grid Sentry Pro";
  if (settings.model_family == 0) name = "Gridlog 4";
  if (settings.model_family == 1) name = settings.ee_dealer == 16 ? "Voltra EX" : "Grid Sentry";
  return TextOf(name, 30);
}

MadeValue RecordingName(const uint8_t* place, const Inputs&) {
  const UifParams& settings = SettingsAt(place);
  constexpr uint16_t kLongNameDealer = 18;
  if (settings.ee_dealer == kLongNameDealer) {
    return TextOf(settings.cname_long, sizeof settings.cname_long);
  }
  return TextOf(settings.cname_short, sizeof settings.cname_short);
}

MadeValue Position(const uint8_t* place, const Inputs&) {
  const UifParams& settings = SettingsAt(place);
  if (settings.no_position != 0) return TextOf("Not available", kLongestMadeText - 1);
  MadeValue value;
  constexpr uint32_t kRoom = 101;
  static_assert(kRoom <= kLongestMadeText);
  BoundedText position(value.text, kRoom);
  // A letter of zero ends the text where it stands.
  position.Put(settings.latitude_letter);
  position.Put(" ");
  position.PutFixed(settings.latitude, 4);
  position.Put(", ");
  position.Put(settings.longitude_letter);
  position.Put(" ");
  position.PutFixed(settings.longitude, 4);
  return value;
}

}  // namespace quorvex
