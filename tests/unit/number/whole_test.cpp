// Whole numbers against exact ones, across the borders between one word, the inline words and the heap.
#include "number/whole.h"

#include <gtest/gtest.h>

#include <random>

#include "number/limits.h"

namespace vetro {
namespace {

// Of up to five words, often near a power of 2^64.
exact random_integer(std::mt19937_64& random) {
  exact value(0);
  for (auto words = random() % 6; words > 0; --words) {
    value = value * exact(INT64_MAX) * exact(2) + exact(static_cast<std::int64_t>(random() % 4) - 2);
  }
  value += random() % 2 == 0 ? exact(static_cast<std::int64_t>(random() % 7) - 3) : exact(INT64_MIN);
  return random() % 2 == 0 ? value : -value;
}

exact value_of(const whole& n) { return ratio(n, whole(1)); }

TEST(whole, agrees_with_exact) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 20'000; ++i) {
    const exact a = random_integer(random);
    const exact b = random_integer(random);
    const exact x = random_integer(random);
    const exact y = random_integer(random);
    whole result(x);
    result.combine(whole(a), whole(b), whole(y));
    const exact expected = a * x + b * y;
    ASSERT_EQ(value_of(result), expected);
    ASSERT_EQ(result.sign(), expected.sign());
    ASSERT_EQ(result.is_zero(), expected.is_zero());
    whole product(a);
    product.multiply(whole(b));
    ASSERT_EQ(value_of(product), a * b);
    ASSERT_EQ(value_of(gcd(whole(a), whole(b))), gcd(a, b));
    if (!b.is_zero()) {
      ASSERT_EQ(ratio(whole(a), whole(b)), a / b);
      product.divide(whole(b));
      ASSERT_EQ(value_of(product), a);
    }
    product.negate();
    ASSERT_TRUE(b.is_zero() || value_of(product) == -a);
  }
}

TEST(whole, what_is_too_long_is_beyond) {
  whole n(INT64_MIN);
  while (n.is_known()) {
    const whole copy = n;
    n.multiply(copy);
  }
  EXPECT_FALSE(value_of(n).is_known());
  n.combine(whole(0), whole(1), whole(1));
  EXPECT_FALSE(n.is_known());
  EXPECT_FALSE(gcd(n, whole(2)).is_known());
  EXPECT_FALSE(whole(exact(1) / exact(2)).is_known());
  EXPECT_FALSE(ratio(whole(1), whole(0)).is_known());
}

}  // namespace
}  // namespace vetro
