// From the inside out, each node once. What binds names, carries a side condition or stands for several values is left
// as it is. Where real laws and complex ones meet, the real ones come first: of what is written by e^i, nobody asks for
// a sign.
#include "qv_solver_list/algebra/exponential_form.h"

#include <array>
#include <optional>
#include <set>

#include "number/primes_and_roots.h"
#include "qv_solver_list/algebra/log_form.h"
#include "qv_solver_list/algebra/numeric_calc.h"
#include "qv_solver_list/algebra/trig_values.h"
#include "qv_solver_list/number_reading.h"
#include "term/node_memo.h"
#include "term/reserved.h"
#include "term/split_arithmetic.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/variables/binding.h"
#include "term/whole_parts.h"

namespace vetro {
namespace {

// ---- Short names for building.

term_ptr number(std::int32_t n) { return n < 0 ? make_unOp_term(Neg, mk_integer(-n)) : mk_integer(n); }
term_ptr plus(term_ptr a, term_ptr b) { return make_binOp_term(Plus, a, b); }
term_ptr minus(term_ptr a, term_ptr b) { return make_binOp_term(Minus, a, b); }
term_ptr times(term_ptr a, term_ptr b) { return make_binOp_term(Mult, a, b); }
term_ptr over(term_ptr a, term_ptr b) { return make_binOp_term(Div, a, b); }
term_ptr to_power(term_ptr a, term_ptr b) { return make_binOp_term(Power, a, b); }
term_ptr to_number(term_ptr a, const exact& e) { return e.is_one() ? a : to_power(a, number_of_any_size(e)); }
term_ptr square(term_ptr a) { return to_power(a, number(2)); }
term_ptr root(term_ptr a) { return to_power(a, over(number(1), number(2))); }
term_ptr one_plus(term_ptr a) { return plus(number(1), a); }
term_ptr one_minus(term_ptr a) { return minus(number(1), a); }

term_ptr imaginary_unit() { return root(number(-1)); }
// e^i. A name, so that its powers obey the laws of powers and no others.
term_ptr unit_on_circle() { return reserved_var(reserved_kind::unknown, 0); }

// ---- The functions in terms of z = e^(i * x), or of w = e^x.

struct function_row {
  oper_type oper;
  term_ptr (*apply)(term_ptr z);
};

constexpr std::array circular = {
    function_row{Sin,
                 [](term_ptr z) { return over(minus(z, over(number(1), z)), times(number(2), imaginary_unit())); }},
    function_row{Cos, [](term_ptr z) { return over(plus(z, over(number(1), z)), number(2)); }},
    function_row{Tan,
                 [](term_ptr z) {
                   term_ptr below = times(imaginary_unit(), plus(square(z), number(1)));
                   return over(minus(square(z), number(1)), below);
                 }},
    function_row{Cot,
                 [](term_ptr z) {
                   term_ptr above = times(imaginary_unit(), plus(square(z), number(1)));
                   return over(above, minus(square(z), number(1)));
                 }},
    function_row{Sec, [](term_ptr z) { return over(times(number(2), z), plus(square(z), number(1))); }},
    function_row{Csc,
                 [](term_ptr z) {
                   term_ptr above = times(times(number(2), imaginary_unit()), z);
                   return over(above, minus(square(z), number(1)));
                 }},
};

constexpr std::array hyperbolic = {
    function_row{Sinh, [](term_ptr w) { return over(minus(w, over(number(1), w)), number(2)); }},
    function_row{Cosh, [](term_ptr w) { return over(plus(w, over(number(1), w)), number(2)); }},
    function_row{Tanh, [](term_ptr w) { return over(minus(square(w), number(1)), plus(square(w), number(1))); }},
    function_row{Coth, [](term_ptr w) { return over(plus(square(w), number(1)), minus(square(w), number(1))); }},
    function_row{Sech, [](term_ptr w) { return over(times(number(2), w), plus(square(w), number(1))); }},
    function_row{Csch, [](term_ptr w) { return over(times(number(2), w), minus(square(w), number(1))); }},
};

// e^(i * f(u)); arccot lies between 0 and π.
constexpr std::array inverse_circular = {
    function_row{Arcsin, [](term_ptr u) { return plus(root(one_minus(square(u))), times(imaginary_unit(), u)); }},
    function_row{Arccos, [](term_ptr u) { return plus(u, times(imaginary_unit(), root(one_minus(square(u))))); }},
    function_row{Arctan,
                 [](term_ptr u) { return over(one_plus(times(imaginary_unit(), u)), root(one_plus(square(u)))); }},
    function_row{Arccot, [](term_ptr u) { return over(plus(u, imaginary_unit()), root(one_plus(square(u)))); }},
};

// e^f(u).
constexpr std::array inverse_hyperbolic = {
    function_row{Arcsinh, [](term_ptr u) { return plus(u, root(one_plus(square(u)))); }},
    function_row{Arccosh,
                 [](term_ptr u) { return plus(u, times(root(minus(u, number(1))), root(plus(u, number(1))))); }},
    function_row{Arctanh, [](term_ptr u) { return over(one_plus(u), root(one_minus(square(u)))); }},
    function_row{Arccoth, [](term_ptr u) { return over(root(plus(u, number(1))), root(minus(u, number(1)))); }},
};

// f(u) itself.
constexpr std::array as_logarithm = {
    function_row{Arcsinh, [](term_ptr u) { return make_unOp_term(Ln, plus(u, root(one_plus(square(u))))); }},
    function_row{Arctanh,
                 [](term_ptr u) { return over(make_unOp_term(Ln, over(one_plus(u), one_minus(u))), number(2)); }},
    function_row{Arccoth,
                 [](term_ptr u) {
                   term_ptr ratio = over(plus(u, number(1)), minus(u, number(1)));
                   return over(make_unOp_term(Ln, ratio), number(2));
                 }},
};

template <std::size_t n>
const function_row* row_of(const std::array<function_row, n>& rows, oper_type oper) {
  for (const function_row& row : rows) {
    if (row.oper == oper) {
      return &row;
    }
  }
  return nullptr;
}

// A summand as a rational multiple of something.
struct multiple {
  exact factor;
  term_ptr t;
};

multiple multiple_of(term_ptr t) {
  const quotient_parts parts = factors(t);
  multiple result{parts.negative ? -1 : 1, nullptr};
  for (term_ptr factor : parts.num) {
    if (const auto value = solver_numeric_calc_eval_rational(factor)) {
      result.factor *= *value;
    } else {
      result.t = result.t == nullptr ? factor : times(result.t, factor);
    }
  }
  term_ptr below = nullptr;
  for (term_ptr factor : parts.den) {
    const auto value = solver_numeric_calc_eval_rational(factor);
    if (value && !value->is_zero()) {
      result.factor /= *value;
    } else {
      below = below == nullptr ? factor : times(below, factor);
    }
  }
  if (!result.factor.is_known()) {
    return {1, t};
  }
  result.t = result.t == nullptr ? number(1) : result.t;
  result.t = below == nullptr ? result.t : over(result.t, below);
  return result;
}

constexpr whole_part never_merged = whole_part::landau | whole_part::several_values | whole_part::indefinite_integral |
                                    whole_part::infinity_value | whole_part::set_size | whole_part::ellipsis |
                                    whole_part::differential_quotient;

// Rewrites applications from the inside out, by a derived class that says what a node becomes (null: its parts alone
// are rewritten).
class function_writer {
 public:
  virtual ~function_writer() = default;

