// The closure against a plain one: equalities after assertions that come and go, explanations, implied literals.
#include "smt_solver/src/congruence.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <random>

#include "unit/smt_solver/oracles.h"

namespace vetro::smt {
namespace {

struct random_equalities {
  explicit random_equalities(unsigned seed) : random(seed), work(UINT64_MAX), nodes(work) {
    for (int i = 0; i < 5; ++i) {
      nodes.add_leaf();
    }
    for (int i = 0; i < 9; ++i) {
      const node function = draw(0, nodes.size() - 1);
      const node argument = draw(0, nodes.size() - 1);
      if (made.emplace(std::pair(function, argument), nodes.size()).second) {
        nodes.add_application(function, argument);
      }
    }
    nodes.set_constant(0);
    nodes.set_constant(1);
    for (int v = 0; v < 30; ++v) {
      const node a = draw(0, nodes.size() - 1);
      const node b = (a + draw(1, nodes.size() - 1)) % nodes.size();
      nodes.add_atom(literal_of(v), a, b);
    }
  }
  int draw(int low, int high) { return std::uniform_int_distribution(low, high)(random); }

  // What the literals say, by the plain closure; nothing if they contradict each other.
  std::optional<oracle::closure> plain(const std::vector<literal>& literals) const {
    std::vector<std::array<std::size_t, 3>> applications;
    for (const auto& [parts, n] : made) {
      applications.push_back({at(parts.first), at(parts.second), at(n)});
    }
    oracle::closure c(at(nodes.size()), applications);
    for (const literal l : literals) {
      if (is_positive(l)) {
        c.merge(at(nodes.sides(l).first), at(nodes.sides(l).second));
      }
    }
    bool consistent = !c.equal(0, 1);
    for (const literal l : literals) {
      consistent = consistent && (is_positive(l) || !c.equal(at(nodes.sides(l).first), at(nodes.sides(l).second)));
    }
    return consistent ? std::optional(c) : std::nullopt;
  }
  static std::size_t at(node n) { return static_cast<std::size_t>(n); }

  std::mt19937 random;
  budget work;
  congruence nodes;
  std::map<std::pair<node, node>, node> made;
};

TEST(congruence, agrees_with_a_plain_closure) {
  std::size_t conflicts = 0;
  std::size_t implied = 0;
  for (unsigned seed = 0; seed < 400; ++seed) {
    random_equalities s(seed);
    std::vector<std::pair<int, literal>> asserted;
    int level = 0;
    const auto literals = [&] {
      std::vector<literal> all;
      for (const auto& entry : asserted) {
        all.push_back(entry.second);
      }
      return all;
    };
    const auto go_back = [&] {
      level = s.draw(0, level - 1);
      s.nodes.back_to_level(level);
      while (!asserted.empty() && asserted.back().first > level) {
        asserted.pop_back();
      }
    };
    for (int step = 0; step < 30; ++step) {
      s.nodes.open_level();
      ++level;
      const literal l = literal_of(s.draw(0, 29), s.draw(0, 2) != 0);
      asserted.emplace_back(level, l);
      if (!s.nodes.assert_literal(l)) {
        ++conflicts;
        EXPECT_FALSE(s.plain(literals()).has_value());
        EXPECT_FALSE(s.plain(s.nodes.conflict()).has_value()) << seed;
        go_back();
        continue;
      }
      const auto expected = s.plain(literals());
      ASSERT_TRUE(expected.has_value()) << seed;
      for (node a = 0; a < s.nodes.size(); ++a) {
        for (node b = 0; b < a; ++b) {
          ASSERT_EQ(s.nodes.equal(a, b), expected->equal(s.at(a), s.at(b))) << seed;
          if (s.nodes.equal(a, b)) {
            std::vector<literal> premises;
            s.nodes.explain(a, b, premises);
            const auto explained = s.plain(premises);
            EXPECT_TRUE(explained && explained->equal(s.at(a), s.at(b))) << seed;
          }
        }
      }
      for (const literal i : s.nodes.implied()) {
        ++implied;
        std::vector<literal> premises;
        s.nodes.explain_implied(i, premises);
        EXPECT_TRUE(s.plain(premises).has_value());
        premises.push_back(negation(i));
        EXPECT_FALSE(s.plain(premises).has_value()) << seed;
      }
      s.nodes.implied().clear();
      if (s.draw(0, 3) == 0) {
        go_back();
      }
    }
  }
  EXPECT_GT(conflicts, 100U);
  EXPECT_GT(implied, 1000U);
}

}  // namespace
}  // namespace vetro::smt
