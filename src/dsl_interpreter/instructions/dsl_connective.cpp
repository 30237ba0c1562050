// The instructions on connectives: destruct_and, case_analysis, or_intro, and apply.
#include <algorithm>

#include "dsl_interpreter/dsl_handler.h"
#include "number/limits.h"
#include "qv_solver_list/logic/propositional.h"
#include "term/compare.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

// p1 ⇒ (p2 ⇒ ... ⇒ c), taken apart: rest number k is what stands behind the first k premises.
struct implication_chain {
  term_list premises;
  term_list rests;
};

implication_chain open_chain(term_ptr hypothesis) {
  implication_chain chain;
  chain.rests.push_back(hypothesis);
  while (const auto parts = separate_imply(chain.rests.back())) {
    chain.premises.push_back(parts->first);
    chain.rests.push_back(parts->second);
  }
  return chain;
}

sat_answer implies(term_ptr rest, term_ptr goal) {
  const term_ptr only[] = {rest};
  return propositional_answer(only, goal);
}

// The first of rests[low] to rests[high - 1] that is seen to imply the goal, else high. Rest number given_up is known
// to be undecided.
std::size_t first_seen_to_imply(term_span rests, std::size_t low, std::size_t high, std::size_t given_up,
                                term_ptr goal) {
  int undecided = 0;
  for (std::size_t k = low; k < high && undecided < limits::apply_undecided; ++k) {
    const sat_answer answer = k == given_up ? sat_answer::undecided : implies(rests[k], goal);
    if (answer == sat_answer::proved) {
      return k;
    }
    undecided += answer == sat_answer::undecided ? 1 : 0;
  }
  return high;
}

// The first rest that implies the goal by propositional reasoning; rests.size() when there is none.
//
// Each rest follows from the next one, so that the rests which imply the goal are the last ones, and halving finds the
// first of them in a few questions. Only an undecided question says nothing about the other rests; then they are asked
// one by one.
std::size_t first_implying(term_span rests, term_ptr goal) {
  std::size_t low = 0;
  std::size_t high = rests.size();
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    switch (implies(rests[middle], goal)) {
      case sat_answer::proved:
        high = middle;
        break;
      case sat_answer::open:
        low = middle + 1;
        break;
      case sat_answer::undecided:
        return first_seen_to_imply(rests, low, high, middle, goal);
    }
  }
  return low;
}

// The premises of the hypothesis that are left to show once its conclusion has met the goal; nothing when it never
// does. The conclusion meets the goal when they are equal up to bound names or the goal follows by propositional
// reasoning.
std::optional<term_list> dsl_term_apply(term_ptr hypothesis, term_ptr goal) {
  implication_chain chain = open_chain(hypothesis);
  const auto equal = std::find_if(chain.rests.begin(), chain.rests.end(),
                                  [goal](term_ptr rest) { return alpha_equivalent(rest, goal); });
  const auto before = static_cast<std::size_t>(equal - chain.rests.begin());
  const std::size_t met = first_implying(term_span(chain.rests).first(before), goal);
  if (met == chain.rests.size()) {
    return std::nullopt;
  }
  chain.premises.resize(met);
  return std::move(chain.premises);
}

}  // namespace

dsl_result execute_destruct_and(dsl_execute_data& data) {
  dsl_result result;
  const dsl_destruct_and& inst = instruction_as<dsl_destruct_and>(data);
  proof_gap_full& gap = *data.cur_gap;
  if (inst.source.type != dsl_hypo) {
    log_error(data, fault(diagnostic_code::wrong_kind).at(inst.source),
              "execute_destruct_and: source must be a hypothesis.\n");
    return result;
  }
  term_ptr hypothesis = gap.hypothesis(inst.source.num);
  if (hypothesis == nullptr) {
    log_error(data, fault(diagnostic_code::no_such_hypothesis).at(inst.source),
              "execute_destruct_and: hypothesis index out of range: %lld.\n", static_cast<long long>(inst.source.num));
    return result;
  }
  if (strong_checks(data) && !term_eqb(inst.source.t, hypothesis)) {
    result.redundant_flag = redundant_fail;
    log_error(data, fault(diagnostic_code::written_differs).at_formula(inst.source),
              "execute_destruct_and: source hypothesis mismatch.\n");
  }
  const term_list parts = split_connect(hypothesis, And);
  if (parts.size() < 2) {
    log_error(data, fault(diagnostic_code::wrong_shape).at(inst.source).differs(nullptr, hypothesis),
              "execute_destruct_and: source hypothesis is not a conjunction.\n");
    return result;
  }
  if (inst.new_hypos.size() != parts.size()) {
    log_error(data, fault(diagnostic_code::wrong_count).differs(nullptr, hypothesis),
              "execute_destruct_and: target count mismatch, need %zu targets but got %zu.\n", parts.size(),
              inst.new_hypos.size());
    return result;
  }
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const dsl_term& target = inst.new_hypos[i];
    if (target.type != dsl_hypo) {
      log_error(data, fault(diagnostic_code::wrong_kind).at(target),
                "execute_destruct_and: each target after 'as' must be a hypothesis.\n");
      return result;
    }
    add_assumption(gap, parts[i]);
    const int number = gap.assu_num();
    compare_written(data, target, parts[i], number);
    if (strong_checks(data) && target.num != number) {
      result.redundant_flag = redundant_fail;
      log_error(data, fault(diagnostic_code::written_differs).at(target),
                "execute_destruct_and: target hypothesis number should be %d.\n", number);
    }
    if (strong_checks(data) && !term_eqb(target.t, parts[i])) {
      result.redundant_flag = redundant_fail;
      log_error(data, fault(diagnostic_code::written_differs).at_formula(target),
                "execute_destruct_and: target hypothesis content mismatch at %d.\n", number);
    }
  }
  succeed(data, result);
  return result;
}

