// How the settings record reads in a document: the element `UIF_PARAMS`, which heads nearly every
// document and follows each entry of a transient index.
#pragma once

#include "layout/rows.h"
#include "layout/tiles.h"
#include "settings/codes.h"
#include "settings/settings_record.h"

namespace quorvex {

// Values that are computed from several fields. `place` is the settings record, or the clamp.
MadeValue CurrentRange(const uint8_t* place, const Inputs& inputs);
MadeValue ProbeRatio(const uint8_t* place, const Inputs& inputs);
MadeValue HarmonicContent(const uint8_t* place, const Inputs& inputs);
MadeValue HarmonicComponents(const uint8_t* place, const Inputs& inputs);
MadeValue ModelCode(const uint8_t* place, const Inputs& inputs);
MadeValue ModelName(const uint8_t* place, const Inputs& inputs);
MadeValue RecordingName(const uint8_t* place, const Inputs& inputs);
MadeValue Position(const uint8_t* place, const Inputs& inputs);

// Index into Inputs::number: not 0 in documents of voltage quality recordings, whose spectra
// have other orders.
constexpr uint32_t kHarmonicsFlag = 0;

#define CLAMP(member) offsetof(ClampParams, member)
inline constexpr auto kClampRows = Shared(
    {"clamp"}, {
                   U8("TYPE_IND", CLAMP(type_ind), "clamp type index"),
                   RawText("NAME", CLAMP(name), 100, "clamp name, as it stands"),
                   U8("TYPE", CLAMP(type), "clamp type"),
                   Gap(CLAMP(reserved1), 2),
                   F32("RANGE", CLAMP(range), "clamp range", "A"),
                   F32("A_NA_V", CLAMP(a_na_v), "amperes per volt of the clamp output", "A/V"),
                   Made("CURRENT_RANGE", CLAMP(current_range), 4, Kind::kF32, CurrentRange,
                        "current range, as a float")
                       .Unit("%"),
                   U8("PARALLEL_FEEDERS", CLAMP(parallel_feeders), "number of parallel feeders"),
                   Gap(CLAMP(reserved2), 3),
                   I32("WIRES_NUM", CLAMP(wires_num), "number of wires"),
                   U8("TRAFO", CLAMP(trafo), "external current transformer in use"),
                   Gap(CLAMP(reserved3), 3),
                   I32("TRAFO_PRIM_I", CLAMP(trafo_prim_i), "transformer primary current", "A"),
                   I32("TRAFO_SEC_I", CLAMP(trafo_sec_i), "transformer secondary current", "A"),
                   I32("AUTORANGE", CLAMP(autorange), "automatic ranging"),
                   I32("DIRECTION", CLAMP(direction), "current direction"),
               });
#undef CLAMP

inline constexpr auto kQuantityRows =
    Shared({"quantity"}, {
                             I32("ID", 0, "quantity identifier"),
                             I32("PARAMETER", 4, "parameter of the quantity"),
                             I32("PHASE_ID", 8, "phase"),
                         });

inline constexpr auto kAlarmSettingRows = Shared(
    {"alarm setting"},
    {
        Group("QUANTITY", 0, kQuantityRows, "the watched quantity"),
        I32("CONDITION_ID", offsetof(AlarmSetting, condition_id), "condition (above, below, ...)"),
        F32("QUANTITY_VALUE", offsetof(AlarmSetting, quantity_value), "threshold"),
        F32("TRIGGER_DURATION", offsetof(AlarmSetting, trigger_duration), "minimum duration", "s"),
    });

inline constexpr auto kAlarmSettingsRows = Shared(
    {"alarm settings",
     "A count above the room of seven is shown as 7; a negative one as it is, without settings."},
    {
        I32("NUM", 0, "alarm settings in use").AtMost(kMaxAlarmSettings),
        Each("SETTINGS", offsetof(AlarmSettings, settings), kMaxAlarmSettings, sizeof(AlarmSetting),
             kAlarmSettingRows, "an alarm setting")
            .CountAt(0),
    });

#define AT(member) offsetof(UifParams, member)
inline constexpr Field kSignal1Rows[] = {
    F32("f", AT(signal[0].f), "signalling frequency 1", "Hz"),
    F32("limit", AT(signal[0].limit), "signalling limit 1, a fraction of the voltage"),
};
inline constexpr Field kSignal2Rows[] = {
    F32("f", AT(signal[1].f), "signalling frequency 2", "Hz"),
    F32("limit", AT(signal[1].limit), "signalling limit 2, a fraction of the voltage"),
};
inline constexpr Field kSignalingRows[] = {
    Group("SIGNAL1", kSignal1Rows, "first signalling frequency"),
    Group("SIGNAL2", kSignal2Rows, "second signalling frequency"),
};

inline constexpr Field kInrushParamsRows[] = {
    F32("LEVEL", AT(inrush.level), "trigger level", "A"),
    I32("SLOPE", AT(inrush.slope), "trigger slope").OneOf(kSlopes),
    I32("DURATION", AT(inrush.duration), "record duration", "s"),
    I32("PRETRIGGER", AT(inrush.pretrigger), "pretrigger", "s"),
    Gap(AT(inrush.reserved1), 4),
    I32("STORE_MODE", AT(inrush.store_mode), "store mode"),
    I32("STORE_NUM", AT(inrush.store_num), "number of stored records"),
    I32("TRIG_CHANNEL", AT(inrush.trig_channel), "trigger channel"),
    DateTime("START_TIME", AT(inrush.start_time), "start of the recording"),
    DateTime("TRIG_TIME", AT(inrush.trig_time), "time of the trigger"),
    DateTime("END_TIME", AT(inrush.end_time), "end of the recording"),
    Gap(AT(inrush.reserved2), 4),
    F32("MAX_I", AT(inrush.max_i), "largest current seen", "A"),
};

inline constexpr Field kRecordParamsRows[] = {
    U8("TYPE", AT(record_type), "recording type"),
    Gap(AT(reserved6), 1),
    I32("INTERVAL", AT(interval), "averaging interval", "s"),
    Gap(AT(mode_selector), 4),
    I32("DURATION", AT(duration), "recording duration, 0 for not limited", "s"),
    I32("INC_ACTIVE_EVENTS", AT(inc_active_events), "events included, 0 or 2"),
    I32("INC_ACTIVE_ALARMS", AT(inc_active_alarms), "alarms included, 0 or 2"),
    U8("INC_ACTIVE_SIGNALLING", AT(inc_active_signalling), "signalling included"),
    Gap(AT(reserved7), 7),
    U8("INC_ACTIVE_TRANSIENTS", AT(inc_active_transients), "transients included"),
    U8("INC_ACTIVE_INRUSH", AT(inc_active_inrush), "inrush included"),
    Gap(AT(reserved10), 10),
    I32("INC_ACTIVE_RVC", AT(inc_active_rvc), "rapid voltage changes included"),
    U8("INC_ACTIVE_INTERVAL", AT(inc_active_interval), "interval recording included"),
    Gap(AT(reserved12), 2),
    I32("SIGNALLING_DURATION", AT(signalling_duration), "signalling record duration", "s"),
    F32("SIGNALLING_THRESHOLD", AT(signalling_threshold), "signalling threshold", "%"),
    Gap(AT(reserved9), 16),
    U8("MANUAL_START", AT(manual_start), "started by hand"),
    U8("STOP_CAUSE", AT(stop_cause), "cause of the recording's end"),
    Gap(AT(reserved8), 30),
    DateTime("START_TIME", AT(start_time), "recording start"),
    DateTime("TIME_FIRST_PACKET", AT(time_first_packet), "time of the first stored record"),
    DateTime("TIME_LAST_PACKET", AT(time_last_packet), "time of the last stored record"),
    I32("PROFILE", AT(profile), "recording profile, 0 to 5"),
    Made("HARM_CONTENT", AT(profile), 4, Kind::kI32, HarmonicContent, "harmonic content").Again(),
    Made("HARM_COMPONENTS", AT(profile), 4, Kind::kI64, HarmonicComponents, "mask of stored orders")
        .Again(),
    DateTime("START_PRESSED_TIME", AT(start_pressed_time), "time the start was pressed"),
    I32("EVENTS_WF_DURATION", AT(events_wf_duration), "event waveform duration", "s"),
    I32("EVENTS_WF_PRETRIGGER", AT(events_wf_pretrigger), "event waveform pretrigger", "s"),
    Gap(AT(reserved13), 4),
    Group("INRUSH_PARAMS", kInrushParamsRows, "inrush recording"),
    Gap(AT(reserved11), 124),
    I32("RECORD_START_TYPE", AT(record_start_type), "start type, 0 or 1"),
    U8("START_CAUSE", AT(start_cause), "cause of the recording's start"),
};

inline constexpr Field kWaveParamsRows[] = {
    I32("TRIGGER", AT(wave.trigger), "trigger source").OneOf(kTriggers),
    I32("REAL_TRIGGER", AT(wave.real_trigger), "trigger that fired").OneOf(kTriggers),
    F32("LEVEL", AT(wave.level), "trigger level", "%"),
    I32("SLOPE", AT(wave.slope), "trigger slope").OneOf(kSlopes),
    I32("DURATION", AT(wave.duration), "waveform duration", "s"),
    I32("PRETRIGGER", AT(wave.pretrigger), "pretrigger", "s"),
    I32("STORE_MODE", AT(wave.store_mode), "store mode"),
    Gap(AT(wave.reserved1), 8),
    I32("TRIG_CHANNEL", AT(wave.trig_channel), "trigger channel"),
    DateTime("START_TIME", AT(wave.start_time), "start"),
    DateTime("TRIG_TIME", AT(wave.trig_time), "trigger time"),
    I32("INTERVAL", AT(wave.interval), "repeat interval", "s"),
    DateTime("END_TIME", AT(wave.end_time), "end"),
    Gap(AT(wave.reserved2), 16 + 4 + 8),  // the record limit too
};

inline constexpr Field kTransientsParamsRows[] = {
    I32("TRIGGER", AT(transients.trigger), "trigger source").OneOf(kTriggers),
    I32("REAL_TRIGGER", AT(transients.real_trigger), "trigger that fired").OneOf(kTriggers),
    I32("TRIGGER_TYPE", AT(transients.trigger_type), "trigger type"),
    Gap(AT(transients.reserved1), 4),
    I32("SELECT_N_GND", AT(transients.select_n_gnd), "neutral or earth selection"),
    F32("LEVEL", AT(transients.level), "trigger level", "V"),
    I32("DURATION", AT(transients.duration), "duration", "periods"),
    I32("PRETRIGGER", AT(transients.pretrigger), "pretrigger", "periods"),
    F32("LEVEL_U", AT(transients.level_u), "voltage trigger level", "V"),
    F32("ENV_U", AT(transients.env_u), "voltage envelope", "V"),
    F32("LEVEL_UN", AT(transients.level_un), "neutral voltage trigger level", "V"),
    Gap(AT(transients.env_un), 4),  // shown in the record information only
    F32("LEVEL_I", AT(transients.level_i), "current trigger level", "A"),
    F32("ENV_I", AT(transients.env_i), "current envelope", "A"),
    F32("LEVEL_IN", AT(transients.level_in), "neutral current trigger level", "A"),
    F32("ENV_IN", AT(transients.env_in), "neutral current envelope", "A"),
    I32("STORE_MODE", AT(transients.store_mode), "store mode"),
    I32("TRIG_CHANNEL", AT(transients.trig_channel), "trigger channel"),
    DateTime("START_TIME", AT(transients.start_time), "start"),
    DateTime("TRIG_TIME", AT(transients.trig_time), "trigger time"),
    DateTime("END_TIME", AT(transients.end_time), "end"),
    I32("NUM", AT(transients.num), "transients stored"),
    F32("STEP", AT(transients.step), "step"),
    F32("MAX_VAL", AT(transients.max_val), "largest value"),
    I32("ALL_TRANSIENTS", AT(transients.all_transients), "all transients counted"),
    Gap(AT(transients.reserved2), 4),
    I32("MAX_NUM", AT(transients.max_num), "largest number of transients"),
};

inline constexpr Field kEmeterInfoRows[] = {
    Text("MEASUREMENT_PLACE", AT(emeter.measurement_place), 18, "measurement place"),
    Text("NOMINAL_DATA", AT(emeter.nominal_data), 18, "nominal data"),
    Gap(AT(emeter.reserved), 4),
    I64("SERIAL_NUMBER", AT(emeter.serial_number), "meter serial number"),
};
inline constexpr Field kEmeterParamsRows[] = {
    DateTime("START_PRESSED_TIME", AT(emeter.start_pressed_time), "meter start"),
    I32("MODE", AT(emeter.mode), "energy meter mode"),
    I32("CONSTANT", AT(emeter.constant), "meter constant"),
    I32("PULSES_NUM", AT(emeter.pulses_num), "number of pulses"),
    I32("MEAS_NUM", AT(emeter.meas_num), "number of measurements"),
    F32("ACCUMULATED_ENERGY", AT(emeter.accumulated_energy), "accumulated energy"),
    I32("SELECTED_Q", AT(emeter.selected_q), "selected reactive power definition"),
    I32("CT_PRIM", AT(emeter.ct_prim), "current transformer, primary"),
    I32("CT_SEC", AT(emeter.ct_sec), "current transformer, secondary"),
    I32("VT_PRIM", AT(emeter.vt_prim), "voltage transformer, primary"),
    I32("VT_SEC", AT(emeter.vt_sec), "voltage transformer, secondary"),
    Group("EMETER_INFO", kEmeterInfoRows, "the meter under test"),
};

inline constexpr Field kInstrumentDataRows[] = {
    Text("ee_FirmData", AT(ee_firm_data), 100, "firmware data"),
    Text("ee_SerialNumber", AT(ee_serial_number), 8, "instrument serial number"),
    Gap(AT(reserved16), 4),
    DateTime("ee_CalDate", AT(ee_cal_date), "calibration date"),
    U16("ee_Dealer", AT(ee_dealer), "dealer code; it changes the model texts"),
    U16("ee_HardwareVersion", AT(ee_hardware_version), "hardware version"),
    Text("ee_FirmwareVersion", AT(ee_firmware_version), 16, "firmware version"),
    U16("ee_DocumentationVersion", AT(ee_documentation_version), "documentation version"),
    Gap(AT(reserved17), 2),
    Made("instrument_GS", AT(model_family), 4, Kind::kText, ModelCode, "model code"),
    Made("instrument_name", AT(model_family), 4, Kind::kText, ModelName, "model name").Again(),
    Gap(AT(reserved18), 36),
};

// The calibration constants, gains and then offsets, one per input and range.
#define QUORVEX_CALIBRATION(prefix, at, meaning)                                             \
  F32(prefix "U1_150V", (at) + 0, meaning), F32(prefix "U1_300V", (at) + 4, meaning),        \
      F32(prefix "U1_1000V", (at) + 8, meaning), F32(prefix "U2_150V", (at) + 12, meaning),  \
      F32(prefix "U2_300V", (at) + 16, meaning), F32(prefix "U2_1000V", (at) + 20, meaning), \
      F32(prefix "U3_150V", (at) + 24, meaning), F32(prefix "U3_300V", (at) + 28, meaning),  \
      F32(prefix "U3_1000V", (at) + 32, meaning), F32(prefix "Ue_150V", (at) + 36, meaning), \
      F32(prefix "Ue_300V", (at) + 40, meaning), F32(prefix "Ue_1000V", (at) + 44, meaning), \
      F32(prefix "Un_150V", (at) + 48, meaning), F32(prefix "Un_300V", (at) + 52, meaning),  \
      F32(prefix "Un_1000V", (at) + 56, meaning), F32(prefix "Us_150V", (at) + 60, meaning), \
      F32(prefix "Us_300V", (at) + 64, meaning), F32(prefix "Us_1000V", (at) + 68, meaning), \
      F32(prefix "I1_10P", (at) + 72, meaning), F32(prefix "I1_100P", (at) + 76, meaning),   \
      F32(prefix "I2_10P", (at) + 80, meaning), F32(prefix "I2_100P", (at) + 84, meaning),   \
      F32(prefix "I3_10P", (at) + 88, meaning), F32(prefix "I3_100P", (at) + 92, meaning),   \
      F32(prefix "In_10P", (at) + 96, meaning), F32(prefix "In_100P", (at) + 100, meaning),  \
      F32(prefix "Is_10P", (at) + 104, meaning), F32(prefix "Is_100P", (at) + 108, meaning)
inline constexpr Field kInstrumentCalRows[] = {
    QUORVEX_CALIBRATION("ee_konst_", AT(ee_konst), "gain of an input and range"),
    QUORVEX_CALIBRATION("ee_ofs_", AT(ee_ofs), "offset of an input and range"),
    F32("ee_konst_Vbat", AT(ee_konst_vbat), "battery voltage calibration gain"),
};
#undef QUORVEX_CALIBRATION

inline constexpr auto kSettingsRows = Shared(
    {"settings",
     "The instrument's settings as they stood when the recording was made. Codes are shown as "
     "numbers, out of range or not."},
    {
        Gap(AT(reserved1), 4),
        Gap(AT(voltage_range), 4),
        U8("CONNECTION", AT(connection), "wiring code").OneOf(kWirings),
        U8("SYNCHRONIZATION", AT(synchronization), "synchronisation channel code, 1 or 2"),
        Gap(AT(reserved2), 1),
        I32("SYSTEM_FREQUENCY", AT(system_frequency),
            "nominal system frequency code: 50, 55, 60 or 400"),
        F32("NOMINAL_VOLTAGE", AT(nominal_voltage), "nominal voltage", "V"),
        I32("VOLTAGE_RATIO_PRIM", AT(voltage_ratio_prim), "voltage transformer ratio, primary"),
        I32("VOLTAGE_RATIO_SEC", AT(voltage_ratio_sec), "voltage transformer ratio, secondary"),
        Made("PV_PROBE_RATIO", AT(pv_probe_ratio), 4, Kind::kI32, ProbeRatio,
             "probe ratio, whole part"),
        U8("TRIKOT_STAR_FACTOR_ID", AT(trikot_star_factor_id),
           "delta or star factor of the voltage ratio, 0 to 2"),
        U8("UN_RANGE", AT(un_range), "nominal voltage range selector"),
        Gap(AT(reserved3), 3),
        F32("SWELL", AT(swell), "swell threshold", "%"),
        I32("SWELL_HYSTERESIS", AT(swell_hysteresis), "swell hysteresis code, 0 to 5"),
        F32("DIP", AT(dip), "dip threshold", "%"),
        I32("DIP_HYSTERESIS", AT(dip_hysteresis), "dip hysteresis code, 0 to 5"),
        F32("INTERRUPT", AT(interrupt), "interruption threshold", "%"),
        I32("INTERRUPT_HYSTERESIS", AT(interrupt_hysteresis),
            "interruption hysteresis code, 0 to 5"),
        F32("RVC_THRESHOLD", AT(rvc_threshold), "rapid voltage change threshold, a fraction"),
        F32("RVC_HYST", AT(rvc_hyst), "rapid voltage change hysteresis, a fraction"),
        U8("CAPTURE_EVENTS", AT(capture_events), "events captured"),
        U8("CAPTURE_ALARMS", AT(capture_alarms), "alarms captured"),
        Gap(AT(reserved4), 2),
        Group("CLAMP_PH1", AT(clamp[0]), kClampRows, "current clamp of phase 1"),
        Group("CLAMP_PH2", AT(clamp[1]), kClampRows, "current clamp of phase 2"),
        Group("CLAMP_PH3", AT(clamp[2]), kClampRows, "current clamp of phase 3"),
        Group("CLAMP_N", AT(clamp[3]), kClampRows, "current clamp of the neutral"),
        Group("ALARMS", AT(alarms), kAlarmSettingsRows, "alarm settings"),
        I32("RANGE_I", AT(range_i), "current measuring range, phases"),
        I32("RANGE_IN", AT(range_in), "current measuring range, neutral"),
        I32("RANGE_IS", AT(range_is), "current measuring range, earth"),
        I32("RANGE_US", AT(range_us), "voltage measuring range, earth"),
        Group("SIGNALING", kSignalingRows, "mains signalling"),
        U8("CLOCK_TYPE", AT(clock_type), "clock source code"),
        Gap(AT(reserved5), 5),
        Group("RECORD_PARAMS", kRecordParamsRows, "recording"),
        Group("WAVE_RECORD_PARAMS", kWaveParamsRows, "waveform recording"),
        Group("TRANSIENTS_RECORD_PARAMS", kTransientsParamsRows, "transient recording"),
        Gap(AT(reserved15), 508),
        Group("EMETER_PARAMS", kEmeterParamsRows, "energy meter test"),
        Gap(AT(reserved24), 4),
        Group("INSTRUMENT_DATA", kInstrumentDataRows, "the instrument"),
        Group("INSTRUMENT_CAL", kInstrumentCalRows, "calibration constants"),
        I32("rand_mark", AT(rand_mark), "random mark of the recording"),
        Gap(AT(checked_flag), 1),
        Made("cname", AT(cname_short), 7, Kind::kText, RecordingName,
             "recording name, short or long form"),
        Gap(AT(cname_long), 18 + 2),
        I32("meas_method", AT(meas_method), "measuring method, 0 to 2"),
        Gap(AT(reserved19), 100),
        Gap(AT(reduced_lists), 1 + 3),
        I32("memory_struct", AT(memory_struct), "memory organisation code"),
        Gap(AT(reserved21), 4),
        Made("gps_position", AT(longitude), 24, Kind::kText, Position, "GPS position"),
        Gap(AT(reserved23), 4),
        Gap(AT(reserved26), 328),
    });
#undef AT

inline constexpr Field kSettingsBlock =
    Record("UIF_PARAMS", kSettingsSize, kSettingsRows, "settings in force for the recording");
static_assert(Tiles<WrongByte(kSettingsBlock)>);

}  // namespace quorvex
