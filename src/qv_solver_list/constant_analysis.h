// Closed expressions, built of constants and operators alone: exact value, sign and class, without any assumption.
#pragma once

#include "qv_solver_list/value_facts.h"
#include "term/ast.h"

namespace vetro {

enum class solver_const_real_status : std::uint8_t {
  SOLVER_CONST_REAL_UNKNOWN = 0,
  SOLVER_CONST_REAL_DEFINED = 1,
  SOLVER_CONST_REAL_UNDEFINED = 2,
};
using enum solver_const_real_status;

// Whether expr is made only of constants and applications of operators to one or two operands, at most 64 deep. sin(1)
// is closed, although nothing is known of its value.
bool solver_const_expr_is_closed(term_ptr expr);

// What is known of a closed expression; nothing for any other term.
value_facts solver_const_analyze(term_ptr expr, const root_limits& limits = {});

// The exact value of a closed expression, where there is one that fits.
std::optional<exact> solver_const_analyze_exact_rational(term_ptr expr, const root_limits& limits = {});

// Whether a closed expression has a real value.
solver_const_real_status solver_const_analyze_real_status(term_ptr expr);

// Whether the sign of the closed real expr settles `expr pred 0`, or that of the difference `left pred right`.
bool solver_const_prove_zero_relation(term_ptr expr, pred_type pred);
bool solver_const_prove_relation(term_ptr left, pred_type pred, term_ptr right);

// Whether the closed expr is known to lie in the constant number set.
bool solver_const_matches_set(term_ptr expr, const_type set);

}  // namespace vetro
