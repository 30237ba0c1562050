// Defined functions, roots and numeric values: what a small goal costs, and that the time grows with the size of a term
// as a graph, with the number of definitions, and with the logarithm of an exponent.
#include <benchmark/benchmark.h>

#include <string>

#include "goals.h"
#include "qv_solver_list/functions/apply_normalize.h"
#include "qv_solver_list/solvers.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

solve_data given(std::initializer_list<std::string> assumptions) {
  solve_data sdata;
  for (const std::string& text : assumptions) {
    sdata.assum.push_back(read(text));
  }
  return sdata;
}

void ask(benchmark::State& bench, solver_decide solve, const char* assumption, const char* goal, bool expected) {
  start();
  solve_data sdata = given({assumption});
  term_ptr target = read(goal);
  for (auto _ : bench) {
    sdata.facts = nullptr;
    if (solve(target, sdata) != expected) {
      bench.SkipWithError("wrong answer");
    }
  }
}

constexpr const char* by_cases = "forall (x ∈ Real), f(x) = cases{ x^2 if x ≥ 0; otherwise -x }";
BENCHMARK_CAPTURE(ask, value_by_cases, solver_func_apply_eqb, by_cases, "f(3) + f(-2) = 11", true);
BENCHMARK_CAPTURE(ask, open_case, solver_func_apply_eqb, by_cases, "f(a) = a^2", false);
BENCHMARK_CAPTURE(ask, nothing_to_unfold, solver_func_apply_eqb, by_cases, "sin(a) + g(b) = 1", false);
BENCHMARK_CAPTURE(ask, root_fraction, solver_rootfrac, "x > 0", "1 / sqrtn(2, 8) + sqrtn(2, x^2) = sqrtn(2, 2) / 4 + x",
                  true);
BENCHMARK_CAPTURE(ask, no_roots, solver_rootfrac, "x > 0", "a * (b + c) = d", false);
BENCHMARK_CAPTURE(ask, sine, solver_numeric_calc, "x > 0", "sin(5 * π / 6) = 1 / 2", true);
BENCHMARK_CAPTURE(ask, factorial, solver_numeric_calc, "x > 0", "10! > 3 * 10^6", true);
BENCHMARK_CAPTURE(ask, no_number, solver_numeric_calc, "x > 0", "f(x) = g(y)", false);
BENCHMARK_CAPTURE(ask, bar, solver_eval_bar, "b > 0", "(fun x . x^2 + ln(x))|_{1}^{b} = b^2 + ln(b) - 1", true);

// The first question reads all definitions; the next ones find theirs at once.
void many_definitions(benchmark::State& bench, bool first) {
  start();
  solve_data sdata;
  for (std::int64_t i = 0; i < bench.range(0); ++i) {
    sdata.assum.push_back(read("forall (x), f" + std::to_string(i) + "(x) = x + " + std::to_string(i)));
  }
  term_ptr goal = read("f" + std::to_string(bench.range(0) - 1) + "(1) = " + std::to_string(bench.range(0)));
  for (auto _ : bench) {
    if (first) {
      sdata.facts = nullptr;
    }
    if (!solver_func_apply_eqb(goal, sdata)) {
      bench.SkipWithError("wrong answer");
    }
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK_CAPTURE(many_definitions, first, true)->Arg(100)->Arg(1'000)->Arg(10'000)->Complexity();
BENCHMARK_CAPTURE(many_definitions, next, false)->Arg(100)->Arg(1'000)->Arg(10'000)->Complexity();

// Q(h, x) is a sum of ten h(x); each level is a sum of ten sums. As a tree, ten to the power of the levels.
void shared_unfolding(benchmark::State& bench) {
  start();
  std::string ten = "h(x)";
  for (int i = 1; i < 10; ++i) {
    ten += " + h(x)";
  }
  const solve_data sdata = given({"forall (h)(x), Q(h, x) = " + ten});
  std::string term = "fun t . t + 1";
  for (std::int64_t i = 0; i < bench.range(0); ++i) {
    const std::string var = "t" + std::to_string(i);
    term = "fun " + var + " . Q(" + term + ", " + var + ")";
  }
  const term_ptr applied = read("(" + term + ")(0)");
  for (auto _ : bench) {
    benchmark::DoNotOptimize(solver_func_apply_normalize(applied, sdata, func_apply_fuel));
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(shared_unfolding)->DenseRange(1, 7, 2)->Complexity();

// x^2^2...^2, and a product of that many different roots.
void exponents(benchmark::State& bench) {
  start();
  term_ptr power = mk_var("x");
  for (std::int64_t i = 0; i < bench.range(0); ++i) {
    power = make_binOp_term(Power, power, mk_integer(2));
  }
  const solve_data sdata;
  term_ptr goal = make_binPred_prop(Eq, power, make_binOp_term(Mult, power, mk_var("y")));
  for (auto _ : bench) {
    benchmark::DoNotOptimize(solver_rootfrac(goal, sdata));
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(exponents)->Arg(10)->Arg(100)->Arg(1'000)->Complexity();

void products_of_roots(benchmark::State& bench) {
  start();
  std::string left = "1";
  std::string right = "1";
  for (std::int64_t i = 1; i <= bench.range(0); ++i) {
    const std::string root = "sqrtn(3, x" + std::to_string(i) + ")";
    left += " / " + root;
    right += " * " + root + "^2 / x" + std::to_string(i);
  }
  const term_ptr goal = read(left + " = " + right);
  const solve_data sdata;
  for (auto _ : bench) {
    if (!solver_rootfrac(goal, sdata)) {
      bench.SkipWithError("wrong answer");
    }
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(products_of_roots)->Arg(10)->Arg(100)->Arg(1'000)->Complexity();

}  // namespace
}  // namespace vetro
