// The algebra of facts. Signs are computed sign by sign: the signs of a result are those that some pair of possible
// signs of the operands can give. Exact values come first; one that does not fit leaves class and signs.
#include "qv_solver_list/value_facts.h"

#include <algorithm>
#include <array>
#include <limits>

#include "number/primes_and_roots.h"
#include "qv_solver_list/number_reading.h"

namespace vetro {
namespace {

constexpr sign_class none = sign_class::none;
constexpr sign_class neg = sign_class::negative;
constexpr sign_class zero = sign_class::zero;
constexpr sign_class pos = sign_class::positive;
constexpr sign_class any = sign_class::any;
constexpr std::array<sign_class, 3> single_signs = {neg, zero, pos};

// Rows and columns in the order of single_signs.
using sign_table = std::array<std::array<sign_class, 3>, 3>;
constexpr sign_table signs_of_sum = {{{neg, neg, any}, {neg, zero, pos}, {any, pos, pos}}};
constexpr sign_table signs_of_product = {{{pos, zero, neg}, {zero, zero, zero}, {neg, zero, pos}}};

constexpr bool includes(sign_class set, sign_class single) { return (set & single) != none; }

constexpr sign_class combined(const sign_table& table, sign_class a, sign_class b) {
  sign_class out = none;
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      if (includes(a, single_signs[i]) && includes(b, single_signs[j])) {
        out = out | table[i][j];
      }
    }
  }
  return out;
}

constexpr sign_class signs_of_magnitude(sign_class s) {
  return (includes(s, zero) ? zero : none) | (includes(s, sign_class::nonzero) ? pos : none);
}

// The signs of a power with a whole exponent of that parity. Zero stays zero: to exponents below 1 it is not raised.
constexpr sign_class signs_of_power(sign_class s, bool odd) { return odd ? s : signs_of_magnitude(s); }

value_facts of_class(number_class c, sign_class s) {
  value_facts out;
  out.smallest = c;
  out.signs = c == number_class::complex ? any : s;
  if (c != number_class::complex && s == zero) {
    out.smallest = number_class::integer;
    out.value = 0;
  }
  return out;
}

number_class wider(number_class a, number_class b) { return std::max(a, b); }

std::optional<std::int64_t> whole_value(const value_facts& a) {
  return a.has_value() ? a.value.to_int64() : std::nullopt;
}

exact magnitude_of(const exact& v) { return v.sign() < 0 ? -v : v; }

value_facts power_with_whole_exponent(const value_facts& base, std::int64_t e) {
  if (!base.real() || (e <= 0 && !base.nonzero())) {
    return {};
  }
  if (e == 0) {
    return facts_of_value(1);
  }
  if (const auto value = base.has_value() ? power(base.value, e) : std::nullopt) {
    return facts_of_value(*value);
  }
  const number_class c = e > 0 ? *base.smallest : wider(*base.smallest, number_class::rational);
  return of_class(c, signs_of_power(base.signs, e % 2 != 0));
}

// The exponent is no integer.
value_facts power_with_fraction(const value_facts& base, const exact& exponent, const root_limits& limits) {
  if (!base.real()) {
    return {};
  }
  if (base.signs == zero && exponent.sign() > 0) {
    return facts_of_value(0);
  }
  if (!base.positive()) {
    return {};
  }
  const auto p = exponent.numerator().to_int64();
  const auto q = exponent.denominator().to_int64();
  const auto root = base.has_value() && p && q ? exact_root(base.value, *q, limits) : std::nullopt;
  const auto value = root ? power(*root, *p) : std::nullopt;
  return value ? facts_of_value(*value) : of_class(number_class::real, pos);
}

// An exponent that is some integer: of either parity.
value_facts power_with_integer(const value_facts& base, const value_facts& exponent) {
  if (!base.real() || !(exponent.positive() || base.nonzero())) {
    return {};
  }
  const number_class c = exponent.nonnegative() ? *base.smallest : wider(*base.smallest, number_class::rational);
  return of_class(c, signs_of_power(base.signs, true) | signs_of_power(base.signs, false));
}

}  // namespace

value_facts facts_of_value(const exact& value) {
  value_facts out;
  if (value.is_known()) {
    out.smallest = value.is_integer() ? number_class::integer : number_class::rational;
    out.signs = single_signs[static_cast<std::size_t>(value.sign() + 1)];
    out.value = value;
  }
  return out;
}

value_facts facts_of_imaginary_unit() {
  value_facts out = of_class(number_class::complex, any);
  out.no_real = true;
  return out;
}

value_facts facts_of_set(const_type set) {
  if (set == PrimeSet) {
    value_facts out = of_class(number_class::integer, pos);
    out.prime = true;
    return out;
  }
  const auto known = number_set_of(set);
  return known ? of_class(known->c, known->s) : value_facts{};
}

bool lies_in(const value_facts& a, const_type set) {
  if (set == PrimeSet) {
    const auto value = whole_value(a);
    return a.prime || (value && solver_exact_is_small_prime_i64(*value));
  }
  const auto wanted = number_set_of(set);
  return wanted && a.in(wanted->c) && (wanted->c == number_class::complex || within(a.signs, wanted->s));
}

value_facts both(const value_facts& a, const value_facts& b) {
  if (!a.known() || !b.known()) {
    return a.known() ? a : b;
  }
  value_facts out = of_class(std::min(*a.smallest, *b.smallest), a.signs & b.signs);
  out.prime = a.prime || b.prime;
  out.no_real = a.no_real || b.no_real;
  if (!out.has_value()) {
    out.value = a.has_value() ? a.value : b.value;
  }
  return out;
}

