// A small, fixed reasoning about one variable: a table says when a comparison of it with a constant holds, and what no
// longer mentions the variable goes to the sign solver.
#include "dsl_interpreter/instructions/rewrite_in_conditions.h"

#include <algorithm>
#include <functional>

#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/complex_values.h"
#include "qv_solver_list/number_reading.h"
#include "term/compare.h"
#include "term/number_set.h"
#include "term/pattern_match.h"
#include "term/relation.h"
#include "term/substitute/instantiate.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/variables/free_names.h"

namespace vetro {
namespace {

// ---- Statements that do not mention the variable.

bool prove_pure(term_ptr t, const solve_data& sdata) {
  return call_decision_solver(find_solver(solver_id::sgn_pure), t, sdata);
}

bool prove_relation_pure(term_ptr left, pred_type pred, term_ptr right, const solve_data& sdata) {
  if (alpha_equivalent(left, right) && pred != Neq) {
    return pred == Eq || pred == Ge || pred == Le;
  }
  return prove_pure(make_binPred_prop(pred, left, right), sdata);
}

// ---- Points and infinities.

bool is_infty(term_ptr t) { return t->type() == Const && is_infinity(t->constant()); }

bool is_plus_infty(term_ptr t) { return is_infty(t) && t->constant() != NegInfty; }

bool term_contains_infty(term_ptr t) { return any_subterm(t, walk_children | walk_scope, is_infty); }

bool term_is_finite_boundary(term_ptr t) { return t != nullptr && !term_contains_infty(t); }

// ---- Recognising what the tables speak of.

// The comparison with zero that a signed set stands for; `any` stands for none.
pred_type relation_of_sign(sign_class sign) {
  switch (sign) {
    case sign_class::positive:
      return Gt;
    case sign_class::negative:
      return Lt;
    case sign_class::nonpositive:
      return Le;
    default:
      return Ge;
  }
}

// A polynomial in names and exact constants, continuous everywhere.
bool eventual_point_expr_is_polynomial_safe(term_ptr e) {
  if (e->has_meta()) {
    return false;
  }
  if (e->type() == Var) {
    return true;
  }
  if (e->type() == Const) {
    return e->constant() == Integer || e->constant() == Decimal || e->constant() == E || e->constant() == Pi;
  }
  const auto view = composed_term_split(e);
  if (!view) {
    return false;
  }
  switch (view->oper) {
    case Neg:
      return view->t2 == nullptr && eventual_point_expr_is_polynomial_safe(view->t1);
    case Plus:
    case Minus:
    case Mult:
      return view->t2 != nullptr && eventual_point_expr_is_polynomial_safe(view->t1) &&
             eventual_point_expr_is_polynomial_safe(view->t2);
    case Power:
      return view->t2 != nullptr && is_constant(view->t2, Integer) && view->t2->integer() >= 1 &&
             eventual_point_expr_is_polynomial_safe(view->t1);
    default:
      return false;
  }
}

// ---- Conjunctions and chains.

// The statements that t consists of: both sides of a conjunction, the links of a chain; t alone where it is neither. A
// scope belongs to the whole.
term_list immediate_parts(term_ptr t) {
  if (t->scope() != nullptr) {
    return {t};
  }
  const auto view = composed_prop_split(t);
  if (view && view->connect == And && view->t2 != nullptr) {
    return {view->t1, view->t2};
  }
  if (is_predchain(t) && !t->has(fact_ellipsis)) {
    return predchain_split(t);
  }
  return {t};
}

// Each conjunct of a premise has to hold. A failing one is remembered; of a chain that is the chain as it is written.
bool all_conjuncts_hold(term_ptr c, rewrite_in_state& state, const char* reason,
                        const std::function<bool(term_ptr)>& atom_holds) {
  const term_list parts = immediate_parts(c);
  if (parts.size() == 1 && parts.front() == c) {
    if (atom_holds(c)) {
      return true;
    }
  } else if (is_predchain(c)) {
    if (std::all_of(parts.begin(), parts.end(), atom_holds)) {
      return true;
    }
  } else {
    return std::all_of(parts.begin(), parts.end(),
                       [&](term_ptr part) { return all_conjuncts_hold(part, state, reason, atom_holds); });
  }
  state.remember_failed_condition(c, reason);
  return false;
}

// ---- Limits.

enum class limit_event_kind : std::uint8_t {
  pos_inf = 0,
  neg_inf,
  finite_two_sided,
  finite_right,
  finite_left,
  unsupported,
};

limit_event_kind classify_limit_context(const limit_context& view) {
  if (!is_var(view.var) || view.var->has_meta() || occurs_free(view.var, view.point)) {
    return limit_event_kind::unsupported;
  }
  const bool infinite = is_infty(view.point);
  if (!infinite && term_contains_infty(view.point)) {
    return limit_event_kind::unsupported;
  }
  switch (view.op) {
    case SeqLim:
      return is_plus_infty(view.point) ? limit_event_kind::pos_inf : limit_event_kind::unsupported;
    case Lim:
      if (infinite) {
        return is_plus_infty(view.point) ? limit_event_kind::pos_inf : limit_event_kind::neg_inf;
      }
      return limit_event_kind::finite_two_sided;
    case RightLim:
      return infinite ? limit_event_kind::unsupported : limit_event_kind::finite_right;
    case LeftLim:
      return infinite ? limit_event_kind::unsupported : limit_event_kind::finite_left;
    default:
      return limit_event_kind::unsupported;
  }
}

// When `variable pred constant` holds eventually: always, never, or where the point compares so with the constant.
enum class eventually : std::uint8_t { always, never, point_gt, point_ge, point_lt, point_le, distinct };

struct eventual_row {
  limit_event_kind kind;
  eventually above;      // Gt, Ge
  eventually below;      // Lt, Le
  eventually elsewhere;  // Neq
};

using enum eventually;
constexpr eventual_row eventual_table[] = {
    {limit_event_kind::pos_inf, always, never, always},
    {limit_event_kind::neg_inf, never, always, always},
    {limit_event_kind::finite_two_sided, point_gt, point_lt, distinct},
    {limit_event_kind::finite_right, point_ge, point_lt, distinct},
    {limit_event_kind::finite_left, point_gt, point_le, distinct},
};

class eventual_conditions {
 public:
  eventual_conditions(const limit_context& view, limit_event_kind kind, const solve_data& sdata)
      : view_(view), kind_(kind), sdata_(sdata) {}

