// What a network is judged by. All of it is data with an edition, handed in by the caller: other
// networks and later editions have other figures.
#pragma once

#include <string>
#include <vector>

namespace quorvex {

// One limit of an index. Of a voltage and a frequency `low` and `high` are deviations from the
// nominal value in percent; of the others `high` is the most in the index's own unit, and there is
// no `low`.
struct Limit {
  std::string index;  // "voltage", "harmonic-5"
  double low = 0, high = 0;
  double needed = 0;   // the share of intervals that must be within: 0.95
  std::string over;    // the time that the share is of, in words
  std::string source;  // where it comes from, and how certain that is
};

// Classes of events by residual voltage and duration.
struct EventClasses {
  struct Row {
    std::string name;  // "A"; its classes are A1, A2 and so on
    double from, to;   // percent of the nominal voltage, `to` not included
  };
  std::vector<Row> rows;
  std::vector<double> seconds;  // where each column ends; the first begins at 10 ms
  std::string source;
};

// A curve of the plot of events: points of seconds and of voltage per unit.
struct Curve {
  struct Point {
    double seconds, per_unit;
  };
  std::string name, note;
  std::vector<Point> upper, lower;
};

struct Limits {
  std::string name, edition, note;
  std::vector<Limit> rows;
  EventClasses dips, swells;
  double short_interruption = 0;  // seconds; longer ones are long
  std::vector<Curve> curves;
};

}  // namespace quorvex
