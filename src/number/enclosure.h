// Real functions with bounds: what a value between two numbers is mapped to lies between the two that are given back.
#pragma once

#include <optional>

#include "number/exact.h"

namespace vetro {

// All values from low / 2^bits to high / 2^bits, for integers low and high and the bits of the arithmetic that made it.
struct enclosure {
  exact low;
  exact high;
};

// Arithmetic with a fixed number of binary digits behind the point. An operation gives nothing where some value in its
// operands has no result, or one beyond all limits; it may also give nothing where bounds are too wide to tell.
class enclosure_arithmetic {
 public:
  using result = std::optional<enclosure>;

  explicit enclosure_arithmetic(unsigned bits);

  enclosure number(const exact& value) const;
  enclosure pi();

  enclosure negated(const enclosure& a) const { return {-a.high, -a.low}; }
  result sum(const enclosure& a, const enclosure& b) const;
  result product(const enclosure& a, const enclosure& b) const;
  result quotient(const enclosure& a, const enclosure& b) const;
  result power(const enclosure& base, std::int64_t exponent) const;
  result root(const enclosure& a, std::int64_t index) const;  // of a negative number for an odd index only
  result magnitude(const enclosure& a) const;
  result exp(const enclosure& a);
  result ln(const enclosure& a);
  result arctan(const enclosure& a);
  result sin(const enclosure& a);
  result cos(const enclosure& a);

  // -1 or 1 where all values have that sign, 0 where that is not known.
  static int sign(const enclosure& a) { return a.low.sign() > 0 ? 1 : a.high.sign() < 0 ? -1 : 0; }

 private:
  result checked(enclosure a) const;
  result scaled(const exact& low, const exact& high) const;
  enclosure point(const exact& mantissa) const { return {mantissa, mantissa}; }
  exact floor_root(const exact& mantissa, std::int64_t index) const;
  result exp_at(const exact& mantissa);
  result ln_at(const exact& mantissa);
  result area_tangent(const enclosure& a) const;
  result arctan_at(const exact& mantissa);
  result quarter_turned(const enclosure& a, int quarters);

  exact scale_;
  exact greatest_;
  std::optional<enclosure> pi_;
  std::optional<enclosure> ln2_;
};

}  // namespace vetro
