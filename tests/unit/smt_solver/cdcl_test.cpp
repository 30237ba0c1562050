// The clause-learning core against two oracles: brute force for the answers, and a plain matrix that rescans all
// clauses at every step for the way there (decisions, first conflicts, learnt clauses).
#include "smt_solver/src/cdcl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

#include "number/limits.h"
#include "support/clauses.h"

namespace vetro {
namespace {

sat_data problem(int variables, const clause_list& clauses) {
  sat_data s = init_cdcl(variables, static_cast<int>(clauses.size()));
  for (const auto& clause : clauses) {
    add_clause(s, clause);
  }
  return s;
}

cdcl_result solve(int variables, const clause_list& clauses) {
  sat_data s = problem(variables, clauses);
  return cdcl_solver(s);
}

std::vector<int> learnt_clause(const sat_data& s, int c) {
  const literal_span literals = s.clause(c);
  std::vector<int> sorted(literals.begin(), literals.end());
  std::sort(sorted.begin(), sorted.end(), [](int a, int b) { return std::abs(a) < std::abs(b); });
  return sorted;
}

// Bit v of values is the value of variable v.
bool satisfies(const clause_list& clauses, unsigned values) {
  return std::all_of(clauses.begin(), clauses.end(), [&](const auto& clause) {
    return std::any_of(clause.begin(), clause.end(),
                       [&](int l) { return (values >> (std::abs(l) - 1) & 1U) == (l > 0 ? 1U : 0U); });
  });
}

bool satisfiable_by_force(int variables, const clause_list& clauses) {
  for (unsigned values = 0; values < 1U << variables; ++values) {
    if (satisfies(clauses, values)) {
      return true;
    }
  }
  return false;
}

// The slow engine: everything is read off the values, clause by clause and variable by variable.
struct scanning_engine {
  int variables;
  clause_list clauses;
  std::size_t capacity;
  std::vector<int> value, reason, level;
  int current = 0;

  scanning_engine(int n, clause_list given) : variables(n), clauses(std::move(given)), capacity(clauses.size() * 8) {
    value.assign(static_cast<std::size_t>(n), -1);
    reason = level = value;
  }
  static std::size_t var(int literal) { return static_cast<std::size_t>(std::abs(literal) - 1); }
  bool falsified(int literal) const { return value[var(literal)] == (literal > 0 ? 0 : 1); }
  bool verified(int literal) const { return value[var(literal)] == (literal > 0 ? 1 : 0); }

  int propagate() {
    for (;;) {
      int unit_clause = -1;
      int forced = 0;
      for (std::size_t c = 0; c < clauses.size() && unit_clause < 0; ++c) {
        int open = 0;
        bool done = false;
        for (const int l : clauses[c]) {
          done = done || verified(l);
          if (value[var(l)] == -1) {
            ++open;
            forced = l;
          }
        }
        unit_clause = !done && open == 1 ? static_cast<int>(c) : -1;
      }
      if (unit_clause < 0) {
        return -1;
      }
      value[var(forced)] = forced > 0 ? 1 : 0;
      reason[var(forced)] = unit_clause;
      level[var(forced)] = current;
      for (std::size_t c = 0; c < clauses.size(); ++c) {
        if (std::all_of(clauses[c].begin(), clauses[c].end(), [&](int l) { return falsified(l); })) {
          return static_cast<int>(c);
        }
      }
    }
  }

  // Resolves the first implied variable of the current level away, again and again, on rows of signs.
  std::vector<int> learn(int conflict) const {
    std::vector<int> row(static_cast<std::size_t>(variables), 0);
    for (const int l : clauses[static_cast<std::size_t>(conflict)]) {
      row[var(l)] = l > 0 ? 1 : -1;
    }
    for (std::size_t v = 0; v < row.size();) {
      if (row[v] == 0 || level[v] != current || reason[v] == -1) {
        ++v;
        continue;
      }
      for (const int l : clauses[static_cast<std::size_t>(reason[v])]) {
        const int sign = l > 0 ? 1 : -1;
        row[var(l)] = row[var(l)] == -sign ? 0 : row[var(l)] != 0 ? row[var(l)] : sign;
      }
      v = 0;
    }
    std::vector<int> learnt;
    for (int v = 0; v < variables; ++v) {
      if (row[static_cast<std::size_t>(v)] != 0) {
        learnt.push_back((v + 1) * row[static_cast<std::size_t>(v)]);
      }
    }
    return learnt;
  }

