#include <cstdio>

#include "sample.h"

namespace quorvex::samples {
namespace {

void SetClamp(ClampParams* clamp, const char* name) {
  clamp->type_ind = 4;
  std::snprintf(clamp->name, sizeof clamp->name, "%s", name);
  clamp->type = 1;
  clamp->range = 1000.0f;
  clamp->a_na_v = 1000.0f;
  clamp->current_range = 100;
  clamp->wires_num = 1;
  clamp->trafo_prim_i = 1;
  clamp->trafo_sec_i = 1;
  clamp->autorange = 1;
}

}  // namespace

UifParams NetworkSettings() {
  UifParams s{};
  s.voltage_range = 1;
  s.voltage_ratio_prim = 1;
  s.voltage_ratio_sec = 1;
  s.connection = 3;
  s.synchronization = 1;
  s.system_frequency = 50;
  for (ClampParams& clamp : s.clamp) SetClamp(&clamp, "Flexible clamp 1000 A");
  s.nominal_voltage = static_cast<float>(kNominalVoltage);
  s.swell = 110.0f;
  s.dip = 90.0f;
  s.interrupt = 5.0f;
  s.swell_hysteresis = s.dip_hysteresis = s.interrupt_hysteresis = 2;
  s.capture_events = s.capture_alarms = 1;
  s.alarms.num = 1;
  s.alarms.settings[0] = {1, 0, 1, 2, 253.0f, 0.2f};
  s.range_i = s.range_in = s.range_is = 100;
  s.signal[0] = {316.7f, 0.09f};
  s.signal[1] = {1060.0f, 0.05f};
  s.record_type = 1;
  s.interval = 600;
  s.inc_active_events = s.inc_active_alarms = 2;
  s.inc_active_signalling = s.inc_active_inrush = 1;
  s.inc_active_rvc = 1;
  s.inc_active_interval = 1;
  s.start_time = s.start_pressed_time = s.time_first_packet = ClockAt(4, 0, 0, 0).now;
  s.time_last_packet = ClockAt(5, 0, 0, 0).now;
  s.manual_start = 1;
  s.signalling_threshold = 5.0f;
  s.signalling_duration = 10;
  s.inrush.level = 120.0f;
  s.inrush.slope = 1;
  s.inrush.duration = 10;
  s.inrush.pretrigger = 2;
  s.inrush.store_mode = 1;
  s.inrush.start_time = s.inrush.trig_time = ClockAt(4, 9, 30, 0).now;
  s.inrush.end_time = ClockAt(4, 9, 30, 10).now;
  s.events_wf_duration = 1;
  s.wave.trigger = 5;
  s.wave.level = 90.0f;
  s.wave.slope = 2;
  s.wave.duration = 1;
  s.wave.store_mode = 1;
  s.wave.interval = 600;
  s.wave.start_time = s.wave.trig_time = ClockAt(4, 10, 0, 0).now;
  s.wave.end_time = ClockAt(4, 10, 0, 1).now;
  s.transients.trigger = 7;
  s.transients.trigger_type = 1;
  s.transients.level = 10.0f;
  s.transients.duration = 10;
  s.transients.pretrigger = 2;
  s.transients.level_u = 400.0f;
  s.transients.level_un = 50.0f;
  s.transients.level_i = 500.0f;
  s.transients.level_in = 100.0f;
  s.transients.env_u = 60.0f;
  s.transients.env_un = 20.0f;
  s.transients.env_i = 100.0f;
  s.transients.env_in = 50.0f;
  s.transients.store_mode = 2;
  s.transients.start_time = s.transients.trig_time = ClockAt(4, 11, 0, 0).now;
  s.transients.end_time = ClockAt(4, 11, 0, 1).now;
  s.transients.max_num = 200;
  std::snprintf(s.ee_firm_data, sizeof s.ee_firm_data, "Sample instrument");
  std::snprintf(s.ee_serial_number, sizeof s.ee_serial_number, "2403117");
  s.ee_cal_date = ClockAt(1, 8, 0, 0).now;
  s.ee_hardware_version = 2;
  s.ee_documentation_version = 1;
  std::snprintf(s.ee_firmware_version, sizeof s.ee_firmware_version, "3.0.1744");
  s.model_family = 2;
  for (float& gain : s.ee_konst) gain = 1.0f;
  s.ee_konst_vbat = 1.0f;
  s.rvc_threshold = 0.03f;
  s.rvc_hyst = 0.25f;
  s.rand_mark = 48151;
  std::snprintf(s.cname_short, sizeof s.cname_short, "FEEDER");
  s.memory_struct = 1;
  s.longitude = 15.1234;
  s.latitude = 45.9876;
  s.longitude_letter = 'E';
  s.latitude_letter = 'N';
  s.emeter.constant = 10000;
  s.emeter.pulses_num = 1000;
  s.emeter.meas_num = 5;
  s.emeter.ct_prim = s.emeter.ct_sec = s.emeter.vt_prim = s.emeter.vt_sec = 1;
  std::snprintf(s.emeter.measurement_place, sizeof s.emeter.measurement_place, "Substation 12");
  std::snprintf(s.emeter.nominal_data, sizeof s.emeter.nominal_data, "3x230 V 5-85 A");
  s.emeter.serial_number = 35712345;
  s.emeter.start_pressed_time = ClockAt(4, 12, 0, 0).now;
  s.pv_probe_ratio = 1.0f;
  return s;
}

}  // namespace quorvex::samples
