// Exact values of closed numeric expressions: rational arithmetic with factorials, logarithms, and the sines, cosines
// and tangents of rational multiples of π. What has no exact value stays as it is.
#pragma once

#include <optional>

#include "number/exact.h"
#include "term/ast.h"

namespace vetro {

// The value of a closed term, where it is a rational number that can be found.
std::optional<exact> solver_numeric_calc_eval_rational(term_ptr source);

// The term with each part that has an exact value replaced by it; null for null. Nothing is replaced below Dom,
// Defined, set descriptions and `fun`, nor in a part on which calculation proves nothing.
term_ptr solver_numeric_calc_simplify(term_ptr source);

}  // namespace vetro
