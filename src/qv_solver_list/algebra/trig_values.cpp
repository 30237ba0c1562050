// Two tables: the usual angles all around the circle, and further ones in the first quadrant, to which the others are
// led back by symmetry.
#include "qv_solver_list/algebra/trig_values.h"

#include <algorithm>
#include <array>

#include "qv_solver_list/algebra/numeric_calc.h"
#include "qv_solver_list/number_reading.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

enum class trig_kind : std::uint8_t {
  TRIG_RAT = 0,         // value1 / value2
  TRIG_ROOT_HALF = 1,   // sign * root(value1) / 2
  TRIG_ROOT_THIRD = 2,  // sign * root(3) / 3
  TRIG_ROOT_WHOLE = 3,  // sign * root(3)
};
using enum trig_kind;

// The value of op at num / den * π, an angle below 2π.
struct trig_rule {
  oper_type op;
  std::int32_t num;
  std::int32_t den;
  trig_kind kind;
  std::int32_t value1;
  std::int32_t value2;
  int sign;
};

constexpr auto TRIG_RULES = std::to_array<trig_rule>({
    {Sin, 0, 1, TRIG_RAT, 0, 1, 1},         {Sin, 1, 1, TRIG_RAT, 0, 1, 1},
    {Sin, 1, 6, TRIG_RAT, 1, 2, 1},         {Sin, 5, 6, TRIG_RAT, 1, 2, 1},
    {Sin, 7, 6, TRIG_RAT, -1, 2, 1},        {Sin, 11, 6, TRIG_RAT, -1, 2, 1},
    {Sin, 1, 4, TRIG_ROOT_HALF, 2, 0, 1},   {Sin, 3, 4, TRIG_ROOT_HALF, 2, 0, 1},
    {Sin, 5, 4, TRIG_ROOT_HALF, 2, 0, -1},  {Sin, 7, 4, TRIG_ROOT_HALF, 2, 0, -1},
    {Sin, 1, 3, TRIG_ROOT_HALF, 3, 0, 1},   {Sin, 2, 3, TRIG_ROOT_HALF, 3, 0, 1},
    {Sin, 4, 3, TRIG_ROOT_HALF, 3, 0, -1},  {Sin, 5, 3, TRIG_ROOT_HALF, 3, 0, -1},
    {Sin, 1, 2, TRIG_RAT, 1, 1, 1},         {Sin, 3, 2, TRIG_RAT, -1, 1, 1},
    {Cos, 0, 1, TRIG_RAT, 1, 1, 1},         {Cos, 1, 1, TRIG_RAT, -1, 1, 1},
    {Cos, 1, 2, TRIG_RAT, 0, 1, 1},         {Cos, 3, 2, TRIG_RAT, 0, 1, 1},
    {Cos, 1, 6, TRIG_ROOT_HALF, 3, 0, 1},   {Cos, 11, 6, TRIG_ROOT_HALF, 3, 0, 1},
    {Cos, 5, 6, TRIG_ROOT_HALF, 3, 0, -1},  {Cos, 7, 6, TRIG_ROOT_HALF, 3, 0, -1},
    {Cos, 1, 4, TRIG_ROOT_HALF, 2, 0, 1},   {Cos, 7, 4, TRIG_ROOT_HALF, 2, 0, 1},
    {Cos, 3, 4, TRIG_ROOT_HALF, 2, 0, -1},  {Cos, 5, 4, TRIG_ROOT_HALF, 2, 0, -1},
    {Cos, 1, 3, TRIG_RAT, 1, 2, 1},         {Cos, 5, 3, TRIG_RAT, 1, 2, 1},
    {Cos, 2, 3, TRIG_RAT, -1, 2, 1},        {Cos, 4, 3, TRIG_RAT, -1, 2, 1},
    {Tan, 0, 1, TRIG_RAT, 0, 1, 1},         {Tan, 1, 1, TRIG_RAT, 0, 1, 1},
    {Tan, 1, 6, TRIG_ROOT_THIRD, 3, 0, 1},  {Tan, 7, 6, TRIG_ROOT_THIRD, 3, 0, 1},
    {Tan, 5, 6, TRIG_ROOT_THIRD, 3, 0, -1}, {Tan, 11, 6, TRIG_ROOT_THIRD, 3, 0, -1},
    {Tan, 1, 4, TRIG_RAT, 1, 1, 1},         {Tan, 5, 4, TRIG_RAT, 1, 1, 1},
    {Tan, 3, 4, TRIG_RAT, -1, 1, 1},        {Tan, 7, 4, TRIG_RAT, -1, 1, 1},
    {Tan, 1, 3, TRIG_ROOT_WHOLE, 3, 0, 1},  {Tan, 4, 3, TRIG_ROOT_WHOLE, 3, 0, 1},
    {Tan, 2, 3, TRIG_ROOT_WHOLE, 3, 0, -1}, {Tan, 5, 3, TRIG_ROOT_WHOLE, 3, 0, -1},
});

