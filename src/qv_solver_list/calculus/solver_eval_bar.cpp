// Equations with an evaluation bar: F|_{a}^{b} is F at b less F at a, for a function F that has a value at both ends.
// What lies between the ends is not looked at.
#include <algorithm>

#include "qv_solver_list/equality_tests.h"
#include "qv_solver_list/functions/apply_normalize.h"
#include "qv_solver_list/functions/definedness.h"
#include "qv_solver_list/solvers.h"
#include "term/compare.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

// Whether the operator stands anywhere in the terms that it is asked about, scopes and bound names included.
class operator_search {
 public:
  explicit operator_search(oper_type oper) : oper_(oper) {}

  bool in(term_ptr t) {
    if (t == nullptr || t->type() == Oper) {
      return t != nullptr && t->oper() == oper_;
    }
    if ((t->children().empty() && !t->has_meta()) || !searched_.insert(t)) {
      return false;
    }
    return in_any(t->children()) || in_any(t->binders()) || in(t->scope());
  }

 private:
  bool in_any(term_span list) {
    return std::any_of(list.begin(), list.end(), [this](term_ptr part) { return in(part); });
  }

  oper_type oper_;
  node_set searched_;
};

bool holds_operator(oper_type oper, term_ptr t) { return operator_search(oper).in(t); }

// The function and the ends.
struct bar_view {
  term_ptr function;
  term_ptr lower;
  term_ptr upper;
};

std::optional<bar_view> evalbar_match(term_ptr t) {
  const spine bar = spine_of(t);
  return is_oper(bar.head, EvalBar) && bar.args.size() == 3 && !t->has_meta()
             ? std::optional(bar_view{bar.args[0], bar.args[1], bar.args[2]})
             : std::nullopt;
}

bool is_tuple(term_ptr t) { return is_apply(t) && is_oper(t->left(), Tuple); }

// The values of an end for a function of that many parameters: itself for one, the components of a point for more.
std::optional<term_list> evalbar_tuple_values(term_ptr end, std::size_t count) {
  if (count == 1) {
    return is_tuple(end) ? std::nullopt : std::optional(term_list{end});
  }
  if (!is_tuple(end) || end->has_meta() || end->right()->type() != TermList ||
      end->right()->elements().size() != count) {
    return std::nullopt;
  }
  const term_span values = end->right()->elements();
  return term_list(values.begin(), values.end());
}

class bar_evaluation {
 public:
  explicit bar_evaluation(const solve_data& sdata)
      : sdata_(sdata),
        evaluator_(sdata),
        domains_(sdata, evalbar_domain_policy),
        premises_(sdata, side_table::evalbar_domain) {}

  bool proves(term_ptr left, term_ptr right) {
    const auto left_bar = evalbar_match(left);
    const auto right_bar = evalbar_match(right);
    if (!left_bar && !right_bar) {
      return false;
    }
    const term_ptr left_value = left_bar ? evalbar_reduce(*left_bar) : evalbar_normalize_other_side(left);
    const term_ptr right_value = left_value == nullptr ? nullptr
                                 : right_bar           ? evalbar_reduce(*right_bar)
                                                       : evalbar_normalize_other_side(right);
    return right_value != nullptr && evalbar_compare(left_value, right_value);
  }

 private:
  // The value of a bar; null where it has none that can be shown.
  term_ptr evalbar_reduce(const bar_view& bar) {
    const auto count = solver_func_lambda_params_valid(bar.function);
    if (!count || !solver_expr_domain_is_finite_term(bar.lower) || !solver_expr_domain_is_finite_term(bar.upper) ||
        holds_operator(EvalBar, bar.function->body()) || holds_operator(EvalBar, bar.lower) ||
        holds_operator(EvalBar, bar.upper)) {
      return nullptr;
    }
    const term_ptr lower = value_at(bar.function, bar.lower, *count);
    const term_ptr upper = lower == nullptr ? nullptr : value_at(bar.function, bar.upper, *count);
    return upper == nullptr ? nullptr : evaluator_.normalize(make_binOp_term(Minus, upper, lower), func_apply_fuel);
  }

  // The function at an end: everything on the way is defined, and so are the premises of a `fun` with a condition.
  term_ptr value_at(term_ptr function, term_ptr end, std::size_t count) {
    const auto values = evalbar_tuple_values(end, count);
    if (!values || !std::all_of(values->begin(), values->end(), [this](term_ptr v) { return domains_.defined(v); }) ||
        !solver_func_lambda_applies(function, *values, premises_)) {
      return nullptr;
    }
    return defined_value(solver_func_apply_lambda(function, *values));
  }

  term_ptr evalbar_normalize_other_side(term_ptr t) {
    return holds_operator(EvalBar, t) || holds_operator(DefInt, t) ? nullptr : defined_value(t);
  }

  // The evaluated term, where it is defined before and after.
  term_ptr defined_value(term_ptr t) {
    if (t == nullptr || !domains_.defined(t)) {
      return nullptr;
    }
    const term_ptr value = evaluator_.normalize(t, func_apply_fuel);
    return value != nullptr && domains_.defined(value) ? value : nullptr;
  }

  bool evalbar_compare(term_ptr left, term_ptr right) const {
    constexpr solver_id tests[] = {solver_id::numeric_calc, solver_id::poly_rat,   solver_id::interval,
                                   solver_id::rootfrac,     solver_id::root_power, solver_id::func_apply,
                                   solver_id::eqb,          solver_id::reflexivity};
    return term_eqb(left, right) || equal_by(tests, left, right, sdata_);
  }

  const solve_data& sdata_;
  function_evaluator evaluator_;
  domain_prover domains_;
  prover premises_;
};

}  // namespace

bool solver_eval_bar(term_ptr target, const solve_data& sdata) {
  const auto equation = solver_func_binary_pred(target, Eq);
  return equation && !is_one_whole(target) && bar_evaluation(sdata).proves(equation->left, equation->right);
}

}  // namespace vetro
