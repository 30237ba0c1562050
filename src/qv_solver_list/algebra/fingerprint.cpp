// Arithmetic modulo a safe prime and modulo the order of its squares.
#include "qv_solver_list/algebra/fingerprint.h"

#include <algorithm>

namespace vetro {
namespace {

// A prime just below 2^bits.
struct modulus {
  std::uint64_t prime;
  unsigned bits;
};

// The greatest prime below 2^61 of the form 2Q + 1 with Q prime.
constexpr modulus value_field{2305843009213691579ULL, 61};
constexpr modulus exponent_field{1152921504606845789ULL, 60};
static_assert(value_field.prime == 2 * exponent_field.prime + 1);

std::uint64_t mix(std::uint64_t hash) {
  hash = (hash ^ (hash >> 30U)) * 0xbf58476d1ce4e5b9ULL;
  hash = (hash ^ (hash >> 27U)) * 0x94d049bb133111ebULL;
  return hash ^ (hash >> 31U);
}

std::uint64_t reduced_once(std::uint64_t a, const modulus& m) { return a >= m.prime ? a - m.prime : a; }

std::uint64_t add(std::uint64_t a, std::uint64_t b, const modulus& m) { return reduced_once(a + b, m); }

std::uint64_t negate(std::uint64_t a, const modulus& m) { return a == 0 ? 0 : m.prime - a; }

// 2^bits is a small number modulo the prime, so that high bits fold onto low ones without a division.
std::uint64_t multiply(std::uint64_t a, std::uint64_t b, const modulus& m) {
  const std::uint64_t low = (std::uint64_t{1} << m.bits) - 1;
  const std::uint64_t gap = low + 1 - m.prime;
  wide_uint product = static_cast<wide_uint>(a) * b;
  product = (product & low) + (product >> m.bits) * gap;
  product = (product & low) + (product >> m.bits) * gap;
  return reduced_once(static_cast<std::uint64_t>(product), m);
}

std::uint64_t power(std::uint64_t base, std::uint64_t exponent, const modulus& m) {
  std::uint64_t result = 1;
  for (; exponent > 0; exponent >>= 1U) {
    if ((exponent & 1U) != 0) {
      result = multiply(result, base, m);
    }
    base = multiply(base, base, m);
  }
  return result;
}

std::uint64_t inverse(std::uint64_t a, const modulus& m) { return power(a, m.prime - 2, m); }

std::uint64_t residue(std::int64_t x, const modulus& m) {
  const std::uint64_t magnitude = x < 0 ? ~static_cast<std::uint64_t>(x) + 1 : static_cast<std::uint64_t>(x);
  return x < 0 ? negate(magnitude % m.prime, m) : magnitude % m.prime;
}

// num/den in the field; false when den is zero there.
bool quotient(std::uint64_t num, std::uint64_t den, const modulus& m, std::uint64_t& out) {
  if (den == 0) {
    return false;
  }
  out = den == 1 ? num : multiply(num, inverse(den, m), m);
  return true;
}

// base^k for an integer k of any sign; false for the inverse of zero.
bool integer_power(std::uint64_t base, std::int64_t k, const modulus& m, std::uint64_t& out) {
  const std::uint64_t magnitude = k < 0 ? ~static_cast<std::uint64_t>(k) + 1 : static_cast<std::uint64_t>(k);
  const std::uint64_t result = power(base, magnitude, m);
  return quotient(k < 0 ? 1 : result, k < 0 ? result : 1, m, out);
}

}  // namespace

fingerprint fingerprint::of_number(const cnum& c) {
  fingerprint f;
  if (!cnum_is_finite(c)) {
    f.fails = true;
    return f;
  }
  f.constant = c;
  f.has_value = quotient(residue(c.num, value_field), residue(c.den, value_field), value_field, f.value);
  f.has_exponent = quotient(residue(c.num, exponent_field), residue(c.den, exponent_field), exponent_field, f.exponent);
  return f;
}

fingerprint fingerprint::of_hash(std::uint64_t hash) {
  fingerprint f;
  const std::uint64_t root = std::max<std::uint64_t>(mix(hash + 1) % value_field.prime, 1);
  f.value = multiply(root, root, value_field);
  f.exponent = mix(hash + 2) % exponent_field.prime;
  f.has_value = true;
  f.has_exponent = true;
  return f;
}

fingerprint fingerprint_sum(std::span<const signed_value<fingerprint>> addends) {
  fingerprint sum = fingerprint::of_number(cnum_from_int(0));
  for (const auto& [f, negative] : addends) {
    sum.value = add(sum.value, negative ? negate(f.value, value_field) : f.value, value_field);
    sum.exponent = add(sum.exponent, negative ? negate(f.exponent, exponent_field) : f.exponent, exponent_field);
    sum.constant = negative ? cnum_sub(sum.constant, f.constant) : cnum_add(sum.constant, f.constant);
    sum.has_value = sum.has_value && f.has_value;
    sum.has_exponent = sum.has_exponent && f.has_exponent;
    sum.fails = sum.fails || f.fails;
  }
  return sum;
}

fingerprint fingerprint_product(std::span<const fingerprint> factors) {
  fingerprint product = fingerprint::of_number(cnum_from_int(1));
  bool may_be_zero = false;
  for (const fingerprint& f : factors) {
    product.value = multiply(product.value, f.value, value_field);
    product.exponent = multiply(product.exponent, f.exponent, exponent_field);
    product.constant = cnum_mul(product.constant, f.constant);
    product.has_value = product.has_value && f.has_value;
    product.has_exponent = product.has_exponent && f.has_exponent;
    product.fails = product.fails || f.fails;
    may_be_zero = may_be_zero || (!f.fails && !f.is_nonzero());
  }
  product.fails = product.fails && !may_be_zero;
  return product;
}

fingerprint fingerprint_quotient(const fingerprint& numerator, const fingerprint& denominator) {
  fingerprint f;
  f.constant = cnum_div(numerator.constant, denominator.constant);
  f.has_value = numerator.has_value && denominator.has_value &&
                quotient(numerator.value, denominator.value, value_field, f.value);
  f.has_exponent = numerator.has_exponent && denominator.has_exponent &&
                   quotient(numerator.exponent, denominator.exponent, exponent_field, f.exponent);
  f.fails = (numerator.fails && (denominator.fails || denominator.is_nonzero())) ||
            (denominator.fails && numerator.is_nonzero());
  return f;
}

fingerprint fingerprint_power(const fingerprint& base, const fingerprint& exponent) {
  std::int64_t k = 0;
  fingerprint f;
  if (cnum_is_int(exponent.constant, &k)) {
    if (k == 0) {
      return fingerprint::of_number(cnum_from_int(1));
    }
    f.has_value = base.has_value && integer_power(base.value, k, value_field, f.value);
    f.has_exponent = base.has_exponent && integer_power(base.exponent, k, exponent_field, f.exponent);
    if (f.has_value && cnum_is_finite(base.constant)) {
      const std::uint64_t magnitude = k < 0 ? ~static_cast<std::uint64_t>(k) + 1 : static_cast<std::uint64_t>(k);
      const cnum whole = cnum_power(base.constant, magnitude);
      f.constant = k < 0 ? cnum_div(cnum_from_int(1), whole) : whole;
      f.fails = !cnum_is_finite(whole);
    }
    f.fails = f.fails || base.fails;
    return f;
  }
  f.fails = exponent.fails;
  // Only squares have powers with every exponent; their order divides the exponents' prime.
  f.has_value = base.has_value && exponent.has_exponent && power(base.value, exponent_field.prime, value_field) == 1;
  f.value = f.has_value ? power(base.value, exponent.exponent, value_field) : 0;
  return f;
}

fingerprint fingerprint_compound(compound_kind kind, std::span<const fingerprint> parts) {
  std::uint64_t hash = mix(static_cast<std::uint64_t>(kind) + 11);
  fingerprint unknown;
  bool known = true;
  for (const fingerprint& part : parts) {
    hash = mix(hash ^ part.value) + 1;
    known = known && part.has_value;
    unknown.fails = unknown.fails || part.fails;
  }
  return known && !unknown.fails ? fingerprint::of_hash(hash) : unknown;
}

fingerprint fingerprint_leaf(term_ptr t) { return fingerprint::of_hash(mix(t->hash()) + 5); }

fingerprint fingerprint_opaque(term_ptr t) { return fingerprint::of_hash(mix(t->hash()) + 6); }

}  // namespace vetro
