// Gaps are found by the shape of the formula, and compared factor by factor.
#include "qv_solver_list/calculus/gaps.h"

#include <algorithm>
#include <utility>

#include "qv_solver_list/algebra/numeric_calc.h"
#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/algebra/zero_set.h"
#include "qv_solver_list/calculus/kinks.h"
#include "term/build.h"
#include "term/functions.h"
#include "term/node_memo.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

term_ptr inside_magnitude(term_ptr t) {
  const auto view = composed_term_split(t);
  return view && view->oper == Abs && view->t2 == nullptr ? view->t1 : nullptr;
}

term_ptr under_logarithm(term_ptr operand) {
  term_ptr inside = inside_magnitude(operand);
  return inside == nullptr ? operand : inside;
}

// ---- Finding gaps.

class gap_finder {
 public:
  explicit gap_finder(variable_facts& facts) : facts_(facts) {}

  // The gaps of t, without those that come from logarithms which t adds.
  void visit_addends(term_ptr t) {
    const auto view = composed_term_split(t);
    const bool binary = view && view->t2 != nullptr;
    if (binary && (view->oper == Plus || view->oper == Minus)) {
      visit_addends(view->t1);
      visit_addends(view->t2);
    } else if (view && view->oper == Neg) {
      visit_addends(view->t1);
    } else if (binary && view->oper == Mult && !facts_.moves(view->t1)) {
      visit_addends(view->t2);
    } else if (binary && (view->oper == Mult || view->oper == Div || view->oper == Frac) && !facts_.moves(view->t2)) {
      visit_addends(view->t1);
    } else if (view && view->oper == Ln && has_even_zeros(under_logarithm(view->t1), facts_)) {
      visit(view->t1);
    } else {
      visit(t);
    }
  }

  void visit(term_ptr t) {
    if (!facts_.moves(t) || !visited_.insert(t)) {
      return;
    }
    if (const auto view = composed_term_split(t)) {
      note(*view);
    }
    for (term_ptr part : t->children()) {
      if (part != nullptr) {
        visit(part);
      }
    }
  }

  std::vector<gap> found;

 private:
  void note(const composed_term& view) {
    if (view.t2 == nullptr) {
      note_unary(view.oper, view.t1);
    } else if (view.oper == Div || view.oper == Frac) {
      add_zeros(view.t2, gap_kind::certain, nullptr);
    } else if (view.oper == Power) {
      add_power(view.t1, view.t2, gap_kind::certain, false);
    } else if (view.oper == Log) {
      add_zeros(view.t2, gap_kind::certain, nullptr);
    }
  }

  void note_unary(oper_type oper, term_ptr operand) {
    if (oper == Ln || oper == Lg) {
      if (!facts_.positive(operand)) {
        add_zeros(under_logarithm(operand), gap_kind::certain, nullptr);
      }
      return;
    }
    const known_function* f = find_function(oper);
    if (f != nullptr && f->domain.subject != domain_subject::argument) {
      add_zeros(subject_of(f->domain, operand), gap_kind::certain, nullptr);
    }
  }

  // The points where base^exponent breaks off, or where its reciprocal does.
  void add_power(term_ptr base, term_ptr exponent, gap_kind kind, bool reciprocal) {
    if (const auto value = solver_numeric_calc_eval_rational(exponent)) {
      if ((value->sign() < 0) != reciprocal && !value->is_zero()) {
        add_zeros(base, kind == gap_kind::of_power ? gap_kind::certain : kind, nullptr);
      }
    } else if (facts_.moves(exponent)) {
      add_zeros(base, gap_kind::possible, nullptr);
    } else {
      add_zeros(base, gap_kind::of_power, reciprocal ? mk_neg(exponent) : exponent);
    }
  }

  // The points where t is 0, told by its factors.
  void add_zeros(term_ptr t, gap_kind kind, term_ptr exponent) {
    if (!facts_.moves(t)) {
      return;
    }
    const auto view = composed_term_split(t);
    const bool binary = view && view->t2 != nullptr;
    if (binary && view->oper == Mult) {
      add_zeros(view->t1, kind, exponent);
      add_zeros(view->t2, kind, exponent);
    } else if (binary && view->oper == Power) {
      add_power(view->t1, exponent == nullptr ? view->t2 : mk_product(view->t2, exponent), kind, exponent == nullptr);
    } else if (binary && view->oper == Sqrtn) {
      add_zeros(view->t2, kind, exponent);
    } else if (view && keeps_zeros(view->oper, binary)) {
      add_zeros(view->t1, kind, exponent);
    } else {
      found.push_back({kind, t, exponent});
    }
  }

  // Of a quotient, the denominator has gaps of its own.
  static bool keeps_zeros(oper_type oper, bool binary) {
    return binary ? oper == Div || oper == Frac : oper == Neg || oper == Abs || oper == Sqrt || oper == Cbrt;
  }

  variable_facts& facts_;
  node_set visited_;
};

// ---- Comparing them.

