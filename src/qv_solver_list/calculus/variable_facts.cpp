#include "qv_solver_list/calculus/variable_facts.h"

#include "number/limits.h"
#include "number/real_roots.h"
#include "qv_solver_list/algebra/numeric_calc.h"
#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/number_reading.h"
#include "qv_solver_list/solver_preprocess.h"
#include "term/build.h"
#include "term/compare.h"
#include "term/functions.h"
#include "term/substitute/careful.h"
#include "term/substitute/fresh.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

term_ptr zero() { return mk_integer(0); }

// The term under a square root, written as a root or as a power; null for another term.
term_ptr under_square_root(term_ptr t) {
  const auto view = composed_term_split(t);
  if (!view) {
    return nullptr;
  }
  if (view->oper == Sqrt && view->t2 == nullptr) {
    return view->t1;
  }
  if (view->oper == Sqrtn && view->t2 != nullptr && is_integer(view->t1, 2)) {
    return view->t2;
  }
  const auto exponent = view->oper == Power && view->t2 != nullptr ? evaluate(view->t2, {}) : std::nullopt;
  return exponent && *exponent == exact(1) / exact(2) ? view->t1 : nullptr;
}

// Built of names and integers by sums, products and powers: two of these are equal only if calculation says so.
bool is_polynomial(term_ptr t) {
  if (is_var(t)) {
    return !t->has_meta();
  }
  const auto view = composed_term_split(t);
  if (!view) {
    return is_constant(t, Integer);
  }
  switch (view->oper) {
    case Neg:
      return is_polynomial(view->t1);
    case Plus:
    case Minus:
    case Mult:
      return view->t2 != nullptr && is_polynomial(view->t1) && is_polynomial(view->t2);
    case Power:
      return view->t2 != nullptr && is_constant(view->t2, Integer) && view->t2->integer() > 0 &&
             is_polynomial(view->t1);
    default:
      return false;
  }
}

std::optional<composed_term> plus_view(term_ptr t) {
  auto view = composed_term_split(t);
  return view && view->oper == Plus && view->t2 != nullptr ? view : std::nullopt;
}

}  // namespace

term_ptr variable_facts::quadratic::square() const { return mk_power(slope, mk_integer(2)); }

term_ptr variable_facts::quadratic::product() const {
  term_ptr twice_bend = mk_product(mk_integer(2), bend);
  return mk_product(constant, twice_bend);
}

term_ptr variable_facts::quadratic::discriminant() const {
  term_ptr from = square();
  return mk_difference(from, product());
}

solve_data under_condition(const solve_data& sdata, term_span conjuncts) {
  term_list more;
  const auto add = [&more](term_ptr t) {
    if (t != nullptr && !term_list_contains(more, t)) {
      more.push_back(t);
    }
  };
  for (term_ptr conjunct : conjuncts) {
    add(conjunct);
    if (term_ptr comparisons = solver_preprocess_expand_shared_membership(conjunct)) {
      for (term_ptr part : split_connect(elim_predchain(comparisons), And)) {
        add(part);
        add(solver_numeric_calc_simplify(part));
      }
    }
  }
  return with_assumptions(sdata, more);
}

variable_facts::variable_facts(const solve_data& sdata, term_ptr var)
    : sdata_(sdata), var_(var), facts_(sdata, evalbar_domain_policy), by_var_(var), polynomials_(var) {}

bool variable_facts::moves(term_ptr t) const { return name_occurs(var_->name(), t); }

bool variable_facts::nonzero(term_ptr t) { return facts_.nonzero(t) || exceeds_by_root(t) || has_no_root(t); }

// Beyond what the side solvers show: a function without gaps or jumps, also with something in front of or behind it
// that does not move.
bool variable_facts::defined(term_ptr t) {
  if (facts_.defined(t)) {
    return true;
  }
  const auto view = t->has_meta() ? std::nullopt : composed_term_split(t);
  if (!view) {
    return false;
  }
  if (view->t2 == nullptr) {
    const known_function* f = find_function(view->oper);
    return (view->oper == Neg || (f != nullptr && f->is_total() && !f->jumps)) && defined(view->t1);
  }
  const bool calculates = view->oper == Plus || view->oper == Minus || view->oper == Mult;
  const bool left_moves = moves(view->t1);
  return calculates && !(left_moves && moves(view->t2)) && facts_.defined(left_moves ? view->t2 : view->t1) &&
         defined(left_moves ? view->t1 : view->t2);
}

bool variable_facts::positive(term_ptr t) {
  const auto view = t->has_meta() ? std::nullopt : composed_term_split(t);
  if (view && (view->oper == Cosh || view->oper == Sech)) {
    // Of a real number, which has a square that is not negative: cosh(i * x) is cos(x).
    return defined(view->t1) && facts_.relation(Ge, mk_power(view->t1, mk_integer(2)), zero());
  }
  return facts_.relation(Gt, t, zero()) || exceeds_by_root(t) ||
         (has_no_root(t) && facts_.relation(Gt, at_zero(t), zero()));
}

