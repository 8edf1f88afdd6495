// Type 16: voltage quality, an interval a record.
#include <iterator>

#include "records/record_types.h"
#include "records/result_groups.h"
#include "records/walk.h"
#include "support/memory.h"
#include "support/numbers.h"

namespace quorvex {
namespace {

using namespace intervals;

// Unlike in general records an inverter at a three-phase network (7) is line-to-line here.
constexpr Cases kLines = Connections({2, 4, 7});
constexpr Cases kPhases = NotConnections({2, 4, 7});

// Quantities lie in arrays of three, at these offsets.
template <uint32_t kIndex, uint32_t kPst>
constexpr Field kVoltageRmsRows[] = {
    OneRms("rms", 16 + 4 * kIndex, "RMS voltage", "V"),
    OneRms("thd", 28 + 4 * kIndex, "total harmonic distortion"),
    OneRms("Pst", kPst + 4 * kIndex, "short-term flicker"),
};
template <uint32_t kIndex, uint32_t kPst>
constexpr Field kVoltageThdRows[] = {
    OneRms("thd", 16 + 4 * kIndex, "total harmonic distortion"),
    OneRms("Pst", kPst + 4 * kIndex, "short-term flicker"),
};

template <size_t N>
constexpr Field PhaseOrLine(const char* phase, const Field (&rows)[N], Cases cases) {
  return Group("U", rows, "results of a voltage").Phase(phase).In(cases);
}
template <uint32_t kPst>
constexpr Field kVoltagesRmsRows[] = {
    PhaseOrLine("u1", kVoltageRmsRows<0, kPst>, kPhases),
    PhaseOrLine("u2", kVoltageRmsRows<1, kPst>, kPhases),
    PhaseOrLine("u3", kVoltageRmsRows<2, kPst>, kPhases),
    PhaseOrLine("u12", kVoltageRmsRows<0, kPst>, kLines),
    PhaseOrLine("u23", kVoltageRmsRows<1, kPst>, kLines),
    PhaseOrLine("u31", kVoltageRmsRows<2, kPst>, kLines),
};
template <uint32_t kPst>
constexpr Field kVoltagesThdRows[] = {
    PhaseOrLine("u1", kVoltageThdRows<0, kPst>, kPhases),
    PhaseOrLine("u2", kVoltageThdRows<1, kPst>, kPhases),
    PhaseOrLine("u3", kVoltageThdRows<2, kPst>, kPhases),
    PhaseOrLine("u12", kVoltageThdRows<0, kPst>, kLines),
    PhaseOrLine("u23", kVoltageThdRows<1, kPst>, kLines),
    PhaseOrLine("u31", kVoltageThdRows<2, kPst>, kLines),
};
template <uint32_t kOrderCount>
constexpr Field kSpectraRows[] = {
    PlainVoltageHarmonics("u1h", 0, kOrderCount).In(kPhases),
    PlainVoltageHarmonics("u2h", 4 * kOrderCount, kOrderCount).In(kPhases),
    PlainVoltageHarmonics("u3h", 8 * kOrderCount, kOrderCount).In(kPhases),
    PlainVoltageHarmonics("u12h", 0, kOrderCount).In(kLines),
    PlainVoltageHarmonics("u23h", 4 * kOrderCount, kOrderCount).In(kLines),
    PlainVoltageHarmonics("u31h", 8 * kOrderCount, kOrderCount).In(kLines),
};

constexpr uint32_t kOrders40 = 41;
constexpr uint32_t kOrders15 = 16;

constexpr Field kOtherIntervalRows[] = {
    DateTime("LAST_TIME", 0, "end of the interval"),
    Group("VOLTAGES", kVoltagesRmsRows<532>),
    Group("HARMONICS_U", 40, kSpectraRows<kOrders40>, "voltage harmonics"),
};
constexpr Field kOtherInterval =
    Record("RECORD_RESULTS", 544, kOtherIntervalRows, "an interval of any other length");
static_assert(Tiles<WrongByte(kOtherInterval)>);

constexpr Field kQuarterHourRows[] = {
    DateTime("LAST_TIME", 0, "end of the interval"),
    Group("VOLTAGES", kVoltagesRmsRows<232>),
    Group("HARMONICS_U", 40, kSpectraRows<kOrders15>, "voltage harmonics"),
    Gap(244, 4),
};
constexpr Field kQuarterHour =
    Record("RECORD_RESULTS", 248, kQuarterHourRows, "an interval of 900 s");
static_assert(Tiles<WrongByte(kQuarterHour)>);

// No RMS voltage is kept here: the first array is the distortion.
constexpr Field kTenMinutesRows[] = {
    DateTime("LAST_TIME", 0, "end of the interval"),
    Group("VOLTAGES", kVoltagesThdRows<520>),
    Group("HARMONICS_U", 28, kSpectraRows<kOrders40>, "voltage harmonics"),
    Gap(532, 4),
};
constexpr Field kTenMinutes =
    Record("RECORD_RESULTS", 536, kTenMinutesRows, "an interval of 600 s");
static_assert(Tiles<WrongByte(kTenMinutes)>);

constexpr const Field* kLayouts[] = {&kOtherInterval, &kTenMinutes, &kQuarterHour};

const Field* ChooseByInterval(const UifParams& settings) {
  switch (settings.interval) {
    case 600:
      return &kTenMinutes;
    case 900:
      return &kQuarterHour;
    default:
      return &kOtherInterval;
  }
}

constexpr const char* kWords[] = {"other", "600s", "900s"};
constexpr LayoutChoice kChoice = {kLayouts, kWords, std::size(kLayouts), ChooseByInterval};

void WalkIntervals(Walk* w) {
  const auto size = static_cast<uint32_t>(w->recording->size);
  const float behind_head = static_cast<float>(static_cast<int64_t>(size) - kHeadSize);
  const int32_t expected = TruncateToInt(behind_head / static_cast<float>(w->layout->size) + 0.5f);
  Tracked<uint8_t> record(w->layout->size);
  auto done = static_cast<int32_t>(w->record);
  do {
    if (!ReadWhole(w, record.get()) || !TellRecord(w, record.get())) return;
    ++done;
    if (w->options.progress != nullptr) {
      const float fraction = static_cast<float>(done) / static_cast<float>(expected);
      if (!Report(w->options, fraction)) return;
    }
  } while (done <= expected);
}

constexpr InfoField kInfo[] = {
    {"start", InfoForm::kTime, offsetof(UifParams, start_time)},
    {"end", InfoForm::kTime, offsetof(UifParams, time_last_packet), InfoFrom::kPeriods},
    {"interval", InfoForm::kInterval, offsetof(UifParams, interval)},
};

}  // namespace

const RecordType kVoltageQuality = {
    .type = 16,
    .word = "voltage_quality",
    .name = "voltage quality",
    .about =
        "RMS, distortion, flicker and the spectrum of three voltages, an interval a record. The "
        "recording interval chooses one of three layouts for the whole file. An inverter at a "
        "three-phase network (connection 7) counts as line-to-line, unlike in general recordings.",
    .list = "RECORDS",
    .walk = WalkIntervals,
    .companion = true,
    .state = true,
    .harmonics_flag = true,
    .progress = true,
    .choice = &kChoice,
    .line = kInfo,
};

}  // namespace quorvex
