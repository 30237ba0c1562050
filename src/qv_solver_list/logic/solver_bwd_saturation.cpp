// Backward unfolding of set-theoretic and relational goals: a goal is replaced by what it means.
#include <utility>

#include "qv_solver_list/logic/set_meaning.h"
#include "qv_solver_list/solvers.h"

namespace vetro {

solve_res solver_bwd_saturation_set(const solver_args& args) {
  term_list meaning = set_equiv_saturation(args.target);
  if (meaning.empty()) {
    return {};
  }
  return {.type = termlist_and, .ans = false, .list = std::move(meaning)};
}

}  // namespace vetro
