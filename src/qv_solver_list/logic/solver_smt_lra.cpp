// Linear arithmetic with uninterpreted functions: the target is proved when the assumptions and its negation have no
// model together.
#include "number/budget.h"
#include "number/limits.h"
#include "qv_solver_list/logic/smt_translation.h"
#include "qv_solver_list/logic/smt_values.h"
#include "qv_solver_list/solvers.h"
#include "smt_solver/src/lra_solver.h"

namespace vetro {

bool solver_smt_lra(term_ptr target, const solve_data& sdata) {
  value_kinds kinds;
  kinds.add(target);
  for (term_ptr assumption : sdata.assum) {
    kinds.add(assumption);
  }
  smt_language language;
  smt_translation translation(language, kinds);
  const smt_prop goal = translation.target(target);
  if (goal == smt_none) {
    return false;
  }
  smt_prop formula = language.negation(goal);
  for (term_ptr assumption : sdata.assum) {
    const smt_prop assumed = translation.assumption(assumption);
    formula = assumed == smt_none ? formula : language.connective(SMTPROP_AND, assumed, formula);
  }
  for (const smt_prop constraint : translation.constraints()) {
    formula = language.connective(SMTPROP_AND, constraint, formula);
  }
  budget work(limits::smt_work);
  return smt_solver_lra_uf(language, formula, work) == 0;
}

}  // namespace vetro
