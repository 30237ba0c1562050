// Polynomials in one variable with exact coefficients, each power with its own place.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "number/budget.h"
#include "number/exact.h"

namespace vetro {

// The coefficient at place i multiplies x^i; the last one is not zero. Zero is the empty list.
using dense_polynomial = std::vector<exact>;

dense_polynomial constant_polynomial(const exact& value);
dense_polynomial monomial(std::size_t degree);  // x^degree
dense_polynomial negated(dense_polynomial p);

// Each charges a unit for each sum, and for each word of a product, of coefficients. Nothing when the work is used up,
// a degree would pass limits::univariate_degree, or a coefficient leaves the range of exact.
std::optional<dense_polynomial> sum(const dense_polynomial& a, const dense_polynomial& b, budget& work);
std::optional<dense_polynomial> product(const dense_polynomial& a, const dense_polynomial& b, budget& work);

}  // namespace vetro
