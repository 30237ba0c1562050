// Power series, cut off where a term is below the last digit, after the argument has been made small by the laws of the
// function. Every step rounds outward, so that the bounds hold whatever the precision; it only decides how wide they
// are.
#include "number/enclosure.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vetro {
namespace {

constexpr std::int64_t most_bits = 4'096;          // of a value before its point
constexpr std::int64_t greatest_exponent = 2'048;  // of e
constexpr std::int64_t greatest_angle = 1'000'000;
constexpr std::int64_t greatest_index = 64;

exact ceiling(const exact& a) { return -floor(-a); }

exact two_to(std::int64_t k) { return power(exact(2), k).value_or(exact::beyond()); }

bool is_tiny(const enclosure& a) { return a.low >= exact(-1) && a.high <= exact(1); }

}  // namespace

enclosure_arithmetic::enclosure_arithmetic(unsigned bits)
    : scale_(two_to(bits)), greatest_(scale_ * two_to(most_bits)) {}

enclosure_arithmetic::result enclosure_arithmetic::checked(enclosure a) const {
  const bool fits = a.low.is_known() && a.high.is_known() && a.high <= greatest_ && -greatest_ <= a.low;
  return fits ? result(std::move(a)) : std::nullopt;
}

enclosure_arithmetic::result enclosure_arithmetic::scaled(const exact& low, const exact& high) const {
  return checked({floor(low), ceiling(high)});
}

enclosure enclosure_arithmetic::number(const exact& value) const {
  return {floor(value * scale_), ceiling(value * scale_)};
}

// ---- Arithmetic.

enclosure_arithmetic::result enclosure_arithmetic::sum(const enclosure& a, const enclosure& b) const {
  return checked({a.low + b.low, a.high + b.high});
}

enclosure_arithmetic::result enclosure_arithmetic::product(const enclosure& a, const enclosure& b) const {
  const std::array all = {a.low * b.low, a.low * b.high, a.high * b.low, a.high * b.high};
  const auto [low, high] = std::minmax_element(all.begin(), all.end());
  return scaled(*low / scale_, *high / scale_);
}

enclosure_arithmetic::result enclosure_arithmetic::quotient(const enclosure& a, const enclosure& b) const {
  if (sign(b) == 0) {
    return std::nullopt;
  }
  const std::array all = {a.low / b.low, a.low / b.high, a.high / b.low, a.high / b.high};
  const auto [low, high] = std::minmax_element(all.begin(), all.end());
  return scaled(*low * scale_, *high * scale_);
}

enclosure_arithmetic::result enclosure_arithmetic::magnitude(const enclosure& a) const {
  if (sign(a) != 0) {
    return a.low.sign() > 0 ? a : negated(a);
  }
  return enclosure{0, std::max(-a.low, a.high)};
}

enclosure_arithmetic::result enclosure_arithmetic::power(const enclosure& base, std::int64_t exponent) const {
  if (exponent < 0) {
    const result below = exponent < -most_bits ? std::nullopt : power(base, -exponent);
    return below ? quotient(point(scale_), *below) : std::nullopt;
  }
  if (exponent == 0) {
    return std::nullopt;  // 0^0
  }
  if (exponent % 2 == 0) {
    const result size = magnitude(base);
    const result square = product(*size, *size);
    return square && exponent > 2 ? power(*square, exponent / 2) : square;
  }
  if (exponent == 1) {
    return base;
  }
  const result even = power(base, exponent - 1);
  return even ? product(*even, base) : std::nullopt;
}

// The greatest integer r with r^index <= mantissa * scale^(index - 1), by Newton's method from above, for a positive
// mantissa. It begins within a factor of 2.
exact enclosure_arithmetic::floor_root(const exact& mantissa, std::int64_t index) const {
  const exact value = mantissa * *vetro::power(scale_, index - 1);
  const exact n = index;
  exact r = scale_;
  while (*vetro::power(r, index) < value) {
    r *= exact(2);
  }
  for (exact half = floor(r / exact(2)); *vetro::power(half, index) > value; half = floor(r / exact(2))) {
    r = half;
  }
  while (true) {
    const exact next = floor((r * (n - exact(1)) + value / *vetro::power(r, index - 1)) / n);
    if (!(next < r)) {
      return r;
    }
    r = next;
  }
}