// Adds the terms in t under even roots, written as roots or as powers with an even denominator.
void add_even_radicands(term_ptr t, const variable_facts& facts, node_set& met, term_list& out) {
  if (!facts.moves(t) || !met.insert(t)) {
    return;
  }
  if (const auto view = composed_term_split(t)) {
    if (view->oper == Sqrt && view->t2 == nullptr) {
      out.push_back(view->t1);
    } else if (view->oper == Sqrtn && view->t2 != nullptr && is_constant(view->t1, Integer) &&
               view->t1->integer() % 2 == 0) {
      out.push_back(view->t2);
    } else if (view->oper == Power && view->t2 != nullptr) {
      const auto exponent = solver_numeric_calc_eval_rational(view->t2);
      const auto index = exponent ? exponent->denominator().to_int64() : std::nullopt;
      if (index && *index % 2 == 0) {
        out.push_back(view->t1);
      }
    }
  }
  for (term_ptr part : t->children()) {
    if (part != nullptr) {
      add_even_radicands(part, facts, met, out);
    }
  }
}

// The gaps of a formula against those of an integrand.
class gap_comparison {
 public:
  gap_comparison(term_ptr integrand, variable_facts& facts) : facts_(facts) {
    for (const gap& g : gaps_of(integrand, facts)) {
      if (g.kind == gap_kind::certain) {
        known_.add(g.part);
        known_parts_.push_back(g.part);
      } else if (g.kind == gap_kind::of_power) {
        known_powers_.push_back(g);
      }
    }
    node_set met;
    add_even_radicands(integrand, facts, met, radicands_);
  }

  bool is_shared(const gap& g) {
    if (std::find(known_parts_.begin(), known_parts_.end(), g.part) != known_parts_.end()) {
      return true;
    }
    ignore_fixed(g.part);
    return known_.covers(g.part) || is_known(g.part) || (g.exponent != nullptr && is_known_power(g)) ||
           facts_.nonzero(g.part) || is_edge(g.part);
  }

 private:
  // What does not move is 0 everywhere or nowhere; where it is 0 everywhere, the formula says nothing.
  void ignore_fixed(term_ptr t) {
    if (!facts_.moves(t)) {
      known_.ignore(t);
    } else if (const auto view = composed_term_split(t)) {
      ignore_fixed(view->t1);
      if (view->t2 != nullptr) {
        ignore_fixed(view->t2);
      }
    }
  }

  bool is_known(term_ptr part) {
    return std::any_of(known_parts_.begin(), known_parts_.end(),
                       [&](term_ptr known) { return have_same_zeros(part, known); });
  }

  // The same base, with an exponent that is negative where that of the formula is.
  bool is_known_power(const gap& g) {
    return std::any_of(known_powers_.begin(), known_powers_.end(), [&](const gap& known) {
      return have_same_zeros(g.part, known.part) && facts_.negative_with(known.exponent, g.exponent);
    });
  }

  // The quotient a / b does not move: a' b = a b'.
  bool have_same_zeros(term_ptr a, term_ptr b) {
    if (a == b) {
      return true;
    }
    term_ptr da = facts_.derivatives().of(a);
    term_ptr db = facts_.derivatives().of(b);
    if (da == nullptr || db == nullptr) {
      return false;
    }
    term_ptr left = mk_product(da, b);
    term_ptr right = mk_product(a, db);
    return poly_rat_eqb(left, right);
  }

  // Formula and integrand end at the zeros of the part: it stands under an even root of the integrand, and changes its
  // sign at each zero.
  bool is_edge(term_ptr part) {
    return std::any_of(radicands_.begin(), radicands_.end(), [&](term_ptr r) { return poly_rat_eqb(part, r); }) &&
           facts_.has_simple_zeros(part);
  }

  variable_facts& facts_;
  zero_set known_;
  term_list known_parts_;
  std::vector<gap> known_powers_;
  term_list radicands_;
};

bool are_shared(const std::vector<gap>& gaps, term_ptr integrand, variable_facts& facts) {
  if (gaps.empty()) {
    return true;
  }
  gap_comparison comparison(integrand, facts);
  return std::all_of(gaps.begin(), gaps.end(), [&](const gap& g) { return comparison.is_shared(g); });
}

}  // namespace

std::vector<gap> gaps_of(term_ptr t, variable_facts& facts) {
  gap_finder finder(facts);
  finder.visit(t);
  return std::move(finder.found);
}

bool ends_only_with(term_ptr formula, term_ptr integrand, variable_facts& facts) {
  return are_shared(gaps_of(formula, facts), integrand, facts);
}

bool jumps_only_with(term_ptr formula, term_ptr integrand, variable_facts& facts) {
  gap_finder finder(facts);
  finder.visit_addends(formula);
  return are_shared(finder.found, integrand, facts);
}

bool logarithms_are_defined(term_ptr formula, variable_facts& facts) {
  node_set met;
  const auto visit = [&](auto&& self, term_ptr t) -> bool {
    if (!facts.moves(t) || !met.insert(t)) {
      return true;
    }
    const auto view = composed_term_split(t);
    if (view && view->oper == Ln && inside_magnitude(view->t1) == nullptr && !facts.positive(view->t1)) {
      return false;
    }
    return std::all_of(t->children().begin(), t->children().end(),
                       [&](term_ptr part) { return part == nullptr || self(self, part); });
  };
  return visit(visit, formula);
}

}  // namespace vetro
