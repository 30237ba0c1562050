// Limits: what the tables of signs, definedness and growth decide, and what stays open.
#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

struct limit_case {
  const char* goal;
  std::initializer_list<std::string_view> given = {};
};

class limit_calc : public solver_test {
 protected:
  static bool proves(const limit_case& c) { return solver_limit_calc(read(c.goal), given(c.given)); }
};

TEST_F(limit_calc, proves) {
  const limit_case cases[] = {
      {"lim_{x → +∞}((2 * x + 1) / (x + 3)) = 2"},
      {"lim_{x → ∞}(1 / x) = 0"},
      {"seqlim_{n → ∞}((1 - n^9) / (3 * n^9 + 1)) = -1 / 3"},
      {"lim_{x → +∞}(sin(x) / x) = 0"},
      {"lim_{x → +∞}(ln(x) / x) = 0"},
      {"lim_{x → +∞}(ln(x)^5 / sqrtn(3, x)) = 0"},
      {"lim_{x → +∞}(cos(x^2) * (x + 1) / (x * x^(1 / 2))) = 0"},
      {"lim_{x → +∞}(tan(1 / x)) = 0"},
      {"lim_{x → +∞}(x / (x^2 * ln(x))) = 0"},
      {"lim_{x → +∞}(1 / ((-x)^3 * |1 - x|)) = 0"},
      {"lim_{x → 2}(x^2 + 1) = 5"},
      {"lim_{x → a}(x / 2) = a / 2"},
      {"lim_{x → 1}(2 * ln(x)) = 0"},
      {"lim_{x → π}(x * sin(x / 6)) = π / 2"},
      {"lim_{x → a}(1 / x) = 1 / a", {"a > 0"}},
      {"lim_{x → 3}(2^x) = 8"},
      {"1 / x →_{x → ∞} 0"},
      {"(n + 1) / n seqTendsTo_{n → ∞} 1"},
      {"f(lim_{x → 0}(x + 1)) + b = b + f(1)"},
      {"sum_{i = 1}^{3}(i + lim_{x → i}(x)) = sum_{i = 1}^{3}(2 * i)"},
  };
  for (const limit_case& c : cases) {
    EXPECT_TRUE(proves(c)) << c.goal;
  }
}

TEST_F(limit_calc, leaves_open) {
  const limit_case cases[] = {
      {"1 = 1"},
      {"lim_{x → -∞}(1 / x) = 0"},
      {"lim_{x → 0^+}(x) = 0"},
      {"lim_{x → +∞}(ln(x)) = 0"},
      {"lim_{x → +∞}(1 / (x - x)) = 0"},
      {"lim_{x → +∞}(1 / (2 + sin(x))) = 0"},
      {"lim_{x → +∞}(1 / (x * sin(x))) = 0"},
      {"lim_{x → +∞}(ln(-x) / x) = 0"},
      {"lim_{x → +∞}(tan(x) / x) = 0"},
      {"lim_{x → +∞}((1 - x)^(1 / 2) / x) = 0"},
      {"lim_{x → +∞}(x / (x * ln(1 + 1 / x))) = 0"},
      {"lim_{x → 0}(1 / x) = 1 / 0"},
      {"lim_{x → a}(1 / x) = 1 / a"},
      {"lim_{x → 2}((-1)^x) = 1"},
      {"lim_{x → 3}(sqrtn(x, -1)) = -1"},
      {"lim_{x → x}(x) = x"},
      {"lim_{x → 0}(f(x)) = f(0)"},
      {"lim_{x → 2}(x) ≤ 3"},
      {"seqlim_{n → 2}(n) = 2"},
      {"lim_{x → 0}(sin(x) / x) = 1"},
      // An assumption about i says nothing of the index i.
      {"sum_{i = -1}^{1}(lim_{x → i}(1 / x)) = sum_{i = -1}^{1}(1 / i)", {"i > 0"}},
      {"Dom(lim_{x → 0}(x)) = Dom(0)"},
  };
  for (const limit_case& c : cases) {
    EXPECT_FALSE(proves(c)) << c.goal;
  }
}

TEST_F(limit_calc, shared_terms_are_asked_about_once) {
  std::string nested = "x";
  for (int i = 0; i < 60; ++i) {
    nested = "x * ln(" + nested + ")";
  }
  EXPECT_TRUE(solver_limit_calc(read("lim_{x → +∞}(1 / (" + nested + ")) = 0"), {}));
  term_ptr shared = read("x * ln(x)");
  for (int i = 0; i < 60; ++i) {
    term_ptr square = make_binOp_term(Mult, shared, shared);
    shared = make_binOp_term(Div, square, shared);
  }
  term_ptr body = make_binOp_term(Div, mk_integer(1), shared);
  const term_list parts = {mk_var("x"), mk_const(PosInfty), body};
  term_ptr limit = with_binders(mk_apply_all(mk_oper(Lim), parts), {mk_var("x")});
  EXPECT_TRUE(solver_limit_calc(make_binPred_prop(Eq, limit, mk_integer(0)), {}));
}

}  // namespace
}  // namespace vetro
