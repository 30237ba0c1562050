// Continuity of a function at a point or on a set, by a walk through its body: what is built from continuous parts is
// continuous where each operator's natural domain is kept.
//
// On a set, continuity is that of the restriction. A condition on the point is proved for the value of the body's parts
// there; a condition on the set for an arbitrary point of it, a reserved name.
#include <algorithm>
#include <array>
#include <optional>

#include "qv_solver_list/calculus/rational_interval.h"
#include "qv_solver_list/functions/conditions.h"
#include "qv_solver_list/functions/definedness.h"
#include "qv_solver_list/functions/definitions.h"
#include "qv_solver_list/premises.h"
#include "qv_solver_list/solvers.h"
#include "term/compare.h"
#include "term/functions.h"
#include "term/node_memo.h"
#include "term/reserved.h"
#include "term/substitute/beta.h"
#include "term/substitute/careful.h"
#include "term/substitute/fresh.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

enum class cont_goal_kind : std::uint8_t { CONT_AT = 0, CONT_ON = 1 };
using enum cont_goal_kind;

constexpr std::size_t most_unfoldings = 64;  // of named functions inside one another

// A function of one operand that has no jumps and no gaps.
bool cont_is_entire_unary(oper_type oper) {
  const known_function* f = find_function(oper);
  return f != nullptr && f->is_total() && !f->jumps;
}

// One that is continuous on its natural domain. The decimal logarithm and hyperbolic quotients are not looked into.
bool cont_is_domain_unary(oper_type oper) {
  const known_function* f = find_function(oper);
  return f != nullptr && !f->is_total() && !f->has_index && oper != Lg && oper != Coth && oper != Csch;
}

// The known functions apply to compositions, but for these two.
bool cont_unary_allows_composition(oper_type oper) {
  return oper != Abs && oper != Cbrt && (cont_is_entire_unary(oper) || cont_is_domain_unary(oper));
}

bool mentions(term_ptr t, term_ptr var) { return name_occurs(var->name(), t); }

// A constant that is a finite real number.
bool is_real_constant(const_type kind) { return kind == Integer || kind == Decimal || kind == E || kind == Pi; }

std::optional<std::int32_t> root_index(term_ptr index) {
  return is_constant(index, Integer) && index->integer() >= 1 ? std::optional(index->integer()) : std::nullopt;
}

// One question: a function, at a point or on a set.
class continuity {
 public:
  continuity(cont_goal_kind kind, term_ptr locus, const solve_data& sdata)
      : kind_(kind),
        locus_(locus),
        sdata_(sdata),
        premises_(sdata, side_table::cont),
        point_(reserved_var(reserved_kind::point, 0)),
        in_locus_(kind == CONT_ON ? make_binPred_prop(Belong, point_, locus) : nullptr),
        at_any_point_(kind == CONT_ON ? premises_.under(term_list{in_locus_}) : premises_),
        interval_(kind == CONT_ON ? read_rational_interval(locus) : std::nullopt) {}

  bool solve(term_ptr func);

 private:
  bool has_value(term_ptr t);
  term_ptr resolve_goal_func(term_ptr func);
  bool applies(term_ptr lambda);
  bool body_is_continuous(term_ptr lambda);

  bool expr_check(term_ptr expr, term_ptr var);
  bool read_expr(term_ptr expr, term_ptr var);
  bool check_unary(oper_type oper, term_ptr a, term_ptr var);
  bool check_binary(oper_type oper, term_ptr left, term_ptr right, term_ptr var);
  bool check_named_leaf(const spine& applied, term_ptr var);

  bool expr_defined(term_ptr t);
  bool read_defined(term_ptr t);
  bool unary_defined(oper_type oper, term_ptr a);
  bool binary_defined(oper_type oper, term_ptr left, term_ptr right);

  bool domain_kept(oper_type oper, term_ptr a, term_ptr base, term_ptr var);
  bool point_domain(oper_type oper, term_ptr u, term_ptr base);
  bool interval_domain(oper_type oper) const;
  bool nonzero_here(term_ptr e, term_ptr var);
  bool base_of_logarithm(term_ptr base) { return base != nullptr && proves(Gt, base, 0) && not_one(base); }

  term_ptr at(term_ptr t, term_ptr var, term_ptr value);
  bool on_fact(term_ptr fact, term_ptr var);
  bool nonzero(term_ptr e);
  bool not_one(term_ptr e);
  bool numeric_equal(term_ptr e, std::int32_t value);
  bool proves(pred_type pred, term_ptr left, std::int32_t right) { return premises_.relation(pred, left, right); }