  term_ptr write(term_ptr t) {
    if ((t->type() != Apply && t->type() != TermList) || t->has_meta() || holds_any(t, never_merged)) {
      return t;
    }
    if (t->type() == Apply && (!stands_for_its_value(t) || binding(t).touches_names())) {
      return t;
    }
    if (const term_ptr* known = known_.find(t)) {
      return *known;
    }
    const auto view = composed_term_split(t);
    term_ptr result = view ? write_operation(*view) : nullptr;
    if (result == nullptr) {
      result = map_children(t, walk_apply | walk_elements | keep_meta, [this](term_ptr part) { return write(part); });
    }
    return known_.keep(t, result);
  }

 protected:
  virtual term_ptr write_operation(const composed_term& view) = 0;

  // The power for a summand k * f(u) with an integer k; null for any other.
  template <std::size_t n>
  term_ptr power_of_inverse(const std::array<function_row, n>& rows, const signed_term& summand) {
    const multiple found = multiple_of(summand.t);
    const auto view = found.factor.is_integer() ? composed_term_split(found.t) : std::nullopt;
    const function_row* row = view && view->t2 == nullptr ? row_of(rows, view->oper) : nullptr;
    return row == nullptr ? nullptr
                          : to_number(row->apply(write(view->t1)), summand.negative ? -found.factor : found.factor);
  }

