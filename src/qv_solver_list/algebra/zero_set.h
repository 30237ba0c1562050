// Whether an expression can only be 0 where others are 0 or have no value.
#pragma once

#include <cstdint>
#include <vector>

#include "number/budget.h"
#include "qv_solver_list/algebra/expression_reader.h"
#include "qv_solver_list/algebra/rational_domain.h"
#include "term/ast.h"

namespace vetro {

// A union of sets of zeros. Expressions are told apart by the factors of their rational forms: each zero of a product
// is one of a factor, and each zero of a polynomial is one of its multiples.
class zero_set {
 public:
  zero_set();

  // The points at which t is 0 or has no value.
  void add(term_ptr t);

  // Values that are not looked at: their factors count as never 0.
  void ignore(term_ptr t);

  // Every zero of t is in the set. False for what has no form.
  bool covers(term_ptr t);

 private:
  const rat* read(term_ptr t);
  void keep_factors(term_ptr t, std::vector<std::uint32_t>& sums);
  bool holds_key(std::int32_t key) const;
  bool covers_sum(std::uint32_t sum);

  budget work_;
  rational_domain domain_;
  expression_reader<rational_domain> reader_;
  std::vector<std::int32_t> keys_;
  std::vector<std::uint32_t> sums_;
  std::vector<std::uint32_t> ignored_sums_;
};

}  // namespace vetro
