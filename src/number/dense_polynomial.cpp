// Schoolbook arithmetic: the polynomials of limits have few and small coefficients.
#include "number/dense_polynomial.h"

#include <algorithm>
#include <utility>

#include "number/limits.h"

namespace vetro {
namespace {

std::optional<dense_polynomial> normalized(dense_polynomial p) {
  while (!p.empty() && p.back().is_zero()) {
    p.pop_back();
  }
  const bool known = std::all_of(p.begin(), p.end(), [](const exact& c) { return c.is_known(); });
  return known ? std::optional(std::move(p)) : std::nullopt;
}

// Words of the longest coefficient; 1 for those of 64 bits.
std::size_t length_of_coefficients(const dense_polynomial& p) {
  std::size_t words = 2;
  for (const exact& c : p) {
    words = std::max(words, c.limbs());
  }
  return words / 2;
}

}  // namespace

dense_polynomial constant_polynomial(const exact& value) {
  return value.is_zero() ? dense_polynomial{} : dense_polynomial{value};
}

dense_polynomial monomial(std::size_t degree) {
  dense_polynomial p(degree + 1);
  p.back() = 1;
  return p;
}

dense_polynomial negated(dense_polynomial p) {
  for (exact& coefficient : p) {
    coefficient = -coefficient;
  }
  return p;
}

std::optional<dense_polynomial> sum(const dense_polynomial& a, const dense_polynomial& b, budget& work) {
  const dense_polynomial& shorter = a.size() < b.size() ? a : b;
  dense_polynomial out = a.size() < b.size() ? b : a;
  if (!work.charge(out.size() + 1)) {
    return std::nullopt;
  }
  for (std::size_t i = 0; i < shorter.size(); ++i) {
    out[i] += shorter[i];
  }
  return normalized(std::move(out));
}

std::optional<dense_polynomial> product(const dense_polynomial& a, const dense_polynomial& b, budget& work) {
  if (a.empty() || b.empty()) {
    return dense_polynomial{};
  }
  const std::size_t places = a.size() + b.size() - 1;
  const std::size_t words = std::max(length_of_coefficients(a), length_of_coefficients(b));
  if (places > limits::univariate_degree + 1 || !work.charge(a.size() * b.size() * words)) {
    return std::nullopt;
  }
  dense_polynomial out(places);
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t k = 0; k < b.size(); ++k) {
      out[i + k].addmul(a[i], b[k]);
    }
  }
  return normalized(std::move(out));
}

}  // namespace vetro
