// The instructions on premises: get_condition moves premises of the goal into the assumptions, use_condition discharges
// premises of a hypothesis.
#include "dsl_interpreter/dsl_handler.h"
#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "term/compare.h"

namespace vetro {
namespace {

// The first pass of use_condition: each condition by itself. False after a message.
bool check_condition(const dsl_execute_data& data, dsl_result& result, const dsl_term& condition) {
  const proof_gap_full& gap = *data.cur_gap;
  if (condition.type == dsl_obvious) {
    if (condition.t == nullptr || !solver_manager_dsl(condition.t, dsl_data_to_solve_data_all(data), initial_fee)) {
      log_error_text(data, "Obvious condition check failed : " + pretty(condition.t) + "\n");
      return false;
    }
    return true;
  }
  term_ptr hypothesis = condition.type == dsl_goal ? nullptr : gap.hypothesis(condition.num);
  if (hypothesis == nullptr) {
    log_error(data, "Invalid condition hypothesis number: %lld, current proof gap has %d hypotheses\n",
              static_cast<long long>(condition.num), gap.assu_num());
    return false;
  }
  strong_compare(data, result, hypothesis, condition.t, "Mismatched target hypothesis: actual ", " but expected ");
  return true;
}

}  // namespace

dsl_result execute_get_condition(dsl_execute_data& data) {
  dsl_result result;
  const dsl_get_condition& inst = instruction_as<dsl_get_condition>(data);
  proof_gap_full& gap = *data.cur_gap;
  if (inst.goal.type != dsl_goal) {
    log_error(data, "get_condition target must be goal\n");
    return result;
  }
  strong_compare(data, result, gap.goal, inst.goal.t, "Mismatched goal: actual ", " but expected ");
  term_ptr working = gap.goal;
  for (const dsl_term& condition : inst.hlist) {
    const auto parts = separate_imply(working);
    if (condition.num <= gap.assu_num()) {
      log_error(data, "Invalid condition hypothesis number: %lld, this number has existed\n",
                static_cast<long long>(condition.num));
      return result;
    }
    if (!parts) {
      log_error(data, "goal is not long enough to match all conditions\n");
      return result;
    }
    const auto [premise, conclusion] = *parts;
    if (!term_eqb(condition.t, premise)) {
      log_error_text(data, "Condition does not match goal hypothesis:\n" + pretty(condition.t) + " != \n" +
                               pretty(premise) + "\n");
      return result;
    }
    add_assumption(gap, premise);
    working = conclusion;
  }
  install_goal(data, working);
  succeed(data, result);
  return result;
}

dsl_result execute_use_condition(dsl_execute_data& data) {
  dsl_result result;
  const dsl_use_condition& inst = instruction_as<dsl_use_condition>(data);
  proof_gap_full& gap = *data.cur_gap;
  term_ptr target = gap.hypothesis(inst.target.num);
  if (target == nullptr) {
    log_error(data, "Invalid target hypothesis number: %lld, current proof gap has %d hypotheses\n",
              static_cast<long long>(inst.target.num), gap.assu_num());
    return result;
  }
  strong_compare(data, result, target, inst.target.t, "Mismatched target hypothesis: actual ", " but expected ");
  for (const dsl_term& condition : inst.hypo_list) {
    if (!check_condition(data, result, condition)) {
      return result;
    }
  }
  term_ptr working = target;
  for (const dsl_term& condition : inst.hypo_list) {
    const auto parts = separate_imply(working);
    if (!parts) {
      log_error(data, "Target hypothesis is not long enough to match all conditions\n");
      return result;
    }
    const auto [premise, conclusion] = *parts;
    term_ptr given = condition.type == dsl_obvious ? condition.t : gap.hypothesis(condition.num);
    if (!term_eqb(given, premise) && !poly_rat_eqb(given, premise)) {
      log_error_text(data, "Condition does not match target hypothesis:\n" + pretty(given) + " != \n" +
                               pretty(premise) + "\n" + internal(given) + " != \n" + internal(premise) + "\n");
      return result;
    }
    working = conclusion;
  }
  add_assumption(gap, working);
  succeed(data, result);
  return result;
}

}  // namespace vetro
