// Equations that contain limits, and what tends to what: each limit that can be evaluated is replaced by its value,
// then the sides are compared.
//
// At infinity a limit is the value of a rational function, or 0 where the growth order is negative. At a finite point
// it is the value of the body there, once that is proved defined: what counts as defined is continuous. One-sided
// limits, limits at negative infinity and divergent ones are left as they stand.
#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

#include "qv_solver_list/algebra/numeric_calc.h"
#include "qv_solver_list/analysis/eventual_behaviour.h"
#include "qv_solver_list/functions/definedness.h"
#include "qv_solver_list/number_reading.h"
#include "qv_solver_list/solvers.h"
#include "qv_solver_list/univariate.h"
#include "term/compare.h"
#include "term/pattern_match.h"
#include "term/substitute/careful.h"
#include "term/substitute/fresh.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/variables/binding.h"

namespace vetro {
namespace {

// Asked in this order whether the sides agree.
constexpr std::array comparisons = {solver_id::numeric_calc, solver_id::poly_rat, solver_id::rootfrac};

struct limit_goal {
  term_ptr left;
  term_ptr right;
};

term_ptr limit_term(oper_type kind, term_ptr var, term_ptr point, term_ptr body) {
  const term_ptr parts[] = {var, point, body};
  term_ptr limit = mk_apply_all(mk_oper(kind), parts);
  return is_var(var) ? with_binders(limit, {var}) : limit;
}

std::optional<limit_goal> split_limit_calc_goal(term_ptr target) {
  if (target == nullptr || target->scope() != nullptr) {
    return std::nullopt;
  }
  if (const auto view = pred_split(target)) {
    return view->pred == Eq ? std::optional(limit_goal{view->left, view->right}) : std::nullopt;
  }
  term_ptr var = nullptr;
  term_ptr point = nullptr;
  term_ptr body = nullptr;
  term_ptr value = nullptr;
  if (match(target, "TendsTo(?, ?, ?, ?)", var, point, body, value)) {
    return limit_goal{limit_term(Lim, var, point, body), value};
  }
  if (match(target, "SeqTendsTo(?, ?, ?, ?)", var, point, body, value)) {
    return limit_goal{limit_term(SeqLim, var, point, body), value};
  }
  return std::nullopt;
}

bool contains_term(term_ptr t, term_ptr part) {
  return any_subterm(t, walk_apply | walk_body | walk_elements, [part](term_ptr node) { return term_eqb(node, part); });
}

bool is_pos_infty(term_ptr point) { return is_constant(point, PosInfty) || is_constant(point, Infty); }

// Below a name that a node binds or speaks of, assumptions about that name say nothing.
solve_data without_mentions(const solve_data& sdata, term_span names) {
  solve_data out{.assum = {}, .target = sdata.target, .lib = sdata.lib, .log_file = sdata.log_file};
  std::copy_if(sdata.assum.begin(), sdata.assum.end(), std::back_inserter(out.assum), [names](term_ptr assumption) {
    return std::none_of(names.begin(), names.end(),
                        [assumption](term_ptr name) { return name_occurs(name->name(), assumption); });
  });
  return out;
}

// One evaluation of all limits in a term. Terms below binding nodes are evaluated by a simplifier of their own, which
// has fewer assumptions.
class limit_simplifier {
 public:
  explicit limit_simplifier(const solve_data& sdata) : sdata_(sdata), domain_(sdata, limit_domain_policy) {}

  term_ptr simplify(term_ptr t);
  bool changed() const { return changed_; }

 private:
  term_ptr evaluated(term_ptr t);
  term_ptr inside(term_ptr t);
  term_ptr at_finite_point(term_ptr var, term_ptr point, term_ptr body);
  bool continuous_at(term_ptr t, term_ptr var, term_ptr point);
  bool positive_at(term_ptr t, term_ptr var, term_ptr point);

