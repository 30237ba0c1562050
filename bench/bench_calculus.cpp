// Derivatives, limits, sets of primitives and continuity: what a small goal costs, and that the time grows with the
// size of a term as a graph.
#include <benchmark/benchmark.h>

#include <string>

#include "goals.h"
#include "qv_solver_list/calculus/derivative.h"
#include "qv_solver_list/solvers.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

// Each round starts with an empty memory of the assumptions.
void ask_often(benchmark::State& bench, solver_decide solve, const std::string& assumption, const std::string& goal,
               bool expected) {
  start();
  solve_data sdata;
  if (!assumption.empty()) {
    sdata.assum.push_back(read(assumption));
  }
  term_ptr target = read(goal);
  for (auto _ : bench) {
    sdata.facts = nullptr;
    if (solve(target, sdata) != expected) {
      bench.SkipWithError("wrong answer");
    }
  }
}

void ask(benchmark::State& bench, solver_decide solve, const char* assumption, const char* goal, bool expected) {
  ask_often(bench, solve, assumption, goal, expected);
}

BENCHMARK_CAPTURE(ask, derivative, solver_deriv_eqb, "forall (x), x ≥ 0 ⇒ f(x) = x^2 * sin(x)",
                  "t > 0 ⇒ FunDeri(f, 1, 1, t) = 2 * t * sin(t) + t^2 * cos(t)", true);
BENCHMARK_CAPTURE(ask, another_derivative, solver_deriv_eqb, "a > 0",
                  "FunDeri(fun x . x^2 * sin(a * x), 1, 1, t) = 2 * t * sin(a * t) + t^2 * cos(a * t)", false);
BENCHMARK_CAPTURE(ask, no_derivative, solver_deriv_eqb, "a > 0", "f(x) = g(x)", false);
BENCHMARK_CAPTURE(ask, no_limit, solver_limit_calc, "a > 0", "lim_{x → ∞}((3 * x^2 + sin(x)) / (x^3 + ln(x))) = 0",
                  false);
BENCHMARK_CAPTURE(ask, limit_of_quotient, solver_limit_calc, "a > 0",
                  "lim_{x → ∞}((3 * x^2 + 1) / (2 * x^2 - x)) = 3 / 2", true);
BENCHMARK_CAPTURE(ask, limit_by_growth, solver_limit_calc, "a > 0", "lim_{x → ∞}(ln(x) * sin(x) / x^(1/2)) = 0", true);
BENCHMARK_CAPTURE(ask, limit_at_point, solver_limit_calc, "a > 0", "lim_{x → a}((x^2 + ln(x)) / x) = a + ln(a) / a",
                  true);
BENCHMARK_CAPTURE(ask, primitives, solver_integral, "a > 0",
                  "{ F | forall (x), x > 0 ⇒ FunDeri(F, 1, 1, x) = ln(x) / x } = { F | exists (C), C ∈ Real ∧ forall "
                  "(x), x > 0 ⇒ F(x) = ln(x)^2 / 2 + C }",
                  true);
BENCHMARK_CAPTURE(ask, no_primitives, solver_integral, "a > 0",
                  "{ F | forall (x), FunDeri(F, 1, 1, x) = 0 } = { F | exists (C), C ∈ Real ∧ forall (x), F(x) = "
                  "arctan(x) + arctan(1 / x) + C }",
                  false);
BENCHMARK_CAPTURE(ask, continuity, solver_continuous_func, "forall (x), f(x) = ln(x) / x",
                  "ContinuousFuncOn(f, (0, 1))", true);
BENCHMARK_CAPTURE(ask, no_continuity, solver_continuous_func, "forall (x), f(x) = ln(x) / x",
                  "ContinuousFuncOn(f, [0, 1])", false);
BENCHMARK_CAPTURE(ask, integrable, solver_integrable_func, "forall (x), f(x) = ln(x) / x",
                  "IntegrableFuncOn(f, [1, 2])", true);

// ---- Growth.

// (x + 1) * (x + 2) * ...
term_ptr product_of_factors(std::int64_t count) {
  term_ptr x = mk_var("x");
  term_ptr product = x;
  for (std::int64_t i = 1; i < count; ++i) {
    term_ptr factor = make_binOp_term(Plus, x, mk_integer(static_cast<std::int32_t>(i)));
    product = make_binOp_term(Mult, product, factor);
  }
  return product;
}

// e^e^...^x
term_ptr tower_of_exponentials(std::int64_t count) {
  term_ptr tower = mk_var("x");
  for (std::int64_t i = 0; i < count; ++i) {
    tower = make_binOp_term(Power, mk_const(E), tower);
  }
  return tower;
}

// x^x^...^x
term_ptr tower_of_powers(std::int64_t count) {
  term_ptr x = mk_var("x");
  term_ptr tower = x;
  for (std::int64_t i = 0; i < count; ++i) {
    tower = make_binOp_term(Power, x, tower);
  }
  return tower;
}

// t^t with t one level below: a small graph, a tree of two to the power of the levels.
term_ptr shared_powers(std::int64_t count) {
  term_ptr t = mk_var("x");
  for (std::int64_t i = 0; i < count; ++i) {
    t = make_binOp_term(Power, t, t);
  }
  return t;
}

