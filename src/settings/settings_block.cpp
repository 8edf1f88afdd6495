#include "settings/settings_block.h"

#include "settings/settings_table.h"
#include "support/bounded_text.h"
#include "support/loads.h"
#include "xml/number_text.h"
#include "xml/plan.h"
#include "xml/text_forms.h"

namespace quorvex {
namespace {

constexpr uint32_t kQualityLongInterval = 900;

const UifParams& SettingsAt(const uint8_t* place) {
  return *reinterpret_cast<const UifParams*>(place);
}

char* PutEscaped(const char* text, uint32_t limit, char* to) { return EscapeText(text, to, limit); }

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

char* CurrentRangeText(const uint8_t* place, const RenderInputs&, char* to) {
  const auto range = Load<int32_t>(place + offsetof(ClampParams, current_range));
  return FloatText(static_cast<float>(range), to);
}

char* ProbeRatioText(const uint8_t* place, const RenderInputs&, char* to) {
  return IntegerText(TruncateToInt(SettingsAt(place).pv_probe_ratio), to);
}

char* HarmonicContentText(const uint8_t* place, const RenderInputs& inputs, char* to) {
  if (inputs.number[kHarmonicsFlag] != 0) return IntegerText(64, to);
  return IntegerText(SettingsAt(place).profile == 0 ? 156 : 72, to);
}

char* HarmonicComponentsText(const uint8_t* place, const RenderInputs& inputs, char* to) {
  const UifParams& settings = SettingsAt(place);
  if (inputs.number[kHarmonicsFlag] != 0) {
    return IntegerText(settings.interval == kQualityLongInterval ? 0xFFFF : 0x1FFFFFFFFFF, to);
  }
  switch (settings.profile) {
    case 0:
    case 2:
    case 5:
      return IntegerText(ComponentsByFrequency(settings.system_frequency), to);
    default:
      return IntegerText(0x3FFFFFE, to);
  }
}

char* ModelCodeText(const uint8_t* place, const RenderInputs&, char* to) {
  const UifParams& settings = SettingsAt(place);
  const char* code = "GS 7400";
  if (settings.model_family == 0) code = "GS 7100";
  if (settings.model_family == 1) code = settings.ee_dealer == 8 ? "GW 7200" : "GS 7300";
  return PutEscaped(code, 10, to);
}

char* ModelNameText(const uint8_t* place, const RenderInputs&, char* to) {
  const UifParams& settings = SettingsAt(place);
  const char* name = "Grid Sentry Pro";
  if (settings.model_family == 0) name = "Gridlog 4";
  if (settings.model_family == 1) name = settings.ee_dealer == 16 ? "Voltra EX" : "Grid Sentry";
  return PutEscaped(name, 30, to);
}

char* RecordingNameText(const uint8_t* place, const RenderInputs&, char* to) {
  const UifParams& settings = SettingsAt(place);
  constexpr uint16_t kLongNameDealer = 18;
  if (settings.ee_dealer == kLongNameDealer) {
    return PutEscaped(settings.cname_long, sizeof settings.cname_long, to);
  }
  return PutEscaped(settings.cname_short, sizeof settings.cname_short, to);
}

char* PositionText(const uint8_t* place, const RenderInputs&, char* to) {
  const UifParams& settings = SettingsAt(place);
  constexpr uint32_t kLimit = 100;
  if (settings.no_position != 0) return PutEscaped("Not available", kLimit, to);
  char text[kLimit + 1];
  BoundedText position(text, sizeof text);
  // A letter of zero ends the text where it stands.
  position.Put(settings.latitude_letter);
  position.Put(" ");
  position.PutFixed(settings.latitude, 4);
  position.Put(", ");
  position.Put(settings.longitude_letter);
  position.Put(" ");
  position.PutFixed(settings.longitude, 4);
  return PutEscaped(text, kLimit, to);
}

void WriteSettingsBlock(XmlWriter* to, const UifParams& settings, bool harmonics_flag) {
  RenderInputs inputs;
  inputs.number[kHarmonicsFlag] = harmonics_flag ? 1 : 0;
  RenderOnce(to, kSettingsBlock, kAllCases, &settings, inputs);
}

void WriteClampParams(XmlWriter* to, const char* name, const ClampParams& clamp) {
  RenderOnce(to, Group(name, 0, kClampRows), kAllCases, &clamp);
}

void WriteAlarmSettings(XmlWriter* to, const char* name, const AlarmSettings& alarms) {
  RenderOnce(to, Group(name, 0, kAlarmSettingsRows), kAllCases, &alarms);
}

}  // namespace quorvex
