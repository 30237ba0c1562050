// Equations between expressions with roots: both sides are brought to a canonical form, summand by summand, and
// compared; then as polynomials in roots.
#include <unordered_set>

#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/algebra/root_form.h"
#include "qv_solver_list/algebra/root_view.h"
#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/complex_values.h"
#include "qv_solver_list/equality_tests.h"
#include "qv_solver_list/solvers.h"
#include "term/compare.h"
#include "term/memo.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

// The sides of an equation to which the laws of roots apply, which are those of the reals.
std::optional<prop> real_equation(term_ptr t, assumption_facts& facts) {
  const auto sides = t == nullptr || t->has_meta() ? std::nullopt : pred_split(t);
  if (!sides || sides->pred != Eq || is_one_whole(t)) {
    return std::nullopt;
  }
  auto& complex = facts.table<complex_values>();
  return complex.may_be_complex(sides->left) || complex.may_be_complex(sides->right) ? std::nullopt : sides;
}

term_ptr canonical(const prop& equation, root_normalizer& normalizer) {
  const term_ptr left = normalizer.sum_of_cores(equation.left);
  const term_ptr right = normalizer.sum_of_cores(equation.right);
  return make_binPred_prop(Eq, left, right);
}

// The equations of a layer of assumptions in their canonical form, and the answers that were given about it.
class root_equations {
 public:
  explicit root_equations(assumption_facts& facts)
      : below_(facts.below() == nullptr ? nullptr : &facts.below()->table<root_equations>()) {
    root_normalizer normalizer(nullptr);
    for (term_ptr assumption : facts.own()) {
      if (const auto equation = real_equation(assumption, facts)) {
        assumed_.insert(canonical(*equation, normalizer));
      }
    }
  }

  bool holds(term_ptr canonical_equation) const {
    return assumed_.count(canonical_equation) != 0 || (below_ != nullptr && below_->holds(canonical_equation));
  }

  question_memo answers;

 private:
  const root_equations* below_;
  std::unordered_set<term_ptr, alpha_hasher, alpha_equal> assumed_;
};

// Of sqrt and cbrt nothing is known here.
bool same_value(term_ptr left, term_ptr right) {
  return poly_rat_eqb(with_opaque_roots(left), with_opaque_roots(right));
}

bool prove(const prop& equation, const solve_data& sdata, const root_equations& assumed) {
  root_normalizer normalizer(&sdata);
  const auto goal = pred_split(canonical(equation, normalizer));
  constexpr solver_id tests[] = {solver_id::eqb, solver_id::reflexivity};
  if (equal_by(tests, goal->left, goal->right, sdata) || same_value(goal->left, goal->right)) {
    return true;
  }
  root_normalizer without_signs(nullptr);
  if (assumed.holds(canonical(equation, without_signs))) {
    return true;
  }
  const term_ptr left = normalizer.power_form(equation.left);
  const term_ptr right = normalizer.power_form(equation.right);
  return same_value(left, right);
}

}  // namespace

bool solver_rootfrac(term_ptr target, const solve_data& sdata) {
  assumption_facts& facts = facts_of(sdata);
  const auto equation = real_equation(target, facts);
  if (!equation) {
    return false;
  }
  auto& known = facts.table<root_equations>();
  if (const auto answer = known.answers.known(target, 0)) {
    return *answer;
  }
  return known.answers.keep(target, 0, prove(*equation, sdata, known));
}

}  // namespace vetro
