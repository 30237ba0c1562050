// Bounds hold the value, and are tight.
#include "number/enclosure.h"

#include <gtest/gtest.h>

#include <string>

namespace vetro {
namespace {

using result = enclosure_arithmetic::result;
constexpr unsigned bits = 128;

exact decimal(std::string_view text) { return *exact_from_decimal(text); }

// The value to 30 digits lies between the bounds, which differ by less than 2^-100.
void expect_value(const result& bounds, std::string_view digits) {
  const exact scale = *power(exact(2), bits);
  const exact tolerance = decimal("0.000000000000000000000000000002");
  ASSERT_TRUE(bounds.has_value()) << digits;
  EXPECT_TRUE(bounds->low <= bounds->high) << digits;
  EXPECT_TRUE(bounds->low / scale - tolerance <= decimal(digits)) << digits;
  EXPECT_TRUE(decimal(digits) <= bounds->high / scale + tolerance) << digits;
  EXPECT_TRUE((bounds->high - bounds->low) < *power(exact(2), bits - 100)) << digits;
}

TEST(enclosure, functions_at_numbers) {
  enclosure_arithmetic calc(bits);
  const auto at = [&](std::string_view digits) { return calc.number(decimal(digits)); };
  expect_value(calc.pi(), "3.141592653589793238462643383280");
  expect_value(calc.root(at("2"), 2), "1.414213562373095048801688724210");
  expect_value(calc.root(at("-1000"), 3), "-10");
  expect_value(calc.root(at("0.0000001"), 7), "0.1");
  expect_value(calc.power(at("-1.5"), 5), "-7.59375");
  expect_value(calc.power(at("-2"), -4), "0.0625");
  expect_value(calc.exp(at("1")), "2.718281828459045235360287471353");
  expect_value(calc.exp(at("-3.7")), "0.024723526470339391202757382983");
  expect_value(calc.ln(at("10")), "2.302585092994045684017991454684");
  expect_value(calc.ln(at("0.001")), "-6.907755278982137052053974364053");
  expect_value(calc.arctan(at("3")), "1.249045772398254425829917077281");
  expect_value(calc.arctan(at("-0.4")), "-0.380506377112364886303587916810");
  expect_value(calc.sin(at("1")), "0.841470984807896506652502321630");
  expect_value(calc.sin(at("-20")), "-0.912945250727627654376099983846");
  expect_value(calc.cos(at("2")), "-0.416146836547142386997568229501");
  expect_value(calc.cos(at("100")), "0.862318872287683934101938513951");
}

TEST(enclosure, what_has_no_value_has_no_bounds) {
  enclosure_arithmetic calc(bits);
  const enclosure around_zero{-1, 1};
  EXPECT_FALSE(calc.quotient(calc.number(1), around_zero));
  EXPECT_FALSE(calc.ln(around_zero));
  EXPECT_FALSE(calc.ln(calc.number(-2)));
  EXPECT_FALSE(calc.root(calc.number(-4), 2));
  EXPECT_FALSE(calc.root(calc.number(4), 0));
  EXPECT_FALSE(calc.root(around_zero, 3));
  EXPECT_FALSE(calc.power(around_zero, -1));
  EXPECT_FALSE(calc.power(around_zero, 0));
  EXPECT_FALSE(calc.exp(calc.number(1'000'000)));
  EXPECT_FALSE(calc.power(calc.number(3), 1'000'000'000));
  EXPECT_FALSE(calc.sin(calc.number(1'000'000'000)));
}

// Wide bounds hold every value between them.
TEST(enclosure, wide_bounds) {
  enclosure_arithmetic calc(bits);
  const exact scale = *power(exact(2), bits);
  const enclosure wide{-scale, scale * exact(2)};
  for (int i = -10; i <= 20; ++i) {
    const enclosure point = calc.number(exact(i) / exact(10));
    const auto holds = [&](const result& outer, const result& inner) {
      return outer && inner && outer->low <= inner->low && inner->high <= outer->high;
    };
    EXPECT_TRUE(holds(calc.power(wide, 2), calc.power(point, 2)) || i == 0) << i;
    EXPECT_TRUE(holds(calc.power(wide, 3), calc.power(point, 3)) || i == 0) << i;
    EXPECT_TRUE(holds(calc.sin(wide), calc.sin(point))) << i;
    EXPECT_TRUE(holds(calc.exp(wide), calc.exp(point))) << i;
    EXPECT_TRUE(holds(calc.arctan(wide), calc.arctan(point))) << i;
    EXPECT_TRUE(holds(calc.magnitude(wide), calc.magnitude(point))) << i;
  }
}

}  // namespace
}  // namespace vetro
