// The tables of signs, definedness and growth at infinity. Rational functions come first in each; what follows reads
// the outermost operator. A logarithm counts as order 0, because it grows slower than every power.
#include "qv_solver_list/analysis/eventual_behaviour.h"

#include <algorithm>

#include "term/term_split_combine.h"

namespace vetro {
namespace {

limit_sign sign_of(int value) { return value > 0 ? LIMIT_SIGN_POS : value < 0 ? LIMIT_SIGN_NEG : LIMIT_SIGN_ZERO; }

bool is_zero_or_unknown(limit_sign s) { return s == LIMIT_SIGN_ZERO || s == LIMIT_SIGN_UNKNOWN; }

limit_sign product_sign(limit_sign a, limit_sign b) {
  return a == LIMIT_SIGN_UNKNOWN || b == LIMIT_SIGN_UNKNOWN ? LIMIT_SIGN_UNKNOWN : sign_of(a * b);
}

// The index of a root, a positive integer constant.
std::optional<exact> root_index(term_ptr index) {
  const auto value = constant_rational(index);
  return value && value->is_integer() && value->sign() > 0 ? value : std::nullopt;
}

// A constant that is a finite real number.
bool is_real_constant(const_type kind) { return kind == Integer || kind == Decimal || kind == E || kind == Pi; }

}  // namespace

limit_sign eventual_behaviour::sign(term_ptr t) {
  return signs_.get(t, [&] { return compute_sign(t); });
}

limit_sign eventual_behaviour::compute_sign(term_ptr t) {
  if (const ratio* r = ratios_.read(t)) {
    return sign_of(eventual_sign(*r));
  }
  const auto view = composed_term_split(t);
  if (!view || t->scope() != nullptr) {
    return LIMIT_SIGN_UNKNOWN;
  }
  if (view->t2 != nullptr) {
    return sign_of_binary(view->oper, view->t1, view->t2);
  }
  switch (view->oper) {
    case Neg:
      return product_sign(sign(view->t1), LIMIT_SIGN_NEG);
    case Abs: {
      const limit_sign s = sign(view->t1);
      return product_sign(s, s);
    }
    case Ln:
      return sign_of_logarithm(view->t1);
    default:
      return LIMIT_SIGN_UNKNOWN;
  }
}

limit_sign eventual_behaviour::sign_of_binary(oper_type oper, term_ptr left, term_ptr right) {
  switch (oper) {
    case Mult:
      return product_sign(sign(left), sign(right));
    case Div:
    case Frac:
      return is_zero_or_unknown(sign(right)) ? LIMIT_SIGN_UNKNOWN : product_sign(sign(left), sign(right));
    case Power:
      return sign_of_power(left, right);
    case Sqrtn:
      return root_index(left) && positive(right) ? LIMIT_SIGN_POS : LIMIT_SIGN_UNKNOWN;
    default:
      return LIMIT_SIGN_UNKNOWN;
  }
}

limit_sign eventual_behaviour::sign_of_power(term_ptr base, term_ptr exponent) {
  const auto e = constant_rational(exponent);
  const limit_sign s = e ? sign(base) : LIMIT_SIGN_UNKNOWN;
  if (s == LIMIT_SIGN_UNKNOWN) {
    return LIMIT_SIGN_UNKNOWN;
  }
  if (!e->is_integer()) {
    return s == LIMIT_SIGN_POS ? LIMIT_SIGN_POS : LIMIT_SIGN_UNKNOWN;
  }
  if (e->is_zero()) {
    return s != LIMIT_SIGN_ZERO ? LIMIT_SIGN_POS : LIMIT_SIGN_UNKNOWN;
  }
  if (s == LIMIT_SIGN_ZERO) {
    return e->sign() > 0 ? LIMIT_SIGN_ZERO : LIMIT_SIGN_UNKNOWN;
  }
  const auto half = quotient(*e, 2);
  return half && half->is_integer() ? LIMIT_SIGN_POS : s;
}

limit_sign eventual_behaviour::sign_of_logarithm(term_ptr a) {
  if (const auto c = constant_rational(a)) {
    return c->sign() > 0 ? sign_of((*c - 1).sign()) : LIMIT_SIGN_UNKNOWN;
  }
  const auto order = positive(a) ? growth_order(a) : std::nullopt;
  return order && !order->is_zero() ? sign_of(order->sign()) : LIMIT_SIGN_UNKNOWN;
}

bool eventual_behaviour::defined(term_ptr t) {
  if (t == nullptr) {
    return false;
  }
  return defined_.get(t, [&] { return compute_defined(t); });
}

bool eventual_behaviour::compute_defined(term_ptr t) {
  if (t->type() == Var) {
    return true;
  }
  if (t->type() == Const) {
    return is_real_constant(t->constant());
  }
  if (ratios_.read(t) != nullptr) {
    return true;
  }
  const auto view = composed_term_split(t);
  if (!view || t->scope() != nullptr) {
    return false;
  }
  if (view->t2 != nullptr) {
    return binary_defined(view->oper, view->t1, view->t2);
  }
  switch (view->oper) {
    case Neg:
    case Abs:
    case Sin:
    case Cos:
      return defined(view->t1);
    case Ln:
      return defined(view->t1) && positive(view->t1);
    case Tan: {
      if (!defined(view->t1)) {
        return false;
      }
      const auto order = growth_order(view->t1);
      return constant_rational(view->t1) || (order && order->sign() < 0);
    }
    default:
      return false;
  }
}

bool eventual_behaviour::binary_defined(oper_type oper, term_ptr left, term_ptr right) {
  switch (oper) {
    case Plus:
    case Minus:
    case Mult:
      return defined(left) && defined(right);
    case Div:
    case Frac:
      return defined(left) && defined(right) && nonzero(right);
    case Power: {
      const auto e = constant_rational(right);
      if (!e || !defined(left)) {
        return false;
      }
      return e->is_integer() ? e->sign() >= 0 || nonzero(left) : positive(left);
    }
    case Sqrtn:
      return root_index(left) && defined(right) && positive(right);
    default:
      return false;
  }
}

std::optional<exact> eventual_behaviour::growth_order(term_ptr t) {
  return orders_.get(t, [&] { return compute_order(t); });
}

std::optional<exact> eventual_behaviour::compute_order(term_ptr t) {
  if (const ratio* r = ratios_.read(t)) {
    const auto order = growth(*r);
    return order ? std::optional<exact>(*order) : std::nullopt;
  }
  const auto view = composed_term_split(t);
  if (!view || t->scope() != nullptr) {
    return std::nullopt;
  }
  return view->t2 == nullptr ? order_of_unary(t, view->oper, view->t1)
                             : order_of_binary(view->oper, view->t1, view->t2);
}

std::optional<exact> eventual_behaviour::order_of_unary(term_ptr t, oper_type oper, term_ptr a) {
  switch (oper) {
    case Neg:
    case Abs:
      return growth_order(a);
    case Ln:
      return positive(a) ? std::optional<exact>(0) : std::nullopt;
    case Sin:
    case Cos:
      return defined(a) ? std::optional<exact>(0) : std::nullopt;
    case Tan:
      if (!defined(t)) {
        return std::nullopt;
      }
      return constant_rational(a) ? std::optional<exact>(0) : growth_order(a);
    default:
      return std::nullopt;
  }
}

std::optional<exact> eventual_behaviour::order_of_binary(oper_type oper, term_ptr left, term_ptr right) {
  if (oper == Power) {
    const auto e = constant_rational(right);
    const auto order = e ? growth_order(left) : std::nullopt;
    const bool allowed = order && (e->is_integer() ? e->sign() >= 0 || nonzero(left) : positive(left));
    return allowed ? std::optional(*order * *e) : std::nullopt;
  }
  if (oper == Sqrtn) {
    const auto index = root_index(left);
    const auto order = index && positive(right) ? growth_order(right) : std::nullopt;
    return order ? quotient(*order, *index) : std::nullopt;
  }
  const bool divides = oper == Div || oper == Frac;
  if (!divides && oper != Plus && oper != Minus && oper != Mult) {
    return std::nullopt;
  }
  const auto a = growth_order(left);
  const auto b = a ? growth_order(right) : std::nullopt;
  if (!b || (divides && !nonzero(right))) {
    return std::nullopt;
  }
  if (oper == Mult) {
    return *a + *b;
  }
  return divides ? *a - *b : *a < *b ? *b : *a;
}

std::optional<exact> eventual_behaviour::limit(term_ptr t) {
  if (const ratio* r = ratios_.read(t)) {
    if (auto value = limit_at_infinity(*r)) {
      return value;
    }
  }
  const auto order = growth_order(t);
  return order && order->sign() < 0 ? std::optional<exact>(0) : std::nullopt;
}

}  // namespace vetro
