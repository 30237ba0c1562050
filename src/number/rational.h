// Rational expressions as products of powers: a number, a monomial, and powers of sums.
//
// Products, quotients and powers only add and subtract exponents; a sum takes out what all addends share, multiplies
// the rest out and becomes a factor itself, so that denominators keep their factors. Domains are not looked at: x/x is
// 1, and two quotients by zero are equal. There is no factorisation, (x^2 - 1)/(x - 1) stays as it is; rat_eq decides
// whether two forms are the same quotient of polynomials.
#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "number/poly.h"

namespace vetro {

// A power of a registered sum. Sums are registered without a common factor of their terms, with whole coefficients
// without common divisor, the first of them positive.
struct sum_power {
  std::uint32_t sum;
  std::int64_t exp;  // not zero
  bool operator==(const sum_power&) const = default;
};

// coef * monomial * the powers, sorted by sum. Roots stand with exponents in [0, 1) in the monomial. Zero is the
// coefficient 0 alone; the coefficient beyond alone is not-a-number.
struct rat {
  exact coef = 0;
  monomial_id monomial = 0;
  std::vector<sum_power> sums = {};
  bool pole = false;  // a quotient by zero; nothing else counts then
  bool operator==(const rat&) const = default;
};

// The registry of one comparison, with the bases behind its roots.
class rational_registry {
 public:
  explicit rational_registry(budget& work) : pdata(work) {}

  // The key that stands for powers of the base with fractional exponents. The base number tells bases apart.
  std::int32_t root_key(std::uint32_t base_number, const rat& base);
  const rat& root_base(std::int32_t key) const { return root_bases_.at(key); }

  std::uint32_t sum_number(poly p);  // of a sum in the normal form above, with two terms or more
  const poly& sum(std::uint32_t number) const { return sums_[number].terms; }
  bool sum_has_roots(std::uint32_t number) const { return sums_[number].has_roots; }
  bool sum_has_whole_roots(std::uint32_t number) const { return sums_[number].has_whole_roots; }

  // Keys that stand for no single finite value. Marked before they stand in a sum.
  void mark_special(std::int32_t key);
  bool is_special(const rat& r) const;

  poly_data pdata;

 private:
  struct registered_sum {
    poly terms;
    bool has_roots;
    bool has_whole_roots;
    bool is_special;
  };
  bool is_special_monomial(monomial_id m) const;

  std::unordered_map<std::int32_t, rat> root_bases_;
  std::vector<bool> special_keys_;                                     // missing at the end: not special
  std::deque<registered_sum> sums_;                                    // addresses stay
  std::unordered_multimap<std::uint64_t, std::uint32_t> sum_numbers_;  // by hash
};

rat rat_nan();
rat rat_pole();
bool rat_is_nan(const rat& r);
rat rat_const(const exact& c);
rat rat_atom(rational_registry& registry, std::int32_t key, const cnum& exp);
bool rat_is_zero(const rat& r);
bool rat_is_const(const rat& r, exact* out);  // out may be null
// A form that is equal to another such form only if it is the same: a single term, or a sum with a number and a
// monomial before it.
bool rat_is_canonical(const rational_registry& registry, const rat& r);
// Two different forms that cannot be equal: both are canonical, or both have roots in one sum only, with proper
// fractions as exponents, so that nothing in their difference could be worked out further.
bool rat_surely_differ(const rational_registry& registry, const rat& a, const rat& b);

rat rat_from_poly(rational_registry& registry, poly p);
// The numerator multiplied out. The denominator, with exponent 1, goes to *denominator.
poly rat_numerator(rational_registry& registry, const rat& r, rat* denominator);

struct signed_rat {
  const rat* r;
  bool negative;
};
rat rat_sum(rational_registry& registry, std::span<const signed_rat> addends);
rat rat_product(rational_registry& registry, std::span<const rat> factors);
rat rat_mul(rational_registry& registry, const rat& a, const rat& b);
rat rat_div(rational_registry& registry, const rat& a, const rat& b);        // 0 by anything is 0
rat rat_pow_int(rational_registry& registry, const rat& a, std::int64_t k);  // exponent 0 gives 1 for every base

// True if both are equal as quotients of polynomials and no not-a-number takes part.
bool rat_eq(rational_registry& registry, const rat& a, const rat& b);

// Number, monomial and sums in a readable notation, "nan" and "pole" included.
std::string rat_to_string(const rational_registry& registry, const rat& r);

}  // namespace vetro
