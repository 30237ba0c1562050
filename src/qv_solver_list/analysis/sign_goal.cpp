// The shape of goals.
#include "qv_solver_list/analysis/sign_goal.h"

#include "qv_solver_list/constant_analysis.h"
#include "term/term_split_combine.h"
#include "term/whole_parts.h"

namespace vetro {

sign_goal sign_goal_of(term_ptr target) {
  const auto view = target == nullptr || target->has_meta() ? std::nullopt : pred_split(target);
  if (!view || !is_order_relation(view->pred)) {
    return {sign_goal::state::none};
  }
  if (solver_const_prove_relation(view->left, view->pred, view->right)) {
    return {sign_goal::state::proved};
  }
  if (is_one_whole(view->left) || is_one_whole(view->right)) {
    return {sign_goal::state::none};
  }
  term_ptr difference = is_integer(view->right, 0) ? view->left : make_binOp_term(Minus, view->left, view->right);
  return {sign_goal::state::open, view->pred, difference};
}

}  // namespace vetro