void derive(benchmark::State& bench, term_ptr (*build)(std::int64_t)) {
  start();
  term_ptr t = build(bench.range(0));
  term_ptr x = mk_var("x");
  for (auto _ : bench) {
    benchmark::DoNotOptimize(derivative(t, x));
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK_CAPTURE(derive, factors, product_of_factors)->Arg(20)->Arg(200)->Arg(2'000)->Complexity();
BENCHMARK_CAPTURE(derive, exponentials, tower_of_exponentials)->Arg(10)->Arg(100)->Arg(1'000)->Complexity();
BENCHMARK_CAPTURE(derive, powers, tower_of_powers)->Arg(10)->Arg(100)->Arg(1'000)->Complexity();
BENCHMARK_CAPTURE(derive, shared, shared_powers)->Arg(10)->Arg(100)->Arg(1'000)->Complexity();

// The solver with the comparison and the look at divisors: the same function on both sides, a parameter away.
void derivative_goal(benchmark::State& bench, term_ptr (*build)(std::int64_t)) {
  start();
  term_ptr x = mk_var("x");
  term_ptr body = build(bench.range(0));
  term_ptr function = mk_lambda(term_list{x}, {nullptr}, nullptr, body);
  const term_list args{function, mk_integer(1), mk_integer(1), x};
  term_ptr target = make_binPred_prop(Eq, mk_apply_all(mk_oper(FunDeri), args), derivative(body, x));
  solve_data sdata;
  for (auto _ : bench) {
    sdata.facts = nullptr;
    if (!solver_deriv_eqb(target, sdata)) {
      bench.SkipWithError("wrong answer");
    }
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK_CAPTURE(derivative_goal, factors, product_of_factors)->Arg(20)->Arg(200)->Complexity();
BENCHMARK_CAPTURE(derivative_goal, exponentials, tower_of_exponentials)->Arg(10)->Arg(100)->Complexity();
BENCHMARK_CAPTURE(derivative_goal, powers, tower_of_powers)->Arg(10)->Arg(100)->Complexity();

// All orders up to the budget of steps.
void highest_order(benchmark::State& bench) {
  ask_often(bench, solver_deriv_eqb, "", "FunDeri(fun x . sin(x) * e^x, 1, 1000000000, 0) = 0", false);
}
BENCHMARK(highest_order)->Unit(benchmark::kMillisecond);

// (x + x^2 + ... ) / (1 + 2 x + ...) with exponents up to 16.
void terms_of_ratio(benchmark::State& bench) {
  std::string num = "0";
  std::string den = "0";
  for (std::int64_t i = 1; i <= bench.range(0); ++i) {
    const std::string power = "x^" + std::to_string(i % 8 + 1);
    num += " + " + std::to_string(i) + " * " + power;
    den += " + " + std::to_string(2 * i) + " * " + power;
  }
  ask_often(bench, solver_limit_calc, "", "lim_{x → ∞}((" + num + ") / (" + den + ")) = 1 / 2", true);
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(terms_of_ratio)->Arg(20)->Arg(200)->Arg(2'000)->Complexity();

// 1 / (x * ln(x * ln(...)))
void nested_logarithms(benchmark::State& bench) {
  std::string nested = "x";
  for (std::int64_t i = 0; i < bench.range(0); ++i) {
    nested = "x * ln(" + nested + ")";
  }
  ask_often(bench, solver_limit_calc, "", "lim_{x → ∞}(1 / (" + nested + ")) = 0", true);
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(nested_logarithms)->Arg(6)->Arg(60)->Arg(600)->Complexity();

// x + x^2 / 2 + ... is a primitive of 1 + x + ...
void terms_of_family(benchmark::State& bench) {
  std::string integrand = "0";
  std::string formula = "C";
  for (std::int64_t i = 1; i <= bench.range(0); ++i) {
    const std::string n = std::to_string(i);
    integrand += " + sin(x + " + n + ") + " + n + " / (x - " + n + ")^2";
    formula += " - cos(x + " + n + ") - " + n + " / (x - " + n + ")";
  }
  ask_often(bench, solver_integral, "",
            "{ F | forall (x), FunDeri(F, 1, 1, x) = " + integrand +
                " } = { F | exists (C), C ∈ Real ∧ forall (x), F(x) = " + formula + " }",
            true);
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(terms_of_family)->Arg(2)->Arg(8)->Arg(24);

// ln(x + ln(x + ...)) + 1 / (x + 1) + ...
void parts_of_continuous_function(benchmark::State& bench) {
  std::string body = "x";
  for (std::int64_t i = 1; i <= bench.range(0); ++i) {
    body += " + 1 / (x + " + std::to_string(i) + ") + sqrt(x * " + std::to_string(i) + ")";
  }
  ask_often(bench, solver_continuous_func, "", "ContinuousFuncOn(fun x . " + body + ", (0, 1))", true);
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(parts_of_continuous_function)->Arg(2)->Arg(20)->Arg(200)->Complexity();

}  // namespace
}  // namespace vetro
