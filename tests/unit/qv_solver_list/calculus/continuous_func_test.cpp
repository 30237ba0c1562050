// Continuity and integrability: natural domains at a point and on a set, named functions, and near misses.
#include <string>

#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"

namespace vetro {
namespace {

struct continuity_case {
  const char* goal;
  std::initializer_list<std::string_view> given = {};
};

class continuous_func : public solver_test {
 protected:
  static bool proves(const continuity_case& c) {
    term_ptr goal = read(c.goal);
    const solve_data sdata = given(c.given);
    return solver_continuous_func(goal, sdata) || solver_integrable_func(goal, sdata);
  }
};

TEST_F(continuous_func, proves) {
  const continuity_case cases[] = {
      {"ContinuousFuncOn(fun x . x * x + 1, Real)"},
      {"ContinuousFuncOn(fun x . 2^x, Real)"},
      {"ContinuousFuncAt(fun x . 1 / x, 2)"},
      {"ContinuousFuncAt(fun x . 1 / x, a)", {"a > 0"}},
      {"ContinuousFuncOn(fun x . 1 / x, S)", {"forall (t), t ∈ S ⇒ t > 0"}},
      {"ContinuousFuncOn(fun x . 1 / x, (0, 1))"},
      {"ContinuousFuncOn(fun x . ln(x), (0, 1))"},
      {"ContinuousFuncOn(fun x . log(2, x), (0, 1))"},
      {"ContinuousFuncOn(fun x . Arcsin(x) + Arccsch(x), [1 / 2, 1])"},
      {"ContinuousFuncOn(fun x . |x|, Real)"},
      {"ContinuousFuncAt(fun x . sqrtn(2, x + 1), 3)"},
      {"ContinuousFuncOn(fun x . sqrtn(3, x - 1), Real)"},
      {"ContinuousFuncOn(fun x . sin(cos(x)), Real)"},
      {"ContinuousFuncOn(fun x . c / 2, Real)"},
      {"ContinuousFuncOn(f, S)", {"ContinuousFuncOn(f, S)"}},
      {"ContinuousFuncOn(fun x . f(x) * x, S)", {"ContinuousFuncOn(f, S)"}},
      {"ContinuousFuncOn(f, Real)", {"forall (x), f(x) = x * x"}},
      {"ContinuousFuncOn(f, (0, 1))", {"forall (x), x > 0 ⇒ f(x) = x"}},
      {"ContinuousFuncAt(f, 1)", {"forall (x), x > 0 ⇒ f(x) = x"}},
      {"ContinuousFuncAt(g(a), 1)", {"forall (x)(y), g(x, y) = x * y"}},
      {"IntegrableFuncOn(fun x . x * x, [0, 1])"},
      {"IntegrableFuncOn(f, (0, 1])", {"IntegrableFuncOn(f, (0, 1])"}},
  };
  for (const continuity_case& c : cases) {
    EXPECT_TRUE(proves(c)) << c.goal;
  }
  std::string sum = "1 / x";
  for (int i = 0; i < 100; ++i) {
    sum += " + 1 / x";
  }
  EXPECT_TRUE(solver_continuous_func(read("ContinuousFuncOn(fun x . " + sum + ", (0, 1))"), {}));
}

TEST_F(continuous_func, leaves_open) {
  const continuity_case cases[] = {
      {"ContinuousFuncOn(fun x . x^2, Real)"},
      {"ContinuousFuncOn(fun x . x^x, (0, 1))"},
      {"ContinuousFuncAt(fun x . 1 / x, 0)"},
      {"ContinuousFuncAt(fun x . 1 / x, a)"},
      {"ContinuousFuncOn(fun x . 1 / x, [0, 1])"},
      {"ContinuousFuncOn(fun x . ln(x), [0, 1))"},
      {"ContinuousFuncOn(fun x . log(1, x), (0, 1))"},
      {"ContinuousFuncOn(fun x . log(x, 2), (2, 3))"},
      {"ContinuousFuncOn(fun x . Arctanh(x), [0, 1])"},
      {"ContinuousFuncOn(fun x . |x + 1|, Real)"},
      {"ContinuousFuncOn(fun x . floor(x), Real)"},
      {"ContinuousFuncOn(fun x . sqrtn(2, x), Real)"},
      {"ContinuousFuncOn(fun x . (-2)^x, Real)"},
      {"ContinuousFuncOn(fun x . 1 / c, Real)"},
      {"ContinuousFuncOn(fun x . c^n, Real)", {"n ≥ 0"}},
      // An assumption about x says nothing of the parameter x.
      {"ContinuousFuncOn(fun x . 1 / x, Real)", {"x > 0"}},
      {"ContinuousFuncOn(fun x . x, Complex)"},
      {"ContinuousFuncAt(fun x . x, ∞)"},
      {"ContinuousFuncAt(fun x . x, 1 / 0)"},
      {"ContinuousFuncOn(f, Real)", {"forall (x), f(x) = f(x - 1)"}},
      {"ContinuousFuncOn(f, Real)", {"forall (x), x > 0 ⇒ f(x) = x"}},
      {"ContinuousFuncAt(f, 0)", {"forall (x), x ≥ 0 ⇒ f(x) = 1"}},
      {"ContinuousFuncAt(fun n: IntegerSet . n, 1)"},
      {"ContinuousFuncOn(fun x [x > 1] . x, (0, 3))"},
      {"IntegrableFuncOn(fun x . x, (0, 1])"},
      {"IntegrableFuncOn(fun x . x, [1, 0])"},
      {"IntegrableFuncOn(fun x . 2^x, [0, +∞])"},
      {"IntegrableFuncOn(fun x . 1 / x, [0, 1])"},
  };
  for (const continuity_case& c : cases) {
    EXPECT_FALSE(proves(c)) << c.goal;
  }
}

}  // namespace
}  // namespace vetro
