// not_normalize replaces the goal by another one with the same negation normal form.
#include "dsl_interpreter/dsl_handler.h"
#include "qv_solver_list/logic/negation.h"
#include "term/compare.h"

namespace vetro {
namespace {

// Whether the two written goals may be compared; false after a message.
bool are_goals(const dsl_execute_data& data, const dsl_not_normalize& inst) {
  if (inst.from_prop.type != dsl_goal || inst.to_prop.type != dsl_goal) {
    log_error(data, fault(diagnostic_code::wrong_kind).at(inst.from_prop),
              "not_normalize only supports GOAL-to-GOAL transformations.\n");
    return false;
  }
  const term_ptr goal = data.cur_gap->goal;
  const term_ptr from = inst.from_prop.t;
  if (goal == nullptr || from == nullptr || inst.to_prop.t == nullptr) {
    log_error(data, fault(diagnostic_code::formula_missing), "not_normalize failed: missing goal term.\n");
    return false;
  }
  if (!alpha_equivalent(from, goal)) {
    log_error_text(data, fault(diagnostic_code::formula_mismatch).at_formula(inst.from_prop).differs(goal, from),
                   "not_normalize failed: from GOAL does not match the current proof goal.\ncurrent goal:\n" +
                       pretty(goal) + "\nfrom goal:\n" + pretty(from) + "\n");
    return false;
  }
  if (term_eqb(from, inst.to_prop.t)) {
    log_error(data, fault(diagnostic_code::rewrite_mismatch).at_formula(inst.to_prop),
              "not_normalize failed: target GOAL is unchanged.\n");
    return false;
  }
  return true;
}

}  // namespace

dsl_result execute_not_normalize(dsl_execute_data& data) {
  dsl_result result;
  const dsl_not_normalize& inst = instruction_as<dsl_not_normalize>(data);
  if (!are_goals(data, inst)) {
    return result;
  }
  const term_ptr from = solver_not_unfold_term(inst.from_prop.t);
  const term_ptr to = solver_not_unfold_term(inst.to_prop.t);
  if (from == nullptr || to == nullptr) {
    log_error(data, fault(diagnostic_code::preparation_failed), "not_normalize failed: cannot normalize goal term.\n");
    return result;
  }
  if (!alpha_equivalent(from, to)) {
    log_error_text(data, fault(diagnostic_code::rewrite_mismatch).at_formula(inst.to_prop).differs(from, to),
                   "not_normalize failed: normalized forms are not alpha-equivalent.\nnormalized from:\n" +
                       pretty(from) + "\nnormalized to:\n" + pretty(to) + "\n");
    return result;
  }
  install_goal(data, inst.to_prop.t);
  result.flag = exe_success;
  return result;
}

}  // namespace vetro
