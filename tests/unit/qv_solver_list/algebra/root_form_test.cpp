// The forms of products with roots and of their logarithms: what they look like, that they keep the value, and that
// large exponents are cheap.
#include "qv_solver_list/algebra/root_form.h"

#include <array>
#include <random>

#include "number/exact.h"
#include "qv_solver_list/algebra/log_form.h"
#include "qv_solver_list/number_reading.h"
#include "support/solver_fixture.h"
#include "term/split_arithmetic.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class root_form_test : public solver_test {
 protected:
  static std::string core(std::string_view text) { return shown(root_normalizer(nullptr).rootfrac_core(read(text))); }
};

TEST_F(root_form_test, is_canonical) {
  struct row {
    std::string_view product;
    std::string_view expected;
  };
  const row rows[] = {
      {"6 / 4", "3 / 2"},
      {"5 / 0", "5 / 0"},
      {"0 / 0", "0 / 0"},
      {"0 * x / (0 * y)", "x * 0 / (y * 0)"},
      {"x * 0^(-1)", "x / 0"},
      {"100000 * 100000", "10000000000"},
      {"z * (y * x)^2 / y", "x * x * y * z"},
      {"x^0 * x", "x * x^{0}"},
      {"1 / sqrtn(3, x)^4", "sqrtn(3, x) * sqrtn(3, x) / (x * x)"},
      {"x^(3/2)", "x * sqrtn(2, x)"},
      {"sqrtn(2, 12)", "2 * sqrtn(2, 3)"},
      {"sqrtn(2, 3/4) * sqrtn(3, -8)", "-1 * sqrtn(2, 3)"},
      {"sqrtn(2, -4)", "sqrtn(2, -4)"},
      {"(-8)^(1/3) * sqrtn(3, -8)", "-2 * (-8)^{1 / 3}"},
      {"sqrtn(2, x^2) * \\|x\\|", "x * x"},
      {"sqrtn(2, x * y)^3", "x * y * sqrtn(2, x * y)"},
      {"sqrtn(2, (x^0)^2)", "x^{0}"},
      {"sqrtn(2, 4 * x)", "2 * sqrtn(2, x)"},
      {"sqrtn(3, x * y)", "sqrtn(3, x) * sqrtn(3, y)"},
      {"sqrtn(k, x)^k", "sqrtn(k, x)^{k}"},
      {"sqrtn(0, x)", "sqrtn(0, x)"},
  };
  for (const row& r : rows) {
    std::string text(r.product);
    std::erase(text, '\\');
    EXPECT_EQ(core(text), r.expected) << text;
  }
  EXPECT_EQ(shown(root_normalizer(nullptr).sum_of_cores(read("b - 4/2 + a - (c - 1)"))), "a + b + 1 - c - 2");
}

// A real number as its sign and the rational exponents of the primes up to 11.
struct real_value {
  int sign = 1;
  std::array<exact, 5> exponents{};

  real_value power(const exact& e) const {
    real_value result{sign, exponents};
    for (exact& exponent : result.exponents) {
      exponent *= e;
    }
    return result;
  }
  bool operator==(const real_value&) const = default;
};

real_value product(const real_value& a, const real_value& b) {
  real_value result{a.sign * b.sign, a.exponents};
  for (std::size_t i = 0; i < result.exponents.size(); ++i) {
    result.exponents[i] += b.exponents[i];
  }
  return result;
}

real_value value_of_number(exact number) {
  constexpr std::array<std::int64_t, 5> primes = {2, 3, 5, 7, 11};
  real_value result{number.sign(), {}};
  for (std::size_t i = 0; i < primes.size(); ++i) {
    for (exact rest = number / exact(primes[i]); rest.is_integer(); rest = number / exact(primes[i])) {
      number = rest;
      result.exponents[i] += 1;
    }
  }
  EXPECT_TRUE(number == exact(result.sign));
  return result;
}

bool is_odd(const exact& n) { return !(n / exact(2)).is_integer(); }

// a^e by an odd or even root; nothing for an even root of a negative number.
std::optional<real_value> power_of(const real_value& a, const exact& e) {
  if (a.sign < 0 && !is_odd(e.denominator())) {
    return std::nullopt;
  }
  real_value result = a.power(e);
  result.sign = a.sign < 0 && is_odd(e.numerator()) ? -1 : 1;
  return result;
}

// The value where x is 2 or -2 and y is 3 or -3; nothing where it is not defined.
std::optional<real_value> value_of(term_ptr t, int x, int y) {
  if (t->type() == Var) {
    return value_of_number(t->name() == "x" ? x : y);
  }
  if (const auto number = number_literal(t)) {
    return value_of_number(*number);
  }
  const auto view = composed_term_split(t);
  const auto left = value_of(view->oper == Sqrtn ? view->t2 : view->t1, x, y);
  if (!left) {
    return std::nullopt;
  }
  switch (view->oper) {
    case Neg:
      return real_value{-left->sign, left->exponents};
    case Abs:
      return real_value{1, left->exponents};
    case Sqrtn:
      return power_of(*left, exact(1) / exact(*integer_literal(view->t1)));
    case Power:
      return power_of(*left, *evaluate(view->t2, {}));
    default: {
      const auto right = value_of(view->t2, x, y);
      return right ? std::optional(product(*left, view->oper == Mult ? *right : right->power(-1))) : std::nullopt;
    }
  }
}

