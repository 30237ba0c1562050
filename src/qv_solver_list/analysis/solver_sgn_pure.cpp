// Comparisons by signs, from the assumptions and constants alone.
#include "qv_solver_list/analysis/sign_goal.h"
#include "qv_solver_list/analysis/sign_pure.h"
#include "qv_solver_list/solvers.h"

namespace vetro {
namespace {

bool difference_has(pred_type pred, term_ptr difference, pure_signs& signs) {
  switch (pred) {
    case Eq:
      return signs.ask(difference, sign_question::ge0) && signs.ask(difference, sign_question::le0);
    case Neq:
      return signs.ask(difference, sign_question::neq0);
    default:
      return signs.ask(difference, *question_of(pred));
  }
}

}  // namespace

bool solver_sgn_pure(term_ptr target, const solve_data& sdata) {
  const sign_goal goal = sign_goal_of(target);
  if (goal.known != sign_goal::state::open) {
    return goal.known == sign_goal::state::proved;
  }
  pure_signs signs(sdata);
  return difference_has(goal.pred, goal.difference, signs);
}

}  // namespace vetro
