// Texts of numbers against the C library, which is slower but has been right for longer.
#include "texts/number_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "support/bounded_text.h"
#include "texts/float_texts.h"

namespace quorvex::test {
namespace {

// "%E" in the form that both platforms share: no sign of a library's own for what is no number.
std::string Expected(double value) {
  if (std::isnan(value)) return std::signbit(value) ? "-NAN" : "NAN";
  char text[64];
  std::snprintf(text, sizeof text, "%E", value);
  return text;
}

uint64_t wrong = 0;

// Many floats at once read as each by itself.
void CheckTogether(const std::vector<float>& values) {
  static constexpr char kLine[kCopySize] = "\r\n";
  std::string want;
  for (const float value : values) {
    char text[kLongestNumber];
    want.append(text, FloatText(value, text)).append(kLine);
  }
  std::string got(want.size() + kCopySize + kLongestNumber, '\0');
  const char* end =
      FloatTexts(values.data(), static_cast<uint32_t>(values.size()), {kLine, 2}, got.data());
  got.resize(static_cast<size_t>(end - got.data()));
  if (got == want || ++wrong > 20) return;
  const auto differ = std::mismatch(want.begin(), want.end(), got.begin(), got.end()).first;
  ADD_FAILURE() << "value " << std::count(want.begin(), differ, '\n') << " of " << values.size()
                << " from " << std::bit_cast<uint32_t>(values[0]);
}

std::vector<float> checked;

void Check(uint32_t bits) {
  const auto value = std::bit_cast<float>(bits);
  checked.push_back(value);
  if (checked.size() == 1000) {
    CheckTogether(checked);
    checked.clear();
  }
  char text[kLongestNumber];
  const std::string got(text, FloatText(value, text));
  const std::string want = value == kNoValue ? "-" : Expected(static_cast<double>(value));
  if (got != want && ++wrong < 20)
    ADD_FAILURE() << std::hex << bits << ": " << got << " not " << want;
}

TEST(NumberText, FloatsOfEveryExponent) {
  wrong = 0;
  for (uint32_t sign_and_exponent = 0; sign_and_exponent < 512; ++sign_and_exponent) {
    for (uint32_t shift = 0; shift < 23; ++shift) {
      for (const uint32_t mantissa :
           {0u, 1u << shift, (2u << shift) - 1, 0x7FFFFFu & ~(1u << shift)}) {
        Check(sign_and_exponent << 23 | mantissa);
      }
    }
  }
  EXPECT_EQ(0u, wrong);
}

// A float lies halfway between two texts where its eighth digit is a 5 and nothing follows: with k
// the decimal exponent these are the odd multiples of 2^(k-7), and of 5 where k is 7. There are no
// others, as larger floats are multiples of too many twos. Some thousands of each will do.
TEST(NumberText, Ties) {
  wrong = 0;
  uint64_t ties = 0;
  for (int k = -6; k <= 7; ++k) {
    const double step = k == 7 ? 5 : std::ldexp(1, k - 7);
    const double first = std::floor(std::pow(10.0, k) / step / 2) * 2 + 1;
    const double past = std::pow(10.0, k + 1) / step;
    const double stride = 2 * std::ceil((past - first) / 2 / 8000);
    for (double odd = first; odd < past; odd += stride) {
      const auto value = static_cast<float>(odd * step);
      if (static_cast<double>(value) != odd * step) break;  // more digits than a float has
      Check(std::bit_cast<uint32_t>(value));
      ++ties;
    }
  }
  EXPECT_GT(ties, 40000u);
  EXPECT_EQ(0u, wrong);
}

// All 2^32 floats take half an hour, so this runs by hand only.
TEST(NumberText, DISABLED_EveryFloat) {
  wrong = 0;
  uint32_t bits = 0;
  do Check(bits);
  while (++bits != 0);
  EXPECT_EQ(0u, wrong);
}

// The same of floats together, in a quarter of an hour.
TEST(NumberText, DISABLED_EveryFloatTogether) {
  wrong = 0;
  std::vector<float> values(65536);
  for (uint64_t from = 0; from <= UINT32_MAX; from += values.size()) {
    for (size_t i = 0; i < values.size(); ++i) {
      values[i] = std::bit_cast<float>(static_cast<uint32_t>(from + i));
    }
    CheckTogether(values);
  }
  EXPECT_EQ(0u, wrong);
}

// What has no digits of its own stands between values that have, at every place and in runs of
// every length.
TEST(NumberText, FloatsTogether) {
  wrong = 0;
  const float others[] = {0.0f,        -0.0f,      kNoValue,  INFINITY, -INFINITY, NAN,
                          -NAN,        1e-45f,     -1e-38f,   FLT_MAX,  -FLT_MAX,  FLT_MIN,
                          0.99999995f, 9999999.5f, 0.015625f, -1e10f};
  for (const float other : others) {
    for (size_t count = 1; count < 27; ++count) {
      std::vector<float> values(count, -230.4f);
      values[count - 1] = other;
      CheckTogether(values);
      values[count / 2] = other;
      CheckTogether(values);
    }
  }
  EXPECT_EQ(0u, wrong);
}

TEST(NumberText, RandomFloatsAndDoubles) {
  wrong = 0;
  std::mt19937_64 random(20240307);
  for (int i = 0; i < 300000; ++i) Check(static_cast<uint32_t>(random()));
  EXPECT_EQ(0u, wrong);
  char text[kLongestNumber];
  const auto check = [&](double value) {
    ASSERT_EQ(Expected(value), std::string(text, DoubleText(value, text)));
    if (!std::isfinite(value)) return;
    for (const int decimals : {0, 1, 3}) {
      char want[400], got[400];
      BoundedText(got, sizeof got).PutFixed(value, decimals);
      std::snprintf(want, sizeof want, "%.*f", decimals, value);
      ASSERT_STREQ(want, got);
    }
  };
  for (int i = 0; i < 2000; ++i) {
    check(std::bit_cast<double>(random()));
    check(std::bit_cast<double>(random() >> 12 >> random() % 52));  // denormals
    check(std::ldexp(static_cast<double>(random() >> 11), -static_cast<int>(random() % 110)));
    check(static_cast<double>(random() % 40000) / 16);  // half-way cases of %.*f
    check(std::ldexp(static_cast<double>(random() % 20000000) + 0.5, static_cast<int>(i % 7)));
  }
  for (int exponent = -330; exponent <= 308; ++exponent) {
    const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
    for (const double value : {power, std::nextafter(power, 0.0), 9.9999995 * power}) check(value);
  }
  for (const double value : {0.0, -0.0, 9.9999995, -0.05, 999.95, HUGE_VAL, -HUGE_VAL})
    check(value);
  EXPECT_EQ("-", std::string(text, DoubleText(kNoValueDouble, text)));
  EXPECT_EQ("-1.000000E+37", std::string(text, DoubleText(-1e37, text))) << "not the marker";
}

TEST(NumberText, Seconds) {
  const struct {
    double seconds;
    const char* text;
  } cases[] = {{5.25, "5.25"},
               {12.0, "12.0"},
               {0.0, "0.0"},
               {7.123456, "7.123456"},
               {59.9999999, "59.999999"},  // cut, not rounded
               {0.000001, "0.000001"},
               {10.5, "10.5"},
               {-1.5, "-1.-5"},  // the sign of the rest is inside its width
               {-0.1, "0.-1"},
               {-0.000001, "0.-00001"},
               {kNoValueDouble, "-"},
               {NAN, "0.0"},
               {1e300, "2147483647.0"},
               {-1e300, "-2147483648.0"}};
  for (const auto& c : cases) {
    char text[kLongestNumber];
    EXPECT_EQ(c.text, std::string(text, SecondsText(c.seconds, text)));
  }
}

}  // namespace
}  // namespace quorvex::test
