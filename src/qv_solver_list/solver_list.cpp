// The dispatcher: the order of trial, the splitting of targets and the recursion under `fee`.
//
// Its progress lines on standard output are for a person who watches the run. The numbers in them are places in the
// tables, so the place of a solver that is not built yet is kept by an empty row, and its turn passes.
#include "qv_solver_list/solver_list.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <new>
#include <span>
#include <string>
#include <utility>

#include "diagnostics/diagnostics.h"
#include "qv_solver_list/solver_preprocess.h"
#include "qv_solver_list/solver_registry.h"
#include "qv_solver_list/solver_shapes.h"
#include "term/print/pretty.h"
#include "term/report.h"
#include "term/state.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

void progress_number(std::string_view before, int number, std::string_view behind = "\n") {
  std::array<char, 64> line{};  // the longest has 45 characters
  char* end = std::copy(before.begin(), before.end(), line.data());
  end = std::to_chars(end, line.data() + line.size() - behind.size(), number).ptr;
  end = std::copy(behind.begin(), behind.end(), end);
  print_progress({line.data(), static_cast<std::size_t>(end - line.data())});
}

void progress_term(term_ptr t) {
  if (!progress_is_shown()) {
    return;
  }
  std::string text;
  print_term_internal(text, t);
  text += '\n';
  print_progress(text);
}

void progress_list(std::string_view header, term_span list) {
  if (!progress_is_shown()) {
    return;
  }
  std::string text(header);
  print_term_list(text, list);
  text += '\n';
  print_progress(text);
}

// What the search for a proof finds out, for whoever collects diagnostics. It is kept for the question from outside;
// questions that the dispatcher asks itself belong to that one.
class attempt_record {
 public:
  explicit attempt_record(term_ptr target, std::string_view requested = {}) {
    if (collecting_diagnostics != nullptr && collecting_diagnostics->attempts_under_way++ == 0) {
      collecting_diagnostics->attempts.push_back({.target = target, .requested_solver = std::string(requested)});
    }
  }
  ~attempt_record() {
    if (collecting_diagnostics != nullptr) {
      --collecting_diagnostics->attempts_under_way;
    }
  }
  attempt_record(const attempt_record&) = delete;
  attempt_record& operator=(const attempt_record&) = delete;

  static bool outermost() {
    return collecting_diagnostics != nullptr && collecting_diagnostics->attempts_under_way == 1;
  }
  static bool answered(bool proved) {
    if (outermost()) {
      collecting_diagnostics->attempts.back().proved = proved;
    }
    return proved;
  }
  static void closed(term_ptr piece, std::string_view solver) {
    if (collecting_diagnostics != nullptr && collecting_diagnostics->attempts_under_way > 0) {
      collecting_diagnostics->attempts.back().closed.push_back({piece, std::string(solver)});
    }
  }
  static void left_open(term_span pieces) {
    if (collecting_diagnostics == nullptr) {
      return;
    }
    proof_attempt& attempt = collecting_diagnostics->attempts.back();
    const int depth = collecting_diagnostics->attempts_under_way;
    if (depth == 1) {
      attempt.open.assign(pieces.begin(), pieces.end());
    } else if (depth == 2) {
      std::copy_if(pieces.begin(), pieces.end(), std::back_inserter(attempt.unfolded), [&](term_ptr t) {
        return std::find(attempt.unfolded.begin(), attempt.unfolded.end(), t) == attempt.unfolded.end();
      });
    }
  }
};

enum class progress : bool { silent, shown };

bool run_battery(term_ptr target, const solve_data& sdata, progress lines) {
  for (std::size_t i = 0; i < battery_size; ++i) {
    if (lines == progress::shown) {
      progress_number("decision_solver id: ", static_cast<int>(i));
    }
    if (call_decision_solver(solver_registry()[i].solve, target, sdata)) {
      attempt_record::closed(target, solver_title(solver_registry()[i].id));
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
    progress_number("solver id:", static_cast<int>(i));
    results.push_back(call_one_step_solver(solvers[i], args));
    if (results.back().type == bool_res && results.back().ans) {
      return true;
    }
  }
  for (std::size_t i = 0; i < results.size(); ++i) {
    progress_number("solver id: ", static_cast<int>(i), "'s posprocess\n");
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

bool work_on(term_ptr target, const solve_data& sdata, int fee) {
  const solve_data active = active_record(sdata);
  progress_number("fee = ", fee);
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
    attempt_record::left_open(list);
    return false;
  }
  progress_list("after filter\n", list);
  const auto open = std::find_if_not(list.begin(), list.end(),
                                     [&](term_ptr t) { return apply_solvers_dsl(t, active, one_step_solvers(), fee); });
  attempt_record::left_open({open, list.end()});
  return open == list.end();
}

}  // namespace

bool solver_manager_dsl(term_ptr target, const solve_data& sdata, int fee) {
  if (target == nullptr) {
    return false;
  }
  const attempt_record record(target);
  return attempt_record::answered(work_on(target, sdata, fee));
}

bool solver_manager_dsl_with_solver(term_ptr target, const solve_data& sdata, int fee, std::string_view solver_name) {
  if (solver_name.empty()) {
    return solver_manager_dsl(target, sdata, fee);
  }
  const solver_decide solve = find_dsl_named_solver(solver_name);
  if (solve == nullptr || target == nullptr) {
    return false;
  }
  progress_number("fee = ", fee);
  print_progress("selected solver: " + std::string(solver_name) + "\n");
  progress_term(target);
  const attempt_record record(target, solver_name);
  const solve_data active = active_record(sdata);
  const bool proved = attempt_record::answered(call_decision_solver(solve, target, active));
  if (proved) {
    attempt_record::closed(target, solver_name);
  } else {
    attempt_record::left_open({&target, 1});
  }
  return proved;
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

term_list split_iff(term_ptr t) {
  const auto view = composed_prop_split(t);
  if (!view || view->connect != Iff || view->t2 == nullptr) {
    return {};
  }
  term_ptr forward = make_composed_prop(Impl, view->t1, view->t2);
  term_ptr backward = make_composed_prop(Impl, view->t2, view->t1);
  return {forward, backward};
}

}  // namespace vetro
