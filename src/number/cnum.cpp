// Exact rational arithmetic within 64 bits. Products are formed in 128 bits, where they cannot overflow.
#include "number/cnum.h"

#include <limits>
#include <numeric>

namespace vetro {
namespace {

constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();

bool fits(wide_int value) { return value >= least && value <= greatest; }

std::uint64_t magnitude(std::int64_t value) {
  return value < 0 ? ~static_cast<std::uint64_t>(value) + 1 : static_cast<std::uint64_t>(value);
}

// The one normaliser: reduced, the sign in the numerator.
cnum cnum_reduce(std::int64_t num, std::int64_t den) {
  if (den == 0) {
    return cnum_nan();
  }
  if (num == 0) {
    return cnum_from_int(0);
  }
  std::uint64_t n = magnitude(num);
  std::uint64_t d = magnitude(den);
  if (d != 1) {
    const std::uint64_t divisor = std::gcd(n, d);
    n /= divisor;
    d /= divisor;
  }
  constexpr auto limit = static_cast<std::uint64_t>(greatest);
  const bool negative = (num < 0) != (den < 0);
  if (d > limit || n > limit + (negative ? 1 : 0)) {
    return cnum_nan();
  }
  return {static_cast<std::int64_t>(negative ? ~n + 1 : n), static_cast<std::int64_t>(d)};
}

cnum reduce_wide(wide_int num, wide_int den) {
  return fits(num) && fits(den) ? cnum_reduce(static_cast<std::int64_t>(num), static_cast<std::int64_t>(den))
                                : cnum_nan();
}

cnum add_scaled(const cnum& a, const cnum& b, int sign) {
  if (!cnum_is_finite(a) || !cnum_is_finite(b)) {
    return cnum_nan();
  }
  const wide_int num = wide_int{a.num} * b.den + sign * (wide_int{b.num} * a.den);
  return reduce_wide(num, wide_int{a.den} * b.den);
}

bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Reads the digits at the front of text into value; false when the value leaves its bound.
bool take_digits(std::string_view& text, std::int64_t& value, std::size_t& count) {
  for (; !text.empty() && is_digit(text.front()); text.remove_prefix(1), ++count) {
    const int digit = text.front() - '0';
    if (value > (greatest - digit) / 10) {
      return false;
    }
    value = value * 10 + digit;
  }
  return true;
}

}  // namespace

cnum cnum_from_frac(std::int64_t num, std::int64_t den) { return cnum_reduce(num, den); }

cnum cnum_from_decimal_str(std::string_view text) {
  while (!text.empty() && is_space(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && is_space(text.back())) {
    text.remove_suffix(1);
  }
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  std::int64_t whole = 0;
  std::int64_t part = 0;
  std::int64_t scale = 1;
  std::size_t digits = 0;
  std::size_t places = 0;
  if (!take_digits(text, whole, digits)) {
    return cnum_nan();
  }
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    if (!take_digits(text, part, places)) {
      return cnum_nan();
    }
  }
  if (digits + places == 0 || !text.empty()) {
    return cnum_nan();
  }
  for (std::size_t i = 0; i < places; ++i) {
    if (scale > greatest / 10) {
      return cnum_nan();
    }
    scale *= 10;
  }
  const wide_int value = wide_int{whole} * scale + part;
  return reduce_wide(negative ? -value : value, scale);
}

bool cnum_is_int(const cnum& a, std::int64_t* out) {
  if (a.den != 1) {
    return false;
  }
  if (out != nullptr) {
    *out = a.num;
  }
  return true;
}

int cnum_cmp(const cnum& a, const cnum& b) {
  if (!cnum_is_finite(a) || !cnum_is_finite(b)) {
    return static_cast<int>(!cnum_is_finite(a)) - static_cast<int>(!cnum_is_finite(b));
  }
  const wide_int left = wide_int{a.num} * b.den;
  const wide_int right = wide_int{b.num} * a.den;
  return left < right ? -1 : static_cast<int>(left > right);
}

cnum cnum_neg(const cnum& a) { return !cnum_is_finite(a) || a.num == least ? cnum_nan() : cnum{-a.num, a.den}; }

cnum cnum_add(const cnum& a, const cnum& b) { return add_scaled(a, b, 1); }

cnum cnum_sub(const cnum& a, const cnum& b) { return add_scaled(a, b, -1); }

cnum cnum_mul(const cnum& a, const cnum& b) {
  if (!cnum_is_finite(a) || !cnum_is_finite(b)) {
    return cnum_nan();
  }
  return reduce_wide(wide_int{a.num} * b.num, wide_int{a.den} * b.den);
}

cnum cnum_div(const cnum& a, const cnum& b) {
  if (!cnum_is_finite(a) || !cnum_is_finite(b) || b.num == 0) {
    return cnum_nan();
  }
  return reduce_wide(wide_int{a.num} * b.den, wide_int{a.den} * b.num);
}

// The common divisor of the denominators is all that the sum can be reduced by. Below 2^127 nothing overflows.
cnum cnum_add_reduced(const cnum& a, const cnum& b) {
  if (!cnum_is_finite(a) || !cnum_is_finite(b)) {
    return cnum_nan();
  }
  if (std::int64_t sum = 0; a.den == 1 && b.den == 1) {
    return __builtin_add_overflow(a.num, b.num, &sum) ? cnum_nan() : cnum_from_int(sum);
  }
  const std::int64_t divisor = a.den == 1 || b.den == 1 ? 1 : std::gcd(a.den, b.den);
  const wide_int num = wide_int{a.num} * (b.den / divisor) + wide_int{b.num} * (a.den / divisor);
  if (num == 0) {
    return cnum_from_int(0);
  }
  const std::int64_t common = divisor == 1 ? 1 : std::gcd(static_cast<std::int64_t>(num % divisor), divisor);
  return reduce_wide(num / common, wide_int{a.den / divisor} * (b.den / common));
}

cnum cnum_mul_reduced(const cnum& a, const cnum& b) {
  if (!cnum_is_finite(a) || !cnum_is_finite(b)) {
    return cnum_nan();
  }
  if (std::int64_t product = 0; a.den == 1 && b.den == 1) {
    return __builtin_mul_overflow(a.num, b.num, &product) ? cnum_nan() : cnum_from_int(product);
  }
  const cnum left = cnum_reduce(a.num, b.den);
  const cnum right = cnum_reduce(b.num, a.den);
  return reduce_wide(wide_int{left.num} * right.num, wide_int{left.den} * right.den);
}

cnum cnum_div_reduced(const cnum& a, const cnum& b) {
  return cnum_is_finite(b) && b.num != 0 && b.num != least
             ? cnum_mul_reduced(a, b.num < 0 ? cnum{-b.den, -b.num} : cnum{b.den, b.num})
             : cnum_div(a, b);
}

cnum cnum_power(cnum base, std::uint64_t exponent) {
  cnum result = cnum_from_int(1);
  while (exponent > 0 && cnum_is_finite(result)) {
    if ((exponent & 1U) != 0) {
      result = cnum_mul(result, base);
    }
    exponent >>= 1U;
    if (exponent > 0) {
      base = cnum_mul(base, base);
    }
  }
  return result;
}

std::int64_t cnum_floor(const cnum& a) {
  const std::int64_t quotient = a.num / a.den;
  return a.num < 0 && a.num % a.den != 0 ? quotient - 1 : quotient;
}

std::string cnum_to_string(const cnum& a) {
  if (!cnum_is_finite(a)) {
    return "nan";
  }
  std::string text = std::to_string(a.num);
  if (a.den != 1) {
    text += '/';
    text += std::to_string(a.den);
  }
  return text;
}

}  // namespace vetro
