// Bounds at the edge of 64 bits, and intervals as enclosures: of values on the extended line, with open ends.
#include "number/interval.h"

#include <gtest/gtest.h>

#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "number/cnum.h"

namespace vetro {

void PrintTo(const rational& x, std::ostream* out) {
  *out << (rat_is_inf(x) ? (x.num > 0 ? "+inf" : "-inf") : std::to_string(x.num) + "/" + std::to_string(x.den));
}

void PrintTo(const interval& I, std::ostream* out) {
  if (I.is_bottom) {
    *out << "bottom";
    return;
  }
  *out << (I.lo.open ? "(" : "[");
  PrintTo(I.lo.v, out);
  *out << ", ";
  PrintTo(I.hi.v, out);
  *out << (I.hi.open ? ")" : "]");
}

bool operator==(const interval& A, const interval& B) { return interval_equal(A, B); }

namespace {

rational q(std::int64_t num, std::int64_t den = 1) { return rat_norm(num, den, SAT_FOR_UPPER); }
constexpr auto inf = rat_pos_inf;
constexpr auto max = rat_i64_max;
constexpr auto min = rat_i64_min;

interval cc(rational lo, rational hi) { return {{lo, false}, {hi, false}}; }
interval oo(rational lo, rational hi) { return {{lo, true}, {hi, true}}; }
interval oc(rational lo, rational hi) { return {{lo, true}, {hi, false}}; }
interval co(rational lo, rational hi) { return {{lo, false}, {hi, true}}; }

// ---- Saturation.

struct directed {
  rational lower;
  rational upper;
  bool operator==(const directed&) const = default;
};

void PrintTo(const directed& d, std::ostream* out) {
  PrintTo(d.lower, out);
  *out << " .. ";
  PrintTo(d.upper, out);
}

template <class Op>
directed both(Op op) {
  return {op(SAT_FOR_LOWER), op(SAT_FOR_UPPER)};
}

directed added(rational a, rational b) {
  return both([&](sat_dir dir) { return rat_add_sat(a, b, dir); });
}
directed multiplied(rational a, rational b) {
  return both([&](sat_dir dir) { return rat_mul_sat(a, b, dir); });
}
directed divided(rational a, rational b) {
  return both([&](sat_dir dir) { return rat_div_sat(a, b, dir); });
}
directed raised(rational x, int exp) {
  return both([&](sat_dir dir) { return rat_pow_sat(x, exp, dir); });
}
directed exactly(rational x) { return {x, x}; }

TEST(saturating, values_beyond_the_integers_are_replaced_on_the_safe_side) {
  const directed above{max, inf};
  const directed below{rat_neg_inf, min};
  EXPECT_EQ(added(max, q(1)), above);
  EXPECT_EQ(added(min, q(-1, 2)), below);
  EXPECT_EQ(multiplied(max, q(2)), above);
  EXPECT_EQ(multiplied(min, max), below);
  EXPECT_EQ(divided(min, q(-1)), above);
  EXPECT_EQ(divided(max, q(-1, 3)), below);
  EXPECT_EQ(both([](sat_dir dir) { return rat_neg_sat(min, dir); }), above);
  EXPECT_EQ(both([](sat_dir dir) { return rat_sub_sat(q(-1), min, dir); }), exactly(max));
  EXPECT_EQ(both([](sat_dir dir) { return rat_sub_sat(q(0), min, dir); }), above);
  EXPECT_EQ(added(q(INT64_MAX, 2), q(INT64_MAX, 2)), exactly(max));
  EXPECT_EQ(raised(q(10), 19), above);
  EXPECT_EQ(raised(q(-10), 19), below);
  EXPECT_EQ(raised(q(-10), 20), above);
  EXPECT_EQ(raised(q(-2), 63), exactly(min));
  EXPECT_EQ(raised(min, 2), above);
  EXPECT_EQ(raised(q(-1), INT32_MAX), exactly(q(-1)));
}

TEST(saturating, what_has_no_fraction_of_64_bits_is_rounded_outward) {
  const rational tiny = q(1, INT64_MAX);
  EXPECT_EQ(multiplied(tiny, tiny), (directed{rat_zero, tiny}));
  EXPECT_EQ(multiplied(tiny, q(-1, 3)), (directed{q(-1, INT64_MAX), rat_zero}));
  EXPECT_EQ(divided(q(1), min), (directed{q(-1, INT64_MAX), rat_zero}));
  EXPECT_EQ(divided(q(3), min), (directed{q(-2, INT64_MAX / 3 * 2 + 1), q(-1, INT64_MAX / 3 + 1)}));
  EXPECT_EQ(both([](sat_dir dir) { return rat_norm(1, INT64_MIN, dir); }), divided(q(1), min));
  EXPECT_EQ(both([](sat_dir dir) { return rat_norm(INT64_MIN, INT64_MIN, dir); }), exactly(rat_one));
  const directed near = added(q(2, 3), tiny);
  EXPECT_EQ(rat_cmp(near.lower, q(2, 3)), 1);
  EXPECT_EQ(rat_cmp(rat_sub_sat(near.upper, near.lower, SAT_FOR_UPPER), q(1, INT64_MAX / 4)), -1);
  // A rounded factor is multiplied on, on its side; the sides meet at the true value.
  const directed seventh = raised(q(2718281, 1000000), 7);
  EXPECT_EQ(rat_cmp(seventh.lower, q(1096)), 1);
  EXPECT_EQ(rat_cmp(seventh.upper, q(1097)), -1);
  const directed cube = raised(q(-1234567891, 10000000000), 3);
  EXPECT_EQ(rat_cmp(cube.upper, q(-1, 532)), -1);
  EXPECT_EQ(rat_cmp(cube.lower, q(-1, 531)), 1);
  EXPECT_EQ(raised(q(1, 2), 64), (directed{rat_zero, tiny}));
}

TEST(saturating, infinities) {
  EXPECT_EQ(added(inf, rat_neg_inf), (directed{rat_neg_inf, inf}));
  EXPECT_EQ(added(inf, min), exactly(inf));
  EXPECT_EQ(multiplied(inf, rat_zero), exactly(rat_zero));
  EXPECT_EQ(multiplied(inf, q(2)), (directed{max, inf}));
  EXPECT_EQ(multiplied(rat_neg_inf, q(1, 2)), (directed{rat_neg_inf, min}));
  EXPECT_EQ(divided(inf, inf), (directed{rat_neg_inf, inf}));
  EXPECT_EQ(divided(q(5), rat_zero), (directed{rat_neg_inf, inf}));
  EXPECT_EQ(divided(q(5), rat_neg_inf), exactly(rat_zero));
  EXPECT_EQ(raised(rat_neg_inf, 3), exactly(rat_neg_inf));
  EXPECT_EQ(raised(rat_neg_inf, 0), exactly(rat_one));
  EXPECT_EQ(rat_cmp(rat_neg_inf, min), -1);
  EXPECT_EQ(rat_cmp(inf, max), 1);
  EXPECT_EQ(rat_cmp(q(INT64_MAX, INT64_MAX - 1), q(INT64_MAX - 1, INT64_MAX - 2)), -1);
}

// ---- Intervals.

TEST(interval, ends_of_results) {
  EXPECT_EQ(interval_add(cc(q(1), q(2)), oc(q(0), inf)), oc(q(1), inf));
  EXPECT_EQ(interval_add(interval_point(inf), interval_point(rat_neg_inf)), interval_top());
  EXPECT_EQ(interval_sub(cc(q(1), q(2)), co(q(1), q(3))), oc(q(-2), q(1)));
  EXPECT_EQ(interval_mul(interval_point(inf), interval_point(q(2))), cc(max, inf));
  EXPECT_EQ(interval_mul(oo(q(0), q(1)), oo(q(0), q(1))), oo(q(0), q(1)));
  EXPECT_EQ(interval_mul(cc(q(-1), q(2)), cc(q(-3), q(1))), cc(q(-6), q(3)));
  EXPECT_EQ(interval_mul(interval_point(rat_zero), oo(q(1), q(2))), interval_point(rat_zero));
  EXPECT_EQ(interval_mul(cc(q(0), q(1)), oo(q(0), q(2))), co(q(0), q(2)));
  EXPECT_EQ(interval_mul(oo(q(0), q(1)), cc(q(1), inf)), oc(q(0), inf));
  EXPECT_EQ(interval_inv(cc(q(2), q(4))), cc(q(1, 4), q(1, 2)));
  EXPECT_EQ(interval_inv(oc(q(0), inf)), co(q(0), inf));
  EXPECT_EQ(interval_inv(cc(q(-1), q(1))), interval_top());
  EXPECT_EQ(interval_div(cc(q(2), q(3)), cc(q(1), q(2))), cc(q(1), q(3)));
  EXPECT_EQ(interval_intersect(co(q(0), q(1)), cc(q(1), q(2))), interval_bottom());
  EXPECT_EQ(interval_add(interval_bottom(), interval_top()), interval_bottom());
  EXPECT_EQ(interval_neg(co(q(-1), inf)), oc(rat_neg_inf, q(1)));
}

// What an infinity adds to is infinite, whatever is open beside it.
TEST(interval, infinite_values_stay_inside) {
  EXPECT_EQ(interval_add(interval_point(inf), oo(q(0), q(5))), interval_point(inf));
  EXPECT_EQ(interval_sub(oo(q(0), q(5)), interval_point(inf)), interval_point(rat_neg_inf));
  EXPECT_EQ(interval_mul(cc(q(3), inf), oo(q(1), q(2))), oc(q(3), inf));
  EXPECT_EQ(interval_add(co(q(3), inf), cc(q(1), q(2))), co(q(4), inf));
}

TEST(interval, powers) {
  EXPECT_EQ(interval_pow_const(cc(q(-2), q(3)), 2), cc(q(0), q(9)));
  EXPECT_EQ(interval_pow_const(oo(q(1), q(2)), 2), oo(q(1), q(4)));
  EXPECT_EQ(interval_pow_const(oc(q(-3), q(3)), 2), cc(q(0), q(9)));
  EXPECT_EQ(interval_pow_const(oo(q(-3), q(3)), 2), co(q(0), q(9)));
  EXPECT_EQ(interval_pow_const(co(q(-3), q(-2)), 2), oc(q(4), q(9)));
  EXPECT_EQ(interval_pow_const(co(q(-3), q(2)), 3), co(q(-27), q(8)));
  EXPECT_EQ(interval_pow_const(interval_point(rat_zero), 0), interval_top());
  EXPECT_EQ(interval_pow_const(cc(q(1), q(2)), 0), interval_point(rat_one));
  EXPECT_EQ(interval_pow_const(cc(q(1), q(2)), -1), interval_top());
}

TEST(interval, tests_on_points_and_zero) {
  EXPECT_TRUE(interval_contains_zero(cc(q(-1), q(0))));
  EXPECT_FALSE(interval_contains_zero(co(q(-1), q(0))));
  EXPECT_FALSE(interval_contains_zero(interval_bottom()));
  EXPECT_EQ(interval_exclude_zero_when_one_sided(cc(q(0), q(5))), oc(q(0), q(5)));
  EXPECT_EQ(interval_exclude_zero_when_one_sided(cc(q(-3), q(0))), co(q(-3), q(0)));
  EXPECT_EQ(interval_exclude_zero_when_one_sided(cc(q(0), q(0))), interval_bottom());
  EXPECT_EQ(interval_exclude_zero_when_one_sided(cc(q(-1), q(1))), cc(q(-1), q(1)));
  int exponent = -1;
  EXPECT_TRUE(interval_point_to_nonneg_int(interval_point(q(INT32_MAX)), &exponent));
  EXPECT_EQ(exponent, INT32_MAX);
  for (const rational& v : {q(std::int64_t{INT32_MAX} + 1), q(-1), q(1, 2), inf}) {
    EXPECT_FALSE(interval_point_to_nonneg_int(interval_point(v), &exponent));
  }
  const interval plus = interval_point(inf);
  const interval minus = interval_point(rat_neg_inf);
  EXPECT_TRUE(interval_has_indeterminate_inf_binop(interval_op::plus, plus, minus));
  EXPECT_FALSE(interval_has_indeterminate_inf_binop(interval_op::plus, plus, plus));
  EXPECT_TRUE(interval_has_indeterminate_inf_binop(interval_op::minus, minus, minus));
  EXPECT_TRUE(interval_has_indeterminate_inf_binop(interval_op::mult, cc(q(-1), q(1)), minus));
  EXPECT_FALSE(interval_has_indeterminate_inf_binop(interval_op::mult, plus, oc(q(0), q(1))));
  EXPECT_TRUE(interval_has_indeterminate_inf_binop(interval_op::div, plus, minus));
  EXPECT_TRUE(interval_has_indeterminate_inf_binop(interval_op::power, minus, interval_point(rat_zero)));
}

// ---- Every result of values inside lies inside.

// n1/d1 against n2/d2 without products: by whole parts and reciprocals.
int compare(wide_int n1, wide_int d1, wide_int n2, wide_int d2) {
  const wide_int w1 = n1 / d1 - (n1 % d1 < 0 ? 1 : 0);
  const wide_int w2 = n2 / d2 - (n2 % d2 < 0 ? 1 : 0);
  if (w1 != w2) {
    return w1 < w2 ? -1 : 1;
  }
  const wide_int r1 = n1 % d1 + (n1 % d1 < 0 ? d1 : 0);
  const wide_int r2 = n2 % d2 + (n2 % d2 < 0 ? d2 : 0);
  if (r1 == 0 || r2 == 0) {
    return (r1 != 0) - (r2 != 0);
  }
  return compare(d2, r2, d1, r1);
}

bool holds(const interval& I, wide_int num, wide_int den) {
  const auto order = [&](const bound& b) {
    return rat_is_inf(b.v) ? -rat_sign(b.v) : compare(num, den, b.v.num, b.v.den);
  };
  const int above = order(I.lo);
  const int below = order(I.hi);
  return !I.is_bottom && (above > 0 || (above == 0 && !I.lo.open)) && (below < 0 || (below == 0 && !I.hi.open));
}

class random_values {
 public:
  rational value() {
    static const std::vector<std::int64_t> edges = {
        0, 1, -1, 2, -3, 7, INT64_MAX, INT64_MIN, INT64_MAX - 1, INT64_MIN + 1, std::int64_t{1} << 32, 1000000007};
    const std::int64_t num = pick(4) == 0 ? static_cast<std::int64_t>(engine_()) : edges[pick(edges.size())];
    const std::int64_t den = pick(4) == 0 ? static_cast<std::int64_t>(engine_()) : edges[pick(edges.size())];
    return rat_norm(num, den == 0 ? 1 : den, SAT_FOR_LOWER);
  }
  rational finite() {
    rational v = value();
    while (rat_is_inf(v)) {
      v = value();
    }
    return v;
  }
  // An interval that holds v, with v at an end more often than not.
  interval around(const rational& v) {
    interval I = interval_point(v);
    widen(I.lo, -1);
    widen(I.hi, 1);
    return I;
  }

