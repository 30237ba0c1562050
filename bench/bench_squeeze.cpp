// Chains of inequalities: a small goal, and the same beside thousands of assumptions that have nothing to do with it.
// The time of a goal should not depend on their number; only that of reading the list does.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "qv_solver_list/solvers.h"
#include "term/ast.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

term_ptr numbered(const char* name, std::int64_t i) { return mk_var(name + std::to_string(i)); }

term_ptr times(term_ptr a, term_ptr b) { return make_binOp_term(Mult, a, b); }

// 0 < c, x0 ≤ x1 ≤ x2 < x3, and pairs of relations about other names.
solve_data chain_beside(std::int64_t others) {
  solve_data sdata;
  sdata.assum.push_back(make_binPred_prop(Lt, mk_integer(0), mk_var("c")));
  for (std::int64_t i = 0; i < 3; ++i) {
    sdata.assum.push_back(make_binPred_prop(i < 2 ? Le : Lt, numbered("x", i), numbered("x", i + 1)));
  }
  for (std::int64_t i = 0; i < others / 2; ++i) {
    sdata.assum.push_back(make_binPred_prop(Gt, numbered("y", i), mk_integer(0)));
    sdata.assum.push_back(make_binPred_prop(Le, times(numbered("y", i), numbered("y", i + 1)), numbered("z", i)));
  }
  return sdata;
}

term_ptr chain_goal() {
  return make_binPred_prop(Lt, times(numbered("x", 0), mk_var("c")), times(mk_var("c"), numbered("x", 3)));
}

void goal_with_its_list(benchmark::State& run) {
  const solve_data sdata = chain_beside(run.range(0));
  term_ptr goal = chain_goal();
  for (auto _ : run) {
    solve_data fresh = sdata;
    fresh.facts = nullptr;
    if (!solver_squeeze(goal, fresh)) {
      run.SkipWithError("not proved");
    }
  }
}
BENCHMARK(goal_with_its_list)->Arg(0)->Arg(500)->Arg(5000)->Unit(benchmark::kMicrosecond);

void one_more_goal(benchmark::State& run) {
  const solve_data sdata = chain_beside(run.range(0));
  term_ptr goal = chain_goal();
  term_ptr open_goal = make_binPred_prop(Lt, numbered("x", 3), times(numbered("y", 1), numbered("y", 2)));
  for (auto _ : run) {
    if (!solver_squeeze(goal, sdata) || solver_squeeze(open_goal, sdata)) {
      run.SkipWithError("wrong");
    }
  }
}
BENCHMARK(one_more_goal)->Arg(0)->Arg(5000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace vetro
