// Values are found from the inside out. A part whose value is a fraction that fits 32 bits becomes that number; sines,
// cosines, tangents and logarithms become the terms that their tables and laws give.
#include "qv_solver_list/algebra/numeric_calc.h"

#include <algorithm>

#include "qv_solver_list/algebra/closed_value.h"
#include "qv_solver_list/algebra/exponential_form.h"
#include "qv_solver_list/algebra/log_form.h"
#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/algebra/root_view.h"
#include "qv_solver_list/algebra/trig_values.h"
#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/complex_values.h"
#include "qv_solver_list/constant_analysis.h"
#include "qv_solver_list/equality_tests.h"
#include "qv_solver_list/number_reading.h"
#include "qv_solver_list/solvers.h"
#include "term/compare.h"
#include "term/functions.h"
#include "term/relation.h"
#include "term/traverse.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

// ---- Values at multiples of π.

term_ptr try_simplify_trig(oper_type op, term_ptr arg) {
  const auto coefficient = multiple_of_pi(arg);
  return coefficient ? exact_trig_value(op, *coefficient) : nullptr;
}

// ---- Logarithms.

// The exponent for which t is a power of e.
std::optional<exact> extract_e_power(term_ptr t) {
  if (is_constant(t, E)) {
    return exact(1);
  }
  const auto view = t->has_meta() ? std::nullopt : composed_term_split(t);
  return view && view->oper == Power && view->t2 != nullptr && is_constant(view->t1, E)
             ? solver_numeric_calc_eval_rational(view->t2)
             : std::nullopt;
}

bool is_valid_base(term_ptr base) {
  const auto value = solver_numeric_calc_eval_rational(base);
  return value ? value->sign() > 0 && !value->is_one() : is_constant(base, E) || is_constant(base, Pi);
}

bool is_positive(term_ptr value) {
  const auto number = solver_numeric_calc_eval_rational(value);
  return number ? number->sign() > 0 : solver_const_prove_zero_relation(value, Gt);
}

// The rational logarithm of a value other than 1, by trial.
std::optional<exact> rational_log_by_trial(const exact& base, const exact& value) {
  constexpr std::int64_t last_den = 12;
  constexpr std::int64_t last_num = 24;
  for (std::int64_t den = 1; den <= last_den; ++den) {
    const auto target = power(value, den);
    for (std::int64_t num = -last_num; target && num <= last_num; ++num) {
      const auto found = num == 0 ? std::nullopt : power(base, num);
      if (found && *found == *target) {
        return exact(num) / exact(den);
      }
    }
  }
  return std::nullopt;
}

std::optional<exact> logarithm(term_ptr base, term_ptr value) {
  const auto number = solver_numeric_calc_eval_rational(value);
  if (number && number->is_one()) {
    return exact(0);
  }
  if (term_eqb(base, value)) {
    return exact(1);
  }
  const auto view = value->has_meta() ? std::nullopt : composed_term_split(value);
  if (view && view->oper == Power && view->t2 != nullptr && term_eqb(base, view->t1)) {
    if (const auto exponent = solver_numeric_calc_eval_rational(view->t2)) {
      return exponent;
    }
  }
  if (is_constant(base, E)) {
    if (const auto exponent = extract_e_power(value)) {
      return exponent;
    }
  }
  const auto base_number = solver_numeric_calc_eval_rational(base);
  return base_number && number ? rational_log_by_trial(*base_number, *number) : std::nullopt;
}

term_ptr try_simplify_log(term_ptr base, term_ptr value) {
  const auto result = is_valid_base(base) && is_positive(value) ? logarithm(base, value) : std::nullopt;
  return result ? number_term(*result) : nullptr;
}

term_ptr try_simplify_ln(term_ptr arg) {
  const auto number = solver_numeric_calc_eval_rational(arg);
  const auto result = number && number->is_one() ? std::optional<exact>(0) : extract_e_power(arg);
  return result ? number_term(*result) : nullptr;
}

// ---- Simplification.

std::optional<exact> eval_factorial(term_ptr arg) {
  constexpr std::int64_t greatest = 20;
  const auto value = solver_numeric_calc_eval_rational(arg);
  const auto n = value ? value->to_int64() : std::nullopt;
  if (!n || *n < 0 || *n > greatest) {
    return std::nullopt;
  }
  exact product = 1;
  for (std::int64_t i = 2; i <= *n; ++i) {
    product *= i;
  }
  return product;
}

