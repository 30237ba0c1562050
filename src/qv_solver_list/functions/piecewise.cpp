// An open condition ends the search: whatever comes behind it, its own case might be the one that holds.
#include "qv_solver_list/functions/piecewise.h"

#include <algorithm>

#include "term/term_split_combine.h"

namespace vetro {
namespace {

bool is_proposition(term_ptr t) {
  if (t->type() == Quant) {
    return true;
  }
  while (t->type() == Apply) {
    t = t->left();
  }
  return t->type() == Pred || t->type() == Connect || is_constant(t, False);
}

// The value and the condition, when t is a pair whose second part is a proposition; t as the value that holds
// otherwise, when it is not.
piecewise_branch branch_of(term_ptr t) {
  const auto pair = [t](term_ptr value, term_ptr condition) {
    return is_proposition(condition) ? piecewise_branch{value, condition} : piecewise_branch{t, nullptr};
  };
  if (t->has_meta() || !is_apply(t)) {
    return {t, nullptr};
  }
  if (is_oper(t->left(), Tuple) && t->right()->type() == TermList && t->right()->elements().size() == 2) {
    return pair(t->right()->elements()[0], t->right()->elements()[1]);
  }
  const auto view = composed_term_split(t);
  return view && view->oper == Tuple && view->t2 != nullptr ? pair(view->t1, view->t2) : piecewise_branch{t, nullptr};
}

bool condition_holds(term_ptr condition, bool want, const solver_func_piecewise_select_options& options) {
  const solver_func_condition_context context{options.params, options.values, options.premises, options.fuel,
                                              options.normalizer};
  if (options.semantics == SOLVER_FUNC_PIECEWISE_OPEN_AT) {
    return want ? solver_func_condition_true_open_at(condition, context)
                : solver_func_condition_false_open_at(condition, context);
  }
  return want ? solver_func_condition_true_at_point(condition, context)
              : solver_func_condition_false_at_point(condition, context);
}

}  // namespace

std::optional<std::vector<piecewise_branch>> solver_func_piecewise_branches(term_ptr t) {
  if (!solver_func_piecewise_is_piecewise(t)) {
    return std::nullopt;
  }
  std::vector<piecewise_branch> branches;
  for (term_ptr element : t->right()->elements()) {
    if (is_constant(element, Ellipsis)) {
      return std::nullopt;
    }
    branches.push_back(branch_of(element));
  }
  return branches;
}

bool solver_func_piecewise_is_piecewise(term_ptr t) {
  return is_apply(t) && !t->has_meta() && is_oper(t->left(), PiecewiseFunc) && t->right()->type() == TermList;
}

term_ptr solver_func_piecewise_select(term_ptr t, const solver_func_piecewise_select_options& options) {
  const auto branches = options.fuel < 1 ? std::nullopt : solver_func_piecewise_branches(t);
  if (!branches) {
    return nullptr;
  }
  for (const piecewise_branch& branch : *branches) {
    if (branch.condition == nullptr || condition_holds(branch.condition, true, options)) {
      const bool normalizes = options.normalize_selected_value && options.normalizer;
      return normalizes ? options.normalizer(branch.value, options.fuel - 1) : branch.value;
    }
    if (!condition_holds(branch.condition, false, options)) {
      return nullptr;
    }
  }
  return nullptr;
}

}  // namespace vetro