dsl_result execute_case_analysis(dsl_execute_data& data) {
  dsl_result result;
  const dsl_term& source = instruction_as<dsl_case_analysis>(data).hypo;
  const proof_gap_full& gap = *data.cur_gap;
  if (source.type != dsl_hypo) {
    log_error(data, fault(diagnostic_code::wrong_kind).at(source),
              "execute_case_analysis: the hypothesis must be a HYPOTHESIS.\n");
    return result;
  }
  term_ptr hypothesis = gap.hypothesis(source.num);
  if (hypothesis == nullptr) {
    log_error(data, fault(diagnostic_code::no_such_hypothesis).at(source),
              "execute_case_analysis: hypothesis index out of range.\n");
    return result;
  }
  const term_list parts = split_connect(hypothesis, Or);
  if (parts.size() < 2) {
    log_error(data, fault(diagnostic_code::wrong_shape).at(source).differs(nullptr, hypothesis),
              "execute_case_analysis: the hypothesis is not a disjunction.\n");
    return result;
  }
  data.split_gaps.clear();
  for (term_ptr part : parts) {
    data.split_gaps.push_back(gap);
    data.split_gaps.back().assum.replace(static_cast<std::size_t>(source.num - 1), part);
  }
  result.flag = exe_gap_split;
  return result;
}

dsl_result execute_or_intro(dsl_execute_data& data) {
  dsl_result result;
  if (data.cur_gap->goal == nullptr) {
    log_error(data, fault(diagnostic_code::wrong_shape), "execute_or_intro: current proof gap has no goal.\n");
    return result;
  }
  const auto view = composed_prop_split(data.cur_gap->goal);
  if (!view || view->connect != Or || view->t2 == nullptr) {
    log_error(data, fault(diagnostic_code::wrong_shape).differs(nullptr, data.cur_gap->goal),
              "execute_or_intro: current goal must be a binary disjunction.\n");
    return result;
  }
  install_goal(data, instruction_as<dsl_or_intro>(data).side == or_intro_left ? view->t1 : view->t2);
  succeed(data, result);
  return result;
}

dsl_result execute_apply(dsl_execute_data& data) {
  dsl_result result;
  const dsl_term& source = instruction_as<dsl_apply>(data).hypo;
  proof_gap_full& gap = *data.cur_gap;
  if (source.type != dsl_hypo) {
    log_error(data, fault(diagnostic_code::wrong_kind).at(source),
              "apply instruction can only be used with hypotheses, not theorems or other terms\n");
    return result;
  }
  term_ptr hypothesis = gap.hypothesis(source.num);
  if (hypothesis == nullptr) {
    log_error(data, fault(diagnostic_code::no_such_hypothesis).at(source),
              "Invalid hypothesis number: %lld, current proof gap has %d hypotheses\n",
              static_cast<long long>(source.num), gap.assu_num());
    return result;
  }
  strong_compare(data, result, hypothesis, source.t, "Mismatched hypothesis: actual hypothesis ", " but expected ");
  const std::optional<term_list> premises = dsl_term_apply(hypothesis, gap.goal);
  if (!premises) {
    log_error(data, fault(diagnostic_code::conclusion_mismatch).at(source).differs(gap.goal, hypothesis),
              "hypothesis's conclusion does not match current goal\n");
    return result;
  }
  if (premises->empty()) {
    proof_gap_full_mark_finished(gap);
    succeed(data, result, exe_finish);
    return result;
  }
  install_goal(data, lambda_condition_from_list(*premises));
  succeed(data, result);
  return result;
}

}  // namespace vetro
