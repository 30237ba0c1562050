// assert adds a proposition to the assumptions: proved by the solvers, proved by a nested block, or admitted as a debt.
#include "dsl_interpreter/advice.h"
#include "dsl_interpreter/dsl_admit.h"
#include "dsl_interpreter/dsl_handler.h"

namespace vetro {
namespace {

void add_asserted_hypothesis(dsl_execute_data& data, dsl_result& result, term_ptr proposition) {
  compare_written(data, instruction_as<dsl_assert>(data).new_hypo, proposition, data.cur_gap->assu_num() + 1);
  add_assumption(*data.cur_gap, proposition);
  result.flag = exe_success;
}

// Runs the block on a copy of the gap whose goal is the proposition. Nothing that it derives reaches the outer gap
// except the proposition; what it admits is kept whatever the outcome. A block that has put a hypothesis in the place
// of its goal has proved something else.
void assert_by_block(dsl_execute_data& data, dsl_result& result, term_ptr proposition,
                     const dsl_instruction_list& body) {
  proof_gap_full gap = *data.cur_gap;
  gap.goal = proposition;
  proof_gap_full_mark_unfinished(gap);

  dsl_execute_data local = dsl_nested_execute_data(data, gap);
  const dsl_exe_code code = execute_instruction_list(local, body);
  dsl_merge_admitted_propositions(data, local);
  if (code == exe_gap_split) {
    log_error(data, fault(diagnostic_code::block_not_proved).at(instruction_as<dsl_assert>(data).new_hypo),
              "execute_assert: proof blocks with split gaps are not supported yet\n");
  } else if (proof_gap_full_is_finished(gap) && !local.goal_was_given_up) {
    add_asserted_hypothesis(data, result, proposition);
  } else {
    // What a block leaves open that ran to its end; one that failed has said so.
    fault about = fault(diagnostic_code::block_not_proved).at(instruction_as<dsl_assert>(data).new_hypo);
    log_error(data, about.differs(code == exe_success ? gap.goal : nullptr, nullptr),
              "execute_assert: proof block did not prove the asserted hypothesis\n");
  }
}

}  // namespace

bool dsl_record_admitted_proposition(dsl_execute_data& data, term_ptr proposition, int source_line,
                                     const std::string& step_id, std::int64_t hypothesis_num) {
  if (proposition == nullptr) {
    return false;
  }
  dsl_admit_obligation record;
  record.proposition = proposition;
  if (data.keep_admit_gaps) {
    record.gap = *data.cur_gap;
    record.gap.goal = proposition;
    record.gap.meth_list.clear();
    proof_gap_full_mark_unfinished(record.gap);
  }
  record.source_line = source_line;
  record.step_id = step_id;
  record.hypothesis_num = hypothesis_num;
  data.admits.push_back(std::move(record));
  return true;
}

void dsl_merge_admitted_propositions(dsl_execute_data& destination, const dsl_execute_data& source) {
  destination.admits.insert(destination.admits.end(), source.admits.begin(), source.admits.end());
}

dsl_result execute_assert(dsl_execute_data& data) {
  dsl_result result;
  const dsl_assert& inst = instruction_as<dsl_assert>(data);
  term_ptr proposition = inst.new_hypo.t;
  if (inst.mode == dsl_assert_by_admit) {
    if (!dsl_record_admitted_proposition(data, proposition, data.inst->number, data.current_step_id,
                                         inst.new_hypo.num)) {
      log_error(data, fault(diagnostic_code::formula_missing).at_formula(inst.new_hypo),
                "execute_assert: failed to record admitted proposition\n");
      return result;
    }
    note_fault(data, fault(diagnostic_code::admitted).at_formula(inst.new_hypo).differs(nullptr, proposition),
               "this proposition is admitted without proof");
    add_asserted_hypothesis(data, result, proposition);
    return result;
  }
  if (proposition == nullptr) {
    log_error(data, fault(diagnostic_code::formula_missing).at_formula(inst.new_hypo),
              "execute_assert: the asserted proposition is missing, because its text does not parse\n");
    return result;
  }
  if (!inst.proof_body.empty()) {
    assert_by_block(data, result, proposition, inst.proof_body);
    return result;
  }
  if (inst.mode == dsl_assert_by_proof) {
    log_error(data, fault(diagnostic_code::block_not_proved),
              "execute_assert: manual assert proof has no proof body\n");
    return result;
  }
  if (solver_manager_dsl(proposition, dsl_data_to_solve_data_all(data), initial_fee)) {
    warn_of_denominators(data, fault(diagnostic_code::denominator).at_formula(inst.new_hypo));
    add_asserted_hypothesis(data, result, proposition);
  } else {
    note_fault(data, fault(diagnostic_code::not_proved).at_formula(inst.new_hypo).differs(proposition, nullptr),
               "the solvers do not prove this proposition");
  }
  return result;
}

}  // namespace vetro
