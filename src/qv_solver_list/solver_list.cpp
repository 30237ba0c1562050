// The dispatcher: the tables of solvers, their order of trial, the splitting of targets and the recursion under `fee`.
//
// Its progress lines on standard output are for a person who watches the run. The numbers in them are places in the
// tables, so the place of a solver that is not built yet is kept by an empty row, and its turn passes.
#include "qv_solver_list/solver_list.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>
#include <span>
#include <string>
#include <utility>

#include "qv_solver_list/solver_poly_rat.h"
#include "qv_solver_list/solver_preprocess.h"
#include "qv_solver_list/solver_sat.h"
#include "qv_solver_list/solver_shape_simpl.h"
#include "term/limits.h"
#include "term/print.h"
#include "term/report.h"
#include "term/state.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

// ---- Adapters: solvers with other argument lists, brought to the form of their table.

bool adapter_solver_reflexivity(term_ptr target, const solve_data& /*sdata*/) { return solver_reflexivity(target); }

bool adapter_solver_poly_rat(term_ptr target, const solve_data& /*sdata*/) { return solver_poly_rat_eqb(target); }

bool adapter_solver_sat(term_ptr target, const solve_data& sdata) { return solver_sat(sdata.assum, target); }

solve_res adapter_solver_or_split(const solver_args& args) { return solver_or_split(args.target); }

solve_res adapter_solver_bwd_saturation_set(const solver_args& args) {
  return solver_bwd_saturation_set(args.target, *args.sdata);
}

solve_res adapter_solver_shape_simpl(const solver_args& args) { return solver_shape_simpl(*args.gap, *args.sdata); }

// ---- Tables.

// In the order of trial: cheap and exact ones first.
constexpr std::array<solver_decide, 21> decision_solvers = {{
    solver_eqb,                  // 0
    adapter_solver_reflexivity,  // 1
    solver_context_poly_rat,     // 2
    nullptr,                     // 3   func_apply
    nullptr,                     // 4   deriv
    nullptr,                     // 5   continuous_func
    nullptr,                     // 6   integrable_func
    nullptr,                     // 7   const_type
    nullptr,                     // 8   domain_type
    nullptr,                     // 9   integral
    nullptr,                     // 10  eval_bar
    nullptr,                     // 11  rootfrac
    nullptr,                     // 12  numeric_calc
    nullptr,                     // 13  limit_calc
    nullptr,                     // 14  root_power
    adapter_solver_poly_rat,     // 15
    adapter_solver_sat,          // 16
    nullptr,                     // 17  interval
    nullptr,                     // 18  squeeze
    nullptr,                     // 19  sgn
    nullptr,                     // 20  smt_lra
}};

constexpr std::array<solver_func_t, 3> one_step_solvers_traditional = {{
    adapter_solver_or_split,            // 0
    adapter_solver_bwd_saturation_set,  // 1
    adapter_solver_shape_simpl,         // 2
}};

// What a script may select. The sign solver without its rewriting has no place in the battery; the solvers for domains
// and types, for numbers, and the propositional one cannot be selected.
constexpr std::array<named_dsl_solver, 19> dsl_named_solvers = {{
    {"EqbSolver", decision_solvers[0]},
    {"Reflexivity", decision_solvers[1]},
    {"ContextPolyRatSolver", decision_solvers[2]},
    {"PolyRatSolver", decision_solvers[15]},
    {"SmtLraSolver", decision_solvers[20]},
    {"IntervalSolver", decision_solvers[17]},
    {"SqueezeSolver", decision_solvers[18]},
    {"SgnSolver", decision_solvers[19]},
    {"SgnPureSolver", nullptr},
    {"IntegralSolver", decision_solvers[9]},
    {"EvalBarSolver", decision_solvers[10]},
    {"RootFracSolver", decision_solvers[11]},
    {"RootPowerSolver", decision_solvers[14]},
    {"LimitCalcSolver", decision_solvers[13]},
    {"ConstTypeSolver", decision_solvers[7]},
    {"FunctionApplySolver", decision_solvers[3]},
    {"DerivSolver", decision_solvers[4]},
    {"ContinuousFuncSolver", decision_solvers[5]},
    {"IntegrableFuncSolver", decision_solvers[6]},
}};

// ---- Progress lines.

void progress_number(const char* format, int number) {
  char line[64];
  const int length = std::snprintf(line, sizeof line, format, number);
  print_progress({line, static_cast<std::size_t>(std::max(length, 0))});
}