// A value u / divisor or root(u) / divisor with u = a * root(b) + c * root(d).
struct surd_rule {
  oper_type op;
  std::int32_t num;
  std::int32_t den;
  bool under_root;
  std::array<std::int32_t, 4> u;
  std::int32_t divisor;
};

// Angles below π/2.
constexpr auto SURD_RULES = std::to_array<surd_rule>({
    {Sin, 1, 12, false, {1, 6, -1, 2}, 4},
    {Sin, 1, 10, false, {1, 5, -1, 1}, 4},
    {Sin, 1, 8, true, {2, 1, -1, 2}, 2},
    {Sin, 1, 5, true, {10, 1, -2, 5}, 4},
    {Sin, 3, 10, false, {1, 5, 1, 1}, 4},
    {Sin, 3, 8, true, {2, 1, 1, 2}, 2},
    {Sin, 2, 5, true, {10, 1, 2, 5}, 4},
    {Sin, 5, 12, false, {1, 6, 1, 2}, 4},
    {Tan, 1, 12, false, {2, 1, -1, 3}, 1},
    {Tan, 1, 10, true, {25, 1, -10, 5}, 5},
    {Tan, 1, 8, false, {1, 2, -1, 1}, 1},
    {Tan, 1, 5, true, {5, 1, -2, 5}, 1},
    {Tan, 3, 10, true, {25, 1, 10, 5}, 5},
    {Tan, 3, 8, false, {1, 2, 1, 1}, 1},
    {Tan, 2, 5, true, {5, 1, 2, 5}, 1},
    {Tan, 5, 12, false, {2, 1, 1, 3}, 1},
});

term_ptr square_root(term_ptr radicand) { return make_binOp_term(Sqrtn, mk_integer(2), radicand); }

term_ptr root(std::int32_t radicand) { return square_root(mk_integer(radicand)); }

term_ptr over(term_ptr numerator, std::int32_t denominator) {
  return denominator == 1 ? numerator : make_binOp_term(Frac, numerator, mk_integer(denominator));
}

term_ptr negated(term_ptr value) { return value == nullptr ? nullptr : make_unOp_term(Neg, value); }

term_ptr value_of(const trig_rule& rule) {
  term_ptr value = nullptr;
  switch (rule.kind) {
    case TRIG_RAT:
      return number_term(exact(rule.value1) / exact(rule.value2));
    case TRIG_ROOT_HALF:
      value = over(root(rule.value1), 2);
      break;
    case TRIG_ROOT_THIRD:
      value = over(root(rule.value1), 3);
      break;
    case TRIG_ROOT_WHOLE:
      value = root(rule.value1);
      break;
  }
  return rule.sign < 0 ? negated(value) : value;
}

// factor * root(radicand) for a positive factor.
term_ptr multiple_of_root(std::int32_t factor, std::int32_t radicand) {
  if (radicand == 1) {
    return mk_integer(factor);
  }
  return factor == 1 ? root(radicand) : make_binOp_term(Mult, mk_integer(factor), root(radicand));
}

