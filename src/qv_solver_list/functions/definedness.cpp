// The tables of the domain prover. An expression is opened from the outside: first its parts must be defined, then the
// operator's own condition must hold of them.
#include "qv_solver_list/functions/definedness.h"

#include <algorithm>

#include "number/limits.h"
#include "qv_solver_list/algebra/numeric_calc.h"
#include "qv_solver_list/functions/conditions.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

std::optional<std::int64_t> exact_integer(term_ptr t) {
  const auto value = solver_numeric_calc_eval_rational(solver_numeric_calc_simplify(t));
  return value ? value->to_int64() : std::nullopt;
}

// Nodes that were searched hold none.
bool holds_infinity(term_ptr t, node_set& searched) {
  if (t == nullptr || (t->type() != Const && !searched.insert(t))) {
    return false;
  }
  if (t->type() == Const && is_infinity(t->constant())) {
    return true;
  }
  const auto holds_it = [&](term_ptr part) { return holds_infinity(part, searched); };
  const auto parts = t->children();
  return std::any_of(parts.begin(), parts.end(), holds_it) || holds_it(t->scope()) ||
         std::any_of(t->binders().begin(), t->binders().end(), holds_it);
}

}  // namespace

bool solver_expr_domain_is_finite_term(term_ptr t) {
  node_set searched;
  return t != nullptr && !holds_infinity(t, searched);
}

domain_prover::domain_prover(const solve_data& sdata, const domain_policy& policy)
    : premises_(sdata, policy.premise_solvers), policy_(policy) {}

bool domain_prover::defined(term_ptr expr) {
  if (expr == nullptr) {
    return false;
  }
  return defined_.get(expr, [&] {
    defined_.keep(expr, false);  // what needs itself is not defined
    return read_defined(expr);
  });
}

bool domain_prover::read_defined(term_ptr t) {
  switch (t->type()) {
    case Var:
      return !t->has_meta();
    case Const:
      return is_constant(t, E) || is_constant(t, Pi) ||
             (!t->has_meta() && (t->constant() == Integer || t->constant() == Decimal));
    case FreeVarTag:
      return defined(t->body());
    case Apply:
      return !t->has_meta() && application_defined(spine_of(t));
    default:
      return false;
  }
}

bool domain_prover::application_defined(const spine& applied) {
  const auto& [head, args] = applied;
  if (!std::all_of(args.begin(), args.end(), [&](term_ptr arg) { return defined(arg); })) {
    return false;
  }
  if (head->type() == Oper && !head->has_meta()) {
    return (args.size() == 1 && unary_defined(head->oper(), args[0])) ||
           (args.size() == 2 && binary_defined(head->oper(), args[0], args[1]));
  }
  return (args.size() == 1 && is_exponential(head)) || defined(unfolded(applied));
}

// The value of an applied function, where it may be looked through and is shown to be defined for the arguments; else
// null.
term_ptr domain_prover::unfolded(const spine& applied) {
  const auto& [head, args] = applied;
  const bool allowed = (head->type() == Lambda && policy_.allow_lambda_applications) ||
                       (head->type() == Var && policy_.allow_named_functions);
  if (!allowed || unfoldings_ >= limits::domain_unfoldings) {
    return nullptr;
  }
  ++unfoldings_;
  term_ptr lambda = head->type() == Lambda ? head : solver_func_resolve_lambda(head, args.size(), args, premises_);
  const auto params = lambda == nullptr ? std::nullopt : solver_func_lambda_params_valid(lambda);
  if (!params || *params > args.size()) {
    return nullptr;
  }
  const term_span leading = term_span(args).first(*params);
  if (!solver_func_lambda_applies(lambda, leading, premises_)) {
    return nullptr;
  }
  return mk_apply_all(solver_func_apply_lambda(lambda, leading), term_span(args).subspan(*params));
}

// A name is the exponential function only where no assumption speaks of it.
bool domain_prover::is_exponential(term_ptr head) {
  return is_var(head) && !head->has_meta() && head->name() == "exp" && !facts_of(premises_.data()).mentions("exp");
}

