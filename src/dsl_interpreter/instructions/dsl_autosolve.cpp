// autosolve: closes the goal with the automatic solvers, from the hypotheses that the script selects.
#include "dsl_interpreter/advice.h"
#include "dsl_interpreter/dsl_handler.h"

namespace vetro {
namespace {

// The formulas written beside the numbers are not read.
bool select_hypotheses(const dsl_execute_data& data, const dsl_auto_solve& inst, solve_data& sdata) {
  if (inst.all_assum) {
    sdata = dsl_data_to_solve_data_all(data);
    return true;
  }
  return dsl_data_to_solve_data(data, inst.hlist, sdata);
}

// The error log names the solver that was asked for, and is silent where all were.
void report_unproved(const dsl_execute_data& data, const dsl_auto_solve& inst) {
  fault about(diagnostic_code::not_proved);
  about.differs(data.cur_gap->goal, nullptr);
  if (inst.solver_name.empty()) {
    note_fault(data, about, "the solvers do not prove the goal");
    return;
  }
  if (find_dsl_named_solver(inst.solver_name) == nullptr) {
    about.code = diagnostic_code::no_such_solver;
    about.place = inst.solver_at;
  }
  log_error_text(data, about, "autosolve failed with solver " + inst.solver_name + "\n");
}

}  // namespace

dsl_result execute_solver(dsl_execute_data& data) {
  const auto& inst = instruction_as<dsl_auto_solve>(data);
  dsl_result result;
  solve_data sdata;
  if (!select_hypotheses(data, inst, sdata)) {
    return result;
  }
  if (!solver_manager_dsl_with_solver(sdata.target, sdata, initial_fee, inst.solver_name)) {
    report_unproved(data, inst);
    return result;
  }
  warn_of_denominators(data, fault(diagnostic_code::denominator));
  proof_gap_full_mark_finished(*data.cur_gap);
  result.flag = exe_finish;
  return result;
}

}  // namespace vetro