term_ptr value_of(const surd_rule& rule) {
  const auto [a, b, c, d] = rule.u;
  const term_ptr first = multiple_of_root(a, b);
  const term_ptr second = multiple_of_root(c < 0 ? -c : c, d);
  const term_ptr u = make_binOp_term(c < 0 ? Minus : Plus, first, second);
  return over(rule.under_root ? square_root(u) : u, rule.divisor);
}

// The row of a table for the function at that angle; null when there is none.
template <class Table>
term_ptr looked_up(const Table& table, oper_type op, const exact& angle) {
  const auto row = std::find_if(table.begin(), table.end(),
                                [&](const auto& r) { return r.op == op && angle == exact(r.num) / exact(r.den); });
  return row == table.end() ? nullptr : value_of(*row);
}

exact modulo(const exact& angle, const exact& period) { return angle - period * floor(angle / period); }

exact half() { return exact(1) / exact(2); }

term_ptr sine(const exact& multiple) {
  const exact angle = modulo(multiple, 2);
  if (const term_ptr usual = looked_up(TRIG_RULES, Sin, angle)) {
    return usual;
  }
  if (angle > exact(1)) {
    return negated(sine(angle - exact(1)));
  }
  return looked_up(SURD_RULES, Sin, angle > half() ? exact(1) - angle : angle);
}

term_ptr cosine(const exact& multiple) {
  const term_ptr usual = looked_up(TRIG_RULES, Cos, modulo(multiple, 2));
  return usual != nullptr ? usual : sine(multiple + half());
}

term_ptr tangent(const exact& multiple) {
  if (const term_ptr usual = looked_up(TRIG_RULES, Tan, modulo(multiple, 2))) {
    return usual;
  }
  const exact angle = modulo(multiple, 1);
  return angle > half() ? negated(looked_up(SURD_RULES, Tan, exact(1) - angle)) : looked_up(SURD_RULES, Tan, angle);
}

term_ptr reciprocal(term_ptr value) {
  return value == nullptr || is_integer(value, 0) ? nullptr : make_binOp_term(Frac, mk_integer(1), value);
}

}  // namespace

term_ptr exact_trig_value(oper_type op, const exact& multiple) {
  switch (op) {
    case Sin:
      return sine(multiple);
    case Cos:
      return cosine(multiple);
    case Tan:
      return tangent(multiple);
    case Cot:
      return tangent(half() - multiple);
    case Sec:
      return reciprocal(cosine(multiple));
    case Csc:
      return reciprocal(sine(multiple));
    default:
      return nullptr;
  }
}

std::optional<exact> multiple_of_pi(term_ptr t) {
  if (is_constant(t, Pi)) {
    return exact(1);
  }
  if (const auto value = solver_numeric_calc_eval_rational(t)) {
    return value->is_zero() ? value : std::nullopt;
  }
  const auto view = composed_term_split(t);
  if (!view || t->has_meta()) {
    return std::nullopt;
  }
  if (view->t2 == nullptr) {
    const auto inner = view->oper == Neg ? multiple_of_pi(view->t1) : std::nullopt;
    return inner ? std::optional(-*inner) : std::nullopt;
  }
  const auto product = [](const std::optional<exact>& a, const std::optional<exact>& b) {
    return a && b && (*a * *b).is_known() ? std::optional(*a * *b) : std::nullopt;
  };
  switch (view->oper) {
    case Plus:
    case Minus: {
      const auto left = multiple_of_pi(view->t1);
      const auto right = left ? multiple_of_pi(view->t2) : std::nullopt;
      return right ? std::optional(view->oper == Plus ? *left + *right : *left - *right) : std::nullopt;
    }
    case Mult: {
      const auto factor = solver_numeric_calc_eval_rational(view->t1);
      return factor ? product(factor, multiple_of_pi(view->t2))
                    : product(multiple_of_pi(view->t1), solver_numeric_calc_eval_rational(view->t2));
    }
    case Div:
    case Frac: {
      const auto divisor = solver_numeric_calc_eval_rational(view->t2);
      const auto coefficient = divisor ? multiple_of_pi(view->t1) : std::nullopt;
      return coefficient ? quotient(*coefficient, *divisor) : std::nullopt;
    }
    default:
      return std::nullopt;
  }
}

}  // namespace vetro
