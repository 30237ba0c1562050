// The kernel as a whole: random formulas against a procedure that tries every assignment and every order of the terms,
// and what the language promises about products, constants and names.
#include "smt_solver/src/lra_solver.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "unit/smt_solver/oracles.h"

namespace vetro {
namespace {

// Terms of the random formulas: x, y, f(x), and f(y) or f(f(x)), and small combinations of these; atoms compare two of
// them.
struct random_formula {
  explicit random_formula(unsigned seed) : random(seed), nested(seed % 2 == 0), differences(seed % 3 == 0) {
    const smt_term f = language.var_name(smt_name::variable, "f");
    const auto apply = [&](smt_term argument) {
      const smt_term arguments[] = {f, argument};
      return language.uf_term(smt_function::ap_uf, arguments);
    };
    base.push_back(language.var_name(smt_name::variable, "x"));
    base.push_back(language.var_name(smt_name::variable, "y"));
    base.push_back(apply(base[0]));
    base.push_back(apply(base[nested ? 2 : 1]));
    for (int i = 0; i < 5; ++i) {
      atoms.push_back(make_atom());
    }
    formula = make_formula(2);
    for (int i = 0; i < 3; ++i) {
      formula = language.connective(SMTPROP_AND, formula, make_formula(2));
    }
  }
  int draw(int low, int high) { return std::uniform_int_distribution(low, high)(random); }

  struct atom {
    SmtBinPred relation;
    std::vector<exact> coefficients;  // of the left side minus the right side, over base
    exact constant;
    smt_prop prop;
  };

  std::pair<smt_term, oracle::inequality> side() {
    const auto i = static_cast<std::size_t>(draw(0, static_cast<int>(base.size()) - 1));
    oracle::inequality value{std::vector<exact>(base.size(), exact(0)), exact(0)};
    value.coefficients[i] = exact(1);
    switch (draw(0, 3)) {
      case 0: {
        const int k = draw(-2, 2);
        value = {std::vector<exact>(base.size(), exact(0)), exact(k)};
        return {language.const_num(k), value};
      }
      case 1: {
        const int k = differences ? 1 : draw(-2, 2);
        value.coefficients[i] = exact(k);
        value.constant = exact(1);
        const smt_term product = language.binary(LIA_MULT, language.const_num(k), base[i]);
        return {language.binary(LIA_ADD, product, language.const_num(1)), value};
      }
      default:
        return {base[i], value};
    }
  }

  atom make_atom() {
    const auto [left, l] = side();
    const auto [right, r] = side();
    constexpr SmtBinPred relations[] = {SMT_EQ, SMT_EQ, SMT_EQ, SMT_LE, SMT_LT, SMT_GE, SMT_GT};
    const SmtBinPred relation = relations[draw(0, 6)];
    atom a{relation, l.coefficients, l.constant - r.constant, language.atom(relation, left, right)};
    for (std::size_t i = 0; i < base.size(); ++i) {
      a.coefficients[i] -= r.coefficients[i];
    }
    return a;
  }

  smt_prop make_formula(int depth) {
    if (depth == 0 || draw(0, 5) == 0) {
      return atoms[static_cast<std::size_t>(draw(0, static_cast<int>(atoms.size()) - 1))].prop;
    }
    const int kind = draw(0, 6);
    const smt_prop a = make_formula(depth - 1);
    if (kind == 0) {
      return language.negation(a);
    }
    constexpr SmtPropBop connectives[] = {SMTPROP_AND, SMTPROP_AND, SMTPROP_OR, SMTPROP_OR, SMTPROP_IMPLY, SMTPROP_IFF};
    return language.connective(connectives[kind - 1], a, make_formula(depth - 1));
  }

  bool holds(smt_prop p, unsigned values) const {
    for (std::size_t i = 0; i < atoms.size(); ++i) {
      if (atoms[i].prop == p) {
        return (values >> i & 1U) != 0;
      }
    }
    const smt_prop_row& row = language.prop(p);
    const bool a = holds(row.a, values);
    if (row.type == SMTU_PROP) {
      return !a;
    }
    const bool b = holds(row.b, values);
    return row.detail == SMTPROP_AND   ? a && b
           : row.detail == SMTPROP_OR  ? a || b
           : row.detail == SMTPROP_IFF ? a == b
                                       : !a || b;
  }

