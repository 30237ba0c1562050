// autosolve: closes the goal with the automatic solvers, from the hypotheses that the script selects.
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

}  // namespace

dsl_result execute_solver(dsl_execute_data& data) {
  const auto& inst = instruction_as<dsl_auto_solve>(data);
  dsl_result result;
  solve_data sdata;
  if (!select_hypotheses(data, inst, sdata)) {
    return result;
  }
  if (!solver_manager_dsl_with_solver(sdata.target, sdata, initial_fee, inst.solver_name)) {
    if (!inst.solver_name.empty()) {
      log_error_text(data, "autosolve failed with solver " + inst.solver_name + "\n");
    }
    return result;
  }
  proof_gap_full_mark_finished(*data.cur_gap);
  result.flag = exe_finish;
  return result;
}

}  // namespace vetro
