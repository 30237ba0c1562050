// The rules of differentiation and the walk that applies them.
//
// The elementary functions bring their rules along; those of arithmetic stand here. What has no rule has no derivative,
// unless the variable does not occur in it.
#include "qv_solver_list/calculus/derivative.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "number/budget.h"
#include "number/limits.h"
#include "term/build.h"
#include "term/functions.h"
#include "term/term_split_combine.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

term_ptr of(oper_type oper, term_ptr u) { return make_unOp_term(oper, u); }

term_ptr number(std::int32_t value) { return mk_integer(value); }

term_ptr square(term_ptr u) { return mk_power(u, number(2)); }

// The operand of |u|, or null.
term_ptr inside_absolute_value(term_ptr t) {
  const auto view = composed_term_split(t);
  return view && view->oper == Abs && view->t2 == nullptr ? view->t1 : nullptr;
}

// A number of at least 1: an integer, or a quotient of integers.
bool is_at_least_one(term_ptr exponent) {
  const auto view = composed_term_split(exponent);
  if (view && (view->oper == Div || view->oper == Frac) && is_constant(view->t1, Integer) &&
      is_constant(view->t2, Integer)) {
    return view->t2->integer() > 0 && view->t1->integer() >= view->t2->integer();
  }
  return is_constant(exponent, Integer) && exponent->integer() >= 1;
}

term_ptr product_rule(term_ptr l, term_ptr dl, term_ptr r, term_ptr dr) {
  term_ptr first = mk_product(dl, r);
  term_ptr second = mk_product(l, dr);
  return mk_sum(first, second);
}

term_ptr quotient_rule(term_ptr l, term_ptr dl, term_ptr r, term_ptr dr) {
  term_ptr first = mk_product(dl, r);
  term_ptr second = mk_product(l, dr);
  term_ptr numerator = mk_difference(first, second);
  return mk_quotient(numerator, square(r));
}

// (b^e)' for a base without the variable: b^e * ln(b) * de, where ln(e) is left out.
term_ptr exponential_rule(term_ptr b, term_ptr e, term_ptr de) {
  term_ptr value = mk_power(b, e);
  if (!is_constant(b, E)) {
    value = mk_product(value, of(Ln, b));
  }
  return mk_product(value, de);
}

// (b^e)' for an exponent without the variable: e * b^(e - 1) * db.
term_ptr power_rule(term_ptr b, term_ptr db, term_ptr e) {
  if (is_constant(e, Integer) && e->integer() == std::numeric_limits<std::int32_t>::min()) {
    return nullptr;
  }
  term_ptr lowered = mk_power(b, mk_difference(e, number(1)));
  return mk_product(mk_product(e, lowered), db);
}

// (b^e)' where both move: b^e * (de * ln(b) + e * (db / b)).
term_ptr general_power_rule(term_ptr b, term_ptr db, term_ptr e, term_ptr de) {
  term_ptr by_exponent = mk_product(de, of(Ln, b));
  term_ptr by_base = mk_product(e, mk_quotient(db, b));
  term_ptr value = mk_power(b, e);
  return mk_product(value, mk_sum(by_exponent, by_base));
}

term_ptr mk_function_derivative(term_ptr f, std::int32_t index, std::int32_t order, term_span point) {
  term_list args{f, number(index), number(order)};
  args.insert(args.end(), point.begin(), point.end());
  return mk_apply_all(mk_oper(FunDeri), args);
}

// The derivative of FunDeri(f, index, order, point) by the place i of its point, from 1 on.
term_ptr partial_derivative(const function_derivative& value, std::int32_t i) {
  if (i != value.index) {
    term_ptr derived = mk_function_derivative(value.function, value.index, value.order, {});
    return mk_function_derivative(derived, i, 1, value.point);
  }
  const bool fits = value.order < std::numeric_limits<std::int32_t>::max();
  return fits ? mk_function_derivative(value.function, value.index, value.order + 1, value.point) : nullptr;
}

}  // namespace

differentiator::differentiator(term_ptr var) : var_(var->bare()) {}

// The variable stands somewhere in t, under a binder that is no `fun` or quantifier of it too: an indefinite integral
// over x is a function of x.
bool differentiator::depends(term_ptr t) {
  if ((var_->name_mask() & ~t->name_mask()) != 0) {
    return false;
  }
  if (t->type() == Var && !t->has_meta()) {
    return t == var_;
  }
  return depends_.get(t, [&] { return depends_inside(t); });
}

bool differentiator::depends_inside(term_ptr t) {
  const auto any_of = [this](term_span list) {
    return std::any_of(list.begin(), list.end(), [this](term_ptr part) { return part != nullptr && depends(part); });
  };
  if (any_of(t->binders()) || (t->scope() != nullptr && depends(t->scope()))) {
    return true;
  }
  if (t->type() == Var) {
    return t->bare() == var_;
  }
  if (t->type() == Lambda || t->type() == Quant) {
    const term_span vars = t->vars();
    if (std::any_of(vars.begin(), vars.end(), [this](term_ptr v) { return v->bare() == var_; })) {
      return false;
    }
  }
  return any_of(t->children());
}

term_ptr differentiator::of(term_ptr t) { return t == nullptr || is_one_whole(t) ? nullptr : derive(t); }

