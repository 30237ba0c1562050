// What an instruction hands to the solvers.
#include "dsl_interpreter/dsl_handler.h"

namespace vetro {
namespace {

solve_data without_assumptions(const dsl_execute_data& data) {
  return {.assum = {}, .target = data.cur_gap->goal, .lib = data.thmlib, .log_file = data.execute_log};
}

}  // namespace

solve_data dsl_data_to_solve_data_all(const dsl_execute_data& data) {
  solve_data sdata = without_assumptions(data);
  sdata.assum = data.cur_gap->assum;
  return sdata;
}

bool dsl_data_to_solve_data(const dsl_execute_data& data, const dsl_term_list& hlist, solve_data& sdata) {
  sdata = without_assumptions(data);
  term_list selected;
  selected.reserve(hlist.size());
  for (const dsl_term& reference : hlist) {
    const term_ptr hypothesis = data.cur_gap->hypothesis(reference.num);
    if (hypothesis == nullptr) {
      log_error(data, fault(diagnostic_code::no_such_hypothesis).at(reference),
                "Invalid hypothesis number: %lld, current proof gap has %d hypotheses\n",
                static_cast<long long>(reference.num), data.cur_gap->assu_num());
      return false;
    }
    selected.push_back(hypothesis);
  }
  sdata.assum = std::move(selected);
  return true;
}

}  // namespace vetro