  cont_goal_kind kind_;
  term_ptr locus_;
  const solve_data& sdata_;
  prover premises_;
  term_ptr point_;
  term_ptr in_locus_;
  prover at_any_point_;
  std::optional<rational_interval> interval_;
  term_list expanding_;  // the named functions that are being unfolded, innermost last
  // What was shown. The walk is a conjunction: with the first part that fails it ends, so that no refusal comes up
  // twice.
  node_set continuous_;  // parts, by their variable
  node_set defined_;
};

// ---- The function.

// A point has a value unless arithmetic says otherwise: a name, applied or not, stands for a finite real.
bool continuity::has_value(term_ptr t) {
  const spine applied = spine_of(t);
  if (applied.head->type() != Var) {
    return expr_defined(t);
  }
  return std::all_of(applied.args.begin(), applied.args.end(), [this](term_ptr arg) { return has_value(arg); });
}

bool continuity::solve(term_ptr func) {
  if (kind_ == CONT_AT && !has_value(locus_)) {
    return false;
  }
  term_ptr normal = beta_normalize_term(func);
  term_ptr lambda = normal == nullptr ? nullptr : resolve_goal_func(normal);
  if (lambda == nullptr) {
    return false;
  }
  if (spine_of(normal).head->type() == Var) {
    expanding_.push_back(normal);
  }
  return body_is_continuous(lambda);
}

term_ptr continuity::resolve_goal_func(term_ptr func) {
  if (func->type() == Oper) {
    if (!cont_is_entire_unary(func->oper()) && !cont_is_domain_unary(func->oper())) {
      return nullptr;
    }
    term_ptr parameter = reserved_var(reserved_kind::parameter, 0);
    term_ptr value = mk_apply(func, parameter);
    return mk_lambda(term_list{parameter}, {make_lambda_real_type()}, nullptr, value);
  }
  if (kind_ == CONT_AT) {
    const term_ptr point[] = {locus_};
    return solver_func_resolve_lambda_pointwise(func, 1, point, premises_);
  }
  // A definition's premise has to hold at every point of the set.
  const auto holds_on_set = [this](const premise_question& question) {
    if (question.values.size() != question.fixed + 1) {
      return false;
    }
    term_ptr premise = solver_func_substitute_args(question.premise, question.params, question.values);
    return premise != nullptr && on_fact(premise, question.values[question.fixed]);
  };
  return solver_func_resolve_lambda_with_options(func, 1, {.custom_premise_checker = holds_on_set}, premises_);
}

// The function's types and its condition hold around the point, or at every point of the set.
bool continuity::applies(term_ptr lambda) {
  if (kind_ == CONT_AT) {
    return solver_func_lambda_applies_openly(lambda, term_list{locus_}, premises_);
  }
  const term_list required = solver_func_lambda_premises(lambda, term_list{point_});
  return std::all_of(required.begin(), required.end(), [this](term_ptr fact) { return on_fact(fact, point_); });
}

bool continuity::body_is_continuous(term_ptr lambda) {
  lambda = beta_normalize_term(lambda);
  if (lambda == nullptr || lambda->type() != Lambda || lambda->scope() != nullptr ||
      solver_func_lambda_params_valid(lambda) != std::size_t{1} || !applies(lambda)) {
    return false;
  }
  return expr_check(lambda->body(), lambda->vars().front());
}

// ---- The walk.

bool continuity::expr_check(term_ptr expr, term_ptr var) {
  if (continuous_.contains(expr, var->serial())) {
    return true;
  }
  const bool answer = read_expr(expr, var);
  if (answer) {
    continuous_.insert(expr, var->serial());
  }
  return answer;
}

bool continuity::read_expr(term_ptr expr, term_ptr var) {
  if (expr->scope() != nullptr) {
    return false;
  }
  if (!mentions(expr, var) || term_eqb(expr, var)) {
    return expr_defined(expr);
  }
  const spine applied = spine_of(expr);
  if (applied.head->type() != Oper) {
    return check_named_leaf(applied, var);
  }
  switch (applied.args.size()) {
    case 1:
      return check_unary(applied.head->oper(), applied.args[0], var);
    case 2:
      return check_binary(applied.head->oper(), applied.args[0], applied.args[1], var);
    default:
      return false;
  }
}

bool continuity::check_unary(oper_type oper, term_ptr a, term_ptr var) {
  if (oper == Neg) {
    return expr_check(a, var);
  }
  if (!term_eqb(a, var) && !cont_unary_allows_composition(oper)) {
    return false;
  }
  if (!expr_check(a, var)) {
    return false;
  }
  return cont_is_entire_unary(oper) || (cont_is_domain_unary(oper) && domain_kept(oper, a, nullptr, var));
}

