#include "report/limits_file.h"

#include <set>
#include <utility>

#include "shared/json.h"

namespace quorvex::tool {
namespace {

// What is wrong with a part of the file, in words.
struct Wrong {
  std::string text;
};

const Json& Member(const Json& object, const char* name, const std::string& where) {
  if (!object.is_object()) throw Wrong{where + " is no object"};
  const auto found = object.find(name);
  if (found == object.end()) throw Wrong{where + " has no \"" + name + "\""};
  return *found;
}

double NumberOf(const Json& object, const char* name, const std::string& where) {
  const Json& value = Member(object, name, where);
  if (!value.is_number()) throw Wrong{where + ": \"" + name + "\" is no number"};
  return value.get<double>();
}

std::string TextOf(const Json& object, const char* name, const std::string& where,
                   bool optional = false) {
  if (optional && object.is_object() && !object.contains(name)) return "";
  const Json& value = Member(object, name, where);
  if (!value.is_string()) throw Wrong{where + ": \"" + name + "\" is no text"};
  return value.get<std::string>();
}

const Json& ListOf(const Json& object, const char* name, const std::string& where) {
  const Json& value = Member(object, name, where);
  if (!value.is_array()) throw Wrong{where + ": \"" + name + "\" is no list"};
  return value;
}

// Whether this is an index, and whether its limits are deviations from the nominal value.
bool IsIndex(const std::string& index, bool* around_nominal) {
  *around_nominal = index == "voltage" || index == "frequency";
  const std::string harmonic = "harmonic-";
  if (index.compare(0, harmonic.size(), harmonic) == 0) {
    for (int order = 2; order <= 50; ++order) {
      if (index == harmonic + std::to_string(order)) return true;
    }
    return false;
  }
  const std::set<std::string> others = {"unbalance", "plt", "thd", "signalling"};
  return *around_nominal || others.count(index) != 0;
}

Limit LimitOf(const Json& entry, const std::string& place) {
  Limit limit;
  limit.index = TextOf(entry, "index", place);
  const std::string where = place + " (" + limit.index + ")";
  bool around_nominal = false;
  if (!IsIndex(limit.index, &around_nominal)) {
    throw Wrong{where + " is no index; there are frequency, voltage, unbalance, plt, thd, " +
                "harmonic-2 to harmonic-50 and signalling"};
  }
  limit.needed = NumberOf(entry, "needed", where);
  if (!(limit.needed > 0 && limit.needed <= 1)) {
    throw Wrong{where + ": \"needed\" is a share above 0, at most 1, such as 0.95"};
  }
  // The limit of signalling is the instrument's own.
  if (limit.index != "signalling") limit.high = NumberOf(entry, "high", where);
  if (around_nominal) {
    limit.low = NumberOf(entry, "low", where);
    if (!(limit.low < limit.high)) throw Wrong{where + ": \"low\" is not below \"high\""};
  } else if (limit.index != "signalling" && !(limit.high > 0)) {
    throw Wrong{where + ": \"high\" is not above 0"};
  }
  limit.over = TextOf(entry, "over", where, true);
  limit.source = TextOf(entry, "source", where, true);
  return limit;
}

EventClasses ClassesOf(const Json& entry, const std::string& where) {
  EventClasses classes;
  classes.source = TextOf(entry, "source", where, true);
  for (const Json& value : ListOf(entry, "seconds", where)) {
    if (!value.is_number()) throw Wrong{where + ": \"seconds\" are no numbers"};
    if (!classes.seconds.empty() && value.get<double>() <= classes.seconds.back()) {
      throw Wrong{where + ": \"seconds\" do not ascend"};
    }
    classes.seconds.push_back(value.get<double>());
  }
  for (const Json& row : ListOf(entry, "rows", where)) {
    classes.rows.push_back({TextOf(row, "name", where + ", rows"),
                            NumberOf(row, "from", where + ", rows"),
                            NumberOf(row, "to", where + ", rows")});
  }
  return classes;
}

std::vector<Curve::Point> PointsOf(const Json& entry, const char* name, const std::string& where) {
  std::vector<Curve::Point> points;
  if (!entry.contains(name)) return points;
  for (const Json& point : ListOf(entry, name, where)) {
    const bool pair = point.is_array() && point.size() == 2 && point[0].is_number() &&
                      point[1].is_number() && point[0].get<double>() > 0;
    if (!pair) throw Wrong{where + ": a point is [seconds, per unit]"};
    points.push_back({point[0].get<double>(), point[1].get<double>()});
  }
  return points;
}

Limits ReadLimits(const Json& file, const Limits* otherwise) {
  Limits limits;
  const std::string where = "the file";
  limits.name = TextOf(file, "name", where);
  limits.edition = TextOf(file, "edition", where);
  limits.note = TextOf(file, "note", where, true);
  std::set<std::pair<std::string, double>> known;
  for (const Json& entry : ListOf(file, "limits", where)) {
    const std::string place = "limit " + std::to_string(limits.rows.size() + 1);
    limits.rows.push_back(LimitOf(entry, place));
    const Limit& limit = limits.rows.back();
    if (!known.emplace(limit.index, limit.needed).second) {
      throw Wrong{place + " (" + limit.index + ") is there already for the same share"};
    }
  }
  if (limits.rows.empty()) throw Wrong{"there are no limits"};
  if (file.contains("events") || otherwise == nullptr) {
    const Json& events = Member(file, "events", where);
    limits.dips = ClassesOf(Member(events, "dips", "events"), "events, dips");
    limits.swells = ClassesOf(Member(events, "swells", "events"), "events, swells");
    limits.short_interruption = NumberOf(events, "short_interruption_seconds", "events");
  } else {
    limits.dips = otherwise->dips;
    limits.swells = otherwise->swells;
    limits.short_interruption = otherwise->short_interruption;
  }
  if (file.contains("curves") || otherwise == nullptr) {
    for (const Json& curve : ListOf(file, "curves", where)) {
      const std::string name = TextOf(curve, "name", "a curve");
      limits.curves.push_back({name, TextOf(curve, "note", name, true),
                               PointsOf(curve, "upper", name), PointsOf(curve, "lower", name)});
    }
  } else {
    limits.curves = otherwise->curves;
  }
  return limits;
}

}  // namespace

std::optional<Limits> LimitsOf(const std::string& text, const Limits* otherwise,
                               std::string* problem) {
  try {
    return ReadLimits(Json::parse(text), otherwise);
  } catch (const Wrong& wrong) {
    *problem = wrong.text;
  } catch (const Json::parse_error& error) {
    // Behind the parser's own number of the error.
    const std::string what = error.what();
    const size_t bracket = what.find("] ");
    *problem = "is no JSON: " + (bracket == std::string::npos ? what : what.substr(bracket + 2));
  }
  return std::nullopt;
}

}  // namespace quorvex::tool
