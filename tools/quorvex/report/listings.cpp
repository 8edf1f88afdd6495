#include "report/listings.h"

#include <algorithm>

namespace quorvex::tool {

const std::vector<ListedType>& ListedTypes() {
#define TRANSIENT "UIF_PARAMS/TRANSIENTS_RECORD_PARAMS/"
#define SIGNAL "SIGNALLING_PARAMS/"
  static const std::vector<ListedType> kTypes = {
      {10,
       "changes",
       "Rapid voltage changes",
       {{"time", "Begins", "RVC_START_TIME"},
        {"phase", "Phase", "PHASE"},
        {"before_V", "Before, V", "SS1"},
        {"after_V", "After, V", "SS2"},
        {"largest_deviation", "Largest deviation", "DU_MAX"},
        {"steady_deviation", "Steady deviation", "DU_SS"},
        {"duration_s", "Duration, s", "DURATION"}}},
      {12,
       "transients",
       "Transients",
       {{"time", "Triggered", TRANSIENT "TRIG_TIME"},
        {"name", "Waveform", "name"},
        {"channel", "Channel", TRANSIENT "TRIG_CHANNEL"},
        {"largest", "Largest value", TRANSIENT "MAX_VAL"}}},
      {13,
       "inrush",
       "Inrush currents",
       {{"time", "Begins", "START_TIME"},
        {"channel", "Channel", "CHANNEL"},
        {"current_A", "Largest current, A", "MAX_I"}}},
      {7,
       "alarms",
       "Alarms",
       {{"time", "Time", "TIME_STAMP"},
        {"state", "State (code)", "STATE_ID"},
        {"group", "Group (code)", "ALARM_GROUP_ID"},
        {"quantity", "Quantity (code)", "QUANTITY/ID"},
        {"phase", "Phase (code)", "QUANTITY/PHASE_ID"},
        {"value", "Value", "QUANTITY_VALUE"},
        {"threshold", "Threshold", "SETTING/QUANTITY_VALUE"},
        {"lasting_s", "For at least, s", "SETTING/TRIGGER_DURATION"}}},
      {9,
       "signalling",
       "Signalling telegrams",
       {{"time", "First packet", SIGNAL "TIME_FIRST_PACKET"},
        {"packets", "Packets", SIGNAL "PACKETS_NUM"},
        {"step_s", "Step, s", SIGNAL "TIME_STEP"},
        {"threshold", "Threshold", SIGNAL "TRESHOLD"},
        {"duration_s", "Duration, s", SIGNAL "DURATION"}}},
      {11,
       "averages",
       "Summaries",
       {{"summary", "Summary", "element"},
        {"records", "Intervals", "NUM"},
        {"active_consumed_Wh", "Active energy consumed, Wh", "TN/MOTOR/Ep"},
        {"active_generated_Wh", "Active energy generated, Wh", "TN/GENERATOR/Ep"},
        {"reactive_consumed_varh", "Reactive energy consumed, varh", "TN/MOTOR/Eq"},
        {"reactive_generated_varh", "Reactive energy generated, varh", "TN/GENERATOR/Eq"},
        {"p1_consumed_Wh", "Of it phase 1, Wh", "L1/MOTOR/Ep"},
        {"p2_consumed_Wh", "Phase 2, Wh", "L2/MOTOR/Ep"},
        {"p3_consumed_Wh", "Phase 3, Wh", "L3/MOTOR/Ep"}}},
      {18,
       "meter_tests",
       "Meter tests",
       {{"time", "Begins", "START_TIME"},
        {"to", "Ends", "END_TIME"},
        {"counted", "Counted by the meter", "E_METER_ENERGY"},
        {"active", "Active energy measured", "MEAS_Ep"},
        {"reactive", "Reactive energy measured", "MEAS_Eq"},
        {"error_percent", "Error of the meter, %", "error"}}},
  };
#undef TRANSIENT
#undef SIGNAL
  return kTypes;
}

const ListedType* ListedTypeOf(uint32_t type) {
  const auto& types = ListedTypes();
  const auto found = std::find_if(types.begin(), types.end(),
                                  [&](const ListedType& listed) { return listed.type == type; });
  return found != types.end() ? &*found : nullptr;
}

Listing ListingOf(const std::string& path, size_t recording, const ListedType& type,
                  const ReadOptions& options) {
  Listing listing = {&type, recording, {}};
  ForEachListed(path, type, options, [&](const std::vector<Cell>& row) {
    if (++listing.count <= kMostListed) listing.rows.push_back(row);
  });
  return listing;
}

void ForEachListed(const std::string& path, const ListedType& type, const ReadOptions& options,
                   const std::function<void(const std::vector<Cell>&)>& take) {
  std::vector<std::string> columns;
  columns.reserve(type.columns.size());
  for (const ListedColumn& column : type.columns) columns.emplace_back(column.column);
  TableRows rows(path, "records", columns, options);
  std::vector<Cell> cells(columns.size());
  while (rows.Next()) {
    for (size_t c = 0; c < columns.size(); ++c) cells[c] = rows.CellAt(c);
    take(cells);
  }
}

}  // namespace quorvex::tool