  int return_level(const std::vector<int>& learnt) const {
    int highest = -1;
    int second = -1;
    for (const int l : learnt) {
      highest = std::max(highest, level[var(l)]);
    }
    for (const int l : learnt) {
      second = level[var(l)] < highest ? std::max(second, level[var(l)]) : second;
    }
    return std::max(second, 0);
  }

  cdcl_result run() {
    for (;;) {
      for (int conflict = propagate(); conflict >= 0; conflict = propagate()) {
        if (current == 0) {
          return cdcl_unsat;
        }
        const std::vector<int> learnt = learn(conflict);
        if (clauses.size() == capacity) {
          return cdcl_exhausted;
        }
        clauses.push_back(learnt);
        current = return_level(learnt);
        for (std::size_t v = 0; v < value.size(); ++v) {
          if (level[v] > current) {
            value[v] = reason[v] = level[v] = -1;
          }
        }
      }
      const auto free = std::find(value.begin(), value.end(), -1);
      if (free == value.end()) {
        return cdcl_sat;
      }
      level[static_cast<std::size_t>(free - value.begin())] = ++current;
      *free = 1;
    }
  }
};

// Literals of the clause without a value, or -1 for a clause that holds a true one.
int open_literals(int c, const sat_data& s) {
  int open = 0;
  for (const int l : s.clause(c)) {
    const int value = s.v_data.value[static_cast<std::size_t>(std::abs(l) - 1)];
    if (value == (l > 0 ? 1 : 0)) {
      return -1;
    }
    open += value == -1 ? 1 : 0;
  }
  return open;
}

void expect_nothing_left_to_propagate(const sat_data& s) {
  for (int c = 0; c < s.cl_size(); ++c) {
    const int open = open_literals(c, s);
    ASSERT_TRUE(open < 0 || open > 1) << "clause " << c;
  }
}

TEST(cdcl, agrees_with_brute_force) {
  std::mt19937 random(1);
  int unsatisfiable = 0;
  for (int round = 0; round < 3000; ++round) {
    const int variables = 3 + static_cast<int>(random() % 8);
    const int count = static_cast<int>(random() % static_cast<unsigned>(6 * variables)) + 1;
    const clause_list clauses = random_clauses(random, variables, count, 1, 3);
    sat_data s = problem(variables, clauses);
    s.cl_maxsize = 1 << 20;
    const cdcl_result result = cdcl_solver(s);
    ASSERT_EQ(result == cdcl_sat, satisfiable_by_force(variables, clauses));
    if (result == cdcl_sat) {
      unsigned model = 0;
      for (int v = 0; v < variables; ++v) {
        model |= static_cast<unsigned>(s.v_data.value[static_cast<std::size_t>(v)]) << v;
      }
      ASSERT_TRUE(satisfies(clauses, model));
    } else {
      ++unsatisfiable;
    }
  }
  EXPECT_GT(unsatisfiable, 500);
}

TEST(cdcl, takes_the_same_way_as_a_scan_of_all_clauses) {
  std::mt19937 random(2);
  std::size_t learnt = 0;
  int exhausted = 0;
  for (int round = 0; round < 400; ++round) {
    const int variables = 5 + static_cast<int>(random() % 36);
    const int count = variables * 43 / 10;
    const clause_list clauses = random_clauses(random, variables, count,
                                               round % 4 == 1   ? 1
                                               : round % 3 == 0 ? 2
                                                                : 3,
                                               3);
    scanning_engine slow(variables, clauses);
    sat_data fast = problem(variables, clauses);
    if (round % 4 == 0) {  // the border of the capacity
      slow.capacity = clauses.size() + 3;
      fast.cl_maxsize = static_cast<int>(clauses.size()) + 3;
    }
    testing::internal::CaptureStdout();
    const cdcl_result result = cdcl_solver(fast);
    const std::string printed = testing::internal::GetCapturedStdout();
    ASSERT_EQ(result, slow.run());
    EXPECT_EQ(printed, result == cdcl_exhausted ? "too many clause\n" : "");
    ASSERT_EQ(static_cast<std::size_t>(fast.cl_size()), slow.clauses.size());
    for (int c = count; c < fast.cl_size(); ++c) {
      ASSERT_EQ(learnt_clause(fast, c), slow.clauses[static_cast<std::size_t>(c)]);
    }
    ASSERT_TRUE(std::equal(slow.value.begin(), slow.value.end(), fast.v_data.value.begin()));
    ASSERT_EQ(fast.v_data.ancient, slow.reason);
    learnt += slow.clauses.size() - clauses.size();
    exhausted += result == cdcl_exhausted ? 1 : 0;
  }
  EXPECT_GT(learnt, 1000U);
  EXPECT_GT(exhausted, 5);
}

TEST(cdcl, decides_in_order_and_true) {
  sat_data s = problem(4, {{-1, -3}});
  EXPECT_EQ(cdcl_solver(s), cdcl_sat);
  EXPECT_EQ(s.v_data.value, (std::vector<std::int8_t>{1, 1, 0, 1}));
  EXPECT_EQ(s.v_data.dl, (std::vector<int>{1, 2, 1, 3}));
  EXPECT_EQ(s.v_data.ancient, (std::vector<int>{-1, -1, 0, -1}));
  EXPECT_EQ(solve(0, {}), cdcl_sat);
}

TEST(cdcl, conflict_at_level_zero_learns_nothing) {
  sat_data s = problem(2, {{1}, {-1, 2}, {-2}});
  EXPECT_EQ(cdcl_solver(s), cdcl_unsat);
  EXPECT_EQ(s.cl_size(), 3);
}

TEST(cdcl, keeps_the_decision_not_the_first_cut) {
  // 1 forces 2, 2 forces 3 and 4, which exclude each other: the first cut would be 2, and come first.
  sat_data s = problem(4, {{-1, 2}, {-2, 3}, {-2, 4}, {-3, -4}});
  EXPECT_EQ(cdcl_solver(s), cdcl_sat);
  ASSERT_EQ(s.cl_size(), 6);
  EXPECT_EQ(learnt_clause(s, 4), std::vector<int>{-1});
  EXPECT_EQ(learnt_clause(s, 5), std::vector<int>{-2});
  EXPECT_EQ(s.v_data.value[0], 0);
  EXPECT_EQ(s.v_data.dl[0], 0);
  EXPECT_EQ(s.v_data.ancient[0], 4);
}

TEST(cdcl, returns_to_the_second_highest_level) {
  sat_data s = problem(5, {{-1, -4, 5}, {-1, -4, -5}});
  EXPECT_EQ(bcp(s), -1);
  for (int v = 0; v < 3; ++v) {
    EXPECT_EQ(decide(s), v);
    EXPECT_EQ(bcp(s), -1);
  }
  EXPECT_EQ(decide(s), 3);
  EXPECT_EQ(bcp(s), 1);
  const std::vector<int> learnt = clause_learning(1, s);
  EXPECT_EQ(learnt, (std::vector<int>{-1, -4}));
  EXPECT_EQ(conflict_analysis(learnt, s), 1);
  backtrack(1, s);
  EXPECT_EQ(s.v_data.value, (std::vector<std::int8_t>{1, -1, -1, -1, -1}));
  expect_nothing_left_to_propagate(s);
}

// Up to the first conflict and back again in single steps, with a scan of all clauses after each.
TEST(cdcl, propagation_misses_nothing) {
  std::mt19937 random(4);
  int returned = 0;
  for (int round = 0; round < 200; ++round) {
    const int variables = 10 + round % 20;
    const int shortest = 1 + round % 3;
    sat_data s = problem(variables, random_clauses(random, variables, variables * 4, shortest, 3 + round % 5));
    int conflict = bcp(s);
    while (conflict < 0 && decide(s) >= 0) {
      conflict = bcp(s);
      if (conflict < 0) {
        expect_nothing_left_to_propagate(s);
      }
    }
    if (conflict < 0) {
      continue;
    }
    int first = 0;
    while (open_literals(first, s) != 0) {
      ++first;
    }
    ASSERT_EQ(first, conflict);
    if (s.cur_dl > 0) {
      backtrack(conflict_analysis(clause_learning(conflict, s), s), s);
      expect_nothing_left_to_propagate(s);
      ++returned;
    }
  }
  EXPECT_GT(returned, 50);
}

TEST(cdcl, nothing_learnt_ends_the_search) {
  const sat_data s = problem(1, {{1}});
  testing::internal::CaptureStdout();
  EXPECT_EQ(conflict_analysis({}, s), -1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "error, empty learnt clause");
}

TEST(cdcl, repeated_and_opposed_literals) {
  sat_data s = problem(2, {{-1, -1, -2}, {1, 1}, {2, -2}, {2, 2}});
  EXPECT_EQ(s.cl_size(), 3);
  EXPECT_EQ(s.clause(0).size(), 2U);
  EXPECT_EQ(s.clause(1).size(), 1U);
  EXPECT_EQ(cdcl_solver(s), cdcl_unsat);
}

TEST(cdcl, capacity_is_eight_times_the_clauses) {
  const clause_list clauses = pigeonhole(6);
  sat_data s = problem(7 * 6, clauses);
  EXPECT_EQ(s.cl_maxsize, 8 * static_cast<int>(clauses.size()));
  s.cl_maxsize = static_cast<int>(clauses.size());
  testing::internal::CaptureStdout();
  EXPECT_EQ(cdcl_solver(s), cdcl_exhausted);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "too many clause\n");
  sat_data poor = problem(7 * 6, clauses);
  poor.work_left = 1000;
  testing::internal::CaptureStdout();
  EXPECT_EQ(cdcl_solver(poor), cdcl_exhausted);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(cdcl, pigeonholes) {
  for (int holes = 4; holes <= 7; ++holes) {
    sat_data s = problem((holes + 1) * holes, pigeonhole(holes));
    s.cl_maxsize = 1 << 20;
    EXPECT_EQ(cdcl_solver(s), cdcl_unsat) << holes;
    clause_list one_less = pigeonhole(holes);
    one_less.erase(one_less.begin());
    EXPECT_EQ(solve((holes + 1) * holes, one_less), cdcl_sat) << holes;
  }
}

TEST(cdcl, random_unsatisfiable_three_clauses) {
  std::mt19937 random(3);
  int refuted = 0;
  for (int round = 0; round < 10; ++round) {
    const clause_list clauses = random_clauses(random, 60, 420, 3, 3);
    sat_data s = problem(60, clauses);
    const cdcl_result result = cdcl_solver(s);
    EXPECT_NE(result, cdcl_sat);
    refuted += result == cdcl_unsat ? 1 : 0;
  }
  EXPECT_EQ(refuted, 10);
}

TEST(cdcl, cost_follows_clause_length) {
  // Long chains of implications that nothing contradicts: every literal is looked at a few times, no more.
  const int length = 100000;
  clause_list chain = {{1}};
  for (int v = 1; v < length; ++v) {
    chain.push_back({-v, v + 1});
  }
  sat_data s = problem(length, chain);
  EXPECT_EQ(cdcl_solver(s), cdcl_sat);
  EXPECT_GT(s.work_left, limits::cdcl_work - 10U * length);
}

}  // namespace
}  // namespace vetro