// The term as a number, where it has a value that can be written as one: a fraction of 32 bits, or an integer of 64.
term_ptr as_number(term_ptr t) {
  const auto value = solver_numeric_calc_eval_rational(t);
  const term_ptr number = value ? number_term(*value) : nullptr;
  if (number != nullptr || !value || !value->to_int64()) {
    return number;
  }
  const term_ptr digits = mk_decimal(to_string(value->sign() < 0 ? -*value : *value));
  return value->sign() < 0 ? make_unOp_term(Neg, digits) : digits;
}

bool is_entered(term_ptr t) { return t->type() == Apply && t->scope() == nullptr && stands_for_its_value(t); }

// Equal when logarithms are taken apart and functions are written as powers.
bool equal_by_functions(term_ptr left, term_ptr right, const solve_data& sdata) {
  auto& complex = facts_of(sdata).table<complex_values>();
  if (is_one_whole(left) || is_one_whole(right) || complex.may_be_complex(left) || complex.may_be_complex(right)) {
    return false;
  }
  root_normalizer normalizer(&sdata);
  circular_form circles;
  const auto form_of = [&](term_ptr t) {
    const term_ptr logarithms = log_form(exponential_form(t, normalizer), normalizer);
    const term_ptr functions = circles.of(logarithms);
    return functions == t ? t : circles.of(normalizer.power_form(logarithms));
  };
  const term_ptr left_form = form_of(left);
  const term_ptr right_form = form_of(right);
  if (left_form == left && right_form == right) {
    return false;
  }
  if (poly_rat_eqb(left_form, right_form)) {
    return true;
  }
  const term_ptr cofactor = circles.cofactor();
  return cofactor != nullptr &&
         poly_rat_eqb(make_binOp_term(Mult, left_form, cofactor), make_binOp_term(Mult, right_form, cofactor));
}

bool equal_values(term_ptr left, term_ptr right, const solve_data& sdata) {
  constexpr solver_id tests[] = {solver_id::reflexivity, solver_id::poly_rat, solver_id::rootfrac};
  if (equal_by(tests, left, right, sdata)) {
    return true;
  }
  const term_ptr left_roots = with_indexed_roots(left);
  const term_ptr right_roots = with_indexed_roots(right);
  constexpr solver_id of_roots[] = {solver_id::rootfrac};
  const bool differ = left_roots != left || right_roots != right;
  return (differ && equal_by(of_roots, left_roots, right_roots, sdata)) ||
         equal_by_functions(left_roots, right_roots, sdata);
}

class simplification {
 public:
  term_ptr simplify(term_ptr t) {
    if (t->type() == TermList) {
      return map_children(t, walk_elements | keep_meta, [this](term_ptr part) { return simplify(part); });
    }
    if (t->type() != Apply) {
      const term_ptr number = t->type() == Const ? as_number(t) : nullptr;
      return number == nullptr ? t : number;
    }
    return known_.get(t, [&] { return !is_entered(t) || is_one_whole(t) ? t : simplify_application(t); });
  }

 private:
  term_ptr simplify_application(term_ptr t) {
    if (const term_ptr number = as_number(t)) {
      return number;
    }
    const auto view = t->binders().empty() ? composed_term_split(t) : std::nullopt;
    if (view && view->t2 == nullptr) {
      return simplify_unary(view->oper, t, simplify(view->t1));
    }
    if (view) {
      const term_ptr left = simplify(view->t1);
      const term_ptr right = simplify(view->t2);
      return simplify_binary(view->oper, t, left, right);
    }
    return map_children(t, walk_apply | keep_meta, [this](term_ptr part) { return simplify(part); });
  }

  static term_ptr simplify_unary(oper_type op, term_ptr t, term_ptr arg) {
    term_ptr value = nullptr;
    switch (op) {
      case Ln:
        value = try_simplify_ln(arg);
        break;
      case Lg:
        value = try_simplify_log(mk_integer(10), arg);
        break;
      case Sin:
      case Cos:
      case Tan:
      case Cot:
      case Sec:
      case Csc:
        value = try_simplify_trig(op, arg);
        break;
      default:
        break;
    }
    return value != nullptr ? value : calculated(t, make_unOp_term(op, arg));
  }

  static term_ptr simplify_binary(oper_type op, term_ptr t, term_ptr left, term_ptr right) {
    const term_ptr value = op == Log ? try_simplify_log(left, right) : nullptr;
    return value != nullptr ? value : calculated(t, make_binOp_term(op, left, right));
  }