enclosure_arithmetic::result enclosure_arithmetic::root(const enclosure& a, std::int64_t index) const {
  if (index < 1 || index > greatest_index) {
    return std::nullopt;
  }
  if (a.low.sign() < 0) {
    const result size = index % 2 != 0 && a.high.sign() <= 0 ? root(negated(a), index) : std::nullopt;
    return size ? result(negated(*size)) : std::nullopt;
  }
  const auto lower = [&](const exact& m) { return m.is_zero() ? m : floor_root(m, index); };
  const exact high = lower(a.high);
  const bool whole = *vetro::power(high, index) == a.high * *vetro::power(scale_, index - 1);
  return checked({lower(a.low), whole ? high : high + exact(1)});
}

// ---- Exponentials and logarithms.

// The sum of x^k / k! for |x| up to 1/2, then squared as often as x was halved.
enclosure_arithmetic::result enclosure_arithmetic::exp_at(const exact& mantissa) {
  const exact size = mantissa.sign() < 0 ? -mantissa : mantissa;
  if (size > scale_ * exact(greatest_exponent)) {
    return std::nullopt;
  }
  int halvings = 0;
  exact divisor = 1;
  for (; size / divisor > scale_ / exact(2); divisor *= exact(2)) {
    ++halvings;
  }
  const enclosure x{floor(mantissa / divisor), ceiling(mantissa / divisor)};
  result total = point(scale_);
  result term = total;
  for (std::int64_t k = 1; term && total && !is_tiny(*term); ++k) {
    term = product(*term, x);
    term = term ? scaled(term->low / exact(k), term->high / exact(k)) : std::nullopt;
    total = term ? sum(*total, *term) : std::nullopt;
  }
  total = total ? sum(*total, {-2, 2}) : std::nullopt;
  for (; total && halvings > 0; --halvings) {
    total = product(*total, *total);
  }
  return total;
}

enclosure_arithmetic::result enclosure_arithmetic::exp(const enclosure& a) {
  const result low = exp_at(a.low);
  const result high = low ? exp_at(a.high) : std::nullopt;
  return high ? checked({low->low, high->high}) : std::nullopt;
}

// a + a^3 / 3 + a^5 / 5 + ... for |a| up to 1/2.
enclosure_arithmetic::result enclosure_arithmetic::area_tangent(const enclosure& a) const {
  const result square = product(a, a);
  result total = a;
  result power_of_a = a;
  for (std::int64_t k = 3; square && power_of_a && total && !is_tiny(*power_of_a); k += 2) {
    power_of_a = product(*power_of_a, *square);
    const result term = power_of_a ? scaled(power_of_a->low / exact(k), power_of_a->high / exact(k)) : std::nullopt;
    total = term ? sum(*total, *term) : std::nullopt;
  }
  return square && total && power_of_a ? sum(*total, {-2, 2}) : std::nullopt;
}

// ln(m * 2^k) for m from 3/4 to 3/2 is 2 * artanh((m - 1) / (m + 1)) + k * ln(2).
enclosure_arithmetic::result enclosure_arithmetic::ln_at(const exact& mantissa) {
  std::int64_t doublings = 0;
  exact m = mantissa;
  for (; m > scale_ * exact(3) / exact(2); ++doublings) {
    m /= exact(2);
  }
  for (; m < scale_ * exact(3) / exact(4); --doublings) {
    m *= exact(2);
  }
  const exact ratio = (m - scale_) / (m + scale_) * scale_;
  const result half = area_tangent({floor(ratio), ceiling(ratio)});
  if (!half) {
    return std::nullopt;
  }
  if (!ln2_) {
    const result third = area_tangent(number(exact(1) / exact(3)));
    ln2_ = third ? sum(*third, *third) : std::nullopt;
  }
  const exact k = doublings;
  const exact shift_low = (doublings < 0 ? ln2_->high : ln2_->low) * k;
  const exact shift_high = (doublings < 0 ? ln2_->low : ln2_->high) * k;
  return checked({half->low * exact(2) + shift_low, half->high * exact(2) + shift_high});
}

enclosure_arithmetic::result enclosure_arithmetic::ln(const enclosure& a) {
  const result low = a.low.sign() > 0 ? ln_at(a.low) : std::nullopt;
  const result high = low ? ln_at(a.high) : std::nullopt;
  return high ? checked({low->low, high->high}) : std::nullopt;
}

// ---- Angles.

