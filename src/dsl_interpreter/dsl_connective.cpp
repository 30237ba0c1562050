// The instructions on connectives: destruct_and, case_analysis, or_intro, and apply.
#include "dsl_interpreter/dsl_handler.h"
#include "qv_solver_list/solver_sat.h"
#include "term/compare.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

// The premises of the hypothesis that are left to show once its conclusion has met the goal; nothing when it never
// does. The conclusion meets the goal when they are equal up to bound names or the goal follows by propositional
// reasoning.
std::optional<term_list> dsl_term_apply(term_ptr hypothesis, term_ptr goal) {
  term_list premises;
  for (term_ptr working = hypothesis;;) {
    const term_ptr only[] = {working};
    if (alpha_equivalent(working, goal) || solver_sat(only, goal)) {
      return premises;
    }
    const auto parts = separate_imply(working);
    if (!parts) {
      return std::nullopt;
    }
    premises.push_back(parts->first);
    working = parts->second;
  }
}

}  // namespace

dsl_result execute_destruct_and(dsl_execute_data& data) {
  dsl_result result;
  const dsl_destruct_and& inst = instruction_as<dsl_destruct_and>(data);
  proof_gap_full& gap = *data.cur_gap;
  if (inst.source.type != dsl_hypo) {
    log_error(data, "execute_destruct_and: source must be a hypothesis.\n");
    return result;
  }
  term_ptr hypothesis = gap.hypothesis(inst.source.num);
  if (hypothesis == nullptr) {
    log_error(data, "execute_destruct_and: hypothesis index out of range: %lld.\n",
              static_cast<long long>(inst.source.num));
    return result;
  }
  if (strong_checks(data) && !term_eqb(inst.source.t, hypothesis)) {
    result.redundant_flag = redundant_fail;
    log_error(data, "execute_destruct_and: source hypothesis mismatch.\n");
  }
  const term_list parts = split_connect(hypothesis, And);
  if (parts.size() < 2) {
    log_error(data, "execute_destruct_and: source hypothesis is not a conjunction.\n");
    return result;
  }
  if (inst.new_hypos.size() != parts.size()) {
    log_error(data, "execute_destruct_and: target count mismatch, need %zu targets but got %zu.\n", parts.size(),
              inst.new_hypos.size());
    return result;
  }
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const dsl_term& target = inst.new_hypos[i];
    if (target.type != dsl_hypo) {
      log_error(data, "execute_destruct_and: each target after 'as' must be a hypothesis.\n");
      return result;
    }
    add_assumption(gap, parts[i]);
    const int number = gap.assu_num();
    if (strong_checks(data) && target.num != number) {
      result.redundant_flag = redundant_fail;
      log_error(data, "execute_destruct_and: target hypothesis number should be %d.\n", number);
    }
    if (strong_checks(data) && !term_eqb(target.t, parts[i])) {
      result.redundant_flag = redundant_fail;
      log_error(data, "execute_destruct_and: target hypothesis content mismatch at %d.\n", number);
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
    log_error(data, "execute_case_analysis: the hypothesis must be a HYPOTHESIS.\n");
    return result;
  }
  term_ptr hypothesis = gap.hypothesis(source.num);
  if (hypothesis == nullptr) {
    log_error(data, "execute_case_analysis: hypothesis index out of range.\n");
    return result;
  }
  const term_list parts = split_connect(hypothesis, Or);
  if (parts.size() < 2) {
    log_error(data, "execute_case_analysis: the hypothesis is not a disjunction.\n");
    return result;
  }
  data.split_gaps.clear();
  for (term_ptr part : parts) {
    data.split_gaps.push_back(gap);
    data.split_gaps.back().assum[static_cast<std::size_t>(source.num - 1)] = part;
  }
  result.flag = exe_gap_split;
  return result;
}

dsl_result execute_or_intro(dsl_execute_data& data) {
  dsl_result result;
  if (data.cur_gap->goal == nullptr) {
    log_error(data, "execute_or_intro: current proof gap has no goal.\n");
    return result;
  }
  const auto view = composed_prop_split(data.cur_gap->goal);
  if (!view || view->connect != Or || view->t2 == nullptr) {
    log_error(data, "execute_or_intro: current goal must be a binary disjunction.\n");
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
    log_error(data, "apply instruction can only be used with hypotheses, not theorems or other terms\n");
    return result;
  }
  term_ptr hypothesis = gap.hypothesis(source.num);
  if (hypothesis == nullptr) {
    log_error(data, "Invalid hypothesis number: %lld, current proof gap has %d hypotheses\n",
              static_cast<long long>(source.num), gap.assu_num());
    return result;
  }
  strong_compare(data, result, hypothesis, source.t, "Mismatched hypothesis: actual hypothesis ", " but expected ");
  const std::optional<term_list> premises = dsl_term_apply(hypothesis, gap.goal);
  if (!premises) {
    log_error(data, "hypothesis's conclusion does not match current goal\n");
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
