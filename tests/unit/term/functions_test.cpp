// The page of functions against the functions themselves, at sample points.
#include "term/functions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "term/relation.h"

namespace vetro {
namespace {

// The function at x, an index or base being 2; not finite where it has no value.
double value_at(oper_type oper, double x) {
  // clang-format off
  switch (oper) {
    case Abs: return std::abs(x);
    case Sqrt: case Sqrtn: return std::sqrt(x);
    case Cbrt: return std::cbrt(x);
    case Ln: return std::log(x);
    case Lg: return std::log10(x);
    case Log: return std::log2(x);
    case Sin: return std::sin(x);
    case Cos: return std::cos(x);
    case Tan: return std::tan(x);
    case Cot: return 1 / std::tan(x);
    case Sec: return 1 / std::cos(x);
    case Csc: return 1 / std::sin(x);
    case Arcsin: return std::asin(x);
    case Arccos: return std::acos(x);
    case Arctan: return std::atan(x);
    case Arccot: return std::acos(-1) / 2 - std::atan(x);
    case Arcsec: return std::acos(1 / x);
    case Arccsc: return std::asin(1 / x);
    case Sinh: return std::sinh(x);
    case Cosh: return std::cosh(x);
    case Tanh: return std::tanh(x);
    case Coth: return 1 / std::tanh(x);
    case Sech: return 1 / std::cosh(x);
    case Csch: return 1 / std::sinh(x);
    case Arcsinh: return std::asinh(x);
    case Arccosh: return std::acosh(x);
    case Arctanh: return std::atanh(x);
    case Arccoth: return std::atanh(1 / x);
    case Arcsech: return std::acosh(1 / x);
    case Arccsch: return std::asinh(1 / x);
    case Sgn: return x > 0 ? 1 : x < 0 ? -1 : 0;
    case Floor: return std::floor(x);
    case Ceil: return std::ceil(x);
    default: return NAN;
  }
  // clang-format on
}

bool holds_at(const natural_domain& domain, double x) {
  const double subject = domain.subject == domain_subject::cosine ? std::cos(x)
                         : domain.subject == domain_subject::sine ? std::sin(x)
                                                                  : x;
  return domain.holds_by([subject](const domain_condition& c) {
    const int order = subject < c.value ? -1 : subject > c.value ? 1 : 0;
    return holds(c.pred, order);
  });
}

// Also where both have no value.
bool are_equal(double a, double b) {
  return std::isfinite(a) == std::isfinite(b) && (!std::isfinite(a) || std::abs(a - b) < 1e-9);
}

class functions : public testing::TestWithParam<known_function> {
 protected:
  static std::vector<double> points() {
    std::vector<double> all;
    for (int i = -14; i <= 14; ++i) {
      all.push_back(i / 4.0);
    }
    return all;
  }
  static bool defined_at(double x) { return std::isfinite(of(x)); }
  static double of(double x) { return value_at(GetParam().oper, x); }
};

TEST_P(functions, are_what_the_page_says) {
  const known_function& f = GetParam();
  bool is_even = true;
  bool is_odd = true;
  double largest_step = 0;
  for (const double x : points()) {
    EXPECT_EQ(holds_at(f.domain, x), defined_at(x)) << x;
    is_even = is_even && are_equal(of(x), of(-x));
    is_odd = is_odd && are_equal(of(x), -of(-x));
    if (!defined_at(x)) {
      continue;
    }
    for (const double beside : {x - 1e-12, x + 1e-12}) {
      largest_step = std::max(largest_step, defined_at(beside) ? std::abs(of(beside) - of(x)) : 0);
    }
    if (f.inverts) {
      EXPECT_NEAR(value_at(*f.inverts, of(x)), x, 1e-9) << x;
    }
    if (f.angles) {
      const double quarter = std::acos(-1) / 2;
      EXPECT_TRUE(f.angles->low * quarter <= of(x) && of(x) <= f.angles->high * quarter) << x;
    }
  }
  EXPECT_EQ(f.symmetry, is_even ? parity::even : is_odd ? parity::odd : parity::neither);
  EXPECT_EQ(f.jumps, largest_step > 0.5);
  if (f.value) {
    EXPECT_NEAR(of(f.value->at), f.value->value, 1e-9);
  }
  EXPECT_EQ(find_function(f.oper)->oper, f.oper);
}

INSTANTIATE_TEST_SUITE_P(page, functions, testing::ValuesIn(known_functions().begin(), known_functions().end()),
                         [](const auto& row) { return std::string(oper_type_internal(row.param.oper)); });

TEST(known_functions, of_other_operators_have_no_row) {
  for (const oper_type oper : {Plus, Neg, Power, Max, SetEnum}) {
    EXPECT_EQ(find_function(oper), nullptr);
  }
}

}  // namespace
}  // namespace vetro
