// The term kernel: reading, printing, matching, comparing and building, each on growing input. The complexity that
// Google Benchmark fits (bigO) is the figure to look at: all of these are linear.
#include <benchmark/benchmark.h>

#include <string>

#include "lib/semantic_term.h"
#include "parser/parser_api.h"
#include "term/compare.h"
#include "term/pattern_match.h"
#include "term/print/pretty.h"
#include "term/state.h"
#include "term/substitute/plain.h"

namespace vetro {
namespace {

std::string sum_text(long terms) {
  std::string text = "x0";
  for (long i = 1; i < terms; ++i) {
    text += " + a_" + std::to_string(i % 40) + " * f(x" + std::to_string(i) + ")";
  }
  return text;
}

std::string bound_text(long terms, const std::string& index) {
  return "forall (" + index + "), sum_{k = 1}^{n}(" + sum_text(terms) + " + " + index + " * k) = " + index;
}

void start() {
  reset_state();
  match_init(read_pattern);
}

void read_formula(benchmark::State& bench) {
  const std::string text = sum_text(bench.range(0));
  for (auto _ : bench) {
    bench.PauseTiming();
    start();
    bench.ResumeTiming();
    benchmark::DoNotOptimize(parse_term_from_str(text, 0, 0));
  }
  bench.SetBytesProcessed(bench.iterations() * static_cast<long>(text.size()));
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(read_formula)->RangeMultiplier(8)->Range(64, 32768)->Complexity(benchmark::oN);

void read_and_prepare_formula(benchmark::State& bench) {
  const std::string text = bound_text(bench.range(0), "m");
  for (auto _ : bench) {
    bench.PauseTiming();
    start();
    bench.ResumeTiming();
    benchmark::DoNotOptimize(parse_semantic_term_from_str(text));
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(read_and_prepare_formula)->RangeMultiplier(8)->Range(64, 32768)->Complexity(benchmark::oN);

void print_pretty(benchmark::State& bench) {
  start();
  term_ptr t = parse_semantic_term_from_str(bound_text(bench.range(0), "m"));
  for (auto _ : bench) {
    benchmark::DoNotOptimize(print_term_to_string(t));
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(print_pretty)->RangeMultiplier(8)->Range(64, 32768)->Complexity(benchmark::oN);

// Same up to bound names: nothing but a walk can tell.
void compare_renamed(benchmark::State& bench) {
  start();
  term_ptr a = parse_semantic_term_from_str(bound_text(bench.range(0), "m"));
  term_ptr b = parse_semantic_term_from_str(bound_text(bench.range(0), "q"));
  for (auto _ : bench) {
    benchmark::DoNotOptimize(term_eqb(a, b));
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(compare_renamed)->RangeMultiplier(8)->Range(64, 32768)->Complexity(benchmark::oN);

// Two different formulas of one shape: the stored hashes tell.
void compare_different(benchmark::State& bench) {
  start();
  term_ptr a = parse_semantic_term_from_str(sum_text(bench.range(0)) + " = y");
  term_ptr b = parse_semantic_term_from_str(sum_text(bench.range(0)) + " = z");
  for (auto _ : bench) {
    benchmark::DoNotOptimize(term_eqb(a, b));
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(compare_different)->RangeMultiplier(8)->Range(64, 32768)->Complexity(benchmark::o1);

void substitute_everywhere(benchmark::State& bench) {
  start();
  term_ptr t = parse_semantic_term_from_str(bound_text(bench.range(0), "m"));
  term_ptr from = mk_var("f");
  term_ptr to = mk_var("g");
  for (auto _ : bench) {
    benchmark::DoNotOptimize(subst_term(from, to, t));
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(substitute_everywhere)->RangeMultiplier(8)->Range(64, 32768)->Complexity(benchmark::oN);

void match_shape(benchmark::State& bench) {
  start();
  term_ptr t = parse_semantic_term_from_str("(a + b) * c");
  for (auto _ : bench) {
    term_ptr left = nullptr;
    term_ptr right = nullptr;
    benchmark::DoNotOptimize(match(t, "Plus(?, ?)", left, right));
    benchmark::DoNotOptimize(match(t, "Mult(?, ?)", left, right));
  }
}
BENCHMARK(match_shape);

}  // namespace
}  // namespace vetro
