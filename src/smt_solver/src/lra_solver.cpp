#include "smt_solver/src/lra_solver.h"

#include "smt_solver/src/combination.h"
#include "smt_solver/src/preprocess.h"
#include "smt_solver/src/search.h"

namespace vetro {

int smt_solver_lra_uf(const smt_language& language, smt_prop formula, budget& work, smt_values* model) {
  smt::combination theories(work);
  smt::search clauses(theories, work);
  smt::preprocessor input(language, theories, clauses, work);
  const smt::truth value = input.add(formula);
  if (input.beyond()) {
    return 1;
  }
  if (value != smt::truth::open) {
    return value == smt::truth::yes ? -1 : 0;
  }
  const smt::outcome found = clauses.solve();
  if (found == smt::outcome::satisfiable && model != nullptr) {
    *model = input.values_of_names();
  }
  return found == smt::outcome::unsatisfiable ? 0 : 1;
}

}  // namespace vetro
