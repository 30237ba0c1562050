// Memberships of closed expressions in number sets.
#include "qv_solver_list/constant_analysis.h"
#include "qv_solver_list/solvers.h"
#include "term/term_split_combine.h"

namespace vetro {

bool solver_const_type(term_ptr target, const solve_data& /*sdata*/) {
  const auto view = target == nullptr || target->has_meta() ? std::nullopt : pred_split(target);
  return view && view->pred == Belong && view->right->type() == Const && !view->right->has_meta() &&
         solver_const_matches_set(view->left, view->right->constant());
}

}  // namespace vetro
