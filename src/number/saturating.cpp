// Exact results are formed in 128 bits: operands of 63 bits and a sign give numerators and denominators below 2^127.
// Sums and products of reduced fractions are reduced by common divisors of the operands, so that no 128-bit divisor is
// ever looked for.
#include "number/saturating.h"

#include <algorithm>
#include <numeric>
#include <optional>

#include "number/cnum.h"

namespace vetro {
namespace {

constexpr std::uint64_t greatest_positive = std::uint64_t{INT64_MAX};
constexpr std::uint64_t greatest_negative = greatest_positive + 1;

std::uint64_t magnitude(std::int64_t x) {
  return x < 0 ? ~static_cast<std::uint64_t>(x) + 1 : static_cast<std::uint64_t>(x);
}

sat_dir opposite(sat_dir dir) { return dir == SAT_FOR_LOWER ? SAT_FOR_UPPER : SAT_FOR_LOWER; }

rational widest(sat_dir dir) { return dir == SAT_FOR_LOWER ? rat_neg_inf : rat_pos_inf; }

rational infinity_of_sign(int s) { return s > 0 ? rat_pos_inf : rat_neg_inf; }

// A reduced fraction of any sign; den is not 0.
struct wide_fraction {
  bool negative;
  wide_uint num;
  wide_uint den;
};

// The best fraction on one side of num/den within the two limits. num/den is reduced, not above most_num, and does not
// fit itself. The convergents of the continued fraction close in from both sides; the first step that leaves the limits
// is made as far as it fits, and then nothing better is left on either side.
struct fraction {
  std::uint64_t num;
  std::uint64_t den;
};
fraction rounded(wide_uint num, wide_uint den, bool up, std::uint64_t most_num, std::uint64_t most_den) {
  fraction near[] = {{static_cast<std::uint64_t>(num / den), 1}, {1, 0}};  // below, above
  wide_uint rest = num % den;
  for (bool above = true;; above = !above) {
    fraction& moved = near[above ? 1 : 0];
    const fraction& fixed = near[above ? 0 : 1];
    const wide_uint steps = den / rest;
    const std::uint64_t by_den = (most_den - moved.den) / fixed.den;
    const std::uint64_t by_num = fixed.num == 0 ? by_den : (most_num - moved.num) / fixed.num;
    const wide_uint possible = std::min(by_den, by_num);
    const auto taken = static_cast<std::uint64_t>(std::min(steps, possible));
    moved.num += taken * fixed.num;
    moved.den += taken * fixed.den;
    if (taken < steps) {
      return near[up ? 1 : 0];
    }
    const wide_uint next = den % rest;
    den = rest;
    rest = next;
  }
}

// The value as a rational; nothing when it lies beyond the 64-bit integers.
std::optional<rational> fitted(const wide_fraction& value, sat_dir dir) {
  const std::uint64_t most = value.negative ? greatest_negative : greatest_positive;
  const wide_uint whole = value.num / value.den;
  if (whole > most || (whole == most && value.num % value.den != 0)) {
    return std::nullopt;
  }
  fraction f{};
  if (value.num <= most && value.den <= greatest_positive) {
    f = {static_cast<std::uint64_t>(value.num), static_cast<std::uint64_t>(value.den)};
  } else {
    const bool up = (dir == SAT_FOR_UPPER) != value.negative;
    f = rounded(value.num, value.den, up, most, greatest_positive);
  }
  const std::uint64_t num = value.negative ? ~f.num + 1 : f.num;
  return rational{RAT_FINITE, static_cast<std::int64_t>(num), static_cast<std::int64_t>(f.den)};
}

rational fitted_or_saturated(const wide_fraction& value, sat_dir dir) {
  return fitted(value, dir).value_or(sat_overflow_by_sign(value.negative ? -1 : 1, dir));
}

// (an/ad) * (bn/bd) in lowest terms; both factors are.
wide_fraction product(std::uint64_t an, std::uint64_t ad, std::uint64_t bn, std::uint64_t bd, bool negative) {
  const std::uint64_t g1 = std::gcd(an, bd);
  const std::uint64_t g2 = std::gcd(bn, ad);
  return {negative, wide_uint{an / g1} * (bn / g2), wide_uint{ad / g2} * (bd / g1)};
}

std::optional<rational> finite_product(const rational& a, const rational& b, sat_dir dir) {
  if (a.num == 0 || b.num == 0) {
    return rat_zero;
  }
  const auto ad = static_cast<std::uint64_t>(a.den);
  const auto bd = static_cast<std::uint64_t>(b.den);
  return fitted(product(magnitude(a.num), ad, magnitude(b.num), bd, (a.num < 0) != (b.num < 0)), dir);
}

// a + sign * b. With g the common divisor of the denominators, the numerator over the least common denominator shares
// no divisor with it but divisors of g.
rational sum(const rational& a, const rational& b, int sign, sat_dir dir) {
  if (rat_is_inf(a) || rat_is_inf(b)) {
    const int left = rat_is_inf(a) ? rat_sign(a) : 0;
    const int right = rat_is_inf(b) ? sign * rat_sign(b) : 0;
    return left * right < 0 ? widest(dir) : infinity_of_sign(left + right);
  }
  const std::int64_t g = std::gcd(a.den, b.den);
  const wide_int num = wide_int{a.num} * (b.den / g) + sign * wide_int{b.num} * (a.den / g);
  if (num == 0) {
    return rat_zero;
  }
  const wide_uint size = num < 0 ? -static_cast<wide_uint>(num) : static_cast<wide_uint>(num);
  const auto common = std::gcd(static_cast<std::int64_t>(size % static_cast<wide_uint>(g)), g);
  const wide_int den = wide_int{a.den / g} * (b.den / common);
  return fitted_or_saturated({num < 0, size / static_cast<wide_uint>(common), static_cast<wide_uint>(den)}, dir);
}

// sign * size^exp for a size at least 0 and exp at least 1; nothing when it lies beyond the 64-bit integers. What is
// multiplied on may be rounded, which keeps it on its side. A product that is too great ends the computation: the size
// is above 1 then, so that the power is too great as well.
std::optional<rational> power_of_size(int sign, rational size, int exp, sat_dir dir) {
  const sat_dir size_dir = sign < 0 ? opposite(dir) : dir;
  rational power{RAT_FINITE, sign, 1};
  for (;;) {
    if (exp % 2 != 0) {
      const auto next = finite_product(power, size, dir);
      if (!next) {
        return std::nullopt;
      }
      power = *next;
    }
    exp /= 2;
    if (exp == 0) {
      return power;
    }
    const auto square = finite_product(size, size, size_dir);
    if (!square) {
      return std::nullopt;
    }
    size = *square;
  }
}

}  // namespace

int rat_cmp(const rational& a, const rational& b) {
  if (rat_is_inf(a) || rat_is_inf(b)) {
    const int left = rat_is_inf(a) ? rat_sign(a) : 0;
    const int right = rat_is_inf(b) ? rat_sign(b) : 0;
    return (left > right) - (left < right);
  }
  const wide_int left = wide_int{a.num} * b.den;
  const wide_int right = wide_int{b.num} * a.den;
  return (left > right) - (left < right);
}

rational sat_overflow_by_sign(int s, sat_dir dir) {
  if (s > 0 && dir == SAT_FOR_LOWER) {
    return rat_i64_max;
  }
  return s < 0 && dir == SAT_FOR_UPPER ? rat_i64_min : widest(dir);
}

rational rat_norm(std::int64_t num, std::int64_t den, sat_dir dir) {
  if (den == 0) {
    return sat_overflow_by_sign((num > 0) - (num < 0), dir);
  }
  const std::uint64_t n = magnitude(num);
  const std::uint64_t d = magnitude(den);
  const std::uint64_t g = std::gcd(n, d);
  return fitted_or_saturated({(num < 0) != (den < 0) && num != 0, n / g, d / g}, dir);
}

rational rat_neg_sat(const rational& x, sat_dir dir) {
  if (rat_is_inf(x)) {
    return infinity_of_sign(-rat_sign(x));
  }
  return fitted_or_saturated({x.num > 0, magnitude(x.num), static_cast<std::uint64_t>(x.den)}, dir);
}

rational rat_add_sat(const rational& a, const rational& b, sat_dir dir) { return sum(a, b, 1, dir); }

rational rat_sub_sat(const rational& a, const rational& b, sat_dir dir) { return sum(a, b, -1, dir); }

rational rat_mul_sat(const rational& a, const rational& b, sat_dir dir) {
  if (rat_is_inf(a) || rat_is_inf(b)) {
    const int sign = rat_sign(a) * rat_sign(b);
    return sign == 0 ? rat_zero : sat_overflow_by_sign(sign, dir);
  }
  return finite_product(a, b, dir).value_or(sat_overflow_by_sign(rat_sign(a) * rat_sign(b), dir));
}

rational rat_div_sat(const rational& a, const rational& b, sat_dir dir) {
  if (rat_is_inf(a)) {
    return rat_is_inf(b) || b.num == 0 ? widest(dir) : sat_overflow_by_sign(rat_sign(a) * rat_sign(b), dir);
  }
  if (rat_is_inf(b)) {
    return rat_zero;
  }
  if (b.num == 0) {
    return widest(dir);
  }
  if (a.num == 0) {
    return rat_zero;
  }
  const auto ad = static_cast<std::uint64_t>(a.den);
  const auto bd = static_cast<std::uint64_t>(b.den);
  return fitted_or_saturated(product(magnitude(a.num), ad, bd, magnitude(b.num), (a.num < 0) != (b.num < 0)), dir);
}

rational rat_abs_sat(const rational& x, sat_dir dir) { return x.num < 0 ? rat_neg_sat(x, dir) : x; }

// Computed on the magnitude, so that all factors are rounded to one side.
rational rat_pow_sat(const rational& x, int exp, sat_dir dir) {
  if (exp == 0) {
    return rat_one;
  }
  const int sign = x.num < 0 && exp % 2 != 0 ? -1 : 1;
  if (rat_is_inf(x)) {
    return infinity_of_sign(sign);
  }
  if (exp == 1) {
    return x;
  }
  const wide_fraction size{false, magnitude(x.num), static_cast<std::uint64_t>(x.den)};
  const auto bounded = fitted(size, sign < 0 ? opposite(dir) : dir);
  const auto power = bounded ? power_of_size(sign, *bounded, exp, dir) : std::nullopt;
  return power.value_or(sat_overflow_by_sign(sign, dir));
}

}  // namespace vetro
