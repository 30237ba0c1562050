// Arithmetic of exact: in 64 bits by cnum while that works, else on naturals. Every result goes through one normaliser,
// so that a value has one form and is small whenever it can be.
#include "number/exact.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>
#include <utility>

#include "number/limits.h"
#include "number/natural.h"

namespace vetro {
namespace {

std::uint64_t magnitude(std::int64_t value) {
  return value < 0 ? ~static_cast<std::uint64_t>(value) + 1 : static_cast<std::uint64_t>(value);
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

// num/den, reduced, with den at least 1.
struct great_rational {
  bool negative = false;
  natural num;
  natural den;

  static great_rational of(const exact& value) {
    if (value.is_great()) {
      return value.great();
    }
    return {value.num_ < 0, natural_from(magnitude(value.num_)), natural_from(magnitude(value.den_))};
  }

  // The one normaliser; den must not be zero.
  static exact normal(great_rational value) {
    if (!natural_is_one(value.den)) {
      const natural divisor = natural_gcd(value.num, value.den);
      if (!natural_is_one(divisor)) {
        value.num = natural_divide(value.num, divisor).quotient;
        value.den = natural_divide(value.den, divisor).quotient;
      }
    }
    if (const cnum small = value.as_small(); cnum_is_finite(small)) {
      return exact(small);
    }
    if (std::max(natural_bits(value.num), natural_bits(value.den)) > limits::exact_bits) {
      return exact::beyond();
    }
    exact result = exact::beyond();
    result.num_ = word_of(std::make_unique<great_rational>(std::move(value)));
    return result;
  }

  static std::int64_t word_of(std::unique_ptr<great_rational> value) {
    return static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(value.release()));
  }
  static great_rational* at(std::int64_t word) {
    return reinterpret_cast<great_rational*>(static_cast<std::uintptr_t>(word));
  }

  cnum as_small() const {
    constexpr auto greatest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (num.size() > 1 || den.size() > 1 || den.front() > greatest) {
      return cnum_nan();
    }
    const std::uint64_t n = num.empty() ? 0 : num.front();
    if (n > greatest + (negative ? 1 : 0)) {
      return cnum_nan();
    }
    return {static_cast<std::int64_t>(negative ? ~n + 1 : n), static_cast<std::int64_t>(den.front())};
  }
};

const great_rational& exact::great() const { return *great_rational::at(num_); }

void exact::own_copy() { num_ = great_rational::word_of(std::make_unique<great_rational>(great())); }

void exact::release() { const std::unique_ptr<great_rational> owned(great_rational::at(num_)); }

bool exact::great_is_integer() const { return natural_is_one(great().den); }

int exact::great_sign() const { return great().negative ? -1 : 1; }

std::size_t exact::great_limbs() const { return great().num.size() + great().den.size(); }

exact exact::numerator() const {
  if (!is_great()) {
    return den_ == 0 ? beyond() : exact(num_);
  }
  return great_rational::normal({great().negative, great().num, natural_from(1)});
}

exact exact::denominator() const {
  if (!is_great()) {
    return den_ == 0 ? beyond() : exact(den_);
  }
  return great_rational::normal({false, great().den, natural_from(1)});
}

std::size_t exact::hash() const {
  std::uint64_t hash = static_cast<std::uint64_t>(num_) * 31 + static_cast<std::uint64_t>(den_);
  if (is_great()) {
    hash = great().negative ? 1 : 2;
    for (const natural* part : {&great().num, &great().den}) {
      for (const std::uint64_t limb : *part) {
        hash = (hash ^ limb) * 0x9e3779b97f4a7c15ULL;
      }
    }
  }
  hash *= 0x9e3779b97f4a7c15ULL;
  return static_cast<std::size_t>(hash ^ (hash >> 29U));
}

exact exact::operator-() const {
  if (!is_known()) {
    return *this;
  }
  if (!is_great() && num_ != std::numeric_limits<std::int64_t>::min()) {
    return exact(cnum{-num_, den_});
  }
  great_rational opposite = great_rational::of(*this);
  opposite.negative = !opposite.negative;
  return great_rational::normal(std::move(opposite));
}

exact exact::add(const exact& a, const exact& b) {
  if (!a.is_known() || !b.is_known()) {
    return beyond();
  }
  if (const cnum small = cnum_add_reduced(a.small(), b.small()); cnum_is_finite(small)) {
    return exact(small);
  }
  const great_rational left = great_rational::of(a);
  const great_rational right = great_rational::of(b);
  const natural l = natural_multiply(left.num, right.den);
  const natural r = natural_multiply(right.num, left.den);
  const natural den = natural_multiply(left.den, right.den);
  if (left.negative == right.negative) {
    return great_rational::normal({left.negative, natural_add(l, r), den});
  }
  const bool left_greater = natural_compare(l, r) >= 0;
  return great_rational::normal({left_greater ? left.negative : right.negative,
                                 left_greater ? natural_subtract(l, r) : natural_subtract(r, l), den});
}

exact exact::multiply(const exact& a, const exact& b) {
  if (!a.is_known() || !b.is_known()) {
    return beyond();
  }
  if (const cnum small = cnum_mul_reduced(a.small(), b.small()); cnum_is_finite(small)) {
    return exact(small);
  }
  const great_rational left = great_rational::of(a);
  const great_rational right = great_rational::of(b);
  return great_rational::normal(
      {left.negative != right.negative, natural_multiply(left.num, right.num), natural_multiply(left.den, right.den)});
}

exact exact::divide(const exact& a, const exact& b) {
  if (!a.is_known() || !b.is_known() || b.is_zero()) {
    return beyond();
  }
  if (const cnum small = cnum_div_reduced(a.small(), b.small()); cnum_is_finite(small)) {
    return exact(small);
  }
  const great_rational left = great_rational::of(a);
  const great_rational right = great_rational::of(b);
  return great_rational::normal(
      {left.negative != right.negative, natural_multiply(left.num, right.den), natural_multiply(left.den, right.num)});
}

std::partial_ordering exact::compare(const exact& a, const exact& b) {
  if (!a.is_known() || !b.is_known()) {
    return std::partial_ordering::unordered;
  }
  if (!a.is_great() && !b.is_great()) {
    return cnum_cmp(a.small(), b.small()) <=> 0;
  }
  if (a.sign() != b.sign()) {
    return a.sign() <=> b.sign();
  }
  const great_rational left = great_rational::of(a);
  const great_rational right = great_rational::of(b);
  const int order = natural_compare(natural_multiply(left.num, right.den), natural_multiply(right.num, left.den));
  return (left.negative ? -order : order) <=> 0;
}

namespace {

std::optional<exact> if_known(exact value) { return value.is_known() ? std::optional(std::move(value)) : std::nullopt; }

// The index-th root of n, when n is the index-th power of a natural number.
std::optional<natural> whole_root(const natural& n, std::uint32_t index) {
  natural root = natural_root(n, index);
  return natural_compare(natural_power(root, index), n) == 0 ? std::optional(std::move(root)) : std::nullopt;
}

}  // namespace

std::optional<exact> quotient(const exact& a, const exact& b) { return if_known(a / b); }

std::optional<exact> power(const exact& base, std::int64_t exponent) {
  if (!base.is_known() || (base.is_zero() && exponent < 0)) {
    return std::nullopt;
  }
  if (exponent == 0) {
    return exact(1);
  }
  const std::uint64_t times = magnitude(exponent);
  const great_rational value = great_rational::of(base);
  const std::size_t bits = std::max(natural_bits(value.num), natural_bits(value.den));
  if (bits > 1 && times > limits::exact_bits / (bits - 1)) {
    return std::nullopt;
  }
  const bool trivial = bits <= 1;  // 0, 1 and -1
  const std::uint64_t steps = trivial ? 1 : times;
  exact result = great_rational::normal(
      {value.negative && times % 2 != 0, natural_power(value.num, steps), natural_power(value.den, steps)});
  return if_known(exponent < 0 ? exact(1) / result : std::move(result));
}

std::optional<exact> root(const exact& value, std::uint32_t index) {
  if (!value.is_known() || index == 0 || (value.sign() < 0 && index % 2 == 0)) {
    return std::nullopt;
  }
  const great_rational radicand = great_rational::of(value);
  std::optional<natural> num = whole_root(radicand.num, index);
  std::optional<natural> den = num ? whole_root(radicand.den, index) : std::nullopt;
  if (!den) {
    return std::nullopt;
  }
  return great_rational::normal({radicand.negative, std::move(*num), std::move(*den)});
}

exact floor(const exact& value) {
  if (!value.is_known() || value.is_integer()) {
    return value;
  }
  const great_rational parts = great_rational::of(value);
  natural whole = natural_divide(parts.num, parts.den).quotient;
  if (parts.negative) {
    whole = natural_add(whole, natural_from(1));
  }
  return great_rational::normal({parts.negative, std::move(whole), natural_from(1)});
}

exact gcd(const exact& a, const exact& b) {
  const auto x = a.to_int64();
  const auto y = b.to_int64();
  if (x && y && *x != INT64_MIN && *y != INT64_MIN) {
    return std::gcd(*x, *y);
  }
  if (!a.is_integer() || !b.is_integer()) {
    return exact::beyond();
  }
  return great_rational::normal(
      {false, natural_gcd(great_rational::of(a).num, great_rational::of(b).num), natural_from(1)});
}

std::vector<std::uint64_t> magnitude_words(const exact& integer) {
  const natural n = great_rational::of(integer).num;
  return {n.begin(), n.end()};
}

exact exact_from_words(bool negative, std::span<const std::uint64_t> num, std::span<const std::uint64_t> den) {
  return great_rational::normal({negative, natural(num.begin(), num.end()), natural(den.begin(), den.end())});
}

std::uint64_t residue(const exact& integer, std::uint64_t m) {
  if (!integer.is_known()) {
    return 0;
  }
  const auto small = integer.to_int64();
  const std::uint64_t rest = small ? magnitude(*small) % m : natural_residue(great_rational::of(integer).num, m);
  return integer.sign() < 0 && rest != 0 ? m - rest : rest;
}

std::optional<exact> exact_from_decimal(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  if (text.size() > limits::exact_bits) {  // a digit takes at least a bit, unless it is a leading or closing zero
    return std::nullopt;
  }
  const std::size_t point = std::min(text.find('.'), text.size());
  std::string digits(text.substr(0, point));
  const std::size_t places = text.size() - std::min(point + 1, text.size());
  digits += text.substr(text.size() - places);
  if (digits.empty() || !std::all_of(digits.begin(), digits.end(), is_digit)) {
    return std::nullopt;
  }
  return if_known(
      great_rational::normal({negative, natural_from_digits(digits), natural_power(natural_from(10), places)}));
}

cnum to_cnum(const exact& value) { return value.is_known() ? great_rational::of(value).as_small() : cnum_nan(); }

std::string to_string(const exact& value) {
  if (!value.is_known()) {
    return "beyond";
  }
  const great_rational parts = great_rational::of(value);
  std::string text = (parts.negative ? "-" : "") + natural_to_digits(parts.num);
  return natural_is_one(parts.den) ? text : text + "/" + natural_to_digits(parts.den);
}

}  // namespace vetro
