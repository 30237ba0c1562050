// Gaps are found by the shape of the formula. That one gap lies in another is shown factor by factor: two factors have
// the same zeros when their quotient does not move.
#include "qv_solver_list/calculus/gaps.h"

#include <algorithm>
#include <unordered_set>

#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/calculus/natural_domains.h"
#include "qv_solver_list/constant_analysis.h"
#include "term/build.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

// ---- Finding gaps.

term_ptr inside_magnitude(term_ptr t) {
  const auto view = composed_term_split(t);
  return view && view->oper == Abs && view->t2 == nullptr ? view->t1 : nullptr;
}

// A power of a base that may be 0 has a value there.
bool is_positive_number(term_ptr exponent) {
  const auto value = solver_const_analyze_exact_rational(exponent);
  return value && value->sign() > 0;
}

class gap_finder {
 public:
  explicit gap_finder(const variable_facts& facts) : facts_(facts) {}

  void visit(term_ptr t) {
    if (!facts_.moves(t) || !visited_.insert(t).second) {
      return;
    }
    if (t->type() == Apply) {
      if (const auto view = composed_term_split(t)) {
        note(*view);
      }
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
      add(view.t2);
    } else if (view.oper == Power && !is_positive_number(view.t2)) {
      add(view.t1);
    } else if (view.oper == Log) {
      add(view.t2);
    }
  }

  void note_unary(oper_type oper, term_ptr operand) {
    if (oper == Ln || oper == Lg) {
      term_ptr inside = inside_magnitude(operand);
      add(inside == nullptr ? operand : inside, true);
      return;
    }
    const natural_domain* domain = find_natural_domain(oper);
    if (domain != nullptr && domain->subject != domain_subject::argument) {
      add(make_unOp_term(domain->subject == domain_subject::cosine ? Cos : Sin, operand));
    }
  }

  void add(term_ptr part, bool under_logarithm = false) {
    if (facts_.moves(part)) {
      found.push_back({part, under_logarithm});
    }
  }

  const variable_facts& facts_;
  std::unordered_set<term_ptr> visited_;
};

// ---- Zeros.

// Adds the factors of t that move, so that t is 0 only where one of them is.
void add_factors(term_ptr t, const variable_facts& facts, term_list& out) {
  if (!facts.moves(t)) {
    return;
  }
  const auto view = composed_term_split(t);
  const oper_type oper = view ? view->oper : Vec;
  if (oper == Mult && view->t2 != nullptr) {
    add_factors(view->t1, facts, out);
    add_factors(view->t2, facts, out);
  } else if (view && (oper == Neg || oper == Div || oper == Frac || oper == Power || oper == Sqrt || oper == Cbrt ||
                      oper == Abs)) {
    add_factors(view->t1, facts, out);
  } else if (oper == Sqrtn && view->t2 != nullptr) {
    add_factors(view->t2, facts, out);
  } else {
    out.push_back(t);
  }
}

// The quotient a / b does not move: a' b = a b'.
bool same_zeros(term_ptr a, term_ptr b, variable_facts& facts) {
  if (a == b) {
    return true;
  }
  term_ptr da = facts.derivatives().of(a);
  term_ptr db = facts.derivatives().of(b);
  if (da == nullptr || db == nullptr) {
    return poly_rat_eqb(a, b);
  }
  term_ptr left = mk_product(da, b);
  term_ptr right = mk_product(a, db);
  return poly_rat_eqb(left, right);
}

}  // namespace

std::vector<gap> gaps_of(term_ptr t, const variable_facts& facts) {
  gap_finder finder(facts);
  finder.visit(t);
  return std::move(finder.found);
}

bool breaks_off_with(term_ptr formula, term_ptr integrand, variable_facts& facts) {
  term_list factors;
  for (const gap& g : gaps_of(formula, facts)) {
    if (!g.under_logarithm) {
      add_factors(g.part, facts, factors);
    }
  }
  if (factors.empty()) {
    return true;
  }
  term_list known;
  for (const gap& g : gaps_of(integrand, facts)) {
    add_factors(g.part, facts, known);
  }
  return std::all_of(factors.begin(), factors.end(), [&](term_ptr f) {
    return std::any_of(known.begin(), known.end(), [&](term_ptr k) { return same_zeros(f, k, facts); }) ||
           facts.nonzero(f);
  });
}

bool logarithms_are_defined(term_ptr formula, variable_facts& facts) {
  std::unordered_set<term_ptr> met;
  const auto visit = [&](auto&& self, term_ptr t) -> bool {
    if (!facts.moves(t) || !met.insert(t).second) {
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
