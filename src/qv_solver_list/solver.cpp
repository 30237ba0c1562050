// What stands between a solver and those who ask it: the installed rows, the budget of a call.
#include "qv_solver_list/solver.h"

#include <algorithm>
#include <new>
#include <optional>

#include "diagnostics/diagnostics.h"
#include "number/budget.h"
#include "number/limits.h"
#include "qv_solver_list/call_work.h"
#include "qv_solver_list/solver_shapes.h"
#include "term/state.h"

namespace vetro {
namespace {

// Not part of the process state that tests start afresh: the rows are code.
std::span<const solver_row>& installed_rows() {
  static std::span<const solver_row> rows;
  return rows;
}

// Bounds the terms that one solver call may build. The factory ends a call that goes beyond with std::bad_alloc, like
// one that runs out of memory, so both end in the same handler.
class factory_budget {
 public:
  factory_budget() : outer_(state().store.call_limit()) {
    state().store.set_call_limit(std::min(outer_, state().store.calls() + limits::solver_factory_calls));
  }
  ~factory_budget() {
    const std::uint64_t patterns = state().pattern_calls - patterns_before_;
    state().store.set_call_limit(outer_ + std::min(patterns, UINT64_MAX - outer_));
  }
  factory_budget(const factory_budget&) = delete;
  factory_budget& operator=(const factory_budget&) = delete;

 private:
  std::uint64_t outer_;
  std::uint64_t patterns_before_ = state().pattern_calls;
};

// The shared work of the outermost call under way.
struct shared_work {
  std::optional<budget> kernel = std::nullopt;
};

class call_scope {
 public:
  call_scope() : outermost_(!work().kernel) {
    if (outermost_) {
      work().kernel.emplace(limits::smt_work);
    }
  }
  ~call_scope() {
    if (outermost_) {
      work().kernel.reset();
    }
  }
  call_scope(const call_scope&) = delete;
  call_scope& operator=(const call_scope&) = delete;

  static shared_work& work() { return state().slots.of<shared_work>(); }

 private:
  factory_budget terms_;
  bool outermost_;
};

// For whoever collects diagnostics: the attempt under way met the end of this solver's budget.
void note_ended_budget(solver_decide solve) {
  if (collecting_diagnostics == nullptr || collecting_diagnostics->attempts_under_way == 0) {
    return;
  }
  const auto rows = installed_rows();
  const auto row = std::find_if(rows.begin(), rows.end(), [&](const solver_row& r) { return r.solve == solve; });
  if (row != rows.end()) {
    collecting_diagnostics->attempts.back().budget_ended.push_back(solver_title(row->id));
  }
}

}  // namespace

budget* kernel_work_of_call() {
  auto& work = call_scope::work().kernel;
  return work ? &*work : nullptr;
}

void install_solvers(std::span<const solver_row> rows) { installed_rows() = rows; }

solver_decide find_solver(solver_id id) {
  const auto place = static_cast<std::size_t>(id);
  return place < installed_rows().size() ? installed_rows()[place].solve : nullptr;
}

solver_decide find_dsl_named_solver(std::string_view solver_name) {
  const auto rows = installed_rows();
  const auto row = std::find_if(rows.begin(), rows.end(), [&](const solver_row& solver) {
    return !solver.name.empty() && solver.name == solver_name;
  });
  return row == rows.end() ? nullptr : row->solve;
}

bool call_decision_solver(solver_decide solve, term_ptr target, const solve_data& sdata) {
  if (solve == nullptr) {
    return false;
  }
  const std::uint64_t ended_before = ended_budgets;
  bool proved = false;
  try {
    const call_scope scope;
    proved = solve(target, sdata);
  } catch (const std::bad_alloc&) {  // the end of memory, or of the budget
  }
  if (!proved && ended_budgets != ended_before) {
    note_ended_budget(solve);
  }
  return proved;
}

solve_res call_one_step_solver(solver_func_t solve, const solver_args& args) {
  if (solve == nullptr) {
    return {};
  }
  try {
    const call_scope scope;
    return solve(args);
  } catch (const std::bad_alloc&) {
    return {};
  }
}

}  // namespace vetro
