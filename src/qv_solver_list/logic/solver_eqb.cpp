// The target is one of the assumptions, or a relation of a term to itself.
#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/solvers.h"
#include "term/term_split_combine.h"

namespace vetro {

// Proves what stands among the assumptions, up to bound names.
bool solver_eqb(term_ptr target, const solve_data& sdata) { return target != nullptr && is_assumption(target, sdata); }

// Proves t = t, t >= t, t <= t and t ⊆ t.
bool solver_reflexivity(term_ptr target, const solve_data& /*sdata*/) {
  if (target == nullptr) {
    return false;
  }
  const auto view = pred_split(target);
  if (!view) {
    return false;
  }
  const bool reflexive = view->pred == Eq || view->pred == Ge || view->pred == Le || view->pred == Subset;
  return reflexive && term_eqb(view->left, view->right);
}

}  // namespace vetro
