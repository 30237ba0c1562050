// Expressions built of analytic functions are analytic but where a root has a kink: where its radicand is 0 and does
// not change its sign. Where the whole is not 0 at such a point, the kink does no harm.
#include "qv_solver_list/calculus/kinks.h"

#include <algorithm>
#include <array>

#include "qv_solver_list/algebra/numeric_calc.h"
#include "term/build.h"
#include "term/functions.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

constexpr std::array analytic_arithmetic = {Plus, Minus, Mult, Div, Frac, Neg};

// Arithmetic, or a function whose derivative holds throughout its domain.
bool is_analytic(oper_type oper) {
  const known_function* f = find_function(oper);
  return f != nullptr
             ? f->derivative != nullptr && f->radicand == nullptr
             : std::find(analytic_arithmetic.begin(), analytic_arithmetic.end(), oper) != analytic_arithmetic.end();
}

class kink_search {
 public:
  explicit kink_search(variable_facts& facts) : facts_(facts) {}

  // False where an operator is not known to be analytic.
  bool visit(term_ptr t) {
    if (!facts_.moves(t) || is_var(t) || !visited_.insert(t)) {
      return true;
    }
    const auto view = composed_term_split(t);
    return view && visit(view->t1) && (view->t2 == nullptr || visit(view->t2)) && note(t, *view);
  }

  term_list kinks;  // terms that may have one, where they are 0

 private:
  bool note(term_ptr t, const composed_term& view) {
    switch (view.oper) {
      case Sqrt:
      case Cbrt:
        return note_root(t, view.t1);
      case Sqrtn:
        return view.t2 != nullptr && !facts_.moves(view.t1) && note_root(t, view.t2);
      case Power:
        return view.t2 != nullptr && note_power(t, view.t1, view.t2);
      case Ln:
        return facts_.positive(view.t1);
      case Arcsin:
      case Arccos: {
        term_ptr square = mk_power(view.t1, mk_integer(2));
        return has_no_kink(mk_difference(mk_integer(1), square));
      }
      default:
        return is_analytic(view.oper);
    }
  }

  bool note_root(term_ptr t, term_ptr radicand) {
    if (!has_no_kink(radicand)) {
      kinks.push_back(t);
    }
    return true;
  }

  bool note_power(term_ptr t, term_ptr base, term_ptr exponent) {
    const auto value = solver_numeric_calc_eval_rational(exponent);
    if (!facts_.moves(base) || (value && value->is_integer()) || has_no_kink(base)) {
      return true;
    }
    return value && value->sign() > 0 && note_root(t, base);
  }

  bool has_no_kink(term_ptr radicand) { return facts_.nonzero(radicand) || facts_.has_simple_zeros_mostly(radicand); }

  variable_facts& facts_;
  node_set visited_;
};

// t where the part is 0.
class vanishing_part {
 public:
  explicit vanishing_part(term_ptr part) : part_(part) {}

  term_ptr in(term_ptr t) {
    if (t == part_) {
      return mk_integer(0);
    }
    const auto view = t->has_meta() ? std::nullopt : composed_term_split(t);
    return view ? known_.get(t, [&] { return rebuilt(*view); }) : t;
  }

 private:
  term_ptr rebuilt(const composed_term& view) {
    term_ptr first = in(view.t1);
    if (view.t2 == nullptr) {
      return view.oper == Neg ? mk_neg(first) : make_unOp_term(view.oper, first);
    }
    term_ptr second = in(view.t2);
    switch (view.oper) {
      case Plus:
        return mk_sum(first, second);
      case Minus:
        return mk_difference(first, second);
      case Mult:
        return mk_product(first, second);
      case Div:
      case Frac:
        return mk_quotient(first, second);
      default:
        return make_binOp_term(view.oper, first, second);
    }
  }

  term_ptr part_;
  node_memo<term_ptr> known_;
};

}  // namespace

bool has_even_zeros(term_ptr t, variable_facts& facts) {
  kink_search search(facts);
  return search.visit(t) && std::all_of(search.kinks.begin(), search.kinks.end(),
                                        [&](term_ptr kink) { return facts.nonzero(vanishing_part(kink).in(t)); });
}

}  // namespace vetro
