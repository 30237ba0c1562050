// Polynomials over a registry, and the normal form of quotients with roots.
#include "number/poly.h"

#include <gtest/gtest.h>

#include <random>

#include "number/rational.h"

namespace vetro {
namespace {

constexpr std::uint64_t plenty = 1'000'000;

class poly_test : public testing::Test {
 protected:
  poly atom(std::uint64_t name, cnum exponent = cnum_from_int(1)) {
    return poly_atom(pdata, pdata.intern_key(F_ATOM, {9, name}), exponent);
  }
  static poly number(std::int64_t n, std::int64_t d = 1) { return poly_const(cnum_from_frac(n, d)); }

  rational_registry registry{plenty};
  poly_data& pdata = registry.pdata;
};

TEST_F(poly_test, keys_are_numbered_from_one_and_told_apart) {
  EXPECT_EQ(pdata.intern_key(F_ATOM, {1, 2}), 1);
  EXPECT_EQ(pdata.intern_key(F_ATOM, {1, 3}), 2);
  EXPECT_EQ(pdata.intern_key(F_ATOM, {1}), 3);
  EXPECT_EQ(pdata.intern_key(F_ATOM, {1, 2}), 1);
}

TEST_F(poly_test, exponents_of_one_key_add_up) {
  const cnum half = cnum_from_frac(1, 2);
  const poly root = atom(1, half);
  EXPECT_TRUE(poly_eq(poly_mul(pdata, root, root), atom(1)));
  EXPECT_TRUE(poly_is_one(poly_mul(pdata, root, atom(1, cnum_neg(half)))));
  EXPECT_TRUE(poly_is_one(atom(1, cnum_from_int(0))));
  EXPECT_TRUE(poly_is_nan(atom(1, cnum_nan())));
  const poly huge = atom(1, cnum_from_int(std::int64_t{1} << 62));
  EXPECT_TRUE(poly_is_nan(poly_mul(pdata, huge, huge)));
}

TEST_F(poly_test, zero_and_constants) {
  const poly x = atom(1);
  const poly zero = poly_add(pdata, x, poly_neg(x));
  cnum value = cnum_nan();
  EXPECT_TRUE(zero.empty());
  EXPECT_TRUE(poly_is_const(zero, &value));
  EXPECT_TRUE(cnum_is_zero(value));
  EXPECT_FALSE(poly_is_const(x, nullptr));
  EXPECT_TRUE(poly_is_one(poly_pow_int(pdata, zero, 0)));
  EXPECT_TRUE(poly_pow_int(pdata, zero, 3).empty());
  EXPECT_TRUE(poly_mul(pdata, zero, poly_nan()).empty());
  EXPECT_TRUE(poly_is_nan(poly_mul(pdata, x, poly_nan())));
  EXPECT_FALSE(poly_eq(poly_nan(), poly_nan()));
}

TEST_F(poly_test, texts_are_in_the_order_of_the_factors) {
  const poly x = atom(1);
  const std::int32_t y = pdata.intern_key(F_POW, {8, 1});
  const poly root = poly_atom(pdata, y, cnum_from_frac(-1, 2));
  const poly both = poly_scale(pdata, poly_mul(pdata, poly_mul(pdata, x, x), root), 0, cnum_from_int(3));
  EXPECT_EQ(poly_to_string(pdata, poly_add(pdata, both, number(1, 2))), "1/2+3*A1^(2)*P2^(-1/2)");
  EXPECT_EQ(poly_to_string(pdata, poly_add(pdata, poly_mul(pdata, x, x), x)), "1*A1+1*A1^(2)");
  EXPECT_EQ(poly_to_string(pdata, {}), "0");
  EXPECT_EQ(poly_to_string(pdata, poly_nan()), "nan");
}

// A power agrees with repeated multiplication, both where products of terms coincide and where they do not.
TEST_F(poly_test, powers_agree_with_products) {
  poly sparse = number(2, 3);
  poly dense = number(1);
  for (std::uint64_t i = 1; i <= 3; ++i) {
    sparse = poly_add(pdata, sparse, atom(i, cnum_from_int(static_cast<std::int64_t>(i))));
    dense = poly_sub(pdata, dense, atom(1, cnum_from_int(static_cast<std::int64_t>(i))));
  }
  for (const poly& base : {sparse, dense}) {
    poly product = number(1);
    for (std::uint64_t k = 0; k < 9; ++k) {
      EXPECT_TRUE(poly_eq(poly_pow_int(pdata, base, k), product)) << k;
      product = poly_mul(pdata, product, base);
    }
  }
}

TEST_F(poly_test, coefficients_fit_as_long_as_they_can) {
  const poly sum = poly_add(pdata, atom(1), atom(2));
  EXPECT_EQ(poly_pow_int(pdata, sum, 66).size(), 67U);  // the middle coefficient is just below 2^63
  EXPECT_TRUE(poly_is_nan(poly_pow_int(pdata, sum, 67)));
}

TEST_F(poly_test, an_exhausted_budget_is_not_a_number) {
  poly_data small(100);
  poly sum = number(1);
  for (std::uint64_t i = 1; i <= 5; ++i) {
    sum = poly_add(small, sum, poly_atom(small, small.intern_key(F_ATOM, {9, i}), cnum_from_int(1)));
  }
  EXPECT_TRUE(poly_is_nan(poly_pow_int(small, sum, 5)));
  EXPECT_TRUE(small.exhausted());
  EXPECT_TRUE(poly_is_nan(poly_mul(small, sum, sum)));
}

TEST_F(poly_test, ring_laws_on_random_polynomials) {
  std::mt19937 random(7);  // NOLINT: the same run every time
  const auto any = [&] {
    poly p;
    for (int i = 0; i < 4; ++i) {
      const poly factor = atom(random() % 3, cnum_from_frac(static_cast<int>(random() % 7) - 3, 1 + random() % 2));
      const cnum coef = cnum_from_frac(static_cast<int>(random() % 9) - 4, 1 + random() % 3);
      p = poly_add(pdata, p, poly_scale(pdata, poly_mul(pdata, factor, atom(random() % 3)), 0, coef));
    }
    return p;
  };
  for (int round = 0; round < 50; ++round) {
    const poly a = any();
    const poly b = any();
    const poly c = any();
    const poly left = poly_mul(pdata, a, poly_add(pdata, b, c));
    EXPECT_TRUE(poly_eq(left, poly_add(pdata, poly_mul(pdata, a, b), poly_mul(pdata, a, c))));
    EXPECT_TRUE(poly_eq(poly_mul(pdata, a, poly_mul(pdata, b, c)), poly_mul(pdata, poly_mul(pdata, a, b), c)));
    EXPECT_TRUE(poly_eq(poly_mul(pdata, a, b), poly_mul(pdata, b, a)));
    EXPECT_TRUE(poly_sub(pdata, left, left).empty());
  }
}

// ---- Quotients.

using rat_test = poly_test;

TEST_F(rat_test, normal_form) {
  const poly x = atom(1);
  const poly above = poly_add(pdata, x, number(1));
  EXPECT_EQ(rat_normalize(registry, {{}, above}), rat_const(cnum_from_int(0)));
  EXPECT_EQ(rat_normalize(registry, {{}, {}}), rat_const(cnum_from_int(0)));
  EXPECT_EQ(rat_normalize(registry, {number(2), number(-4)}), rat_const(cnum_from_frac(-1, 2)));
  EXPECT_EQ(rat_normalize(registry, {poly_neg(above), above}), rat_const(cnum_from_int(-1)));
  EXPECT_TRUE(rat_is_polynomial(rat_normalize(registry, {above, x})));
  const rat quotient = rat_normalize(registry, {x, poly_mul(pdata, poly_mul(pdata, x, x), poly_neg(above))});
  EXPECT_TRUE(rat_eq(registry, quotient, rat_normalize(registry, {number(-1), poly_mul(pdata, x, above)})));
  EXPECT_TRUE(cnum_is_one(quotient.den.front().coef));
  EXPECT_EQ(rat_normalize(registry, quotient), quotient);
}

TEST_F(rat_test, zero_and_failure) {
  const rat x{atom(1)};
  const rat zero = rat_const(cnum_from_int(0));
  const rat failed = rat_nan();
  const rat infinite = rat_div(registry, x, zero);
  EXPECT_FALSE(rat_eq(registry, infinite, x));
  EXPECT_TRUE(rat_eq(registry, infinite, rat_div(registry, rat_const(cnum_from_int(1)), zero)));
  EXPECT_FALSE(rat_eq(registry, failed, failed));
  EXPECT_TRUE(rat_is_nan(rat_div(registry, failed, failed)));
  EXPECT_TRUE(rat_is_nan(rat_mul(registry, failed, rat_div(registry, x, failed))));
  EXPECT_EQ(rat_mul(registry, failed, zero), zero);
  EXPECT_EQ(rat_pow_int(registry, zero, 0), rat_const(cnum_from_int(1)));
  EXPECT_EQ(rat_pow_int(registry, failed, 0), rat_const(cnum_from_int(1)));
  EXPECT_TRUE(rat_is_nan(rat_pow_int(registry, x, std::numeric_limits<std::int64_t>::min())));
}

TEST_F(rat_test, whole_powers_of_roots_become_their_base) {
  const poly base = poly_add(pdata, atom(1), number(1));
  const std::int32_t key = registry.root_key(1, {base});
  const rat root{poly_atom(pdata, key, cnum_from_frac(1, 2))};
  EXPECT_EQ(rat_mul(registry, root, root), rat{base});
  const rat inverse = rat_div(registry, rat_const(cnum_from_int(1)), root);
  EXPECT_EQ(inverse, rat_div(registry, root, {base}));
  EXPECT_EQ(rat_mul(registry, inverse, root), rat_const(cnum_from_int(1)));
  const rat seven{poly_atom(pdata, key, cnum_from_frac(7, 2))};
  EXPECT_EQ(rat_normalize(registry, seven), rat_mul(registry, root, {poly_pow_int(pdata, base, 3)}));

  // The base is itself a quotient: sqrt(x/y)^3 = x/y sqrt(x/y).
  const rat ratio = rat_div(registry, {poly_add(pdata, base, atom(2))}, {base});
  const std::int32_t outer = registry.root_key(2, ratio);
  const rat of_ratio{poly_atom(pdata, outer, cnum_from_frac(1, 2))};
  EXPECT_EQ(rat_pow_int(registry, of_ratio, 3), rat_mul(registry, ratio, of_ratio));
  EXPECT_EQ(rat_pow_int(registry, of_ratio, -2), rat_div(registry, {base}, {poly_add(pdata, base, atom(2))}));
}

}  // namespace
}  // namespace vetro