  bool atom_holds(term_ptr c) const {
    const auto relation = c->scope() == nullptr ? pred_split(c) : std::nullopt;
    if (!relation) {
      return !mentions(c) && is_assumption(c, sdata_);
    }
    if (relation->pred == Belong) {
      return belongs(relation->left, relation->right) || (!mentions(c) && is_assumption(c, sdata_));
    }
    if (!is_order_relation(relation->pred)) {
      return !mentions(c) && is_assumption(c, sdata_);
    }
    return compares(*relation) || compares_normalized(*relation) || compares_at_point(*relation) ||
           compares_linear(*relation) || prove_pure(c, sdata_);
  }

 private:
  bool mentions(term_ptr t) const { return occurs_free(view_.var, t); }
  bool is_variable(term_ptr t) const { return alpha_equivalent(t, view_.var); }
  // Then the variable is complex for the sign solver, too: the walk has it among the assumptions.
  bool complex_point() const { return facts_of(sdata_).table<complex_values>().may_be_complex(view_.point); }
  bool finite() const { return kind_ != limit_event_kind::pos_inf && kind_ != limit_event_kind::neg_inf; }

  bool compares(const prop& c) const {
    const bool left = mentions(c.left);
    const bool right = mentions(c.right);
    if (!left && !right) {
      return prove_relation_pure(c.left, c.pred, c.right, sdata_);
    }
    if (is_variable(c.left) && !right) {
      return eventually_compare(view_.point, c.pred, c.right);
    }
    return is_variable(c.right) && !left && eventually_compare(view_.point, *mirrored(c.pred), c.left);
  }

