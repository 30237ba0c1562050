// The roots of a polynomial with rational coefficients: whether one is real, whether one is multiple.
#pragma once

#include <optional>

#include "number/budget.h"
#include "number/dense_polynomial.h"

namespace vetro {

// Zero has roots, multiple ones too; other constants have none. Both charge a unit for each product of coefficients and
// each word of the result. Nothing when the work is used up or a coefficient leaves the range of exact.
std::optional<bool> has_real_root(const dense_polynomial& p, budget& work);
std::optional<bool> has_multiple_root(const dense_polynomial& p, budget& work);  // a complex one counts

}  // namespace vetro
