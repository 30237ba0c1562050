// Exact numbers as a function theory wants them: Laurent series in one small parameter t, cut off behind t^4. A plain
// number has a constant term alone; a + t stands for the neighbourhood of a, 1 / t for that of infinity. A limit is
// then a constant term, and a derivative a coefficient. What is not known is not-a-number, and stays so.
#pragma once

#include <array>
#include <cstdint>

#include "number/cnum.h"

namespace vetro::test {

struct laurent {
  static constexpr int lowest = -4;
  static constexpr int highest = 4;
  std::array<cnum, highest - lowest + 1> terms{};

  cnum& at(int exponent) { return terms[static_cast<std::size_t>(exponent - lowest)]; }
  const cnum& at(int exponent) const { return terms[static_cast<std::size_t>(exponent - lowest)]; }
  // The least exponent whose coefficient is not 0; behind the window for a series without any.
  int order() const {
    int exponent = lowest;
    while (exponent <= highest && cnum_is_zero(at(exponent))) {
      ++exponent;
    }
    return exponent;
  }
  bool has_limit() const { return order() >= 0 && cnum_is_finite(at(0)); }
  bool constant() const {
    for (int exponent = lowest; exponent <= highest; ++exponent) {
      if (exponent != 0 && !cnum_is_zero(at(exponent))) {
        return false;
      }
    }
    return true;
  }
  // The coefficient of any exponent: above the window it is known of a plain number only.
  cnum coefficient(int exponent) const {
    if (lowest <= exponent && exponent <= highest) {
      return at(exponent);
    }
    return exponent < lowest || constant() ? cnum{} : cnum_nan();
  }
  bool operator==(const laurent&) const = default;
};

inline laurent laurent_of(cnum value, cnum slope = {}) {
  laurent result;
  result.at(0) = value;
  result.at(1) = slope;
  return result;
}

inline laurent laurent_unknown() {
  laurent result;
  result.terms.fill(cnum_nan());
  return result;
}

// 0 times anything is 0 here, also times an unknown coefficient.
inline cnum product_of_terms(const cnum& a, const cnum& b) {
  return cnum_is_zero(a) || cnum_is_zero(b) ? cnum{} : cnum_mul_reduced(a, b);
}

inline laurent operator+(const laurent& a, const laurent& b) {
  laurent sum;
  for (int k = laurent::lowest; k <= laurent::highest; ++k) {
    sum.at(k) = cnum_add_reduced(a.at(k), b.at(k));
  }
  return sum;
}

inline laurent operator*(const laurent& a, const laurent& b) {
  if (a.constant() && b.constant()) {
    return laurent_of(product_of_terms(a.at(0), b.at(0)));
  }
  if (a.order() + b.order() < laurent::lowest) {
    return laurent_unknown();
  }
  laurent product;
  for (int k = laurent::lowest; k <= laurent::highest; ++k) {
    for (int i = laurent::lowest; i <= k - laurent::lowest; ++i) {
      product.at(k) = cnum_add_reduced(product.at(k), product_of_terms(a.coefficient(i), b.coefficient(k - i)));
    }
  }
  return product;
}

inline laurent operator-(const laurent& a, const laurent& b) { return a + laurent_of(cnum_from_int(-1)) * b; }

// 0 / 0 of two series that are 0 altogether is unknown.
inline laurent operator/(const laurent& a, const laurent& b) {
  if (a.constant() && b.constant()) {
    return laurent_of(cnum_div_reduced(a.at(0), b.at(0)));
  }
  const int order = b.order();
  if (order > laurent::highest || a.order() - order < laurent::lowest) {
    return laurent_unknown();
  }
  laurent quotient;
  for (int k = laurent::lowest; k <= laurent::highest; ++k) {
    cnum rest = a.coefficient(k + order);
    for (int i = laurent::lowest; i < k; ++i) {
      rest = cnum_add_reduced(rest, cnum_neg(product_of_terms(quotient.at(i), b.coefficient(order + k - i))));
    }
    quotient.at(k) = cnum_is_zero(rest) ? cnum{} : cnum_div_reduced(rest, b.at(order));
  }
  return quotient;
}

inline laurent power(const laurent& base, std::int64_t exponent) {
  laurent result = laurent_of(cnum_from_int(1));
  for (std::int64_t i = 0; i < (exponent < 0 ? -exponent : exponent); ++i) {
    result = result * base;
  }
  return exponent < 0 ? laurent_of(cnum_from_int(1)) / result : result;
}

// The derivative by t.
inline laurent slope(const laurent& a) {
  laurent result;
  for (int k = laurent::lowest; k <= laurent::highest; ++k) {
    result.at(k) = product_of_terms(cnum_from_int(k + 1), a.coefficient(k + 1));
  }
  return result;
}

// The sum of c_k u^k for the coefficients of a power series; known for a series u that starts behind its constant term.
inline laurent composed(const std::array<cnum, 5>& coefficients, const laurent& u) {
  if (u.order() < 1) {
    return laurent_unknown();
  }
  laurent result;
  for (std::size_t k = coefficients.size(); k-- > 0;) {
    result = result * u + laurent_of(coefficients[k]);
  }
  return result;
}

}  // namespace vetro::test
