// Linear arithmetic with functions: families of problems for the kernel, built in its language, and whole calls of the
// solver on goals as a proof has them. "answer" is 0 for a refuted formula and 1 for one with a model.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "goals.h"
#include "number/limits.h"
#include "qv_solver_list/solvers.h"
#include "smt_solver/src/lra_solver.h"

namespace vetro {
namespace {

// A conjunction under construction, with short names for its parts.
class problem {
 public:
  explicit problem(unsigned seed = 1) : random_(seed) {}

  smt_term x(int i) { return named("x", i); }
  smt_term named(const char* stem, int i) { return l.var_name(smt_name::variable, stem, i); }
  smt_term num(int k) { return l.const_num(k); }
  smt_term plus(smt_term a, smt_term b) { return l.binary(LIA_ADD, a, b); }
  smt_term minus(smt_term a, smt_term b) { return l.binary(LIA_MINUS, a, b); }
  smt_term times(int k, smt_term a) { return l.binary(LIA_MULT, num(k), a); }
  smt_term f(smt_term a) {
    const smt_term parts[] = {l.var_name(smt_name::variable, "f"), a};
    return l.uf_term(smt_function::ap_uf, parts);
  }
  smt_prop eq(smt_term a, smt_term b) { return l.atom(SMT_EQ, a, b); }
  smt_prop le(smt_term a, smt_term b) { return l.atom(SMT_LE, a, b); }
  smt_prop ge(smt_term a, smt_term b) { return l.atom(SMT_GE, a, b); }
  smt_prop lt(smt_term a, smt_term b) { return l.atom(SMT_LT, a, b); }
  smt_prop no(smt_prop p) { return l.negation(p); }
  smt_prop both(smt_prop p, smt_prop q) { return l.connective(SMTPROP_AND, p, q); }
  smt_prop either(smt_prop p, smt_prop q) { return l.connective(SMTPROP_OR, p, q); }
  smt_prop implies(smt_prop p, smt_prop q) { return l.connective(SMTPROP_IMPLY, p, q); }
  void add(smt_prop p) { all = both(all, p); }
  int draw(int low, int high) { return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1)); }

  smt_language l;
  smt_prop all = l.truth(true);

 private:
  std::mt19937 random_;
};

using maker = void (*)(problem& p, int n);

void chain(problem& p, int n) {  // x0 <= x1 <= ... and not x0 <= xn
  for (int i = 0; i < n; ++i) {
    p.add(p.le(p.x(i), p.x(i + 1)));
  }
  p.add(p.no(p.le(p.x(0), p.x(n))));
}

void circle_of_arguments(problem& p, int n) {  // x0 <= x1 <= ... <= xn <= x0, f(x0) != f(x_n/2)
  for (int i = 0; i < n; ++i) {
    p.add(p.le(p.x(i), p.x(i + 1)));
  }
  p.add(p.le(p.x(n), p.x(0)));
  p.add(p.no(p.eq(p.f(p.x(0)), p.f(p.x(n / 2)))));
}

void dense_rows(problem& p,
                int n) {  // twenty rows over all variables; the variables sum up to 1, and parts to 0 at most
  for (int row = 0; row < 20; ++row) {
    smt_term sum = p.num(0);
    for (int i = 0; i < n; ++i) {
      sum = p.plus(sum, p.times(p.draw(-3, 3), p.x(i)));
    }
    p.add(p.le(sum, p.num(p.draw(0, 20))));
  }
  smt_term whole = p.num(0);
  for (int part = 0; part < 5; ++part) {
    smt_term sum = p.num(0);
    for (int i = part; i < n; i += 5) {
      sum = p.plus(sum, p.x(i));
    }
    p.add(p.le(sum, p.num(0)));
    whole = p.plus(whole, sum);
  }
  p.add(p.ge(whole, p.num(1)));
}

template <bool satisfiable>
void all_pairs(problem& p, int n) {  // x_i - x_j <= c for all pairs, with one cycle below 0 or none
  std::vector<int> place;
  for (int i = 0; i < n; ++i) {
    place.push_back(p.draw(0, 50));
  }
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      if (i != j) {
        const int slack = satisfiable || (i + 1) % n != j ? p.draw(0, 10) : (j == 0 ? -1 : 0);
        const int c = place[static_cast<std::size_t>(i)] - place[static_cast<std::size_t>(j)] + slack;
        p.add(p.le(p.minus(p.x(i), p.x(j)), p.num(c)));
      }
    }
  }
}

template <bool satisfiable>
void sparse_rows(problem& p,
                 int n) {  // 2 n + 5 constraints of two to five of n variables; or a third of them against it
  std::vector<int> point;
  for (int i = 0; i < n; ++i) {
    point.push_back(p.draw(-10, 10));
  }
  smt_term whole = p.num(0);
  int most = 0;
  for (int row = 0; row < 2 * n + 5; ++row) {
    smt_term sum = p.num(0);
    int value = p.draw(0, 3);
    for (int i = p.draw(2, 5); i > 0; --i) {
      const int v = p.draw(0, n - 1);
      const int c = p.draw(0, 1) == 0 ? p.draw(1, 7) : -p.draw(1, 7);
      value += c * point[static_cast<std::size_t>(v)];
      sum = p.plus(sum, p.times(c, p.x(v)));
    }
    p.add(p.le(sum, p.num(value)));
    if (row % 3 == 0) {
      whole = p.plus(whole, sum);
      most += value;
    }
  }
  if (!satisfiable) {
    p.add(p.ge(whole, p.num(most + 1)));
  }
}

