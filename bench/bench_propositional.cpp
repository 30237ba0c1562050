// Propositional reasoning: the clause-learning core on hard small problems, and solvers over many assumptions of which
// few matter. Time over the number of assumptions should stay level; "learnt" is the number of learnt clauses.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "qv_solver_list/logic/propositional.h"
#include "qv_solver_list/solver_preprocess.h"
#include "qv_solver_list/solvers.h"
#include "smt_solver/src/cdcl.h"
#include "support/clauses.h"
#include "term/state.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

clause_list random_three_clauses(int variables, int count) {
  std::mt19937 random(7);
  return random_clauses(random, variables, count, 3, 3);
}

// The capacity is lifted, so that the figures show the whole search.
void refute(benchmark::State& bench, int variables, const clause_list& clauses) {
  for (auto _ : bench) {
    sat_data s = init_cdcl(variables, static_cast<int>(clauses.size()));
    for (const auto& clause : clauses) {
      add_clause(s, clause);
    }
    s.cl_maxsize = 1 << 28;
    if (cdcl_solver(s) != cdcl_unsat) {
      bench.SkipWithError("not refuted");
    }
    bench.counters["learnt"] = static_cast<double>(s.cl_size()) - static_cast<double>(clauses.size());
  }
}

void pigeons(benchmark::State& bench) {
  const int holes = static_cast<int>(bench.range(0)) - 1;
  refute(bench, (holes + 1) * holes, pigeonhole(holes));
}
BENCHMARK(pigeons)->DenseRange(5, 9)->Unit(benchmark::kMillisecond);

void random_unsatisfiable(benchmark::State& bench) {
  const int variables = static_cast<int>(bench.range(0));
  refute(bench, variables, random_three_clauses(variables, 6 * variables));
}
BENCHMARK(random_unsatisfiable)->DenseRange(50, 125, 25)->Unit(benchmark::kMillisecond);

term_ptr numbered(const char* stem, int number) {
  std::string name(stem);
  name += std::to_string(number);
  return mk_var(name);
}

// Conjunctions, disjunctions and implications over atoms that occur once.
term_list unrelated_assumptions(int count) {
  static constexpr connect_type connectives[] = {And, Or, Impl};
  term_list assumptions;
  for (int i = 0; i < count; ++i) {
    term_ptr lower = make_binPred_prop(Lt, mk_integer(i), numbered("x", i));
    term_ptr upper = make_binPred_prop(Lt, numbered("y", i), mk_integer(i));
    assumptions.push_back(make_composed_prop(connectives[i % 3], lower, upper));
  }
  return assumptions;
}

term_ptr atom(const char* name) { return make_binPred_prop(Eq, mk_var(name), mk_integer(1)); }

// The goal follows from three assumptions by cases.
void few_of_many_matter(benchmark::State& bench) {
  reset_state();
  const int count = static_cast<int>(bench.range(0));
  term_list assumptions = unrelated_assumptions(count);
  const auto at = [&](int part) -> term_ptr& { return assumptions[static_cast<std::size_t>(count * part / 4)]; };
  at(1) = make_composed_prop(Or, atom("a"), atom("b"));
  at(2) = make_composed_prop(Impl, atom("a"), atom("c"));
  at(3) = make_composed_prop(Impl, atom("b"), atom("c"));
  for (auto _ : bench) {
    if (propositional_answer(assumptions, atom("c")) != sat_answer::proved ||
        propositional_answer(assumptions, atom("d")) != sat_answer::open) {
      bench.SkipWithError("wrong answer");
    }
  }
  bench.SetComplexityN(count);
}
BENCHMARK(few_of_many_matter)->Arg(1000)->Arg(10000)->Complexity(benchmark::oN)->Unit(benchmark::kMillisecond);

void enrichment(benchmark::State& bench) {
  for (auto _ : bench) {
    bench.PauseTiming();
    reset_state();
    solve_data sdata;
    sdata.assum = unrelated_assumptions(static_cast<int>(bench.range(0)));
    bench.ResumeTiming();
    solve_data enriched;
    benchmark::DoNotOptimize(solver_preprocess_build_augmented_sdata(sdata, enriched));
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(enrichment)->Arg(1000)->Arg(10000)->Complexity(benchmark::oN)->Unit(benchmark::kMillisecond);

// Every assumption is asked for in turn.
void known_assumptions(benchmark::State& bench) {
  reset_state();
  solve_data sdata;
  sdata.assum = unrelated_assumptions(static_cast<int>(bench.range(0)));
  for (auto _ : bench) {
    sdata.facts = nullptr;
    for (term_ptr t : sdata.assum) {
      if (!solver_eqb(t, sdata)) {
        bench.SkipWithError("wrong answer");
      }
    }
  }
  bench.SetComplexityN(bench.range(0));
}
BENCHMARK(known_assumptions)->Arg(1000)->Arg(10000)->Complexity(benchmark::oN)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vetro
