// What a term does for all large values of a variable: its sign, whether it is defined, how fast it grows at most.
#pragma once

#include <cstdint>
#include <optional>

#include "qv_solver_list/univariate.h"
#include "term/ast.h"
#include "term/node_memo.h"

namespace vetro {

enum limit_sign : std::int8_t {
  LIMIT_SIGN_NEG = -1,
  LIMIT_SIGN_ZERO = 0,
  LIMIT_SIGN_POS = 1,
  LIMIT_SIGN_UNKNOWN = 2,
};

// Questions about one variable. Each subterm is asked about once.
class eventual_behaviour {
 public:
  explicit eventual_behaviour(term_ptr var) : ratios_(var) {}

  limit_sign sign(term_ptr t);
  bool nonzero(term_ptr t) { return positive(t) || sign(t) == LIMIT_SIGN_NEG; }
  bool positive(term_ptr t) { return sign(t) == LIMIT_SIGN_POS; }
  bool defined(term_ptr t);

  // An exponent p such that t grows no faster than x^p. Where the sign of t is known, logarithms aside, t has exactly
  // that order; so a quotient may subtract the order of its divisor. A new form with a sign has to keep this.
  std::optional<exact> growth_order(term_ptr t);

  // The finite value that t tends to, where rational functions or orders of growth tell it.
  std::optional<exact> limit(term_ptr t);

 private:
  limit_sign compute_sign(term_ptr t);
  limit_sign sign_of_binary(oper_type oper, term_ptr left, term_ptr right);
  limit_sign sign_of_power(term_ptr base, term_ptr exponent);
  limit_sign sign_of_logarithm(term_ptr a);
  bool compute_defined(term_ptr t);
  bool binary_defined(oper_type oper, term_ptr left, term_ptr right);
  std::optional<exact> compute_order(term_ptr t);
  std::optional<exact> order_of_unary(term_ptr t, oper_type oper, term_ptr a);
  std::optional<exact> order_of_binary(oper_type oper, term_ptr left, term_ptr right);

  univariate_reader ratios_;
  node_memo<limit_sign> signs_;
  node_memo<bool> defined_;
  node_memo<std::optional<exact>> orders_;
};

}  // namespace vetro