void diamonds(problem& p, int n) {  // x_i = y_i = x_i+1 or x_i = z_i = x_i+1
  for (int i = 0; i < n; ++i) {
    const auto by = [&](smt_term middle) { return p.both(p.eq(p.x(i), middle), p.eq(middle, p.x(i + 1))); };
    p.add(p.either(by(p.named("y", i)), by(p.named("z", i))));
  }
  p.add(p.no(p.eq(p.x(0), p.x(n))));
}

void powers_of_a_function(problem& p, int n) {  // f^n(x) = x and f^(n+1)(x) = x give f(x) = x
  smt_term power = p.x(0);
  for (int i = 0; i < n; ++i) {
    power = p.f(power);
  }
  p.add(p.eq(power, p.x(0)));
  p.add(p.eq(p.f(power), p.x(0)));
  p.add(p.no(p.eq(p.f(p.x(0)), p.x(0))));
}

void few_of_many(problem& p, int n) {
  for (int i = 0; i < n; ++i) {
    p.add(p.le(p.plus(p.x(i), p.times(2, p.x(p.draw(0, n - 1)))), p.num(p.draw(0, 9))));
  }
  p.add(p.eq(p.x(3), p.x(5)));
  p.add(p.no(p.eq(p.f(p.x(3)), p.f(p.x(5)))));
}

void irrelevant_cases(problem& p, int n) {  // satisfiable, with n disjunctions and n implications about other things
  for (int i = 0; i < n; ++i) {
    p.add(p.either(p.le(p.x(3 * i), p.num(i % 7)), p.ge(p.x(3 * i + 1), p.x(3 * i + 2))));
    const smt_prop premise = p.lt(p.x(p.draw(0, 3 * n)), p.x(p.draw(0, 3 * n)));
    p.add(p.implies(premise, p.lt(p.x(p.draw(0, 3 * n)), p.num(i % 5))));
  }
  p.add(p.le(p.named("a", 0), p.named("b", 0)));
  p.add(p.no(p.lt(p.named("a", 0), p.named("b", 0))));
}

void pigeons(problem& p, int n) {  // n pigeons, n - 1 holes; "pigeon i is in hole j" is p_ij > 0
  const auto in = [&](int i, int j) { return p.no(p.le(p.named("p", i * n + j), p.num(0))); };
  for (int i = 0; i < n; ++i) {
    smt_prop somewhere = in(i, 0);
    for (int j = 1; j + 1 < n; ++j) {
      somewhere = p.either(somewhere, in(i, j));
    }
    p.add(somewhere);
  }
  for (int j = 0; j + 1 < n; ++j) {
    for (int i = 0; i < n; ++i) {
      for (int k = 0; k < i; ++k) {
        p.add(p.either(p.no(in(i, j)), p.no(in(k, j))));
      }
    }
  }
}

void cases_of_signs(problem& p,
                    int n) {  // x_i >= 0 and a_i = x_i, or x_i < 0 and a_i = -x_i; the sum of x above that of a
  smt_term values = p.num(0);
  smt_term sizes = p.num(0);
  for (int i = 0; i < n; ++i) {
    const smt_term a = p.named("a", i);
    const smt_prop same = p.both(p.ge(p.x(i), p.num(0)), p.eq(a, p.x(i)));
    p.add(p.either(same, p.both(p.lt(p.x(i), p.num(0)), p.eq(a, p.l.negated(p.x(i))))));
    values = p.plus(values, p.x(i));
    sizes = p.plus(sizes, a);
  }
  p.add(p.no(p.le(values, sizes)));
}

void job_shop(problem& p, int n) {  // n jobs over n machines, within the length of the longest job: too short
  std::vector<int> longest(static_cast<std::size_t>(n), 0);
  const auto start = [&](int job, int machine) { return p.named("s", job * n + machine); };
  std::vector<int> time;
  int bound = 0;
  for (int job = 0; job < n; ++job) {
    int sum = 0;
    for (int machine = 0; machine < n; ++machine) {
      time.push_back(p.draw(1, 9));
      sum += time.back();
    }
    bound = std::max(bound, sum);
  }
  const auto after = [&](smt_term later, smt_term earlier, int t) { return p.ge(p.minus(later, earlier), p.num(t)); };
  const auto duration = [&](int job, int machine) { return time[static_cast<std::size_t>(job * n + machine)]; };
  for (int job = 0; job < n; ++job) {
    const int first = p.draw(0, n - 1);
    for (int step = 0; step < n; ++step) {
      const int machine = (first + step) % n;
      const int next = (machine + 1) % n;
      p.add(p.ge(start(job, machine), p.num(0)));
      p.add(step + 1 < n ? after(start(job, next), start(job, machine), duration(job, machine))
                         : p.le(start(job, machine), p.num(bound - duration(job, machine))));
      for (int other = 0; other < job; ++other) {
        p.add(p.either(after(start(job, machine), start(other, machine), duration(other, machine)),
                       after(start(other, machine), start(job, machine), duration(job, machine))));
      }
    }
  }
}