  bool eventually_compare(term_ptr point, pred_type pred, term_ptr constant) const {
    if (pred == Eq || (!finite() && !term_is_finite_boundary(constant))) {
      return false;
    }
    const eventual_row& row = eventual_table[static_cast<std::size_t>(kind_)];
    switch (pred == Neq ? row.elsewhere : pred == Gt || pred == Ge ? row.above : row.below) {
      case always:
        return true;
      case never:
        return false;
      case point_gt:
        return prove_relation_pure(point, Gt, constant, sdata_);
      case point_ge:
        return prove_relation_pure(point, Ge, constant, sdata_);
      case point_lt:
        return prove_relation_pure(point, Lt, constant, sdata_);
      case point_le:
        return prove_relation_pure(point, Le, constant, sdata_);
      case distinct:
        return alpha_equivalent(point, constant) || prove_relation_pure(point, Neq, constant, sdata_);
    }
    return false;
  }

  // The index of a sequence is an integer, the variable of another limit any real number near the point.
  bool belongs(term_ptr left, term_ptr right) const {
    const auto set = is_variable(left) ? number_set_of(right) : std::nullopt;
    if (!set || (view_.op != SeqLim && (set->c != number_class::real || complex_point()))) {
      return false;
    }
    return set->s == sign_class::any || eventually_compare(view_.point, relation_of_sign(set->s), mk_integer(0));
  }

  // A comparison of the variable with the point, however it is written: the difference of its sides is that of the two,
  // or its negative.
  bool compares_normalized(const prop& c) const {
    if (!eventual_point_expr_is_polynomial_safe(c.left) || !eventual_point_expr_is_polynomial_safe(c.right) ||
        (finite() && !eventual_point_expr_is_polynomial_safe(view_.point))) {
      return false;
    }
    const term_ptr zero = mk_integer(0);
    const term_ptr difference = make_binOp_term(Minus, c.left, c.right);
    const term_ptr distance = finite() ? make_binOp_term(Minus, view_.var, view_.point) : view_.var;
    const term_ptr point = finite() ? zero : view_.point;
    if (poly_rat_eqb(difference, distance) && eventually_compare(point, c.pred, zero)) {
      return true;
    }
    return poly_rat_eqb(difference, make_binOp_term(Minus, zero, distance)) &&
           eventually_compare(point, *mirrored(c.pred), zero);
  }

  // Polynomials are continuous: a strict comparison of their values at the point holds around it.
  bool compares_at_point(const prop& c) const {
    if (!finite() || c.pred == Eq || !eventual_point_expr_is_polynomial_safe(c.left) ||
        !eventual_point_expr_is_polynomial_safe(c.right)) {
      return false;
    }
    const pred_type strict = c.pred == Ge ? Gt : c.pred == Le ? Lt : c.pred;
    const term_ptr left = instantiate_term(view_.var, view_.point, c.left);
    const term_ptr right = instantiate_term(view_.var, view_.point, c.right);
    return prove_relation_pure(left, strict, right, sdata_);
  }

  // Far out, k * x + b has the sign of k * x. A premise about x at the value n + 1 is of this form.
  bool compares_linear(const prop& c) const {
    if (finite() || !eventual_point_expr_is_polynomial_safe(c.left) ||
        !eventual_point_expr_is_polynomial_safe(c.right)) {
      return false;
    }
    const term_ptr zero = mk_integer(0);
    const term_ptr difference = make_binOp_term(Minus, c.left, c.right);
    const term_ptr constant = instantiate_term(view_.var, zero, difference);
    if (poly_rat_eqb(difference, make_binOp_term(Plus, constant, view_.var))) {
      return eventually_compare(view_.point, c.pred, zero);
    }
    if (poly_rat_eqb(difference, make_binOp_term(Minus, constant, view_.var))) {
      return eventually_compare(view_.point, *mirrored(c.pred), zero);
    }
    const term_ptr at_one = instantiate_term(view_.var, mk_integer(1), difference);
    const auto slope = evaluate(make_binOp_term(Minus, at_one, constant), {.powers = true});
    const term_ptr factor = slope && !slope->is_zero() ? number_term(*slope) : nullptr;
    if (factor == nullptr ||
        !poly_rat_eqb(difference, make_binOp_term(Plus, make_binOp_term(Mult, factor, view_.var), constant))) {
      return false;
    }
    return eventually_compare(view_.point, slope->sign() > 0 ? c.pred : *mirrored(c.pred), zero);
  }

