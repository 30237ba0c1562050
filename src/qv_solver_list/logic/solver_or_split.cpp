// A disjunction is proved by one of its disjuncts.
#include <utility>

#include "qv_solver_list/solvers.h"
#include "term/term_split_combine.h"

namespace vetro {

solve_res solver_or_split(const solver_args& args) {
  term_list disjuncts = split_connect(args.target, Or);
  if (disjuncts.size() < 2) {
    return {};
  }
  return {.type = termlist_or, .ans = false, .list = std::move(disjuncts)};
}

}  // namespace vetro
