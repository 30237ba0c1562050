// rewrite_in rewrites the goal or a hypothesis inside limits, sums or set descriptions, with a rule that holds where
// its premises hold. The script states both forms; the handler checks that one arises from the other by uses of the
// rule, and that the premises hold at each place.
#include "dsl_interpreter/dsl_handler.h"
#include "dsl_interpreter/instructions/rewrite_in_rule.h"
#include "dsl_interpreter/instructions/rewrite_in_state.h"
#include "dsl_interpreter/instructions/rewrite_in_walk.h"
#include "term/compare.h"

namespace vetro {
namespace {

// Writes a message in which the first %s stands for the context.
void log_in_context(const dsl_execute_data& data, const dsl_rewrite_in& inst, const fault& about, std::string message) {
  const std::size_t place = message.find("%s");
  if (place != std::string::npos) {
    message.replace(place, 2, rewrite_in_context_name(inst.context));
  }
  log_error_text(data, about, message);
}

// The written old form against the gap; false after a message.
bool rewrite_in_target_matches_current(const dsl_execute_data& data, const dsl_rewrite_in& inst) {
  const dsl_term& from = inst.from_prop;
  if (from.type != dsl_goal && from.type != dsl_hypo) {
    log_in_context(data, inst, fault(diagnostic_code::wrong_kind).at(from),
                   "rewrite_in %s can only rewrite GOAL or hypothesis targets.\n");
    return false;
  }
  const proof_gap_full& gap = *data.cur_gap;
  const term_ptr current = from.type == dsl_goal ? gap.goal : gap.hypothesis(from.num);
  if (current != nullptr && from.t != nullptr && term_eqb(current, from.t)) {
    return true;
  }
  log_in_context(
      data, inst, fault(diagnostic_code::formula_mismatch).at_formula(from).differs(current, from.t),
      from.type == dsl_goal ? "mismatch goal in rewrite_in %s dsl\n" : "mismatch hypothesis in rewrite_in %s dsl\n");
  return false;
}

// The rule that the instruction names; false after a message.
bool read_rule(const dsl_execute_data& data, const dsl_rewrite_in& inst, forall_equation_rule& rule) {
  const term_ptr hypothesis = inst.hypo.type == dsl_hypo ? data.cur_gap->hypothesis(inst.hypo.num) : nullptr;
  const char* problem = hypothesis == nullptr ? "rewrite_in %s requires a valid hypothesis as the rewriting source.\n"
                                              : extract_forall_equation_rule(hypothesis, rule);
  if (problem != nullptr) {
    log_in_context(data, inst, fault(diagnostic_code::rule_unusable).at(inst.hypo).differs(nullptr, hypothesis),
                   problem);
  }
  return problem == nullptr;
}

// Why the binder map of a set description is none for this rule; null when it is one, or when none is needed.
const char* validate_setdesc_binder_map(const dsl_rewrite_in& inst, const forall_equation_rule& rule) {
  if (inst.context != rewrite_in_setdesc) {
    return nullptr;
  }
  if (inst.binder_map.size() != 1) {
    return "rewrite_in setdesc requires exactly one binder map";
  }
  const dsl_sub_pair& pair = inst.binder_map.front();
  if (!is_var(pair.binder) || !term_eqb_pure(pair.binder, rule.qvar)) {
    return "binder map left side must be the forall binder";
  }
  return is_var(pair.sub_term) ? nullptr : "binder map right side must be the set description binder variable";
}

rewrite_in_state initial_state(const dsl_execute_data& data, const dsl_rewrite_in& inst, forall_equation_rule rule) {
  rewrite_in_state state;
  state.execute_log = data.execute_log;
  state.sdata = dsl_data_to_solve_data_all(data);
  state.rule = std::move(rule);
  state.context = inst.context;
  state.direction = inst.direction;
  state.mapped_binder = inst.binder_map.empty() ? nullptr : inst.binder_map.front().sub_term;
  return state;
}

void report_failure(const dsl_execute_data& data, const dsl_rewrite_in& inst, const rewrite_in_state& state) {
  if (state.first_failed_condition != nullptr) {
    log_in_context(data, inst,
                   fault(diagnostic_code::side_condition).at(inst.hypo).differs(state.first_failed_condition, nullptr),
                   std::string("rewrite_in %s failed: cannot prove side condition (") + state.first_failed_reason +
                       "):\n" + pretty(state.first_failed_condition) + "\n");
  } else if (state.failure_reason != nullptr) {
    log_in_context(data, inst, fault(diagnostic_code::rewrite_mismatch).at_formula(inst.to_prop),
                   std::string("rewrite_in %s failed: ") + state.failure_reason + "\n");
  } else {
    log_error(data, fault(diagnostic_code::rewrite_mismatch).at_formula(inst.to_prop),
              "rewrite_in %s failed: target form cannot be obtained by a forall equation rewrite inside a supported %s "
              "body.\n",
              rewrite_in_context_name(inst.context), rewrite_in_context_name(inst.context));
  }
}

// Puts the new form in its place; false after a message.
bool apply_rewrite_in_result(dsl_execute_data& data, const dsl_rewrite_in& inst) {
  proof_gap_full& gap = *data.cur_gap;
  const dsl_term& from = inst.from_prop;
  const dsl_term& to = inst.to_prop;
  if (to.type == dsl_goal) {
    if (from.type != dsl_goal) {
      log_in_context(data, inst, fault(diagnostic_code::wrong_kind).at(to),
                     "rewrite_in %s cannot replace GOAL when rewriting from a hypothesis.\n");
      return false;
    }
    install_goal(data, to.t);
    return true;
  }
  if (to.type != dsl_hypo) {
    log_in_context(data, inst, fault(diagnostic_code::wrong_kind).at(to),
                   "rewrite_in %s result must be GOAL or a hypothesis.\n");
    return false;
  }
  if (from.type != dsl_hypo) {
    log_in_context(data, inst, fault(diagnostic_code::wrong_kind).at(to),
                   "rewrite_in %s to hypothesis is only allowed when rewriting from a hypothesis.\n");
    return false;
  }
  if (install_hypothesis(gap, from, to)) {
    return true;
  }
  log_error(data, fault(diagnostic_code::number_not_next).at(to),
            "invalid rewrite_in %s target hypothesis number: %lld, expected %lld (overwrite rewritten hypothesis) or "
            "%d (append new hypothesis)\n",
            rewrite_in_context_name(inst.context), static_cast<long long>(to.num), static_cast<long long>(from.num),
            gap.assu_num() + 1);
  return false;
}

}  // namespace

dsl_result execute_rewrite_in(dsl_execute_data& data) {
  dsl_result result;
  const dsl_rewrite_in& inst = instruction_as<dsl_rewrite_in>(data);
  if (inst.htype == re_iff) {
    data.err_log->write(format_text("rewrite_in %s 当前不支持 iff 规则。\n", rewrite_in_context_name(inst.context)));
    note_fault(data, fault(diagnostic_code::rule_unusable).at(inst.hypo), "rewrite_in takes no iff rules");
    return result;
  }
  forall_equation_rule rule;
  if (!rewrite_in_target_matches_current(data, inst) || !read_rule(data, inst, rule)) {
    return result;
  }
  if (const char* problem = validate_setdesc_binder_map(inst, rule); problem != nullptr) {
    log_in_context(data, inst, fault(diagnostic_code::bad_binder),
                   std::string("rewrite_in %s failed: ") + problem + "\n");
    return result;
  }
  rewrite_in_state state = initial_state(data, inst, std::move(rule));
  if (!rewrite_in_walk(inst.from_prop.t, inst.to_prop.t, state) || state.rewrite_hits == 0) {
    report_failure(data, inst, state);
    return result;
  }
  if (apply_rewrite_in_result(data, inst)) {
    result.flag = exe_success;
  }
  return result;
}

}  // namespace vetro