 private:
  node_memo<term_ptr> known_;
};

// A product or sum in the making; null while it has no part.
class joined {
 public:
  explicit joined(oper_type oper) : oper_(oper) {}
  void add(term_ptr part) { all_ = all_ == nullptr ? part : make_binOp_term(oper_, all_, part); }
  void add(term_ptr part, bool negative) { add(negative ? make_unOp_term(Neg, part) : part); }
  term_ptr all() const { return all_; }
  term_ptr all_or_one() const { return all_ == nullptr ? number(1) : all_; }

 private:
  oper_type oper_;
  term_ptr all_ = nullptr;
};

// ---- Real functions.

class real_writer : public function_writer {
 public:
  explicit real_writer(root_normalizer& normalizer) : normalizer_(normalizer) {}

 protected:
  term_ptr write_operation(const composed_term& view) override {
    if (view.t2 != nullptr) {
      return view.oper == Power ? write_power(view.t1, view.t2) : nullptr;
    }
    if (const function_row* row = row_of(hyperbolic, view.oper)) {
      return row->apply(exponential(view.t1));
    }
    if (const function_row* row = row_of(as_logarithm, view.oper)) {
      return row->apply(write(view.t1));
    }
    return nullptr;
  }

 private:
  term_ptr exponential(term_ptr exponent) {
    joined product(Mult);
    joined rest(Plus);
    for (const signed_term& part : summands(exponent)) {
      if (const term_ptr power = power_of_inverse(inverse_hyperbolic, part)) {
        product.add(power);
      } else {
        rest.add(write(part.t), part.negative);
      }
    }
    joined plain(Plus);
    if (rest.all() != nullptr) {
      for (const signed_term& part : summands(log_form(rest.all(), normalizer_))) {
        if (const term_ptr power = power_of_logarithm(part)) {
          product.add(power);
        } else {
          plain.add(part.t, part.negative);
        }
      }
    }
    if (plain.all() != nullptr) {
      product.add(to_power(mk_const(E), plain.all()));
    }
    return product.all_or_one();
  }

  // e^(c * ln(a)) as a^c, for a number c, and for every c where the sign of a is not known.
  term_ptr power_of_logarithm(const signed_term& summand) {
    const multiple found = multiple_of(summand.t);
    const exact factor = summand.negative ? -found.factor : found.factor;
    const quotient_parts parts = factors(found.t);
    term_ptr base = nullptr;
    joined others(Mult);
    for (term_ptr part : parts.num) {
      const auto view = part->has_meta() ? std::nullopt : composed_term_split(part);
      if (base == nullptr && view && view->oper == Ln && view->t2 == nullptr) {
        base = view->t1;
      } else {
        others.add(part);
      }
    }
    if (base == nullptr) {
      return nullptr;
    }
    if (others.all() == nullptr && parts.den.empty()) {
      return to_number(base, factor);
    }
    if (normalizer_.nonnegative(base)) {
      return nullptr;
    }
    term_ptr exponent = times(number_of_any_size(factor), others.all_or_one());
    for (term_ptr part : parts.den) {
      exponent = over(exponent, part);
    }
    return to_power(base, exponent);
  }

