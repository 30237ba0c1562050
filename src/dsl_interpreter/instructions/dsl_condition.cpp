// The instructions on premises: get_condition moves premises of the goal into the assumptions, use_condition discharges
// premises of a hypothesis.
#include "dsl_interpreter/advice.h"
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
      log_error_text(data, fault(diagnostic_code::not_proved).at_formula(condition).differs(condition.t, nullptr),
                     "Obvious condition check failed : " + pretty(condition.t) + "\n");
      return false;
    }
    warn_of_denominators(data, fault(diagnostic_code::denominator).at_formula(condition));
    return true;
  }
  term_ptr hypothesis = condition.type == dsl_goal ? nullptr : gap.hypothesis(condition.num);
  if (hypothesis == nullptr) {
    log_error(data, fault(diagnostic_code::no_such_hypothesis).at(condition),
              "Invalid condition hypothesis number: %lld, current proof gap has %d hypotheses\n",
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
    log_error(data, fault(diagnostic_code::wrong_kind).at(inst.goal), "get_condition target must be goal\n");
    return result;
  }
  strong_compare(data, result, gap.goal, inst.goal.t, "Mismatched goal: actual ", " but expected ");
  term_ptr working = gap.goal;
  for (const dsl_term& condition : inst.hlist) {
    const auto parts = separate_imply(working);
    if (condition.num <= gap.assu_num()) {
      log_error(data, fault(diagnostic_code::number_taken).at(condition),
                "Invalid condition hypothesis number: %lld, this number has existed\n",
                static_cast<long long>(condition.num));
      return result;
    }
    if (!parts) {
      log_error(data, fault(diagnostic_code::too_many_premises).at(condition).differs(nullptr, working),
                "goal is not long enough to match all conditions\n");
      return result;
    }
    const auto [premise, conclusion] = *parts;
    if (!term_eqb(condition.t, premise)) {
      log_error_text(
          data, fault(diagnostic_code::premise_mismatch).at_formula(condition).differs(premise, condition.t),
          "Condition does not match goal hypothesis:\n" + pretty(condition.t) + " != \n" + pretty(premise) + "\n");
      return result;
    }
    add_assumption(gap, premise);
    compare_written(data, condition, premise, gap.assu_num());
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
    log_error(data, fault(diagnostic_code::no_such_hypothesis).at(inst.target),
              "Invalid target hypothesis number: %lld, current proof gap has %d hypotheses\n",
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
      log_error(data, fault(diagnostic_code::too_many_premises).at(condition).differs(nullptr, working),
                "Target hypothesis is not long enough to match all conditions\n");
      return result;
    }
    const auto [premise, conclusion] = *parts;
    term_ptr given = condition.type == dsl_obvious ? condition.t : gap.hypothesis(condition.num);
    if (!term_eqb(given, premise) && !poly_rat_eqb(given, premise)) {
      log_error_text(data, fault(diagnostic_code::premise_mismatch).at(condition).differs(premise, given),
                     "Condition does not match target hypothesis:\n" + pretty(given) + " != \n" + pretty(premise) +
                         "\n" + internal(given) + " != \n" + internal(premise) + "\n");
      return result;
    }
    if (!term_eqb(given, premise)) {
      warn_of_denominators(data, fault(diagnostic_code::denominator).at(condition), given, premise);
    }
    working = conclusion;
  }
  add_assumption(gap, working);
  compare_written(data, inst.new_hypo, working, gap.assu_num());
  succeed(data, result);
  return result;
}

}  // namespace vetro
