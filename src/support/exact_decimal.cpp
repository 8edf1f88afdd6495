#include "support/exact_decimal.h"

#include <algorithm>
#include <bit>

namespace quorvex {
namespace {

constexpr int kDigits = 9;  // of a limb
constexpr uint32_t kBase = 1000000000;
constexpr uint32_t kPowers[kDigits + 1] = {1,      10,      100,      1000,      10000,
                                           100000, 1000000, 10000000, 100000000, kBase};

// Which limb has the digit of 10^place, counted from the limb of the units, and where in it.
struct Place {
  int limb;
  uint32_t power;
};
Place PlaceOf(int place) {
  const int limb = place >= 0 ? place / kDigits : -((-place + kDigits - 1) / kDigits);
  return {limb, kPowers[place - limb * kDigits]};
}

}  // namespace

ExactDecimal::ExactDecimal(double value) : first_(kWhole), end_(kWhole) {
  const auto bits = std::bit_cast<uint64_t>(value);
  uint64_t mantissa = bits & ((uint64_t{1} << 52) - 1);
  const int biased = static_cast<int>(bits >> 52 & 0x7FF);
  if (biased != 0) mantissa |= uint64_t{1} << 52;
  int exponent = std::max(biased, 1) - 1075;
  for (; mantissa != 0; mantissa /= kBase) {
    limbs_[--first_] = static_cast<uint32_t>(mantissa % kBase);
  }
  // Doublings, as many at once as 64 bits have room for.
  while (exponent > 0) {
    const int step = std::min(exponent, 29);
    uint64_t carry = 0;
    for (int i = end_ - 1; i >= first_; --i) {
      carry += uint64_t{limbs_[i]} << step;
      limbs_[i] = static_cast<uint32_t>(carry % kBase);
      carry /= kBase;
    }
    if (carry != 0) limbs_[--first_] = static_cast<uint32_t>(carry);
    exponent -= step;
  }
  // Halvings: the base has nine factors of two.
  while (exponent < 0) {
    const int step = std::min(-exponent, kDigits);
    const uint32_t part = kBase >> step;
    uint32_t carry = 0;
    for (int i = first_; i < end_; ++i) {
      const uint32_t rest = limbs_[i] & ((1U << step) - 1);
      limbs_[i] = (limbs_[i] >> step) + carry;
      carry = rest * part;
    }
    if (carry != 0) limbs_[end_++] = carry;
    if (first_ < end_ && limbs_[first_] == 0) ++first_;
    exponent += step;
  }
}

uint32_t ExactDecimal::LimbAt(int index) const {
  return index >= first_ && index < end_ ? limbs_[index] : 0;
}

int ExactDecimal::Exponent() const {
  if (first_ >= end_) return 0;
  const auto above = std::upper_bound(kPowers, kPowers + kDigits, limbs_[first_]);
  return (kWhole - 1 - first_) * kDigits + static_cast<int>(above - kPowers) - 1;
}

uint32_t ExactDecimal::DigitAt(int place) const {
  const auto [limb, power] = PlaceOf(place);
  return LimbAt(kWhole - 1 - limb) / power % 10;
}

bool ExactDecimal::RoundsUp(int place) const {
  const uint32_t next = DigitAt(place - 1);
  if (next != 5) return next > 5;
  const auto [limb, power] = PlaceOf(place - 1);
  const int index = kWhole - 1 - limb;
  if (LimbAt(index) % power != 0) return true;
  for (int i = std::max(index + 1, first_); i < end_; ++i) {
    if (limbs_[i] != 0) return true;
  }
  return DigitAt(place) % 2 != 0;
}

}  // namespace quorvex