// arctan(x) is 2 * arctan(x / (1 + sqrt(1 + x^2))), until x is small; then x - x^3 / 3 + x^5 / 5 - ...
enclosure_arithmetic::result enclosure_arithmetic::arctan(const enclosure& a) {
  const result low = arctan_at(a.low);
  const result high = low ? arctan_at(a.high) : std::nullopt;
  return high ? checked({low->low, high->high}) : std::nullopt;
}

enclosure_arithmetic::result enclosure_arithmetic::arctan_at(const exact& mantissa) {
  const enclosure x = point(mantissa);
  const exact size = mantissa.sign() < 0 ? -mantissa : mantissa;
  const result square = product(x, x);
  if (!square) {
    return std::nullopt;
  }
  if (size > scale_ / exact(2)) {
    const result radicand = sum(*square, point(scale_));
    const result length = radicand ? root(*radicand, 2) : std::nullopt;
    const result below = length ? sum(*length, point(scale_)) : std::nullopt;
    const result smaller = below ? quotient(x, *below) : std::nullopt;
    const result half = smaller ? arctan(*smaller) : std::nullopt;
    return half ? sum(*half, *half) : std::nullopt;
  }
  result total = x;
  result power_of_x = x;
  for (std::int64_t k = 3; power_of_x && total && !is_tiny(*power_of_x); k += 2) {
    power_of_x = product(*power_of_x, *square);
    const exact divisor = k % 4 == 3 ? -k : k;
    const result term = power_of_x ? scaled(std::min(power_of_x->low / divisor, power_of_x->high / divisor),
                                            std::max(power_of_x->low / divisor, power_of_x->high / divisor))
                                   : std::nullopt;
    total = term ? sum(*total, *term) : std::nullopt;
  }
  return total && power_of_x ? sum(*total, {-2, 2}) : std::nullopt;
}

// π is 16 * arctan(1/5) - 4 * arctan(1/239).
enclosure enclosure_arithmetic::pi() {
  if (!pi_) {
    const enclosure fifth = *arctan(number(exact(1) / exact(5)));
    const enclosure small = *arctan(number(exact(1) / exact(239)));
    pi_ = enclosure{exact(16) * fifth.low - exact(4) * small.high, exact(16) * fifth.high - exact(4) * small.low};
  }
  return *pi_;
}

// sin(a + quarters * π/2). The angle is brought between -π/4 and π/4; there the series is that of sine or cosine at the
// middle of the bounds, and the function moves no further from that than its argument.
enclosure_arithmetic::result enclosure_arithmetic::quarter_turned(const enclosure& a, int quarters) {
  if (a.high > scale_ * exact(greatest_angle) || a.low < -scale_ * exact(greatest_angle)) {
    return std::nullopt;
  }
  const enclosure full = pi();
  const exact turns = floor(a.low * exact(2) / full.low + exact(1) / exact(2));
  const enclosure shift{(turns.sign() < 0 ? full.high : full.low) * turns / exact(2),
                        (turns.sign() < 0 ? full.low : full.high) * turns / exact(2)};
  const enclosure angle{floor(a.low - shift.high), ceiling(a.high - shift.low)};
  const exact middle = floor((angle.low + angle.high) / exact(2));
  const exact radius = angle.high - middle + exact(1);
  if (radius > scale_) {
    return enclosure{-scale_, scale_};
  }
  const auto quadrant = static_cast<int>(residue(turns + exact(quarters), 4));
  const enclosure x = point(middle);
  const result square = product(x, x);
  result term = quadrant % 2 == 0 ? x : point(scale_);
  result total = term;
  for (std::int64_t k = quadrant % 2 == 0 ? 2 : 1; square && term && total && !is_tiny(*term); k += 2) {
    term = product(*term, *square);
    const exact divisor = -k * (k + 1);
    term = term ? scaled(std::min(term->low / divisor, term->high / divisor),
                         std::max(term->low / divisor, term->high / divisor))
                : std::nullopt;
    total = term ? sum(*total, *term) : std::nullopt;
  }
  total = square && term && total ? sum(*total, {-radius - exact(2), radius + exact(2)}) : std::nullopt;
  return total && quadrant >= 2 ? result(negated(*total)) : total;
}

enclosure_arithmetic::result enclosure_arithmetic::sin(const enclosure& a) { return quarter_turned(a, 0); }

enclosure_arithmetic::result enclosure_arithmetic::cos(const enclosure& a) { return quarter_turned(a, 1); }

}  // namespace vetro
