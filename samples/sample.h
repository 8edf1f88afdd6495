// Making recordings for trying things out: bytes placed through the layout tables by element names,
// with values that a network would show.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "layout/field.h"
#include "settings/settings_record.h"

namespace quorvex::samples {

constexpr double kNominalVoltage = 230.0;
constexpr double kFrequency = 50.0;
constexpr double kTwoPi = 6.283185307179586;

// A point in time that can be moved. Samples stay within a month.
struct Clock {
  DateTimeRecord now;
  void Advance(double seconds);
};
Clock ClockAt(int day, int hour, int minute, double seconds);  // in March 2024

// One record of a table under construction. Paths name elements from the record inward, separated
// by '/': "RMS12_VALUES/RMS12[17]/U". In brackets stands the repetition, or the value of the
// attribute `phase`: "VOLTAGES/U[u12]/rms/max". An unknown path ends the program: a sample never
// goes past the format.
class RecordBytes {
 public:
  explicit RecordBytes(const Field& table);
  RecordBytes& Set(const std::string& path, double value);
  RecordBytes& SetTime(const std::string& path, const DateTimeRecord& time);
  RecordBytes& SetText(const std::string& path, const std::string& text);
  // For spectra: the array from its start.
  RecordBytes& SetFloats(const std::string& path, const std::vector<double>& values);
  // Every float of the record without a value until it is set.
  RecordBytes& ClearFloats();
  // The count that a repeated row takes from the record.
  RecordBytes& SetCount(const std::string& path, int32_t count);
  // Words that no element shows.
  RecordBytes& SetRaw(uint32_t at, int32_t value);
  // For spectra: float `index` of the array.
  RecordBytes& SetFloat(const std::string& path, uint32_t index, double value);

  const std::vector<uint8_t>& bytes() const { return bytes_; }

 private:
  const Field& table_;
  std::vector<uint8_t> bytes_;
};

// A file: header, settings, then what is appended.
class RecordingFile {
 public:
  // Settings at byte 8, or 128 for files with the longer head; none where null.
  RecordingFile(uint32_t type, const UifParams* settings, uint32_t settings_at = 8);
  RecordingFile& Append(const RecordBytes& record);
  RecordingFile& Append(const void* bytes, size_t size);
  void Write(const std::string& folder, const std::string& name) const;

 private:
  std::vector<uint8_t> bytes_;
};

// Settings of a four-wire 230 V network with four 1000 A clamps.
UifParams NetworkSettings();

// One function a record type; each writes its recordings into the folder.
void MakeGeneral(const std::string& folder);
void MakeSnapshots(const std::string& folder);
void MakeChannelReadings(const std::string& folder);
void MakeSettingsOnly(const std::string& folder);
void MakeWaveformCapture(const std::string& folder);
void MakeLiveResults(const std::string& folder);
void MakeAlarms(const std::string& folder);
void MakeVoltageEvents(const std::string& folder);
void MakeSignalling(const std::string& folder);
void MakeRapidVoltageChanges(const std::string& folder);
void MakeAverages(const std::string& folder);
void MakeTransients(const std::string& folder);
void MakeInrush(const std::string& folder, const std::string& name = "R0013INR.REC");
void MakeSessions(const std::string& folder);
void MakeVoltageQuality(const std::string& folder);
void MakeWaveformSeries(const std::string& folder);
void MakeEnergyMeter(const std::string& folder, const std::string& name = "R0018EME.REC");

// All of them.
void MakeAll(const std::string& folder);

// A card of one week in which known things are wrong by known shares: week.cpp says which.
void MakeWeek(const std::string& folder);

}  // namespace quorvex::samples