bool continuity::check_binary(oper_type oper, term_ptr left, term_ptr right, term_ptr var) {
  const auto child = [&](term_ptr part) { return expr_check(part, var); };
  switch (oper) {
    case Plus:
    case Minus:
    case Mult:
      return child(left) && child(right);
    case Div:
    case Frac:
      return child(left) && child(right) && nonzero_here(right, var);
    case Log:
      return !mentions(left, var) && base_of_logarithm(left) && child(right) && domain_kept(Log, right, left, var);
    case Sqrt:
    case Sqrtn: {
      const auto index = root_index(left);
      return index && child(right) && (*index % 2 != 0 || domain_kept(Sqrtn, right, nullptr, var));
    }
    case Power:
      return !mentions(left, var) && expr_defined(left) && proves(Gt, left, 0) && child(right);
    default:
      return false;
  }
}

// f(x), or f(a, x) with f(a) free of x: known to be continuous, or defined by an expression that is.
bool continuity::check_named_leaf(const spine& applied, term_ptr var) {
  if (applied.head->type() != Var || applied.args.empty() || !term_eqb(applied.args.back(), var)) {
    return false;
  }
  const term_span leading(applied.args.data(), applied.args.size() - 1);
  term_ptr prefix = mk_apply_all(applied.head, leading);
  if (mentions(prefix, var)) {
    return false;
  }
  if (premises_.proves(make_binPred_prop(kind_ == CONT_AT ? ContinuousFuncAt : ContinuousFuncOn, prefix, locus_))) {
    return true;
  }
  const bool unfolding = std::any_of(expanding_.begin(), expanding_.end(), [prefix](term_ptr outer) {
    return term_eqb(outer, prefix) || alpha_equivalent(outer, prefix);
  });
  term_ptr lambda = unfolding || expanding_.size() > most_unfoldings ? nullptr : resolve_goal_func(prefix);
  if (lambda == nullptr) {
    return false;
  }
  expanding_.push_back(prefix);
  const bool answer = body_is_continuous(lambda);
  expanding_.pop_back();
  return answer;
}

// ---- What is free of the variable.

bool continuity::expr_defined(term_ptr t) {
  if (t->type() == Apply && defined_.contains(t)) {
    return true;
  }
  const bool answer = t->scope() == nullptr && read_defined(t);
  if (answer && t->type() == Apply) {
    defined_.insert(t);
  }
  return answer;
}

bool continuity::read_defined(term_ptr t) {
  if (t->type() == Var || t->type() == Oper) {
    return true;
  }
  if (t->type() == Const) {
    return is_real_constant(t->constant());
  }
  const auto view = composed_term_split(t);
  if (!view) {
    return false;
  }
  return view->t2 == nullptr ? unary_defined(view->oper, view->t1) : binary_defined(view->oper, view->t1, view->t2);
}

bool continuity::unary_defined(oper_type oper, term_ptr a) {
  const known_function* f = find_function(oper);
  const bool everywhere = oper == Neg || (f != nullptr && f->is_total());
  return expr_defined(a) && (everywhere || (cont_is_domain_unary(oper) && point_domain(oper, a, nullptr)));
}

bool continuity::binary_defined(oper_type oper, term_ptr left, term_ptr right) {
  const bool known = oper == Plus || oper == Minus || oper == Mult || oper == Div || oper == Frac || oper == Power ||
                     oper == Sqrt || oper == Sqrtn || oper == Log;
  if (!known || !expr_defined(left) || !expr_defined(right)) {
    return false;
  }
  switch (oper) {
    case Div:
    case Frac:
      return nonzero(right);
    case Power:
      // 0^0 and powers of negative numbers that are no integers have no value.
      return proves(Gt, left, 0) || (proves(Gt, right, 0) && premises_.member(right, IntegerSet));
    case Sqrt:
    case Sqrtn: {
      const auto index = root_index(left);
      return index && (*index % 2 != 0 || point_domain(Sqrtn, right, nullptr));
    }
    case Log:
      return point_domain(Log, right, left);
    default:
      return true;
  }
}

// ---- Natural domains, of functions that are known.

bool continuity::domain_kept(oper_type oper, term_ptr a, term_ptr base, term_ptr var) {
  if (kind_ == CONT_AT || !mentions(a, var)) {
    term_ptr u = kind_ == CONT_AT ? at(a, var, locus_) : a;
    return u != nullptr && point_domain(oper, u, base);
  }
  if (term_eqb(a, var) && interval_domain(oper)) {
    return true;
  }
  const natural_domain& domain = find_function(oper)->domain;
  term_ptr subject = subject_of(domain, a);
  return domain.holds_by([&](const domain_condition& c) {
    return c.pred == Neq ? nonzero_here(subject, var)
                         : on_fact(make_binPred_prop(c.pred, subject, mk_integer(c.value)), var);
  });
}

bool continuity::point_domain(oper_type oper, term_ptr u, term_ptr base) {
  if (oper == Log && !base_of_logarithm(base)) {
    return false;
  }
  const natural_domain& domain = find_function(oper)->domain;
  term_ptr subject = subject_of(domain, u);
  return domain.holds_by(
      [&](const domain_condition& c) { return c.pred == Neq ? nonzero(subject) : proves(c.pred, subject, c.value); });
}

