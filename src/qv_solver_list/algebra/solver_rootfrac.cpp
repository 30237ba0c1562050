// Equations between expressions with roots: both sides are brought to a canonical form, summand by summand, and
// compared; then as polynomials in roots.
#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/algebra/root_form.h"
#include "qv_solver_list/complex_values.h"
#include "qv_solver_list/equality_tests.h"
#include "qv_solver_list/solvers.h"
#include "term/compare.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

bool is_equation(term_ptr t) { return t != nullptr && !t->has_meta() && pred_split(t) && pred_split(t)->pred == Eq; }

// Laws of roots are those of the reals.
bool is_real_equation(term_ptr t, const solve_data& sdata) {
  if (is_one_whole(t)) {
    return false;
  }
  auto& complex = facts_of(sdata).table<complex_values>();
  const auto sides = pred_split(t);
  return !complex.may_be_complex(sides->left) && !complex.may_be_complex(sides->right);
}

struct equation_sides {
  term_ptr left;
  term_ptr right;
};

equation_sides canonical_sides(term_ptr equation, root_normalizer& normalizer) {
  const auto sides = pred_split(equation);
  const term_ptr left = normalizer.sum_of_cores(sides->left);
  const term_ptr right = normalizer.sum_of_cores(sides->right);
  return {left, right};
}

// An assumption with the same canonical form.
bool is_assumed(const equation_sides& goal, const solve_data& sdata, root_normalizer& normalizer) {
  return std::any_of(sdata.assum.begin(), sdata.assum.end(), [&](term_ptr assumption) {
    if (!is_equation(assumption) || !is_real_equation(assumption, sdata)) {
      return false;
    }
    const equation_sides known = canonical_sides(assumption, normalizer);
    return term_eqb(known.left, goal.left) && term_eqb(known.right, goal.right);
  });
}

}  // namespace

bool solver_rootfrac(term_ptr target, const solve_data& sdata) {
  if (!is_equation(target) || !is_real_equation(target, sdata)) {
    return false;
  }
  root_normalizer normalizer(&sdata);
  const equation_sides goal = canonical_sides(target, normalizer);
  constexpr solver_id tests[] = {solver_id::eqb, solver_id::poly_rat, solver_id::reflexivity};
  if (equal_by(tests, goal.left, goal.right, sdata) || is_assumed(goal, sdata, normalizer)) {
    return true;
  }
  const auto sides = pred_split(target);
  const term_ptr left = normalizer.power_form(sides->left);
  const term_ptr right = normalizer.power_form(sides->right);
  return poly_rat_eqb(left, right);
}

}  // namespace vetro
