// Bounds are computed with more and more digits, until they tell the sign.
#include "qv_solver_list/algebra/closed_value.h"

#include <optional>

#include "number/enclosure.h"
#include "number/limits.h"
#include "qv_solver_list/algebra/numeric_calc.h"
#include "qv_solver_list/algebra/root_view.h"
#include "qv_solver_list/number_reading.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class evaluation {
 public:
  using result = enclosure_arithmetic::result;

  explicit evaluation(unsigned bits) : calc_(bits), one_(calc_.number(1)) {}

  result of(term_ptr t) {
    return known_.get(
        t, [&] { return t->has_meta() || known_.size() > limits::closed_value_nodes ? std::nullopt : new_value(t); });
  }

  result difference(term_ptr left, term_ptr right) { return minus(of(left), of(right)); }

 private:
  result new_value(term_ptr t) {
    if (is_constant(t, E)) {
      return calc_.exp(one_);
    }
    if (is_constant(t, Pi)) {
      return calc_.pi();
    }
    if (const auto number = number_literal(t)) {
      return calc_.number(*number);
    }
    if (const auto view = root_of(t)) {
      const result radicand = of(view->radicand);
      return radicand ? calc_.root(*radicand, view->index) : std::nullopt;
    }
    const auto view = composed_term_split(t);
    if (!view) {
      return std::nullopt;
    }
    if (view->t2 != nullptr) {
      return view->oper == Power ? power(view->t1, view->t2) : binary(view->oper, of(view->t1), of(view->t2));
    }
    if (view->oper == Fact) {
      const auto value = solver_numeric_calc_eval_rational(t);
      return value ? result(calc_.number(*value)) : std::nullopt;
    }
    const result x = of(view->t1);
    return x ? unary(view->oper, *x) : std::nullopt;
  }

  result plus(const result& a, const result& b) { return a && b ? calc_.sum(*a, *b) : std::nullopt; }
  result minus(const result& a, const result& b) { return a && b ? calc_.sum(*a, calc_.negated(*b)) : std::nullopt; }
  result times(const result& a, const result& b) { return a && b ? calc_.product(*a, *b) : std::nullopt; }
  result over(const result& a, const result& b) { return a && b ? calc_.quotient(*a, *b) : std::nullopt; }
  result ln(const result& a) { return a ? calc_.ln(*a) : std::nullopt; }
  result root(const result& a) { return a ? calc_.root(*a, 2) : std::nullopt; }
  result arctan(const result& a) { return a ? calc_.arctan(*a) : std::nullopt; }
  result half(const result& a) { return over(a, calc_.number(2)); }
  result reciprocal(const result& a) { return over(one_, a); }

  result binary(oper_type oper, const result& a, const result& b) {
    switch (oper) {
      case Plus:
        return plus(a, b);
      case Minus:
        return minus(a, b);
      case Mult:
        return times(a, b);
      case Div:
      case Frac:
        return over(a, b);
      case Log:
        return over(ln(b), ln(a));
      default:
        return std::nullopt;
    }
  }

  // A whole exponent goes with every base, any other with a positive one.
  result power(term_ptr base, term_ptr exponent) {
    const result b = of(base);
    if (const auto k = integer_literal(exponent)) {
      return b ? calc_.power(*b, *k) : std::nullopt;
    }
    const result product = times(of(exponent), ln(b));
    return product ? calc_.exp(*product) : std::nullopt;
  }

  result unary(oper_type oper, const enclosure& x) {
    switch (oper) {
      case Neg:
        return calc_.negated(x);
      case Abs:
        return calc_.magnitude(x);
      case Ln:
        return calc_.ln(x);
      case Lg:
        return over(calc_.ln(x), calc_.ln(calc_.number(10)));
      case Sin:
        return calc_.sin(x);
      case Cos:
        return calc_.cos(x);
      case Tan:
        return over(calc_.sin(x), calc_.cos(x));
      case Cot:
        return over(calc_.cos(x), calc_.sin(x));
      case Sec:
        return reciprocal(calc_.cos(x));
      case Csc:
        return reciprocal(calc_.sin(x));
      case Arcsin:
        return arcsin(x);
      case Arccos:
        return minus(half(calc_.pi()), arcsin(x));
      case Arctan:
        return calc_.arctan(x);
      case Arccot:
        return minus(half(calc_.pi()), calc_.arctan(x));
      case Sinh:
        return half(minus(calc_.exp(x), calc_.exp(calc_.negated(x))));
      case Cosh:
        return half(plus(calc_.exp(x), calc_.exp(calc_.negated(x))));
      case Tanh: {
        const result square = squared_exponential(x);
        return over(minus(square, one_), plus(square, one_));
      }
      case Arcsinh:
        return ln(plus(x, root(plus(times(x, x), one_))));
      case Arccosh:
        return ln(plus(x, times(root(minus(x, one_)), root(plus(x, one_)))));
      case Arctanh:
        return half(ln(over(plus(one_, x), minus(one_, x))));
      default:
        return std::nullopt;
    }
  }

  result squared_exponential(const enclosure& x) {
    const result twice = calc_.sum(x, x);
    return twice ? calc_.exp(*twice) : std::nullopt;
  }

  // 2 * arctan(x / (1 + sqrt(1 - x^2))).
  result arcsin(const enclosure& x) {
    const result length = root(minus(one_, times(x, x)));
    const result angle = arctan(over(x, plus(one_, length)));
    return plus(angle, angle);
  }

  enclosure_arithmetic calc_;
  enclosure one_;
  node_memo<result> known_;
};

}  // namespace

int sign_of_difference(term_ptr left, term_ptr right) {
  if (left->name_mask() != 0 || right->name_mask() != 0) {
    return 0;
  }
  for (const unsigned bits : {64U, 192U, 576U}) {
    const auto difference = evaluation(bits).difference(left, right);
    if (difference && enclosure_arithmetic::sign(*difference) != 0) {
      return enclosure_arithmetic::sign(*difference);
    }
  }
  return 0;
}

}  // namespace vetro
