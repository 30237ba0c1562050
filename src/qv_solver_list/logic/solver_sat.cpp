// Propositional reasoning: assumptions and negated target become clauses over opaque atoms, and the target is proved
// when these are unsatisfiable. Every term whose head is no connective is an atom, quantified formulas included.
//
// Where a question speaks of sets and stays open, it is asked again with the meaning of inclusions and memberships; and
// where there are equations among the assumptions, with equal things in place of one another.
#include <algorithm>
#include <optional>

#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/logic/equation_logic.h"
#include "qv_solver_list/logic/propositional.h"
#include "qv_solver_list/logic/propositional_problem.h"
#include "qv_solver_list/logic/set_logic.h"
#include "qv_solver_list/solver_preprocess.h"
#include "qv_solver_list/solvers.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

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
  explicit assumed_propositions(assumption_facts& facts) {
    const shared_terms& all = facts.all();
    translated_ = problem_.conjunction(all).has_value();
    speak_of_sets_ = std::any_of(all.begin(), all.end(), speaks_of_sets);
  }

  bool mention(term_ptr atom) { return !translated_ || problem_.mentions(atom); }
  bool speak_of_sets() const { return speak_of_sets_; }

  bool contradict() {
    if (!contradict_) {
      contradict_ = refutation(problem_) == sat_answer::proved;
    }
    return *contradict_;
  }

 private:
  propositional_problem problem_;
  bool translated_ = false;
  bool speak_of_sets_ = false;
  std::optional<bool> contradict_;
};

// By the connectives alone.
bool follows(term_ptr target, const solve_data& sdata) {
  term_ptr goal = solver_preprocess_expand_tuple_equalities(target);
  if (goal != nullptr && !sdata.assum.empty() && !composed_prop_split(goal)) {
    auto& assumed = facts_of(sdata).table<assumed_propositions>();
    if (!assumed.mention(goal)) {
      return assumed.contradict();
    }
  }
  return propositional_answer(sdata.assum, target) == sat_answer::proved;
}

}  // namespace

sat_answer propositional_answer(term_span assum, term_ptr target) {
  propositional_problem problem;
  const auto premises = problem.conjunction(assum);
  if (!assum.empty() && !premises) {
    return sat_answer::undecided;
  }
  // Not(Impl(premises, target)), or Not(target).
  const auto goal = problem.translate(solver_preprocess_expand_tuple_equalities(target));
  const auto refuted = problem.negation(assum.empty() ? goal : problem.connective(SAT_IMPLY, premises, goal));
  return refuted ? refutation(problem) : sat_answer::undecided;
}

bool solver_sat(term_ptr target, const solve_data& sdata) {
  if (follows(target, sdata)) {
    return true;
  }
  const bool of_sets =
      target != nullptr && (speaks_of_sets(target) || facts_of(sdata).table<assumed_propositions>().speak_of_sets());
  return (of_sets && follows_by_set_logic(sdata.assum, target)) ||
         (target != nullptr && follows_by_equations(target, sdata));
}

}  // namespace vetro
