// When is the end of a result open? The result's end comes from an end of each operand, and is attained when both are.
// Beside that, 0 in a product and an infinity in a sum or product are attained as soon as one operand attains them,
// whatever the other is: [0, 0] * (1, 2) is [0, 0], and [+inf, +inf] + (0, 5) is [+inf, +inf].
#include "number/interval.h"

#include <algorithm>
#include <array>

namespace vetro {
namespace {

bool attains_zero(const bound& b) { return !b.open && b.v == rat_zero; }
bool attains_infinity(const bound& b) { return !b.open && rat_is_inf(b.v); }

bool ends_are_open(const bound& a, const bound& b) {
  return (a.open || b.open) && !attains_infinity(a) && !attains_infinity(b);
}

bool product_is_open(const bound& a, const bound& b) {
  if (a.v == rat_zero || b.v == rat_zero) {
    return !attains_zero(a) && !attains_zero(b);
  }
  return ends_are_open(a, b);
}

// A product of two ends, as it counts at either end of the result.
struct mul_cand {
  rational vL;
  rational vU;
  bool open;
};

mul_cand mul_cand_from_bounds(const bound& a, const bound& b) {
  return {rat_mul_sat(a.v, b.v, SAT_FOR_LOWER), rat_mul_sat(a.v, b.v, SAT_FOR_UPPER), product_is_open(a, b)};
}

interval checked(const bound& lo, const bound& hi) {
  interval result{lo, hi, false};
  interval_empty_check(result);
  return result;
}

interval power_of_ends(const bound& lo, const bound& hi, int exp) {
  return checked({rat_pow_sat(lo.v, exp, SAT_FOR_LOWER), lo.open}, {rat_pow_sat(hi.v, exp, SAT_FOR_UPPER), hi.open});
}

// An even power of an interval with values of both signs.
interval power_across_zero(const interval& A, int exp) {
  const rational below = rat_abs_sat(A.lo.v, SAT_FOR_UPPER);
  const rational above = rat_abs_sat(A.hi.v, SAT_FOR_UPPER);
  const int order = rat_cmp(below, above);
  const bool open = order == 0 ? A.lo.open && A.hi.open : (order > 0 ? A.lo.open : A.hi.open);
  const rational& farthest = order >= 0 ? below : above;
  return checked({rat_zero, !interval_contains_zero(A)}, {rat_pow_sat(farthest, exp, SAT_FOR_UPPER), open});
}

}  // namespace

// ---- Bounds and tests.

bound max_lower(const bound& a, const bound& b) {
  const int order = rat_cmp(a.v, b.v);
  return order == 0 ? bound{a.v, a.open || b.open} : (order > 0 ? a : b);
}

bound min_upper(const bound& a, const bound& b) {
  const int order = rat_cmp(a.v, b.v);
  return order == 0 ? bound{a.v, a.open || b.open} : (order < 0 ? a : b);
}

bool interval_empty_check(interval& I) {
  const int order = rat_cmp(I.lo.v, I.hi.v);
  I.is_bottom = I.is_bottom || order > 0 || (order == 0 && (I.lo.open || I.hi.open));
  return I.is_bottom;
}

bool interval_equal(const interval& A, const interval& B) {
  return A.is_bottom || B.is_bottom ? A.is_bottom == B.is_bottom : A.lo == B.lo && A.hi == B.hi;
}

bool interval_contains_zero(const interval& A) {
  const int lo = rat_sign(A.lo.v);
  const int hi = rat_sign(A.hi.v);
  return !A.is_bottom && (lo < 0 || attains_zero(A.lo)) && (hi > 0 || attains_zero(A.hi));
}

bool interval_is_closed_point(const interval& A, rational* out) {
  if (A.is_bottom || A.lo.open || A.hi.open || A.lo.v != A.hi.v) {
    return false;
  }
  if (out != nullptr) {
    *out = A.lo.v;
  }
  return true;
}

bool interval_is_point_value(const interval& A, const rational& v) {
  return interval_is_closed_point(A, nullptr) && A.lo.v == v;
}

bool interval_is_point_inf(const interval& A) { return interval_is_closed_point(A, nullptr) && rat_is_inf(A.lo.v); }

bool interval_attains_infinity(const interval& A) { return attains_infinity(A.lo) || attains_infinity(A.hi); }

bool interval_point_to_nonneg_int(const interval& A, int* out) {
  rational v;
  if (!interval_is_closed_point(A, &v) || rat_is_inf(v) || v.den != 1 || v.num < 0 || v.num > INT32_MAX) {
    return false;
  }
  *out = static_cast<int>(v.num);
  return true;
}

bool interval_has_indeterminate_inf_binop(interval_op op, const interval& A, const interval& B) {
  const bool left = interval_is_point_inf(A);
  const bool right = interval_is_point_inf(B);
  switch (op) {
    case interval_op::plus:
      return left && right && A.lo.v != B.lo.v;
    case interval_op::minus:
      return left && right && A.lo.v == B.lo.v;
    case interval_op::mult:
      return (left && interval_contains_zero(B)) || (right && interval_contains_zero(A));
    case interval_op::div:
      return left && right;
    case interval_op::power:
      return left && interval_is_point_value(B, rat_zero);
  }
  return false;
}

// ---- Operations.

interval interval_intersect(const interval& A, const interval& B) {
  if (A.is_bottom || B.is_bottom) {
    return interval_bottom();
  }
  return checked(max_lower(A.lo, B.lo), min_upper(A.hi, B.hi));
}

interval interval_neg(const interval& A) {
  if (A.is_bottom) {
    return A;
  }
  return checked({rat_neg_sat(A.hi.v, SAT_FOR_LOWER), A.hi.open}, {rat_neg_sat(A.lo.v, SAT_FOR_UPPER), A.lo.open});
}

interval interval_add(const interval& A, const interval& B) {
  if (A.is_bottom || B.is_bottom) {
    return interval_bottom();
  }
  return checked({rat_add_sat(A.lo.v, B.lo.v, SAT_FOR_LOWER), ends_are_open(A.lo, B.lo)},
                 {rat_add_sat(A.hi.v, B.hi.v, SAT_FOR_UPPER), ends_are_open(A.hi, B.hi)});
}

interval interval_sub(const interval& A, const interval& B) {
  if (A.is_bottom || B.is_bottom) {
    return interval_bottom();
  }
  return checked({rat_sub_sat(A.lo.v, B.hi.v, SAT_FOR_LOWER), ends_are_open(A.lo, B.hi)},
                 {rat_sub_sat(A.hi.v, B.lo.v, SAT_FOR_UPPER), ends_are_open(A.hi, B.lo)});
}

interval interval_mul(const interval& A, const interval& B) {
  if (A.is_bottom || B.is_bottom) {
    return interval_bottom();
  }
  const std::array<mul_cand, 4> candidates = {mul_cand_from_bounds(A.lo, B.lo), mul_cand_from_bounds(A.lo, B.hi),
                                              mul_cand_from_bounds(A.hi, B.lo), mul_cand_from_bounds(A.hi, B.hi)};
  bound lo{candidates[0].vL, candidates[0].open};
  bound hi{candidates[0].vU, candidates[0].open};
  const auto merge = [](bound& end, const rational& v, bool open, int outward) {
    const int order = outward * rat_cmp(v, end.v);
    if (order > 0 || (order == 0 && !open)) {
      end = {v, open};
    }
  };
  for (const mul_cand& candidate : candidates) {
    merge(lo, candidate.vL, candidate.open, -1);
    merge(hi, candidate.vU, candidate.open, 1);
  }
  return checked(lo, hi);
}

interval interval_inv(const interval& B) {
  if (B.is_bottom) {
    return interval_bottom();
  }
  if (interval_contains_zero(B)) {
    return interval_top();
  }
  return checked({rat_div_sat(rat_one, B.hi.v, SAT_FOR_LOWER), B.hi.open},
                 {rat_div_sat(rat_one, B.lo.v, SAT_FOR_UPPER), B.lo.open});
}

interval interval_div(const interval& A, const interval& B) {
  if (A.is_bottom || B.is_bottom) {
    return interval_bottom();
  }
  return interval_contains_zero(B) ? interval_top() : interval_mul(A, interval_inv(B));
}

interval interval_pow_const(const interval& A, int exp) {
  if (A.is_bottom || exp == 1) {
    return A;
  }
  if (exp < 0 || (exp == 0 && interval_contains_zero(A))) {
    return interval_top();
  }
  if (exp == 0) {
    return interval_point(rat_one);
  }
  if (exp % 2 != 0 || rat_sign(A.lo.v) >= 0) {
    return power_of_ends(A.lo, A.hi, exp);
  }
  if (rat_sign(A.hi.v) <= 0) {
    return power_of_ends(A.hi, A.lo, exp);
  }
  return power_across_zero(A, exp);
}

interval interval_exclude_zero_when_one_sided(const interval& A) {
  interval result = A;
  if (interval_contains_zero(A)) {
    if (attains_zero(A.lo)) {
      result.lo.open = true;
    } else if (attains_zero(A.hi)) {
      result.hi.open = true;
    }
    interval_empty_check(result);
  }
  return result;
}

}  // namespace vetro
