// Exact division of sparse polynomials.
#pragma once

#include "number/poly.h"

namespace vetro {

// Whether the divisor, as a polynomial in its keys, divides the dividend. Neither may have negative exponents. False
// for a not-a-number, and when the budget of the registry ends.
bool poly_divides(poly_data& pdata, const poly& divisor, const poly& dividend);

}  // namespace vetro
