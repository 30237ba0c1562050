// Whether two expressions are equal under a condition: by a table of rules, each of which decides or hands a rewritten
// pair on to the rules behind it.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "qv_solver_list/solver.h"
#include "term/ast.h"

namespace vetro {

struct expr_equiv_config;

// A question on its way through the table. The antecedent is what is known to hold, usually a conjunction; null when
// nothing is. next_rule is the place behind the rule that is asked.
struct expr_equiv_question {
  term_ptr left;
  term_ptr right;
  term_ptr antecedent;
  const solve_data& sdata;
  const expr_equiv_config& config;
  std::int32_t next_rule = 0;
};

struct expr_equiv_rule {
  std::string_view name;
  bool (*fn)(const expr_equiv_question& question);  // a row without a function is passed over
};

struct expr_equiv_config {
  std::span<const expr_equiv_rule> rules;
};

const expr_equiv_config& expr_equiv_default_config();

// For results of differentiation, which hold roots and powers of e where people write powers: the same rules behind two
// that rewrite these.
const expr_equiv_config& expr_equiv_derivative_config();

// True if a rule shows the sides equal. False for a null side. Rules are tried from start_rule on; a negative one
// counts as 0.
bool expr_equiv_under_config(term_ptr left, term_ptr right, term_ptr antecedent, const solve_data& sdata,
                             const expr_equiv_config& config = expr_equiv_default_config());
bool expr_equiv_under_config_from(term_ptr left, term_ptr right, term_ptr antecedent, const solve_data& sdata,
                                  const expr_equiv_config& config, std::int32_t start_rule);

}  // namespace vetro