bool variable_facts::nonpositive(term_ptr t) { return facts_.relation(Le, t, zero()); }

bool variable_facts::negative_with(term_ptr asked, term_ptr given) {
  term_ptr negative = make_binPred_prop(Lt, given, zero());
  return prover(sdata_, evalbar_domain_policy.premise_solvers).under({&negative, 1}).relation(Lt, asked, 0);
}

// The test of each factor of a product or quotient that moves.
template <class Test>
bool variable_facts::each_factor(term_ptr t, Test test) const {
  if (!moves(t)) {
    return true;
  }
  const auto view = composed_term_split(t);
  if (view && view->oper == Neg) {
    return each_factor(view->t1, test);
  }
  if (view && view->t2 != nullptr && (view->oper == Mult || view->oper == Div || view->oper == Frac)) {
    return each_factor(view->t1, test) && each_factor(view->t2, test);
  }
  return test(t);
}

bool variable_facts::keeps_sign(term_ptr t) {
  return nonpositive(t) || each_factor(t, [this](term_ptr factor) {
           return positive(factor) || facts_.relation(Lt, factor, zero()) || has_no_root(factor);
         });
}

bool variable_facts::has_one_sign(term_ptr t) {
  return each_factor(t, [this](term_ptr factor) {
    return positive(factor) || facts_.relation(Ge, factor, zero()) || nonpositive(factor) || has_no_root(factor);
  });
}

bool variable_facts::has_simple_zeros(term_ptr t) {
  const auto q = as_quadratic(t);
  return q && (poly_rat_eqb(q->bend, zero()) || facts_.nonzero(q->discriminant()));
}

bool variable_facts::has_simple_zeros_mostly(term_ptr t) {
  if (const ratio* r = polynomials_.read(t)) {
    budget work(limits::univariate_work);
    const auto multiple = r->den.size() == 1 ? has_multiple_root(r->num, work) : std::nullopt;
    return multiple && !*multiple;
  }
  const auto q = is_polynomial(t) ? as_quadratic(t) : std::nullopt;
  return q && (poly_rat_eqb(q->bend, zero()) || !poly_rat_eqb(q->discriminant(), zero()));
}

// A polynomial in the variable that is 0 for no real value.
bool variable_facts::has_no_root(term_ptr t) {
  const ratio* r = polynomials_.read(t);
  if (r == nullptr) {
    const auto q = as_quadratic(t);
    return q && has_no_root(*q);
  }
  budget work(limits::univariate_work);
  const auto rooted = r->den.size() == 1 ? has_real_root(r->num, work) : std::nullopt;
  return rooted && !*rooted;
}

// The discriminant is negative: as a fact, or because the square in it is a part of what is subtracted.
bool variable_facts::has_no_root(const quadratic& q) {
  if (facts_.relation(Lt, q.discriminant(), zero())) {
    return true;
  }
  constexpr std::int32_t parts = 4;
  term_ptr square = mk_product(mk_integer(parts), q.square());
  term_ptr product = q.product();
  for (std::int32_t part = 0; part < parts; ++part) {
    if (poly_rat_eqb(square, mk_product(mk_integer(part), product))) {
      return facts_.relation(Gt, product, zero());
    }
  }
  return false;
}

// It must be written without divisions by the variable and without functions of it, so that it is defined everywhere.
std::optional<variable_facts::quadratic> variable_facts::as_quadratic(term_ptr t) {
  term_ptr slope = facts_.defined(t) ? by_var_.of(t) : nullptr;
  term_ptr bend = slope == nullptr ? nullptr : by_var_.of(slope);
  term_ptr third = bend == nullptr ? nullptr : by_var_.of(bend);
  if (third == nullptr || !poly_rat_eqb(third, zero())) {
    return std::nullopt;
  }
  return quadratic{at_zero(t), at_zero(slope), at_zero(bend)};
}

// a + r or r + a for a square root r of a^2 + c with a positive c.
bool variable_facts::exceeds_by_root(term_ptr t) {
  const auto sum = plus_view(t);
  if (!sum) {
    return false;
  }
  const auto exceeds = [this](term_ptr root, term_ptr other) {
    term_ptr radicand = under_square_root(root);
    const auto parts = radicand == nullptr ? std::nullopt : plus_view(radicand);
    term_ptr square = mk_power(other, mk_integer(2));
    return parts && ((poly_rat_eqb(parts->t1, square) && positive(parts->t2)) ||
                     (poly_rat_eqb(parts->t2, square) && positive(parts->t1)));
  };
  return exceeds(sum->t2, sum->t1) || exceeds(sum->t1, sum->t2);
}

term_ptr variable_facts::at_zero(term_ptr t) const { return subst_term_capture_avoiding(var_, zero(), t); }

}  // namespace vetro
