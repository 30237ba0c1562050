// Equality of expressions: what an identity costs as it grows, and how fast a comparison fails. The counter "monomials"
// over the time of an identity should stay level as k and n grow.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/algebra/rational_domain.h"
#include "term/ast.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

term_ptr numbered(const char* name, std::int64_t i) { return mk_var(name + std::to_string(i)); }

term_ptr sum_of_names(std::int64_t count) {
  term_ptr sum = numbered("x", 1);
  for (std::int64_t i = 2; i <= count; ++i) {
    sum = make_binOp_term(Plus, sum, numbered("x", i));
  }
  return sum;
}

// The multinomial expansion of (x1 + ... + xk)^n as one long sum.
class expansion {
 public:
  expansion(std::int64_t k, std::int64_t n) : k_(k) { walk(1, n, 1, nullptr); }
  term_ptr sum() const { return sum_; }
  std::int64_t monomials() const { return monomials_; }

 private:
  void walk(std::int64_t variable, std::int64_t left, std::int64_t coef, term_ptr product) {
    std::int64_t choices = 1;
    for (std::int64_t e = 0; e <= left; ++e) {
      if (e > 0) {
        choices = choices * (left - e + 1) / e;
      }
      if (variable == k_ && e < left) {
        continue;
      }
      const std::int64_t next_coef = variable == k_ ? coef : coef * choices;
      term_ptr power = make_binOp_term(Power, numbered("x", variable), mk_integer(static_cast<std::int32_t>(e)));
      term_ptr next = product == nullptr ? power : make_binOp_term(Mult, product, power);
      if (variable < k_) {
        walk(variable + 1, left - e, next_coef, next);
        continue;
      }
      term_ptr monomial = make_binOp_term(Mult, mk_decimal(intern_text(std::to_string(next_coef))), next);
      sum_ = sum_ == nullptr ? monomial : make_binOp_term(Plus, sum_, monomial);
      ++monomials_;
    }
  }

  std::int64_t k_;
  std::int64_t monomials_ = 0;
  term_ptr sum_ = nullptr;
};

// The exact comparison, without what earlier comparisons remember.
void power_against_expansion(benchmark::State& run) {
  const std::int64_t k = run.range(0);
  const std::int64_t n = run.range(1);
  const expansion expanded(k, n);
  term_ptr power = make_binOp_term(Power, sum_of_names(k), mk_integer(static_cast<std::int32_t>(n)));
  for (auto _ : run) {
    if (!rational_forms().equal_at_once(power, expanded.sum())) {
      run.SkipWithError("not proved");
    }
  }
  run.counters["monomials"] = static_cast<double>(expanded.monomials());
  run.SetItemsProcessed(run.iterations() * expanded.monomials());
}
BENCHMARK(power_against_expansion)
    ->Args({2, 10})
    ->Args({2, 60})
    ->Args({3, 10})
    ->Args({3, 30})
    ->Args({4, 10})
    ->Args({4, 20})
    ->Args({5, 10})
    ->Args({5, 20})
    ->Args({8, 8})
    ->Unit(benchmark::kMicrosecond);

// The expansion against another of the same size that differs in one coefficient; each pair is new to the process.
void failing_comparison(benchmark::State& run) {
  term_ptr left = expansion(run.range(0), run.range(1)).sum();
  std::int64_t round = 0;
  for (auto _ : run) {
    term_ptr right = make_binOp_term(Plus, left, numbered("y", ++round % 1000));
    if (poly_rat_eqb(left, right)) {
      run.SkipWithError("proved");
    }
  }
}
BENCHMARK(failing_comparison)->Args({2, 10})->Args({4, 10})->Args({5, 20});

// x^a1 * ... * x^an = x^(a1 + ... + an).
void symbolic_powers(benchmark::State& run) {
  term_ptr product = nullptr;
  term_ptr exponent = nullptr;
  for (std::int64_t i = 1; i <= run.range(0); ++i) {
    term_ptr a = numbered("a", i);
    term_ptr power = make_binOp_term(Power, mk_var("x"), a);
    product = product == nullptr ? power : make_binOp_term(Mult, product, power);
    exponent = exponent == nullptr ? a : make_binOp_term(Plus, exponent, a);
  }
  term_ptr power = make_binOp_term(Power, mk_var("x"), exponent);
  for (auto _ : run) {
    if (!rational_forms().equal_at_once(product, power)) {
      run.SkipWithError("not proved");
    }
  }
}
BENCHMARK(symbolic_powers)->RangeMultiplier(4)->Range(3, 768)->Unit(benchmark::kMicrosecond);

// 1/(x + 1) + ... + 1/(x + n), compared with the same sum from the other end.
void sum_of_quotients(benchmark::State& run) {
  std::vector<term_ptr> quotients;
  for (std::int64_t i = 1; i <= run.range(0); ++i) {
    term_ptr below = make_binOp_term(Plus, mk_var("x"), mk_integer(static_cast<std::int32_t>(i)));
    quotients.push_back(make_binOp_term(Div, mk_integer(1), below));
  }
  term_ptr forward = quotients.front();
  term_ptr backward = quotients.back();
  for (std::size_t i = 1; i < quotients.size(); ++i) {
    forward = make_binOp_term(Plus, forward, quotients[i]);
    backward = make_binOp_term(Plus, backward, quotients[quotients.size() - 1 - i]);
  }
  for (auto _ : run) {
    if (!rational_forms().equal_at_once(forward, backward)) {
      run.SkipWithError("not proved");
    }
  }
}
BENCHMARK(sum_of_quotients)->DenseRange(2, 10, 4)->Unit(benchmark::kMicrosecond);

// An expression that is given up, the product of (xi + yi) against that with its factors multiplied out in pairs: the
// cost of the whole budget.
void given_up(benchmark::State& run) {
  term_ptr product = mk_integer(1);
  term_ptr right = mk_integer(1);
  const auto times = [](term_ptr a, term_ptr b) { return make_binOp_term(Mult, a, b); };
  for (std::int64_t i = 1; i <= 40; i += 2) {
    term_ptr x1 = numbered("x", i);
    term_ptr x2 = numbered("x", i + 1);
    term_ptr y1 = numbered("y", i);
    term_ptr y2 = numbered("y", i + 1);
    product = times(times(product, make_binOp_term(Plus, x1, y1)), make_binOp_term(Plus, x2, y2));
    term_ptr first = make_binOp_term(Plus, times(x1, x2), times(x1, y2));
    term_ptr second = make_binOp_term(Plus, times(y1, x2), times(y1, y2));
    right = times(right, make_binOp_term(Plus, first, second));
  }
  for (auto _ : run) {
    if (rational_forms().equal_at_once(product, right)) {
      run.SkipWithError("proved");
    }
  }
}
BENCHMARK(given_up)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vetro
