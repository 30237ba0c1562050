// Intervals over the rational line with both infinities as values. Every operation gives an interval that holds all
// results of the operation on values of its operands: arithmetic that leaves 64 bits makes it wider, never wrong.
//
// A result that has no value (infinity minus infinity, a quotient by 0) need not be held; who must know whether there
// is one asks interval_has_indeterminate_inf_binop and interval_contains_zero.
#pragma once

#include <cstdint>

#include "number/saturating.h"

namespace vetro {

struct bound {
  rational v;
  bool open = false;  // v itself is excluded
  bool operator==(const bound&) const = default;
};

// Without any value when is_bottom is set; lo and hi then mean nothing. An infinite bound is closed unless the infinity
// is known to be excluded.
struct interval {
  bound lo;
  bound hi;
  bool is_bottom = false;
};

enum class interval_op : std::uint8_t { plus, minus, mult, div, power };

bound max_lower(const bound& a, const bound& b);  // the tighter one; of equal values, open when either is
bound min_upper(const bound& a, const bound& b);

constexpr interval interval_top() { return {{rat_neg_inf, false}, {rat_pos_inf, false}, false}; }
constexpr interval interval_bottom() { return {{rat_zero, false}, {rat_zero, false}, true}; }
constexpr interval interval_point(const rational& x) { return {{x, false}, {x, false}, false}; }
constexpr interval interval_neg_inf_to_zero(bool open_hi) { return {{rat_neg_inf, false}, {rat_zero, open_hi}, false}; }
constexpr interval interval_zero_to_pos_inf(bool open_lo) { return {{rat_zero, open_lo}, {rat_pos_inf, false}, false}; }

// True, with is_bottom set, when no value is left.
bool interval_empty_check(interval& I);
bool interval_equal(const interval& A, const interval& B);
bool interval_contains_zero(const interval& A);
// One value alone, which goes to *out; out may be null.
bool interval_is_closed_point(const interval& A, rational* out);
bool interval_is_point_value(const interval& A, const rational& v);
bool interval_is_point_inf(const interval& A);
bool interval_attains_infinity(const interval& A);
// One integer from 0 to 2^31 - 1 alone, which goes to *out.
bool interval_point_to_nonneg_int(const interval& A, int* out);
// The operation has no value at all, since an operand is an infinity alone: +inf - inf, inf * 0, inf / inf, inf^0.
bool interval_has_indeterminate_inf_binop(interval_op op, const interval& A, const interval& B);

interval interval_intersect(const interval& A, const interval& B);
interval interval_neg(const interval& A);
interval interval_add(const interval& A, const interval& B);
interval interval_sub(const interval& A, const interval& B);
interval interval_mul(const interval& A, const interval& B);
interval interval_inv(const interval& B);                     // top when B contains 0
interval interval_div(const interval& A, const interval& B);  // top when B contains 0
// A^exp; top for a negative exponent, and for exponent 0 when A contains 0.
interval interval_pow_const(const interval& A, int exp);
// A without 0, where 0 is its closed end.
interval interval_exclude_zero_when_one_sided(const interval& A);

}  // namespace vetro