term_ptr differentiator::nth(term_ptr t, std::int32_t order) {
  if (order < 1) {
    return nullptr;
  }
  for (std::int32_t i = 0; i < order && t != nullptr; ++i) {
    term_ptr next = of(t);
    if (next == t) {  // 0, or e^x: all further derivatives are the same
      return t;
    }
    t = next;
  }
  return t;
}

term_ptr differentiator::derive(term_ptr t) {
  return known_.get(t, [&] { return depends(t) ? derive_new(t) : number(0); });
}

term_ptr differentiator::derive_new(term_ptr t) {
  if (++work_ > limits::derivative_steps) {
    ++ended_budgets;
    return nullptr;
  }
  if (t->has_meta()) {
    return nullptr;
  }
  if (t->type() == Var) {
    return number(1);
  }
  if (t->type() != Apply) {
    return nullptr;
  }
  const spine applied = spine_of(t);
  if (applied.head->type() != Oper || applied.head->has_meta()) {
    return nullptr;
  }
  if (applied.args.size() == 1) {
    return derive_unary(applied.head->oper(), applied.args[0]);
  }
  if (applied.args.size() == 2) {
    return derive_binary(applied.head->oper(), applied.args[0], applied.args[1]);
  }
  return derive_function_value(applied);
}

term_ptr differentiator::derive_unary(oper_type oper, term_ptr u) {
  if (oper == Ln) {
    if (term_ptr inner = inside_absolute_value(u)) {
      return mk_fraction(derive(inner), inner);
    }
  }
  const known_function* f = find_function(oper);
  const bool has_rule = oper == Neg || (f != nullptr && f->derivative != nullptr);
  term_ptr du = has_rule ? derive(u) : nullptr;
  if (du == nullptr) {
    return nullptr;
  }
  if (oper == Neg) {
    return mk_neg(du);
  }
  if (f->radicand != nullptr) {
    branch_points_.push_back({f->radicand(u), du});
  }
  return f->derivative(u, du);
}

term_ptr differentiator::derive_binary(oper_type oper, term_ptr l, term_ptr r) {
  switch (oper) {
    case Power:
      return derive_power(l, r);
    case Sqrtn:
      return derive_root(l, r);
    case Plus:
    case Minus:
    case Mult:
    case Div:
    case Frac:
      break;
    default:
      return nullptr;
  }
  term_ptr dl = derive(l);
  term_ptr dr = dl == nullptr ? nullptr : derive(r);
  if (dr == nullptr) {
    return nullptr;
  }
  switch (oper) {
    case Plus:
      return mk_sum(dl, dr);
    case Minus:
      return mk_difference(dl, dr);
    case Mult:
      return product_rule(l, dl, r, dr);
    default:
      return quotient_rule(l, dl, r, dr);
  }
}

term_ptr differentiator::derive_power(term_ptr b, term_ptr e) {
  term_ptr db = derive(b);
  term_ptr de = db == nullptr ? nullptr : derive(e);
  if (de == nullptr) {
    return nullptr;
  }
  if (!depends(b)) {
    return is_integer(de, 0) ? de : exponential_rule(b, e, de);
  }
  if (!depends(e) && (is_integer(db, 0) || is_integer(e, 0))) {
    return number(0);
  }
  if (!is_constant(e, Integer) && !is_at_least_one(e)) {
    branch_points_.push_back({b, db});
  }
  return depends(e) ? general_power_rule(b, db, e, de) : power_rule(b, db, e);
}

// r' / (k * sqrtn(k, r^(k - 1))); for the square root r itself stands under the root.
term_ptr differentiator::derive_root(term_ptr index, term_ptr radicand) {
  if (!is_constant(index, Integer) || index->integer() < 1) {
    return nullptr;
  }
  term_ptr dr = derive(radicand);
  if (dr == nullptr || is_integer(dr, 0)) {
    return dr;
  }
  branch_points_.push_back({radicand, dr});
  return over_root(dr, index->integer(), mk_power(radicand, number(index->integer() - 1)));
}

// The chain rule: the sum of the partial derivatives by the places of the point, each times the derivative of what
// stands there.
term_ptr differentiator::derive_function_value(const spine& applied) {
  function_derivative value;
  if (!as_function_derivative(applied, value) || value.point.size() < static_cast<std::size_t>(value.index) ||
      depends(value.function)) {
    return nullptr;
  }
  term_ptr sum = number(0);
  std::int32_t place = 0;
  for (term_ptr argument : value.point) {
    ++place;
    term_ptr da = derive(argument);
    if (da == nullptr) {
      return nullptr;
    }
    if (is_integer(da, 0)) {
      continue;
    }
    term_ptr partial = partial_derivative(value, place);
    sum = mk_sum(sum, mk_product(partial, da));
    if (sum == nullptr) {
      return nullptr;
    }
  }
  return sum;
}

term_ptr derivative(term_ptr t, term_ptr var) { return is_var(var) ? differentiator(var).of(t) : nullptr; }

bool as_function_derivative(const spine& applied, function_derivative& out) {
  if (!is_oper(applied.head, FunDeri) || applied.args.size() < 3 || !is_constant(applied.args[1], Integer) ||
      !is_constant(applied.args[2], Integer)) {
    return false;
  }
  out = {applied.args[0], applied.args[1]->integer(), applied.args[2]->integer(),
         term_list(applied.args.begin() + 3, applied.args.end())};
  return out.index >= 1 && out.order >= 1;
}

}  // namespace vetro
