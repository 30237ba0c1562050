// Terms as rational functions of one variable, and what such a function does for large values.
#pragma once

#include <optional>
#include <unordered_map>

#include "number/dense_polynomial.h"
#include "term/ast.h"

namespace vetro {

// num / den. Common factors stay; den is not zero.
struct ratio {
  dense_polynomial num;
  dense_polynomial den;
};

// Reads terms as rational functions of the variable with rational coefficients: sums, products, quotients, powers with
// a natural exponent, and numbers. Each subterm is read once; the work of all readings is one budget.
class univariate_reader {
 public:
  explicit univariate_reader(term_ptr var);

  // Null where the term is no such function, and where the budget ends.
  const ratio* read(term_ptr t);

 private:
  std::optional<ratio> compute(term_ptr t);
  std::optional<ratio> binary(oper_type oper, term_ptr left, term_ptr right);
  std::optional<ratio> power(const ratio& base, term_ptr exponent);

  term_ptr var_;
  budget work_;
  std::unordered_map<term_ptr, std::optional<ratio>> known_;
};

// The value of a term that is built of numbers: sums, products, quotients, absolute values, powers with an integer
// exponent. Nothing for every other term.
std::optional<exact> constant_rational(term_ptr t);

// The sign for all large values of the variable.
int eventual_sign(const ratio& r);

// The exponent p with r of exact order x^p; nothing for zero.
std::optional<int> growth(const ratio& r);

// The value that r tends to as the variable grows, where that is finite.
std::optional<exact> limit_at_infinity(const ratio& r);

}  // namespace vetro
