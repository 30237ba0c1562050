// Signs, constants, memberships and definedness. Deep expressions: time over the depth should stay linear, also where a
// subterm is shared. Many assumptions: a call costs one pass over the list, a question behind it nothing more.
#include <benchmark/benchmark.h>

#include <string>

#include "goals.h"
#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/functions/definedness.h"
#include "qv_solver_list/solver_list.h"
#include "qv_solver_list/solvers.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

term_ptr numbered(const char* name, int i) { return mk_var(name + std::to_string(i)); }

// x0 * x1 * ... with nothing known of the factors, nested to the left.
term_ptr product_of_unknown(int factors) {
  term_ptr t = numbered("x", 0);
  for (int i = 1; i < factors; ++i) {
    t = make_binOp_term(Mult, t, numbered("x", i));
  }
  return t;
}

// Quotients and roots in turn, each around the one before.
term_ptr tower(int levels) {
  term_ptr t = mk_var("x");
  for (int i = 0; i < levels; ++i) {
    t = i % 2 == 0 ? make_binOp_term(Frac, numbered("y", i), t) : make_binOp_term(Sqrtn, mk_integer(2), t);
  }
  return t;
}

// t + t, then that sum times itself, and so on: few nodes, as a tree beyond all measure.
term_ptr shared(int levels) {
  term_ptr t = mk_var("x");
  for (int i = 0; i < levels; ++i) {
    t = make_binOp_term(i % 2 == 0 ? Plus : Mult, t, t);
  }
  return t;
}

using expression = term_ptr (*)(int);

void unprovable(benchmark::State& bench, solver_decide solve, expression make) {
  start();
  term_ptr goal = make_binPred_prop(Gt, make(static_cast<int>(bench.range(0))), mk_integer(0));
  const solve_data sdata;
  for (auto _ : bench) {
    benchmark::DoNotOptimize(solve(goal, sdata));
  }
  bench.SetComplexityN(bench.range(0));
}

void depths(benchmark::internal::Benchmark* bench) { bench->Arg(15)->Arg(30)->Arg(60)->Arg(120)->Complexity(); }

BENCHMARK_CAPTURE(unprovable, pure_product, solver_sgn_pure, product_of_unknown)->Apply(depths);
BENCHMARK_CAPTURE(unprovable, pure_tower, solver_sgn_pure, tower)->Apply(depths);
BENCHMARK_CAPTURE(unprovable, pure_shared, solver_sgn_pure, shared)->Apply(depths);
BENCHMARK_CAPTURE(unprovable, full_product, solver_sgn, product_of_unknown)->Apply(depths);
BENCHMARK_CAPTURE(unprovable, full_tower, solver_sgn, tower)->Apply(depths);
BENCHMARK_CAPTURE(unprovable, full_shared, solver_sgn, shared)->Apply(depths);

// A goal that is none of theirs.
void outside_all_forms(benchmark::State& bench) {
  start();
  term_ptr goal = read("f ∈ A");
  const solve_data sdata;
  for (auto _ : bench) {
    benchmark::DoNotOptimize(solver_sgn(goal, sdata) || solver_sgn_pure(goal, sdata) ||
                             solver_const_type(goal, sdata) || solver_domain_type(goal, sdata));
  }
}
BENCHMARK(outside_all_forms);

solve_data many_comparisons(int count) {
  solve_data sdata;
  for (int i = 0; i < count; ++i) {
    sdata.assum.push_back(make_binPred_prop(Gt, numbered("a", i), numbered("a", i + 1)));
  }
  return sdata;
}

// One call: the forms of all assumptions, and one answer.
void first_question(benchmark::State& bench) {
  start();
  solve_data sdata = many_comparisons(static_cast<int>(bench.range(0)));
  term_ptr goal = make_binPred_prop(Gt, make_binOp_term(Minus, numbered("a", 5), numbered("a", 6)), mk_integer(0));
  for (auto _ : bench) {
    sdata.facts = nullptr;
    if (!solver_sgn_pure(goal, sdata)) {
      bench.SkipWithError("wrong answer");
    }
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(first_question)->Arg(1000)->Arg(10000)->Complexity(benchmark::oN)->Unit(benchmark::kMicrosecond);

// The next question about the same assumptions.
void next_question(benchmark::State& bench) {
  start();
  const solve_data sdata = many_comparisons(static_cast<int>(bench.range(0)));
  term_ptr goal = make_binPred_prop(Gt, make_binOp_term(Minus, numbered("a", 5), numbered("a", 6)), mk_integer(0));
  for (auto _ : bench) {
    if (!solver_sgn_pure(goal, sdata)) {
      bench.SkipWithError("wrong answer");
    }
  }
}
BENCHMARK(next_question)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

// A sum of one summand for each assumption.
void long_sum(benchmark::State& bench) {
  start();
  solve_data sdata;
  term_ptr sum = mk_integer(1);
  for (int i = 0; i < bench.range(0); ++i) {
    sdata.assum.push_back(make_binPred_prop(Ge, numbered("a", i), mk_integer(0)));
    sum = make_binOp_term(Plus, sum, numbered("a", i));
  }
  term_ptr goal = make_binPred_prop(Gt, sum, mk_integer(0));
  for (auto _ : bench) {
    if (!solver_sgn_pure(goal, sdata)) {
      bench.SkipWithError("wrong answer");
    }
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(long_sum)->Arg(100)->Arg(1000)->Arg(5000)->Complexity(benchmark::oN)->Unit(benchmark::kMicrosecond);

// 1 / (x + 1 / (x + ...)), with x positive.
void definedness_of_fractions(benchmark::State& bench) {
  start();
  solve_data sdata;
  sdata.assum = {read("x > 0")};
  term_ptr t = mk_var("x");
  for (int i = 0; i < bench.range(0); ++i) {
    t = make_binOp_term(Frac, mk_integer(1), make_binOp_term(Plus, mk_var("x"), t));
  }
  for (auto _ : bench) {
    sdata.facts = nullptr;
    benchmark::DoNotOptimize(solver_expr_domain_is_defined(t, sdata, limit_domain_policy));
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(definedness_of_fractions)
    ->Arg(8)
    ->Arg(16)
    ->Arg(32)
    ->Complexity(benchmark::oAuto)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace vetro