  // The number that a rebuilt application comes to, else the application in the place of t.
  static term_ptr calculated(term_ptr t, term_ptr rebuilt) {
    const term_ptr number = as_number(rebuilt);
    if (number != nullptr) {
      return number;
    }
    return rebuilt->bare() == t->bare() ? t : rebuilt;
  }

  node_memo<term_ptr> known_;
};

// ---- Inverse functions of angles.

// The function that gives angles; null for any other operator.
const known_function* inverse_of_angles(oper_type oper) {
  const known_function* f = find_function(oper);
  return f != nullptr && f->angles ? f : nullptr;
}

term_ptr multiple_of_pi(const exact& factor) { return make_binOp_term(Mult, number_of_any_size(factor), mk_const(Pi)); }

bool is_in_range(term_ptr angle, const angle_range& range) {
  const exact low = exact(range.low) / exact(2);
  const exact high = exact(range.high) / exact(2);
  if (const auto multiple = multiple_of_pi(angle)) {
    return range.with_ends ? low <= *multiple && *multiple <= high : low < *multiple && *multiple < high;
  }
  return sign_of_difference(angle, multiple_of_pi(low)) > 0 && sign_of_difference(multiple_of_pi(high), angle) > 0;
}

// arcsin(u) = v where u = sin(v) and v is in the range of arcsin.
bool equal_by_inverse(term_ptr left, term_ptr right, const solve_data& sdata) {
  const auto view = left->has_meta() ? std::nullopt : composed_term_split(left);
  const known_function* f = view && view->t2 == nullptr ? inverse_of_angles(view->oper) : nullptr;
  if (f == nullptr || !is_in_range(right, *f->angles)) {
    return false;
  }
  const term_ptr value = solver_numeric_calc_simplify(make_unOp_term(*f->inverts, right));
  return equal_values(view->t1, value, sdata);
}

// Two angles that differ by less than 2π and lie at the same place on the circle.
bool equal_on_circle(term_ptr left, term_ptr right) {
  const auto is_inverse = [](term_ptr t) { return t->type() == Oper && inverse_of_angles(t->oper()) != nullptr; };
  if (!any_subterm(left, walk_children, is_inverse) && !any_subterm(right, walk_children, is_inverse)) {
    return false;
  }
  const term_ptr difference = make_binOp_term(Minus, left, right);
  const term_ptr six = mk_integer(6);
  return sign_of_difference(six, difference) > 0 && sign_of_difference(make_unOp_term(Neg, six), difference) < 0 &&
         poly_rat_eqb(circular_form().turned(difference), mk_integer(1));
}

bool equal_angles(term_ptr left, term_ptr right, const solve_data& sdata) {
  return left->name_mask() == 0 && right->name_mask() == 0 &&
         (equal_by_inverse(left, right, sdata) || equal_by_inverse(right, left, sdata) || equal_on_circle(left, right));
}

}  // namespace

std::optional<exact> solver_numeric_calc_eval_rational(term_ptr source) {
  if (source == nullptr || source->name_mask() != 0) {
    return std::nullopt;
  }
  if (const auto value = solver_const_analyze_exact_rational(source)) {
    return value;
  }
  const auto view = source->has_meta() ? std::nullopt : composed_term_split(source);
  return view && view->oper == Fact && view->t2 == nullptr ? eval_factorial(view->t1) : std::nullopt;
}

term_ptr solver_numeric_calc_simplify(term_ptr source) {
  return source == nullptr ? nullptr : simplification().simplify(source);
}

bool solver_numeric_calc(term_ptr target, const solve_data& sdata) {
  const auto relation = target == nullptr || target->has_meta() ? std::nullopt : pred_split(target);
  if (!relation || !is_order_relation(relation->pred)) {
    return false;
  }
  simplification both;
  const term_ptr left = both.simplify(relation->left);
  const term_ptr right = both.simplify(relation->right);
  const auto left_value = solver_numeric_calc_eval_rational(left);
  const auto right_value = solver_numeric_calc_eval_rational(right);
  if (left_value && right_value && left_value->is_known() && right_value->is_known()) {
    const auto order = *left_value <=> *right_value;
    if (holds(relation->pred, order < 0 ? -1 : order > 0 ? 1 : 0)) {
      return true;
    }
  }
  if (relation->pred == Eq) {
    return equal_values(left, right, sdata) || equal_angles(left, right, sdata);
  }
  const int order = sign_of_difference(left, right);
  return order != 0 && holds(relation->pred, order);
}

}  // namespace vetro