// A sum of multiples of logarithms as the exponents of the product that it is the logarithm of; nothing where one of
// the logarithms is not defined.
std::optional<real_value> exponential_of(term_ptr sum, int x, int y) {
  if (is_integer(sum, 0)) {
    return real_value{};
  }
  const auto view = composed_term_split(sum);
  if (view->oper == Ln) {
    const auto value = value_of(view->t1, x, y);
    return value && value->sign > 0 ? value : std::nullopt;
  }
  const auto right = exponential_of(view->t2, x, y);
  if (view->oper == Mult) {
    return right ? std::optional(right->power(*evaluate(view->t1, {}))) : std::nullopt;
  }
  const auto left = exponential_of(view->t1, x, y);
  return left && right ? std::optional(product(*left, *right)) : std::nullopt;
}

// Products of x, y, numbers, their powers and roots.
class random_product {
 public:
  explicit random_product(unsigned seed) : random_(seed) {}
  term_ptr next(int depth) {
    const term_ptr left = depth == 0 ? leaf() : next(depth - 1);
    switch (below(depth == 0 ? 1 : 7)) {
      case 1:
        return make_unOp_term(below(2) == 0 ? Neg : Abs, left);
      case 2:
        return make_binOp_term(Sqrtn, mk_integer(2 + below(3)), left);
      case 3:
        return make_binOp_term(Power, left, signed_number(1 + below(4)));
      case 4: {
        const term_ptr numerator = signed_number(1 + below(4));
        return make_binOp_term(Power, left, make_binOp_term(Frac, numerator, mk_integer(2 + below(3))));
      }
      case 5:
      case 6: {
        const term_ptr right = next(depth - 1);
        return make_binOp_term(below(2) == 0 ? Mult : Div, left, right);
      }
      default:
        return left;
    }
  }

 private:
  std::int32_t below(std::int32_t n) { return static_cast<std::int32_t>(random_() % static_cast<unsigned>(n)); }
  term_ptr signed_number(std::int32_t n) { return below(2) == 0 ? mk_integer(n) : make_unOp_term(Neg, mk_integer(n)); }
  term_ptr leaf() { return below(4) == 0 ? signed_number(1 + below(12)) : mk_var(below(2) == 0 ? "x" : "y"); }
  std::mt19937 random_;
};

TEST_F(root_form_test, keeps_the_value) {
  random_product random(7);
  int compared = 0;
  for (int i = 0; i < 5'000; ++i) {
    const term_ptr t = random.next(4);
    root_normalizer normalizer(nullptr);
    const term_ptr core = normalizer.rootfrac_core(t);
    const term_ptr powers = normalizer.power_form(t);
    for (const auto& [x, y] : {std::pair(2, 3), std::pair(2, -3), std::pair(-2, -3)}) {
      if (const auto expected = value_of(t, x, y)) {
        ASSERT_EQ(shown(normalizer.rootfrac_core(core)), shown(core)) << shown(t);
        ASSERT_EQ(value_of(core, x, y), expected) << shown(t) << " became " << shown(core);
        ASSERT_EQ(value_of(powers, x, y), expected) << shown(t) << " became " << shown(powers);
        if (expected->sign > 0) {
          const term_ptr logarithm = log_form(make_unOp_term(Ln, t), normalizer);
          ASSERT_EQ(exponential_of(logarithm, x, y), expected) << shown(t) << " became " << shown(logarithm);
        }
        ++compared;
      }
    }
  }
  EXPECT_GT(compared, 2'000);
}

TEST_F(root_form_test, large_exponents_and_shared_parts_are_cheap) {
  EXPECT_EQ(core("x^1000000000 / x^999999999"), "x");
  EXPECT_EQ(core("x^1000000000 * sqrtn(2, x)"), "x^{1000000000} * sqrtn(2, x)");
  EXPECT_EQ(core("2^1000000000"), "2^{1000000000}");
  term_ptr product = read("x * sqrtn(2, y)");
  for (int i = 0; i < 60; ++i) {
    product = make_binOp_term(Mult, product, product);
  }
  EXPECT_EQ(shown(root_normalizer(nullptr).rootfrac_core(product)), "x^{1152921504606846976} * y^{576460752303423488}");
  EXPECT_LE(factors(product).num.size(), 300'000U);
  EXPECT_EQ(root_normalizer(nullptr).sum_of_cores(nullptr), nullptr);
}

}  // namespace
}  // namespace vetro