  const solve_data& sdata_;
  domain_prover domain_;
  bool changed_ = false;
  node_memo<term_ptr> done_;
};

term_ptr limit_simplifier::simplify(term_ptr t) {
  if (t->type() != Apply) {
    return t;
  }
  return done_.get(t, [&] {
    const term_ptr value = evaluated(t);
    changed_ = changed_ || value != nullptr;
    return value == nullptr ? inside(t) : value;
  });
}

// The value of the limit t; null where t is none or cannot be evaluated.
term_ptr limit_simplifier::evaluated(term_ptr t) {
  term_ptr var = nullptr;
  term_ptr point = nullptr;
  term_ptr body = nullptr;
  const bool of_function = match(t, "Lim(?, ?, ?)", var, point, body);
  if ((!of_function && !match(t, "SeqLim(?, ?, ?)", var, point, body)) || !is_var(var) || t->scope() != nullptr) {
    return nullptr;
  }
  if (is_pos_infty(point)) {
    const auto value = eventual_behaviour(var).limit(body);
    return value ? number_term(*value) : nullptr;
  }
  return of_function ? at_finite_point(var, point, body) : nullptr;
}

// t with the limits in its parts evaluated. A domain belongs to an expression as it is written, which a value has not.
term_ptr limit_simplifier::inside(term_ptr t) {
  if (is_oper(t->left(), Dom) || is_pred(t->left(), Defined)) {
    return t;
  }
  const term_list names = touched_names(t);
  if (names.empty()) {
    return map_children(t, walk_apply | keep_meta, [this](term_ptr part) { return simplify(part); });
  }
  const solve_data outside = without_mentions(sdata_, names);
  limit_simplifier below(outside);
  term_ptr out = map_children(t, walk_apply | keep_meta, [&below](term_ptr part) { return below.simplify(part); });
  changed_ = changed_ || below.changed();
  return out;
}

term_ptr limit_simplifier::at_finite_point(term_ptr var, term_ptr point, term_ptr body) {
  if (contains_term(point, var) || !domain_.defined(point)) {
    return nullptr;
  }
  term_ptr at_point = subst_term_capture_avoiding(var, point, body);
  if (at_point == nullptr || !domain_.defined(at_point) || !continuous_at(body, var, point)) {
    return nullptr;
  }
  term_ptr simplified = solver_numeric_calc_simplify(at_point);
  if (simplified == nullptr) {
    return nullptr;
  }
  const auto value = constant_rational(simplified);
  term_ptr number = value ? number_term(*value) : nullptr;
  return number != nullptr ? number : simplified;
}

// Every form that counts as defined is continuous where it is, but two: a power whose exponent moves ((-1)^x is defined
// at 2 and nowhere near it), and a root whose index moves. Both are, where the base is positive.
bool limit_simplifier::continuous_at(term_ptr t, term_ptr var, term_ptr point) {
  return !any_subterm(t, walk_apply, [&](term_ptr node) {
    const auto view = composed_term_split(node);
    if (!view || view->t2 == nullptr) {
      return false;
    }
    if (view->oper == Power) {
      return contains_term(view->t2, var) && !positive_at(view->t1, var, point);
    }
    const bool is_root = view->oper == Sqrtn || view->oper == Sqrt;
    return is_root && contains_term(view->t1, var) && !positive_at(view->t2, var, point);
  });
}

bool limit_simplifier::positive_at(term_ptr t, term_ptr var, term_ptr point) {
  term_ptr at_point = subst_term_capture_avoiding(var, point, t);
  return at_point != nullptr && domain_.relation(Gt, at_point, mk_integer(0));
}

bool sides_equal(term_ptr left, term_ptr right) {
  if (term_eqb(left, right)) {
    return true;
  }
  const auto a = constant_rational(left);
  const auto b = a ? constant_rational(right) : std::nullopt;
  return b && *a == *b;
}

}  // namespace

// Proves an equation with limits whose sides agree when the limits are evaluated. Without an evaluated limit nothing is
// proved: such equations are other solvers' business.
bool solver_limit_calc(term_ptr target, const solve_data& sdata) {
  const auto goal = split_limit_calc_goal(target);
  if (!goal) {
    return false;
  }
  limit_simplifier limits_of(sdata);
  term_ptr left = limits_of.simplify(goal->left);
  term_ptr right = limits_of.simplify(goal->right);
  if (!limits_of.changed()) {
    return false;
  }
  if (sides_equal(left, right)) {
    return true;
  }
  term_ptr equation = make_binPred_prop(Eq, left, right);
  return std::any_of(comparisons.begin(), comparisons.end(), [&](solver_id id) {
    const solver_decide solve = find_solver(id);
    return solve != nullptr && solve(equation, sdata);
  });
}

}  // namespace vetro
