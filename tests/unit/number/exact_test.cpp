// Exact rationals across the border of 64 bits: against cnum where that has the result, and by the laws of arithmetic
// where nothing else does.
#include "number/exact.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "number/budget.h"
#include "number/limits.h"
#include "number/linear_form.h"

namespace vetro {
namespace {

constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();

exact number(std::string_view decimal) { return exact_from_decimal(decimal).value(); }

// Numerators and denominators of all lengths, the borders of 64 bits among them.
exact random_number(std::mt19937_64& random) {
  const auto part = [&]() -> exact {
    static constexpr std::int64_t borders[] = {0, 1, -1, 2, most, least, most - 1, least + 1, 1LL << 32};
    switch (random() % 4) {
      case 0:
        return borders[random() % std::size(borders)];
      case 1:
        return exact(static_cast<std::int64_t>(random())) * static_cast<std::int64_t>(random());
      default:
        return static_cast<std::int64_t>(random() >> (random() % 63));
    }
  };
  const exact num = part();
  const exact den = part();
  return den.is_zero() || random() % 2 == 0 ? num : num / den;
}

TEST(exact, laws_hold_at_every_size) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 3000; ++round) {
    const exact a = random_number(random);
    const exact b = random_number(random);
    const exact c = random_number(random);
    const std::string shown = to_string(a) + ", " + to_string(b) + ", " + to_string(c);
    EXPECT_EQ((a + b) - b, a) << shown;
    EXPECT_EQ((a + b) * c, c * b + a * c) << shown;
    EXPECT_EQ(-(-a), a) << shown;
    EXPECT_EQ(exact(a).addmul(b, c), a + b * c) << shown;
    EXPECT_EQ(a < b, (a - b).sign() < 0) << shown;
    EXPECT_EQ(a == b, (a - b).is_zero()) << shown;
    EXPECT_EQ(a.numerator() / a.denominator(), a) << shown;
    EXPECT_TRUE(floor(a) <= a && a < floor(a) + 1) << shown;
    if (!b.is_zero()) {
      EXPECT_EQ(a * b / b, a) << shown;
      EXPECT_EQ((a * b / b).hash(), a.hash()) << shown;
    }
    const cnum small = cnum_add_reduced(to_cnum(a), to_cnum(b));
    EXPECT_TRUE(!cnum_is_finite(small) || to_cnum(a + b) == small) << shown;
  }
}

TEST(exact, values_at_the_border_of_64_bits) {
  EXPECT_EQ(to_string(exact(most) + 1), "9223372036854775808");
  EXPECT_EQ((exact(most) + 1 - 1).to_int64(), most);
  EXPECT_EQ(to_string(-exact(least)), "9223372036854775808");
  EXPECT_EQ((-(-exact(least))).to_int64(), least);
  EXPECT_EQ(to_string(exact(1) / exact(least)), "-1/9223372036854775808");
  EXPECT_EQ(to_cnum(exact(1) / exact(least)), cnum_nan());
  EXPECT_EQ(to_string(exact(least) / exact(-1)), "9223372036854775808");
  EXPECT_EQ(to_string(number("-340282366920938463463374607431768211456.5")),
            "-680564733841876926926749214863536422913/2");
  EXPECT_FALSE((exact(most) + 1).to_int64());
  EXPECT_EQ((exact(most) + 1).limbs(), 2U);
}

TEST(exact, powers_and_roots) {
  EXPECT_EQ(to_string(*power(2, 100)), "1267650600228229401496703205376");
  EXPECT_EQ(root(*power(exact(2) / 3, 100), 50), exact(4) / 9);
  EXPECT_EQ(power(exact(-2) / 3, -3), exact(-27) / 8);
  EXPECT_EQ(power(-1, most), exact(-1));
  EXPECT_EQ(power(0, 0), exact(1));
  EXPECT_EQ(root(-27, 3), exact(-3));
  EXPECT_EQ(root(0, 5), exact(0));
  EXPECT_EQ(root(1, 4000000000U), exact(1));
  EXPECT_EQ(root(*power(10, 40), 2), power(10, 20));
  EXPECT_FALSE(power(0, -1));
  EXPECT_FALSE(root(-4, 2));
  EXPECT_FALSE(root(*power(10, 40) + 1, 2));
  EXPECT_FALSE(root(2, 100));
  EXPECT_FALSE(root(1, 0));
  EXPECT_FALSE(quotient(1, 0));
}

TEST(exact, beyond_the_limit_nothing_is_known) {
  const auto bits = static_cast<std::int64_t>(limits::exact_bits);
  const exact greatest = *power(2, bits - 1);
  EXPECT_TRUE((greatest + (greatest - 1)).is_known());
  const exact beyond = greatest + greatest;
  EXPECT_FALSE(beyond.is_known());
  EXPECT_FALSE(power(2, bits) || power(exact(1) / 2, bits) || power(3, most));
  for (const exact& spread : {beyond + 1, 1 - beyond, beyond * 0, -beyond, 1 / beyond, exact(1) / 0, floor(beyond)}) {
    EXPECT_FALSE(spread.is_known());
    EXPECT_FALSE(spread == beyond || spread < 0 || spread >= 0);
  }
}

TEST(exact, decimal_texts) {
  EXPECT_EQ(number("-0.50"), exact(-1) / 2);
  EXPECT_EQ(number("+5."), exact(5));
  EXPECT_EQ(number("0.0000000000000000000000000001"), power(10, -28));
  EXPECT_EQ(number("00000000000000000000000"), exact(0));
  for (const char* wrong : {"", ".", "-", "1e5", "1.2.3", " 1", "--1", "0x10"}) {
    EXPECT_FALSE(exact_from_decimal(wrong)) << wrong;
  }
}

TEST(linear_form, sums_keep_atoms_sorted_and_nonzero) {
  const linear_form form = linear_sum(linear_sum({}, linear_atom(3), 2), linear_atom(1), exact(1) / 2);
  EXPECT_EQ(form.terms, (std::vector<std::pair<atom_id, exact>>{{1, exact(1) / 2}, {3, 2}}));
  EXPECT_EQ(linear_sum(form, linear_atom(3), -2), linear_sum({}, linear_atom(1), exact(1) / 2));
  EXPECT_TRUE(linear_sum(form, form, -1).is_constant());
  EXPECT_FALSE(linear_sum(form, {exact::beyond(), {}}, 1).is_known());
}

TEST(budget, an_inner_one_ends_alone) {
  budget call(100);
  {
    budget expression(10, &call);
    EXPECT_TRUE(expression.charge(10));
    EXPECT_FALSE(expression.charge(1));
    EXPECT_FALSE(expression.charge(0));
  }
  budget next(1000, &call);
  EXPECT_TRUE(next.charge(80));
  EXPECT_FALSE(next.charge(80));
  EXPECT_TRUE(call.exhausted() && next.exhausted());
}

}  // namespace
}  // namespace vetro