value_facts negated(const value_facts& a) {
  if (a.has_value()) {
    return facts_of_value(-a.value);
  }
  if (!a.known()) {
    return {};
  }
  value_facts out = of_class(*a.smallest, mirrored(a.signs));
  out.no_real = a.no_real;
  return out;
}

value_facts magnitude(const value_facts& a) {
  if (!a.real()) {
    return {};
  }
  return a.has_value() ? facts_of_value(magnitude_of(a.value)) : of_class(*a.smallest, signs_of_magnitude(a.signs));
}

value_facts sum(const value_facts& a, const value_facts& b) {
  if (!a.known() || !b.known()) {
    return {};
  }
  if (const exact value = a.value + b.value; value.is_known()) {
    return facts_of_value(value);
  }
  return of_class(wider(*a.smallest, *b.smallest), combined(signs_of_sum, a.signs, b.signs));
}

value_facts difference(const value_facts& a, const value_facts& b) { return sum(a, negated(b)); }

value_facts product(const value_facts& a, const value_facts& b) {
  if (!a.known() || !b.known()) {
    return {};
  }
  if (const exact value = a.value * b.value; value.is_known()) {
    return facts_of_value(value);
  }
  return of_class(wider(*a.smallest, *b.smallest), combined(signs_of_product, a.signs, b.signs));
}

value_facts quotient(const value_facts& a, const value_facts& b) {
  if (!a.known() || !b.nonzero()) {
    return {};
  }
  if (const exact value = a.value / b.value; value.is_known()) {
    return facts_of_value(value);
  }
  const number_class c = wider(wider(*a.smallest, *b.smallest), number_class::rational);
  return of_class(c, combined(signs_of_product, a.signs, b.signs));
}

value_facts remainder(const value_facts& a, const value_facts& b) {
  if (!a.in(number_class::integer) || !b.in(number_class::integer) || !b.nonzero()) {
    return {};
  }
  if (a.has_value() && b.has_value()) {
    const exact whole = floor(magnitude_of(a.value) / magnitude_of(b.value));
    const exact rest = magnitude_of(a.value) - whole * magnitude_of(b.value);
    return facts_of_value(a.value.sign() < 0 ? -rest : rest);
  }
  return of_class(number_class::integer, any);
}

value_facts power(const value_facts& base, const value_facts& exponent, const root_limits& limits) {
  if (const auto whole = whole_value(exponent)) {
    return power_with_whole_exponent(base, *whole);
  }
  if (exponent.has_value() && !exponent.value.is_integer()) {
    return power_with_fraction(base, exponent.value, limits);
  }
  if (exponent.in(number_class::integer)) {
    return power_with_integer(base, exponent);
  }
  return base.positive() && exponent.real() ? of_class(number_class::real, pos) : value_facts{};
}

value_facts root(const value_facts& index, const value_facts& radicand, const root_limits& limits) {
  if (!radicand.real()) {
    return {};
  }
  if (!index.has_value()) {
    const bool known = index.in(number_class::integer) && index.positive() && radicand.nonnegative();
    return known ? of_class(number_class::real, radicand.signs) : value_facts{};
  }
  const auto n = whole_value(index);
  if (!n || *n < 1 || (*n % 2 == 0 && !radicand.nonnegative())) {
    return {};
  }
  if (const auto value = radicand.has_value() ? exact_root(radicand.value, *n, limits) : std::nullopt) {
    return facts_of_value(*value);
  }
  return of_class(*n == 1 ? *radicand.smallest : number_class::real, radicand.signs);
}

std::optional<exact> exact_root(const exact& radicand, std::int64_t index, const root_limits& limits) {
  if (!radicand.is_known() || index < 1 || (limits.index > 0 && index > limits.index)) {
    return std::nullopt;
  }
  const exact size = magnitude_of(radicand);
  if (limits.component > 0 && (size.numerator() > limits.component || size.denominator() > limits.component)) {
    return std::nullopt;
  }
  constexpr std::int64_t greatest = std::numeric_limits<std::uint32_t>::max();
  if (index > greatest && !size.is_zero() && !size.is_one()) {
    return std::nullopt;
  }
  // Of 0 and 1 every root is the same, of the same parity of the index.
  return root(radicand, static_cast<std::uint32_t>(index > greatest ? index % 2 + 2 : index));
}

value_facts apply(oper_type oper, const value_facts& a, const root_limits& limits) {
  switch (oper) {
    case Sqrt:
      return root(facts_of_value(2), a, limits);
    case Neg:
      return negated(a);
    case Abs:
      return magnitude(a);
    default:
      return {};
  }
}

value_facts apply(oper_type oper, const value_facts& a, const value_facts& b, const root_limits& limits) {
  switch (oper) {
    case Plus:
      return sum(a, b);
    case Minus:
      return difference(a, b);
    case Mult:
      return product(a, b);
    case Div:
    case Frac:
      return quotient(a, b);
    case Mod:
      return remainder(a, b);
    case Power:
      return power(a, b, limits);
    case Sqrt:
    case Sqrtn:
      return root(a, b, limits);
    default:
      return {};
  }
}

std::optional<sign_class> signs_admitted(pred_type pred) {
  if (!is_order_relation(pred)) {
    return std::nullopt;
  }
  sign_class out = none;
  for (int order = -1; order <= 1; ++order) {
    if (holds(pred, order)) {
      out = out | single_signs[static_cast<std::size_t>(order + 1)];
    }
  }
  return out;
}

value_facts facts_of_constant(term_ptr constant) {
  if (constant->has_meta()) {
    return {};
  }
  switch (constant->constant()) {
    case Integer:
    case Decimal:
      return facts_of_value(number_literal(constant).value_or(exact::beyond()));
    case E:
    case Pi:
      return of_class(number_class::real, pos);
    case I:
      return facts_of_imaginary_unit();
    default:
      return {};
  }
}

}  // namespace vetro
