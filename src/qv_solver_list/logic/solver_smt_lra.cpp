// Linear arithmetic with uninterpreted functions: the target is proved when the assumptions and its negation have no
// model together.
//
// Of a long list only what belongs together with the target is looked at, and once for the list whether the rest
// contradicts itself: the answers are those of one question about everything.
#include <algorithm>
#include <iterator>

#include "number/limits.h"
#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/call_work.h"
#include "qv_solver_list/complex_values.h"
#include "qv_solver_list/logic/smt_models.h"
#include "qv_solver_list/logic/smt_relevance.h"
#include "qv_solver_list/logic/smt_translation.h"
#include "qv_solver_list/logic/smt_values.h"
#include "qv_solver_list/solvers.h"
#include "smt_solver/src/lra_solver.h"

namespace vetro {
namespace {

// Shorter lists are looked at as a whole.
constexpr std::size_t short_list = 24;

enum class answer : unsigned char { no_translation, refuted, open };

// A question under construction.
class question {
 public:
  question(term_span assumptions, term_ptr target, const complex_values& complex)
      : assumptions_(assumptions), translation_(language_, kinds_) {
    std::ranges::for_each(assumptions, [this](term_ptr assumption) { kinds_.assume_reals(assumption); });
    std::ranges::for_each(complex.named(), [this](term_ptr t) { kinds_.add_complex(t); });
    kinds_.add(target);
    for (term_ptr assumption : assumptions) {
      kinds_.add(assumption);
    }
  }

  smt_prop negated_target(term_ptr target) {
    const smt_prop goal = translation_.target(target);
    return goal == smt_none ? smt_none : language_.negation(goal);
  }
  // Whether the assumptions refute the formula.
  bool is_refuted(smt_prop formula, budget& work) {
    for (term_ptr assumption : assumptions_) {
      const smt_prop assumed = translation_.assumption(assumption);
      formula = assumed == smt_none ? formula : language_.connective(SMTPROP_AND, assumed, formula);
    }
    for (const smt_prop constraint : translation_.constraints()) {
      formula = language_.connective(SMTPROP_AND, constraint, formula);
    }
    return smt_solver_lra_uf(language_, formula, work, &model_) == 0;
  }
  // The model that was found instead, for comparisons that are asked later. Something that was complained of would be
  // complained of again.
  void keep_model(smt_models& models) {
    if (model_.empty() || translation_.complained()) {
      return;
    }
    smt_models::values values;
    for (const auto& [name, value] : model_) {
      values.emplace(intern_text(language_.term(name).text), value);
    }
    models.keep(assumptions_, std::move(kinds_), std::move(values));
  }
  smt_prop truth() { return language_.truth(true); }

 private:
  term_span assumptions_;
  value_kinds kinds_;
  smt_language language_;
  smt_translation translation_;
  smt_values model_;
};

answer refute(term_span assumptions, term_ptr target, const complex_values& complex, smt_models& models, budget& work) {
  if (models.refute(assumptions, target)) {
    return answer::open;
  }
  question asked(assumptions, target, complex);
  const smt_prop negated = asked.negated_target(target);
  if (negated == smt_none) {
    return answer::no_translation;
  }
  if (asked.is_refuted(negated, work)) {
    return answer::refuted;
  }
  if (is_linear_comparison(target)) {
    asked.keep_model(models);
  }
  return answer::open;
}

bool refute_alone(term_span assumptions, const complex_values& complex, budget& work) {
  question asked(assumptions, nullptr, complex);
  return asked.is_refuted(asked.truth(), work);
}

}  // namespace

bool solver_smt_lra(term_ptr target, const solve_data& sdata) {
  budget work(limits::smt_work, kernel_work_of_call());
  assumption_facts* list = &facts_of(sdata);
  const complex_values& complex = list->table<complex_values>();
  smt_models& models = list->table<smt_models>();
  if (target == nullptr || sdata.assum.size() <= short_list) {
    return refute(sdata.assum, target, complex, models, work) == answer::refuted;
  }
  term_list above;  // of the layers on top of the list
  for (; list->below() != nullptr; list = list->below()) {
    std::ranges::copy_if(list->own(), std::back_inserter(above), [](term_ptr t) { return t != nullptr; });
  }
  smt_relevance& relevance = list->table<smt_relevance>();
  term_list asked = above;
  asked.push_back(target);
  term_list assumptions = relevance.relevant_to(asked);
  assumptions.insert(assumptions.end(), above.begin(), above.end());
  const answer of_relevant = refute(assumptions, target, complex, models, work);
  if (of_relevant != answer::open || work.exhausted() || relevance.is_contradictory()) {
    return of_relevant == answer::refuted || (of_relevant == answer::open && relevance.is_contradictory());
  }
  relevance.relevant_are_consistent();
  const term_list others = relevance.others();
  if (!others.empty() && refute_alone(others, complex, work)) {
    relevance.contradicts_itself();
  } else if (!work.exhausted()) {
    relevance.others_are_consistent();
  }
  return relevance.is_contradictory();
}

}  // namespace vetro