template <maker make>
void kernel(benchmark::State& state) {
  problem p(static_cast<unsigned>(state.range(0)));
  make(p, static_cast<int>(state.range(0)));
  int answer = 0;
  for ([[maybe_unused]] auto unused : state) {
    budget work(limits::smt_work);
    answer = smt_solver_lra_uf(p.l, p.all, work);
    benchmark::DoNotOptimize(answer);
  }
  state.counters["answer"] = answer;
  state.SetComplexityN(state.range(0));
}

// ---- Whole calls.

solve_data assumptions(const std::vector<std::string>& texts) {
  solve_data sdata;
  for (const std::string& text : texts) {
    sdata.assum.push_back(read(text));
  }
  return sdata;
}

void call(benchmark::State& state, const std::vector<std::string>& texts, const std::string& goal) {
  start();
  const solve_data sdata = assumptions(texts);
  term_ptr target = read(goal);
  bool proved = false;
  for ([[maybe_unused]] auto unused : state) {
    proved = solver_smt_lra(target, sdata);
    benchmark::DoNotOptimize(proved);
  }
  state.counters["answer"] = proved ? 0 : 1;
}

const std::vector<std::string> few = {"x > 0", "y ≥ x + 1", "y < 10 ⇒ z = y", "f(x) ∈ A", "2 * x + 3 * z ≤ 12"};

void small_goal_proved(benchmark::State& state) { call(state, few, "y > 9 ∨ x + z ≥ f(x) - f(x) + 1"); }
void small_goal_open(benchmark::State& state) { call(state, few, "f(y) = f(z)"); }

void absolute_values(benchmark::State& state) {  // |x0 + ... + xn| <= |x0| + ... + |xn|
  std::string sum = "x0";
  std::string values = "|x0|";
  for (int i = 1; i <= state.range(0); ++i) {
    sum += " + x" + std::to_string(i);
    values += " + |x" + std::to_string(i) + "|";
  }
  call(state, {}, "|" + sum + "| ≤ " + values);
  state.SetComplexityN(state.range(0));
}

void many_assumptions(benchmark::State& state) {
  std::vector<std::string> texts;
  for (int i = 0; i < state.range(0); ++i) {
    texts.push_back("x" + std::to_string(i) + " + 2 * x" + std::to_string(i * 7 % 1000) + " ≤ " + std::to_string(i));
  }
  call(state, texts, "x3 = x5 ⇒ f(x3) = f(x5)");
  state.SetComplexityN(state.range(0));
}

BENCHMARK(kernel<chain>)->RangeMultiplier(4)->Range(31, 2000)->Complexity();
BENCHMARK(kernel<circle_of_arguments>)->RangeMultiplier(4)->Range(16, 1000)->Complexity();
BENCHMARK(kernel<dense_rows>)->Arg(10)->Arg(50)->Arg(150)->Arg(400);
BENCHMARK(kernel<all_pairs<true>>)->Arg(6)->Arg(12)->Arg(24)->Arg(40);
BENCHMARK(kernel<all_pairs<false>>)->Arg(6)->Arg(12)->Arg(24)->Arg(40);
BENCHMARK(kernel<sparse_rows<true>>)->Arg(5)->Arg(10)->Arg(20)->Arg(40);
BENCHMARK(kernel<sparse_rows<false>>)->Arg(5)->Arg(10)->Arg(20)->Arg(40);
BENCHMARK(kernel<diamonds>)->Arg(25)->Arg(50)->Arg(100)->Arg(200)->Complexity();
BENCHMARK(kernel<powers_of_a_function>)->RangeMultiplier(4)->Range(16, 1000)->Complexity();
BENCHMARK(kernel<few_of_many>)->Arg(100)->Arg(1000)->Arg(10000)->Complexity();
BENCHMARK(kernel<irrelevant_cases>)->Arg(10)->Arg(100)->Arg(1000)->Complexity();
BENCHMARK(kernel<pigeons>)->DenseRange(5, 9);
BENCHMARK(kernel<cases_of_signs>)->Arg(5)->Arg(10)->Arg(30)->Arg(100);
BENCHMARK(kernel<job_shop>)->DenseRange(3, 6);
BENCHMARK(small_goal_proved);
BENCHMARK(small_goal_open);
BENCHMARK(absolute_values)->Arg(5)->Arg(10)->Arg(25)->Arg(50)->Complexity();
BENCHMARK(many_assumptions)->Arg(100)->Arg(1000)->Arg(10000)->Complexity();

}  // namespace
}  // namespace vetro
