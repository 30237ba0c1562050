// A formula says nothing where it divides by 0, but calculation does not look at domains: 0/0 reads 0 there. So
// divisors are looked at where the point is put in, those of the function, too: the rules may have folded them away.
#include "qv_solver_list/calculus/derivative_value.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "qv_solver_list/algebra/numeric_calc.h"
#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/calculus/derivative.h"
#include "qv_solver_list/functions/definitions.h"
#include "term/functions.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"

namespace vetro {
namespace {

bool different_plain_names(term_span params) {
  node_set names;
  return std::all_of(params.begin(), params.end(),
                     [&](term_ptr p) { return is_var(p) && !p->has_meta() && names.insert(p); });
}

bool equals(term_ptr t, std::int32_t value) {
  return poly_rat_eqb(t, mk_integer(value)) || poly_rat_eqb(solver_numeric_calc_simplify(t), mk_integer(value));
}

// A term with the values put in that numeric calculation does not know, from the inside out.
class special_value_walk {
 public:
  term_ptr in(term_ptr t) {
    return t->type() == Apply ? known_.get(t, [&] { return evaluated(t); }) : t;
  }

 private:
  term_ptr evaluated(term_ptr t) {
    term_ptr result = map_children(t, walk_apply | keep_meta, [this](term_ptr part) { return in(part); });
    const auto view = composed_term_split(result);
    if (!view || view->t2 != nullptr) {
      return result;
    }
    const known_function* f = find_function(view->oper);
    const bool has_value = f != nullptr && f->value && equals(view->t1, f->value->at);
    return has_value ? mk_integer(f->value->value) : result;
  }

  node_memo<term_ptr> known_;
};

term_ptr with_special_values(term_ptr t) { return special_value_walk().in(t); }

// t is 0, also by the values of sines, logarithms and the like in it.
bool is_zero(term_ptr t);

// A product, quotient, power or root of 0.
bool is_built_on_zero(term_ptr t) {
  const auto view = composed_term_split(t);
  if (!view) {
    return false;
  }
  switch (view->oper) {
    case Mult:
      return view->t2 != nullptr && (is_zero(view->t1) || is_zero(view->t2));
    case Neg:
    case Div:
    case Frac:
    case Power:
    case Abs:
    case Sqrt:
    case Cbrt:
      return is_zero(view->t1);
    case Sqrtn:
      return view->t2 != nullptr && is_zero(view->t2);
    default:
      return false;
  }
}

bool is_zero(term_ptr t) { return equals(t, 0) || is_built_on_zero(t); }

bool is_negative_number(term_ptr exponent) {
  const auto value = solver_numeric_calc_eval_rational(exponent);
  return value && value->sign() < 0;
}

// The operator divides by 0 there, or takes the logarithm of 0.
bool ends_at(const composed_term& view) {
  switch (view.oper) {
    case Div:
    case Frac:
      return view.t2 != nullptr && is_zero(view.t2);
    case Power:
      return view.t2 != nullptr && is_negative_number(view.t2) && is_zero(view.t1);
    case Log:
      return view.t2 != nullptr && is_zero(view.t2);
    case Ln:
    case Lg:
      return is_zero(view.t1);
    default: {
      const known_function* f = find_function(view.oper);
      return f != nullptr && f->domain.subject != domain_subject::argument && is_zero(subject_of(f->domain, view.t1));
    }
  }
}

// Somewhere in t an operator ends.
bool divides_by_zero(term_ptr t, node_set& met) {
  if (t == nullptr || t->type() != Apply || !met.insert(t)) {
    return false;
  }
  const auto view = composed_term_split(t);
  return (view && ends_at(*view)) || divides_by_zero(t->left(), met) || divides_by_zero(t->right(), met);
}

// The rule that divides by the root tells something at the point.
bool tells(const branch_point& branch, term_span params, term_span point, domain_prover& facts) {
  term_ptr slope = solver_func_substitute_args(branch.slope, params, point);
  return slope != nullptr && (!is_zero(with_special_values(slope)) ||
                              facts.nonzero(solver_func_substitute_args(branch.radicand, params, point)));
}

class known_derivatives {
 public:
  explicit known_derivatives(domain_prover& facts) : facts_(facts) {}

  term_ptr reduce(term_ptr t) {
    if (t->type() != Apply) {
      return t;
    }
    return known_.get(t, [&] { return reduce_node(t); });
  }

 private:
  term_ptr reduce_node(term_ptr t) {
    const term_ptr result = map_children(t, walk_apply | keep_meta, [this](term_ptr part) { return reduce(part); });
    const term_ptr value = value_of(result);
    return value == nullptr ? result : value;
  }

  term_ptr value_of(term_ptr t) {
    function_derivative d;
    if (t->has_meta() || !as_function_derivative(spine_of(t), d) || d.function->type() != Lambda ||
        d.function->condition() != nullptr || d.function->has_meta()) {
      return nullptr;
    }
    const derivative_step step{d.index, d.order};
    return derivative_value(d.function->body(), d.function->vars(), {&step, 1}, d.point, facts_);
  }

  domain_prover& facts_;
  node_memo<term_ptr> known_;
};

}  // namespace

term_ptr derivative_value(term_ptr body, term_span params, std::span<const derivative_step> steps, term_span point,
                          domain_prover& facts) {
  if (params.size() != point.size() || !different_plain_names(params)) {
    return nullptr;
  }
  node_set met;
  const auto at_point = [&](term_ptr t) { return solver_func_substitute_args(t, params, point); };
  const auto ends = [&](term_ptr t) { return t == nullptr || divides_by_zero(with_special_values(t), met); };
  if (ends(at_point(body))) {
    return nullptr;
  }
  term_ptr derived = body;
  std::vector<branch_point> branches;
  for (const auto& [index, order] : steps) {
    if (index < 1 || static_cast<std::size_t>(index) > params.size()) {
      return nullptr;
    }
    differentiator by_parameter(params[static_cast<std::size_t>(index) - 1]);
    derived = by_parameter.nth(derived, order);
    if (derived == nullptr) {
      return nullptr;
    }
    branches.insert(branches.end(), by_parameter.branch_points().begin(), by_parameter.branch_points().end());
  }
  const bool all_tell = std::all_of(branches.begin(), branches.end(),
                                    [&](const branch_point& branch) { return tells(branch, params, point, facts); });
  term_ptr value = all_tell ? at_point(derived) : nullptr;
  return ends(value) ? nullptr : value;
}

term_ptr reduce_known_derivatives(term_ptr t, domain_prover& facts) { return known_derivatives(facts).reduce(t); }

}  // namespace vetro
