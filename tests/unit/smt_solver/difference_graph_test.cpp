// Differences against elimination: constraints that come and go, circles as reasons, forced differences.
#include "smt_solver/src/difference_graph.h"

#include <gtest/gtest.h>

#include <random>

#include "unit/smt_solver/oracles.h"

namespace vetro::smt {
namespace {

struct constraint {
  int x, y;
  delta_number bound;
  int level;
};

oracle::inequality inequality_of(const constraint& c, std::size_t variables) {
  oracle::inequality result{std::vector<exact>(variables, exact(0)), -c.bound.real, !c.bound.delta.is_zero()};
  result.coefficients[static_cast<std::size_t>(c.x)] = exact(1);
  result.coefficients[static_cast<std::size_t>(c.y)] = exact(-1);
  return result;
}

TEST(difference_graph, agrees_with_elimination) {
  constexpr int n = 4;
  int circles = 0;
  int forced = 0;
  for (unsigned seed = 0; seed < 300; ++seed) {
    std::mt19937 random(seed);
    const auto draw = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    budget work(UINT64_MAX);
    difference_graph graph(work);
    for (int i = 0; i < n; ++i) {
      graph.add_variable();
    }
    std::vector<constraint> asserted;
    const auto system = [&](const std::vector<bound_reason>& reasons) {
      std::vector<oracle::inequality> all;
      for (const bound_reason& r : reasons) {
        all.push_back(inequality_of(asserted.at(static_cast<std::size_t>(r.first)), n));
      }
      return all;
    };
    for (int level = 0, step = 0; step < 25; ++step) {
      if (level > 0 && draw(0, 4) == 0) {
        level = draw(0, level - 1);
        graph.back_to_level(level);
        while (!asserted.empty() && asserted.back().level > level) {
          asserted.pop_back();
        }
      }
      graph.open_level();
      ++level;
      const int x = draw(0, n - 1);
      const int y = (x + draw(1, n - 1)) % n;
      asserted.push_back({x, y, {exact(draw(-1, 3)), exact(-draw(0, 1))}, level});
      const bool consistent =
          graph.assert_at_most(x, y, asserted.back().bound, {static_cast<int>(asserted.size()) - 1, 0});
      if (!consistent) {
        ++circles;
        ASSERT_FALSE(oracle::feasible(system(graph.conflict()), n)) << seed;
        asserted.pop_back();
      }
      for (const constraint& c : asserted) {
        ASSERT_FALSE(c.bound < graph.value(c.x) - graph.value(c.y)) << seed;
      }
    }
    graph.find_components();
    for (int x = 0; x < n; ++x) {
      for (int y = 0; y < x; ++y) {
        std::vector<bound_reason> why;
        const bool is_forced = graph.component(x) == graph.component(y);
        if (is_forced) {
          graph.explain_forced(x, y, why);
        }
        for (std::size_t i = 0; !is_forced && i < asserted.size(); ++i) {
          why.push_back({static_cast<int>(i), 0});
        }
        // A difference below, or one above, the present one.
        std::vector<oracle::inequality> both = system(why);
        const delta_number now = graph.value(x) - graph.value(y);
        both.push_back(inequality_of({x, y, {now.real, exact(-1)}, 0}, n));
        const bool below = oracle::feasible(both, n);
        both.back() = inequality_of({y, x, {-now.real, exact(-1)}, 0}, n);
        EXPECT_EQ(is_forced, !below && !oracle::feasible(both, n) && now.delta.is_zero()) << seed;
        forced += is_forced ? 1 : 0;
      }
    }
  }
  EXPECT_GT(circles, 100);
  EXPECT_GT(forced, 15);
}

}  // namespace
}  // namespace vetro::smt
