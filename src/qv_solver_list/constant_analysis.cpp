// Facts of closed expressions are remembered for the run, up to a bound: they depend on nothing but the term.
#include "qv_solver_list/constant_analysis.h"

#include <algorithm>

#include "number/limits.h"
#include "term/node_memo.h"
#include "term/state.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

using facts_by_term = node_memo<value_facts>;

struct constant_memory {
  node_memo<int> heights;
  facts_by_term facts;
};

constant_memory& memory() {
  auto& known = state().slots.of<constant_memory>();
  if (known.heights.size() + known.facts.size() > limits::constants_remembered) {
    known = {};
  }
  return known;
}

constexpr int most_nested = 64;
constexpr int not_closed = most_nested + 1;

// How deep applications of operators nest in t; not_closed for any other term and for deeper ones.
int height_within(term_ptr t, node_memo<int>& known) {
  if (t->type() == Const) {
    return 0;
  }
  const auto view = composed_term_split(t);
  if (!view) {
    return not_closed;
  }
  const auto height = [&] {
    const int first = height_within(view->t1, known);
    const int below =
        view->t2 == nullptr || first == not_closed ? first : std::max(first, height_within(view->t2, known));
    return std::min(below + 1, not_closed);
  };
  return t->size() >= worth_remembering ? known.get(t, height) : height();
}

// What is known of an operand. A complex value that is not known to be real takes no part in a calculation: what is
// known of i * i is nothing, and of -i that it is complex.
value_facts operand(oper_type oper, const value_facts& facts) {
  return facts.real() || oper == Neg ? facts : value_facts{};
}

// The term is closed.
value_facts facts_within(term_ptr t, const root_limits& limits, facts_by_term& known) {
  if (t->type() == Const) {
    return facts_of_constant(t);
  }
  return known.get(t, [&] {
    const auto view = composed_term_split(t);
    const value_facts first = operand(view->oper, facts_within(view->t1, limits, known));
    return view->t2 == nullptr
               ? apply(view->oper, first, limits)
               : apply(view->oper, first, operand(view->oper, facts_within(view->t2, limits, known)), limits);
  });
}

class status_reader {
 public:
  solver_const_real_status read(term_ptr t) {
    return known_.get(t, [&] { return read_new(t); });
  }

 private:
  static constexpr auto unknown = SOLVER_CONST_REAL_UNKNOWN;
  static constexpr auto defined = SOLVER_CONST_REAL_DEFINED;
  static constexpr auto undefined = SOLVER_CONST_REAL_UNDEFINED;
  static solver_const_real_status defined_if(bool condition) { return condition ? defined : unknown; }
  static bool is_zero(const value_facts& a) { return a.has_signs(sign_class::zero); }
  static bool is_even(const exact& v) { return (v / exact(2)).is_integer(); }
  static bool is_negative(const value_facts& a) { return a.has_signs(sign_class::negative); }

  solver_const_real_status read_new(term_ptr t) {
    const value_facts facts = solver_const_analyze(t);
    if (facts.real() || facts.no_real) {
      return facts.real() ? defined : undefined;
    }
    if (t->type() == Const) {
      return defined_if(t->constant() == Decimal);
    }
    const auto view = composed_term_split(t);
    const solver_const_real_status first = read(view->t1);
    if (first == undefined) {
      return undefined;
    }
    if (view->t2 == nullptr) {
      return read_unary(view->oper, view->t1, first);
    }
    const solver_const_real_status second = read(view->t2);
    return second == undefined ? undefined : read_binary(*view, first, second);
  }

  static solver_const_real_status read_unary(oper_type oper, term_ptr operand, solver_const_real_status status) {
    if (oper == Neg || oper == Abs) {
      return status;
    }
    return oper == Sqrt ? read_root(true, operand, status) : unknown;
  }

  static solver_const_real_status read_root(bool even, term_ptr radicand, solver_const_real_status status) {
    const value_facts facts = solver_const_analyze(radicand);
    if (even && is_negative(facts)) {
      return undefined;
    }
    return defined_if(status == defined && (!even || facts.nonnegative()));
  }