bool domain_prover::unary_defined(oper_type oper, term_ptr operand) {
  switch (oper) {
    case Neg:
      return true;
    case Abs:
    case Cbrt:
    case Sin:
    case Cos:
    case Sqrt:
    case Ln:
    case Lg:
    case Tan:
      return is_in(find_function(oper)->domain, operand);
    case Arctan:
      return policy_.allow_arctan;
    default:
      return false;
  }
}

bool domain_prover::is_in(const natural_domain& domain, term_ptr operand) {
  term_ptr subject = subject_of(domain, operand);
  return domain.holds_by([&](const domain_condition& c) {
    return c.pred == Neq && c.value == 0 ? nonzero(subject) : relation_to(c.pred, subject, c.value);
  });
}

bool domain_prover::binary_defined(oper_type oper, term_ptr left, term_ptr right) {
  switch (oper) {
    case Plus:
    case Minus:
    case Mult:
      return true;
    case Div:
    case Frac:
      return nonzero(right);
    case Power:
      return power_defined(left, right);
    case Sqrt:
    case Sqrtn:
      return root_defined(left, right);
    case Log:
      return relation_to(Gt, left, 0) && relation_to(Neq, left, 1) && relation_to(Gt, right, 0);
    default:
      return false;
  }
}

bool domain_prover::power_defined(term_ptr base, term_ptr exponent) {
  if (const auto whole = exact_integer(exponent)) {
    return *whole > 0 || nonzero(base);
  }
  return (policy_.allow_e_base_power && is_constant(base, E)) || relation_to(Gt, base, 0);
}

bool domain_prover::root_defined(term_ptr index, term_ptr radicand) {
  const auto whole = exact_integer(index);
  return whole && *whole > 0 && (*whole % 2 != 0 || relation_to(Ge, radicand, 0));
}

bool domain_prover::nonzero(term_ptr expr) {
  if (expr == nullptr) {
    return false;
  }
  return nonzero_.get(expr, [&] {
    return read_nonzero(solver_numeric_calc_simplify(expr)) || relation_to(Neq, expr, 0) || relation_to(Gt, expr, 0) ||
           relation_to(Lt, expr, 0);
  });
}

// By the parts: a product is not zero when no factor is.
bool domain_prover::read_nonzero(term_ptr t) {
  if (const auto value = solver_numeric_calc_eval_rational(t)) {
    return !value->is_zero();
  }
  const auto view = composed_term_split(t);
  if (!view) {
    return false;
  }
  if (view->t2 == nullptr) {
    const bool keeps_zero = view->oper == Neg || view->oper == Abs || view->oper == Sqrt || view->oper == Cbrt;
    return keeps_zero && nonzero(view->t1);
  }
  switch (view->oper) {
    case Mult:
    case Div:
    case Frac:
      return nonzero(view->t1) && nonzero(view->t2);
    case Power: {
      const auto whole = exact_integer(view->t2);
      return whole && (*whole == 0 || nonzero(view->t1));
    }
    case Sqrt:
    case Sqrtn: {
      const auto whole = exact_integer(view->t1);
      return whole && *whole >= 1 && nonzero(view->t2);
    }
    default:
      return false;
  }
}

bool domain_prover::relation_to(pred_type pred, term_ptr expr, std::int32_t right) {
  return relation(pred, expr, mk_integer(right));
}

bool domain_prover::relation(pred_type pred, term_ptr left, term_ptr right) {
  if (left == nullptr || right == nullptr) {
    return false;
  }
  term_ptr first = solver_numeric_calc_simplify(left);
  term_ptr second = solver_numeric_calc_simplify(right);
  const auto left_value = solver_numeric_calc_eval_rational(first);
  const auto right_value = left_value ? solver_numeric_calc_eval_rational(second) : std::nullopt;
  if (right_value && is_order_relation(pred) && holds(pred, (*left_value - *right_value).sign())) {
    return true;
  }
  return premises_.relation(pred, first, second);
}

bool solver_expr_domain_is_defined(term_ptr expr, const solve_data& sdata, const domain_policy& policy) {
  return expr != nullptr && solver_expr_domain_is_finite_term(expr) && domain_prover(sdata, policy).defined(expr);
}

}  // namespace vetro
