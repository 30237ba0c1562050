// Products with roots, as powers of their factors: integers in lowest terms, equal factors together, roots in the
// numerator only.
//
// A product is read as coefficient * b1^e1 * b2^e2 * ... with rational exponents. All that is used is what holds
// wherever both sides are defined as real numbers:
//   (x * y)^w = x^w * y^w            for an integer w, for an odd root, and where x or y is known to be positive, or
//   both
//                                    non-negative; quotients alike
//   (b^k)^w = b^(k * w)              for an integer w, an odd root, an odd k, and where b is known to be non-negative
//   (b^k)^w = |b|^(k * w)            otherwise
//   b^v * b^w = b^(v + w)
// Roots of rational numbers are powers of primes.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "number/exact.h"
#include "qv_solver_list/solver.h"
#include "term/ast.h"

namespace vetro {

// A factor that is not taken further apart, with its exponent.
struct power_factor {
  term_ptr base;
  exact exponent;
};

// coefficient * primes * factors. Exponents are not 0; those of primes lie between 0 and 1 unless they are too large to
// be worked out. The integer 0 is no part of the coefficient, so that 0 / 0 is not reduced.
struct power_product {
  exact coefficient = 1;
  std::map<std::int64_t, exact> primes;
  std::vector<power_factor> factors;  // in the order in which they came
  bool zero_above = false;
  bool zero_below = false;
};

// Brings products to their form. What is found out about a term is remembered.
class root_normalizer {
 public:
  // With sdata, signs are proved from its assumptions; null stands for none. Borrowed; must outlive the normalizer.
  explicit root_normalizer(const solve_data* sdata);
  ~root_normalizer();
  root_normalizer(const root_normalizer&) = delete;
  root_normalizer& operator=(const root_normalizer&) = delete;

  // The canonical form of a product: a quotient of sorted products, with the integers at their places, roots as
  // Sqrtn(index, radicand) once for each time they occur, and powers written out. Null for null.
  term_ptr rootfrac_core(term_ptr t);

  // A sum with each summand in that form, sorted: the added ones, then the subtracted ones.
  term_ptr sum_of_cores(term_ptr t);

  // t with each product in it, sums of them included, written as powers with rational exponents: 6^(1/2) as
  // 2^(1/2) * 3^(1/2). Only parts that stand for their value are entered.
  term_ptr power_form(term_ptr t);

  // The product as powers; nothing when an exponent is beyond all limits.
  std::optional<power_product> powers_of(term_ptr t);

  // Whether the term is known not to be negative.
  bool nonnegative(term_ptr t);

 private:
  class worker;
  std::unique_ptr<worker> worker_;
};

// The order of factors and summands: by kind, then names, numbers, operators, and the parts of applications from the
// left; -1, 0 or 1. Terms of other kinds are equal. Null comes before anything.
int compare_terms(term_ptr a, term_ptr b);

// A number of any size as a term: an integer beyond 32 bits is written in digits.
term_ptr number_of_any_size(const exact& value);

// The factorisation of a positive rational number; what is left when the small primes are taken out counts as a prime.
// Nothing but the number itself when it does not fit 64 bits.
std::vector<std::pair<exact, exact>> prime_exponents(const exact& value);

// False for heads that speak of where an expression is defined, or describe a set: nothing is calculated below them.
bool stands_for_its_value(term_ptr application);

}  // namespace vetro
