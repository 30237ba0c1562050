// Arithmetic modulo a safe prime and modulo the order of its squares.
#include "qv_solver_list/algebra/fingerprint.h"

#include <algorithm>
#include <iterator>

namespace vetro {
namespace {

// A prime just below 2^bits.
struct modulus {
  std::uint64_t prime;
  unsigned bits;
};

// The greatest prime P = 2Q + 1 below 2^61 with Q prime such that all primes below 60 are squares modulo P.
constexpr modulus value_field{2305843009213057079ULL, 61};
constexpr modulus exponent_field{1152921504606528539ULL, 60};
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

// A positive number all of whose prime factors are below 60.
bool has_small_factors(const exact& c) {
  static constexpr std::int64_t primes[] = {2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37, 41, 43, 47, 53, 59};
  const auto num = c.numerator().to_int64();
  const auto den = c.denominator().to_int64();
  if (!num || !den || *num <= 0) {
    return false;
  }
  const auto rest = [](std::int64_t n) {
    for (const std::int64_t* prime = primes; n > 1 && prime != std::end(primes); ++prime) {
      while (n % *prime == 0) {
        n /= *prime;
      }
    }
    return n;
  };
  return rest(*num) == 1 && rest(*den) == 1;
}

bool is_odd(const exact& integer) { return residue(integer, 2) == 1; }

}  // namespace

fingerprint fingerprint::of_number(const exact& c) {
  const auto modulo = [&c](const modulus& m, std::uint64_t& out) {
    return quotient(residue(c.numerator(), m.prime), residue(c.denominator(), m.prime), m, out);
  };
  fingerprint f;
  f.at_zero = c;
  f.is_number = true;
  f.has_value = modulo(value_field, f.value);
  f.has_exponent = modulo(exponent_field, f.exponent);
  f.is_square = has_small_factors(c);
  return f;
}

fingerprint fingerprint::of_hash(std::uint64_t hash) {
  fingerprint f;
  const std::uint64_t root = std::max<std::uint64_t>(mix(hash + 1) % value_field.prime, 1);
  f.value = multiply(root, root, value_field);
  f.exponent = mix(hash + 2) % exponent_field.prime;
  f.at_zero = 0;
  f.has_value = true;
  f.has_exponent = true;
  f.is_square = true;
  return f;
}

fingerprint fingerprint_sum(std::span<const signed_value<fingerprint>> addends) {
  fingerprint sum = fingerprint::of_number(0);
  for (const auto& [f, negative] : addends) {
    sum.value = add(sum.value, negative ? negate(f.value, value_field) : f.value, value_field);
    sum.exponent = add(sum.exponent, negative ? negate(f.exponent, exponent_field) : f.exponent, exponent_field);
    sum.at_zero = negative ? sum.at_zero - f.at_zero : sum.at_zero + f.at_zero;
    sum.is_number = sum.is_number && f.is_number;
    sum.has_value = sum.has_value && f.has_value;
    sum.has_exponent = sum.has_exponent && f.has_exponent;
  }
  sum.is_square = sum.is_number ? has_small_factors(sum.at_zero)
                                : addends.size() == 1 && !addends.front().negative && addends.front().value.is_square;
  return sum;
}

fingerprint fingerprint_product(std::span<const fingerprint> factors) {
  fingerprint product = fingerprint::of_number(1);
  for (const fingerprint& f : factors) {
    product.value = multiply(product.value, f.value, value_field);
    product.exponent = multiply(product.exponent, f.exponent, exponent_field);
    product.at_zero *= f.at_zero;
    product.is_number = product.is_number && f.is_number;
    product.has_value = product.has_value && f.has_value;
    product.has_exponent = product.has_exponent && f.has_exponent;
    product.is_square = product.is_square && f.is_square;
  }
  return product;
}

fingerprint fingerprint_quotient(const fingerprint& numerator, const fingerprint& denominator) {
  fingerprint f;
  f.at_zero = numerator.at_zero / denominator.at_zero;
  f.is_number = numerator.is_number && denominator.is_number;
  f.has_value = numerator.has_value && denominator.has_value &&
                quotient(numerator.value, denominator.value, value_field, f.value);
  f.has_exponent = numerator.has_exponent && denominator.has_exponent &&
                   quotient(numerator.exponent, denominator.exponent, exponent_field, f.exponent);
  f.is_square = numerator.is_square && denominator.is_square;
  return f;
}

namespace {

fingerprint integer_power(const fingerprint& base, std::int64_t k) {
  if (k == 0) {
    return fingerprint::of_number(1);
  }
  fingerprint f;
  f.at_zero = power(base.at_zero, k).value_or(exact::beyond());
  f.is_number = base.is_number;
  f.has_value = base.has_value && integer_power(base.value, k, value_field, f.value);
  f.has_exponent = base.has_exponent && integer_power(base.exponent, k, exponent_field, f.exponent);
  f.is_square = base.is_square;
  return f;
}

}  // namespace

// A base that is s or -s for a square s has s to the exponent as its power, and the sign where the exponent is odd; an
// exponent that is neither even nor odd, such as 1/2, has no sign to give, and the root of 61^2 would be the square
// -61.
fingerprint fingerprint_power(const fingerprint& base, const fingerprint& exponent) {
  if (const auto k = exponent.at_zero.to_int64(); k && exponent.is_number) {
    return integer_power(base, *k);
  }
  fingerprint f;
  f.is_square = base.is_square;
  const bool parity_known = exponent.at_zero.is_known() && is_odd(exponent.at_zero.denominator());
  if (!base.has_value || base.value == 0 || !exponent.has_exponent || !(base.is_square || parity_known)) {
    return f;
  }
  const bool negative = power(base.value, exponent_field.prime, value_field) != 1;
  const std::uint64_t square = negative ? negate(base.value, value_field) : base.value;
  f.has_value = true;
  f.value = power(square, exponent.exponent, value_field);
  if (negative && is_odd(exponent.at_zero.numerator())) {
    f.value = negate(f.value, value_field);
  }
  return f;
}

// As an odd index is an odd exponent here, the odd root of a negative number is negative.
fingerprint fingerprint_root(const fingerprint& radicand, std::int64_t index) {
  return fingerprint_power(radicand, fingerprint::of_number(exact(1) / exact(index)));
}

fingerprint fingerprint_compound(compound_kind kind, std::span<const fingerprint> parts) {
  std::uint64_t hash = mix(static_cast<std::uint64_t>(kind) + 11);
  bool known = true;
  for (const fingerprint& part : parts) {
    hash = mix(hash ^ part.value) + 1;
    known = known && part.has_value;
  }
  return known ? fingerprint::of_hash(hash) : fingerprint{.is_square = true};
}

// Without a value, a part makes the whole have none, in whatever place.
bool fingerprint_domain::arrange(std::vector<value>& parts) {
  std::sort(parts.begin(), parts.end(), [](const value& a, const value& b) { return a.value < b.value; });
  const auto same = [](const value& a, const value& b) { return a.has_value && b.has_value && a.value == b.value; };
  parts.erase(std::unique(parts.begin(), parts.end(), same), parts.end());
  return true;
}

fingerprint fingerprint_leaf(term_ptr t) { return fingerprint::of_hash(mix(t->hash()) + 5); }

fingerprint fingerprint_opaque(term_ptr t) { return fingerprint::of_hash(mix(t->hash()) + 6); }

}  // namespace vetro