  const limit_context& view_;
  limit_event_kind kind_;
  const solve_data& sdata_;
};

// ---- Sums.

class range_conditions {
 public:
  range_conditions(const sum_context& view, const solve_data& sdata) : view_(view), sdata_(sdata) {}

  bool atom_holds(term_ptr c) const {
    if (!mentions(c)) {
      return is_assumption(c, sdata_) || constant_holds(c);
    }
    const auto relation = c->scope() == nullptr ? pred_split(c) : std::nullopt;
    if (!relation) {
      return false;
    }
    if (relation->pred == Belong) {
      return belongs(relation->left, relation->right);
    }
    if (!is_order_relation(relation->pred)) {
      return false;
    }
    if (is_index(relation->left) && !mentions(relation->right)) {
      return solve_sum_index_compare(relation->pred, relation->right);
    }
    return is_index(relation->right) && !mentions(relation->left) &&
           solve_sum_index_compare(*mirrored(relation->pred), relation->left);
  }

 private:
  bool mentions(term_ptr t) const { return occurs_free(view_.var, t); }
  bool is_index(term_ptr t) const { return alpha_equivalent(t, view_.var); }
  bool sum_upper_is_finite() const { return term_is_finite_boundary(view_.upper); }
  bool lower_has(pred_type pred, term_ptr constant) const {
    return prove_relation_pure(view_.lower, pred, constant, sdata_);
  }
  bool upper_has(pred_type pred, term_ptr constant) const {
    return sum_upper_is_finite() && prove_relation_pure(view_.upper, pred, constant, sdata_);
  }

  bool constant_holds(term_ptr c) const {
    const auto relation = c->scope() == nullptr ? pred_split(c) : std::nullopt;
    return relation && is_order_relation(relation->pred)
               ? prove_relation_pure(relation->left, relation->pred, relation->right, sdata_)
               : prove_pure(c, sdata_);
  }

  // Whether every index of the range has the relation to the constant.
  bool solve_sum_index_compare(pred_type pred, term_ptr constant) const {
    if (!term_is_finite_boundary(constant)) {
      return false;
    }
    switch (pred) {
      case Gt:
      case Ge:
        return lower_has(pred, constant);
      case Lt:
      case Le:
        return upper_has(pred, constant);
      case Eq:
        return sum_upper_is_finite() && lower_has(Eq, constant) && upper_has(Eq, constant);
      default:
        return lower_has(Gt, constant) || upper_has(Lt, constant);
    }
  }

  // The index runs in steps of one from the lower bound, so that it is an integer only where that is one.
  bool belongs(term_ptr left, term_ptr right) const {
    const auto set = is_index(left) ? number_set_of(right) : std::nullopt;
    if (!set || ((set->c == number_class::integer || set->c == number_class::rational) &&
                 !is_known_to_lie_in(view_.lower, set->c))) {
      return false;
    }
    return set->s == sign_class::any || solve_sum_index_compare(relation_of_sign(set->s), mk_integer(0));
  }

  // From literals and memberships among the assumptions, through sums, differences and products.
  bool is_known_to_lie_in(term_ptr t, number_class c) const {
    if (t->has_meta()) {
      return false;
    }
    if (is_constant(t, Integer)) {
      return true;
    }
    if (is_constant(t, Decimal)) {
      return c == number_class::rational;
    }
    if (const auto view = composed_term_split(t)) {
      const bool unary = view->oper == Neg && view->t2 == nullptr;
      const bool binary = (view->oper == Plus || view->oper == Minus || view->oper == Mult) && view->t2 != nullptr;
      return (unary || binary) && is_known_to_lie_in(view->t1, c) && (unary || is_known_to_lie_in(view->t2, c));
    }
    bool known = false;
    facts_of(sdata_).for_each_set_of(t, [&](const_type name) {
      const auto set = number_set_of(name);
      known = known || (set && set->c <= c);
    });
    return known;
  }

