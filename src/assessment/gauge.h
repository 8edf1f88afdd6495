// One index of one channel over one week: gathers its values and says how many are within a limit.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace quorvex {

// The least and the most that are within; both are, as recorded values are floats, the nearest
// floats.
struct Band {
  float low, high;
  float middle;  // what deviations are measured from

  bool Contains(float value) const { return value >= low && value <= high; }
  // How much of the way to a limit a value has gone: at most 1 for what is within.
  double Reach(float value) const;
};

class Gauge {
 public:
  // Intervals shorter than a window are put together: `parts` of them make one, by the root of the
  // mean of their squares. A window that lacks one is none.
  Gauge() = default;
  explicit Gauge(uint32_t parts) : parts_(parts) {}

  // The value of an interval in a window; windows come in ascending order. NaN and what no float
  // can be is no value. What is flagged is left out, and counted.
  void Take(int64_t window, double value, bool flagged) {
    if (window != window_) Close();
    window_ = window;
    flagged_window_ = flagged_window_ || flagged;
    if (!(std::abs(value) <= kMost)) return;
    ++got_;
    squares_ += value * value;
    last_ = value;
  }
  // The values so far; nothing may be taken any more.
  const std::vector<float>& Values() {
    Close();
    window_ = kNone;
    return values_;
  }
  uint64_t flagged() const { return flagged_; }
  // Windows that are there, flagged or not.
  uint64_t present() const { return values_.size() + flagged_; }

  // The value that the share `needed` of all values does not go beyond; there must be one.
  float ValueAt(double needed, const Band& band);
  uint64_t Within(const Band& band);

 private:
  static constexpr int64_t kNone = INT64_MIN;
  static constexpr double kMost = std::numeric_limits<float>::max();
  void Close() {
    if (flagged_window_) {
      ++flagged_;
    } else if (got_ == parts_) {
      // What is not put together stays as it is.
      const double mean = parts_ == 1 ? last_ : std::sqrt(squares_ / parts_);
      values_.push_back(static_cast<float>(mean));
    }
    got_ = 0;
    squares_ = 0;
    flagged_window_ = false;
  }

  uint32_t parts_ = 1;
  int64_t window_ = kNone;
  uint32_t got_ = 0;
  bool flagged_window_ = false;
  double squares_ = 0, last_ = 0;
  std::vector<float> values_;
  uint64_t flagged_ = 0;
};

// The value at this share of some values, the lowest first.
float Quantile(std::vector<float> values, double share);

}  // namespace quorvex
