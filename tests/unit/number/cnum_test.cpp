// Exact rational numbers, above all at the borders of 64 bits.
#include "number/cnum.h"

#include <gtest/gtest.h>

#include <limits>

#include "number/primes_and_roots.h"

namespace vetro {
namespace {

constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();

cnum frac(std::int64_t num, std::int64_t den) { return cnum_from_frac(num, den); }
cnum whole(std::int64_t value) { return cnum_from_int(value); }

TEST(cnum, fractions_are_reduced_with_the_sign_in_front) {
  EXPECT_EQ(frac(4, -6), (cnum{-2, 3}));
  EXPECT_EQ(frac(-4, -6), (cnum{2, 3}));
  EXPECT_EQ(frac(0, -5), (cnum{0, 1}));
  EXPECT_EQ(frac(1, 0).tag(), CNUM_NAN);
  EXPECT_EQ(frac(0, 0).tag(), CNUM_NAN);
  EXPECT_EQ(frac(least, 1), (cnum{least, 1}));
  EXPECT_EQ(frac(least, least), whole(1));
  EXPECT_EQ(frac(least, 2), whole(least / 2));
  EXPECT_FALSE(cnum_is_finite(frac(least, -1)));
  EXPECT_FALSE(cnum_is_finite(frac(1, least)));
  EXPECT_EQ(frac(2, least), (cnum{-1, -(least / 2)}));
}

TEST(cnum, results_must_fit_before_they_are_reduced) {
  const std::int64_t big = std::int64_t{1} << 40;
  EXPECT_FALSE(cnum_is_finite(cnum_add(frac(1, big), frac(1, big))));
  EXPECT_EQ(cnum_mul(frac(big, 3), frac(3, big)), whole(1));
  EXPECT_FALSE(cnum_is_finite(cnum_mul(frac(big, 3), frac(3 * big - 1, big))));
  EXPECT_FALSE(cnum_is_finite(cnum_add(whole(std::int64_t{1} << 62), whole(std::int64_t{1} << 62))));
  EXPECT_EQ(cnum_add(whole(greatest), whole(-1)), whole(greatest - 1));
  EXPECT_FALSE(cnum_is_finite(cnum_add(whole(greatest), whole(1))));
  EXPECT_EQ(cnum_sub(whole(-1), whole(greatest)), whole(least));
  EXPECT_FALSE(cnum_is_finite(cnum_sub(whole(least), whole(1))));
  EXPECT_EQ(cnum_mul(whole(least / 2), whole(2)), whole(least));
  EXPECT_FALSE(cnum_is_finite(cnum_mul(whole(least), whole(-1))));
  EXPECT_FALSE(cnum_is_finite(cnum_div(whole(least), whole(-1))));
  EXPECT_FALSE(cnum_is_finite(cnum_neg(whole(least))));
  EXPECT_EQ(cnum_neg(whole(greatest)), whole(-greatest));
}

TEST(cnum, reduced_results_alone_must_fit) {
  const std::int64_t big = std::int64_t{1} << 40;
  EXPECT_EQ(cnum_add_reduced(frac(1, big), frac(1, big)), frac(2, big));
  EXPECT_EQ(cnum_add_reduced(frac(1, greatest), frac(-1, greatest)), whole(0));
  EXPECT_EQ(cnum_add_reduced(frac(1, 6), frac(-2, 3)), frac(-1, 2));
  EXPECT_EQ(cnum_add_reduced(frac(greatest, 2), frac(greatest, 2)), whole(greatest));
  EXPECT_EQ(cnum_add_reduced(frac(least + 1, 2), frac(least + 1, 2)), whole(least + 1));
  EXPECT_FALSE(cnum_is_finite(cnum_add_reduced(whole(greatest), whole(1))));
  EXPECT_FALSE(cnum_is_finite(cnum_add_reduced(frac(1, greatest), frac(1, greatest - 1))));
  EXPECT_EQ(cnum_mul_reduced(frac(greatest, big), frac(big, greatest)), whole(1));
  EXPECT_EQ(cnum_mul_reduced(whole(least), frac(-1, 2)), whole(-(least / 2)));
  EXPECT_FALSE(cnum_is_finite(cnum_mul_reduced(whole(least), whole(-1))));
  EXPECT_EQ(cnum_div_reduced(frac(1, greatest), frac(-1, greatest)), whole(-1));
  EXPECT_EQ(cnum_div_reduced(whole(least), whole(least)), whole(1));
  EXPECT_FALSE(cnum_is_finite(cnum_div_reduced(whole(1), whole(0))));
  EXPECT_FALSE(cnum_is_finite(cnum_add_reduced(cnum_nan(), whole(0))));
  EXPECT_FALSE(cnum_is_finite(cnum_mul_reduced(whole(0), cnum_nan())));
}

TEST(cnum, arithmetic_is_exact_and_spreads_failure) {
  EXPECT_EQ(cnum_add(frac(1, 3), frac(1, 6)), frac(1, 2));
  EXPECT_EQ(cnum_sub(frac(1, 3), frac(1, 2)), frac(-1, 6));
  EXPECT_EQ(cnum_div(frac(3, 4), frac(-9, 2)), frac(-1, 6));
  EXPECT_FALSE(cnum_is_finite(cnum_div(whole(1), whole(0))));
  EXPECT_FALSE(cnum_is_finite(cnum_mul(whole(0), cnum_nan())));
  EXPECT_FALSE(cnum_is_finite(cnum_sub(cnum_nan(), cnum_nan())));
  EXPECT_EQ(cnum_power(frac(-2, 3), 3), frac(-8, 27));
  EXPECT_EQ(cnum_power(whole(2), 62), whole(std::int64_t{1} << 62));
  EXPECT_FALSE(cnum_is_finite(cnum_power(whole(2), 64)));
  EXPECT_EQ(cnum_power(cnum_nan(), 0), whole(1));
  EXPECT_EQ(cnum_floor(frac(7, 2)), 3);
  EXPECT_EQ(cnum_floor(frac(-7, 2)), -4);
  EXPECT_EQ(cnum_floor(whole(-3)), -3);
}

TEST(cnum, comparison_puts_not_a_number_last) {
  EXPECT_EQ(cnum_cmp(frac(1, 3), frac(1, 2)), -1);
  EXPECT_EQ(cnum_cmp(frac(greatest, 2), frac(greatest - 2, 2)), 1);
  EXPECT_EQ(cnum_cmp(frac(-1, greatest), frac(-1, greatest - 1)), 1);
  EXPECT_EQ(cnum_cmp(cnum_nan(), whole(greatest)), 1);
  EXPECT_EQ(cnum_cmp(whole(greatest), cnum_nan()), -1);
  EXPECT_EQ(cnum_cmp(cnum_nan(), cnum_nan()), 0);
  EXPECT_TRUE(cnum_eq(cnum_nan(), cnum_nan()));
  EXPECT_FALSE(cnum_is_zero(cnum_nan()));
  EXPECT_FALSE(cnum_is_one(cnum_nan()));
  EXPECT_FALSE(cnum_is_int(frac(1, 2), nullptr));
  EXPECT_FALSE(cnum_is_int(cnum_nan(), nullptr));
}

TEST(cnum, decimal_texts) {
  EXPECT_EQ(cnum_from_decimal_str(" \t-0.50\n "), frac(-1, 2));
  EXPECT_EQ(cnum_from_decimal_str("+.25"), frac(1, 4));
  EXPECT_EQ(cnum_from_decimal_str("3."), whole(3));
  EXPECT_EQ(cnum_from_decimal_str("9223372036854775807"), whole(greatest));
  EXPECT_EQ(cnum_from_decimal_str("-9223372036854775807"), whole(-greatest));
  EXPECT_EQ(cnum_from_decimal_str("0.000000000000000001"), frac(1, 1000000000000000000));
  for (const char* text : {"", " ", ".", "-", "- 1", "1e5", "1 2", "--1", "0x10", "9223372036854775808", "1.2.3",
                           "0.0000000000000000000", "10.000000000000000000"}) {
    EXPECT_FALSE(cnum_is_finite(cnum_from_decimal_str(text))) << text;
  }
  EXPECT_FALSE(cnum_is_finite(cnum_from_decimal_str({})));
  EXPECT_EQ(cnum_to_string(frac(-3, 6)), "-1/2");
  EXPECT_EQ(cnum_to_string(whole(7)), "7");
  EXPECT_EQ(cnum_to_string(cnum_nan()), "nan");
}

TEST(cnum, primes_and_roots) {
  for (const int prime : {2, 3, 5, 7, 999983}) {
    EXPECT_TRUE(solver_exact_is_small_prime_i64(prime)) << prime;
  }
  for (const int other : {-3, 0, 1, 4, 9, 1000000, 1000001, 1000003}) {
    EXPECT_FALSE(solver_exact_is_small_prime_i64(other)) << other;
  }
  std::uint64_t root = 0;
  EXPECT_TRUE(solver_exact_nth_root_u64(1000, 3, &root));
  EXPECT_EQ(root, 10U);
  EXPECT_FALSE(solver_exact_nth_root_u64(1001, 3, &root));
  EXPECT_FALSE(solver_exact_nth_root_u64(8, 64, &root));
  EXPECT_FALSE(solver_exact_nth_root_u64(8, 0, &root));
  EXPECT_FALSE(solver_exact_nth_root_u64(8, 3, nullptr));
  EXPECT_TRUE(solver_exact_nth_root_u64(1, 64, &root));
  EXPECT_EQ(root, 1U);
  EXPECT_TRUE(solver_exact_nth_root_u64(std::uint64_t{1} << 63, 63, &root));
  EXPECT_EQ(root, 2U);
  EXPECT_TRUE(solver_exact_nth_root_u64(18446744065119617025U, 2, &root));
  EXPECT_EQ(root, 4294967295U);
  EXPECT_FALSE(solver_exact_nth_root_u64(std::numeric_limits<std::uint64_t>::max(), 2, &root));
}

}  // namespace
}  // namespace vetro
