// Propositional reasoning: assumptions and negated target become clauses over opaque atoms, and the target is proved
// when these are unsatisfiable.
//
// Every term whose head is no connective is an atom, quantified formulas included. Two terms are one atom when they are
// equal up to bound names, scopes included. Terms that merely print alike are different atoms.
#include <optional>
#include <unordered_map>

#include "number/limits.h"
#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/logic/propositional.h"
#include "qv_solver_list/set/cnf.h"
#include "qv_solver_list/solver_preprocess.h"
#include "qv_solver_list/solvers.h"
#include "term/compare.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"

namespace vetro {
namespace {

// Terms as they are written: without what is recorded about implicit binders. Scopes are written, so that only terms
// with scopes have to be walked; their nodes may be shared, and each is walked once.
class writing {
 public:
  term_ptr of(term_ptr t) {
    if (!t->has(fact_meta)) {
      return t;
    }
    if (!t->has(fact_scope)) {
      return t->bare();
    }
    if (const auto found = known_.find(t); found != known_.end()) {
      return found->second;
    }
    term_ptr written =
        map_children(t, walk_children | walk_scope | always_rebuild, [this](term_ptr part) { return of(part); });
    known_.emplace(t, written);
    return written;
  }

 private:
  std::unordered_map<term_ptr, term_ptr> known_;
};

// Numbers the atoms of one question, from 1 in order of first occurrence.
class atom_table {
 public:
  int id(term_ptr atom) {
    int& number = atom->has(fact_binding) ? by_meaning_[atom] : by_text_[writing_.of(atom)];
    number = number == 0 ? ++count_ : number;
    return number;
  }
  bool contains(term_ptr atom) {
    return atom->has(fact_binding) ? by_meaning_.count(atom) != 0 : by_text_.count(writing_.of(atom)) != 0;
  }
  int count() const { return count_; }

 private:
  int count_ = 0;
  writing writing_;
  std::unordered_map<term_ptr, int> by_text_;                                // of atoms that bind nothing
  std::unordered_map<term_ptr, int, alpha_hasher, alpha_equal> by_meaning_;  // of the others
};

std::optional<sat_term_type> binary_connective(connect_type connect) {
  switch (connect) {
    case And:
      return SAT_AND;
    case Or:
      return SAT_OR;
    case Impl:
      return SAT_IMPLY;
    case Iff:
      return SAT_IFF;
    case Not:
      break;
  }
  return std::nullopt;
}

// Assumptions and target as one formula. Every step gives the position of its node, or nothing when a term is missing
// or the formula has grown beyond its limit.
class propositional_problem {
 public:
  using position = std::optional<int>;

  position translate(term_ptr t) {
    if (t == nullptr || formula_.nodes().size() >= limits::propositional_nodes) {
      return std::nullopt;
    }
    const auto view = composed_prop_split(t);
    if (view && view->connect == Not && view->t2 == nullptr) {
      return negation(translate(view->t1));
    }
    const auto type = view && view->t2 != nullptr ? binary_connective(view->connect) : std::nullopt;
    if (!type) {
      return formula_.atom(atoms_.id(t));
    }
    const position left = translate(view->t1);
    const position right = left ? translate(view->t2) : std::nullopt;
    return connective(*type, left, right);
  }

  position negation(position operand) { return operand ? position(formula_.negation(*operand)) : std::nullopt; }

  position connective(sat_term_type type, position left, position right) {
    return left && right ? position(formula_.connective(type, *left, *right)) : std::nullopt;
  }

  bool mentions(term_ptr atom) { return atoms_.contains(atom); }

  cdcl_result solve() const {
    sat_data s = init_solver(build_cnf(formula_, atoms_.count()));
    return cdcl_solver(s);
  }

 private:
  sat_formula formula_;
  atom_table atoms_;
};

}  // namespace

namespace {

term_ptr opened(term_ptr t) { return solver_preprocess_expand_tuple_equalities(t); }

// And(And(a1, a2), ...): opening tuples part by part opens them in the whole.
propositional_problem::position conjunction(propositional_problem& problem, term_span assum) {
  propositional_problem::position premises;
  for (std::size_t i = 0; i < assum.size(); ++i) {
    const auto assumption = problem.translate(opened(assum[i]));
    premises = i == 0 ? assumption : problem.connective(SAT_AND, premises, assumption);
    if (!premises) {
      return std::nullopt;
    }
  }
  return premises;
}

sat_answer refutation(const propositional_problem& problem) {
  switch (problem.solve()) {
    case cdcl_unsat:
      return sat_answer::proved;
    case cdcl_sat:
      return sat_answer::open;
    case cdcl_exhausted:
      break;
  }
  return sat_answer::undecided;
}

// The assumptions alone: an atom that stands nowhere in them follows only if they contradict one another.
class assumed_propositions {
 public:
  explicit assumed_propositions(assumption_facts& facts)
      : translated_(conjunction(problem_, facts.all()).has_value()) {}

  bool mention(term_ptr atom) { return !translated_ || problem_.mentions(atom); }

  bool contradict() {
    if (!contradict_) {
      contradict_ = refutation(problem_) == sat_answer::proved;
    }
    return *contradict_;
  }

 private:
  propositional_problem problem_;
  bool translated_;
  std::optional<bool> contradict_;
};

}  // namespace

sat_answer propositional_answer(term_span assum, term_ptr target) {
  propositional_problem problem;
  const auto premises = conjunction(problem, assum);
  if (!assum.empty() && !premises) {
    return sat_answer::undecided;
  }
  // Not(Impl(premises, target)), or Not(target).
  const auto goal = problem.translate(opened(target));
  const auto refuted = problem.negation(assum.empty() ? goal : problem.connective(SAT_IMPLY, premises, goal));
  return refuted ? refutation(problem) : sat_answer::undecided;
}

// Proves what the assumptions imply by propositional reasoning alone.
bool solver_sat(term_ptr target, const solve_data& sdata) {
  term_ptr goal = opened(target);
  if (goal != nullptr && !sdata.assum.empty() && !composed_prop_split(goal)) {
    auto& assumed = facts_of(sdata).table<assumed_propositions>();
    if (!assumed.mention(goal)) {
      return assumed.contradict();
    }
  }
  return propositional_answer(sdata.assum, target) == sat_answer::proved;
}

}  // namespace vetro