  term_ptr write_power(term_ptr base, term_ptr exponent) {
    if (is_constant(base, E)) {
      return exponential(exponent);
    }
    const term_ptr logarithm = solver_numeric_calc_eval_rational(exponent) ? nullptr : logarithm_of(base);
    if (logarithm == nullptr) {
      return nullptr;
    }
    joined product(Mult);
    for (const signed_term& part : summands(exponent)) {
      if (const auto value = solver_numeric_calc_eval_rational(part.t)) {
        product.add(to_number(write(base), part.negative ? -*value : *value));
      } else {
        product.add(exponential(times(part.negative ? make_unOp_term(Neg, part.t) : part.t, logarithm)));
      }
    }
    return product.all_or_one();
  }

  // Null where the base is not known to be no less than zero.
  term_ptr logarithm_of(term_ptr base) {
    const auto view = base->has_meta() ? std::nullopt : composed_term_split(base);
    if (view && view->oper == Power && view->t2 != nullptr && is_constant(view->t1, E)) {
      return view->t2;
    }
    return normalizer_.nonnegative(base) ? make_unOp_term(Ln, base) : nullptr;
  }

  root_normalizer& normalizer_;
};

}  // namespace

term_ptr exponential_form(term_ptr t, root_normalizer& normalizer) { return real_writer(normalizer).write(t); }

// ---- Functions of angles.

class circular_form::writer : public function_writer {
 public:
  // e^(i * angle).
  term_ptr on_circle(term_ptr angle) {
    joined product(Mult);
    joined rest(Plus);
    for (const signed_term& part : summands(angle)) {
      if (const auto turns = multiple_of_pi(part.t)) {
        product.add(half_turns(part.negative ? -*turns : *turns));
      } else if (const term_ptr power = power_of_inverse(inverse_circular, part)) {
        product.add(power);
      } else {
        rest.add(write(part.t), part.negative);
      }
    }
    if (rest.all() != nullptr) {
      product.add(to_power(unit_on_circle(), rest.all()));
    }
    return product.all_or_one();
  }

  term_ptr cofactor() const {
    joined product(Mult);
    for (const std::int64_t prime : odd_primes_) {
      product.add(one_plus(to_number(number(-1), exact(1) / exact(prime))));
    }
    return product.all();
  }

 protected:
  term_ptr write_operation(const composed_term& view) override {
    const function_row* row = view.t2 == nullptr ? row_of(circular, view.oper) : nullptr;
    return row == nullptr ? nullptr : row->apply(on_circle(view.t1));
  }

 private:
  // e^(i * π * turns).
  term_ptr half_turns(exact turns) {
    turns -= exact(2) * floor((turns + exact(1)) / exact(2));  // from -1 on, below 1
    if ((turns * exact(12)).is_integer()) {
      const term_ptr cosine = exact_trig_value(Cos, turns);
      const term_ptr sine = exact_trig_value(Sin, turns);
      return plus(cosine, times(imaginary_unit(), sine));
    }
    if ((turns * exact(24)).is_integer()) {
      const exact step = exact(1) / exact(24);
      return times(half_turns(turns - step), root(half_turns(step + step)));
    }
    for (const auto& [prime, exponent] : prime_powers(turns.denominator())) {
      const auto small = prime.to_int64();
      if (small && *small % 2 != 0) {
        odd_primes_.insert(*small);
      }
    }
    return to_number(number(-1), turns);
  }

  std::set<std::int64_t> odd_primes_;
};

circular_form::circular_form() : writer_(std::make_unique<writer>()) {}

circular_form::~circular_form() = default;

term_ptr circular_form::of(term_ptr t) { return writer_->write(t); }

term_ptr circular_form::turned(term_ptr angle) { return writer_->on_circle(angle); }

term_ptr circular_form::cofactor() const { return writer_->cofactor(); }

}  // namespace vetro
