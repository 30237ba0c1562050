// Equality of sets of primitives: two descriptions of functions by their derivatives are compared by differentiating.
// No primitive is ever looked for.
#include <algorithm>
#include <optional>

#include "qv_solver_list/algebra/expr_equiv.h"
#include "qv_solver_list/calculus/function_family.h"
#include "qv_solver_list/calculus/gaps.h"
#include "qv_solver_list/calculus/interval_conditions.h"
#include "qv_solver_list/complex_values.h"
#include "qv_solver_list/solvers.h"
#include "term/compare.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

// The same propositions, in any order.
bool same_conjuncts(const term_list& a, const term_list& b) {
  const auto all_in = [](const term_list& some, const term_list& others) {
    return std::all_of(some.begin(), some.end(), [&](term_ptr t) { return term_list_contains(others, t); });
  };
  return all_in(a, b) && all_in(b, a);
}

// A complex constant may be added to a complex function, too.
bool is_real(const function_family& family, const solve_data& sdata) {
  complex_values& complex = facts_of(sdata).table<complex_values>();
  return !complex.may_be_complex(family.derivative) &&
         (family.formula == nullptr || !complex.may_be_complex(family.formula)) &&
         std::none_of(family.slopes.begin(), family.slopes.end(),
                      [&](term_ptr slope) { return complex.may_be_complex(slope); });
}

bool has_all_primitives(const function_family& family, const function_family& other, variable_facts& facts) {
  if (family.formula == nullptr) {
    return true;
  }
  return logarithms_are_defined(family.formula, facts) && jumps_only_with(family.formula, other.derivative, facts) &&
         std::all_of(family.slopes.begin(), family.slopes.end(), [&](term_ptr slope) {
           return logarithms_are_defined(slope, facts) && ends_only_with(slope, other.derivative, facts);
         });
}

// That no member is missing is asked last: the derivatives of most pairs of sets differ at the first look.
bool same_family(const function_family& left, const function_family& right, const solve_data& sdata) {
  if (!same_conjuncts(left.antecedent, right.antecedent) || !same_conjuncts(left.memberships, right.memberships) ||
      !expr_equiv_under_config(left.derivative, right.derivative, and_compose(left.antecedent), sdata,
                               expr_equiv_derivative_config())) {
    return false;
  }
  if (left.formula == nullptr && right.formula == nullptr) {
    return true;
  }
  if (!is_real(left, sdata) || !is_real(right, sdata) ||
      !describe_an_interval(left.antecedent, family_variable(), sdata)) {
    return false;
  }
  const solve_data local = under_condition(sdata, left.antecedent);
  variable_facts facts(local, family_variable());
  return has_all_primitives(left, right, facts) && has_all_primitives(right, left, facts);
}

}  // namespace

bool solver_integral(term_ptr target, const solve_data& sdata) {
  const auto equation = pred_split(target);
  if (!equation || equation->pred != Eq || target->has_meta()) {
    return false;
  }
  const auto left = read_function_family(equation->left, sdata);
  const auto right = left ? read_function_family(equation->right, sdata) : std::nullopt;
  return right && same_family(*left, *right, sdata);
}

}  // namespace vetro