void progress_term(term_ptr t) {
  std::string text;
  print_term_internal(text, t);
  text += '\n';
  print_progress(text);
}

void progress_list(std::string_view header, term_span list) {
  std::string text(header);
  print_term_list(text, list);
  text += '\n';
  print_progress(text);
}

// ---- Calling solvers.

// Bounds the terms that one solver call may build. The factory ends a call that goes beyond with std::bad_alloc, like
// one that runs out of memory, so both end in the same handler.
class factory_budget {
 public:
  factory_budget() : outer_(state().store.call_limit()) {
    state().store.set_call_limit(std::min(outer_, state().store.calls() + limits::solver_factory_calls));
  }
  ~factory_budget() { state().store.set_call_limit(outer_); }
  factory_budget(const factory_budget&) = delete;
  factory_budget& operator=(const factory_budget&) = delete;

 private:
  std::uint64_t outer_;
};

solve_res call_one_step_solver(solver_func_t solve, const solver_args& args) {
  if (solve == nullptr) {
    return {};
  }
  try {
    const factory_budget budget;
    return solve(args);
  } catch (const std::bad_alloc&) {
    return {};
  }
}

enum class progress : bool { silent, shown };

bool run_battery(term_ptr target, const solve_data& sdata, progress lines) {
  for (std::size_t i = 0; i < decision_solvers.size(); ++i) {
    if (lines == progress::shown) {
      progress_number("decision_solver id: %d\n", static_cast<int>(i));
    }
    if (call_decision_solver(decision_solvers[i], target, sdata)) {
      return true;
    }
  }
  return false;
}

// The one-step stage for one target: all solvers give their sub-targets first, then these are worked on in order.
bool apply_solvers_dsl(term_ptr t, const solve_data& sdata, std::span<const solver_func_t> solvers, int fee) {
  proof_gap_full gap;
  gap.assum = sdata.assum;
  gap.goal = t;
  const solver_args args{&gap, &sdata, t};
  std::vector<solve_res> results;
  for (std::size_t i = 0; i < solvers.size(); ++i) {
    progress_number("solver id:%d\n", static_cast<int>(i));
    results.push_back(call_one_step_solver(solvers[i], args));
    if (results.back().type == bool_res && results.back().ans) {
      return true;
    }
  }
  for (std::size_t i = 0; i < results.size(); ++i) {
    progress_number("solver id: %d's posprocess\n", static_cast<int>(i));
    if (solver_manager_list_dsl(results[i], sdata, fee - 1)) {
      return true;
    }
  }
  return false;
}

// The record that the solvers see: enriched where that works, else the given one.
solve_data active_record(const solve_data& sdata) {
  try {
    solve_data active;
    if (solver_preprocess_build_augmented_sdata(sdata, active)) {
      return active;
    }
  } catch (const std::bad_alloc&) {  // one cause of failure among others
  }
  return sdata;
}

void append_operands(term_ptr t, connect_type connect, term_list& out) {
  const auto view = composed_prop_split(t);
  if (!view || view->connect != connect || view->t2 == nullptr) {
    out.push_back(t);
    return;
  }
  append_operands(view->t1, connect, out);
  append_operands(view->t2, connect, out);
}

}  // namespace

bool assumption_index::contains(const term_list& assum, term_ptr t) {
  if (asked_ && position_.empty()) {
    indexed_ = assum;
    for (std::size_t i = 0; i < assum.size(); ++i) {
      position_.emplace(assum[i], i);
    }
  }
  asked_ = true;
  const auto found = position_.find(t);
  if (found != position_.end() && found->second < assum.size() && term_eqb(assum[found->second], t)) {
    return true;
  }
  if (!position_.empty() && assum == indexed_) {
    return false;
  }
  return std::any_of(assum.begin(), assum.end(), [t](term_ptr known) { return term_eqb(known, t); });
}

bool solver_manager_dsl(term_ptr target, const solve_data& sdata, int fee) {
  if (target == nullptr) {
    return false;
  }
  const solve_data active = active_record(sdata);
  progress_number("fee = %d\n", fee);
  progress_term(target);
  const int names_before = state().fresh_counter;
  if (run_battery(target, active, progress::shown)) {
    return true;
  }
  const int names_drawn = state().fresh_counter - names_before;

  term_list list = zero_step_process(target);
  progress_list("after zero step process\n", list);
  if (list.size() == 1 && list.front() == target) {
    // The battery has just failed on this very target and keeps nothing between calls, so the filter would fail on it
    // as well. All that the second run would leave behind is the numbers of the fresh names that it draws.
    state().fresh_counter += names_drawn;
  } else {
    list = solver_filter(list, active);
  }
  if (list.empty()) {
    return true;
  }
  if (fee <= 0) {
    return false;
  }
  progress_list("after filter\n", list);
  return std::all_of(list.begin(), list.end(),
                     [&](term_ptr t) { return apply_solvers_dsl(t, active, one_step_solvers_traditional, fee); });
}

