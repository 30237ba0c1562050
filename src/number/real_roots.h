// Whether a polynomial with rational coefficients has a real root.
#pragma once

#include <optional>

#include "number/budget.h"
#include "number/dense_polynomial.h"

namespace vetro {

// Zero has roots, other constants have none. Charges a unit for each product of coefficients and each word of the
// result. Nothing when the work is used up or a coefficient leaves the range of exact.
std::optional<bool> has_real_root(const dense_polynomial& p, budget& work);

}  // namespace vetro
