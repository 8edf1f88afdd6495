// The settings record that every recording carries and the instrument state record around it:
// packed little-endian structures shared with the instrument. Members named `reserved...` belong to
// the firmware and are carried along unchanged.
#pragma once

#include <cstddef>
#include <cstdint>

#include "layout/date_time.h"

namespace quorvex {

#pragma pack(push, 1)

// One current clamp.
struct ClampParams {
  uint8_t type_ind;
  char name[100];
  uint8_t type;
  uint8_t reserved1[2];
  float range;
  float a_na_v;           // amperes per volt of the clamp's output
  int32_t current_range;  // also the ratio of the range in percent
  uint8_t parallel_feeders;
  uint8_t reserved2[3];
  uint32_t wires_num;
  uint8_t trafo;  // an external current transformer is in use
  uint8_t reserved3[3];
  uint32_t trafo_prim_i;
  uint32_t trafo_sec_i;
  uint32_t autorange;
  uint32_t direction;
};
static_assert(sizeof(ClampParams) == 144);
static_assert(offsetof(ClampParams, name) == 1 && offsetof(ClampParams, type) == 101);
static_assert(offsetof(ClampParams, range) == 104 && offsetof(ClampParams, a_na_v) == 108);
static_assert(offsetof(ClampParams, current_range) == 112);
static_assert(offsetof(ClampParams, parallel_feeders) == 116);
static_assert(offsetof(ClampParams, wires_num) == 120 && offsetof(ClampParams, trafo) == 124);
static_assert(offsetof(ClampParams, trafo_prim_i) == 128);
static_assert(offsetof(ClampParams, trafo_sec_i) == 132);
static_assert(offsetof(ClampParams, autorange) == 136 && offsetof(ClampParams, direction) == 140);

struct AlarmSetting {
  uint32_t id, parameter, phase_id;  // the watched quantity
  uint32_t condition_id;
  float quantity_value;  // threshold
  float trigger_duration;
};
static_assert(sizeof(AlarmSetting) == 24 && offsetof(AlarmSetting, condition_id) == 12);
static_assert(offsetof(AlarmSetting, parameter) == 4 && offsetof(AlarmSetting, phase_id) == 8);
static_assert(offsetof(AlarmSetting, quantity_value) == 16);
static_assert(offsetof(AlarmSetting, trigger_duration) == 20);

constexpr int32_t kMaxAlarmSettings = 7;

// A count and the room for as many settings as an instrument can have.
struct AlarmSettings {
  int32_t num;
  AlarmSetting settings[kMaxAlarmSettings];
};
static_assert(sizeof(AlarmSettings) == 172);

struct SignallingChannel {
  float f;  // Hz
  float limit;
};

struct InrushParams {
  float level;  // A
  uint32_t slope, duration, pretrigger;
  uint8_t reserved1[4];
  DateTimeRecord start_time, trig_time, end_time;
  uint32_t trig_channel, store_num, store_mode;
  uint8_t reserved2[4];
  float max_i;
};

struct WaveRecordParams {
  uint32_t trigger, real_trigger;
  float level;
  uint32_t slope, duration, pretrigger, store_mode;
  uint8_t reserved1[8];
  DateTimeRecord start_time, trig_time, end_time;
  uint32_t trig_channel, interval;
  uint8_t reserved2[16];
  uint32_t record_limit;
};

struct TransientsParams {
  uint32_t trigger, real_trigger;
  float level;
  uint32_t duration, pretrigger, store_mode, trig_channel, trigger_type;
  uint8_t reserved1[4];
  uint32_t select_n_gnd;
  float level_u, level_un, level_i, level_in;
  float env_u, env_un, env_i, env_in;
  float step;
  uint32_t num;
  float max_val;
  uint32_t all_transients;
  uint8_t reserved2[4];
  DateTimeRecord trig_time, start_time, end_time;
  uint32_t max_num;
};

constexpr int kCalibrationRanges = 28;

struct EmeterParams {
  uint32_t mode, constant, pulses_num, meas_num;
  float accumulated_energy;
  char measurement_place[18];
  char nominal_data[18];
  uint8_t reserved[4];
  uint64_t serial_number;
  DateTimeRecord start_pressed_time;
  uint32_t selected_q, vt_prim, vt_sec, ct_prim, ct_sec;
};

struct UifParams {
  uint8_t reserved1[4];
  uint32_t voltage_range;  // 0, 1 or 2; derived from the nominal voltage
  uint32_t voltage_ratio_prim;
  uint8_t trikot_star_factor_id;
  uint8_t connection;  // wiring code, 1 to 7
  uint8_t synchronization;
  uint8_t reserved2;
  uint32_t system_frequency;
  ClampParams clamp[4];   // phases 1 to 3, neutral
  float nominal_voltage;  // V
  uint8_t un_range;
  uint8_t reserved3[3];
  float swell, dip, interrupt;
  uint32_t swell_hysteresis, dip_hysteresis, interrupt_hysteresis;
  uint8_t capture_events, capture_alarms;
  uint8_t reserved4[2];
  AlarmSettings alarms;
  uint32_t range_i, range_in, range_is, range_us;
  SignallingChannel signal[2];
  uint8_t clock_type;
  uint8_t reserved5[5];
  uint8_t record_type;
  uint8_t reserved6;
  uint32_t interval;  // s
  uint32_t mode_selector;
  uint32_t duration;
  uint32_t inc_active_events, inc_active_alarms;
  uint8_t inc_active_signalling;
  uint8_t reserved7[7];
  DateTimeRecord start_time, time_first_packet, time_last_packet;
  uint8_t manual_start, stop_cause;
  uint8_t reserved8[30];
  float signalling_threshold;
  uint32_t signalling_duration;
  uint8_t reserved9[16];
  uint32_t profile;
  uint32_t record_start_type;
  DateTimeRecord start_pressed_time;
  uint8_t inc_active_transients, inc_active_inrush;
  uint8_t reserved10[10];
  InrushParams inrush;
  uint8_t reserved11[124];
  uint32_t inc_active_rvc;
  uint8_t start_cause, inc_active_interval;
  uint8_t reserved12[2];
  uint32_t events_wf_duration, events_wf_pretrigger;
  uint8_t reserved13[4];
  WaveRecordParams wave;
  uint8_t reserved14[8];
  TransientsParams transients;
  uint8_t reserved15[508];
  char ee_firm_data[100];
  char ee_serial_number[8];
  uint8_t reserved16[4];
  DateTimeRecord ee_cal_date;
  uint16_t ee_dealer, ee_hardware_version, ee_documentation_version;
  char ee_firmware_version[16];
  uint8_t reserved17[2];
  uint32_t model_family;
  uint8_t reserved18[36];
  float ee_konst[kCalibrationRanges];  // gains
  float ee_ofs[kCalibrationRanges];    // offsets
  float ee_konst_vbat;
  float rvc_threshold, rvc_hyst;
  uint32_t rand_mark;
  uint8_t checked_flag;  // validated, otherwise unknown
  char cname_short[7];
  uint32_t meas_method;
  uint8_t reserved19[100];
  uint8_t reduced_lists;  // also: room for 330 half-cycle readings instead of 90
  uint8_t reserved20[3];
  uint32_t memory_struct;
  uint32_t voltage_ratio_sec;
  uint8_t reserved21[4];
  double longitude, latitude;  // degrees
  char longitude_letter, latitude_letter;
  uint8_t reserved22[2];
  uint32_t no_position;
  uint8_t reserved23[4];
  EmeterParams emeter;
  uint8_t reserved24[4];
  char cname_long[18];
  uint8_t reserved25[2];
  float pv_probe_ratio;
  uint8_t reserved26[328];
};

constexpr uint32_t kSettingsSize = 3064;
constexpr uint32_t kFileHeaderSize = 8;
constexpr uint32_t kHeadSize = kFileHeaderSize + kSettingsSize;
static_assert(sizeof(UifParams) == kSettingsSize);

// The first member behind each gap, and some more: what lies between follows from the sizes.
#define QUORVEX_AT(member, at) static_assert(offsetof(UifParams, member) == (at))
QUORVEX_AT(voltage_range, 4);
QUORVEX_AT(system_frequency, 16);
QUORVEX_AT(clamp, 20);
QUORVEX_AT(nominal_voltage, 596);
QUORVEX_AT(swell, 604);
QUORVEX_AT(alarms.num, 632);
QUORVEX_AT(signal[0].f, 820);
QUORVEX_AT(clock_type, 836);
QUORVEX_AT(record_type, 842);
QUORVEX_AT(interval, 844);
QUORVEX_AT(start_time, 872);
QUORVEX_AT(signalling_threshold, 952);
QUORVEX_AT(profile, 976);
QUORVEX_AT(inrush.level, 1012);
QUORVEX_AT(inrush.start_time, 1032);
QUORVEX_AT(inrush.max_i, 1096);
QUORVEX_AT(inc_active_rvc, 1224);
QUORVEX_AT(events_wf_duration, 1232);
QUORVEX_AT(wave.trigger, 1244);
QUORVEX_AT(wave.start_time, 1280);
QUORVEX_AT(wave.record_limit, 1352);
QUORVEX_AT(transients.trigger, 1364);
QUORVEX_AT(transients.select_n_gnd, 1400);
QUORVEX_AT(transients.trig_time, 1456);
QUORVEX_AT(transients.max_num, 1504);
QUORVEX_AT(ee_firm_data, 2016);
QUORVEX_AT(ee_cal_date, 2128);
QUORVEX_AT(model_family, 2168);
QUORVEX_AT(ee_konst, 2208);
QUORVEX_AT(ee_konst_vbat, 2432);
QUORVEX_AT(rand_mark, 2444);
QUORVEX_AT(reduced_lists, 2560);
QUORVEX_AT(memory_struct, 2564);
QUORVEX_AT(longitude, 2576);
QUORVEX_AT(no_position, 2596);
QUORVEX_AT(emeter.mode, 2604);
QUORVEX_AT(emeter.serial_number, 2664);
QUORVEX_AT(cname_long, 2712);
QUORVEX_AT(pv_probe_ratio, 2732);
#undef QUORVEX_AT

// The instrument's whole state. Of it only the settings record matters here, and what the settings
// check derives or fixes behind it (`fixed...` by state offset: their meaning is the firmware's).
struct InstrumentState {
  uint8_t reserved1[119840];
  UifParams settings;
  uint32_t fixed122904;
  uint8_t fixed122908, fixed122909;
  uint8_t reserved2;
  uint8_t fixed122911;
  float voltage_scale;  // of the display, from a 1-2-5 series
  float current_scales[2];
  float fixed122924;
  uint8_t reserved3[4];
  int32_t fixed122932;
  float fixed122936, fixed122940;
  int32_t fixed122944, fixed122948, fixed122952, fixed122956, fixed122960;
  uint8_t fixed122964, fixed122965;
  uint8_t reserved4[122];
  void* owned[2];  // tracked blocks, or null
  uint8_t reserved5[7544];
};
static_assert(sizeof(void*) == 8 && sizeof(InstrumentState) == 130648);
static_assert(offsetof(InstrumentState, settings) == 119840);
static_assert(offsetof(InstrumentState, fixed122904) == 122904);
static_assert(offsetof(InstrumentState, fixed122911) == 122911);
static_assert(offsetof(InstrumentState, voltage_scale) == 122912);
static_assert(offsetof(InstrumentState, fixed122924) == 122924);
static_assert(offsetof(InstrumentState, fixed122932) == 122932);
static_assert(offsetof(InstrumentState, fixed122936) == 122936);
static_assert(offsetof(InstrumentState, fixed122944) == 122944);
static_assert(offsetof(InstrumentState, fixed122965) == 122965);
static_assert(offsetof(InstrumentState, owned) == 123088);

#pragma pack(pop)

}  // namespace quorvex
