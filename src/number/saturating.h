// Rationals of 64 bits with the two infinities, for bounds: arithmetic on them never fails and never wraps. A result
// that does not fit is replaced by a value on the safe side of the true one, and each operation is told which side that
// is: at most the true value where the result serves as a lower bound, at least the true value for an upper bound.
#pragma once

#include <cstdint>

namespace vetro {

enum class rat_kind : std::uint8_t { RAT_FINITE = 0, RAT_POS_INF = 1, RAT_NEG_INF = 2 };
using enum rat_kind;
enum class sat_dir : std::uint8_t { SAT_FOR_LOWER = 0, SAT_FOR_UPPER = 1 };
using enum sat_dir;

// A finite value is in lowest terms with den > 0 (zero is 0/1), so that equal values have equal fields.
struct rational {
  rat_kind kind = RAT_FINITE;
  std::int64_t num = 0;
  std::int64_t den = 1;
  bool operator==(const rational&) const = default;
};

inline constexpr rational rat_zero{RAT_FINITE, 0, 1};
inline constexpr rational rat_one{RAT_FINITE, 1, 1};
inline constexpr rational rat_pos_inf{RAT_POS_INF, 1, 1};
inline constexpr rational rat_neg_inf{RAT_NEG_INF, -1, 1};
inline constexpr rational rat_i64_max{RAT_FINITE, INT64_MAX, 1};
inline constexpr rational rat_i64_min{RAT_FINITE, INT64_MIN, 1};

constexpr bool rat_is_inf(const rational& x) { return x.kind != RAT_FINITE; }
constexpr int rat_sign(const rational& x) { return (x.num > 0) - (x.num < 0); }  // of the infinities, too
int rat_cmp(const rational& a, const rational& b);                               // -1, 0 or 1

// What stands for a value of sign s that lies beyond all 64-bit integers: the greatest (least) integer where that is on
// the safe side, else the infinity. For s = 0, a value of which nothing is known.
rational sat_overflow_by_sign(int s, sat_dir dir);

// num/den in lowest terms. den 0 counts as an overflow by the sign of num.
rational rat_norm(std::int64_t num, std::int64_t den, sat_dir dir);

// A result beyond the 64-bit integers is replaced by its sign. One within them that has no fraction of 64 bits is
// rounded to the nearest fraction on the safe side.
//
// 0 times infinity is 0; a finite value by infinity is 0. Infinity minus infinity, infinity by infinity and anything
// by 0 is the infinity on the safe side. Other products and quotients of infinities are replaced like values that are
// too great: +inf * 2 is at least the greatest integer.
rational rat_neg_sat(const rational& x, sat_dir dir);
rational rat_add_sat(const rational& a, const rational& b, sat_dir dir);
rational rat_sub_sat(const rational& a, const rational& b, sat_dir dir);
rational rat_mul_sat(const rational& a, const rational& b, sat_dir dir);
rational rat_div_sat(const rational& a, const rational& b, sat_dir dir);
rational rat_abs_sat(const rational& x, sat_dir dir);
rational rat_pow_sat(const rational& x, int exp, sat_dir dir);  // exp at least 0; x^0 is 1 for every x

}  // namespace vetro
