// Logarithms of products as sums of logarithms.
#pragma once

#include "qv_solver_list/algebra/root_form.h"

namespace vetro {

// t with each logarithm in it written by natural logarithms of primes and of single factors. What is used holds
// wherever the logarithm is defined:
//   ln(a * b) = ln(a) + ln(b)    where a or b is known not to be negative, so that both are positive
//   ln(b^k) = k * ln(b)          and k * ln(|b|) for an even k, where b is not known to be non-negative
//   log(b, a) = ln(a) / ln(b)    for a base that is not known to be none
// Only parts that stand for their value are entered. Null for null.
term_ptr log_form(term_ptr t, root_normalizer& normalizer);

}  // namespace vetro
