// Equations whose sides come to the same when defined functions are unfolded and cases decided. An equation in which
// nothing is to be evaluated is left to others.
#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/functions/apply_normalize.h"
#include "qv_solver_list/solvers.h"
#include "term/compare.h"

namespace vetro {
namespace {

class equation_prover {
 public:
  explicit equation_prover(const solve_data& sdata) : evaluator_(sdata), premises_(sdata, side_table::func_apply) {}

  bool proves(term_ptr target) {
    if (const auto both = solver_func_binary_connect(target, And)) {
      return proves(both->left) && proves(both->right);
    }
    const auto equation = solver_func_binary_pred(target, Eq);
    return equation && func_apply_eq_compare(equation->left, equation->right);
  }

 private:
  bool func_apply_eq_compare(term_ptr left, term_ptr right) {
    const term_ptr left_value = evaluator_.normalize(left, func_apply_fuel);
    const term_ptr right_value = evaluator_.normalize(right, func_apply_fuel);
    if (left_value == nullptr || right_value == nullptr ||
        (term_eqb(left_value, left) && term_eqb(right_value, right))) {
      return false;
    }
    return poly_rat_eqb(left_value, right_value) || premises_.relation(Eq, left_value, right_value);
  }

  function_evaluator evaluator_;
  prover premises_;
};

}  // namespace

bool solver_func_apply_eqb(term_ptr target, const solve_data& sdata) { return equation_prover(sdata).proves(target); }

}  // namespace vetro
