// Intervals: what reading a list of assumptions costs as it grows, what one more goal costs then, and what ends an
// endless tightening. The time of the first should grow with the number of relations, that of the second should not.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "qv_solver_list/solvers.h"
#include "term/ast.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

term_ptr x(std::int64_t i) { return mk_var("x" + std::to_string(i)); }

term_ptr sum(term_ptr a, term_ptr b) { return make_binOp_term(Plus, a, b); }

// count variables between 0 and 10, and twice as many relations between sums and products of them.
solve_data bounded_variables(std::int64_t count) {
  solve_data sdata;
  for (std::int64_t i = 0; i < count; ++i) {
    sdata.assum.push_back(make_binPred_prop(Ge, x(i), mk_integer(0)));
    sdata.assum.push_back(make_binPred_prop(Le, x(i), mk_integer(10)));
  }
  for (std::int64_t i = 0; i < count; ++i) {
    term_ptr next = x((i * 7 + 1) % count);
    term_ptr other = x((i * 31 + 5) % count);
    sdata.assum.push_back(make_binPred_prop(Le, sum(x(i), next), sum(other, mk_integer(11))));
    sdata.assum.push_back(make_binPred_prop(Ge, sum(make_binOp_term(Mult, x(i), other), mk_integer(9)), next));
  }
  return sdata;
}

void bounds_from_scratch(benchmark::State& run) {
  const solve_data sdata = bounded_variables(run.range(0));
  term_ptr open_goal = make_binPred_prop(Lt, sum(x(1), x(2)), x(3));
  for (auto _ : run) {
    solve_data fresh = sdata;
    fresh.facts = nullptr;
    if (solver_interval(open_goal, fresh)) {
      run.SkipWithError("proved");
    }
  }
  run.SetItemsProcessed(run.iterations() * static_cast<std::int64_t>(sdata.assum.size()));
}
BENCHMARK(bounds_from_scratch)->RangeMultiplier(4)->Range(16, 4096)->Unit(benchmark::kMicrosecond);

void one_more_goal(benchmark::State& run) {
  const solve_data sdata = bounded_variables(run.range(0));
  term_ptr open_goal = make_binPred_prop(Lt, sum(x(1), x(2)), x(3));
  term_ptr goal = make_binPred_prop(Lt, sum(x(1), x(2)), mk_integer(21));
  for (auto _ : run) {
    if (solver_interval(open_goal, sdata) || !solver_interval(goal, sdata)) {
      run.SkipWithError("wrong");
    }
  }
}
BENCHMARK(one_more_goal)->Arg(16)->Arg(1024)->Unit(benchmark::kMicrosecond);

// x = x/2 + y/2 and y = x/2 + y/2 with 0 < x < 1 and y ≥ 0.
void endless_tightening(benchmark::State& run) {
  const auto half = [](term_ptr t) { return make_binOp_term(Div, t, mk_integer(2)); };
  solve_data sdata;
  for (std::int64_t i = 0; i < run.range(0); ++i) {
    term_ptr mean = sum(half(x(i)), half(x(i + 1)));
    sdata.assum.push_back(make_binPred_prop(Eq, x(i), mean));
    sdata.assum.push_back(make_binPred_prop(Ge, x(i), mk_integer(0)));
  }
  sdata.assum.push_back(make_binPred_prop(Lt, x(0), mk_integer(1)));
  sdata.assum.push_back(make_binPred_prop(Eq, x(run.range(0)), half(x(0))));
  for (auto _ : run) {
    solve_data fresh = sdata;
    fresh.facts = nullptr;
    benchmark::DoNotOptimize(solver_interval(make_binPred_prop(Lt, x(0), mk_integer(0)), fresh));
  }
}
BENCHMARK(endless_tightening)->Arg(1)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

// One relation on a long sum, against the sum in the other order.
void long_sum(benchmark::State& run) {
  term_ptr forward = x(0);
  term_ptr backward = x(run.range(0));
  for (std::int64_t i = 1; i <= run.range(0); ++i) {
    forward = sum(forward, x(i));
    backward = sum(backward, x(run.range(0) - i));
  }
  solve_data sdata;
  sdata.assum = {make_binPred_prop(Gt, forward, mk_integer(2))};
  term_ptr goal = make_binPred_prop(Gt, backward, mk_integer(1));
  for (auto _ : run) {
    solve_data fresh = sdata;
    fresh.facts = nullptr;
    if (!solver_interval(goal, fresh)) {
      run.SkipWithError("not proved");
    }
  }
  run.SetItemsProcessed(run.iterations() * run.range(0));
}
BENCHMARK(long_sum)->Arg(20)->Arg(200)->Arg(2000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace vetro