  // The atoms with these values, and the terms in this order, where 0 after a term says that the next is equal to it.
  bool consistent(unsigned values, const std::vector<std::size_t>& order, unsigned steps) const {
    std::vector<int> rank(base.size(), 0);
    std::vector<oracle::inequality> system;
    for (std::size_t i = 0; i + 1 < order.size(); ++i) {
      const bool strict = (steps >> i & 1U) != 0;
      rank[order[i + 1]] = rank[order[i]] + (strict ? 1 : 0);
      oracle::inequality c{std::vector<exact>(base.size(), exact(0)), exact(0), strict};
      c.coefficients[order[i]] = exact(1);
      c.coefficients[order[i + 1]] = exact(-1);
      system.push_back(c);
      if (!strict) {
        c.coefficients[order[i]] = exact(-1);
        c.coefficients[order[i + 1]] = exact(1);
        system.push_back(c);
      }
    }
    const std::size_t other = nested ? 2 : 1;
    return (rank[0] != rank[other] || rank[2] == rank[3]) && satisfiable(values, 0, system);
  }
  bool satisfiable(unsigned values, std::size_t i, std::vector<oracle::inequality> system) const {
    if (i == atoms.size()) {
      return oracle::feasible(system, base.size());
    }
    const atom& a = atoms[i];
    const bool value = (values >> i & 1U) != 0;
    oracle::inequality below{a.coefficients, a.constant, a.relation == SMT_LT || a.relation == SMT_GE};
    const bool turned = a.relation == SMT_GT || a.relation == SMT_GE;
    if (a.relation != SMT_EQ) {
      system.push_back(value != turned ? below : oracle::negated(below));
      return satisfiable(values, i + 1, system);
    }
    oracle::inequality above = oracle::negated(below);
    above.strict = false;
    if (value) {
      system.push_back(below);
      system.push_back(above);
      return satisfiable(values, i + 1, system);
    }
    below.strict = above.strict = true;
    std::vector<oracle::inequality> other = system;
    system.push_back(below);
    other.push_back(above);
    return satisfiable(values, i + 1, system) || satisfiable(values, i + 1, other);
  }

  bool has_model() const {
    std::vector<unsigned> chosen;
    for (unsigned values = 0; values < 1U << atoms.size(); ++values) {
      if (holds(formula, values)) {
        chosen.push_back(values);
      }
    }
    std::vector<std::size_t> order = {0, 1, 2, 3};
    do {
      for (unsigned steps = 0; steps < 8; ++steps) {
        for (const unsigned values : chosen) {
          if (consistent(values, order, steps)) {
            return true;
          }
        }
      }
    } while (std::next_permutation(order.begin(), order.end()));
    return false;
  }

