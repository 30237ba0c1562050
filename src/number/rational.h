// Quotients of generalized polynomials in normal form.
//
// Equality is decided by cross-multiplication; domains are not looked at, so that x/x is 1, and two quotients by zero
// are equal. There is no polynomial division: (x^2 - 1)/(x - 1) stays as it is and still equals x + 1.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "number/poly.h"

namespace vetro {

// In normal form: zero has denominator 1; a denominator that is one term has gone into the numerator (with negative
// exponents and fractional coefficients there); another denominator has no factor common to all its terms and begins
// with coefficient 1, where that fits 64 bits; roots of bases that have a form of their own stand with exponents
// between 0 and 1. A not-a-number on either side makes the whole not-a-number.
struct rat {
  poly num;
  poly den = poly_const(cnum_from_int(1));
  bool operator==(const rat&) const = default;
};

// The registry of one comparison, with the bases behind its roots.
class rational_registry {
 public:
  explicit rational_registry(std::uint64_t budget) : pdata(budget) {}

  // The key that stands for powers of the base with fractional exponents. The base number tells bases apart.
  std::int32_t root_key(std::uint32_t base_number, const rat& base);
  const rat& root_base(std::int32_t key) const { return root_bases_.at(key); }

  poly_data pdata;

 private:
  std::unordered_map<std::int32_t, rat> root_bases_;
};

rat rat_nan();
bool rat_is_nan(const rat& r);
rat rat_const(const cnum& c);
bool rat_is_const(const rat& r, cnum* out);
bool rat_is_polynomial(const rat& r);  // denominator 1

rat rat_normalize(rational_registry& registry, rat r);

struct signed_rat {
  const rat* r;
  bool negative;
};
rat rat_sum(rational_registry& registry, std::span<const signed_rat> addends);
rat rat_mul(rational_registry& registry, const rat& a, const rat& b);
rat rat_div(rational_registry& registry, const rat& a, const rat& b);        // a zero divisor stays as zero denominator
rat rat_pow_int(rational_registry& registry, const rat& a, std::int64_t k);  // exponent 0 gives 1 for every base

// True if both are equal as quotients of polynomials and no not-a-number takes part.
bool rat_eq(rational_registry& registry, const rat& a, const rat& b);

// The numerator, or "(numerator)/(denominator)".
std::string rat_to_string(const rational_registry& registry, const rat& r);

}  // namespace vetro
