// Equations about derivatives at a point: the derivative of a function that is given by a formula is computed and
// compared with the other side.
#include <algorithm>
#include <optional>
#include <vector>

#include "qv_solver_list/algebra/expr_equiv.h"
#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/calculus/derivative.h"
#include "qv_solver_list/calculus/derivative_value.h"
#include "qv_solver_list/calculus/variable_facts.h"
#include "qv_solver_list/functions/piecewise.h"
#include "qv_solver_list/solvers.h"
#include "term/compare.h"
#include "term/term_split_combine.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

// FunDeri(... FunDeri(f, i, m) ..., j, n, point): the function, how it is differentiated from the inside out, the
// point.
struct derivative_at_point {
  term_ptr function;
  std::vector<derivative_step> steps;
  term_list point;
};

std::optional<derivative_at_point> read_derivative(term_ptr t) {
  function_derivative layer;
  if (t->has_meta() || !as_function_derivative(spine_of(t), layer) || layer.point.empty()) {
    return std::nullopt;
  }
  derivative_at_point result{layer.function, {{layer.index, layer.order}}, layer.point};
  while (!result.function->has_meta() && as_function_derivative(spine_of(result.function), layer) &&
         layer.point.empty()) {
    result.steps.push_back({layer.index, layer.order});
    result.function = layer.function;
  }
  std::reverse(result.steps.begin(), result.steps.end());
  return result;
}

class derivative_solver {
 public:
  explicit derivative_solver(const solve_data& sdata)
      : sdata_(sdata), premises_(sdata, side_table::deriv), facts_(sdata, evalbar_domain_policy) {}

  bool proves(term_ptr equation, term_ptr left, term_ptr right) {
    term_ptr at_left = computed(left);
    if (at_left != nullptr && same(at_left, right)) {
      return true;
    }
    term_ptr at_right = computed(right);
    if (at_right == nullptr) {
      return premises_.proves(equation);
    }
    return same(at_right, left) || (at_left != nullptr && same(at_left, at_right));
  }

 private:
  // The value of a derivative at a point; null for another term, and where there is none.
  term_ptr computed(term_ptr t) {
    const auto derivative = read_derivative(t);
    if (!derivative) {
      return nullptr;
    }
    const auto& [f, steps, point] = *derivative;
    if (f->has_meta() || std::any_of(point.begin(), point.end(), is_one_whole)) {
      return nullptr;
    }
    term_ptr lambda = f->type() == Lambda ? f : solver_func_resolve_lambda_pointwise(f, point.size(), point, premises_);
    if (lambda == nullptr || lambda->vars().size() != point.size() || !holds_around(lambda, point)) {
      return nullptr;
    }
    return derivative_value(branch_at(lambda, point), lambda->vars(), steps, point, facts_);
  }

  // The condition of the `fun` holds in a neighbourhood of the point.
  bool holds_around(term_ptr lambda, term_span point) {
    return lambda->condition() == nullptr ||
           solver_func_condition_true_open_at(lambda->condition(), {lambda->vars(), point, premises_});
  }

  // The case that holds in a neighbourhood of the point, where the function is given by cases.
  term_ptr branch_at(term_ptr lambda, term_span point) {
    term_ptr branch = solver_func_piecewise_select(lambda->body(), {.semantics = SOLVER_FUNC_PIECEWISE_OPEN_AT,
                                                                    .params = lambda->vars(),
                                                                    .values = point,
                                                                    .premises = premises_,
                                                                    .fuel = piecewise_fuel});
    return branch == nullptr ? lambda->body() : branch;
  }

  bool same(term_ptr value, term_ptr expected) const {
    return term_eqb(value, expected) || poly_rat_eqb(value, expected) ||
           expr_equiv_under_config(value, expected, nullptr, sdata_, expr_equiv_derivative_config());
  }

  static constexpr int piecewise_fuel = 8;

  const solve_data& sdata_;
  prover premises_;
  domain_prover facts_;
};

}  // namespace

bool solver_deriv_eqb(term_ptr target, const solve_data& sdata) {
  if (target == nullptr || target->has_meta()) {
    return false;
  }
  if (const auto view = composed_prop_split(target); view && view->t2 != nullptr) {
    if (view->connect == And) {
      return solver_deriv_eqb(view->t1, sdata) && solver_deriv_eqb(view->t2, sdata);
    }
    return view->connect == Impl && solver_deriv_eqb(view->t2, under_condition(sdata, split_connect(view->t1, And)));
  }
  const auto equation = pred_split(target);
  return equation && equation->pred == Eq && derivative_solver(sdata).proves(target, equation->left, equation->right);
}

}  // namespace vetro
