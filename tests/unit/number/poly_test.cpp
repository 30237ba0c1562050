// Polynomials over a registry, and products of powers of them with roots.
#include "number/poly.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "number/rational.h"

namespace vetro {
namespace {

constexpr std::uint64_t plenty = 20'000'000;

class poly_test : public testing::Test {
 protected:
  poly atom(std::uint64_t name, cnum exponent = cnum_from_int(1)) {
    return poly_atom(pdata, pdata.intern_key(F_ATOM, {9, name}), exponent);
  }
  static poly number(std::int64_t n, std::int64_t d = 1) { return poly_const(exact(n) / d); }

  budget work{plenty};
  rational_registry registry{work};
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

// Whole exponents of 30 bits stand in a monomial, others beside it.
TEST_F(poly_test, exponents_of_every_size) {
  constexpr std::int64_t most = std::int64_t{1} << 30U;
  for (const std::int64_t whole : {most - 1, most, -most, -most - 1, std::int64_t{1} << 61U}) {
    const poly p = atom(1, cnum_from_int(whole));
    const auto expect_same = [&](const cnum& part, const cnum& other) {
      EXPECT_TRUE(poly_eq(poly_mul(pdata, atom(1, part), atom(1, other)), p)) << whole;
    };
    expect_same(cnum_from_int(whole - 1), cnum_from_int(1));
    expect_same(cnum_from_int(whole / 2), cnum_from_int(whole - whole / 2));
    expect_same(cnum_from_frac(1, 3), cnum_from_frac(3 * whole - 1, 3));
    EXPECT_TRUE(poly_is_one(poly_mul(pdata, p, atom(1, cnum_from_int(-whole))))) << whole;
    EXPECT_EQ(pdata.factors(p.front().monomial).front().exp.num, whole);
  }
}

TEST_F(poly_test, zero_and_constants) {
  const poly x = atom(1);
  const poly zero = poly_add(pdata, x, poly_neg(x));
  exact value = 7;
  EXPECT_TRUE(zero.empty());
  EXPECT_TRUE(poly_is_const(zero, &value));
  EXPECT_TRUE(value.is_zero());
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
  const poly both = poly_scale(pdata, poly_mul(pdata, poly_mul(pdata, x, x), root), 0, 3);
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

// The same powers in 64 bits, in 128 and beyond, in an array and in a table, and where exponents do not fit a word.
TEST_F(poly_test, every_way_of_multiplying_gives_the_same) {
  const auto power_of_sum = [&](const poly& p, std::uint64_t k) { return poly_pow_int(pdata, p, k); };
  for (const std::int64_t coef : {std::int64_t{1}, std::int64_t{1} << 40U, std::numeric_limits<std::int64_t>::max()}) {
    poly p = number(1);
    for (std::uint64_t i = 1; i <= 3; ++i) {
      p = poly_add(pdata, p, poly_scale(pdata, atom(i), 0, exact(coef) / static_cast<std::int64_t>(i)));
    }
    const poly shifted = poly_mul(pdata, p, atom(9, cnum_from_int(std::int64_t{1} << 45U)));  // too great for a word
    poly sparse = number(1);
    for (std::uint64_t i = 1; i <= 3; ++i) {
      sparse = poly_add(pdata, sparse, atom(i, cnum_from_int(90000)));
    }
    const poly by_table = poly_mul(pdata, power_of_sum(p, 4), poly_mul(pdata, power_of_sum(p, 4), sparse));
    const poly by_array = power_of_sum(p, 8);
    EXPECT_TRUE(poly_eq(by_table, poly_mul(pdata, by_array, sparse))) << coef;
    EXPECT_TRUE(poly_eq(power_of_sum(shifted, 3),
                        poly_mul(pdata, power_of_sum(p, 3), atom(9, cnum_from_int(std::int64_t{3} << 45U)))))
        << coef;
  }
  const poly x_and_y = poly_add(pdata, atom(1), atom(2));
  exact middle;
  for (const poly_term& t : power_of_sum(x_and_y, 68)) {
    middle = t.coef > middle ? t.coef : middle;
  }
  EXPECT_EQ(to_string(middle), "28453041475240576740");
  // Sums of products at the end of 128 bits, and just behind it.
  constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
  const monomial_id x = atom(1).front().monomial;
  for (const exact& sign : {exact(1), exact(-1)}) {
    for (const std::int64_t more : {0, 2}) {
      const poly left = poly_scale(pdata, poly_add(pdata, atom(1), number(1)), 0, sign * most);
      const poly right = poly_add(pdata, poly_scale(pdata, atom(1), 0, most / 2 + more), number(most - most / 2));
      const poly expected =
          poly_add(pdata, poly_scale(pdata, right, x, sign * most), poly_scale(pdata, right, 0, sign * most));
      EXPECT_TRUE(poly_eq(poly_mul(pdata, left, right), expected)) << more;
    }
  }
}

// Words that fit an array, slices, a table and numbers, with coefficients of each length, against exponents that do not
// fit a word.
TEST_F(poly_test, arrays_tables_and_numbers_agree) {
  struct shape {
    std::uint64_t names;
    int degree;
    std::size_t terms;
    std::int64_t step;  // of the exponents
  };
  std::mt19937 random(5);  // NOLINT: the same run every time
  const auto below = [&random](auto n) { return static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(n)); };
  const poly aside = atom(99, cnum_from_int(std::int64_t{1} << 45U));
  for (const shape& s : {shape{1, 300, 99, 1}, {2, 40, 40, 1}, {5, 4, 40, 1}, {3, 9, 40, 7000}, {7, 2, 40, 1}}) {
    for (const exact& size : {exact(9), exact(std::int64_t{1} << 50U), *power(exact(7), 100)}) {
      const auto some = [&] {
        poly_sum sum(pdata);
        for (std::size_t i = 0; i < s.terms; ++i) {
          poly term = poly_const(size * (below(9) - 4) + below(9));
          for (std::int64_t left = s.degree; left > 0 && !term.empty();) {
            const std::int64_t exp = below(left + 1);
            term = poly_mul(pdata, term,
                            atom(1 + static_cast<std::uint64_t>(below(s.names)), cnum_from_int(exp * s.step)));
            left -= exp + 1;
          }
          sum.add(term);
        }
        return sum.take();
      };
      const poly a = some();
      const poly b = some();
      const poly_power both[] = {{&a, 2}, {&b, 1}};
      const poly in_words = poly_product(pdata, both);
      const poly expected =
          poly_mul(pdata, poly_mul(pdata, poly_mul(pdata, poly_add(pdata, a, aside), a), b), number(1));
      const poly beside = poly_mul(pdata, poly_mul(pdata, a, b), aside);
      EXPECT_TRUE(poly_eq(in_words, poly_sub(pdata, expected, beside))) << s.names << " " << to_string(size);
    }
  }
}

TEST_F(poly_test, an_exhausted_budget_is_not_a_number) {
  budget little(1000);
  poly_data small(little);
  poly sum = number(1);
  for (std::uint64_t i = 1; i <= 5; ++i) {
    sum = poly_add(small, sum, poly_atom(small, small.intern_key(F_ATOM, {9, i}), cnum_from_int(1)));
  }
  EXPECT_TRUE(poly_is_nan(poly_pow_int(small, sum, 5)));
  EXPECT_TRUE(small.exhausted());
  EXPECT_TRUE(poly_is_nan(poly_mul(small, sum, sum)));
  budget more(1'000'000);
  small.charge_to(more);
  EXPECT_EQ(poly_pow_int(small, sum, 5).size(), 252U);
}

TEST_F(poly_test, ring_laws_on_random_polynomials) {
  std::mt19937 random(7);  // NOLINT: the same run every time
  const auto any = [&] {
    poly p;
    for (int i = 0; i < 4; ++i) {
      const poly factor = atom(random() % 3, cnum_from_frac(static_cast<int>(random() % 7) - 3, 1 + random() % 2));
      const exact coef = exact(static_cast<int>(random() % 9) - 4) / static_cast<int>(1 + random() % 3);
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

// ---- Products of powers.

class rat_test : public poly_test {
 protected:
  rat form(poly p) { return rat_from_poly(registry, std::move(p)); }
  rat sum(const rat& a, const rat& b) {
    const signed_rat both[] = {{&a, false}, {&b, false}};
    return rat_sum(registry, both);
  }
};

TEST_F(rat_test, sums_are_known_up_to_number_and_monomial) {
  const poly x = atom(1);
  const poly above = poly_add(pdata, x, number(1));
  const rat plain = form(above);
  const rat multiple = form(poly_scale(pdata, poly_mul(pdata, above, atom(2, cnum_from_int(-3))), 0, exact(-2) / 3));
  EXPECT_EQ(multiple.sums, plain.sums);
  EXPECT_EQ(multiple.coef, exact(-2) / 3);
  EXPECT_TRUE(plain.coef.is_one() && plain.monomial == 0);
  EXPECT_EQ(rat_div(registry, multiple, plain), form(poly_scale(pdata, atom(2, cnum_from_int(-3)), 0, exact(-2) / 3)));
  // 1 + 1/x is (x + 1)/x.
  const rat below = form(poly_add(pdata, number(1), atom(1, cnum_from_int(-1))));
  EXPECT_EQ(rat_mul(registry, below, form(x)), plain);
}

TEST_F(rat_test, denominators_keep_their_factors) {
  std::vector<rat> quotients;
  for (std::uint64_t i = 1; i <= 12; ++i) {
    quotients.push_back(rat_pow_int(registry, form(poly_add(pdata, atom(20), atom(i))), -1));
  }
  rat total = rat_const(0);
  for (const rat& q : quotients) {
    total = sum(total, q);
  }
  EXPECT_EQ(total.sums.size(), 13U);
  for (const rat& q : quotients) {
    const rat negative = rat_mul(registry, q, rat_const(-1));
    total = sum(total, negative);
  }
  EXPECT_TRUE(rat_is_zero(total));
  EXPECT_FALSE(rat_eq(registry, quotients[0], quotients[1]));
}

TEST_F(rat_test, zero_and_failure) {
  const rat x = form(atom(1));
  const rat zero = rat_const(0);
  const rat failed = rat_nan();
  const rat infinite = rat_div(registry, x, zero);
  EXPECT_FALSE(rat_eq(registry, infinite, x));
  EXPECT_FALSE(rat_eq(registry, infinite, zero));
  EXPECT_TRUE(rat_eq(registry, infinite, rat_div(registry, rat_const(1), zero)));
  EXPECT_TRUE(rat_is_zero(rat_pow_int(registry, infinite, -2)));
  EXPECT_FALSE(rat_eq(registry, failed, failed));
  EXPECT_TRUE(rat_is_nan(rat_div(registry, failed, failed)));
  EXPECT_TRUE(rat_is_nan(rat_mul(registry, failed, rat_div(registry, x, failed))));
  EXPECT_EQ(rat_mul(registry, failed, zero), zero);
  EXPECT_EQ(rat_pow_int(registry, zero, 0), rat_const(1));
  EXPECT_EQ(rat_pow_int(registry, failed, 0), rat_const(1));
  const rat high = rat_pow_int(registry, x, std::numeric_limits<std::int64_t>::min());
  EXPECT_TRUE(rat_is_nan(rat_mul(registry, high, high)));
}

TEST_F(rat_test, whole_powers_of_roots_become_their_base) {
  const poly base = poly_add(pdata, atom(1), number(1));
  const std::int32_t key = registry.root_key(1, form(base));
  const rat root = rat_atom(registry, key, cnum_from_frac(1, 2));
  EXPECT_EQ(rat_mul(registry, root, root), form(base));
  const rat inverse = rat_div(registry, rat_const(1), root);
  EXPECT_EQ(inverse, rat_div(registry, root, form(base)));
  EXPECT_EQ(rat_mul(registry, inverse, root), rat_const(1));
  EXPECT_TRUE(rat_eq(registry, rat_atom(registry, key, cnum_from_frac(7, 2)),
                     rat_mul(registry, root, form(poly_pow_int(pdata, base, 3)))));

  // The base is itself a quotient: sqrt(x/y)^3 = x/y sqrt(x/y).
  const rat ratio = rat_div(registry, form(poly_add(pdata, base, atom(2))), form(base));
  const std::int32_t outer = registry.root_key(2, ratio);
  const rat of_ratio = rat_atom(registry, outer, cnum_from_frac(1, 2));
  EXPECT_EQ(rat_pow_int(registry, of_ratio, 3), rat_mul(registry, ratio, of_ratio));
  EXPECT_EQ(rat_pow_int(registry, of_ratio, -2), rat_pow_int(registry, ratio, -1));
}

// With r^2 = x^2 the factors of (r + x)(r - x) are not zero, but the product is.
TEST_F(rat_test, products_of_sums_with_roots_may_vanish) {
  const poly x = atom(1);
  const poly r = poly_atom(pdata, registry.root_key(1, form(poly_mul(pdata, x, x))), cnum_from_frac(1, 2));
  const rat product = rat_mul(registry, form(poly_add(pdata, r, x)), form(poly_sub(pdata, r, x)));
  EXPECT_TRUE(rat_eq(registry, product, rat_const(0)));
  EXPECT_TRUE(rat_eq(registry, sum(product, form(x)), form(x)));
  EXPECT_FALSE(rat_eq(registry, form(poly_add(pdata, r, x)), rat_const(0)));
}

}  // namespace
}  // namespace vetro
