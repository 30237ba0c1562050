// Whether an expression has a finite value: by the shape of the expression and by premises that a table of side solvers
// proves.
#pragma once

#include "qv_solver_list/premises.h"
#include "term/functions.h"
#include "term/node_memo.h"

namespace vetro {

// What a client of the domain prover lets it use.
struct domain_policy {
  side_table premise_solvers;
  bool allow_lambda_applications = false;  // may look through an applied function term
  bool allow_named_functions = false;      // may look through a named function by its definition
  bool allow_arctan = false;               // the arc tangent counts as defined everywhere
  bool allow_e_base_power = false;         // a power of e counts as defined for any defined exponent
};

inline constexpr domain_policy limit_domain_policy = {.premise_solvers = side_table::limit_domain};
inline constexpr domain_policy evalbar_domain_policy = {.premise_solvers = side_table::evalbar_domain,
                                                        .allow_lambda_applications = true,
                                                        .allow_named_functions = true,
                                                        .allow_arctan = true,
                                                        .allow_e_base_power = true};

// True when no infinity occurs in t, scopes and bound names included.
bool solver_expr_domain_is_finite_term(term_ptr t);

// Several questions under one list of assumptions. Each is answered once.
class domain_prover {
 public:
  // sdata is borrowed and must outlive the prover.
  domain_prover(const solve_data& sdata, const domain_policy& policy);

  bool defined(term_ptr expr);  // false for null
  bool nonzero(term_ptr expr);
  bool relation(pred_type pred, term_ptr left, term_ptr right);

 private:
  bool read_defined(term_ptr t);
  bool read_nonzero(term_ptr t);
  bool application_defined(const spine& applied);
  term_ptr unfolded(const spine& applied);
  bool is_exponential(term_ptr head);
  bool unary_defined(oper_type oper, term_ptr operand);
  bool is_in(const natural_domain& domain, term_ptr operand);
  bool binary_defined(oper_type oper, term_ptr left, term_ptr right);
  bool power_defined(term_ptr base, term_ptr exponent);
  bool root_defined(term_ptr index, term_ptr radicand);
  bool relation_to(pred_type pred, term_ptr expr, std::int32_t right);

  prover premises_;
  domain_policy policy_;
  std::size_t unfoldings_ = 0;
  node_memo<bool> defined_;
  node_memo<bool> nonzero_;
};

// The one question.
bool solver_expr_domain_is_defined(term_ptr expr, const solve_data& sdata, const domain_policy& policy);

}  // namespace vetro
