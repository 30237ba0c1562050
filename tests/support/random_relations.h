// Random comparisons that hold for some values, for tests of solvers: what holds may be assumed, what does not must not
// be proved.
#pragma once

#include <random>
#include <string>

#include "number/cnum.h"
#include "term/relation.h"
#include "term/term_split_combine.h"

namespace vetro {

// Relations between random expressions over a few variables with chosen values.
class random_relations {
 public:
  explicit random_relations(unsigned seed) : engine_(seed) {
    for (cnum& value : values_) {
      value = cnum_from_frac(pick(13) - 6, 1 + pick(4));
    }
  }

  // A relation between defined expressions that holds for the values, or one that does not.
  term_ptr relation(bool holds, int depth = 3) {
    for (;;) {
      const auto [left, left_value] = expression(depth);
      const auto [right, right_value] = expression(depth - 1);
      if (cnum_is_finite(left_value) && cnum_is_finite(right_value)) {
        const int order = cnum_cmp(left_value, right_value);
        const pred_type pred = preds_[static_cast<std::size_t>(pick(6))];
        if (vetro::holds(pred, order) == holds) {
          return make_binPred_prop(pred, left, right);
        }
      }
    }
  }

  // What the sign of a random variable is.
  term_ptr sign() {
    const std::size_t variable = static_cast<std::size_t>(pick(3));
    const int order = cnum_cmp(values_[variable], cnum_from_int(0));
    return make_binPred_prop(order > 0 ? Gt : (order < 0 ? Lt : Le), name(variable), mk_integer(0));
  }

 private:
  struct valued {
    term_ptr t;
    cnum value;
  };
  static constexpr pred_type preds_[] = {Eq, Neq, Gt, Ge, Lt, Le};

  static term_ptr name(std::size_t variable) { return mk_var(std::string(1, static_cast<char>('x' + variable))); }

  int pick(int count) { return static_cast<int>(engine_() % static_cast<unsigned>(count)); }

  valued expression(int depth) {
    if (depth == 0 || pick(4) == 0) {
      const int leaf = pick(6);
      return leaf < 3 ? valued{name(static_cast<std::size_t>(leaf)), values_[leaf]}
                      : valued{mk_integer(leaf - 2), cnum_from_int(leaf - 2)};
    }
    const valued a = expression(depth - 1);
    if (pick(8) == 0) {
      return {make_unOp_term(Neg, a.t), cnum_neg(a.value)};
    }
    if (pick(6) == 0) {
      const int exponent = pick(4);
      const bool undefined = !cnum_is_finite(a.value) || (exponent == 0 && cnum_is_zero(a.value));
      return {make_binOp_term(Power, a.t, mk_integer(exponent)),
              undefined ? cnum_nan() : cnum_power(a.value, static_cast<std::uint64_t>(exponent))};
    }
    const valued b = expression(depth - 1);
    switch (pick(4)) {
      case 0:
        return {make_binOp_term(Plus, a.t, b.t), cnum_add(a.value, b.value)};
      case 1:
        return {make_binOp_term(Minus, a.t, b.t), cnum_sub(a.value, b.value)};
      case 2:
        return {make_binOp_term(Mult, a.t, b.t), cnum_mul(a.value, b.value)};
      default:
        return {make_binOp_term(Div, a.t, b.t), cnum_div(a.value, b.value)};
    }
  }

  std::mt19937 engine_;
  cnum values_[3];
};

}  // namespace vetro