bool solver_manager_dsl_with_solver(term_ptr target, const solve_data& sdata, int fee, std::string_view solver_name) {
  if (solver_name.empty()) {
    return solver_manager_dsl(target, sdata, fee);
  }
  const solver_decide solve = find_dsl_named_solver(solver_name);
  if (solve == nullptr || target == nullptr) {
    return false;
  }
  progress_number("fee = %d\n", fee);
  print_progress("selected solver: " + std::string(solver_name) + "\n");
  progress_term(target);
  const solve_data active = active_record(sdata);
  return call_decision_solver(solve, target, active);
}

solver_decide find_dsl_named_solver(std::string_view solver_name) {
  const auto* row = std::find_if(dsl_named_solvers.begin(), dsl_named_solvers.end(),
                                 [&](const named_dsl_solver& solver) { return solver.name == solver_name; });
  return row == dsl_named_solvers.end() ? nullptr : row->solve;
}

bool call_decision_solver(solver_decide solve, term_ptr target, const solve_data& sdata) {
  if (solve == nullptr) {
    return false;
  }
  try {
    const factory_budget budget;
    return solve(target, sdata);
  } catch (const std::bad_alloc&) {
    return false;
  }
}

bool solver_manager_list_dsl(const solve_res& res, const solve_data& sdata, int fee) {
  const auto solved = [&](term_ptr t) { return solver_manager_dsl(t, sdata, fee); };
  switch (res.type) {
    case bool_res:
      return res.ans;
    case termlist_and:
      print_progress("solve and_List\n");
      if (!std::all_of(res.list.begin(), res.list.end(), solved)) {
        return false;
      }
      print_progress("success solved\n");
      return true;
    case termlist_or:
      print_progress("solve or_List\n");
      return std::any_of(res.list.begin(), res.list.end(), solved);
  }
  return false;
}

term_list solver_filter(const term_list& list, const solve_data& sdata) {
  term_list rest;
  std::copy_if(list.begin(), list.end(), std::back_inserter(rest),
               [&](term_ptr t) { return !run_battery(t, sdata, progress::silent); });
  return rest;
}

term_list zero_step_process(term_ptr target) {
  term_list pieces = split_iff(target);
  if (!pieces.empty()) {
    return pieces;
  }
  for (term_ptr conjunct : split_connect(target, And)) {
    const term_list links = long_order_split(conjunct);
    pieces.insert(pieces.end(), links.begin(), links.end());
  }
  return pieces;
}

term_list split_connect(term_ptr t, connect_type connect) {
  term_list operands;
  append_operands(t, connect, operands);
  return operands;
}

term_list split_iff(term_ptr t) {
  const auto view = composed_prop_split(t);
  if (!view || view->connect != Iff || view->t2 == nullptr) {
    return {};
  }
  term_ptr forward = make_composed_prop(Impl, view->t1, view->t2);
  term_ptr backward = make_composed_prop(Impl, view->t2, view->t1);
  return {forward, backward};
}

solve_res solver_or_split(term_ptr target) {
  term_list disjuncts = split_connect(target, Or);
  if (disjuncts.size() < 2) {
    return {};
  }
  return {.type = termlist_or, .ans = false, .list = std::move(disjuncts)};
}

bool solver_eqb(term_ptr target, const solve_data& sdata) {
  if (target == nullptr) {
    return false;
  }
  if (sdata.index != nullptr) {
    return sdata.index->contains(sdata.assum, target);
  }
  return std::any_of(sdata.assum.begin(), sdata.assum.end(), [&](term_ptr known) { return term_eqb(known, target); });
}

bool solver_reflexivity(term_ptr t) {
  if (t == nullptr) {
    return false;
  }
  const auto view = pred_split(t);
  if (!view) {
    return false;
  }
  const bool reflexive = view->pred == Eq || view->pred == Ge || view->pred == Le || view->pred == Subset;
  return reflexive && term_eqb(view->left, view->right);
}

}  // namespace vetro
