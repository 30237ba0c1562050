// The tableau against elimination: random systems whose bounds come and go, the reasons of conflicts, forced values.
#include "smt_solver/src/simplex.h"

#include <gtest/gtest.h>

#include <random>

#include "unit/smt_solver/oracles.h"

namespace vetro::smt {
namespace {

constexpr std::size_t plain = 3;  // variables; more are sums of these

struct asserted {
  linear_var var;
  bound_side side;
  delta_number value;
  std::size_t level;
};

struct random_system {
  random_system(unsigned seed, int most) : random(seed), greatest(most), work(UINT64_MAX), tableau(work) {
    for (std::size_t i = 0; i < plain; ++i) {
      tableau.add_variable();
      rows.emplace_back(plain, exact(0)).at(i) = exact(1);
    }
    for (int r = 0; r < 4; ++r) {
      std::vector<simplex::summand> sum;
      rows.emplace_back(plain, exact(0));
      for (std::size_t i = 0; i < plain; ++i) {
        if (const int c = draw(-3, 3); c != 0) {
          sum.emplace_back(static_cast<linear_var>(i), exact(c));
          rows.back()[i] = exact(c);
        }
      }
      tableau.add_sum(sum);
    }
  }
  int draw(int low, int high) { return std::uniform_int_distribution(low, high)(random); }

  oracle::inequality of(const asserted& a) const {
    const bool strict = !a.value.delta.is_zero();
    oracle::inequality c{rows[static_cast<std::size_t>(a.var)], -a.value.real, strict};
    if (a.side == bound_side::lower) {
      c = oracle::negated(c);
      c.strict = strict;
    }
    return c;
  }
  std::vector<oracle::inequality> system() const {
    std::vector<oracle::inequality> all;
    for (const asserted& a : bounds) {
      all.push_back(of(a));
    }
    return all;
  }

  // Takes back to a level now and then, asserts a bound, and says whether the tableau still finds values.
  bool step() {
    if (level > 0 && draw(0, 3) == 0) {
      go_back();
    }
    if (draw(0, 1) == 0) {
      tableau.open_level();
      ++level;
    }
    const auto side = draw(0, 1) == 0 ? bound_side::lower : bound_side::upper;
    const int strict = draw(0, 1) * (side == bound_side::lower ? 1 : -1);
    bounds.push_back(
        {draw(0, static_cast<int>(rows.size()) - 1), side, {exact(draw(-greatest, greatest)), exact(strict)}, level});
    const asserted& a = bounds.back();
    return tableau.assert_bound(a.var, a.side, a.value, {static_cast<int>(bounds.size()) - 1, -1}) &&
           tableau.check() == simplex::answer::feasible;
  }
  void go_back() {
    level = static_cast<std::size_t>(draw(0, static_cast<int>(level) - 1));
    tableau.back_to_level(static_cast<int>(level));
    while (!bounds.empty() && bounds.back().level > level) {
      bounds.pop_back();
    }
  }

  std::mt19937 random;
  int greatest;  // number in a bound
  budget work;
  simplex tableau;
  std::vector<std::vector<exact>> rows;
  std::vector<asserted> bounds;
  std::size_t level = 0;
};

// The values satisfy bounds and rows, where an infinitesimal counts as a number.
void expect_solution(const random_system& s) {
  for (const asserted& a : s.bounds) {
    const delta_number& value = s.tableau.value(a.var);
    EXPECT_FALSE(a.side == bound_side::lower ? value < a.value : a.value < value);
  }
  for (std::size_t r = 0; r < s.rows.size(); ++r) {
    delta_number sum;
    for (std::size_t i = 0; i < plain; ++i) {
      sum.add_multiple(s.rows[r][i], s.tableau.value(static_cast<linear_var>(i)));
    }
    EXPECT_TRUE(sum == s.tableau.value(static_cast<linear_var>(r)));
  }
}

void expect_conflict(const random_system& s) {
  std::vector<oracle::inequality> core;
  for (const bound_reason& r : s.tableau.conflict()) {
    core.push_back(s.of(s.bounds.at(static_cast<std::size_t>(r.first))));
  }
  EXPECT_FALSE(oracle::feasible(core, plain));
}

TEST(simplex, agrees_with_elimination) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    random_system s(seed, 4);
    for (int step = 0; step < 25; ++step) {
      if (s.step()) {
        ASSERT_TRUE(oracle::feasible(s.system(), plain)) << seed;
        expect_solution(s);
      } else {
        expect_conflict(s);
        if (s.level == 0) {
          break;
        }
        s.go_back();
      }
    }
  }
}

TEST(simplex, forced_values_are_those_that_no_solution_avoids) {
  int found = 0;
  for (unsigned seed = 0; seed < 600; ++seed) {
    random_system s(seed, 0);
    for (int step = 0; step < 5 && s.step(); ++step) {
    }
    if (!oracle::feasible(s.system(), plain)) {
      continue;
    }
    const auto x = static_cast<linear_var>(seed % s.rows.size());
    const delta_number now = s.tableau.value(x);
    const simplex::summand sum[] = {{x, exact(1)}};
    std::vector<bound_reason> why;
    const bool forced = s.tableau.is_forced(sum, why) == simplex::forced::yes;
    std::vector<oracle::inequality> system;
    for (const bound_reason& r : why) {
      system.push_back(s.of(s.bounds.at(static_cast<std::size_t>(r.first))));
    }
    system = forced ? system : s.system();
    system.push_back({s.rows[static_cast<std::size_t>(x)], -now.real, true});
    const bool below = oracle::feasible(system, plain);
    system.back() = oracle::negated(system.back());
    system.back().strict = true;
    const bool above = oracle::feasible(system, plain);
    EXPECT_EQ(forced, !below && !above && now.delta.is_zero()) << seed;
    expect_solution(s);
    found += forced ? 1 : 0;
  }
  EXPECT_GT(found, 8);
}

// Numbers that outgrow 64 bits, and a budget that ends.
TEST(simplex, grows_and_gives_up) {
  for (const std::uint64_t allowed : {UINT64_MAX, std::uint64_t{200}}) {
    budget work(allowed);
    simplex tableau(work);
    constexpr int n = 12;
    for (int i = 0; i < n; ++i) {
      tableau.add_variable();
    }
    bool consistent = true;
    for (int r = 0; r < n; ++r) {  // a matrix of rows i^r has a huge determinant; all sums are 1
      std::vector<simplex::summand> sum;
      exact power(1);
      for (int i = 0; i < n; ++i) {
        power = exact(1);
        for (int k = 0; k < r; ++k) {
          power *= exact(7 * i + 1);
        }
        sum.emplace_back(i, power);
      }
      const linear_var x = tableau.add_sum(sum);
      for (const auto side : {bound_side::lower, bound_side::upper}) {
        consistent = consistent && tableau.assert_bound(x, side, {exact(1), exact(0)}, {r, -1});
      }
    }
    ASSERT_TRUE(consistent);
    const auto answer = tableau.check();
    if (allowed != UINT64_MAX) {
      EXPECT_EQ(answer, simplex::answer::exhausted);
      continue;
    }
    ASSERT_EQ(answer, simplex::answer::feasible);
    EXPECT_TRUE(tableau.value(0) == (delta_number{exact(1), exact(0)}));  // the powers of 1
    EXPECT_TRUE(tableau.value(5).is_zero());
  }
}

}  // namespace
}  // namespace vetro::smt