  const sum_context& view_;
  const solve_data& sdata_;
};

// ---- Set descriptions.

bool solve_setdesc_condition_with_local_assumptions(term_ptr c, const term_list& flat, const solve_data& local) {
  const auto is_c = [c](term_ptr known) { return alpha_equivalent(known, c); };
  return std::any_of(flat.begin(), flat.end(), is_c) || is_assumption(c, local) || prove_pure(c, local) ||
         call_decision_solver(find_solver(solver_id::smt_lra), c, local);
}

void flatten_condition(term_ptr condition, term_list& flat) {
  const term_list parts = immediate_parts(condition);
  if (parts.size() == 1 && parts.front() == condition) {
    flat.push_back(condition);
    return;
  }
  if (is_predchain(condition)) {
    flat.push_back(condition);
  }
  for (term_ptr part : parts) {
    flatten_condition(part, flat);
  }
}

}  // namespace

bool solve_all_eventual_conditions(const limit_context& view, term_ptr instance, rewrite_in_state& state) {
  const limit_event_kind kind = classify_limit_context(view);
  if (kind == limit_event_kind::unsupported) {
    state.failure_reason = "unsupported limit context for rewrite_in limit";
    return false;
  }
  const eventual_conditions conditions(view, kind, state.sdata);
  const auto atom_holds = [&conditions](term_ptr c) { return conditions.atom_holds(c); };
  return std::all_of(state.rule.conditions.begin(), state.rule.conditions.end(), [&](term_ptr condition) {
    const term_ptr instantiated = instantiate_term(state.rule.qvar, instance, condition);
    if (instantiated == nullptr) {
      state.remember_failed_condition(condition, "side condition is not eventually true in this limit context");
      return false;
    }
    return all_conjuncts_hold(instantiated, state, "side condition is not an automatically solvable eventual condition",
                              atom_holds);
  });
}

bool solve_all_sum_conditions(const sum_context& view, rewrite_in_state& state) {
  const range_conditions conditions(view, state.sdata);
  const auto atom_holds = [&conditions](term_ptr c) { return conditions.atom_holds(c); };
  return std::all_of(state.rule.conditions.begin(), state.rule.conditions.end(), [&](term_ptr condition) {
    const term_ptr instantiated = instantiate_term(state.rule.qvar, view.var, condition);
    if (instantiated == nullptr) {
      state.remember_failed_condition(condition, "side condition is not true on the whole sum range");
      return false;
    }
    return all_conjuncts_hold(instantiated, state, "side condition is not automatically true on the whole sum range",
                              atom_holds);
  });
}

bool solve_all_setdesc_conditions_from_flat(term_ptr var, const term_list& flat, rewrite_in_state& state) {
  if (state.rule.conditions.empty()) {
    return true;
  }
  // No assumption speaks of the set's variable: it has a name that means nothing in the proof state.
  const solve_data local = with_assumptions(state.sdata, flat);
  return std::all_of(state.rule.conditions.begin(), state.rule.conditions.end(), [&](term_ptr condition) {
    const term_ptr instantiated = instantiate_term(state.rule.qvar, var, condition);
    if (instantiated != nullptr && solve_setdesc_condition_with_local_assumptions(instantiated, flat, local)) {
      return true;
    }
    state.remember_failed_condition(instantiated == nullptr ? condition : instantiated,
                                    "side condition is not implied by set description conditions");
    return false;
  });
}

term_list flattened_setdesc_conditions(const term_list& conditions) {
  term_list flat;
  std::for_each(conditions.begin(), conditions.end(), [&flat](term_ptr c) { flatten_condition(c, flat); });
  return flat;
}

}  // namespace vetro