 private:
  std::size_t pick(std::size_t count) { return engine_() % count; }
  void widen(bound& end, int outward) {
    const rational far = pick(3) == 0 ? (outward > 0 ? rat_pos_inf : rat_neg_inf) : value();
    if (pick(3) != 0 && rat_cmp(far, end.v) == outward) {
      end = {far, pick(2) == 0};
    }
  }
  std::mt19937_64 engine_{20240711};
};

TEST(interval, results_of_values_inside_lie_inside) {
  random_values random;
  for (int round = 0; round < 30'000; ++round) {
    const rational a = random.finite();
    const rational b = random.finite();
    const interval A = random.around(a);
    const interval B = random.around(b);
    const wide_int an = a.num;
    const wide_int bn = b.num;
    SCOPED_TRACE(testing::PrintToString(A) + " and " + testing::PrintToString(B));
    ASSERT_TRUE(holds(interval_add(A, B), an * b.den + bn * a.den, wide_int{a.den} * b.den));
    ASSERT_TRUE(holds(interval_sub(A, B), an * b.den - bn * a.den, wide_int{a.den} * b.den));
    ASSERT_TRUE(holds(interval_mul(A, B), an * bn, wide_int{a.den} * b.den));
    ASSERT_TRUE(holds(interval_neg(A), -an, a.den));
    if (bn != 0) {
      ASSERT_TRUE(holds(interval_div(A, B), (bn < 0 ? -an : an) * b.den, wide_int{a.den} * (bn < 0 ? -bn : bn)));
    }
    ASSERT_TRUE(holds(interval_pow_const(A, 2), an * an, wide_int{a.den} * a.den));
    const interval cube = interval_mul(interval_mul(A, A), A);
    ASSERT_FALSE(interval_intersect(cube, interval_pow_const(A, 3)).is_bottom);
    ASSERT_TRUE(holds(interval_intersect(A, interval_add(A, interval_point(rat_zero))), an, a.den));
  }
}

}  // namespace
}  // namespace vetro
