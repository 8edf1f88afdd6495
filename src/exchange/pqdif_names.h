// The identifiers of PQDIF files (IEEE 1159.3) that ours use, each with the name that the standard
// gives it.
#pragma once

#include <cstdint>

namespace quorvex::pqdif {

// As it is stored: the first three groups little-endian, the others as they are read.
struct Guid {
  uint8_t bytes[16] = {};
  bool operator==(const Guid&) const = default;
};

consteval Guid Id(const char (&text)[37]) {
  constexpr int kPlaces[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  const auto digit = [](char c) { return c <= '9' ? c - '0' : c - 'a' + 10; };
  Guid id;
  int at = 0;
  for (const int place : kPlaces) {
    if (text[at] == '-') ++at;
    id.bytes[place] = static_cast<uint8_t>(16 * digit(text[at]) + digit(text[at + 1]));
    at += 2;
  }
  return id;
}
// Most identifiers differ in the first group only.
consteval Guid Of(uint32_t first, Guid family) {
  for (int i = 0; i < 4; ++i) family.bytes[i] = static_cast<uint8_t>(first >> (8 * i));
  return family;
}
inline constexpr Guid kF1c3 = Id("00000000-f1c3-11cf-9d89-0080c72e70a3");
inline constexpr Guid kF5f5 = Id("00000000-f5f5-11cf-9d89-0080c72e70a3");
inline constexpr Guid kF747 = Id("00000000-f747-11cf-9d89-0080c72e70a3");
inline constexpr Guid kF753 = Id("00000000-f753-11cf-9d89-0080c72e70a3");
inline constexpr Guid kF755 = Id("00000000-f755-11cf-9d89-0080c72e70a3");
inline constexpr Guid kF76e = Id("00000000-f76e-11cf-9d89-0080c72e70a3");
inline constexpr Guid kF9c4 = Id("00000000-f9c4-11cf-9d89-0080c72e70a3");
inline constexpr Guid k2bd0 = Id("00000000-2bd0-11d2-ae42-0060083a2628");
inline constexpr Guid k71ca = Id("00000000-71ca-11d4-a4b3-444553540000");
inline constexpr Guid k7810 = Id("00000000-7810-11d4-a4b3-444553540000");
inline constexpr Guid k7edd = Id("00000000-7edd-11d2-b30a-00609789d193");
inline constexpr Guid k9ff5 = Id("00000000-9ff5-11d2-b30b-006008b37183");
inline constexpr Guid kB451 = Id("00000000-b451-11d1-ae17-0060083a2628");
inline constexpr Guid kFf54 = Id("00000000-ff54-11d3-b968-0050da2b1f4d");

// Records.
inline constexpr Guid kSignature = Id("4a111440-e49f-11cf-9900-505144494600");
inline constexpr Guid kContainer = Of(0x89738606, kF1c3);        // tagContainer
inline constexpr Guid kDataSource = Of(0x89738619, kF1c3);       // tagRecDataSource
inline constexpr Guid kMonitorSettings = Of(0xb48d858c, kF5f5);  // tagRecMonitorSettings
inline constexpr Guid kObservation = Of(0x8973861a, kF1c3);      // tagRecObservation

// Of the container.
inline constexpr Guid kVersionInfo = Of(0x89738607, kF1c3);           // tagVersionInfo
inline constexpr Guid kFileName = Of(0x89738608, kF1c3);              // tagFileName
inline constexpr Guid kCreation = Of(0x89738609, kF1c3);              // tagCreation
inline constexpr Guid kComments = Of(0x89738611, kF1c3);              // tagComments
inline constexpr Guid kApplication = Of(0x89738623, kF1c3);           // tagApplication
inline constexpr Guid kCompressionStyle = Of(0x8973861b, kF1c3);      // tagCompressionStyleID
inline constexpr Guid kCompressionAlgorithm = Of(0x8973861c, kF1c3);  // tagCompressionAlgorithmID

// Of a data source, its channels and their series.
inline constexpr Guid kSourceType = Of(0xb48d8581, kF5f5);            // tagDataSourceTypeID
inline constexpr Guid kVendor = Of(0xb48d8582, kF5f5);                // tagVendorID
inline constexpr Guid kSerialNumber = Of(0xb48d8585, kF5f5);          // tagSerialNumberDS
inline constexpr Guid kVersion = Of(0xb48d8586, kF5f5);               // tagVersionDS
inline constexpr Guid kSourceName = Of(0xb48d8587, kF5f5);            // tagNameDS
inline constexpr Guid kLocation = Of(0xb48d8589, kF5f5);              // tagLocationDS
inline constexpr Guid kChannelDefinitions = Of(0xb48d858d, kF5f5);    // tagChannelDefns
inline constexpr Guid kInstrumentType = Of(0x3d786f82, kF76e);        // tagInstrumentTypeID
inline constexpr Guid kModelName = Of(0x3d786f83, kF76e);             // tagInstrumentModelName
inline constexpr Guid kOneChannelDefinition = Of(0xb48d858e, kF5f5);  // tagOneChannelDefn
inline constexpr Guid kChannelName = Of(0xb48d8590, kF5f5);           // tagChannelName
inline constexpr Guid kPhase = Of(0xb48d8591, kF5f5);                 // tagPhaseID
inline constexpr Guid kQuantityType = Of(0xb48d8592, kF5f5);          // tagQuantityTypeID
inline constexpr Guid kQuantityMeasured = Of(0xc690e872, kF755);      // tagQuantityMeasuredID
inline constexpr Guid kSeriesDefinitions = Of(0xb48d8598, kF5f5);     // tagSeriesDefns
inline constexpr Guid kOneSeriesDefinition = Of(0xb48d859a, kF5f5);   // tagOneSeriesDefn
inline constexpr Guid kValueType = Of(0xb48d859c, kF5f5);             // tagValueTypeID
inline constexpr Guid kUnits = Of(0xb48d859b, kF5f5);                 // tagQuantityUnitsID
inline constexpr Guid kCharacteristic = Of(0x3d786f9e, kF76e);        // tagQuantityCharacteristicID
inline constexpr Guid kStorageMethod = Of(0xb48d85a1, kF5f5);         // tagStorageMethodID
inline constexpr Guid kSeriesNominal = Id("0fa118c8-cb4a-11d2-b30b-fe25cb9a1760");
// tagSeriesNominalQuantity

// Of monitor settings.
inline constexpr Guid kEffective = Of(0x62f28183, kF9c4);          // tagEffective
inline constexpr Guid kTimeInstalled = Of(0x3d786f85, kF76e);      // tagTimeInstalled
inline constexpr Guid kUseCalibration = Of(0x62f28180, kF9c4);     // tagUseCalibration
inline constexpr Guid kUseTransducer = Of(0x62f28181, kF9c4);      // tagUseTransducer
inline constexpr Guid kChannelSettings = Of(0x62f28182, kF9c4);    // tagChannelSettingsArray
inline constexpr Guid kOneChannelSetting = Of(0x3d786f9a, kF76e);  // tagOneChannelSetting
inline constexpr Guid kNominalFrequency = Id("0fa118c3-cb4a-11d2-b30b-fe25cb9a1760");
// tagNominalFrequency
inline constexpr Guid kConnection = Id("9f256ee0-803b-11d3-b92f-0050da2b1f4d");
// tagSettingPhysicalConnection
inline constexpr Guid kChannelIndex = Of(0xb48d858f, kF5f5);     // tagChannelDefnIdx
inline constexpr Guid kTriggerType = Of(0x62f28184, kF9c4);      // tagTriggerTypeID
inline constexpr Guid kTriggerLow = Of(0x62f28185, kF9c4);       // tagTriggerLow
inline constexpr Guid kTriggerHigh = Of(0x62f28186, kF9c4);      // tagTriggerHigh
inline constexpr Guid kTriggerLowLow = Of(0x5b12f430, kFf54);    // tagTriggerLowLow
inline constexpr Guid kTransformerType = Of(0x62f28189, kF9c4);  // tagXDTransformerTypeID
inline constexpr Guid kSystemSide = Of(0x62f2818a, kF9c4);       // tagXDSystemSideRatio
inline constexpr Guid kMonitorSide = Of(0x62f2818b, kF9c4);      // tagXDMonitorSideRatio

// Of observations, their channels and series.
inline constexpr Guid kObservationName = Of(0x3d786f8a, kF76e);   // tagObservationName
inline constexpr Guid kTimeCreate = Of(0x3d786f8b, kF76e);        // tagTimeCreate
inline constexpr Guid kTimeStart = Of(0x3d786f8c, kF76e);         // tagTimeStart
inline constexpr Guid kTriggerMethod = Of(0x3d786f8d, kF76e);     // tagTriggerMethodID
inline constexpr Guid kTriggerChannels = Of(0x3d786f8f, kF76e);   // tagChannelTriggerIdx
inline constexpr Guid kDisturbance = Of(0xb48d8597, kF5f5);       // tagDisturbanceCategoryID
inline constexpr Guid kChannelInstances = Of(0x3d786f91, kF76e);  // tagChannelInstances
inline constexpr Guid kOneChannel = Of(0x3d786f92, kF76e);        // tagOneChannelInst
inline constexpr Guid kMagnitude = Of(0x2747d443, k2bd0);         // tagCharactMagnitude
inline constexpr Guid kDuration = Of(0x2747d444, k2bd0);          // tagCharactDuration
inline constexpr Guid kChannelGroup = Id("f90de218-e67b-4cf1-a295-b021a2d46767");
// tagChannelGroupID
inline constexpr Guid kSeriesInstances = Of(0x3d786f93, kF76e);  // tagSeriesInstances
inline constexpr Guid kOneSeries = Of(0x3d786f94, kF76e);        // tagOneSeriesInstance
inline constexpr Guid kSeriesBase = Of(0x3d786f95, kF76e);       // tagSeriesBaseQuantity
inline constexpr Guid kSeriesOffset = Of(0x3d786f97, kF76e);     // tagSeriesOffset
inline constexpr Guid kSeriesValues = Of(0x3d786f99, kF76e);     // tagSeriesValues
inline constexpr Guid kShareChannel = Of(0x8973861f, kF1c3);     // tagSeriesShareChannelIdx
inline constexpr Guid kShareSeries = Of(0x89738620, kF1c3);      // tagSeriesShareSeriesIdx

// What an instrument is.
inline constexpr Guid kMeasure = Of(0xe6b51730, kF747);       // ID_DS_TYPE_MEASURE
inline constexpr Guid kNoVendor = Of(0xe6b51701, kF747);      // ID_VENDOR_NONE
inline constexpr Guid kQualityMeter = Of(0xe6b51737, kF747);  // ID_INSTR_TYPE_PQM

// What a channel holds.
inline constexpr Guid kWaveform = Of(0x67f6af80, kF753);    // ID_QT_WAVEFORM
inline constexpr Guid kValueLog = Of(0x67f6af82, kF753);    // ID_QT_VALUELOG
inline constexpr Guid kMagDurTime = Of(0x67f6af8d, kF753);  // ID_QT_MAGDURTIME

// What a series holds.
inline constexpr Guid kVal = Of(0x67f6af97, kF753);   // ID_SERIES_VALUE_TYPE_VAL
inline constexpr Guid kMin = Of(0x67f6af98, kF753);   // ID_SERIES_VALUE_TYPE_MIN
inline constexpr Guid kMax = Of(0x67f6af99, kF753);   // ID_SERIES_VALUE_TYPE_MAX
inline constexpr Guid kAvg = Of(0x67f6af9a, kF753);   // ID_SERIES_VALUE_TYPE_AVG
inline constexpr Guid kTime = Of(0xc690e862, kF755);  // ID_SERIES_VALUE_TYPE_TIME
inline constexpr Guid kDur = Of(0xc690e863, kF755);   // ID_SERIES_VALUE_TYPE_DURATION

// Characteristics of quantities: ID_QC_...
inline constexpr Guid kNothing = Of(0xa6b31adf, kB451);                         // NONE
inline constexpr Guid kInstantaneous = Of(0xa6b31add, kB451);                   // INSTANTANEOUS
inline constexpr Guid kRms = Of(0xa6b31ae5, kB451);                             // RMS
inline constexpr Guid kHarmonicRms = Of(0xa6b31adc, kB451);                     // HRMS
inline constexpr Guid kFrequency = Of(0x07ef68af, k9ff5);                       // FREQUENCY
inline constexpr Guid kThd = Of(0xa6b31aec, kB451);                             // TOTAL_THD
inline constexpr Guid kTdd = Id("f3d216e7-2aa5-11d5-a4b3-444553540000");        // TDD
inline constexpr Guid kCrestFactor = Of(0xa6b31ad2, kB451);                     // CREST_FACTOR
inline constexpr Guid kKFactor = Id("8786ca11-9113-11d3-b930-0050da2b1f4d");    // K_FACTOR
inline constexpr Guid kZeroRatio = Of(0xa6b31ae7, kB451);                       // S0S1
inline constexpr Guid kNegativeRatio = Of(0xa6b31ae8, kB451);                   // S2S1
inline constexpr Guid kPositive = Of(0xa6b31aea, kB451);                        // SPOS
inline constexpr Guid kNegative = Id("d71a4b91-3c92-11d4-9f2c-002078e0b723");   // SNEG
inline constexpr Guid kZero = Id("d71a4b92-3c92-11d4-9f2c-002078e0b723");       // SZERO
inline constexpr Guid kHarmonics = Id("53be6ba8-0789-455b-9a95-da128683dda7");  // SPECTRA_HGROUP
inline constexpr Guid kInterharmonics = Id("5e51e006-9c95-4c5e-878f-7ca87c0d2a0e");
// SPECTRA_IGROUP
inline constexpr Guid kLargestChange = Of(0xa6b31ad8, kB451);   // FLKR_MAX_DVV
inline constexpr Guid kPst = Of(0x515bf320, k71ca);             // FLKR_PST
inline constexpr Guid kPlt = Of(0x515bf321, k71ca);             // FLKR_PLT
inline constexpr Guid kActive = Of(0xa6b31ae1, kB451);          // P
inline constexpr Guid kReactive = Of(0xa6b31ae4, kB451);        // Q
inline constexpr Guid kApparent = Of(0xa6b31ae6, kB451);        // S
inline constexpr Guid kApparentVector = Of(0x672d0314, k7810);  // S_VECTOR
inline constexpr Guid kApparentArithmetic = Id("1c39fb02-a6aa-11d4-a4b3-444553540000");  // S_ARITH
inline constexpr Guid kPowerFactor = Of(0xa6b31ae3, kB451);                              // PF
inline constexpr Guid kDisplacementFactor = Of(0xa6b31ad3, kB451);                       // DF
inline constexpr Guid kActiveFundamental = Id("1cdda475-1ebb-42d8-8087-d01b0b5cfa97");   // P_FUND
inline constexpr Guid kEnergyTaken = Id("f098a9a1-3ee4-11d5-a4b3-444553540000");
// P_IVL_INTG_POS
inline constexpr Guid kEnergyGiven = Id("f098a9a3-3ee4-11d5-a4b3-444553540000");
// P_IVL_INTG_NEG

// Disturbances: ID_DISTURB_1159_...
inline constexpr Guid kInstantSag = Of(0xdd56ef6a, k7edd);             // SHORTDUR_INSTANT_SAG
inline constexpr Guid kInstantSwell = Of(0xdd56ef6b, k7edd);           // SHORTDUR_INSTANT_SWELL
inline constexpr Guid kMomentaryInterruption = Of(0xdd56ef6d, k7edd);  // SHORTDUR_MOMENT_INTERRUPT
inline constexpr Guid kMomentarySag = Of(0xdd56ef6e, k7edd);           // SHORTDUR_MOMENT_SAG
inline constexpr Guid kMomentarySwell = Of(0xdd56ef6f, k7edd);         // SHORTDUR_MOMENT_SWELL
inline constexpr Guid kTemporaryInterruption = Of(0xdd56ef71, k7edd);  // SHORTDUR_TEMP_INTERRUPT
inline constexpr Guid kTemporarySag = Of(0xdd56ef72, k7edd);           // SHORTDUR_TEMP_SAG
inline constexpr Guid kTemporarySwell = Of(0xdd56ef73, k7edd);         // SHORTDUR_TEMP_SWELL
inline constexpr Guid kLongInterruption = Of(0xdd56ef74, k7edd);       // LONGDUR_INTERRUPT
inline constexpr Guid kUndervoltage = Of(0xdd56ef75, k7edd);           // LONGDUR_SAG
inline constexpr Guid kOvervoltage = Of(0xdd56ef76, k7edd);            // LONGDUR_SWELL
inline constexpr Guid kFluctuation = Of(0x67f6af93, kF753);            // VOLTAGEFLUCTUATION

// ID_PHASE_...
enum PhaseId : uint32_t {
  kNoPhase = 0,
  kAn = 1,
  kBn = 2,
  kCn = 3,
  kNg = 4,
  kAb = 5,
  kBc = 6,
  kCa = 7,
  kTotal = 13,
  kWorst = 16,
};

// ID_QM_...
enum Measured : uint32_t {
  kNone = 0,
  kVoltage = 1,
  kCurrent = 2,
  kPower = 3,
  kEnergy = 4,
  kTemperature = 5
};

// ID_QU_...
enum Unit : uint32_t {
  kUnitless = 0,
  kSeconds = 2,
  kVolts = 6,
  kAmperes = 7,
  kVa = 8,
  kWatts = 9,
  kVars = 10,
  kHertz = 15,
  kCelsius = 16,
  kPercent = 19,
  kWattHours = 23,
};

enum : uint32_t {
  kStoredValues = 1,     // ID_SERIES_METHOD_VALUES
  kStoredIncrement = 4,  // ID_SERIES_METHOD_INCREMENT
  kUncompressed = 0,     // ID_COMP_STYLE_NONE, ID_COMP_ALG_NONE
  kRecordLevel = 2,      // ID_COMP_STYLE_RECORDLEVEL
  kZlib = 1,             // ID_COMP_ALG_ZLIB
  kTriggerIsLow = 1,     // ID_TRIG_LOW
  kTriggerIsHigh = 2,    // ID_TRIG_HIGH
  kPotential = 1,        // ID_XFORMER_TYPE_PT
  kCurrentType = 2,      // ID_XFORMER_TYPE_CT
  kByChannel = 1,        // ID_TRIGGER_METH_CHANNEL
  kPeriodic = 4,         // ID_TRIGGER_METH_PERIODIC_STATS
  kUntriggered = 0,      // ID_TRIGGER_METH_NONE
};

}  // namespace quorvex::pqdif
