#include "report/trend_kinds.h"

#include "assessment/channels.h"

namespace quorvex::tool {
namespace {

LineColumns Voltage(const std::string& channel, const std::string& quantity,
                    const std::string& instead = "") {
  LineColumns line = {channel, {}};
  const std::string front = "VOLTAGES/U[" + channel + "]/";
  line.values.push_back(front + quantity + "/rms");
  if (!instead.empty()) line.values.push_back(front + instead + "/rms");
  return line;
}

LineColumns WithBand(LineColumns line, const std::string& front) {
  line.low = front + "/min";
  line.high = front + "/max";
  return line;
}

}  // namespace

std::vector<TrendKind> KindsFor(uint8_t wiring) {
  const std::vector<std::string> voltages = VoltageChannels(wiring);
  const std::vector<std::string> currents = CurrentChannels(wiring);
  TrendKind rms = {"voltage", "Voltages", "V", {}, "voltage"};
  TrendKind thd = {"thd-voltage", "Distortion of voltages (THD)", "%", {}, "thd"};
  TrendKind pst = {"pst", "Short-term flicker Pst", "", {}};
  TrendKind plt = {"plt", "Long-term flicker Plt", "", {}, "plt"};
  for (const std::string& u : voltages) {
    rms.lines.push_back(WithBand(Voltage(u, "rms"), "VOLTAGES/U[" + u + "]/rms"));
    thd.lines.push_back(Voltage(u, "thdPr", "thd"));
    pst.lines.push_back(Voltage(u, "Pst"));
    plt.lines.push_back(Voltage(u, "Plt"));
  }
  TrendKind amps = {"current", "Currents", "A", {}};
  TrendKind thd_current = {"thd-current", "Distortion of currents (THD)", "%", {}};
  for (const std::string& i : currents) {
    const std::string front = "CURRENTS/I[" + i + "]/";
    amps.lines.push_back(WithBand({i, {front + "rms/rms"}}, front + "rms"));
    thd_current.lines.push_back({i, {front + "thdPr/rms"}});
  }
  const TrendKind frequency = {
      "frequency", "Frequency",
      "Hz",        {WithBand({"f", {"f_10s/avgA", "f_200ms/avgA"}}, "f_10s")},
      "frequency", 6};
  const std::string total = "pt/COMBINED/";
  TrendKind active = {"active", "Active power, consumed (+) and generated (-)", "W", {}};
  active.lines = {{"total +", {total + "Pp/avg"}}, {"total -", {total + "Pm/avg"}}};
  TrendKind reactive = {"reactive", "Reactive power, inductive and capacitive", "var", {}};
  reactive.lines = {{"inductive +", {total + "Qip/avg"}},
                    {"capacitive +", {total + "Qcp/avg"}},
                    {"inductive -", {total + "Qim/avg"}},
                    {"capacitive -", {total + "Qcm/avg"}}};
  const TrendKind apparent = {
      "apparent", "Apparent power", "VA", {{"effective", {total + "Se/avg"}}}};
  TrendKind factor = {"power-factor", "Power factor", "", {}};
  factor.lines = {{"inductive +", {total + "PFip_e/avgA"}},
                  {"capacitive +", {total + "PFcp_e/avgA"}},
                  {"inductive -", {total + "PFim_e/avgA"}},
                  {"capacitive -", {total + "PFcm_e/avgA"}}};
  for (const char* phase : {"p1", "p2", "p3"}) {
    const std::string front = std::string("PHASE_POWERS/P[") + phase + "]/COMBINED/";
    active.lines.push_back({std::string(phase) + " +", {front + "Pp/avg"}});
    active.lines.push_back({std::string(phase) + " -", {front + "Pm/avg"}});
  }
  const TrendKind unbalance = {
      "unbalance",
      "Unbalance",
      "%",
      {{"negative sequence", {"sym/um/rms"}}, {"zero sequence", {"sym/u0/rms"}}},
      "unbalance"};
  const TrendKind temperature = {
      "temperature",
      "Temperature of the instrument",
      "°C",
      {{"inside", {"temperature/avg"}}, {"battery", {"tempBattery/avg"}}}};
  return {rms, amps,        frequency, active, reactive,  apparent,   factor,
          thd, thd_current, pst,       plt,    unbalance, temperature};
}

}  // namespace quorvex::tool