// Every point of the set is in the domain, told by the ends of the set alone.
bool continuity::interval_domain(oper_type oper) const {
  const natural_domain& domain = find_function(oper)->domain;
  return interval_ && domain.subject == domain_subject::argument &&
         domain.holds_by([this](const domain_condition& c) { return holds_on(*interval_, c); });
}

bool continuity::nonzero_here(term_ptr e, term_ptr var) {
  if (kind_ == CONT_AT) {
    term_ptr value = at(e, var, locus_);
    return value != nullptr && nonzero(value);
  }
  constexpr std::array ways = {Neq, Gt, Lt};
  return std::any_of(ways.begin(), ways.end(),
                     [&](pred_type pred) { return on_fact(make_binPred_prop(pred, e, mk_integer(0)), var); });
}

// ---- Facts.

term_ptr continuity::at(term_ptr t, term_ptr var, term_ptr value) {
  term_ptr substituted = subst_term_capture_avoiding(var, value, t);
  return substituted == nullptr ? nullptr : beta_normalize_term(substituted);
}

// The fact holds for each point of the set in place of the variable: as a known universal statement, else for an
// arbitrary point.
bool continuity::on_fact(term_ptr fact, term_ptr var) {
  term_ptr instance = at(fact, var, point_);
  if (instance == nullptr) {
    return false;
  }
  term_ptr implication = make_composed_prop(Impl, in_locus_, instance);
  return premises_.proves(mk_quant(Forall, term_list{point_}, implication)) || at_any_point_.proves(instance);
}

bool continuity::nonzero(term_ptr e) {
  return proves(Neq, e, 0) || proves(Gt, e, 0) || proves(Lt, e, 0) || numeric_equal(e, 1) || numeric_equal(e, -1);
}

bool continuity::not_one(term_ptr e) {
  return proves(Neq, e, 1) || proves(Gt, e, 1) || proves(Lt, e, 1) || numeric_equal(e, 0) || numeric_equal(e, 2) ||
         numeric_equal(e, -1);
}

bool continuity::numeric_equal(term_ptr e, std::int32_t value) {
  const solver_decide numeric_calc = find_solver(solver_id::numeric_calc);
  return numeric_calc != nullptr && numeric_calc(make_binPred_prop(Eq, e, mk_integer(value)), sdata_);
}

// ---- Goals.

bool is_real_locus(cont_goal_kind kind, term_ptr locus) {
  return kind == CONT_AT ? solver_expr_domain_is_finite_term(locus) : !is_constant(locus, ComplexSet);
}

bool cont_solve(term_ptr func, cont_goal_kind kind, term_ptr locus, const solve_data& sdata) {
  return is_real_locus(kind, locus) && !is_one_whole(func) && continuity(kind, locus, sdata).solve(func);
}

// The closed interval [lower, upper] with real ends in this order.
bool is_real_closed_interval(term_ptr set, const solve_data& sdata) {
  const auto view = composed_term_split(set);
  if (!view || view->oper != IntervalLcRc || view->t2 == nullptr || set->scope() != nullptr) {
    return false;
  }
  prover premises(sdata, side_table::integrable);
  const auto is_real = [&](term_ptr end) {
    return solver_expr_domain_is_finite_term(end) && premises.member(end, RealSet);
  };
  return is_real(view->t1) && is_real(view->t2) && premises.relation(Le, view->t1, view->t2);
}

}  // namespace

// Proves ContinuousFuncAt(f, a) and ContinuousFuncOn(f, S).
bool solver_continuous_func(term_ptr target, const solve_data& sdata) {
  if (target == nullptr || target->scope() != nullptr) {
    return false;
  }
  if (prover(sdata, side_table::cont).proves(target)) {
    return true;
  }
  if (const auto at_point = solver_func_binary_pred(target, ContinuousFuncAt)) {
    return cont_solve(at_point->left, CONT_AT, at_point->right, sdata);
  }
  if (const auto on_set = solver_func_binary_pred(target, ContinuousFuncOn)) {
    return cont_solve(on_set->left, CONT_ON, on_set->right, sdata);
  }
  return false;
}

// Proves IntegrableFuncOn(f, [a, b]) by continuity there; other sets only where it is an assumption.
bool solver_integrable_func(term_ptr target, const solve_data& sdata) {
  const auto goal = target == nullptr ? std::nullopt : solver_func_binary_pred(target, IntegrableFuncOn);
  if (!goal) {
    return false;
  }
  if (facts_of(sdata).holds_part(target)) {
    return true;
  }
  return is_real_closed_interval(goal->right, sdata) &&
         solver_continuous_func(make_binPred_prop(ContinuousFuncOn, goal->left, goal->right), sdata);
}

}  // namespace vetro
