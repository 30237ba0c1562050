// Terms share their parts, so a value is remembered for each node of a large term.
#include "qv_solver_list/number_reading.h"

#include <limits>

#include "term/node_memo.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

using known_value = std::optional<exact>;

bool is_allowed(oper_type oper, const allowed_forms& allowed) {
  switch (oper) {
    case Neg:
      return allowed.negation;
    case Plus:
    case Minus:
      return allowed.sums;
    case Mult:
      return allowed.products;
    case Div:
    case Frac:
      return allowed.quotients;
    case Power:
      return allowed.powers;
    case Abs:
      return allowed.absolute;
    default:
      return false;
  }
}

known_value calculate(oper_type oper, const exact& a) {
  if (oper == Abs) {
    return a.sign() < 0 ? -a : a;
  }
  return oper == Neg ? known_value(-a) : std::nullopt;
}

known_value calculate(oper_type oper, const exact& a, const exact& b) {
  switch (oper) {
    case Plus:
      return a + b;
    case Minus:
      return a - b;
    case Mult:
      return a * b;
    case Div:
    case Frac:
      return quotient(a, b);
    case Power: {
      const auto exponent = b.to_int64();
      return exponent ? power(a, *exponent) : std::nullopt;
    }
    default:
      return std::nullopt;
  }
}

class evaluation {
 public:
  evaluation(const allowed_forms& allowed, term_ptr root) : allowed_(allowed), known_(root) {}

  known_value of(term_ptr t) {
    if (t->type() == Const) {
      return t->constant() == Integer || allowed_.decimals ? number_literal(t) : std::nullopt;
    }
    return known_.get(t, [&] { return of_operation(t); });
  }

 private:
  known_value of_operation(term_ptr t) {
    const auto view = composed_term_split(t);
    if (!view || !is_allowed(view->oper, allowed_)) {
      return std::nullopt;
    }
    const known_value a = of(view->t1);
    if (!a || view->t2 == nullptr) {
      return a ? if_known(calculate(view->oper, *a)) : std::nullopt;
    }
    const known_value b = of(view->t2);
    return b ? if_known(calculate(view->oper, *a, *b)) : std::nullopt;
  }

  static known_value if_known(known_value result) { return result && result->is_known() ? result : std::nullopt; }

  const allowed_forms& allowed_;
  walk_memo<known_value> known_;
};

bool fits_constant(std::int64_t value) {
  return value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max();
}

}  // namespace

std::optional<std::int64_t> integer_literal(term_ptr t) {
  bool negative = false;
  for (; is_apply(t) && is_oper(t->left(), Neg); t = t->right()) {
    negative = !negative;
  }
  if (!is_constant(t, Integer)) {
    return std::nullopt;
  }
  return negative ? -std::int64_t{t->integer()} : std::int64_t{t->integer()};
}

std::optional<exact> number_literal(term_ptr t) {
  if (is_constant(t, Integer)) {
    return exact(t->integer());
  }
  return is_constant(t, Decimal) ? exact_from_decimal(t->decimal()) : std::nullopt;
}

std::optional<exact> evaluate(term_ptr t, const allowed_forms& allowed) {
  return t == nullptr ? std::nullopt : evaluation(allowed, t).of(t);
}

term_ptr number_term(const exact& value) {
  const auto num = value.numerator().to_int64();
  const auto den = value.denominator().to_int64();
  if (!num || !den || !fits_constant(*num) || !fits_constant(*den)) {
    return nullptr;
  }
  term_ptr numerator = mk_integer(static_cast<std::int32_t>(*num));
  if (*den == 1) {
    return numerator;
  }
  term_ptr denominator = mk_integer(static_cast<std::int32_t>(*den));
  return mk_apply_all(mk_oper(Frac), term_list{numerator, denominator});
}

}  // namespace vetro
