#include "report/summary.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "shared/json.h"

namespace quorvex::tool {
namespace {

Json NumberOrNull(const std::optional<double>& value) {
  return value && std::isfinite(*value) ? Json(AsWritten(*value)) : Json();
}

Json TextOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

Json CellOf(const Cell& cell, const ReportRequest& request) {
  switch (cell.is) {
    case Cell::Is::kNothing:
      break;
    case Cell::Is::kNumber:
      return NumberOrNull(cell.number);
    case Cell::Is::kInteger:
      return cell.integer;
    case Cell::Is::kTime:
      return TextOrNull(TimeOf(cell.integer, request));
    case Cell::Is::kText:
      return cell.text;
  }
  return {};
}

using Sink = std::function<void(const std::string&)>;

// A list, an entry a line.
class List {
 public:
  explicit List(const Sink& to) : to_(to) {}
  void Add(const Json& entry) {
    to_((begun_ ? ",\n  " : "\n  ") +
        Shown(entry.dump(-1, ' ', false, Json::error_handler_t::replace), true));
    begun_ = true;
  }
  void End() { to_(begun_ ? "\n]" : "]"); }

 private:
  const Sink& to_;
  bool begun_ = false;
};

void AddAssessment(const Card& card, const ReportRequest& request, const Sink& to) {
  List list(to);
  for (const Chain& chain : card.chains) {
    Json continued = Json::array();
    for (size_t i = 1; i < chain.recordings.size(); ++i) {
      continued.push_back(NameOf(card, chain.recordings[i]));
    }
    for (const Week& week : chain.assessment.weeks) {
      for (const IndexRow& row : week.rows) {
        list.Add({{"index", row.limit->index},
                  {"channel", row.channel},
                  {"recording", NameOf(card, chain.recordings.front())},
                  {"continued", continued},
                  {"without_time", chain.assessment.without_time},
                  {"from", TimeOf(week.time.from, request)},
                  {"to", TimeOf(week.time.to, request)},
                  {"limit", row.limit_text},
                  {"within", row.within ? Json(*row.within) : Json()},
                  {"needed", row.limit->needed},
                  {"used", row.used},
                  {"flagged", row.flagged},
                  {"verdict", NameOf(row.verdict)},
                  {"value", NumberOrNull(row.value)},
                  {"lowest", NumberOrNull(row.lowest)},
                  {"highest", NumberOrNull(row.highest)},
                  {"unit", TextOrNull(row.unit)},
                  {"source", row.limit->source}});
      }
    }
  }
  list.End();
}

void AddEvents(const Card& card, const ReportRequest& request, const Sink& to) {
  List list(to);
  for (const CardEvents& events : card.events) {
    for (const VoltageEvent& event : events.recorded.events) {
      const bool ended = event.to != kNoTime;
      list.Add({{"time", TimeOf(event.from, request)},
                {"kind", NameOf(event.kind)},
                {"channels", event.channels},
                {"residual_percent", NumberOrNull(event.percent)},
                {"residual_V", NumberOrNull(event.voltage)},
                {"duration_s", ended ? Json(event.seconds()) : Json()},
                {"class", TextOrNull(event.event_class)},
                {"recording", NameOf(card, events.recording)}});
    }
  }
  list.End();
}

void AddListing(const Card& card, const ListedType& type, const ReportRequest& request,
                const Sink& to) {
  List list(to);
  for (const Listing& listing : card.listings) {
    if (listing.type != &type) continue;
    const auto add = [&](const std::vector<Cell>& row) {
      Json entry;
      for (size_t c = 0; c < row.size(); ++c) {
        entry[type.columns[c].key] = CellOf(row[c], request);
      }
      entry["recording"] = NameOf(card, listing.recording);
      list.Add(entry);
    };
    ForEachListed(card.recordings[listing.recording].path, type, request.read, add);
  }
  list.End();
}

void AddRecordings(const Card& card, const ReportRequest& request, const Sink& to) {
  List list(to);
  for (const CardRecording& r : card.recordings) {
    Json entry = JsonOf(r.path, r.recording, r.recording.records);
    entry["instrument"] = TextOrNull(r.instrument);
    entry["serial"] = TextOrNull(r.serial);
    entry["connection"] = TextOrNull(r.connection);
    entry["from"] = TextOrNull(TimeOf(r.time.from, request));
    entry["to"] = TextOrNull(TimeOf(r.time.to, request));
    const bool unread = r.recording.code != kDone;
    entry["worst"] = unread                    ? Json(NameOf(Severity::kError))
                     : r.findings.list.empty() ? Json()
                                               : Json(NameOf(r.findings.worst));
    uint64_t findings = 0;
    for (const uint64_t found : r.findings.found) findings += found;
    entry["findings"] = findings;
    entry["used_for"] = TextOrNull(r.used_for);
    entry["left_out"] = TextOrNull(r.left_out);
    list.Add(entry);
  }
  list.End();
}

void AddLimits(const Limits& limits, const Sink& to) {
  to("{\"name\": " + Json(limits.name).dump() + ", \"edition\": " + Json(limits.edition).dump() +
     ", \"note\": " + Json(limits.note).dump() + ", \"rows\": [");
  List list(to);
  for (const Limit& limit : limits.rows) {
    Json entry = {{"index", limit.index}};
    const bool around = limit.low != 0;
    if (around) entry["low"] = limit.low;
    if (limit.high > 0) entry["high"] = limit.high;
    entry["needed"] = limit.needed;
    entry["over"] = limit.over;
    entry["source"] = limit.source;
    list.Add(entry);
  }
  list.End();
  to("}");
}

}  // namespace

double AsWritten(double value) {
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, static_cast<float>(value));
  double written = value;
  std::from_chars(text, end.ptr, written);
  return written;
}

bool IsAnyOutside(const Card& card) {
  const auto outside = [](const IndexRow& row) { return row.verdict == Verdict::kOutside; };
  for (const Chain& chain : card.chains) {
    for (const Week& week : chain.assessment.weeks) {
      if (std::any_of(week.rows.begin(), week.rows.end(), outside)) return true;
    }
  }
  return false;
}

void PrintSummary(const Card& card, const ReportRequest& request, const Sink& print) {
  print("{\n\"assessment\": [");
  AddAssessment(card, request, print);
  print(",\n\"events\": [");
  AddEvents(card, request, print);
  for (const ListedType& type : ListedTypes()) {
    print(",\n\"" + std::string(type.key) + "\": [");
    AddListing(card, type, request, print);
  }
  print(",\n\"recordings\": [");
  AddRecordings(card, request, print);
  print(",\n\"limits\": ");
  AddLimits(request.limits, print);
  print("\n}\n");
}

}  // namespace quorvex::tool