  std::mt19937 random;
  bool nested;
  bool differences;  // no other coefficients than 1
  smt_language language;
  std::vector<smt_term> base;
  std::vector<atom> atoms;
  smt_prop formula = smt_none;
};

int solve(const smt_language& language, smt_prop formula) {
  budget work(UINT64_MAX);
  return smt_solver_lra_uf(language, formula, work);
}

TEST(lra_solver, agrees_with_trying_everything) {
  int refuted = 0;
  for (unsigned seed = 0; seed < 300; ++seed) {
    const random_formula r(seed);
    const bool unsatisfiable = solve(r.language, r.formula) == 0;
    ASSERT_EQ(unsatisfiable, !r.has_model()) << seed;
    refuted += unsatisfiable ? 1 : 0;
  }
  EXPECT_GT(refuted, 100);
}

// What a formula about a few terms comes to.
struct small_language : smt_language {
  smt_term name(std::string_view text) { return var_name(smt_name::variable, text); }
  smt_term times(smt_term a, smt_term b) { return binary(LIA_MULT, a, b); }
  smt_term over(smt_term a, smt_term b) { return binary(LIA_DIV, a, b); }
  bool equal(smt_term a, smt_term b) { return solve(*this, negation(atom(SMT_EQ, a, b))) == 0; }
};

TEST(lra_solver, products_and_quotients_are_their_structure) {
  small_language l;
  const smt_term x = l.name("x");
  const smt_term y = l.name("y");
  const smt_term z = l.name("z");
  const smt_term three = l.const_num(3);
  EXPECT_TRUE(l.equal(l.times(x, l.times(y, z)), l.times(l.times(x, y), z)));
  EXPECT_TRUE(l.equal(l.times(x, l.over(y, z)), l.over(l.times(x, y), z)));
  EXPECT_TRUE(
      l.equal(l.times(three, l.times(x, y)), l.binary(LIA_ADD, l.times(x, y), l.times(l.const_num(2), l.times(x, y)))));
  EXPECT_FALSE(l.equal(l.times(x, y), l.times(y, x)));
  EXPECT_FALSE(l.equal(l.over(x, l.over(y, z)), l.over(l.over(x, y), z)));
  EXPECT_FALSE(l.equal(l.times(l.over(x, y), z), l.over(x, l.times(y, z))));
  EXPECT_FALSE(l.equal(l.times(l.name("x*y"), z), l.times(x, l.times(y, z))));
  EXPECT_FALSE(l.equal(l.over(l.times(three, x), three), x));
}

TEST(lra_solver, numbers_and_reserved_names) {
  small_language l;
  const smt_term big = l.const_num(2147483647);
  const smt_term square = l.times(big, big);
  EXPECT_TRUE(l.equal(square, l.times(l.name("SMT_INT32_MAX"), big)));
  EXPECT_EQ(solve(l, l.atom(SMT_LE, square, l.name("SMT_INT64_MAX"))), -1);
  EXPECT_EQ(solve(l, l.atom(SMT_LE, l.name("SMT_INT8_MAX"), l.const_num(100))), 0);
  EXPECT_EQ(solve(l, l.atom(SMT_LE, l.var_name(smt_name::decimal, "SMT_INT8_MAX"), l.const_num(100))), 1);
  EXPECT_EQ(l.negated(l.const_num(5)), l.const_num(-5));
  // f(x) = 1 and x = SMT_INT16_MAX give f(32767) = 1.
  const smt_term at_name[] = {l.name("f"), l.name("SMT_INT16_MAX")};
  const smt_term at_number[] = {l.name("f"), l.const_num(32767)};
  EXPECT_TRUE(l.equal(l.uf_term(smt_function::ap_uf, at_name), l.uf_term(smt_function::ap_uf, at_number)));
}

TEST(lra_solver, shared_parts_and_deep_formulas_cost_what_they_are_written_in) {
  small_language l;
  smt_term sum = l.name("x");
  smt_prop choice = l.atom(SMT_LE, sum, l.const_num(0));
  smt_prop parity = choice;
  for (int i = 0; i < 60; ++i) {  // as a tree, 2^60 nodes
    sum = l.binary(LIA_ADD, sum, sum);
    choice = l.connective(SMTPROP_OR, l.connective(SMTPROP_AND, choice, choice), choice);
    parity = l.connective(SMTPROP_IFF, parity, l.connective(SMTPROP_IFF, parity, l.atom(SMT_LE, sum, l.name("y"))));
  }
  EXPECT_EQ(solve(l, l.connective(SMTPROP_AND, choice, l.atom(SMT_GT, sum, l.const_num(0)))), 0);
  EXPECT_EQ(solve(l, l.connective(SMTPROP_AND, parity, choice)), 1);
  smt_term deep = l.name("a");
  smt_prop all = l.truth(true);
  for (int i = 0; i < 50000; ++i) {
    const smt_term arguments[] = {l.name("f"), deep};
    deep = l.uf_term(smt_function::ap_uf, arguments);
    all = l.connective(SMTPROP_AND, l.negation(l.negation(all)), l.atom(SMT_EQ, deep, l.name("a")));
  }
  EXPECT_EQ(solve(l, l.connective(SMTPROP_AND, all, l.negation(l.atom(SMT_EQ, deep, l.name("a"))))), 0);
}

// Thirty numbers with their signs by cases: nothing is tried for each combination.
TEST(lra_solver, cases_have_bounds_in_common) {
  small_language l;
  const smt_term zero = l.const_num(0);
  const auto sums = [&](bool strict) {
    smt_term values = zero;
    smt_term sizes = zero;
    smt_prop all = l.truth(true);
    for (int i = 0; i < 30; ++i) {
      const smt_term x = l.var_name(smt_name::variable, "x", i);
      const smt_term a = l.var_name(smt_name::variable, "a", i);
      const smt_prop itself = l.connective(SMTPROP_AND, l.atom(SMT_GE, x, zero), l.atom(SMT_EQ, a, x));
      const smt_prop turned = l.connective(SMTPROP_AND, l.atom(SMT_LT, x, zero), l.atom(SMT_EQ, a, l.negated(x)));
      all = l.connective(SMTPROP_AND, all, l.connective(SMTPROP_OR, itself, turned));
      values = l.binary(LIA_ADD, values, x);
      sizes = l.binary(LIA_ADD, sizes, a);
    }
    return l.connective(SMTPROP_AND, all, l.atom(strict ? SMT_GT : SMT_GE, values, sizes));
  };
  budget work(1'000'000);
  EXPECT_EQ(smt_solver_lra_uf(l, sums(true), work), 0);
  EXPECT_EQ(smt_solver_lra_uf(l, sums(false), work), 1);
  EXPECT_FALSE(work.exhausted());
}

TEST(lra_solver, used_up_work_proves_nothing) {
  smt_language l;
  const random_formula r(0);
  for (std::uint64_t allowed = 0; allowed < 400; allowed += 7) {
    budget work(allowed);
    EXPECT_TRUE(smt_solver_lra_uf(r.language, r.formula, work) != 0 || !r.has_model());
  }
}

}  // namespace
}  // namespace vetro