  static solver_const_real_status read_binary(const composed_term& view, solver_const_real_status first,
                                              solver_const_real_status second) {
    const bool both_defined = first == defined && second == defined;
    const value_facts right = solver_const_analyze(view.t2);
    switch (view.oper) {
      case Plus:
      case Minus:
      case Mult:
        return defined_if(both_defined);
      case Div:
      case Frac:
        return is_zero(right) ? undefined : defined_if(both_defined && right.nonzero());
      case Mod:
        return is_zero(right) ? undefined : unknown;
      case Power:
        return read_power(solver_const_analyze(view.t1), right, first, both_defined);
      case Sqrt:
      case Sqrtn: {
        const value_facts index = solver_const_analyze(view.t1);
        if (!index.has_value()) {
          return unknown;
        }
        const bool valid = index.value.is_integer() && index.value.sign() > 0;
        return valid ? read_root(is_even(index.value), view.t2, second) : undefined;
      }
      default:
        return unknown;
    }
  }

  static solver_const_real_status read_power(const value_facts& base, const value_facts& exponent,
                                             solver_const_real_status base_status, bool both_defined) {
    if (exponent.has_value() && exponent.value.is_integer()) {
      if (base_status != defined) {
        return unknown;
      }
      const bool above_zero = exponent.value.sign() > 0;
      return !above_zero && is_zero(base) ? undefined : defined_if(above_zero || base.nonzero());
    }
    if (is_zero(base) && is_negative(exponent)) {
      return undefined;
    }
    return defined_if(both_defined && base.positive());
  }

  node_memo<solver_const_real_status> known_;
};

// The rank by which the constants with a name but without an exact value are ordered; 0 for any other term.
int special_const_rank(term_ptr t) {
  if (is_constant(t, E)) {
    return 1;
  }
  return is_constant(t, Pi) ? 2 : 0;
}

bool sign_proves_predicate(const value_facts& facts, pred_type pred) {
  const auto admitted = signs_admitted(pred);
  return admitted && facts.has_signs(*admitted);
}

}  // namespace

bool solver_const_expr_is_closed(term_ptr expr) {
  return expr != nullptr && expr->name_mask() == 0 && !expr->has(fact_meta) &&
         height_within(expr, memory().heights) <= most_nested;
}

value_facts solver_const_analyze(term_ptr expr, const root_limits& limits) {
  if (!solver_const_expr_is_closed(expr)) {
    return {};
  }
  if (limits.index == 0 && limits.component == 0) {
    return facts_within(expr, limits, memory().facts);
  }
  facts_by_term known;
  return facts_within(expr, limits, known);
}

std::optional<exact> solver_const_analyze_exact_rational(term_ptr expr, const root_limits& limits) {
  const value_facts facts = solver_const_analyze(expr, limits);
  return facts.has_value() ? std::optional(facts.value) : std::nullopt;
}

solver_const_real_status solver_const_analyze_real_status(term_ptr expr) {
  return solver_const_expr_is_closed(expr) ? status_reader().read(expr) : SOLVER_CONST_REAL_UNKNOWN;
}

bool solver_const_prove_zero_relation(term_ptr expr, pred_type pred) {
  return sign_proves_predicate(solver_const_analyze(expr), pred);
}

bool solver_const_prove_relation(term_ptr left, pred_type pred, term_ptr right) {
  if (!solver_const_expr_is_closed(left) || !solver_const_expr_is_closed(right)) {
    return false;
  }
  const int left_rank = special_const_rank(left);
  const int right_rank = special_const_rank(right);
  if (left_rank != 0 && right_rank != 0) {
    return sign_proves_predicate(facts_of_value(left_rank - right_rank), pred);
  }
  return sign_proves_predicate(difference(solver_const_analyze(left), solver_const_analyze(right)), pred);
}

bool solver_const_matches_set(term_ptr expr, const_type set) { return lies_in(solver_const_analyze(expr), set); }

}  // namespace vetro
